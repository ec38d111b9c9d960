#include "cConnectionWatch.h"

#include <arpa/inet.h>
#include <dirent.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <unordered_set>

namespace toval::service {

namespace {

// The inode of the socket behind fd, or 0 when fd is not a socket.
uint64_t SocketInode(int fd) {
    char link[64];
    const std::string path = "/proc/self/fd/" + std::to_string(fd);
    const ssize_t n = ::readlink(path.c_str(), link, sizeof link - 1);
    if (n <= 8) return 0;
    link[n] = 0;
    const std::string text(link);
    if (text.rfind("socket:[", 0) != 0) return 0;
    return std::strtoull(text.c_str() + 8, nullptr, 10);
}

// Whether fd is a connection accepted on the port (not the listening socket).
bool AcceptedOn(int fd, int port) {
    sockaddr_storage local{};
    socklen_t length = sizeof local;
    if (::getsockname(fd, reinterpret_cast<sockaddr*>(&local), &length) != 0) return false;
    int localPort = -1;
    if (local.ss_family == AF_INET) {
        localPort = ntohs(reinterpret_cast<sockaddr_in*>(&local)->sin_port);
    } else if (local.ss_family == AF_INET6) {
        localPort = ntohs(reinterpret_cast<sockaddr_in6*>(&local)->sin6_port);
    }
    if (localPort != port) return false;
    int listening = 0;
    socklen_t size = sizeof listening;
    if (::getsockopt(fd, SOL_SOCKET, SO_ACCEPTCONN, &listening, &size) != 0) return false;
    return listening == 0;
}

}  // namespace

cConnectionWatch::cConnectionWatch(int port, std::chrono::milliseconds deadline)
    : port_(port), deadline_(deadline), thread_([this] { Run(); }) {}

cConnectionWatch::~cConnectionWatch() {
    {
        std::lock_guard lock(mutex_);
        stop_ = true;
    }
    wake_.notify_all();
    thread_.join();
}

void cConnectionWatch::Run() {
    std::unique_lock lock(mutex_);
    while (!wake_.wait_for(lock, std::chrono::milliseconds(250), [&] { return stop_; })) {
        lock.unlock();
        Scan();
        lock.lock();
    }
}

void cConnectionWatch::Scan() {
    DIR* dir = ::opendir("/proc/self/fd");
    if (!dir) return;
    const auto now = std::chrono::steady_clock::now();
    std::unordered_set<uint64_t> present;
    while (const dirent* entry = ::readdir(dir)) {
        char* end = nullptr;
        const long fd = std::strtol(entry->d_name, &end, 10);
        if (end == entry->d_name || *end != 0 || fd == ::dirfd(dir)) continue;
        const uint64_t inode = SocketInode(static_cast<int>(fd));
        if (!inode) continue;
        if (!seen_.count(inode) && !AcceptedOn(static_cast<int>(fd), port_)) continue;
        present.insert(inode);
        const auto [it, added] = seen_.emplace(inode, now);
        // The inode is checked again right before, so a number reused for a
        // new connection in between is left alone.
        if (!added && !shut_.count(inode) && now - it->second > deadline_ &&
            SocketInode(static_cast<int>(fd)) == inode) {
            ::shutdown(static_cast<int>(fd), SHUT_RDWR);
            shut_.insert(inode);
            ++ended_;
        }
    }
    ::closedir(dir);
    for (auto it = seen_.begin(); it != seen_.end();) {
        it = present.count(it->first) ? std::next(it) : seen_.erase(it);
    }
    for (auto it = shut_.begin(); it != shut_.end();) {
        it = present.count(*it) ? std::next(it) : shut_.erase(it);
    }
}

}  // namespace toval::service
