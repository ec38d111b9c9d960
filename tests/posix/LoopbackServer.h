// A tiny HTTP server on 127.0.0.1, on a port the system picks, serving one
// connection at a time on its own thread with a scripted handler. Every
// blocking step has a time limit and the thread ends with the object, so a
// test can never hang on it. Also a forwarding proxy that only reaches
// 127.0.0.1.
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

#include <algorithm>
#include <atomic>
#include <cctype>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace toval::test {

class LoopbackServer {
  public:
    // One accepted connection, as the handler sees it.
    class Connection {
      public:
        Connection(LoopbackServer& server, int fd) : server_(server), fd_(fd) {}

        // Reads one request: the head up to the blank line, then as many body
        // bytes as its Content-Length names. Recorded in Requests().
        std::string ReadRequest() {
            std::string request;
            size_t headEnd = std::string::npos;
            while ((headEnd = request.find("\r\n\r\n")) == std::string::npos) {
                if (!ReadMore(request)) break;
            }
            if (headEnd != std::string::npos) {
                const size_t want = headEnd + 4 + ContentLength(request.substr(0, headEnd));
                while (request.size() < want && ReadMore(request)) {
                }
            }
            server_.Record(request);
            return request;
        }

        // Sends all bytes; false when the peer is gone.
        bool Send(std::string_view bytes) {
            while (!bytes.empty()) {
                const ssize_t n = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
                if (n <= 0) return false;
                bytes.remove_prefix(static_cast<size_t>(n));
            }
            return true;
        }

        // Sends bytes in pieces of pieceSize with a pause between them.
        bool SendInPieces(std::string_view bytes, size_t pieceSize, int pauseMs) {
            while (!bytes.empty()) {
                const size_t n = std::min(pieceSize, bytes.size());
                if (!Send(bytes.substr(0, n))) return false;
                bytes.remove_prefix(n);
                if (!bytes.empty()) Pause(pauseMs);
            }
            return true;
        }

        // Sleeps, but wakes when the server stops.
        void Pause(int ms) {
            const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
            while (!server_.stop_ && std::chrono::steady_clock::now() < end) {
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
        }

        // Waits until the client closes (true) or ms pass (false).
        bool WaitForClose(int ms) {
            const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
            while (!server_.stop_ && std::chrono::steady_clock::now() < end) {
                pollfd p{fd_, POLLIN, 0};
                if (::poll(&p, 1, 10) > 0) {
                    char c[4096];
                    if (::recv(fd_, c, sizeof c, 0) <= 0) return true;
                }
            }
            return false;
        }

        int fd() const { return fd_; }
        LoopbackServer* server() const { return &server_; }

      private:
        bool ReadMore(std::string& into) {
            pollfd p{fd_, POLLIN, 0};
            const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
            while (!server_.stop_ && std::chrono::steady_clock::now() < end) {
                if (::poll(&p, 1, 10) <= 0) continue;
                char buffer[4096];
                const ssize_t n = ::recv(fd_, buffer, sizeof buffer, 0);
                if (n <= 0) return false;
                into.append(buffer, static_cast<size_t>(n));
                return into.size() < (1u << 20);
            }
            return false;
        }

        static size_t ContentLength(const std::string& head) {
            std::string lower = head;
            std::transform(lower.begin(), lower.end(), lower.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            const size_t at = lower.find("\r\ncontent-length:");
            if (at == std::string::npos) return 0;
            size_t value = 0;
            for (size_t i = at + 17; i < lower.size() && value < (1u << 20); ++i) {
                if (lower[i] == ' ') continue;
                if (lower[i] < '0' || lower[i] > '9') break;
                value = value * 10 + static_cast<size_t>(lower[i] - '0');
            }
            return value;
        }

        LoopbackServer& server_;
        int fd_;
    };

    using Handler = std::function<void(Connection&)>;

    explicit LoopbackServer(Handler handler) : handler_(std::move(handler)) {
        listen_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = 0;
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

    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    // The port, or 0 when the server could not start.
    int32_t Port() const { return port_; }

    std::vector<std::string> Requests() const {
        std::lock_guard lock(mutex_);
        return requests_;
    }
    int Connections() const { return connections_; }

    // Reads the request, sends the answer (in pieces when pieceSize is not 0)
    // and closes.
    static Handler Answer(std::string answer, size_t pieceSize = 0, int pauseMs = 0) {
        return [answer = std::move(answer), pieceSize, pauseMs](Connection& c) {
            c.ReadRequest();
            c.SendInPieces(answer, pieceSize == 0 ? answer.size() + 1 : pieceSize, pauseMs);
        };
    }

    // A forwarding proxy: takes "METHOD http://127.0.0.1:port/path HTTP/1.0",
    // sends the request on in origin form and relays the whole answer. Any
    // other host gets a 403 and no connection.
    static Handler Proxy() {
        return [](Connection& c) {
            std::string request = c.ReadRequest();
            const std::string prefix = "http://127.0.0.1:";
            const size_t space = request.find(' ');
            if (space == std::string::npos || request.compare(space + 1, prefix.size(), prefix)) {
                c.Send("HTTP/1.0 403 Forbidden\r\n\r\n");
                return;
            }
            const size_t portStart = space + 1 + prefix.size();
            const size_t pathStart = request.find('/', portStart);
            if (pathStart == std::string::npos) return;
            const int port = std::atoi(request.substr(portStart, pathStart - portStart).c_str());
            request.erase(space + 1, pathStart - space - 1);
            const int fd = ConnectLoopback(port);
            if (fd < 0) {
                c.Send("HTTP/1.0 502 Bad Gateway\r\n\r\n");
                return;
            }
            std::string answer;
            Connection origin(*c.server(), fd);
            if (origin.Send(request)) {
                pollfd p{fd, POLLIN, 0};
                char buffer[4096];
                while (::poll(&p, 1, 5000) > 0) {
                    const ssize_t n = ::recv(fd, buffer, sizeof buffer, 0);
                    if (n <= 0) break;
                    answer.append(buffer, static_cast<size_t>(n));
                }
            }
            CloseSocket(fd);
            c.Send(answer);
        };
    }

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

    // A loopback port on which nothing listens (for refused connections).
    static int32_t ClosedPort() {
        LoopbackServer probe{nullptr};
        return probe.Port();
    }

  private:
    friend class Connection;

    void Serve() {
        while (!stop_) {
            pollfd p{listen_, POLLIN, 0};
            if (::poll(&p, 1, 10) <= 0) continue;
            const int fd = ::accept4(listen_, nullptr, nullptr, SOCK_CLOEXEC);
            if (fd < 0) continue;
            ++connections_;
            SetTimeouts(fd, 5);
            if (handler_) {
                Connection connection(*this, fd);
                handler_(connection);
            }
            CloseSocket(fd);
        }
    }

    void Record(const std::string& request) {
        std::lock_guard lock(mutex_);
        requests_.push_back(request);
    }

    Handler handler_;
    int listen_ = -1;
    int32_t port_ = 0;
    std::atomic<bool> stop_{false};
    std::atomic<int> connections_{0};
    mutable std::mutex mutex_;
    std::vector<std::string> requests_;
    std::thread thread_;
};

}  // namespace toval::test
