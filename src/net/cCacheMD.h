// The cache's block file, cache.dat: 1024-byte blocks, block n at byte
// (n - 1) * 1024. An entry is a chain of blocks. The head block holds the
// total length, the next block, the 259-byte key signature and the first 757
// bytes of the text; a continuation block holds the next block and 1020 more.
// Unused room is padded with blanks. The file may be damaged in any way: a
// block that is not whole reads as absent, a chain that does not add up reads
// as a miss, and every walk of a chain is bounded by the blocks in the file.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace toval {

class cCacheMD {
  public:
    static constexpr int32_t kBlockSize = 1024;
    static constexpr int32_t kSignatureSize = 259;
    static constexpr int32_t kHeadText = 757;   // text bytes in a head block
    static constexpr int32_t kNextText = 1020;  // text bytes in a continuation

    cCacheMD() = default;
    cCacheMD(const cCacheMD&) = delete;
    cCacheMD& operator=(const cCacheMD&) = delete;

    const std::u16string& FileAddress() const { return fileAddress_; }
    // Closes any open file, then opens this one for reading and writing,
    // creating it when missing.
    void setFileAddress(const std::u16string& path);
    bool IsOpen() const { return file_.is_open(); }

    // The head block exists whole and carries the signature of this key.
    bool IsFile(int32_t block, std::string_view key);
    // The stored text of the chain, or empty when the entry is damaged.
    std::string GetData(int32_t block);
    // IsFile and GetData with one read of the head block: false when the
    // signature differs (text untouched), else true with the text (empty when
    // damaged). `signature` is GetStrHash(key, kSignatureSize).
    bool GetDataIfKey(int32_t block, std::string_view signature, std::string& text);
    // Writes the text as a new chain, taking blocks from the free list (last
    // first) and then from the end of the file; the head's block number, or
    // kUnset when nothing was written (closed file, empty text, failing disk).
    int32_t SetData(std::vector<int32_t>& freeList, std::string_view key, std::string_view text);
    // Appends the chain's blocks to the free list.
    void DelData(int32_t block, std::vector<int32_t>& freeList);

    // The number for a new block: the free list's last, else the first block
    // past the end of the file plus `pending` blocks chosen but not yet written.
    int32_t GetNextFreeAddress(std::vector<int32_t>& freeList, int32_t pending);

    // Length of the file in bytes, and whole blocks in it (0 when closed or
    // unmeasurable).
    int64_t FileLength();
    int32_t BlockCount();

  private:
    // The length, or an exception when the open file cannot be measured.
    int64_t Length();
    // Whole blocks in the file; throws like Length.
    int32_t WholeBlocks();

    // Reads block `block` when it lies whole in the file.
    bool ReadBlock(int32_t block, char* out);
    // Writes a whole block; throws when the disk refuses.
    void WriteBlock(int32_t block, const char* data);
    // The text of the chain that starts with this head block, or empty when
    // the chain does not add up to the head's total length.
    std::string Assemble(const char* head);

    std::u16string fileAddress_;
    std::fstream file_;
    // The file's length, measured once and kept up to date by the writes;
    // -1 when it must be measured again.
    int64_t length_ = -1;
};

}  // namespace toval
