// A TCP client socket control: connect, send, receive, close, and the events
// that report each step. Win32: Winsock with WSAAsyncSelect; Qt: QTcpSocket;
// Linux tools and tests: cPosixSocket on a cPosixLoop; unit tests: FakeSocket.
//
// Every event is raised from the owner's event loop, never from inside a call
// of the program (Connect, SendData and Close raise nothing themselves). A
// handler may call Close or Connect on the same socket, or drop its owner.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace toval {

// The socket's state (the values of the Winsock control).
enum SocketState : int32_t {
    kSckClosed = 0,
    kSckOpen = 1,
    kSckListening = 2,
    kSckConnectionPending = 3,
    kSckResolvingHost = 4,
    kSckHostResolved = 5,
    kSckConnecting = 6,
    kSckConnected = 7,
    kSckClosing = 8,  // the peer has closed; received bytes may still wait
    kSckError = 9,
};

// Error numbers of onError (the Winsock values, so that every adapter reports alike).
enum SocketError : int32_t {
    kSckBadState = 40006,  // SendData without a connection
    kSckInvalidArg = 10014,
    kSckConnectionReset = 10054,
    kSckTimedOut = 10060,
    kSckConnectionRefused = 10061,
    kSckHostNotFound = 11001,
    kSckUnknownError = 10000,
};

class Socket {
  public:
    virtual ~Socket() = default;

    // Starts connecting (closing a previous connection first, without an
    // event). The outcome arrives as onConnect or as onError.
    virtual void Connect(const std::string& host, int32_t port) = 0;
    // Queues bytes for the peer; progress arrives as onSendProgress. Without a
    // connection the outcome is onError(kSckBadState).
    virtual void SendData(const std::string& bytes) = 0;
    // Moves every received byte not yet taken into `bytes` (replacing its content).
    virtual void GetData(std::string& bytes) = 0;
    // Closes the connection and drops unsent and untaken bytes and pending
    // events. Raises nothing; harmless when already closed.
    virtual void Close() = 0;
    virtual SocketState State() const = 0;

    // Free text that the owner parks on the control.
    const std::string& Tag() const { return tag_; }
    void setTag(std::string tag) { tag_ = std::move(tag); }

    // The connection is open.
    std::function<void()> onConnect;
    // Received bytes wait to be taken; bytesTotal is how many.
    std::function<void(int32_t bytesTotal)> onDataArrival;
    // Bytes went out: bytesSent by this step, bytesRemaining still queued
    // (0 once everything is sent).
    std::function<void(int32_t bytesSent, int32_t bytesRemaining)> onSendProgress;
    // The peer closed the connection, after every onDataArrival of its bytes.
    std::function<void()> onClose;
    // The connection failed or broke; no onClose follows.
    std::function<void(int32_t number, const std::string& description)> onError;

  private:
    std::string tag_;
};

}  // namespace toval
