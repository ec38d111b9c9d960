#include "cWinSocket.h"

#include <ws2tcpip.h>

namespace toval {

namespace {

constexpr UINT kMsgSelect = WM_APP + 1;
constexpr UINT kMsgResolved = WM_APP + 2;
constexpr UINT kMsgError = WM_APP + 3;
constexpr UINT kMsgFlush = WM_APP + 4;

// Bytes per recv, and reads per event, so that one busy peer cannot starve the loop.
constexpr int kReadChunk = 64 * 1024;

std::string Describe(int32_t number) {
    switch (number) {
        case kSckConnectionRefused:
            return "connection refused";
        case kSckHostNotFound:
            return "host not found";
        case kSckInvalidArg:
            return "invalid argument";
        case kSckConnectionReset:
            return "connection reset";
        case kSckTimedOut:
            return "timed out";
        case kSckBadState:
            return "not connected";
        default:
            return "socket error " + std::to_string(number);
    }
}

// The Winsock numbers the port names pass through; the rest count as unknown.
int32_t PortNumber(int error) {
    switch (error) {
        case WSAECONNREFUSED:
        case WSAHOST_NOT_FOUND:
        case WSAEFAULT:
        case WSAECONNRESET:
        case WSAETIMEDOUT:
            return error;
        case WSAECONNABORTED:
            return kSckConnectionReset;
        case WSANO_DATA:
        case WSATRY_AGAIN:
        case WSANO_RECOVERY:
            return kSckHostNotFound;
        case WSAEINVAL:
            return kSckInvalidArg;
        default:
            return kSckUnknownError;
    }
}

}  // namespace

bool StartWinsock() {
    static const bool started = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }();
    return started;
}

cWinSocket::cWinSocket() : hostBuffer_(MAXGETHOSTSTRUCT) {
    StartWinsock();
    window_.Create({.parent = HWND_MESSAGE},
                   [this](UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
                       result = 0;
                       return OnMessage(message, wParam, lParam);
                   });
}

cWinSocket::~cWinSocket() {
    *alive_ = false;
    Close();
}

void cWinSocket::Close() {
    ++generation_;
    if (lookup_) {
        WSACancelAsyncRequest(lookup_);
        lookup_ = nullptr;
    }
    if (socket_ != INVALID_SOCKET) {
        WSAAsyncSelect(socket_, window_.Hwnd(), 0, 0);
        closesocket(socket_);
        socket_ = INVALID_SOCKET;
    }
    inbox_.clear();
    outbox_.clear();
    state_ = kSckClosed;
}

void cWinSocket::Defer(int32_t number) {
    state_ = kSckError;
    PostMessageW(window_.Hwnd(), kMsgError, generation_, number);
}

bool cWinSocket::RaiseError(int32_t number) {
    state_ = kSckError;
    const auto alive = alive_;
    if (onError) onError(number, Describe(number));
    return *alive;
}

void cWinSocket::Connect(const std::string& host, int32_t port) {
    Close();
    if (port < 1 || port > 65535) {
        Defer(kSckInvalidArg);
        return;
    }
    if (host.empty() || host.find('\0') != std::string::npos) {
        Defer(kSckHostNotFound);
        return;
    }
    port_ = port;
    state_ = kSckResolvingHost;
    lookup_ = WSAAsyncGetHostByName(window_.Hwnd(), kMsgResolved, host.c_str(), hostBuffer_.data(),
                                    static_cast<int>(hostBuffer_.size()));
    if (!lookup_) Defer(kSckHostNotFound);
}

void cWinSocket::SendData(const std::string& bytes) {
    if (state_ != kSckConnected) {
        PostMessageW(window_.Hwnd(), kMsgError, generation_, kSckBadState);
        return;
    }
    outbox_ += bytes;
    PostMessageW(window_.Hwnd(), kMsgFlush, generation_, 0);
}

void cWinSocket::GetData(std::string& bytes) {
    bytes.swap(inbox_);
    inbox_.clear();
}

