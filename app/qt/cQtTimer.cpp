#include "cQtTimer.h"

namespace toval {

cQtTimer::cQtTimer() {
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, [this] {
        // The handler may drop the timer's owner: copy the callback first.
        if (auto tick = onTimer) tick();
    });
}

void cQtTimer::Arm() {
    if (enabled_ && interval_ > 0)
        timer_.start(interval_);  // (re)starts the period
    else
        timer_.stop();
}

void cQtTimer::setInterval(int32_t ms) {
    interval_ = ms;
    Arm();
}

void cQtTimer::setEnabled(bool enabled) {
    if (enabled == enabled_) return;
    enabled_ = enabled;
    Arm();
}

}  // namespace toval
