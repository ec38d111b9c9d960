#include "net/cCacheHT.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "fakes/FakeRandom.h"
#include "fakes/TempDir.h"
#include "net/CacheFiles.h"

namespace toval::test {
namespace {

using namespace std::string_literals;
using Entry = cCacheHT::Entry;

TEST(cCacheHT, ParsesEveryShapeOfFile) {
    struct Case {
        const char* name;
        std::string bytes;
        std::vector<int32_t> free;
        std::vector<Entry> table;
    };
    const Case cases[] = {
        {"empty file", "", {}, {}},
        {"terminator only", Le({0}), {}, {}},
        {"twelve-byte table part is one entry", Le({0, 5, 7}) + "abcd", {}, {{5, 7}}},
        {"free list and table", Le({3, 9, 0, -4, 1, 8, 2}), {3, 9}, {{-4, 1}, {8, 2}}},
        {"no terminator: all free list", Le({3, 9}), {3, 9}, {}},
        {"odd length", Le({4, 0, 1, 2}) + "\x01", {4}, {{1, 2}}},
        {"short tail after a value", Le({4}) + "\x01\x02", {4}, {}},
        {"table cut mid-entry", Le({0, 1, 2, 3}), {}, {{1, 2}}},
    };
    for (const Case& c : cases) {
        std::vector<int32_t> freeList{42};
        std::vector<Entry> table{{1, 1}};
        cCacheHT::Parse(c.bytes, freeList, table);
        EXPECT_EQ(freeList, c.free) << c.name;
        EXPECT_EQ(table, c.table) << c.name;
    }
    EXPECT_EQ(cCacheHT::Serialize({3, 9}, {{-4, 1}, {8, 2}}), Le({3, 9, 0, -4, 1, 8, 2}));
    EXPECT_EQ(cCacheHT::Serialize({}, {}), Le({0}));
}

class cCacheHTFile : public ::testing::Test {
  protected:
    std::filesystem::path File() const { return dir.path() / "cache.id"; }
    void Open() { ht.setFileAddress(dir.file(u"cache.id")); }

