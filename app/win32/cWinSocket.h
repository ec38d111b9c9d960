// The Socket port on Winsock. WSAAsyncSelect turns the socket's events into
// messages for a message-only window of its own, and WSAAsyncGetHostByName
// resolves the host name without blocking the message loop. Every event is
// raised from the message loop, never from inside a call.
#pragma once

#include <winsock2.h>

#include <memory>
#include <string>
#include <vector>

#include "cWindow.h"
#include "platform/Socket.h"

namespace toval {

class cWinSocket final : public Socket {
  public:
    cWinSocket();
    ~cWinSocket() override;

    void Connect(const std::string& host, int32_t port) override;
    void SendData(const std::string& bytes) override;
    void GetData(std::string& bytes) override;
    void Close() override;
    SocketState State() const override { return state_; }

  private:
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void Resolved(int32_t error);
    void Selected(int32_t event, int32_t error);
    void Flush();
    void ReadAll();
    // Raises an error from the loop: posted now, raised when it arrives.
    void Defer(int32_t number);
    // Raises onError now; false when the handler dropped this object.
    bool RaiseError(int32_t number);

    cWindow window_;
    SOCKET socket_ = INVALID_SOCKET;
    HANDLE lookup_ = nullptr;
    std::vector<char> hostBuffer_;
    int32_t port_ = 0;
    SocketState state_ = kSckClosed;
    std::string inbox_;
    std::string outbox_;
    // Counts Connect and Close calls; messages posted for an older one are dropped.
    WPARAM generation_ = 0;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

// Starts Winsock once for the process.
bool StartWinsock();

}  // namespace toval
