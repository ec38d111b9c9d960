// A lyric service on 127.0.0.1 that sends one scripted answer to every
// request, for the tool's tests and the Windows program's evening.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "posix/LoopbackServer.h"

namespace toval::test {

// The answer is a body for the envelope, a whole HTTP answer, or kEndless
// (the head, then silence); ":NOTFOUND" until set.
class FakeLyricService {
  public:
    static constexpr char kEndless[] = "endless";
    std::string Host() const { return "127.0.0.1:" + std::to_string(server_.Port()); }
    void setAnswer(std::string answer) {
        std::lock_guard lock(mutex_);
        answer_ = std::move(answer);
    }
    std::vector<std::string> Requests() const { return server_.Requests(); }
    bool LastAsked(const std::string& fragment) const {
        const auto requests = Requests();
        return !requests.empty() && requests.back().find(fragment) != std::string::npos;
    }

  private:
    void Serve(LoopbackServer::Connection& c) {
        c.ReadRequest();
        std::unique_lock lock(mutex_);
        const std::string answer = answer_;
        lock.unlock();
        if (answer == kEndless) {
            c.Send("HTTP/1.0 200 OK\r\n\r\n<html>");
            c.WaitForClose(20000);
        } else {
            c.Send(answer.starts_with("HTTP/")
                       ? answer
                       : "HTTP/1.0 200 OK\r\n\r\n<html><TOVAL>" + answer + "</TOVAL>");
        }
    }
    mutable std::mutex mutex_;
    std::string answer_ = ":NOTFOUND";
    LoopbackServer server_{[this](LoopbackServer::Connection& c) { Serve(c); }};
};

}  // namespace toval::test