    TempDir dir;
    cGlobals globals;
    FakeRandom random;
    cCacheHT ht{globals, random};
};

TEST_F(cCacheHTFile, CreatesLoadsAndSavesTheFileByteForByte) {
    Open();
    ASSERT_TRUE(ht.IsOpen());
    EXPECT_TRUE(std::filesystem::exists(File()));
    EXPECT_EQ(ht.Count(), 0);

    ht.setFreeAddress({7, 3});
    ASSERT_TRUE(ht.SetNewAddress(10, 1));
    ASSERT_TRUE(ht.SetNewAddress(-5, 2));
    ASSERT_TRUE(ht.SetNewAddress(10, 4));
    ASSERT_TRUE(ht.SetNewAddress(INT32_MIN, 5));
    ASSERT_TRUE(ht.SetNewAddress(INT32_MAX, 6));
    // Signed order; the newer of two equal hashes goes in front of the older.
    EXPECT_EQ(Slurp(File()), Le({7, 3, 0, INT32_MIN, 5, -5, 2, 10, 4, 10, 1, INT32_MAX, 6}));

    // A shorter table replaces a longer file whole: no old tail survives.
    ht.setFreeAddress({});
    ASSERT_TRUE(ht.DelAllAddress());
    EXPECT_EQ(Slurp(File()), Le({0}));
    EXPECT_FALSE(std::filesystem::exists(dir.path() / "cache.id.new"));

    Spit(File(), Le({2, 0, 1, 11, 3, 33}));
    Open();
    EXPECT_EQ(ht.FreeAddress(), std::vector<int32_t>{2});
    EXPECT_EQ(ht.Table(), (std::vector<Entry>{{1, 11}, {3, 33}}));
}

TEST_F(cCacheHTFile, RepairsATableOutOfOrderOrWithAHeadBlockTwice) {
    Spit(File(), Le({0, 9, 1, -3, 2, 9, 3, 4, 2, 0, 5}));
    Open();
    EXPECT_EQ(ht.Table(), (std::vector<Entry>{{-3, 2}, {0, 5}, {9, 1}, {9, 3}}));
    EXPECT_EQ(ht.GetAddress(9), (std::vector<int32_t>{1, 3}));
}

TEST_F(cCacheHTFile, FindsInsertsUpdatesAndRemovesByHash) {
    Open();
    EXPECT_EQ(ht.HashIndex(5), 0);  // empty table
    EXPECT_TRUE(ht.GetAddress(5).empty());
    for (int32_t h : {50, 10, 30, 30, 30, 20, 40, -10})
        ht.SetNewAddress(h, h * 100 + ht.Count());
    for (size_t i = 1; i < ht.Table().size(); ++i) {
        EXPECT_LE(ht.Table()[i - 1].hash, ht.Table()[i].hash);
    }
    EXPECT_EQ(ht.GetAddress(30).size(), 3u);
    EXPECT_EQ(ht.GeHashIndexs(30).size(), 3u);
    for (int32_t h : {-10, 10, 20, 40, 50})
        EXPECT_EQ(ht.GetAddress(h).size(), 1u) << h;
    for (int32_t h : {-20, 0, 25, 60, INT32_MIN, INT32_MAX})
        EXPECT_TRUE(ht.GetAddress(h).empty());

    EXPECT_EQ(ht.GetAddressIndex(-1), 0);
    EXPECT_EQ(ht.GetAddressIndex(ht.Count()), 0);
    EXPECT_EQ(ht.GetAddressIndex(0), -10 * 100 + 7);

    const int32_t someThirty = ht.GetAddress(30)[1];
    EXPECT_TRUE(ht.UpdateAddress(30, someThirty, 99));
    EXPECT_FALSE(ht.UpdateAddress(30, someThirty, 98));  // no longer there
    EXPECT_TRUE(ht.DelAddress(30, 99));
    EXPECT_FALSE(ht.DelAddress(30, 99));
    EXPECT_EQ(ht.GetAddress(30).size(), 2u);

    // What was saved is what a fresh load sees.
    cCacheHT again{globals, random};
    again.setFileAddress(dir.file(u"cache.id"));
    EXPECT_EQ(again.Table(), ht.Table());

    ht.DelAddressIndex(ht.Count());  // outside: nothing happens
    EXPECT_EQ(ht.Count(), 7);
    while (ht.Count() > 1)
        ht.DelAddressIndex(0);
    ht.DelAddressIndex(5);  // a table of fewer than two entries just empties
    EXPECT_EQ(ht.Count(), 0);
}

TEST_F(cCacheHTFile, GetFlushDrawsInsideTheTableOnlyWhenFull) {
    Open();
    globals.Settings.cache_size = 2;
    EXPECT_EQ(ht.GetFlush(), kUnset);  // empty
    ht.SetNewAddress(1, 1);
    EXPECT_EQ(ht.GetFlush(), kUnset);
    ht.SetNewAddress(2, 2);

    // random * count rounded half to even: 0.25 * 2 = 0.5 -> 0, 0.75 * 2 = 1.5 -> 2,
    // which lies past the table and is drawn again.
    random.draws = {0.25, 0.75, 0.6, 0.9999};
    EXPECT_EQ(ht.GetFlush(), 0);
    EXPECT_EQ(ht.GetFlush(), 1);  // 1.5 -> 2 is drawn again, 0.6 * 2 = 1.2 -> 1
    // A source stuck past the table still ends inside it.
    EXPECT_EQ(ht.GetFlush(), 1);

    globals.Settings.cache_size = 0;
    ht.DelAllAddress();
    EXPECT_EQ(ht.GetFlush(), kUnset);  // nothing left to evict, whatever the size
}

TEST_F(cCacheHTFile, AWriteStoppedBeforeTheTableLeavesTheFileAlone) {
    Open();
    ht.SetNewAddress(1, 1);
    const std::string before = Slurp(File());
    ht.onSaving = [] { return false; };
    EXPECT_FALSE(ht.SetNewAddress(2, 2));
    EXPECT_EQ(Slurp(File()), before);
}

}  // namespace
}  // namespace toval::test
