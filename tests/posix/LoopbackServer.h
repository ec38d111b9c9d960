// A tiny HTTP server on 127.0.0.1, on a port the system picks, serving one
// connection at a time on its own thread with a scripted handler. Every
// blocking step has a time limit and the thread ends with the object, so a
// test can never hang on it.
#pragma once

#ifdef _WIN32
#include "win32/PosixSockets.h"  // Winsock under the names used here
#else
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace toval::test {
inline void CloseSocket(int fd) {
    ::close(fd);
}
inline void SetTimeouts(int fd, int seconds) {
    timeval limit{seconds, 0};
    ::setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
}
}  // namespace toval::test
#endif

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

namespace toval::test {

class LoopbackServer {
  public:
    // One accepted connection, as the handler sees it.
    class Connection {
      public:
        explicit Connection(int fd) : fd_(fd) {}

        // Reads one request: the head up to the blank line, then as many body
        // bytes as its Content-Length names.
        std::string ReadRequest() {
            std::string request;
            size_t end;
            while ((end = request.find("\r\n\r\n")) == std::string::npos &&
                   Read(request, request.size() + 1)) {
            }
            if (end != std::string::npos) {
                const size_t at = request.find("\r\nContent-Length: ");
                if (at < end) end += std::strtoul(request.c_str() + at + 18, nullptr, 10);
                Read(request, end + 4);
            }
            return request;
        }

        // Reads until `into` holds at least `size` bytes (at most 1 MiB); false
        // when the peer closes or sends nothing for five seconds.
        bool Read(std::string& into, size_t size) {
            char buffer[4096];
            while (into.size() < size && into.size() < (1u << 20)) {
                const ssize_t n = ::recv(fd_, buffer, sizeof buffer, 0);
                if (n <= 0) return false;
                into.append(buffer, static_cast<size_t>(n));
            }
            return into.size() >= size;
        }

        // Sends all bytes, or as many as the peer takes before it goes.
        void Send(std::string_view bytes) {
            while (!bytes.empty()) {
                const ssize_t n = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
                if (n <= 0) return;
                bytes.remove_prefix(static_cast<size_t>(n));
            }
        }

      private:
        int fd_;
    };

    using Handler = std::function<void(Connection&)>;

    explicit LoopbackServer(Handler handler) : handler_(std::move(handler)) {
        listen_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (listen_ < 0 || ::bind(listen_, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
            ::listen(listen_, 8) != 0 ||
            ::getsockname(listen_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
            return;
        }
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { Serve(); });
    }

    ~LoopbackServer() {
        stop_ = true;
        if (thread_.joinable()) thread_.join();
        if (listen_ >= 0) CloseSocket(listen_);
    }

    // The port, or 0 when the server could not start.
    int32_t Port() const { return port_; }

    // A blocking connection to 127.0.0.1:port, or -1.
    static int ConnectLoopback(int port) {
        const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<uint16_t>(port));
        if (fd >= 0 && ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
            return fd;
        }
        if (fd >= 0) CloseSocket(fd);
        return -1;
    }

  private:
    void Serve() {
        while (!stop_) {
            pollfd p{listen_, POLLIN, 0};
            if (::poll(&p, 1, 10) <= 0) continue;
            const int fd = ::accept4(listen_, nullptr, nullptr, SOCK_CLOEXEC);
            if (fd < 0) continue;
            SetTimeouts(fd, 5);
            Connection connection(fd);
            handler_(connection);
            CloseSocket(fd);
        }
    }

    Handler handler_;
    int listen_ = -1;
    int32_t port_ = 0;
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

}  // namespace toval::test
