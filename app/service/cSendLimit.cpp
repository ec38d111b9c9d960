#include "cSendLimit.h"

namespace toval::service {

bool cSendLimit::Take(const std::string& address, int64_t now) {
    if (perHour_ <= 0) return true;
    std::lock_guard lock(mutex_);
    if (now - lastSweep_ >= kWindow) Sweep(now);
    auto& times = sends_[address];
    while (!times.empty() && now - times.front() >= kWindow)
        times.pop_front();
    if (times.size() >= static_cast<size_t>(perHour_)) return false;
    times.push_back(now);
    return true;
}

void cSendLimit::GiveBack(const std::string& address) {
    if (perHour_ <= 0) return;
    std::lock_guard lock(mutex_);
    const auto it = sends_.find(address);
    if (it != sends_.end() && !it->second.empty()) it->second.pop_back();
}

void cSendLimit::Sweep(int64_t now) {
    lastSweep_ = now;
    for (auto it = sends_.begin(); it != sends_.end();) {
        if (it->second.empty() || now - it->second.back() >= kWindow) {
            it = sends_.erase(it);
        } else {
            ++it;
        }
    }
}

}  // namespace toval::service
