#include "cElasticPool.h"

#include <algorithm>
#include <chrono>

namespace toval::service {

namespace {
constexpr auto kIdleEnd = std::chrono::seconds(30);
}

cElasticPool::cElasticPool(size_t minThreads, size_t maxThreads)
    : min_(std::max<size_t>(minThreads, 1)), max_(std::max(maxThreads, min_)) {
    std::lock_guard lock(mutex_);
    for (size_t i = 0; i < min_; ++i)
        threads_.emplace_back([this] { Work(true); });
}

cElasticPool::~cElasticPool() {
    shutdown();
}

void cElasticPool::enqueue(std::function<void()> fn) {
    {
        std::lock_guard lock(mutex_);
        if (stop_) return;
        jobs_.push_back(std::move(fn));
        Reap();
        if (idle_ < jobs_.size() && threads_.size() < max_) {
            threads_.emplace_back([this] { Work(false); });
        }
    }
    wake_.notify_one();
}

void cElasticPool::shutdown() {
    std::vector<std::thread> threads;
    {
        std::lock_guard lock(mutex_);
        stop_ = true;
        threads.swap(threads_);
    }
    wake_.notify_all();
    for (auto& t : threads)
        if (t.joinable()) t.join();
}

// Joins the threads that ended idle (under the lock; they have left Work).
void cElasticPool::Reap() {
    for (const auto id : ended_) {
        const auto it = std::find_if(threads_.begin(), threads_.end(),
                                     [&](const std::thread& t) { return t.get_id() == id; });
        if (it != threads_.end()) {
            it->join();
            threads_.erase(it);
        }
    }
    ended_.clear();
}

void cElasticPool::Work(bool permanent) {
    std::unique_lock lock(mutex_);
    for (;;) {
        ++idle_;
        const auto ready = [&] { return stop_ || !jobs_.empty(); };
        bool woke = true;
        if (permanent) {
            wake_.wait(lock, ready);
        } else {
            woke = wake_.wait_for(lock, kIdleEnd, ready);
        }
        --idle_;
        // Jobs still queued at shutdown are run: each closes its connection.
        if (jobs_.empty() && (stop_ || !woke)) {
            if (!stop_) ended_.push_back(std::this_thread::get_id());
            return;
        }
        auto job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        job();
        lock.lock();
    }
}

}  // namespace toval::service
