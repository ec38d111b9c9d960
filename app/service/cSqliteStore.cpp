#include "cSqliteStore.h"

#include <sqlite3.h>

#include <cstdio>

namespace toval::service {

namespace {

constexpr const char* kSchema =
    "CREATE TABLE IF NOT EXISTS lyrics ("
    " id INTEGER PRIMARY KEY AUTOINCREMENT,"
    " artist TEXT NOT NULL, album TEXT NOT NULL, title TEXT NOT NULL,"
    " artist_key TEXT NOT NULL, album_key TEXT NOT NULL, title_key TEXT NOT NULL,"
    " duration INTEGER NOT NULL, file_size INTEGER NOT NULL, mutation INTEGER NOT NULL,"
    " kind INTEGER NOT NULL, lyric TEXT NOT NULL, address TEXT NOT NULL,"
    " created INTEGER NOT NULL);"
    "CREATE INDEX IF NOT EXISTS lyrics_track ON lyrics (artist_key, title_key);";

constexpr const char* kFind =
    "SELECT id, artist, album, title, artist_key, album_key, title_key, duration, file_size,"
    " mutation, kind, lyric, address, created FROM lyrics"
    " WHERE artist_key = ?1 AND title_key = ?2 ORDER BY id";

constexpr const char* kAdd =
    "INSERT INTO lyrics (artist, album, title, artist_key, album_key, title_key, duration,"
    " file_size, mutation, kind, lyric, address, created)"
    " VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13)";

std::string Column(sqlite3_stmt* s, int i) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(s, i));
    return text ? std::string(text, static_cast<size_t>(sqlite3_column_bytes(s, i)))
                : std::string();
}

