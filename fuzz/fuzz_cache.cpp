// Feeds the lyric cache arbitrary cache.id and cache.dat files and then a
// script of lookups, stores, deletions, clears and restarts. On damaged files
// nothing may crash, hang or read out of bounds; on files the cache wrote
// itself, every lookup must give the last lyric stored or a miss, until the
// script itself damages the files (flips bytes, cuts cache.dat).
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <string>

#include "fakes/FakeRandom.h"
#include "lyric/cMusic.h"
#include "net/cCache.h"
#include "net/cCacheHT.h"

namespace {

namespace fs = std::filesystem;
using namespace toval;

// A scratch folder of this run, removed at exit.
struct ScratchFolder {
    ScratchFolder() {
        std::random_device rd;
        path = fs::temp_directory_path() /
               ("toval-fuzz-cache-" + std::to_string(rd()) + std::to_string(rd()));
        fs::create_directories(path);
    }
    ~ScratchFolder() {
        std::error_code ec;
        fs::remove_all(path, ec);
    }
    fs::path path;
};

const fs::path& Folder() {
    static const ScratchFolder folder;
    return folder.path;
}

void Spit(const fs::path& p, const uint8_t* data, size_t size) {
    std::ofstream out(p, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

class Reader {
  public:
    Reader(const uint8_t* data, size_t size) : data_(data), size_(size) {}
    bool empty() const { return at_ >= size_; }
    uint8_t Byte() { return at_ < size_ ? data_[at_++] : 0; }
    uint16_t Word() { return static_cast<uint16_t>(Byte() | (Byte() << 8)); }
    // The next `n` bytes (fewer at the end).
    std::pair<const uint8_t*, size_t> Take(size_t n) {
        const size_t len = std::min(n, size_ - std::min(at_, size_));
        const uint8_t* p = data_ + std::min(at_, size_);
        at_ += len;
        return {p, len};
    }

  private:
    const uint8_t* data_;
    size_t size_;
    size_t at_ = 0;
};

std::shared_ptr<cMusic> Track(int index) {
    auto music = std::make_shared<cMusic>();
    // Tracks 0 and 1 have keys with equal hashes.
    static const char16_t* const artists[] = {u"abcd", u"cbad", u"Other", u"\u00e9\u4e2d"};
    music->setArtist(artists[index % 4]);
    music->setTitle(u"Song");
    music->setMiliDuration(180000 + (index / 4) * 1000);
    return music;
}

std::u16string Lyric(size_t length, uint8_t seed) {
    std::u16string text;
    for (size_t i = 0; i < length; ++i)
        text.push_back(char16_t(seed * 131 + i * 7919));
    return text;
}

void Fail() {
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Reader in(data, size);
    const uint8_t mode = in.Byte();
    const bool cleanStart = (mode & 1) != 0;
    const fs::path id = Folder() / "cache.id";
    const fs::path dat = Folder() / "cache.dat";
    std::error_code ec;
    fs::remove(id, ec);
    fs::remove(dat, ec);
    if (!cleanStart) {
        auto [idBytes, idSize] = in.Take(in.Word() % 4096);
        auto [datBytes, datSize] = in.Take(in.Word());
        Spit(id, idBytes, idSize);
        Spit(dat, datBytes, datSize);

        // Whatever the table file holds, it reads back as it is written.
        std::vector<int32_t> freeList, again;
        std::vector<cCacheHT::Entry> table, againTable;
        cCacheHT::Parse(std::string(reinterpret_cast<const char*>(idBytes), idSize), freeList,
                        table);
        cCacheHT::Parse(cCacheHT::Serialize(freeList, table), again, againTable);
        if (again != freeList || againTable != table) Fail();
    }

    cGlobals globals;
    globals.Settings.cache_size = 1 + (mode >> 1) % 8;
    test::FakeRandom random;
    std::u16string folder = Folder().u16string();
    folder.push_back(char16_t(fs::path::preferred_separator));
    auto cache = std::make_unique<cCache>(globals, random, folder);

    std::map<int, std::u16string> stored;  // what a hit must give, per track
    bool clean = cleanStart;
    for (int steps = 0; !in.empty() && steps < 64; ++steps) {
        const uint8_t op = in.Byte();
        const int track = (op >> 3) % 8;
        random.draws = {in.Byte() / 256.0};
        random.next = 0;
        switch (op % 8) {
            case 0: {
                const std::u16string got = cache->GetLyric(Track(track));
                if (clean && !got.empty() && got != stored[track]) Fail();
                break;
            }
            case 1: {
                const std::u16string lyric = Lyric(in.Word() % 3000, in.Byte());
                const bool ok = cache->SetLyric(Track(track), lyric);
                if (clean) {
                    if (ok != !lyric.empty()) Fail();
                    if (ok) {
                        stored[track] = lyric;
                        if (cache->GetLyric(Track(track)) != lyric) Fail();
                    }
                }
                break;
            }
            case 2:
                cache->DelLyric(Track(track));
                if (clean && !cache->GetLyric(Track(track)).empty()) Fail();
                break;
            case 3:
                cache->ClearCache();
                if (clean && cache->HashTable().Count() != 0) Fail();
                break;
            case 4:
                cache.reset();
                cache = std::make_unique<cCache>(globals, random, folder);
                break;
            case 6:
            case 7: {
                // Damage written behind the cache's back, then a restart.
                cache.reset();
                const fs::path& file = (op % 8 == 6) ? dat : id;
                const uint16_t where = in.Word();
                const uint8_t what = in.Byte();
                const uintmax_t length = fs::file_size(file, ec);
                if (!ec && length > 0) {
                    if (what == 0) {
                        fs::resize_file(file, where % length, ec);
                    } else {
                        std::fstream f(file, std::ios::binary | std::ios::in | std::ios::out);
                        f.seekp(static_cast<std::streamoff>(where * 7 % length));
                        f.put(static_cast<char>(what));
                    }
                }
                clean = false;
                cache = std::make_unique<cCache>(globals, random, folder);
                break;
            }
            default:
                // Can never grow past the configured size.
                if (cache->HashTable().Count() > globals.Settings.cache_size &&
                    globals.Settings.cache_size > 0 && clean) {
                    Fail();
                }
                break;
        }
    }
    return 0;
}
