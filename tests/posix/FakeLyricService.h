// A lyrics service on 127.0.0.1 that speaks the service's protocol: the get
// script answers a stored lyric, ":NOTFOUND" or ":NOUPDATES" (the client
// already has that revision), the insert script stores what it is sent and
// answers ":SUCCESS". A scripted answer replaces the normal ones.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "posix/LoopbackServer.h"

namespace toval::test {

class FakeLyricService {
  public:
    // One request as the service read it: the script and its form values, decoded.
    struct Request {
        std::string script;
        std::map<std::string, std::string> form;
        std::string Value(const std::string& key) const {
            const auto it = form.find(key);
            return it == form.end() ? std::string() : it->second;
        }
    };
    struct Entry {
        std::string lyric;  // as the service sends it: UTF-8, HTML allowed
        std::string mutation;
    };
    // Sent in place of the normal answers: the whole HTTP answer, or kEndless.
    static constexpr char kEndless[] = "endless";

    FakeLyricService() : server_([this](LoopbackServer::Connection& c) { Serve(c); }) {}

    int32_t Port() const { return server_.Port(); }
    // The host as conn_Server holds it.
    std::string Host() const { return "127.0.0.1:" + std::to_string(Port()); }

    void AddLyric(const std::string& artist, const std::string& title, std::string lyric,
                  std::string mutation = "1") {
        std::lock_guard lock(mutex_);
        lyrics_[artist + "\n" + title] = {std::move(lyric), std::move(mutation)};
    }
    // What the insert script stored for artist and title.
    Entry Stored(const std::string& artist, const std::string& title) const {
        std::lock_guard lock(mutex_);
        const auto it = lyrics_.find(artist + "\n" + title);
        return it == lyrics_.end() ? Entry{} : it->second;
    }
    // A body inside the envelope ("<TOVAL>:SQL_ERROR</TOVAL>"), a whole answer, or kEndless.
    void setAnswer(std::string answer) {
        std::lock_guard lock(mutex_);
        answer_ = std::move(answer);
    }
    std::vector<Request> Requests() const {
        std::lock_guard lock(mutex_);
        return requests_;
    }

  private:
    // Form decoding: "+" is a blank, "%XX" a byte.
    static std::string Decode(const std::string& value) {
        std::string out;
        for (size_t i = 0; i < value.size(); ++i) {
            if (value[i] == '%' && i + 2 < value.size()) {
                out += static_cast<char>(std::strtol(value.substr(i + 1, 2).c_str(), nullptr, 16));
                i += 2;
            } else {
                out += value[i] == '+' ? ' ' : value[i];
            }
        }
        return out;
    }

    static Request Parse(const std::string& raw) {
        Request r;
        const size_t space = raw.find(' ');
        const size_t end = raw.find(' ', space + 1);
        if (space == std::string::npos || end == std::string::npos) return r;
        r.script = raw.substr(space + 1, end - space - 1);
        std::string query;
        if (const size_t q = r.script.find('?'); q != std::string::npos) {
            query = r.script.substr(q + 1);
            r.script.resize(q);
        }
        if (raw.starts_with("POST")) query = raw.substr(raw.find("\r\n\r\n") + 4);
        for (size_t from = 0; from < query.size();) {
            const size_t amp = std::min(query.find('&', from), query.size());
            const std::string piece = query.substr(from, amp - from);
            if (const size_t eq = piece.find('='); eq != std::string::npos) {
                r.form[Decode(piece.substr(0, eq))] = Decode(piece.substr(eq + 1));
            }
            from = amp + 1;
        }
        return r;
    }

    std::string Body(const Request& r) {
        const std::string key = r.Value("art") + "\n" + r.Value("tit");
        if (r.script == "/website/tvl_get_url.php" && r.Value("get") == "Get") {
            const auto it = lyrics_.find(key);
            if (it == lyrics_.end()) return ":NOTFOUND";
            // mut=0: the client has no lyric at all.
            if (r.Value("mut") != "0" && r.Value("mut") == it->second.mutation) return ":NOUPDATES";
            return it->second.lyric;
        }
        const std::string lyric = r.Value("tvl") + r.Value("lrc");
        if (r.script != "/website/tvl_insert.php" || r.Value("add") != "Add" || lyric.empty() ||
            r.Value("tit").empty()) {
            return ":BADREQUEST";
        }
        lyrics_[key] = {lyric, r.Value("mut")};
        return ":SUCCESS";
    }

    void Serve(LoopbackServer::Connection& c) {
        const Request r = Parse(c.ReadRequest());
        std::string answer;
        {
            std::lock_guard lock(mutex_);
            requests_.push_back(r);
            answer =
                answer_.starts_with("HTTP/") || answer_ == kEndless
                    ? answer_
                    : "HTTP/1.0 200 OK\r\nContent-Type: text/html; charset=utf-8\r\n\r\n<html>" +
                          (answer_.empty() ? "<TOVAL>" + Body(r) + "</TOVAL>" : answer_);
        }
        if (answer == kEndless) {
            c.Send("HTTP/1.0 200 OK\r\n\r\n<html>");
            c.WaitForClose(20000);
        } else {
            c.Send(answer);
        }
    }

    mutable std::mutex mutex_;
    std::map<std::string, Entry> lyrics_;
    std::string answer_;
    std::vector<Request> requests_;
    // Last: its thread serves with the fields above and ends first.
    LoopbackServer server_;
};

}  // namespace toval::test
