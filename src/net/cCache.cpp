#include "net/cCache.h"

#include <unordered_set>

#include "base/cErrorLog.h"
#include "base/mNumber.h"
#include "base/mPath.h"
#include "base/mString.h"
#include "lyric/cMusic.h"
#include "net/mHasher.h"

namespace toval {

cCache::cCache(cGlobals& globals, Shell& shell, Random& random) : ht_(globals, random) {
    folder_ = Guarded("cCache.Class_Initialize", std::u16string(), [&] {
        return getSpecialFolder(shell, kFolderLocalAppData, globals.ProgramFolder);
    });
    Open();
}

cCache::cCache(cGlobals& globals, Random& random, const std::u16string& folder)
    : folder_(folder), ht_(globals, random) {
    Open();
}

void cCache::Open() {
    Guarded("cCache.Class_Initialize", [&] {
        md_.setFileAddress(folder_ + u"cache.dat");
        ht_.setFileAddress(folder_ + u"cache.id");
        CheckFreeList();
        free_ = ht_.FreeAddress();
    });
}

void cCache::CheckFreeList() {
    const int32_t blocks = md_.BlockCount();
    std::unordered_set<int32_t> taken;
    for (const auto& entry : ht_.Table())
        taken.insert(entry.block);
    std::vector<int32_t> checked;
    for (int32_t block : ht_.FreeAddress()) {
        if (block >= 1 && block <= blocks && taken.insert(block).second) checked.push_back(block);
    }
    ht_.setFreeAddress(std::move(checked));
}

std::string cCache::TrackKey(const cMusic& music) {
    const cStrings& strings = Strings();
    return strings.wstringTOwchar(music.Artist()) + ' ' + strings.wstringTOwchar(music.Album()) +
           ' ' + strings.wstringTOwchar(music.Title()) + ' ' + DecimalBytes(music.Duration());
}

std::u16string cCache::GetLyric(const std::shared_ptr<cMusic>& music) {
    return Guarded("cCache.GetLyric", std::u16string(), [&] {
        if (!music) return std::u16string();
        const std::string key = TrackKey(*music);
        const std::string signature = GetStrHash(key, cCacheMD::kSignatureSize);
        std::string text;
        for (int32_t block : ht_.GetAddress(GetLngHash(key))) {
            if (md_.GetDataIfKey(block, signature, text)) return Strings().wcharTOwstring(text);
        }
        return std::u16string();
    });
}

bool cCache::SetLyric(const std::shared_ptr<cMusic>& music, const std::u16string& lyric) {
    return Guarded("cCache.SetLyric", false, [&] {
        if (!music) return false;
        const std::string key = TrackKey(*music);
        const int32_t hash = GetLngHash(key);
        const std::string text = Strings().wstringTOwchar(lyric);
        // Nothing to write: leave the table and the old entry alone.
        if (text.empty() || !md_.IsOpen() || !ht_.IsOpen()) return false;

        for (int32_t block : ht_.GetAddress(hash)) {
            if (!md_.IsFile(block, key)) continue;
            // The new text goes to blocks of its own and the entry is then
            // pointed at it in its place in the table, so a program stopped
            // half way finds the old text whole or the new one. The old
            // blocks become free with that switch, for the next write.
            std::vector<int32_t> freeList = free_;
            const int32_t head = md_.SetData(freeList, key, text);
            if (head < 1) return false;
            md_.DelData(block, freeList);
            free_ = std::move(freeList);
            ht_.setFreeAddress(free_);
            return ht_.UpdateAddress(hash, block, head);
        }

        bool evicted = false;
        for (int32_t position = ht_.GetFlush(); position != kUnset; position = ht_.GetFlush()) {
            md_.DelData(ht_.GetAddressIndex(position), free_);
            ht_.DelAddressIndex(position);
            evicted = true;
        }
        if (evicted) {
            ht_.setFreeAddress(free_);
            ht_.SaveHashTable();
        }

        const std::vector<int32_t> before = free_;
        const int32_t head = md_.SetData(free_, key, text);
        if (head < 1) {
            // Blocks a failed write took stay free.
            free_ = before;
            return false;
        }
        ht_.setFreeAddress(free_);
        return ht_.SetNewAddress(hash, head);
    });
}

bool cCache::DelLyric(const std::shared_ptr<cMusic>& music) {
    return Guarded("cCache.DelLyric", false, [&] {
        if (!music) return false;
        const std::string key = TrackKey(*music);
        const int32_t hash = GetLngHash(key);
        for (int32_t block : ht_.GetAddress(hash)) {
            if (!md_.IsFile(block, key)) continue;
            md_.DelData(block, free_);
            ht_.setFreeAddress(free_);
            ht_.DelAddress(hash, block);
            return true;
        }
        return false;
    });
}

void cCache::ClearCache() {
    Guarded("cCache.ClearCache", [&] { ht_.DelAllAddress(); });
}

}  // namespace toval