bool cWinSocket::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case kMsgError:
            if (wParam == generation_) RaiseError(static_cast<int32_t>(lParam));
            return true;
        case kMsgFlush:
            if (wParam == generation_) Flush();
            return true;
        case kMsgResolved:
            if (lookup_ && reinterpret_cast<HANDLE>(wParam) == lookup_) {
                lookup_ = nullptr;
                Resolved(WSAGETASYNCERROR(lParam));
            }
            return true;
        case kMsgSelect:
            if (socket_ != INVALID_SOCKET && static_cast<SOCKET>(wParam) == socket_)
                Selected(WSAGETSELECTEVENT(lParam), WSAGETSELECTERROR(lParam));
            return true;
        default:
            return false;
    }
}

void cWinSocket::Resolved(int32_t error) {
    const auto* host = reinterpret_cast<const hostent*>(hostBuffer_.data());
    if (error != 0 || host->h_addrtype != AF_INET || !host->h_addr_list || !host->h_addr_list[0]) {
        RaiseError(kSckHostNotFound);
        return;
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<u_short>(port_));
    memcpy(&address.sin_addr, host->h_addr_list[0], sizeof address.sin_addr);

    socket_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (socket_ == INVALID_SOCKET) {
        RaiseError(PortNumber(WSAGetLastError()));
        return;
    }
    // Also makes the socket non-blocking.
    WSAAsyncSelect(socket_, window_.Hwnd(), kMsgSelect, FD_CONNECT | FD_READ | FD_WRITE | FD_CLOSE);
    state_ = kSckConnecting;
    if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 &&
        WSAGetLastError() != WSAEWOULDBLOCK)
        Defer(PortNumber(WSAGetLastError()));
}

void cWinSocket::Selected(int32_t event, int32_t error) {
    const auto alive = alive_;
    switch (event) {
        case FD_CONNECT:
            if (error != 0) {
                RaiseError(PortNumber(error));
                return;
            }
            state_ = kSckConnected;
            if (onConnect) onConnect();
            return;
        case FD_WRITE:
            Flush();
            return;
        case FD_READ: {
            ReadAll();
            if (!inbox_.empty() && onDataArrival)
                onDataArrival(static_cast<int32_t>(inbox_.size()));
            return;
        }
        case FD_CLOSE:
            if (error != 0 && error != WSAECONNRESET && error != WSAECONNABORTED) {
                RaiseError(PortNumber(error));
                return;
            }
            // What the peer sent before closing comes first.
            ReadAll();
            if (!inbox_.empty() && onDataArrival) {
                onDataArrival(static_cast<int32_t>(inbox_.size()));
                if (!*alive) return;
            }
            if (error != 0) {
                RaiseError(kSckConnectionReset);
                return;
            }
            if (state_ == kSckConnected || state_ == kSckConnecting) {
                state_ = kSckClosing;
                if (onClose) onClose();
            }
            return;
        default:
            return;
    }
}

void cWinSocket::ReadAll() {
    if (socket_ == INVALID_SOCKET) return;
    char buffer[kReadChunk];
    for (int turn = 0; turn < 16; ++turn) {
        const int n = recv(socket_, buffer, sizeof buffer, 0);
        if (n <= 0) return;
        inbox_.append(buffer, static_cast<size_t>(n));
    }
}

void cWinSocket::Flush() {
    if (socket_ == INVALID_SOCKET || state_ != kSckConnected || outbox_.empty()) return;
    int32_t sent = 0;
    while (!outbox_.empty()) {
        const int chunk = static_cast<int>(outbox_.size() < 65536 ? outbox_.size() : 65536);
        const int n = send(socket_, outbox_.data(), chunk, 0);
        if (n <= 0) {
            const int error = WSAGetLastError();
            if (n < 0 && error == WSAEWOULDBLOCK) break;  // FD_WRITE follows
            RaiseError(PortNumber(error));
            return;
        }
        outbox_.erase(0, static_cast<size_t>(n));
        sent += n;
    }
    if (sent > 0 && onSendProgress) onSendProgress(sent, static_cast<int32_t>(outbox_.size()));
}

}  // namespace toval
