// The request threads: one thread per connection being served, started when
// every thread is busy, up to a cap; an idle thread ends after a while. A
// client that holds its connection open (idle, or trickling its request)
// therefore holds one thread, not the service: a thousand of them still leave
// threads for everybody else until the cap.
#pragma once

#include <httplib.h>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace toval::service {

class cElasticPool : public httplib::TaskQueue {
  public:
    cElasticPool(size_t minThreads, size_t maxThreads);
    ~cElasticPool() override;

    void enqueue(std::function<void()> fn) override;
    void shutdown() override;

  private:
    void Work(bool permanent);
    void Reap();

    size_t min_, max_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<std::function<void()>> jobs_;
    std::vector<std::thread> threads_;
    std::vector<std::thread::id> ended_;
    size_t idle_ = 0;
    bool stop_ = false;
};

}  // namespace toval::service
