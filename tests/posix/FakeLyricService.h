// A lyrics service on 127.0.0.1 that speaks the service's protocol: the get
// script answers a stored lyric, ":NOTFOUND" or ":NOUPDATES" (the client
// already has that revision), the insert script stores what it is sent and
// answers ":SUCCESS". A scripted behaviour replaces the normal answers: the
// database failures, a move to another server, a broken envelope, an error
// status and an answer that never ends.
#pragma once

#include <cctype>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "posix/LoopbackServer.h"

namespace toval::test {

class FakeLyricService {
  public:
    enum class Behaviour {
        kNormal,
        kSqlError,            // ":SQL_ERROR"
        kSqlConnectionError,  // ":SQL_CONNECTION_ERROR"
        kMoved,               // ":UPDATESERVER:" + movedTo
        kBrokenEnvelope,      // "<TOVAL>" and no end
        kServerError,         // "500 Internal Server Error"
        kEndless,             // headers, then silence until the client leaves
    };

    // One request as the service read it.
    struct Request {
        std::string method, script;
        // The form values, decoded, in the order they came.
        std::vector<std::pair<std::string, std::string>> form;
        std::string raw;

        std::string Value(const std::string& key) const {
            for (const auto& [k, v] : form) {
                if (k == key) return v;
            }
            return {};
        }
        std::vector<std::string> Keys() const {
            std::vector<std::string> keys;
            for (const auto& kv : form)
                keys.push_back(kv.first);
            return keys;
        }
    };

    struct Entry {
        std::string lyric;  // as the service sends it: UTF-8, HTML allowed
        std::string mutation;
    };

    FakeLyricService() : server_([this](LoopbackServer::Connection& c) { Serve(c); }) {}

    int32_t Port() const { return server_.Port(); }
    // The host as conn_Server holds it.
    std::u16string Host() const {
        const std::string host = "127.0.0.1:" + std::to_string(Port());
        return std::u16string(host.begin(), host.end());
    }

    // Stores a lyric for artist and title (UTF-8), with its revision number.
    void AddLyric(const std::string& artist, const std::string& title, std::string lyric,
                  std::string mutation = "1") {
        std::lock_guard lock(mutex_);
        lyrics_[artist + "\n" + title] = {std::move(lyric), std::move(mutation)};
    }
    // What the insert script stored for artist and title.
    bool Stored(const std::string& artist, const std::string& title, Entry& entry) const {
        std::lock_guard lock(mutex_);
        const auto it = lyrics_.find(artist + "\n" + title);
        if (it == lyrics_.end()) return false;
        entry = it->second;
        return true;
    }

    void setBehaviour(Behaviour b, std::string movedTo = {}) {
        std::lock_guard lock(mutex_);
        behaviour_ = b;
        movedTo_ = std::move(movedTo);
    }
    std::vector<Request> Requests() const {
        std::lock_guard lock(mutex_);
        return requests_;
    }

    // Form decoding: "+" is a blank, "%XX" a byte.
    static std::string Decode(const std::string& value) {
        std::string out;
        for (size_t i = 0; i < value.size(); ++i) {
            if (value[i] == '%' && i + 2 < value.size() && std::isxdigit(value[i + 1]) &&
                std::isxdigit(value[i + 2])) {
                out += static_cast<char>(std::stoi(value.substr(i + 1, 2), nullptr, 16));
                i += 2;
            } else {
                out += value[i] == '+' ? ' ' : value[i];
            }
        }
        return out;
    }

  private:
    static Request Parse(const std::string& raw) {
        Request r;
        r.raw = raw;
        const size_t space = raw.find(' ');
        const size_t end = raw.find(' ', space + 1);
        if (space == std::string::npos || end == std::string::npos) return r;
        r.method = raw.substr(0, space);
        std::string target = raw.substr(space + 1, end - space - 1);
        std::string query;
        if (const size_t q = target.find('?'); q != std::string::npos) {
            query = target.substr(q + 1);
            target.resize(q);
        }
        if (r.method == "POST") {
            const size_t body = raw.find("\r\n\r\n");
            if (body != std::string::npos) query = raw.substr(body + 4);
        }
        r.script = target;
        size_t from = 0;
        while (from <= query.size() && !query.empty()) {
            size_t amp = query.find('&', from);
            if (amp == std::string::npos) amp = query.size();
            const std::string piece = query.substr(from, amp - from);
            const size_t eq = piece.find('=');
            if (eq != std::string::npos) {
                r.form.emplace_back(Decode(piece.substr(0, eq)), Decode(piece.substr(eq + 1)));
            }
            from = amp + 1;
        }
        return r;
    }

    std::string Body(const Request& r) {
        std::lock_guard lock(mutex_);
        switch (behaviour_) {
            case Behaviour::kSqlError:
                return ":SQL_ERROR";
            case Behaviour::kSqlConnectionError:
                return ":SQL_CONNECTION_ERROR";
            case Behaviour::kMoved:
                return ":UPDATESERVER:" + movedTo_;
            default:
                break;
        }
        const std::string key = r.Value("art") + "\n" + r.Value("tit");
        if (r.script == "/website/tvl_get_url.php" && r.Value("get") == "Get") {
            const auto it = lyrics_.find(key);
            if (it == lyrics_.end()) return ":NOTFOUND";
            // mut=0: the client has no lyric at all.
            if (r.Value("mut") != "0" && r.Value("mut") == it->second.mutation) {
                return ":NOUPDATES";
            }
            return it->second.lyric;
        }
        if (r.script == "/website/tvl_insert.php" && r.Value("add") == "Add") {
            std::string lyric = r.Value("tvl");
            if (lyric.empty()) lyric = r.Value("lrc");
            if (lyric.empty() || r.Value("tit").empty()) return ":BADREQUEST";
            lyrics_[key] = {lyric, r.Value("mut")};
            return ":SUCCESS";
        }
        return ":BADREQUEST";
    }

    void Serve(LoopbackServer::Connection& c) {
        const Request r = Parse(c.ReadRequest());
        {
            std::lock_guard lock(mutex_);
            requests_.push_back(r);
        }
        const std::string body = Body(r);
        Behaviour behaviour;
        {
            std::lock_guard lock(mutex_);
            behaviour = behaviour_;
        }
        const std::string page = "<html><body><TOVAL>" + body +
                                 (behaviour == Behaviour::kBrokenEnvelope ? "" : "</TOVAL>") +
                                 "</body></html>";
        const std::string status = behaviour == Behaviour::kServerError
                                       ? "HTTP/1.0 500 Internal Server Error\r\n"
                                       : "HTTP/1.0 200 OK\r\n";
        const std::string answer = status + "Content-Type: text/html; charset=utf-8\r\n\r\n" + page;
        if (behaviour == Behaviour::kEndless) {
            c.Send(status + "Content-Type: text/html\r\n\r\n<html>");
            c.WaitForClose(20000);
        } else {
            c.Send(answer);
        }
    }

    mutable std::mutex mutex_;
    std::map<std::string, Entry> lyrics_;
    Behaviour behaviour_ = Behaviour::kNormal;
    std::string movedTo_;
    std::vector<Request> requests_;
    // Last: its thread serves with the fields above and ends first.
    LoopbackServer server_;
};

}  // namespace toval::test
