#include "base/mFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>
#include <vector>

#include "fakes/TempDir.h"

namespace toval {
namespace {

namespace fs = std::filesystem;

// A path written with "/" and turned into the platform's separators.
std::u16string P(std::u16string path) {
    for (char16_t& c : path) {
        if (c == u'/') c = kPathSeparator;
    }
    return path;
}

TEST(mFile, LyricFileNamesBelongingToATrack) {
    const std::vector<std::pair<std::u16string, std::u16string>> base = {
        {u"a.b.mp3", u"a.b"},
        {u"noext", u"noext"},
        {u".mp3", u".mp3"},                  // a dot in first place is no extension
        {P(u"/my.folder/song"), P(u"/my")},  // the search runs into the folder name
    };
    for (const auto& [path, expected] : base)
        EXPECT_EQ(GetBaseAddress(path), expected);
    EXPECT_EQ(GetTovalAddress(P(u"/m/song.mp3")), P(u"/m/song.tvl"));
    EXPECT_EQ(GetLyricAddress(P(u"/m/song.mp3")), P(u"/m/song.lrc"));

    const std::vector<std::pair<std::u16string, std::u16string>> folder = {
        {u"song.mp3", u""},
        {P(u"/song.mp3"), u""},  // a separator in first place does not count
        {P(u"music/song.mp3"), P(u"music/")},
    };
    for (const auto& [path, expected] : folder)
        EXPECT_EQ(GetLyricPath(path), expected);
}

TEST(mFile, BinaryFilesReadAndWriteFromAOneBasedStartAndKillDeletesOnlyFiles) {
    test::TempDir dir;
    const std::u16string data = dir.file(u"data.bin");
    dir.Write(dir.path() / "data.bin", "0123456789");
    const std::vector<std::tuple<int32_t, int32_t, std::string>> cases = {
        {1, -5, "0123456789"}, {3, 4, "2345"}, {8, 100, "789"},
        {11, 1, ""},           {0, 5, ""},     {2147483647, 2147483647, ""},
    };
    for (const auto& [start, length, expected] : cases)
        EXPECT_EQ(ReadFile(data, start, length), expected) << start << " " << length;
    EXPECT_EQ(ReadFile(dir.file(u"missing"), 1, 0), "");
    EXPECT_EQ(ReadFile(dir.folder(), 1, 0), "");

    // Saving writes in place, appends or replaces.
    const std::u16string file = dir.file(u"out.bin");
    const fs::path real = dir.path() / "out.bin";

    EXPECT_TRUE(SaveFile(file, "0123456789", 1, false));  // a new file
    EXPECT_EQ(dir.Read(real), "0123456789");
    EXPECT_TRUE(SaveFile(file, "ab", 3, false));  // in place, the rest kept
    EXPECT_EQ(dir.Read(real), "01ab456789");
    EXPECT_TRUE(SaveFile(file, "XY", 0, false));  // start below 1 appends
    EXPECT_EQ(dir.Read(real), "01ab456789XY");
    EXPECT_TRUE(SaveFile(file, "new", 0, true));  // deleted first: from the beginning
    EXPECT_EQ(dir.Read(real), "new");
    EXPECT_TRUE(SaveFile(file, "z", 6, false));  // past the end: the gap is zeros
    EXPECT_EQ(dir.Read(real), std::string("new\0\0z", 6));
    EXPECT_TRUE(SaveFile(file, "", 1, true));
    EXPECT_EQ(fs::file_size(real), 0u);

    EXPECT_FALSE(SaveFile(dir.file(P(u"no/such/folder.bin")), "x", 1, false));
    fs::create_directory(dir.path() / "sub");
    EXPECT_FALSE(SaveFile(dir.file(u"sub"), "x", 1, true));  // killFirst leaves a folder alone
    EXPECT_TRUE(fs::is_directory(dir.path() / "sub"));

    EXPECT_TRUE(FileExists(file));
    EXPECT_TRUE(FileExists(dir.folder()));  // a folder's attributes can be read too
    FileKill(file);
    EXPECT_FALSE(FileExists(file));
    FileKill(file);  // already gone: nothing happens
    FileKill(dir.file(u"sub"));
    EXPECT_TRUE(fs::is_directory(dir.path() / "sub"));
}

TEST(mFile, TextFilesAreUtf8WithoutAMarkOrInTheCodePage) {
    test::TempDir dir;
    const std::u16string file = dir.file(u"lyric \u00E9\u65E5\u672C.tvl");
    const fs::path real = fs::path(file);

    dir.Write(real, std::string(100, 'x'));
    EXPECT_TRUE(FileSaveUTF8(file, u"\u00E9t\u00E9 \u20AC"));  // replaces the longer file
    EXPECT_EQ(dir.Read(real), "\xC3\xA9t\xC3\xA9 \xE2\x82\xAC");

    dir.Write(real,
              "\xEF\xBB\xBF"
              "a\xE9");  // the UTF-8 mark is dropped; Latin-1 still reads
    EXPECT_EQ(FileRead(file), u"a\u00E9");
    EXPECT_EQ(FileRead(dir.file(u"missing.tvl")), u"");

    EXPECT_TRUE(FileSaveAscii(file, u"\u00E9\u20AC\u0100"));
    EXPECT_EQ(dir.Read(real), "\xE9\x80?");
}

}  // namespace
}  // namespace toval
