#include "net/cCacheHT.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <unordered_set>

#include "base/cErrorLog.h"
#include "base/mNumber.h"

namespace toval {

namespace {

namespace fs = std::filesystem;

// Writes a little-endian int32 and returns the position behind it.
char* PutInt32(char* at, int32_t value) {
    const auto u = static_cast<uint32_t>(value);
    at[0] = static_cast<char>(u & 0xFF);
    at[1] = static_cast<char>((u >> 8) & 0xFF);
    at[2] = static_cast<char>((u >> 16) & 0xFF);
    at[3] = static_cast<char>((u >> 24) & 0xFF);
    return at + 4;
}

int32_t GetInt32(const std::string& bytes, size_t at) {
    uint32_t u = 0;
    for (size_t i = 0; i < 4; ++i) {
        u |= static_cast<uint32_t>(static_cast<uint8_t>(bytes[at + i])) << (8 * i);
    }
    return static_cast<int32_t>(u);
}

std::string ReadWholeFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("cannot open the file for reading");
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteWholeFile(const fs::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) throw std::runtime_error("cannot write the file");
}

}  // namespace

cCacheHT::cCacheHT(const cGlobals& globals, Random& random) : globals_(globals), random_(random) {}

void cCacheHT::setFileAddress(const std::u16string& path) {
    Guarded("cCacheHT.FileAddress [Let]", [&] {
        fileAddress_ = path;
        open_ = false;
        free_.clear();
        table_.clear();
        const fs::path file(path);
        if (!fs::exists(file)) {
            std::ofstream create(file, std::ios::binary | std::ios::app);
            if (!create) throw std::runtime_error("cannot create the file");
        }
        open_ = true;
        Parse(ReadWholeFile(file), free_, table_);
        Repair();
    });
}

void cCacheHT::Parse(const std::string& bytes, std::vector<int32_t>& freeList,
                     std::vector<Entry>& table) {
    freeList.clear();
    table.clear();
    size_t at = 0;
    while (bytes.size() - at >= 4) {
        const int32_t value = GetInt32(bytes, at);
        at += 4;
        if (value == 0) break;
        freeList.push_back(value);
    }
    // A trailing remainder of fewer than 8 bytes is no entry.
    const size_t entries = (bytes.size() - at) / 8;
    table.reserve(entries);
    for (size_t i = 0; i < entries; ++i, at += 8) {
        table.push_back({GetInt32(bytes, at), GetInt32(bytes, at + 4)});
    }
}

std::string cCacheHT::Serialize(const std::vector<int32_t>& freeList,
                                const std::vector<Entry>& table) {
    std::string out(4 * freeList.size() + 4 + 8 * table.size(), '\0');
    char* at = out.data();
    for (int32_t block : freeList)
        at = PutInt32(at, block);
    at += 4;  // the terminator, 0
    for (const Entry& e : table)
        at = PutInt32(PutInt32(at, e.hash), e.block);
    return out;
}

void cCacheHT::Repair() {
    // The lookups need hash order; a table out of order was written by
    // something else or damaged, and sorting it loses nothing.
    std::stable_sort(table_.begin(), table_.end(),
                     [](const Entry& a, const Entry& b) { return a.hash < b.hash; });
    // Two entries on one head block would free each other's blocks on eviction.
    std::unordered_set<int32_t> seen;
    seen.reserve(table_.size());
    std::erase_if(table_, [&](const Entry& e) { return !seen.insert(e.block).second; });
}

bool cCacheHT::SaveHashTable() {
    return Guarded("cCacheHT.SaveHashTable", false, [&] {
        if (!open_) return false;
        if (onSaving && !onSaving()) return false;
        const std::string bytes = Serialize(free_, table_);
        const fs::path file(fileAddress_);
        // Written beside and renamed over, so that a program stopped half way
        // leaves the old table whole rather than a mix of old and new.
        fs::path fresh = file;
        fresh += u".new";
        std::error_code ec;
        const bool done = Guarded("cCacheHT.SaveHashTable", false, [&] {
            WriteWholeFile(fresh, bytes);
            fs::rename(fresh, file, ec);
            return !ec;
        });
        if (!done) {
            fs::remove(fresh, ec);
            // In place: a longer old file is deleted first so no tail survives.
            if (fs::exists(file, ec) && fs::file_size(file, ec) > bytes.size()) fs::remove(file);
            WriteWholeFile(file, bytes);
        }
        return true;
    });
}

