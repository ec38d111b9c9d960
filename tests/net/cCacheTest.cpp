#include "net/cCache.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "fakes/CapturedTrail.h"
#include "fakes/FakeRandom.h"
#include "fakes/FakeShell.h"
#include "fakes/TempDir.h"
#include "lyric/cMusic.h"
#include "net/CacheFiles.h"
#include "net/mHasher.h"

namespace toval::test {
namespace {

using namespace std::string_literals;
namespace fs = std::filesystem;

std::shared_ptr<cMusic> Track(const std::u16string& artist, const std::u16string& title,
                              int32_t ms = 200000, const std::u16string& album = u"Album") {
    auto music = std::make_shared<cMusic>();
    music->setArtist(artist);
    music->setAlbum(album);
    music->setTitle(title);
    music->setMiliDuration(ms);
    return music;
}

// `length` characters of lyric: an accent, CJK, a surrogate pair and a line end,
// then letters from `seed` on, so that a block out of place shows.
std::u16string Lyric(size_t length, char16_t seed = u'a') {
    std::u16string text = u"\u00e9\u4e2d\xd83c\xdfb5\r\n";
    while (text.size() < length)
        text.push_back(char16_t(seed + text.size() % 26));
    return text.substr(0, length);
}

class cCacheTest : public ::testing::Test {
  protected:
    cCacheTest() { shell.specialFolder = dir.path().u16string(); }
    std::unique_ptr<cCache> Open() { return std::make_unique<cCache>(globals, shell, random); }
    uintmax_t DatSize() const { return fs::file_size(dir.path() / "Toval" / "cache.dat"); }

