// A small event loop for POSIX programs: it polls the sockets of its
// cPosixSocket objects, raises their events and runs its cPosixTimer ticks, so
// that the program's event-driven parts run without a window toolkit (the
// command-line tool, the loopback tests). One thread; handlers may create,
// close and destroy sockets and timers.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace toval {

class cPosixSocket;
class cPosixTimer;

class cPosixLoop {
  public:
    cPosixLoop() = default;
    cPosixLoop(const cPosixLoop&) = delete;
    cPosixLoop& operator=(const cPosixLoop&) = delete;

    // One turn: waits up to maxWaitMs for a socket or a due timer, then raises
    // the events that are ready.
    void RunOnce(int32_t maxWaitMs);
    // Runs turns until done() holds or limitMs have passed; returns done().
    bool RunUntil(const std::function<bool()>& done, int32_t limitMs);

  private:
    friend class cPosixSocket;
    friend class cPosixTimer;

    template <class T>
    struct Entry {
        T* object;
        uint64_t serial;  // tells a new object apart from a dropped one at the same address
    };

    void Add(cPosixSocket* socket);
    void Remove(cPosixSocket* socket);
    void Add(cPosixTimer* timer);
    void Remove(cPosixTimer* timer);
    bool Holds(const Entry<cPosixSocket>& entry) const;
    bool Holds(const Entry<cPosixTimer>& entry) const;

    std::vector<Entry<cPosixSocket>> sockets_;
    std::vector<Entry<cPosixTimer>> timers_;
    uint64_t nextSerial_ = 1;
};

}  // namespace toval
