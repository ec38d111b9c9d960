#include "cPgStore.h"

#include <pqxx/pqxx>

namespace toval::service {

namespace {

constexpr const char* kSchema =
    "CREATE TABLE IF NOT EXISTS lyrics ("
    " id BIGSERIAL PRIMARY KEY,"
    " artist TEXT NOT NULL, album TEXT NOT NULL, title TEXT NOT NULL,"
    " artist_key TEXT NOT NULL, album_key TEXT NOT NULL, title_key TEXT NOT NULL,"
    " duration INTEGER NOT NULL, file_size INTEGER NOT NULL, mutation INTEGER NOT NULL,"
    " kind INTEGER NOT NULL, lyric TEXT NOT NULL, address TEXT NOT NULL,"
    " created BIGINT NOT NULL);"
    "CREATE INDEX IF NOT EXISTS lyrics_track ON lyrics (artist_key, title_key);";

}  // namespace

struct cPgStore::Connection {
    explicit Connection(const std::string& conninfo) : c(conninfo) {
        c.prepare("find",
                  "SELECT id, artist, album, title, artist_key, album_key, title_key, duration,"
                  " file_size, mutation, kind, lyric, address, created FROM lyrics"
                  " WHERE artist_key = $1 AND title_key = $2 ORDER BY id");
        c.prepare("add",
                  "INSERT INTO lyrics (artist, album, title, artist_key, album_key, title_key,"
                  " duration, file_size, mutation, kind, lyric, address, created)"
                  " VALUES ($1, $2, $3, $4, $5, $6, $7, $8, $9, $10, $11, $12, $13) RETURNING id");
    }
    pqxx::connection c;
};

cPgStore::cPgStore(std::string conninfo, size_t connections)
    : conninfo_(std::move(conninfo)), pool_(connections, [this] { return Open(); }) {
    auto lease = pool_.Take();
    valid_ = lease.get() != nullptr;
}

cPgStore::~cPgStore() = default;

void cPgStore::Note(const std::string& problem) {
    std::lock_guard lock(problemMutex_);
    problem_ = problem;
}

std::unique_ptr<cPgStore::Connection> cPgStore::Open() {
    try {
        {
            // Two services starting together may both create the table.
            pqxx::connection c(conninfo_);
            pqxx::work w(c);
            w.exec("SELECT pg_advisory_xact_lock(7461657)");
            w.exec(kSchema);
            w.commit();
        }
        return std::make_unique<Connection>(conninfo_);
    } catch (const std::exception& e) {
        Note(e.what());
        return nullptr;
    }
}

std::optional<std::vector<cLyricRecord>> cPgStore::Find(const std::string& artistKey,
                                                        const std::string& titleKey) {
    auto lease = pool_.Take();
    if (!lease.get()) return std::nullopt;
    try {
        pqxx::read_transaction w(lease->c);
        const pqxx::result rows = w.exec_prepared("find", artistKey, titleKey);
        std::vector<cLyricRecord> found;
        found.reserve(rows.size());
        for (const auto& row : rows) {
            cLyricRecord r;
            r.id = row[0].as<int64_t>();
            r.artist = row[1].as<std::string>();
            r.album = row[2].as<std::string>();
            r.title = row[3].as<std::string>();
            r.artistKey = row[4].as<std::string>();
            r.albumKey = row[5].as<std::string>();
            r.titleKey = row[6].as<std::string>();
            r.duration = row[7].as<int32_t>();
            r.fileSize = row[8].as<int32_t>();
            r.mutation = row[9].as<int32_t>();
            r.kind = static_cast<LyricKind>(row[10].as<int32_t>());
            r.text = row[11].as<std::string>();
            r.address = row[12].as<std::string>();
            r.created = row[13].as<int64_t>();
            found.push_back(std::move(r));
        }
        return found;
    } catch (const pqxx::broken_connection& e) {
        Note(e.what());
        lease.Discard();
    } catch (const std::exception& e) {
        Note(e.what());
    }
    return std::nullopt;
}

bool cPgStore::Add(cLyricRecord& r) {
    std::vector<cLyricRecord> one{r};
    if (!AddMany(one)) return false;
    r.id = one[0].id;
    return true;
}

bool cPgStore::AddMany(std::vector<cLyricRecord>& records) {
    auto lease = pool_.Take();
    if (!lease.get()) return false;
    try {
        pqxx::work w(lease->c);
        std::vector<int64_t> ids;
        ids.reserve(records.size());
        for (const auto& r : records) {
            const pqxx::result rows = w.exec_prepared(
                "add", r.artist, r.album, r.title, r.artistKey, r.albumKey, r.titleKey, r.duration,
                r.fileSize, r.mutation, static_cast<int32_t>(r.kind), r.text, r.address, r.created);
            ids.push_back(rows.at(0).at(0).as<int64_t>());
        }
        w.commit();
        for (size_t i = 0; i < records.size(); ++i)
            records[i].id = ids[i];
        return true;
    } catch (const pqxx::broken_connection& e) {
        Note(e.what());
        lease.Discard();
    } catch (const std::exception& e) {
        // Also pqxx::in_doubt_error: the commit may or may not have happened,
        // so the sender is told it failed and may send again.
        Note(e.what());
    }
    return false;
}

std::optional<int64_t> cPgStore::Count() {
    auto lease = pool_.Take();
    if (!lease.get()) return std::nullopt;
    try {
        pqxx::read_transaction w(lease->c);
        return w.exec1("SELECT count(*) FROM lyrics")[0].as<int64_t>();
    } catch (const std::exception& e) {
        Note(e.what());
        lease.Discard();
    }
    return std::nullopt;
}

std::string cPgStore::Check() {
    auto lease = pool_.Take();
    if (!lease.get()) return "cannot connect: " + Problem();
    try {
        // amcheck (shipped with PostgreSQL) verifies both indexes against the
        // table, row by row.
        pqxx::work w(lease->c);
        w.exec0("CREATE EXTENSION IF NOT EXISTS amcheck");
        w.exec("SELECT bt_index_check('lyrics_pkey'::regclass, true)");
        w.exec("SELECT bt_index_check('lyrics_track'::regclass, true)");
        w.commit();
        return {};
    } catch (const pqxx::broken_connection& e) {
        lease.Discard();
        return e.what();
    } catch (const std::exception& e) {
        return e.what();
    }
}

}  // namespace toval::service
