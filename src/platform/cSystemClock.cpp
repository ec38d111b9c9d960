#include <chrono>
#include <ctime>

#include "platform/Clock.h"

namespace toval {

cDateTime cSystemClock::Now() {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    // One thread only, so the shared buffer of localtime is safe here.
    const std::tm* local = std::localtime(&now);
    cDateTime t;
    if (!local) return t;
    t.Year = local->tm_year + 1900;
    t.Month = local->tm_mon + 1;
    t.Day = local->tm_mday;
    t.Hour = local->tm_hour;
    t.Minute = local->tm_min;
    t.Second = local->tm_sec;
    return t;
}

}  // namespace toval
