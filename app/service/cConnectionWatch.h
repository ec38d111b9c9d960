// Ends connections that the service has held longer than a deadline. The HTTP
// library times out a read that gets no byte at all, but a client that sends
// one byte a second, or a request line without end, would hold its thread for
// as long as it likes. Every quarter second this looks at the process's open
// sockets, finds those accepted on the service's port and shuts down the ones
// older than the deadline: the thread serving it sees the end at once and
// closes it. Linux only (/proc/self/fd).
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <unordered_set>

namespace toval::service {

class cConnectionWatch {
  public:
    cConnectionWatch(int port, std::chrono::milliseconds deadline);
    ~cConnectionWatch();

    // Connections ended so far.
    uint64_t Ended() const { return ended_; }

  private:
    void Run();
    void Scan();

    int port_;
    std::chrono::milliseconds deadline_;
    std::unordered_map<uint64_t, std::chrono::steady_clock::time_point> seen_;  // by socket inode
    std::unordered_set<uint64_t> shut_;
    std::atomic<uint64_t> ended_{0};
    std::mutex mutex_;
    std::condition_variable wake_;
    bool stop_ = false;
    std::thread thread_;
};

}  // namespace toval::service
