// The embedded store: one SQLite file in WAL mode, so that lookups read in
// parallel while one send writes. Nothing to set up: the file and its table
// are created on first use.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "cPool.h"
#include "iLyricStore.h"

struct sqlite3;

namespace toval::service {

class cSqliteStore : public iLyricStore {
  public:
    // Opens (creating when needed) the database file. Valid() tells whether it worked.
    cSqliteStore(std::string path, size_t connections);
    ~cSqliteStore() override;

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
    static bool Insert(Connection& c, cLyricRecord& r);

    std::string path_;
    bool valid_ = false;
    mutable std::mutex problemMutex_;
    std::string problem_;
    cPool<Connection> pool_;
};

}  // namespace toval::service
