// A lyric service on 127.0.0.1 that sends one scripted answer to every
// request, for the tool's tests and the Windows program's evening.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <utility>

#include "posix/LoopbackServer.h"

namespace toval::test {

// The answer is a body for the envelope, or kEndless (the head, then
// silence); ":NOTFOUND" until set.
class FakeLyricService {
  public:
    static constexpr char kEndless[] = "endless";
    std::string Host() const { return "127.0.0.1:" + std::to_string(server_.Port()); }
    void setAnswer(std::string answer) {
        std::lock_guard lock(mutex_);
        answer_ = std::move(answer);
    }
    // Whether the last request holds fragment ("": whether any came).
    bool LastAsked(const std::string& fragment) const {
        std::lock_guard lock(mutex_);
        return !last_.empty() && last_.find(fragment) != std::string::npos;
    }

  private:
    void Serve(LoopbackServer::Connection& c) {
        const std::string request = c.ReadRequest();
        std::unique_lock lock(mutex_);
        last_ = request;
        const std::string answer = answer_;
        lock.unlock();
        if (answer == kEndless) {
            // Silence until the client gives up and closes.
            std::string rest;
            c.Send("HTTP/1.0 200 OK\r\n\r\n<html>");
            c.Read(rest, SIZE_MAX);
        } else {
            c.Send("HTTP/1.0 200 OK\r\n\r\n<html><TOVAL>" + answer + "</TOVAL>");
        }
    }
    mutable std::mutex mutex_;
    std::string answer_ = ":NOTFOUND";
    std::string last_;
    LoopbackServer server_{[this](LoopbackServer::Connection& c) { Serve(c); }};
};

}  // namespace toval::test
