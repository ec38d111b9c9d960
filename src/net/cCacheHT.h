// The cache's table, file cache.id: the free list of cache.dat blocks, a 0
// terminator, then { hash, block } pairs sorted by signed hash, all 32-bit
// little-endian. Equal hashes stand next to each other.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "config/cSettings.h"
#include "platform/Random.h"

namespace toval {

class cCacheHT {
  public:
    struct Entry {
        int32_t hash = 0;
        int32_t block = 0;
        bool operator==(const Entry&) const = default;
    };

    // cache_size is read from globals.Settings whenever GetFlush asks.
    cCacheHT(const cGlobals& globals, Random& random);

    const std::u16string& FileAddress() const { return fileAddress_; }
    // Opens the file (creating it) and loads free list and table from it.
    void setFileAddress(const std::u16string& path);
    // True when the file could be opened or created.
    bool IsOpen() const { return open_; }

    std::vector<int32_t> FreeAddress() const { return free_; }
    void setFreeAddress(std::vector<int32_t> freeList) { free_ = std::move(freeList); }

    // The block numbers of all entries with that hash.
    std::vector<int32_t> GetAddress(int32_t hash) const;
    // The block number of the entry at a table position; 0 outside the table.
    int32_t GetAddressIndex(int32_t index) const;
    // Inserts an entry in hash order and saves.
    bool SetNewAddress(int32_t hash, int32_t block);
    // Removes the entry with that hash and block and saves; false when absent.
    bool DelAddress(int32_t hash, int32_t block);
    // Removes the entry at a table position, without saving.
    void DelAddressIndex(int32_t index);
    // Empties the table (the free list stays) and saves.
    bool DelAllAddress();
    // The position of an entry to evict when the table holds cache_size
    // entries or more, drawn at random; kUnset when none need go.
    int32_t GetFlush();
    // Points the entry with that hash and old block at the new block, and saves.
    bool UpdateAddress(int32_t hash, int32_t oldBlock, int32_t newBlock);
    // Writes the whole file.
    bool SaveHashTable();

    // Table positions holding that hash.
    std::vector<int32_t> GeHashIndexs(int32_t hash) const;
    // A position near the hash by binary search (where it is, when present).
    int32_t HashIndex(int32_t hash) const;

    int32_t Count() const { return static_cast<int32_t>(table_.size()); }
    const std::vector<Entry>& Table() const { return table_; }

    // The file's bytes for a free list and a table.
    static std::string Serialize(const std::vector<int32_t>& freeList,
                                 const std::vector<Entry>& table);
    // Reads free list and table from the file's bytes; never fails.
    static void Parse(const std::string& bytes, std::vector<int32_t>& freeList,
                      std::vector<Entry>& table);

    // Asked before the table is written; returning false leaves the file as it
    // was (the program stopped before the write, as far as the disk knows).
    std::function<bool()> onSaving;

  private:
    // Sorts a loaded table by hash and drops entries that repeat a block.
    void Repair();

    const cGlobals& globals_;
    Random& random_;
    std::u16string fileAddress_;
    bool open_ = false;
    std::vector<int32_t> free_;
    std::vector<Entry> table_;
};

}  // namespace toval
