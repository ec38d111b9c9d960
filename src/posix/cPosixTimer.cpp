#include "posix/cPosixTimer.h"

namespace toval {

cPosixTimer::cPosixTimer(cPosixLoop& loop) : loop_(loop) {
    loop_.Add(this);
}

cPosixTimer::~cPosixTimer() {
    loop_.Remove(this);
}

void cPosixTimer::setInterval(int32_t ms) {
    interval_ = ms;
    due_ = clock::now() + std::chrono::milliseconds(interval_ > 0 ? interval_ : 0);
}

void cPosixTimer::setEnabled(bool enabled) {
    if (enabled && !enabled_) {
        due_ = clock::now() + std::chrono::milliseconds(interval_ > 0 ? interval_ : 0);
    }
    enabled_ = enabled;
}

void cPosixTimer::Fire(clock::time_point now) {
    if (!Armed() || now < due_) return;
    due_ = now + std::chrono::milliseconds(interval_);
    auto handler = onTimer;
    if (handler) handler();
}

}  // namespace toval
