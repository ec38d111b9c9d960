// Lookup and store latency of the lyric cache with 1,024 and 100,000 entries
// of typical lyrics (about 3 KB as stored), and the same work on SQLite as a
// yardstick (when the build found it).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "base/mString.h"
#include "lyric/cMusic.h"
#include "net/cCache.h"
#include "net/cCacheHT.h"
#include "net/cCacheMD.h"
#include "net/mHasher.h"

#if TOVAL_BENCH_SQLITE
#include <sqlite3.h>
#endif

namespace {

namespace fs = std::filesystem;
using namespace toval;

constexpr size_t kLyricChars = 1536;  // 3 KB as stored, two bytes a character

// A scratch folder of this run, removed at exit.
struct ScratchFolder {
    ScratchFolder() {
        std::random_device rd;
        path = fs::temp_directory_path() /
               ("toval-bench-cache-" + std::to_string(rd()) + std::to_string(rd()));
        fs::create_directories(path);
    }
    ~ScratchFolder() {
        std::error_code ec;
        fs::remove_all(path, ec);
    }
    fs::path path;
};

const fs::path& Root() {
    static const ScratchFolder folder;
    return folder.path;
}

std::shared_ptr<cMusic> Track(int64_t i) {
    auto music = std::make_shared<cMusic>();
    music->setArtist(u"Artist " + DecimalText(i % 5000));
    music->setAlbum(u"Album " + DecimalText(i % 700));
    music->setTitle(u"Title number " + DecimalText(i));
    music->setMiliDuration(static_cast<int32_t>(150000 + (i % 120) * 1000));
    return music;
}

std::u16string Lyric(int64_t seed) {
    std::u16string text;
    text.reserve(kLyricChars);
    for (size_t i = 0; i < kLyricChars; ++i) {
        text.push_back(i % 40 == 39 ? u'\n' : char16_t(u'a' + (seed + i * 7) % 26));
    }
    return text;
}

// A cache folder with n entries, written straight through the block file so
// that building 100,000 entries does not rewrite the table 100,000 times.
std::u16string CacheFolder(int64_t n) {
    static std::map<int64_t, std::u16string> built;
    if (auto it = built.find(n); it != built.end()) return it->second;
    const fs::path folder = Root() / ("cache" + std::to_string(n));
    fs::create_directories(folder);
    cCacheMD md;
    md.setFileAddress((folder / "cache.dat").u16string());
    std::vector<int32_t> freeList;
    std::vector<cCacheHT::Entry> table;
    for (int64_t i = 0; i < n; ++i) {
        const std::string key = cCache::TrackKey(*Track(i));
        const int32_t head = md.SetData(freeList, key, Strings().wstringTOwchar(Lyric(i)));
        table.push_back({GetLngHash(key), head});
    }
    std::stable_sort(table.begin(), table.end(),
                     [](const auto& a, const auto& b) { return a.hash < b.hash; });
    const std::string bytes = cCacheHT::Serialize({}, table);
    std::FILE* f = std::fopen((folder / "cache.id").string().c_str(), "wb");
    std::fwrite(bytes.data(), 1, bytes.size(), f);
    std::fclose(f);
    std::u16string text = folder.u16string();
    text.push_back(char16_t(fs::path::preferred_separator));
    return built[n] = text;
}

void BM_CacheGetLyric(benchmark::State& state) {
    const int64_t n = state.range(0);
    cGlobals globals;
    globals.Settings.cache_size = static_cast<int32_t>(n);
    cStdRandom random(1);
    cCache cache(globals, random, CacheFolder(n));
    std::mt19937 pick(7);
    std::vector<std::shared_ptr<cMusic>> tracks;
    for (int i = 0; i < 4096; ++i)
        tracks.push_back(Track(pick() % n));
    size_t i = 0;
    for (auto _ : state) {
        const std::u16string lyric = cache.GetLyric(tracks[i++ % tracks.size()]);
        if (lyric.size() != kLyricChars) state.SkipWithError("miss");
        benchmark::DoNotOptimize(lyric.data());
    }
}
BENCHMARK(BM_CacheGetLyric)->Arg(1024)->Arg(100000)->Unit(benchmark::kMicrosecond);

// A new lyric for a track already cached.
void BM_CacheSetLyricReplace(benchmark::State& state) {
    const int64_t n = state.range(0);
    cGlobals globals;
    globals.Settings.cache_size = static_cast<int32_t>(n);
    cStdRandom random(1);
    cCache cache(globals, random, CacheFolder(n));
    std::mt19937 pick(11);
    int64_t seed = 0;
    for (auto _ : state) {
        if (!cache.SetLyric(Track(pick() % n), Lyric(++seed))) state.SkipWithError("not stored");
    }
}
BENCHMARK(BM_CacheSetLyricReplace)->Arg(1024)->Arg(100000)->Unit(benchmark::kMicrosecond);

// A lyric for a new track into a full cache: one random entry goes.
void BM_CacheSetLyricEvict(benchmark::State& state) {
    const int64_t n = state.range(0);
    cGlobals globals;
    globals.Settings.cache_size = static_cast<int32_t>(n);
    cStdRandom random(1);
    cCache cache(globals, random, CacheFolder(n));
    static int64_t next = 1'000'000'000;
    for (auto _ : state) {
        ++next;
        if (!cache.SetLyric(Track(next), Lyric(next))) state.SkipWithError("not stored");
    }
}
BENCHMARK(BM_CacheSetLyricEvict)->Arg(1024)->Arg(100000)->Unit(benchmark::kMicrosecond);

// The part of every store that grows with the table: writing cache.id whole.
void BM_CacheSaveHashTable(benchmark::State& state) {
    const int64_t n = state.range(0);
    const fs::path file = Root() / ("table" + std::to_string(n) + ".id");
    std::vector<cCacheHT::Entry> table;
    for (int32_t i = 0; i < n; ++i)
        table.push_back({i, i + 1});
    const std::string bytes = cCacheHT::Serialize({}, table);
    std::FILE* f = std::fopen(file.string().c_str(), "wb");
    std::fwrite(bytes.data(), 1, bytes.size(), f);
    std::fclose(f);
    cGlobals globals;
    cStdRandom random(1);
    cCacheHT ht(globals, random);
    ht.setFileAddress(file.u16string());
    if (ht.Count() != n) state.SkipWithError("table not loaded");
    for (auto _ : state) {
        if (!ht.SaveHashTable()) state.SkipWithError("not saved");
    }
}
BENCHMARK(BM_CacheSaveHashTable)->Arg(1024)->Arg(100000)->Unit(benchmark::kMicrosecond);

#if TOVAL_BENCH_SQLITE

// The same store as one SQLite table keyed by the same track key; WAL with
// synchronous=NORMAL, so that neither side waits for the disk on a store.
class SqliteCache {
  public:
    explicit SqliteCache(int64_t n) {
        const fs::path file = Root() / ("sqlite" + std::to_string(n) + ".db");
        const bool fresh = !fs::exists(file);
        sqlite3_open(file.string().c_str(), &db_);
        sqlite3_exec(db_, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;", nullptr, nullptr,
                     nullptr);
        if (fresh) {
            sqlite3_exec(db_, "CREATE TABLE lyrics(key BLOB PRIMARY KEY, lyric BLOB)", nullptr,
                         nullptr, nullptr);
            sqlite3_exec(db_, "BEGIN", nullptr, nullptr, nullptr);
            for (int64_t i = 0; i < n; ++i)
                Put(*Track(i), Lyric(i));
            sqlite3_exec(db_, "COMMIT", nullptr, nullptr, nullptr);
        }
    }
    ~SqliteCache() {
        sqlite3_finalize(get_);
        sqlite3_finalize(put_);
        sqlite3_finalize(del_);
        sqlite3_close(db_);
    }

