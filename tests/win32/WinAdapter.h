// The Windows adapters of the Socket and Timer ports, for the loopback suites
// shared with the POSIX adapters: events come from the thread's message loop.
#pragma once

#include <functional>
#include <memory>

#include "cWinSocket.h"
#include "cWinTimer.h"
#include "cWindow.h"

namespace toval::test {

struct WinAdapter {
    std::shared_ptr<Socket> MakeSocket() { return std::make_shared<cWinSocket>(); }
    std::shared_ptr<Timer> MakeTimer() { return std::make_shared<cWinTimer>(); }
    bool RunUntil(const std::function<bool()>& done, int32_t limitMs) {
        return PumpUntil(done, limitMs);
    }
};

}  // namespace toval::test
