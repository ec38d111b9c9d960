// A bounded set of database connections shared by the request threads: a
// thread takes one for the length of a request and gives it back. Connections
// are opened on demand up to the capacity; one that failed is dropped and a
// fresh one is opened by the next taker, so a restarted database heals.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace toval::service {

template <class T>
class cPool {
  public:
    using Opener = std::function<std::unique_ptr<T>()>;

    class Lease {
      public:
        Lease(cPool& pool, std::unique_ptr<T> item) : pool_(pool), item_(std::move(item)) {}
        ~Lease() { pool_.Return(std::move(item_)); }
        Lease(const Lease&) = delete;
        Lease& operator=(const Lease&) = delete;
        // nullptr when no connection could be opened.
        T* get() { return item_.get(); }
        T* operator->() { return item_.get(); }
        T& operator*() { return *item_; }
        // Drops a connection that failed.
        void Discard() { item_.reset(); }

      private:
        cPool& pool_;
        std::unique_ptr<T> item_;
    };

    cPool(size_t capacity, Opener open)
        : capacity_(capacity ? capacity : 1), open_(std::move(open)) {}

    Lease Take() {
        std::unique_lock lock(mutex_);
        wake_.wait(lock, [&] { return !free_.empty() || out_ < capacity_; });
        ++out_;
        if (!free_.empty()) {
            auto item = std::move(free_.back());
            free_.pop_back();
            return Lease(*this, std::move(item));
        }
        lock.unlock();
        std::unique_ptr<T> item;
        try {
            item = open_();
        } catch (...) {
            item.reset();
        }
        return Lease(*this, std::move(item));
    }

  private:
    void Return(std::unique_ptr<T> item) {
        {
            std::lock_guard lock(mutex_);
            --out_;
            if (item) free_.push_back(std::move(item));
        }
        wake_.notify_one();
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    std::vector<std::unique_ptr<T>> free_;
    size_t out_ = 0;  // leases handed out, each holding or about to hold a connection
    size_t capacity_;
    Opener open_;
};

}  // namespace toval::service
