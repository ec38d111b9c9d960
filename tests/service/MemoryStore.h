// A store in memory, for the service's unit tests and the fuzz target: the
// service's answers without a database. It holds at most a hundred lyrics and
// then fails like a full disk.
#pragma once

#include <mutex>

#include "iLyricStore.h"

namespace toval::test {

class MemoryStore : public service::iLyricStore {
  public:
    std::optional<std::vector<service::cLyricRecord>> Find(const std::string& artistKey,
                                                           const std::string& titleKey) override {
        std::lock_guard lock(mutex_);
        std::vector<service::cLyricRecord> found;
        for (const auto& r : rows_) {
            if (r.artistKey == artistKey && r.titleKey == titleKey) found.push_back(r);
        }
        return found;
    }
    bool Add(service::cLyricRecord& record) override {
        std::lock_guard lock(mutex_);
        if (rows_.size() >= kCapacity) return false;  // a full disk, as far as the service knows
        record.id = static_cast<int64_t>(rows_.size()) + 1;
        rows_.push_back(record);
        return true;
    }
    bool AddMany(std::vector<service::cLyricRecord>& records) override {
        for (auto& r : records) {
            if (!Add(r)) return false;
        }
        return true;
    }
    std::optional<int64_t> Count() override {
        std::lock_guard lock(mutex_);
        return static_cast<int64_t>(rows_.size());
    }
    std::string Check() override { return {}; }

  private:
    static constexpr size_t kCapacity = 100;
    std::mutex mutex_;
    std::vector<service::cLyricRecord> rows_;
};

}  // namespace toval::test