void Bind(sqlite3_stmt* s, int i, const std::string& text) {
    sqlite3_bind_text(s, i, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

}  // namespace

// One connection with its prepared statements.
struct cSqliteStore::Connection {
    sqlite3* db = nullptr;
    sqlite3_stmt* find = nullptr;
    sqlite3_stmt* add = nullptr;
    ~Connection() {
        sqlite3_finalize(find);
        sqlite3_finalize(add);
        sqlite3_close_v2(db);
    }
};

cSqliteStore::cSqliteStore(std::string path, size_t connections)
    : path_(std::move(path)), pool_(connections, [this] { return Open(); }) {
    auto lease = pool_.Take();
    valid_ = lease.get() != nullptr;
}

cSqliteStore::~cSqliteStore() = default;

std::unique_ptr<cSqliteStore::Connection> cSqliteStore::Open() {
    auto c = std::make_unique<Connection>();
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    auto fail = [&](const char* what) {
        std::lock_guard lock(problemMutex_);
        problem_ = std::string(what) + ": " + (c->db ? sqlite3_errmsg(c->db) : "out of memory");
        return nullptr;
    };
    if (sqlite3_open_v2(path_.c_str(), &c->db, flags, nullptr) != SQLITE_OK) return fail("open");
    // A writer waits for another writer instead of failing at once.
    sqlite3_busy_timeout(c->db, 10000);
    // WAL: readers never wait for the writer; synchronous=FULL makes every
    // answered send survive a crash of the machine, not only of the service.
    if (sqlite3_exec(c->db, "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL;", nullptr, nullptr,
                     nullptr) != SQLITE_OK ||
        sqlite3_exec(c->db, kSchema, nullptr, nullptr, nullptr) != SQLITE_OK) {
        return fail("schema");
    }
    if (sqlite3_prepare_v2(c->db, kFind, -1, &c->find, nullptr) != SQLITE_OK ||
        sqlite3_prepare_v2(c->db, kAdd, -1, &c->add, nullptr) != SQLITE_OK) {
        return fail("prepare");
    }
    return c;
}

std::optional<std::vector<cLyricRecord>> cSqliteStore::Find(const std::string& artistKey,
                                                            const std::string& titleKey) {
    auto lease = pool_.Take();
    if (!lease.get()) return std::nullopt;
    sqlite3_stmt* s = lease->find;
    Bind(s, 1, artistKey);
    Bind(s, 2, titleKey);
    std::vector<cLyricRecord> found;
    int step;
    while ((step = sqlite3_step(s)) == SQLITE_ROW) {
        cLyricRecord r;
        r.id = sqlite3_column_int64(s, 0);
        r.artist = Column(s, 1);
        r.album = Column(s, 2);
        r.title = Column(s, 3);
        r.artistKey = Column(s, 4);
        r.albumKey = Column(s, 5);
        r.titleKey = Column(s, 6);
        r.duration = sqlite3_column_int(s, 7);
        r.fileSize = sqlite3_column_int(s, 8);
        r.mutation = sqlite3_column_int(s, 9);
        r.kind = static_cast<LyricKind>(sqlite3_column_int(s, 10));
        r.text = Column(s, 11);
        r.address = Column(s, 12);
        r.created = sqlite3_column_int64(s, 13);
        found.push_back(std::move(r));
    }
    sqlite3_reset(s);
    sqlite3_clear_bindings(s);
    if (step != SQLITE_DONE) return std::nullopt;
    return found;
}

bool cSqliteStore::Add(cLyricRecord& r) {
    auto lease = pool_.Take();
    return lease.get() && Insert(*lease, r);
}

bool cSqliteStore::AddMany(std::vector<cLyricRecord>& records) {
    auto lease = pool_.Take();
    if (!lease.get()) return false;
    if (sqlite3_exec(lease->db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr) != SQLITE_OK) {
        return false;
    }
    for (auto& r : records) {
        if (!Insert(*lease, r)) {
            sqlite3_exec(lease->db, "ROLLBACK", nullptr, nullptr, nullptr);
            return false;
        }
    }
    if (sqlite3_exec(lease->db, "COMMIT", nullptr, nullptr, nullptr) == SQLITE_OK) return true;
    sqlite3_exec(lease->db, "ROLLBACK", nullptr, nullptr, nullptr);
    return false;
}

bool cSqliteStore::Insert(Connection& c, cLyricRecord& r) {
    sqlite3_stmt* s = c.add;
    Bind(s, 1, r.artist);
    Bind(s, 2, r.album);
    Bind(s, 3, r.title);
    Bind(s, 4, r.artistKey);
    Bind(s, 5, r.albumKey);
    Bind(s, 6, r.titleKey);
    sqlite3_bind_int(s, 7, r.duration);
    sqlite3_bind_int(s, 8, r.fileSize);
    sqlite3_bind_int(s, 9, r.mutation);
    sqlite3_bind_int(s, 10, static_cast<int>(r.kind));
    Bind(s, 11, r.text);
    Bind(s, 12, r.address);
    sqlite3_bind_int64(s, 13, r.created);
    const int step = sqlite3_step(s);
    sqlite3_reset(s);
    sqlite3_clear_bindings(s);
    if (step != SQLITE_DONE) return false;
    r.id = sqlite3_last_insert_rowid(c.db);
    return true;
}

std::optional<int64_t> cSqliteStore::Count() {
    auto lease = pool_.Take();
    if (!lease.get()) return std::nullopt;
    sqlite3_stmt* s = nullptr;
    std::optional<int64_t> count;
    if (sqlite3_prepare_v2(lease->db, "SELECT count(*) FROM lyrics", -1, &s, nullptr) ==
            SQLITE_OK &&
        sqlite3_step(s) == SQLITE_ROW) {
        count = sqlite3_column_int64(s, 0);
    }
    sqlite3_finalize(s);
    return count;
}

std::string cSqliteStore::Check() {
    auto lease = pool_.Take();
    if (!lease.get()) return "cannot open " + path_ + ": " + Problem();
    sqlite3_stmt* s = nullptr;
    std::string result = "integrity check did not run";
    if (sqlite3_prepare_v2(lease->db, "PRAGMA integrity_check", -1, &s, nullptr) == SQLITE_OK &&
        sqlite3_step(s) == SQLITE_ROW) {
        result = Column(s, 0);
        if (result == "ok") result.clear();
    }
    sqlite3_finalize(s);
    return result;
}

}  // namespace toval::service
