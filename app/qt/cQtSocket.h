// The Socket port on a QTcpSocket of the program's event loop. Each
// connection gets its own QTcpSocket, so that nothing of a closed one (a late
// signal, unread bytes) reaches the next.
#pragma once

#include <QTcpSocket>
#include <memory>

#include "platform/Socket.h"

namespace toval {

class cQtSocket final : public Socket {
  public:
    cQtSocket() = default;
    ~cQtSocket() override;
    cQtSocket(const cQtSocket&) = delete;
    cQtSocket& operator=(const cQtSocket&) = delete;

    void Connect(const std::string& host, int32_t port) override;
    void SendData(const std::string& bytes) override;
    void GetData(std::string& bytes) override;
    void Close() override;
    SocketState State() const override { return state_; }

  private:
    void Drop();
    void Fail(int32_t number, const std::string& text);
    void OnError(QAbstractSocket::SocketError error);
    void OnDisconnected();
    // Moves what the socket holds into in_; the number of new bytes.
    qint64 TakeAvailable();

    QTcpSocket* socket_ = nullptr;
    SocketState state_ = kSckClosed;
    std::string in_;
    // Cleared when this object goes: a handler may drop the socket's owner.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace toval
