#include "cQtSocket.h"

#include <QTimer>
#include <limits>

namespace toval {

namespace {

int32_t Clamp32(qint64 value) {
    if (value < 0) return 0;
    return value > std::numeric_limits<int32_t>::max() ? std::numeric_limits<int32_t>::max()
                                                       : static_cast<int32_t>(value);
}

int32_t WinsockNumber(QAbstractSocket::SocketError error) {
    switch (error) {
        case QAbstractSocket::ConnectionRefusedError:
            return kSckConnectionRefused;
        case QAbstractSocket::HostNotFoundError:
            return kSckHostNotFound;
        case QAbstractSocket::SocketTimeoutError:
            return kSckTimedOut;
        case QAbstractSocket::NetworkError:
            return kSckConnectionReset;
        default:
            return kSckUnknownError;
    }
}

}  // namespace

cQtSocket::~cQtSocket() {
    *alive_ = false;
    Drop();
}

void cQtSocket::Drop() {
    if (!socket_) return;
    socket_->disconnect();
    socket_->abort();
    socket_->deleteLater();
    socket_ = nullptr;
}

void cQtSocket::Close() {
    Drop();
    in_.clear();
    state_ = kSckClosed;
}

void cQtSocket::Connect(const std::string& host, int32_t port) {
    Close();
    if (port <= 0 || port > 65535) {
        // Like every outcome, the error arrives from the event loop.
        state_ = kSckConnecting;
        socket_ = new QTcpSocket();
        QTimer::singleShot(0, socket_, [this] { Fail(kSckInvalidArg, "Invalid argument"); });
        return;
    }
    socket_ = new QTcpSocket();
    state_ = kSckResolvingHost;
    QTcpSocket* s = socket_;
    QObject::connect(s, &QTcpSocket::connected, s, [this] {
        state_ = kSckConnected;
        if (auto handler = onConnect) handler();
    });
    QObject::connect(s, &QTcpSocket::hostFound, s, [this] { state_ = kSckConnecting; });
    QObject::connect(s, &QTcpSocket::readyRead, s, [this] {
        if (TakeAvailable() > 0)
            if (auto handler = onDataArrival) handler(Clamp32(static_cast<qint64>(in_.size())));
    });
    QObject::connect(s, &QTcpSocket::bytesWritten, s, [this, s](qint64 sent) {
        if (auto handler = onSendProgress) handler(Clamp32(sent), Clamp32(s->bytesToWrite()));
    });
    QObject::connect(s, &QTcpSocket::errorOccurred, s,
                     [this](QAbstractSocket::SocketError e) { OnError(e); });
    QObject::connect(s, &QTcpSocket::disconnected, s, [this] { OnDisconnected(); });
    s->connectToHost(QString::fromStdString(host), static_cast<quint16>(port));
}

qint64 cQtSocket::TakeAvailable() {
    if (!socket_) return 0;
    const QByteArray bytes = socket_->readAll();
    in_.append(bytes.constData(), static_cast<size_t>(bytes.size()));
    return bytes.size();
}

void cQtSocket::OnDisconnected() {
    if (state_ != kSckConnected) return;
    // The peer closed: every byte it sent is reported before the close.
    state_ = kSckClosing;
    const auto alive = alive_;
    if (TakeAvailable() > 0)
        if (auto handler = onDataArrival) handler(Clamp32(static_cast<qint64>(in_.size())));
    if (!*alive || state_ != kSckClosing) return;  // the handler closed or dropped us
    if (auto handler = onClose) handler();
}

void cQtSocket::OnError(QAbstractSocket::SocketError error) {
    // The peer's orderly close is no error: disconnected follows.
    if (error == QAbstractSocket::RemoteHostClosedError && state_ == kSckConnected) {
        OnDisconnected();
        return;
    }
    if (state_ == kSckClosing || state_ == kSckClosed) return;
    Fail(WinsockNumber(error), socket_ ? socket_->errorString().toStdString() : std::string());
}

void cQtSocket::Fail(int32_t number, const std::string& text) {
    Drop();
    state_ = kSckError;
    if (auto handler = onError) handler(number, text);
}

void cQtSocket::SendData(const std::string& bytes) {
    if (state_ != kSckConnected || !socket_) {
        const auto alive = alive_;
        QTimer::singleShot(0, [this, alive] {
            if (!*alive) return;
            if (auto handler = onError) handler(kSckBadState, "Wrong protocol or connection state");
        });
        return;
    }
    socket_->write(bytes.data(), static_cast<qint64>(bytes.size()));
}

void cQtSocket::GetData(std::string& bytes) {
    TakeAvailable();
    bytes = std::move(in_);
    in_.clear();
}

}  // namespace toval