    std::u16string Get(const cMusic& music) {
        if (!get_)
            sqlite3_prepare_v2(db_, "SELECT lyric FROM lyrics WHERE key=?", -1, &get_, nullptr);
        const std::string key = cCache::TrackKey(music);
        sqlite3_bind_blob(get_, 1, key.data(), static_cast<int>(key.size()), SQLITE_STATIC);
        std::u16string lyric;
        if (sqlite3_step(get_) == SQLITE_ROW) {
            const auto* data = static_cast<const char*>(sqlite3_column_blob(get_, 0));
            lyric = Strings().wcharTOwstring(
                std::string(data, static_cast<size_t>(sqlite3_column_bytes(get_, 0))));
        }
        sqlite3_reset(get_);
        return lyric;
    }

    bool Put(const cMusic& music, const std::u16string& lyric) {
        if (!put_) {
            sqlite3_prepare_v2(db_, "INSERT OR REPLACE INTO lyrics(key, lyric) VALUES(?, ?)", -1,
                               &put_, nullptr);
        }
        const std::string key = cCache::TrackKey(music);
        const std::string bytes = Strings().wstringTOwchar(lyric);
        sqlite3_bind_blob(put_, 1, key.data(), static_cast<int>(key.size()), SQLITE_STATIC);
        sqlite3_bind_blob(put_, 2, bytes.data(), static_cast<int>(bytes.size()), SQLITE_STATIC);
        const bool ok = sqlite3_step(put_) == SQLITE_DONE;
        sqlite3_reset(put_);
        return ok;
    }

