// The shared store: PostgreSQL, for a service that many users share and that
// may run on several machines. Selected by a connection string; the table is
// created on first use. Each request thread borrows a connection from a pool.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "cPool.h"
#include "iLyricStore.h"

namespace toval::service {

class cPgStore : public iLyricStore {
  public:
    cPgStore(std::string conninfo, size_t connections);
    ~cPgStore() override;

    bool Valid() const { return valid_; }
    std::string Problem() const {
        std::lock_guard lock(problemMutex_);
        return problem_;
    }

    std::optional<std::vector<cLyricRecord>> Find(const std::string& artistKey,
                                                  const std::string& titleKey) override;
    bool Add(cLyricRecord& record) override;
    bool AddMany(std::vector<cLyricRecord>& records) override;
    std::optional<int64_t> Count() override;
    std::string Check() override;

  private:
    struct Connection;
    std::unique_ptr<Connection> Open();
    void Note(const std::string& problem);

    std::string conninfo_;
    bool valid_ = false;
    mutable std::mutex problemMutex_;
    std::string problem_;
    cPool<Connection> pool_;
};

}  // namespace toval::service
