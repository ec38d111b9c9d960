#include "net/cCacheMD.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "fakes/TempDir.h"
#include "net/CacheFiles.h"

namespace toval::test {
namespace {

using namespace std::string_literals;
using Blocks = std::vector<int32_t>;
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
    std::string Bytes() const { return dir.Read("cache.dat"); }
    // Replaces an int32 of the file, the object's handle open all along.
    void Patch(size_t at, int32_t value) {
        std::fstream f(File(), std::ios::binary | std::ios::in | std::ios::out);
        f.seekp(static_cast<std::streamoff>(at));
        f.write(Le({value}).data(), 4);
    }
    Blocks Freed(int32_t head) {
        Blocks freeList;
        md.DelData(head, freeList);
        return freeList;
    }

    TempDir dir;
    cCacheMD md;
    Blocks none;
};

TEST_F(cCacheMDFile, LaysOutBlocksByteForByteAndReadsBackEveryLengthAroundTheirEdges) {
    const std::string key = "A\0r\0t\0 \0 T\0 \0212"s;
    // 757 bytes fill one head block exactly, 758 take a second block padded with
    // blanks; 1777 fill a continuation block exactly.
    int32_t expected = 1;
    for (size_t length : {757u, 758u, 1777u, 1778u, 20000u}) {
        ASSERT_EQ(md.SetData(none, key, Text(length)), expected) << length;
        EXPECT_EQ(md.GetData(expected), Text(length));
        expected += static_cast<int32_t>(length <= 757 ? 1 : 1 + (length - 757 + 1019) / 1020);
    }
    const std::string file = Bytes();
    EXPECT_EQ(file.size(), size_t(expected - 1) * kBlock);
    EXPECT_EQ(file.substr(0, 267), Le({757, 0}) + key + std::string(259 - key.size(), '\0'));
    EXPECT_EQ(file.substr(267, 757), Text(757));
    EXPECT_EQ(file.substr(kBlock, 8), Le({758, 3}));
    EXPECT_EQ(file.substr(2 * kBlock, kBlock),
              Le({0}) + Text(758).substr(757) + std::string(1019, ' '));
    EXPECT_FALSE(md.IsFile(expected, key));
}

TEST_F(cCacheMDFile, TakesFreeBlocksLastFirstAndDisbelievesBadOnes) {
    ASSERT_EQ(md.SetData(none, "a", Text(100)), 1);
    ASSERT_EQ(md.SetData(none, "b", Text(100)), 2);
    Blocks freeList = Freed(1);
    md.DelData(2, freeList);
    EXPECT_EQ(freeList, (Blocks{1, 2}));
    // The head from the free list (2), the next from the list too (1), then past
    // the end: each successor is picked before its predecessor is written, while
    // the file still has 2 blocks, so block 3 stays a hole and the chain counts
    // up from 4: 2 -> 1 -> 4 -> 5 -> 6.
    ASSERT_EQ(md.SetData(freeList, "c", Text(757 + 4 * 1020)), 2);
    EXPECT_TRUE(freeList.empty());
    const std::string file = Bytes();
    EXPECT_EQ((Blocks{IntAt(file, kBlock + 4), IntAt(file, 0), IntAt(file, 3 * kBlock),
                      IntAt(file, 4 * kBlock), IntAt(file, 5 * kBlock)}),
              (Blocks{1, 4, 5, 6, 0}));
    EXPECT_EQ(file.substr(2 * kBlock, kBlock), std::string(kBlock, '\0'));
    EXPECT_EQ(md.GetData(2), Text(757 + 4 * 1020));

    // Past the end, twice the same block, zero and negative numbers.
    freeList = {-4, 0, 99999, INT32_MAX, 3, 3};
    EXPECT_EQ(md.SetData(freeList, "e", Text(3000)), 3);
    EXPECT_TRUE(freeList.empty());
    EXPECT_EQ(md.GetData(3), Text(3000));
    EXPECT_EQ(Bytes().size(), 10 * kBlock);  // 3 -> 8 -> 9 -> 10
}

TEST_F(cCacheMDFile, DamagedOrCutEntriesReadAsMissesAndFreeNoForeignBlock) {
    ASSERT_EQ(md.SetData(none, "a", Text(3000)), 1);  // blocks 1..4
    ASSERT_EQ(md.SetData(none, "b", Text(3000)), 5);  // blocks 5..8
    // A total length more than the file could hold: its links are not trusted.
    Patch(0, INT32_MAX);
    EXPECT_EQ(md.GetData(1), "");
    EXPECT_EQ(Freed(1), Blocks{1});
    Patch(0, 3000);
    // A chain that loops back on itself (1 -> 2 -> 1): only the head is freed.
    Patch(kBlock, 1);
    EXPECT_EQ(md.GetData(1), "");
    EXPECT_EQ(Freed(1), Blocks{1});
    Patch(kBlock, 3);
    // The chain as written frees whole, and only once.
    Blocks freeList = Freed(1);
    md.DelData(1, freeList);
    EXPECT_EQ(freeList, (Blocks{1, 2, 3, 4}));
    // The last block of the file ends the walk: its own link is not read.
    Patch(7 * kBlock, 1);
    EXPECT_EQ(Freed(5), (Blocks{5, 6, 7, 8}));

    // A truncated file loses only the entries cut, whose chains end short; a new
    // block goes over the cut one, at a whole-block offset.
    std::filesystem::resize_file(File(), 6 * kBlock + 100);
    md.setFileAddress(dir.file(u"cache.dat"));
    EXPECT_EQ(md.GetData(1), Text(3000));
    EXPECT_EQ(md.GetData(5), "");
    EXPECT_EQ(Freed(5), Blocks{5});
    EXPECT_EQ(md.SetData(none, "c", Text(10)), 7);
    EXPECT_EQ(Bytes().size(), 7 * kBlock);
    EXPECT_EQ(md.GetData(7), Text(10));
}

}  // namespace
}  // namespace toval::test
