#include "net/cCacheHT.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "fakes/FakeRandom.h"
#include "fakes/TempDir.h"
#include "net/CacheFiles.h"

namespace toval::test {
namespace {

using Table = std::vector<cCacheHT::Entry>;

class cCacheHTFile : public ::testing::Test {
  protected:
    void Open() { ht.setFileAddress(dir.file(u"cache.id")); }
    std::string Bytes() const { return dir.Read("cache.id"); }

    TempDir dir;
    cGlobals globals;
    FakeRandom random;
    cCacheHT ht{globals, random};
};

TEST_F(cCacheHTFile, SavesSortedByteForByteAndRepairsWhatItLoads) {
    Open();
    ht.setFreeAddress({7, 3});
    for (const auto& [hash, block] :
         Table{{10, 1}, {-5, 2}, {10, 4}, {INT32_MIN, 5}, {INT32_MAX, 6}})
        ASSERT_TRUE(ht.SetNewAddress(hash, block));
    // Signed order; the newer of two equal hashes goes in front of the older.
    EXPECT_EQ(Bytes(), Le({7, 3, 0, INT32_MIN, 5, -5, 2, 10, 4, 10, 1, INT32_MAX, 6}));
    EXPECT_EQ(ht.GetAddress(10), (std::vector<int32_t>{4, 1}));
    EXPECT_TRUE(ht.GetAddress(0).empty());
    EXPECT_TRUE(ht.UpdateAddress(10, 1, 99));
    cCacheHT again{globals, random};
    again.setFileAddress(dir.file(u"cache.id"));
    EXPECT_EQ(again.Table(), ht.Table());

    // A shorter table replaces a longer file whole: no old tail survives.
    ht.setFreeAddress({});
    ASSERT_TRUE(ht.DelAllAddress());
    EXPECT_EQ(Bytes(), Le({0}));
    EXPECT_FALSE(std::filesystem::exists(dir.path() / "cache.id.new"));

    // Out of order, a head block twice, a last entry cut short.
    dir.Write("cache.id", Le({7, 0, 9, 1, -3, 2, 9, 3, 4, 2, 0, 5, 6}));
    Open();
    EXPECT_EQ(ht.FreeAddress(), std::vector<int32_t>{7});
    EXPECT_EQ(ht.Table(), (Table{{-3, 2}, {0, 5}, {9, 1}, {9, 3}}));
    ht.DelAddressIndex(ht.Count());  // outside: nothing happens
    EXPECT_EQ(ht.Count(), 4);
}

TEST_F(cCacheHTFile, GetFlushDrawsInsideTheTableOnlyWhenFull) {
    Open();
    globals.Settings.cache_size = 2;
    ht.SetNewAddress(1, 1);
    EXPECT_EQ(ht.GetFlush(), kUnset);
    ht.SetNewAddress(2, 2);
    // random * count rounded half to even: 0.25 * 2 = 0.5 -> 0; 0.75 * 2 = 1.5 -> 2
    // lies past the table and is drawn again: 0.6 * 2 -> 1; a source stuck past
    // the table still ends inside it.
    random.draws = {0.25, 0.75, 0.6, 0.9999};
    EXPECT_EQ(ht.GetFlush(), 0);
    EXPECT_EQ(ht.GetFlush(), 1);
    EXPECT_EQ(ht.GetFlush(), 1);
    globals.Settings.cache_size = 0;
    ht.DelAllAddress();
    EXPECT_EQ(ht.GetFlush(), kUnset);  // nothing left to evict, whatever the size
}

}  // namespace
}  // namespace toval::test