int32_t cCacheHT::HashIndex(int32_t hash) const {
    int32_t lo = 0;
    int32_t hi = Count() - 1;
    while (lo < hi) {
        const int32_t mid = lo + (hi - lo) / 2;
        const int32_t here = table_[static_cast<size_t>(mid)].hash;
        if (here == hash) return mid;
        if (here < hash) {
            lo = mid + 1;
        } else {
            hi = mid - 1;
        }
    }
    return lo;
}

std::vector<int32_t> cCacheHT::GeHashIndexs(int32_t hash) const {
    std::vector<int32_t> positions;
    const int32_t count = Count();
    const int32_t p = HashIndex(hash);
    for (int32_t q = p; q >= 0 && q < count && table_[static_cast<size_t>(q)].hash == hash; --q) {
        positions.push_back(q);
    }
    for (int32_t q = p + 1; q >= 0 && q < count && table_[static_cast<size_t>(q)].hash == hash;
         ++q) {
        positions.push_back(q);
    }
    return positions;
}

std::vector<int32_t> cCacheHT::GetAddress(int32_t hash) const {
    std::vector<int32_t> blocks;
    for (int32_t q : GeHashIndexs(hash))
        blocks.push_back(table_[static_cast<size_t>(q)].block);
    return blocks;
}

int32_t cCacheHT::GetAddressIndex(int32_t index) const {
    if (index < 0 || index >= Count()) return 0;
    return table_[static_cast<size_t>(index)].block;
}

bool cCacheHT::SetNewAddress(int32_t hash, int32_t block) {
    return Guarded("cCacheHT.SetNewAddress", false, [&] {
        int32_t p = HashIndex(hash);
        if (!table_.empty() && table_[static_cast<size_t>(std::min(p, Count() - 1))].hash < hash) {
            ++p;
        }
        p = std::clamp(p, 0, Count());
        table_.insert(table_.begin() + p, Entry{hash, block});
        return SaveHashTable();
    });
}

void cCacheHT::DelAddressIndex(int32_t index) {
    if (table_.size() < 2) {
        table_.clear();
        return;
    }
    if (index < 0 || index >= Count()) return;
    table_.erase(table_.begin() + index);
}

bool cCacheHT::DelAddress(int32_t hash, int32_t block) {
    return Guarded("cCacheHT.DelAddress", false, [&] {
        for (int32_t q : GeHashIndexs(hash)) {
            if (table_[static_cast<size_t>(q)].block == block) {
                DelAddressIndex(q);
                return SaveHashTable();
            }
        }
        return false;
    });
}

bool cCacheHT::DelAllAddress() {
    table_.clear();
    return SaveHashTable();
}

bool cCacheHT::UpdateAddress(int32_t hash, int32_t oldBlock, int32_t newBlock) {
    return Guarded("cCacheHT.UpdateAddress", false, [&] {
        for (int32_t q : GeHashIndexs(hash)) {
            if (table_[static_cast<size_t>(q)].block == oldBlock) {
                table_[static_cast<size_t>(q)].block = newBlock;
                return SaveHashTable();
            }
        }
        return false;
    });
}

int32_t cCacheHT::GetFlush() {
    const int32_t count = Count();
    if (count == 0 || count < globals_.Settings.cache_size) return kUnset;
    // Rounding can give the count itself, one past the table: draw again. A
    // source that keeps giving such draws ends on the last entry.
    for (int attempt = 0; attempt < 8; ++attempt) {
        int32_t position = 0;
        if (ToInt32(random_.Next() * count, position) && position >= 0 && position < count) {
            return position;
        }
    }
    return count - 1;
}

}  // namespace toval
