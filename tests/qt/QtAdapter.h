// The Qt adapters of the Socket and Timer ports as a harness of the loopback
// tests, which run them against the same real servers as the POSIX ones.
#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <functional>
#include <memory>

#include "cQtSocket.h"
#include "cQtTimer.h"

namespace toval::test {

struct QtAdapter {
    QtAdapter() {
        static int argc = 1;
        static char name[] = "test";
        static char* argv[] = {name, nullptr};
        if (!QCoreApplication::instance()) static QCoreApplication app(argc, argv);
    }
    std::shared_ptr<Socket> MakeSocket() { return std::make_shared<cQtSocket>(); }
    std::shared_ptr<Timer> MakeTimer() { return std::make_shared<cQtTimer>(); }
    bool RunUntil(const std::function<bool()>& done, int32_t limitMs) {
        QElapsedTimer clock;
        clock.start();
        while (!done()) {
            if (clock.elapsed() >= limitMs) return false;
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
        }
        return true;
    }
};

}  // namespace toval::test
