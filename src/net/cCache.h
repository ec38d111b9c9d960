// The on-disk lyric cache: lyrics fetched from the service, kept per track so
// that a track that plays again needs no network request. Two files in the
// per-user local data folder: cache.id (the sorted hash table and the free
// list, cCacheHT) and cache.dat (1024-byte blocks holding the texts as chains,
// cCacheMD). Every failure ends in a miss or a false result.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "config/cSettings.h"
#include "net/cCacheHT.h"
#include "net/cCacheMD.h"
#include "platform/Random.h"
#include "platform/Shell.h"

namespace toval {

class cMusic;

class cCache {
  public:
    // Opens (creating them when missing) cache.dat and cache.id in the local
    // per-user folder; cache_size comes from globals.Settings at each insertion.
    cCache(cGlobals& globals, Shell& shell, Random& random);
    // The same on the files of an explicit folder (with its trailing separator).
    cCache(cGlobals& globals, Random& random, const std::u16string& folder);
    cCache(const cCache&) = delete;
    cCache& operator=(const cCache&) = delete;

    // The cached lyric of the track, or empty.
    std::u16string GetLyric(const std::shared_ptr<cMusic>& music);
    // Stores the lyric of the track, replacing an earlier one; false when
    // nothing was stored (an empty lyric, a failing disk).
    bool SetLyric(const std::shared_ptr<cMusic>& music, const std::u16string& lyric);
    // Removes the track's entry; false when there was none.
    bool DelLyric(const std::shared_ptr<cMusic>& music);
    // Empties the table only: the blocks stay where they are, unused.
    void ClearCache();

    // The key of a track: artist, album and title as two bytes per character,
    // and the length in seconds, joined by blanks.
    static std::string TrackKey(const cMusic& music);

    // The folder of the two files, with its trailing separator.
    const std::u16string& Folder() const { return folder_; }
    // The parts, for inspection.
    cCacheHT& HashTable() { return ht_; }
    cCacheMD& Data() { return md_; }

  private:
    void Open();
    // Drops free-list numbers that cannot be free blocks: outside the file,
    // repeated, or the head of a table entry.
    void CheckFreeList();

    std::u16string folder_;
    cCacheMD md_;
    cCacheHT ht_;
    // The working copy of the free list, handed to ht_ before every save.
    std::vector<int32_t> free_;
};

}  // namespace toval
