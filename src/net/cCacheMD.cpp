#include "net/cCacheMD.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <unordered_set>

#include "base/cErrorLog.h"
#include "base/mNumber.h"
#include "net/mHasher.h"

namespace toval {

namespace {

namespace fs = std::filesystem;

constexpr int32_t kTextAt = 8 + cCacheMD::kSignatureSize;  // 267

int32_t ReadInt32(const char* at) {
    uint32_t u = 0;
    for (int i = 0; i < 4; ++i)
        u |= static_cast<uint32_t>(static_cast<uint8_t>(at[i])) << (8 * i);
    return static_cast<int32_t>(u);
}

void WriteInt32(char* at, int32_t value) {
    const auto u = static_cast<uint32_t>(value);
    for (int i = 0; i < 4; ++i)
        at[i] = static_cast<char>((u >> (8 * i)) & 0xFF);
}

int64_t BlockOffset(int32_t block) {
    return (static_cast<int64_t>(block) - 1) * cCacheMD::kBlockSize;
}

// The most text bytes a chain can hold in a file of `blocks` whole blocks.
int64_t Capacity(int32_t blocks) {
    if (blocks < 1) return 0;
    return cCacheMD::kHeadText + static_cast<int64_t>(blocks - 1) * cCacheMD::kNextText;
}

// Blocks a text of `length` bytes takes.
int64_t BlocksFor(int64_t length) {
    if (length <= cCacheMD::kHeadText) return 1;
    return 1 + (length - cCacheMD::kHeadText + cCacheMD::kNextText - 1) / cCacheMD::kNextText;
}

}  // namespace

void cCacheMD::setFileAddress(const std::u16string& path) {
    Guarded("cCacheMD.FileAddress [Let]", [&] {
        if (file_.is_open()) file_.close();
        fileAddress_ = path;
        length_ = -1;
        const fs::path file(path);
        if (!fs::exists(file)) {
            std::ofstream create(file, std::ios::binary | std::ios::app);
            if (!create) throw std::runtime_error("cannot create the file");
        }
        // Unbuffered: every access is one whole block at a fresh position, so a
        // buffer would only add a copy and a larger read.
        file_.rdbuf()->pubsetbuf(nullptr, 0);
        file_.open(file, std::ios::binary | std::ios::in | std::ios::out);
        if (!file_.is_open()) throw std::runtime_error("cannot open the file");
    });
}

int64_t cCacheMD::Length() {
    if (!file_.is_open()) return 0;
    if (length_ < 0) {
        file_.clear();
        file_.seekg(0, std::ios::end);
        const auto end = static_cast<int64_t>(file_.tellg());
        if (!file_ || end < 0) {
            file_.clear();
            // Guessing 0 would put new blocks over the first entries.
            throw std::runtime_error("cannot measure the file");
        }
        length_ = end;
    }
    return length_;
}

int64_t cCacheMD::FileLength() {
    return Guarded("cCacheMD.FileLength", int64_t{0}, [&] { return Length(); });
}

int32_t cCacheMD::WholeBlocks() {
    return static_cast<int32_t>(std::min<int64_t>(Length() / kBlockSize, INT32_MAX));
}

int32_t cCacheMD::BlockCount() {
    return static_cast<int32_t>(std::min<int64_t>(FileLength() / kBlockSize, INT32_MAX));
}

bool cCacheMD::ReadBlock(int32_t block, char* out) {
    if (block < 1 || Length() < BlockOffset(block) + kBlockSize) return false;
    file_.clear();
    file_.seekg(BlockOffset(block));
    file_.read(out, kBlockSize);
    if (file_.gcount() != kBlockSize) {
        file_.clear();
        length_ = -1;
        return false;
    }
    return true;
}

void cCacheMD::WriteBlock(int32_t block, const char* data) {
    if (block < 1) throw std::runtime_error("block number out of range");
    const int64_t offset = BlockOffset(block);
    // Measured before the write: the length decides where new blocks go.
    const int64_t before = Length();
    file_.clear();
    file_.seekp(offset);
    file_.write(data, kBlockSize);
    if (!file_) {
        file_.clear();
        length_ = -1;
        throw std::runtime_error("cannot write a block");
    }
    length_ = std::max(before, offset + kBlockSize);
}

int32_t cCacheMD::GetNextFreeAddress(std::vector<int32_t>& freeList, int32_t pending) {
    if (!freeList.empty()) {
        const int32_t block = freeList.back();
        freeList.pop_back();
        return block;
    }
    const int64_t block = Length() / kBlockSize + 1 + pending;
    if (block > INT32_MAX) throw std::runtime_error("the block file is full");
    return static_cast<int32_t>(block);
}

bool cCacheMD::IsFile(int32_t block, std::string_view key) {
    return Guarded("cCacheMD.IsFile", false, [&] {
        char head[kBlockSize];
        if (!ReadBlock(block, head)) return false;
        const std::string signature = GetStrHash(key, kSignatureSize);
        return std::memcmp(head + 8, signature.data(), kSignatureSize) == 0;
    });
}

std::string cCacheMD::Assemble(const char* head) {
    const int32_t total = ReadInt32(head);
    const int32_t blocks = WholeBlocks();
    // A length that no chain in this file could hold is damage: a miss.
    if (total < 0 || total > Capacity(blocks)) return {};
    const auto want = static_cast<size_t>(total);
    std::string text(head + kTextAt, static_cast<size_t>(kHeadText));
    int32_t next = ReadInt32(head + 4);
    char block[kBlockSize];
    // Each step adds a block, so a chain that loops ends here too.
    for (int32_t steps = 1; next != 0 && text.size() < want && steps < blocks; ++steps) {
        if (!ReadBlock(next, block)) break;
        text.append(block + 4, static_cast<size_t>(kNextText));
        next = ReadInt32(block);
    }
    if (text.size() > want) text.resize(want);
    if (text.size() != want) return {};
    return text;
}

std::string cCacheMD::GetData(int32_t block) {
    return Guarded("cCacheMD.GetData", std::string(), [&] {
        char head[kBlockSize];
        if (!ReadBlock(block, head)) return std::string();
        return Assemble(head);
    });
}

bool cCacheMD::GetDataIfKey(int32_t block, std::string_view signature, std::string& text) {
    return Guarded("cCacheMD.GetData", false, [&] {
        char head[kBlockSize];
        if (signature.size() != kSignatureSize || !ReadBlock(block, head)) return false;
        if (std::memcmp(head + 8, signature.data(), kSignatureSize) != 0) return false;
        text = Assemble(head);
        return true;
    });
}

int32_t cCacheMD::SetData(std::vector<int32_t>& freeList, std::string_view key,
                          std::string_view text) {
    return Guarded("cCacheMD.SetData", kUnset, [&]() -> int32_t {
        if (!file_.is_open() || text.empty()) return kUnset;
        if (text.size() > static_cast<size_t>(INT32_MAX)) return kUnset;
        const int32_t blocksInFile = WholeBlocks();
        std::unordered_set<int32_t> used;
        int32_t lastNew = 0;  // highest block this write has taken past the end
        auto nextBlock = [&](int32_t pending) {
            for (;;) {
                const bool fromList = !freeList.empty();
                int32_t block = GetNextFreeAddress(freeList, pending);
                if (fromList) {
                    // A free list read from disk may name anything; only whole
                    // blocks of the file that this chain has not taken will do.
                    if (block < 1 || block > blocksInFile || used.count(block)) continue;
                } else if (block <= lastNew) {
                    // The successor is chosen before its predecessor is written,
                    // so once the chain runs past the end the file length lags
                    // behind; never hand out a block this chain already holds.
                    if (lastNew == INT32_MAX) throw std::runtime_error("the block file is full");
                    block = lastNew + 1;
                }
                if (!fromList) lastNew = block;
                used.insert(block);
                return block;
            }
        };

        char buffer[kBlockSize];
        const int32_t head = nextBlock(0);
        std::memset(buffer, ' ', sizeof buffer);
        WriteInt32(buffer, static_cast<int32_t>(text.size()));
        const std::string signature = GetStrHash(key, kSignatureSize);
        std::memcpy(buffer + 8, signature.data(), kSignatureSize);
        std::string_view rest = text;
        int32_t next = 0;
        if (rest.size() < static_cast<size_t>(kHeadText) + 1) {
            std::memcpy(buffer + kTextAt, rest.data(), rest.size());
            rest = {};
        } else {
            std::memcpy(buffer + kTextAt, rest.data(), kHeadText);
            rest.remove_prefix(kHeadText);
            next = nextBlock(1);
        }
        WriteInt32(buffer + 4, next);
        WriteBlock(head, buffer);

        while (next != 0) {
            const int32_t block = next;
            std::memset(buffer, ' ', sizeof buffer);
            if (rest.size() < static_cast<size_t>(kNextText) + 1) {
                std::memcpy(buffer + 4, rest.data(), rest.size());
                rest = {};
                next = 0;
            } else {
                std::memcpy(buffer + 4, rest.data(), kNextText);
                rest.remove_prefix(kNextText);
                next = nextBlock(1);
            }
            WriteInt32(buffer, next);
            WriteBlock(block, buffer);
        }
        // On disk before the table names the entry.
        file_.flush();
        if (!file_) {
            file_.clear();
            throw std::runtime_error("cannot write the blocks");
        }
        return head;
    });
}

void cCacheMD::DelData(int32_t block, std::vector<int32_t>& freeList) {
    Guarded("cCacheMD.DelData", [&] {
        char buffer[kBlockSize];
        if (!ReadBlock(block, buffer)) return;
        std::unordered_set<int32_t> isFree(freeList.begin(), freeList.end());
        // A block freed twice would be handed to two entries.
        if (!isFree.insert(block).second) return;
        freeList.push_back(block);

        const int32_t blocks = WholeBlocks();
        const int32_t total = ReadInt32(buffer);
        // The continuation blocks are freed only when the chain is exactly what
        // the head's length asks for: a chain that runs longer, loops, or meets
        // a free block may have run into another entry, whose blocks must not
        // be handed out. Such an entry frees its head alone; the rest is lost
        // room, never lost data.
        const int64_t needed =
            (total < 0 || total > Capacity(blocks)) ? 1 : BlocksFor(static_cast<int64_t>(total));
        std::vector<int32_t> chain;
        bool whole = false;
        for (int32_t next = ReadInt32(buffer + 4);;) {
            const auto count = static_cast<int64_t>(chain.size()) + 1;
            if (next == 0) {
                whole = count == needed;
                break;
            }
            if (count >= needed || next < 1 || next > blocks || isFree.count(next) ||
                std::find(chain.begin(), chain.end(), next) != chain.end()) {
                break;
            }
            chain.push_back(next);
            // A continuation's successor is followed only when the file goes on
            // past the block: the very last block of the file ends the walk.
            if (Length() < BlockOffset(next) + kBlockSize + 1) {
                whole = count + 1 == needed;
                break;
            }
            if (!ReadBlock(next, buffer)) break;
            next = ReadInt32(buffer);
        }
        if (whole) freeList.insert(freeList.end(), chain.begin(), chain.end());
    });
}

}  // namespace toval
