// toval-service import: lyric files in a music folder, stored with the tags
// of the audio file beside them (real audio files made with sox).
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>

#include "cSqliteStore.h"
#include "fakes/TempDir.h"
#include "mImport.h"
#include "posix/Sox.h"

namespace toval::test {
namespace {

TEST(Import, StoresLyricFilesWithTheTagsOfTheirAudioFiles) {
    TempDir dir;
    const auto music = dir.path() / "Music";
    const std::string words =
        "\xEF\xBB\xBF[PROPERTY]\r\nMUTATION:55\r\nRIGHTTOLEFT:0\r\n[\\PROPERTY][1000]<1000>Hi\r\n";
    // One album in a folder of its own, the rest loose.
    std::filesystem::create_directories(music / "A");
    ASSERT_TRUE(
        MakeAudio(music / "A" / "song.flac", {"Artist=Ann \xC3\x89lise", "Title=Harbour"}, 3));
    dir.Write("Music/A/song.tvl", words);
    ASSERT_TRUE(MakeAudio(music / "plain.FLAC", {"Artist=Bo", "Title=Plain"}, 2));
    dir.Write("Music/plain.lrc", "just words\r\n");
    ASSERT_TRUE(MakeAudio(music / "untagged.flac", {}, 1));
    dir.Write("Music/untagged.lrc", "[00:01.00]x\r\n");
    dir.Write("Music/orphan.lrc", "[00:01.00]x\r\n");

    service::cSqliteStore store((dir.path() / "l.db").string(), 1);
    std::ostringstream log;
    const auto first = service::Import(music, store, log, 1 << 20);
    EXPECT_EQ(std::tuple(first.stored, first.skipped, first.failed), std::tuple(2, 2, false))
        << log.str();
    EXPECT_NE(log.str().find("orphan.lrc: no audio file beside it"), std::string::npos);
    EXPECT_NE(log.str().find("untagged.lrc: its audio file has no artist or title"),
              std::string::npos);

    const auto again = service::Import(music, store, log, 1 << 20);
    EXPECT_EQ(std::pair(again.stored, again.known), std::pair(0, 2));

    // Stored under the audio file's tags and length, without the byte-order
    // mark, with the lyric's own revision number.
    const auto found = store.Find("annelise", "harbour");
    ASSERT_EQ(found->size(), 1u);
    EXPECT_EQ(
        std::tuple((*found)[0].text.substr(0, 10), (*found)[0].mutation, (*found)[0].duration),
        std::tuple("[PROPERTY]", 55, 3));
    EXPECT_EQ(store.Find("bo", "plain")->at(0).kind, service::LyricKind::kPlain);
}

}  // namespace
}  // namespace toval::test
