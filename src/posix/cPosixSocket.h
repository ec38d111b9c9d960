// The Socket port on a non-blocking POSIX TCP socket, run by a cPosixLoop.
// Numeric hosts connect without a lookup; a host name is resolved with the
// system's (blocking) resolver when Connect is called.
#pragma once

#include <memory>
#include <string>

#include "platform/Socket.h"
#include "posix/cPosixLoop.h"

namespace toval {

class cPosixSocket final : public Socket {
  public:
    explicit cPosixSocket(cPosixLoop& loop);
    ~cPosixSocket() override;
    cPosixSocket(const cPosixSocket&) = delete;
    cPosixSocket& operator=(const cPosixSocket&) = delete;

    void Connect(const std::string& host, int32_t port) override;
    void SendData(const std::string& bytes) override;
    void GetData(std::string& bytes) override;
    void Close() override;
    SocketState State() const override { return state_; }

  private:
    friend class cPosixLoop;

    // What the loop should poll for; 0 when nothing.
    short Wanted() const;
    int Fd() const { return fd_; }
    // Raises an event that Connect or SendData could not raise in the call.
    void RunDeferred();
    bool HasDeferred() const { return deferredError_ != 0; }
    void OnReady(short revents);

    void Defer(int32_t number, std::string text);
    // Closes the descriptor, enters the error state and raises onError.
    void Fail(int32_t number, const std::string& text);
    void FailErrno(int err);
    void WriteSome();
    void ReadSome();

    cPosixLoop& loop_;
    int fd_ = -1;
    SocketState state_ = kSckClosed;
    std::string out_;
    std::string in_;
    int32_t deferredError_ = 0;
    std::string deferredText_;
    // Changes with every Connect and Close: a handler that did either ends the
    // dispatch of the old connection's readiness.
    uint64_t generation_ = 0;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace toval