    bool Del(const cMusic& music) {
        if (!del_) sqlite3_prepare_v2(db_, "DELETE FROM lyrics WHERE key=?", -1, &del_, nullptr);
        const std::string key = cCache::TrackKey(music);
        sqlite3_bind_blob(del_, 1, key.data(), static_cast<int>(key.size()), SQLITE_STATIC);
        const bool ok = sqlite3_step(del_) == SQLITE_DONE;
        sqlite3_reset(del_);
        return ok;
    }

    sqlite3* db() { return db_; }

  private:
    sqlite3* db_ = nullptr;
    sqlite3_stmt* get_ = nullptr;
    sqlite3_stmt* put_ = nullptr;
    sqlite3_stmt* del_ = nullptr;
};

void BM_SqliteGetLyric(benchmark::State& state) {
    const int64_t n = state.range(0);
    SqliteCache db(n);
    std::mt19937 pick(7);
    std::vector<std::shared_ptr<cMusic>> tracks;
    for (int i = 0; i < 4096; ++i)
        tracks.push_back(Track(pick() % n));
    size_t i = 0;
    for (auto _ : state) {
        const std::u16string lyric = db.Get(*tracks[i++ % tracks.size()]);
        if (lyric.size() != kLyricChars) state.SkipWithError("miss");
        benchmark::DoNotOptimize(lyric.data());
    }
}
BENCHMARK(BM_SqliteGetLyric)->Arg(1024)->Arg(100000)->Unit(benchmark::kMicrosecond);

void BM_SqliteSetLyricReplace(benchmark::State& state) {
    const int64_t n = state.range(0);
    SqliteCache db(n);
    std::mt19937 pick(11);
    int64_t seed = 0;
    for (auto _ : state) {
        if (!db.Put(*Track(pick() % n), Lyric(++seed))) state.SkipWithError("not stored");
    }
}
BENCHMARK(BM_SqliteSetLyricReplace)->Arg(1024)->Arg(100000)->Unit(benchmark::kMicrosecond);

// A new track into a full table: one random row goes, in the same transaction.
void BM_SqliteSetLyricEvict(benchmark::State& state) {
    const int64_t n = state.range(0);
    SqliteCache db(n);
    std::vector<int64_t> present;
    for (int64_t i = 0; i < n; ++i)
        present.push_back(i);
    std::mt19937 pick(13);
    static int64_t next = 1'000'000'000;
    for (auto _ : state) {
        const size_t victim = pick() % present.size();
        ++next;
        sqlite3_exec(db.db(), "BEGIN", nullptr, nullptr, nullptr);
        db.Del(*Track(present[victim]));
        const bool ok = db.Put(*Track(next), Lyric(next));
        sqlite3_exec(db.db(), "COMMIT", nullptr, nullptr, nullptr);
        present[victim] = next;
        if (!ok) state.SkipWithError("not stored");
    }
}
BENCHMARK(BM_SqliteSetLyricEvict)->Arg(1024)->Arg(100000)->Unit(benchmark::kMicrosecond);

#endif

}  // namespace
