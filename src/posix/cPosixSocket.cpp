#include "posix/cPosixSocket.h"

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace toval {

namespace {

// Bytes read per turn at most, so that one busy peer cannot starve the loop.
constexpr size_t kReadChunk = 64 * 1024;
constexpr int kReadsPerTurn = 16;

int32_t WinsockNumber(int err) {
    switch (err) {
        case ECONNREFUSED:
            return kSckConnectionRefused;
        case ECONNRESET:
        case EPIPE:
        case ECONNABORTED:
            return kSckConnectionReset;
        case ETIMEDOUT:
            return kSckTimedOut;
        case EINVAL:
            return kSckInvalidArg;
        default:
            return kSckUnknownError;
    }
}

std::string ErrnoText(int err) {
    return std::system_category().message(err);
}

}  // namespace

cPosixSocket::cPosixSocket(cPosixLoop& loop) : loop_(loop) {
    loop_.Add(this);
}

cPosixSocket::~cPosixSocket() {
    *alive_ = false;
    Close();
    loop_.Remove(this);
}

void cPosixSocket::Connect(const std::string& host, int32_t port) {
    Close();
    state_ = kSckConnecting;
    if (port < 1 || port > 65535) {
        Defer(kSckInvalidArg, "invalid port");
        return;
    }
    if (host.empty() || host.find('\0') != std::string::npos) {
        Defer(kSckHostNotFound, "host not found");
        return;
    }
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICSERV;
    addrinfo* found = nullptr;
    const std::string service = std::to_string(port);
    if (getaddrinfo(host.c_str(), service.c_str(), &hints, &found) != 0 || !found) {
        Defer(kSckHostNotFound, "host not found");
        return;
    }
    int lastErr = ECONNREFUSED;
    for (addrinfo* at = found; at; at = at->ai_next) {
        const int fd = ::socket(at->ai_family, at->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC,
                                at->ai_protocol);
        if (fd < 0) {
            lastErr = errno;
            continue;
        }
        if (::connect(fd, at->ai_addr, at->ai_addrlen) == 0 || errno == EINPROGRESS) {
            fd_ = fd;
            break;
        }
        lastErr = errno;
        ::close(fd);
    }
    freeaddrinfo(found);
    if (fd_ < 0) Defer(WinsockNumber(lastErr), ErrnoText(lastErr));
}

void cPosixSocket::SendData(const std::string& bytes) {
    if (state_ != kSckConnected) {
        if (deferredError_ == 0) Defer(kSckBadState, "not connected");
        return;
    }
    out_ += bytes;
}

void cPosixSocket::GetData(std::string& bytes) {
    bytes = std::move(in_);
    in_.clear();
}

void cPosixSocket::Close() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
    out_.clear();
    in_.clear();
    deferredError_ = 0;
    deferredText_.clear();
    state_ = kSckClosed;
    ++generation_;
}

short cPosixSocket::Wanted() const {
    if (fd_ < 0) return 0;
    if (state_ == kSckConnecting) return POLLOUT;
    if (state_ == kSckConnected) return static_cast<short>(POLLIN | (out_.empty() ? 0 : POLLOUT));
    return 0;
}

void cPosixSocket::Defer(int32_t number, std::string text) {
    deferredError_ = number;
    deferredText_ = std::move(text);
}

void cPosixSocket::RunDeferred() {
    if (deferredError_ == 0) return;
    const int32_t number = deferredError_;
    const std::string text = std::move(deferredText_);
    deferredError_ = 0;
    deferredText_.clear();
    Fail(number, text);
}

void cPosixSocket::Fail(int32_t number, const std::string& text) {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
    out_.clear();
    state_ = kSckError;
    ++generation_;
    auto handler = onError;
    if (handler) handler(number, text);
}

void cPosixSocket::FailErrno(int err) {
    Fail(WinsockNumber(err), ErrnoText(err));
}

void cPosixSocket::OnReady(short revents) {
    const std::shared_ptr<bool> alive = alive_;
    const uint64_t generation = generation_;
    const auto same = [&] { return *alive && generation_ == generation; };

    if (state_ == kSckConnecting) {
        int err = 0;
        socklen_t len = sizeof err;
        if (getsockopt(fd_, SOL_SOCKET, SO_ERROR, &err, &len) != 0) err = errno;
        if (err == 0 && (revents & POLLOUT)) {
            state_ = kSckConnected;
            auto handler = onConnect;
            if (handler) handler();
        } else {
            FailErrno(err != 0 ? err : ECONNREFUSED);
        }
        return;
    }
    if (state_ != kSckConnected) return;
    if ((revents & POLLOUT) && !out_.empty()) {
        WriteSome();
        if (!same()) return;
    }
    if (revents & (POLLIN | POLLHUP | POLLERR)) ReadSome();
}

void cPosixSocket::WriteSome() {
    const ssize_t n = ::send(fd_, out_.data(), out_.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (n < 0) {
        if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR) return;
        FailErrno(errno);
        return;
    }
    out_.erase(0, static_cast<size_t>(n));
    auto handler = onSendProgress;
    if (handler) handler(static_cast<int32_t>(n), static_cast<int32_t>(out_.size()));
}

void cPosixSocket::ReadSome() {
    const std::shared_ptr<bool> alive = alive_;
    const uint64_t generation = generation_;
    bool peerClosed = false;
    int err = 0;
    size_t got = 0;
    char buffer[kReadChunk];
    for (int i = 0; i < kReadsPerTurn; ++i) {
        const ssize_t n = ::recv(fd_, buffer, sizeof buffer, MSG_DONTWAIT);
        if (n > 0) {
            in_.append(buffer, static_cast<size_t>(n));
            got += static_cast<size_t>(n);
            continue;
        }
        if (n == 0) {
            peerClosed = true;
        } else if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
            err = errno;
        }
        break;
    }
    if (got > 0) {
        auto handler = onDataArrival;
        const size_t waiting = in_.size();
        if (handler) handler(waiting > INT32_MAX ? INT32_MAX : static_cast<int32_t>(waiting));
        if (!*alive || generation_ != generation) return;
    }
    if (err != 0) {
        FailErrno(err);
    } else if (peerClosed) {
        state_ = kSckClosing;
        ::close(fd_);
        fd_ = -1;
        ++generation_;
        auto handler = onClose;
        if (handler) handler();
    }
}

}  // namespace toval
