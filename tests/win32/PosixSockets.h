// Winsock under the POSIX names that the loopback test servers use, so that
// the Windows socket adapter runs against the very same servers.
#pragma once

#include <winsock2.h>
#include <ws2tcpip.h>

// The servers keep sockets in int, as on POSIX; Winsock handles fit in it.
#pragma GCC diagnostic ignored "-Wnarrowing"

#define SOCK_CLOEXEC 0
#define MSG_NOSIGNAL 0

inline int poll(pollfd* fds, unsigned long count, int timeoutMs) {
    return WSAPoll(fds, count, timeoutMs);
}

inline int accept4(int fd, sockaddr* address, socklen_t* length, int) {
    return static_cast<int>(accept(static_cast<SOCKET>(fd), address, length));
}

namespace toval::test {

inline const bool kWinsockStarted = [] {
    WSADATA data;
    return WSAStartup(MAKEWORD(2, 2), &data) == 0;
}();

inline void CloseSocket(int fd) {
    closesocket(static_cast<SOCKET>(fd));
}

inline void SetTimeouts(int fd, int seconds) {
    const DWORD limit = static_cast<DWORD>(seconds) * 1000;
    setsockopt(static_cast<SOCKET>(fd), SOL_SOCKET, SO_SNDTIMEO,
               reinterpret_cast<const char*>(&limit), sizeof limit);
    setsockopt(static_cast<SOCKET>(fd), SOL_SOCKET, SO_RCVTIMEO,
               reinterpret_cast<const char*>(&limit), sizeof limit);
}

}  // namespace toval::test
