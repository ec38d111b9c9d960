// How many lyrics one address may send in an hour: a sliding window per
// address. The table forgets addresses whose window is empty, so it stays as
// small as the set of recent senders.
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <unordered_map>

namespace toval::service {

class cSendLimit {
  public:
    // perHour 0: no limit.
    explicit cSendLimit(int32_t perHour) : perHour_(perHour) {}

    // Counts a send at `now` (seconds) when the address is under its limit;
    // false, and nothing counted, when it is not.
    bool Take(const std::string& address, int64_t now);
    // Gives back a send that was counted but not stored.
    void GiveBack(const std::string& address);

  private:
    static constexpr int64_t kWindow = 3600;
    void Sweep(int64_t now);

    int32_t perHour_;
    std::mutex mutex_;
    std::unordered_map<std::string, std::deque<int64_t>> sends_;
    int64_t lastSweep_ = 0;
};

}  // namespace toval::service
