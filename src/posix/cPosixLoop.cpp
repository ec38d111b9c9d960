#include "posix/cPosixLoop.h"

#include <poll.h>

#include <algorithm>
#include <chrono>

#include "posix/cPosixSocket.h"
#include "posix/cPosixTimer.h"

namespace toval {

namespace {

using clock = std::chrono::steady_clock;

template <class Entries, class T>
void Erase(Entries& entries, T* object) {
    std::erase_if(entries, [object](const auto& entry) { return entry.object == object; });
}

}  // namespace

void cPosixLoop::Add(cPosixSocket* socket) {
    sockets_.push_back({socket, nextSerial_++});
}
void cPosixLoop::Remove(cPosixSocket* socket) {
    Erase(sockets_, socket);
}
void cPosixLoop::Add(cPosixTimer* timer) {
    timers_.push_back({timer, nextSerial_++});
}
void cPosixLoop::Remove(cPosixTimer* timer) {
    Erase(timers_, timer);
}

bool cPosixLoop::Holds(const Entry<cPosixSocket>& entry) const {
    return std::any_of(sockets_.begin(), sockets_.end(), [&](const auto& e) {
        return e.object == entry.object && e.serial == entry.serial;
    });
}

bool cPosixLoop::Holds(const Entry<cPosixTimer>& entry) const {
    return std::any_of(timers_.begin(), timers_.end(), [&](const auto& e) {
        return e.object == entry.object && e.serial == entry.serial;
    });
}

void cPosixLoop::RunOnce(int32_t maxWaitMs) {
    // Events that Connect or SendData could not raise in the call come first,
    // and then nothing waits.
    bool ranDeferred = false;
    for (const auto entry : std::vector(sockets_)) {
        if (Holds(entry) && entry.object->HasDeferred()) {
            entry.object->RunDeferred();
            ranDeferred = true;
        }
    }

    int64_t waitMs = ranDeferred ? 0 : std::max<int32_t>(maxWaitMs, 0);
    const auto now = clock::now();
    for (const auto& entry : timers_) {
        if (!entry.object->Armed()) continue;
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(entry.object->due_ - now).count();
        waitMs = std::clamp<int64_t>(left, 0, waitMs);
    }

    std::vector<pollfd> fds;
    std::vector<Entry<cPosixSocket>> polled;
    std::vector<uint64_t> generations;
    for (const auto& entry : sockets_) {
        const short wanted = entry.object->Wanted();
        if (wanted == 0) continue;
        fds.push_back({entry.object->Fd(), wanted, 0});
        polled.push_back(entry);
        generations.push_back(entry.object->generation_);
    }
    const int ready = ::poll(fds.data(), fds.size(), static_cast<int>(waitMs));
    if (ready > 0) {
        for (size_t i = 0; i < fds.size(); ++i) {
            if (fds[i].revents == 0) continue;
            // A handler may have closed, reopened or dropped this socket meanwhile.
            if (!Holds(polled[i]) || polled[i].object->generation_ != generations[i]) continue;
            polled[i].object->OnReady(fds[i].revents);
        }
    }

    const auto later = clock::now();
    for (const auto entry : std::vector(timers_)) {
        if (Holds(entry)) entry.object->Fire(later);
    }
}

bool cPosixLoop::RunUntil(const std::function<bool()>& done, int32_t limitMs) {
    const auto end = clock::now() + std::chrono::milliseconds(std::max<int32_t>(limitMs, 0));
    while (!done()) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - clock::now()).count();
        if (left <= 0) return done();
        RunOnce(static_cast<int32_t>(std::min<int64_t>(left, 50)));
    }
    return true;
}

}  // namespace toval
