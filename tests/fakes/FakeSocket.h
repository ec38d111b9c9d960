// A Socket whose peer is the test: it records what the program connects to and
// sends, and raises the events the test scripts (the peer accepts, answers in
// pieces, closes, fails, or the sending makes progress).
#pragma once

#include <string>
#include <vector>

#include "platform/Socket.h"

namespace toval::test {

class FakeSocket : public Socket {
  public:
    struct Target {
        std::string host;
        int32_t port;
    };

    void Connect(const std::string& host, int32_t port) override {
        connects.push_back({host, port});
        inbox.clear();
        state = kSckConnecting;
    }
    void SendData(const std::string& bytes) override { sent += bytes; }
    void GetData(std::string& bytes) override {
        bytes = std::move(inbox);
        inbox.clear();
    }
    void Close() override {
        ++closes;
        inbox.clear();
        state = kSckClosed;
    }
    SocketState State() const override { return state; }

    // --- the peer's side ---
    void accept() {
        state = kSckConnected;
        if (auto handler = onConnect) handler();
    }
    void answer(const std::string& bytes) {
        inbox += bytes;
        if (auto handler = onDataArrival) handler(static_cast<int32_t>(inbox.size()));
    }
    void progress(int32_t bytesSent, int32_t bytesRemaining) {
        if (auto handler = onSendProgress) handler(bytesSent, bytesRemaining);
    }
    void hangUp() {
        state = kSckClosing;
        if (auto handler = onClose) handler();
    }
    void fail(int32_t number = kSckConnectionRefused, const std::string& text = "refused") {
        state = kSckError;
        if (auto handler = onError) handler(number, text);
    }

    std::vector<Target> connects;
    std::string sent;
    std::string inbox;
    SocketState state = kSckClosed;
    int closes = 0;
};

}  // namespace toval::test
