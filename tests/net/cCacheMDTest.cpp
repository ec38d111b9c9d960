#include "net/cCacheMD.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "base/mNumber.h"
#include "fakes/TempDir.h"
#include "net/CacheFiles.h"
#include "net/mHasher.h"

namespace toval::test {
namespace {

using namespace std::string_literals;

constexpr size_t kBlock = 1024;

// A text whose every byte tells where it stands, so a misplaced block shows.
std::string Text(size_t length) {
    std::string text;
    for (size_t i = 0; i < length; ++i)
        text.push_back(static_cast<char>('!' + (i * 7) % 90));
    return text;
}

class cCacheMDFile : public ::testing::Test {
  protected:
    void SetUp() override { md.setFileAddress(dir.file(u"cache.dat")); }
    std::filesystem::path File() const { return dir.path() / "cache.dat"; }
    std::string Bytes() const { return Slurp(File()); }
    // Replaces bytes of the file, the object's handle open all along.
    void Patch(size_t at, const std::string& bytes) {
        std::fstream f(File(), std::ios::binary | std::ios::in | std::ios::out);
        f.seekp(static_cast<std::streamoff>(at));
        f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    void Reopen() { md.setFileAddress(dir.file(u"cache.dat")); }

    TempDir dir;
    cCacheMD md;
    std::vector<int32_t> none;
};

TEST_F(cCacheMDFile, LaysOutHeadAndContinuationBlocksByteForByte) {
    ASSERT_TRUE(md.IsOpen());
    const std::string key = "A\0r\0t\0 \0 T\0 \0212"s;
    // 757 bytes fill one head block exactly.
    ASSERT_EQ(md.SetData(none, key, Text(757)), 1);
    std::string file = Bytes();
    ASSERT_EQ(file.size(), kBlock);
    EXPECT_EQ(IntAt(file, 0), 757);
    EXPECT_EQ(IntAt(file, 4), 0);
    EXPECT_EQ(file.substr(8, 259), key + std::string(259 - key.size(), '\0'));
    EXPECT_EQ(file.substr(267), Text(757));

    // 758 bytes take two blocks, the second holding one byte and blanks.
    ASSERT_EQ(md.SetData(none, key, Text(758)), 2);
    file = Bytes();
    ASSERT_EQ(file.size(), 3 * kBlock);
    EXPECT_EQ(IntAt(file, kBlock), 758);
    EXPECT_EQ(IntAt(file, kBlock + 4), 3);
    EXPECT_EQ(IntAt(file, 2 * kBlock), 0);
    EXPECT_EQ(file.substr(2 * kBlock + 4), Text(758).substr(757) + std::string(1019, ' '));

    // A short text is padded with blanks.
    ASSERT_EQ(md.SetData(none, key, "hi"), 4);
    file = Bytes();
    EXPECT_EQ(file.substr(3 * kBlock + 267), "hi" + std::string(755, ' '));

    EXPECT_TRUE(md.IsFile(1, key));
    EXPECT_FALSE(md.IsFile(1, key + "x"));
    EXPECT_FALSE(md.IsFile(0, key));
    EXPECT_FALSE(md.IsFile(5, key));
    EXPECT_EQ(md.GetData(1), Text(757));
    EXPECT_EQ(md.GetData(2), Text(758));
    EXPECT_EQ(md.GetData(4), "hi");
}

TEST_F(cCacheMDFile, ReadsBackEveryLengthAroundTheBlockEdges) {
    int32_t expected = 1;
    for (size_t length : {1u, 756u, 757u, 758u, 1776u, 1777u, 1778u, 2797u, 2798u, 20000u}) {
        const std::string key = "key" + std::to_string(length);
        const int32_t head = md.SetData(none, key, Text(length));
        ASSERT_EQ(head, expected) << length;
        expected += static_cast<int32_t>(length <= 757 ? 1 : 1 + (length - 757 + 1019) / 1020);
        EXPECT_EQ(md.GetData(head), Text(length)) << length;
        std::string text;
        EXPECT_TRUE(md.GetDataIfKey(head, GetStrHash(key, 259), text));
        EXPECT_EQ(text, Text(length));
        EXPECT_FALSE(md.GetDataIfKey(head, GetStrHash("other", 259), text));
    }
    EXPECT_EQ(Bytes().size(), size_t(expected - 1) * kBlock);
    EXPECT_EQ(md.SetData(none, "key", ""), kUnset);
    EXPECT_EQ(Bytes().size(), size_t(expected - 1) * kBlock);
}

TEST_F(cCacheMDFile, TakesFreeBlocksLastFirstAndLeavesOneBlockHoleAfterThem) {
    ASSERT_EQ(md.SetData(none, "a", Text(100)), 1);
    ASSERT_EQ(md.SetData(none, "b", Text(100)), 2);
    std::vector<int32_t> freeList;
    md.DelData(1, freeList);
    md.DelData(2, freeList);
    EXPECT_EQ(freeList, (std::vector<int32_t>{1, 2}));

    // Head from the free list (2), the next from the list too (1), then past
    // the end: the successor is picked while the file still has 2 blocks, one
    // further along, so block 3 stays a hole.
    ASSERT_EQ(md.SetData(freeList, "c", Text(757 + 1020 + 10)), 2);
    EXPECT_TRUE(freeList.empty());
    std::string file = Bytes();
    ASSERT_EQ(file.size(), 4 * kBlock);
    EXPECT_EQ(IntAt(file, kBlock + 4), 1);
    EXPECT_EQ(IntAt(file, 0), 4);
    EXPECT_EQ(file.substr(2 * kBlock, kBlock), std::string(kBlock, '\0'));
    EXPECT_EQ(md.GetData(2), Text(1787));

    // Several blocks past the end after a free head: one hole, then a chain
    // that counts up from it and reads back whole.
    freeList.clear();
    md.DelData(2, freeList);  // frees 2, 1, 4
    EXPECT_EQ(freeList, (std::vector<int32_t>{2, 1, 4}));
    const size_t big = 757 + 5 * 1020;
    ASSERT_EQ(md.SetData(freeList, "d", Text(big)), 4);
    file = Bytes();
    EXPECT_EQ(IntAt(file, 3 * kBlock + 4), 1);  // 4 -> 1 -> 2 -> 6 -> 7 -> 8
    EXPECT_EQ(IntAt(file, 0), 2);
    EXPECT_EQ(IntAt(file, kBlock), 6);
    EXPECT_EQ(IntAt(file, 5 * kBlock), 7);
    EXPECT_EQ(IntAt(file, 6 * kBlock), 8);
    EXPECT_EQ(IntAt(file, 7 * kBlock), 0);
    EXPECT_EQ(md.GetData(4), Text(big));
}

TEST_F(cCacheMDFile, AFreeListFromDiskThatNamesBadBlocksIsNotBelieved) {
    ASSERT_EQ(md.SetData(none, "a", Text(10)), 1);
    ASSERT_EQ(md.SetData(none, "b", Text(10)), 2);
    // Past the end, twice the same block, zero and negative numbers.
    std::vector<int32_t> freeList{-4, 0, 99999, INT32_MAX, 1, 1};
    const int32_t head = md.SetData(freeList, "c", Text(3000));
    EXPECT_EQ(head, 1);
    EXPECT_TRUE(freeList.empty());
    EXPECT_EQ(md.GetData(1), Text(3000));
    EXPECT_EQ(md.GetData(2), Text(10));
    EXPECT_LT(Bytes().size(), 10 * kBlock);
}

TEST_F(cCacheMDFile, DamagedEntriesReadAsMissesAndFreeNoForeignBlock) {
    ASSERT_EQ(md.SetData(none, "a", Text(3000)), 1);  // blocks 1..4
    ASSERT_EQ(md.SetData(none, "b", Text(3000)), 5);  // blocks 5..8

    // Total length negative, or more than the file could hold.
    Patch(0, Le(-1));
    EXPECT_EQ(md.GetData(1), "");
    Patch(0, Le(INT32_MAX));
    EXPECT_EQ(md.GetData(1), "");
    std::vector<int32_t> freeList;
    md.DelData(1, freeList);
    EXPECT_EQ(freeList, std::vector<int32_t>{1});  // its links are not trusted
    Patch(0, Le(3000));

    // A chain that loops back on itself: 1 -> 2 -> 1. Reading and freeing stop;
    // only the head is freed, the chain's links being untrustworthy.
    Patch(kBlock, Le(1));
    EXPECT_EQ(md.GetData(1), "");
    freeList.clear();
    md.DelData(1, freeList);
    EXPECT_EQ(freeList, std::vector<int32_t>{1});

    // A link into the other entry (1 -> 2 -> 6 -> 7 -> 8) or a last block
    // that runs on into it (1 -> 2 -> 3 -> 4 -> 5): none of its blocks is freed.
    Patch(kBlock, Le(6));
    freeList.clear();
    md.DelData(1, freeList);
    EXPECT_EQ(freeList, std::vector<int32_t>{1});
    Patch(kBlock, Le(3));
    Patch(3 * kBlock, Le(5));
    EXPECT_EQ(md.GetData(1), Text(3000));  // reading stops at the length
    freeList.clear();
    md.DelData(1, freeList);
    EXPECT_EQ(freeList, std::vector<int32_t>{1});
    EXPECT_EQ(md.GetData(5), Text(3000));

    // The chain as written frees whole, and only once.
    Patch(3 * kBlock, Le(0));
    freeList.clear();
    md.DelData(1, freeList);
    EXPECT_EQ(freeList, (std::vector<int32_t>{1, 2, 3, 4}));
    md.DelData(1, freeList);
    EXPECT_EQ(freeList, (std::vector<int32_t>{1, 2, 3, 4}));
}

TEST_F(cCacheMDFile, ATruncatedFileLosesOnlyTheEntriesCut) {
    ASSERT_EQ(md.SetData(none, "a", Text(100)), 1);
    ASSERT_EQ(md.SetData(none, "b", Text(3000)), 2);  // 2..5
    std::filesystem::resize_file(File(), 4 * kBlock + 100);
    Reopen();
    EXPECT_EQ(md.BlockCount(), 4);
    EXPECT_EQ(md.GetData(1), Text(100));
    EXPECT_EQ(md.GetData(2), "");
    EXPECT_FALSE(md.IsFile(5, "b"));
    std::vector<int32_t> freeList;
    md.DelData(2, freeList);
    EXPECT_EQ(freeList, std::vector<int32_t>{2});  // the chain is cut short
    // A new block goes over the cut one, at a whole-block offset.
    EXPECT_EQ(md.SetData(none, "c", Text(10)), 5);
    EXPECT_EQ(Bytes().size(), 5 * kBlock);
    EXPECT_EQ(md.GetData(5), Text(10));
}

TEST_F(cCacheMDFile, TheLastBlockOfTheFileEndsTheFreeingWalk) {
    ASSERT_EQ(md.SetData(none, "a", Text(757 + 1020 + 5)), 1);  // 1 -> 2 -> 3
    // Block 3 is the last in the file: it is freed, but its own link is not
    // read, even if it names another block.
    Patch(2 * kBlock, Le(1));
    std::vector<int32_t> freeList;
    md.DelData(1, freeList);
    EXPECT_EQ(freeList, (std::vector<int32_t>{1, 2, 3}));
}

}  // namespace
}  // namespace toval::test