    TempDir dir;
    FakeShell shell;
    FakeRandom random;
    cGlobals globals;
    const std::shared_ptr<cMusic> a = Track(u"A", u"a"), b = Track(u"B", u"b"),
                                  c = Track(u"C", u"c");
};

TEST_F(cCacheTest, KeepsLyricsPerTrackInTheLocalDataFolderAcrossRuns) {
    EXPECT_EQ(cCache::TrackKey(*Track(u"A\u00e9", u"T", 212500, u"")),
              "A\0\xe9\0  T\0 212"s);  // 212.5 s rounds to even
    auto cache = Open();
    EXPECT_EQ(shell.folderQueries, std::vector<int32_t>{kFolderLocalAppData});
    ASSERT_TRUE(cache->SetLyric(a, Lyric(1500)));
    ASSERT_TRUE(cache->SetLyric(b, Lyric(10, u'k')));
    // Any field of the key makes another track; lengths that round to the same second do not.
    EXPECT_EQ(cache->GetLyric(Track(u"A", u"a", 200000, u"Live")), u"");
    EXPECT_EQ(cache->GetLyric(Track(u"A", u"a", 199600)), Lyric(1500));

    // Nothing to store, no track: false, and the stored text stays.
    EXPECT_FALSE(cache->SetLyric(a, u""));
    EXPECT_FALSE(cache->SetLyric(nullptr, u"text"));
    EXPECT_EQ(cache->GetLyric(nullptr), u"");

    cache.reset();  // closed before the next run opens it
    cache = Open();
    EXPECT_EQ(cache->GetLyric(a), Lyric(1500));
    EXPECT_EQ(cache->GetLyric(b), Lyric(10, u'k'));
}

TEST_F(cCacheTest, EqualHashesStayApartAndReplacingReusesTheFreedBlocks) {
    // Characters four bytes apart trade places: same hash, different keys.
    const auto x = Track(u"abcd", u"Song");
    const auto y = Track(u"cbad", u"Song");
    ASSERT_EQ(GetLngHash(cCache::TrackKey(*x)), GetLngHash(cCache::TrackKey(*y)));
    auto cache = Open();
    ASSERT_TRUE(cache->SetLyric(x, Lyric(1500)));  // blocks 1..4
    EXPECT_EQ(cache->GetLyric(y), u"");
    ASSERT_TRUE(cache->SetLyric(y, Lyric(100, u'b')));  // block 5
    ASSERT_TRUE(cache->SetLyric(x, Lyric(1500, u'A')));
    ASSERT_TRUE(cache->SetLyric(x, Lyric(1500, u'B')));
    EXPECT_EQ(cache->HashTable().Count(), 2);
    EXPECT_EQ(DatSize(), 9 * 1024u);  // the third text took the blocks the first left
    EXPECT_EQ(cache->GetLyric(x), Lyric(1500, u'B'));
    EXPECT_EQ(cache->GetLyric(y), Lyric(100, u'b'));
}

TEST_F(cCacheTest, AFullCacheEvictsAtRandom) {
    globals.Settings.cache_size = 1;
    auto cache = Open();
    ASSERT_TRUE(cache->SetLyric(a, Lyric(1500)));
    const auto size = DatSize();
    ASSERT_TRUE(cache->SetLyric(b, Lyric(1500, u'b')));
    EXPECT_EQ(cache->GetLyric(a), u"");
    EXPECT_EQ(cache->GetLyric(b), Lyric(1500, u'b'));
    EXPECT_EQ(DatSize(), size);  // b took a's blocks

    // A smaller size evicts down to it in one go.
    globals.Settings.cache_size = 3;
    ASSERT_TRUE(cache->SetLyric(c, Lyric(10, u'c')));
    ASSERT_TRUE(cache->SetLyric(a, Lyric(10, u'a')));
    globals.Settings.cache_size = 1;
    ASSERT_TRUE(cache->SetLyric(Track(u"D", u"d"), Lyric(20, u'd')));
    EXPECT_EQ(cache->HashTable().Count(), 1);
    EXPECT_EQ(cache->GetLyric(Track(u"D", u"d")), Lyric(20, u'd'));
}

TEST_F(cCacheTest, AWriteCutOffLeavesEveryOtherEntryReadable) {
    auto cache = Open();
    ASSERT_TRUE(cache->SetLyric(a, Lyric(2000, u'a')));
    ASSERT_TRUE(cache->SetLyric(b, Lyric(2000, u'b')));
    // Cut off after an eviction: the eviction is saved, the new entry not.
    globals.Settings.cache_size = 2;
    int saves = 0;
    cache->HashTable().onSaving = [&] { return ++saves == 1; };
    EXPECT_FALSE(cache->SetLyric(c, Lyric(3000, u'c')));
    cache.reset();
    cache = Open();
    const bool hasA = cache->GetLyric(a) == Lyric(2000, u'a');
    EXPECT_NE(hasA, cache->GetLyric(b) == Lyric(2000, u'b'));  // one evicted, one whole
    EXPECT_EQ(cache->GetLyric(c), u"");

    // Cut off while replacing: the old text is still there, whole.
    const auto kept = hasA ? a : b;
    const auto keptLyric = cache->GetLyric(kept);
    ASSERT_TRUE(cache->SetLyric(c, Lyric(100, u'c')));
    cache->HashTable().onSaving = [] { return false; };
    EXPECT_FALSE(cache->SetLyric(kept, Lyric(5000, u'n')));
    cache.reset();
    cache = Open();
    EXPECT_EQ(cache->GetLyric(kept), keptLyric);
    ASSERT_TRUE(cache->SetLyric(kept, Lyric(5000, u'n')));
    EXPECT_EQ(cache->GetLyric(kept), Lyric(5000, u'n'));
    EXPECT_EQ(cache->GetLyric(c), Lyric(100, u'c'));
}

TEST_F(cCacheTest, AFreeListThatNamesALiveEntryIsNotBelievedAndClearingFreesNoBlock) {
    auto cache = Open();
    ASSERT_TRUE(cache->SetLyric(a, Lyric(2000, u'a')));  // blocks 1..3
    cache.reset();
    dir.Write("Toval/cache.id", Le({1, 0}) + dir.Read("Toval/cache.id").substr(4));
    cache = Open();
    ASSERT_TRUE(cache->SetLyric(b, Lyric(10, u'b')));
    EXPECT_EQ(cache->GetLyric(a), Lyric(2000, u'a'));
    EXPECT_EQ(cache->GetLyric(b), Lyric(10, u'b'));

    // Clearing empties the table, but the old blocks are not free: a new entry grows the file.
    const auto size = DatSize();
    cache->ClearCache();
    EXPECT_EQ(cache->GetLyric(a), u"");
    ASSERT_TRUE(cache->SetLyric(a, Lyric(10)));
    EXPECT_EQ(DatSize(), size + 1024);
}

TEST_F(cCacheTest, AFolderThatCannotBeUsedGivesAQuietEmptyCacheAndTrailLines) {
    test::CapturedTrail trail;
    globals.ProgramFolder = dir.file(u"no/such/folder");
    shell.specialFolder =
        dir.file(u"missing-parent") + char16_t(fs::path::preferred_separator) + u"deeper";
    auto cache = Open();
    EXPECT_FALSE(cache->SetLyric(a, Lyric(10)));
    cache->ClearCache();
    EXPECT_TRUE(trail.Has("cCacheMD.FileAddress [Let] ; "));
    EXPECT_TRUE(trail.Has("cCacheHT.FileAddress [Let] ; "));
    EXPECT_TRUE(shell.boxes.empty());
}

}  // namespace
}  // namespace toval::test
