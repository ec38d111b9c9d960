// toval-service import: lyric files in a music folder, stored with the tags
// of the audio file beside them (real WAV files tagged with TagLib).
#include <gtest/gtest.h>
#include <taglib/fileref.h>
#include <taglib/tag.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "cLyricService.h"
#include "cSqliteStore.h"
#include "fakes/TempDir.h"
#include "mAudioTags.h"
#include "mImport.h"

namespace toval::test {
namespace {

void Write(const std::filesystem::path& path, const std::string& bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

// A WAV file of `seconds` of 8 kHz 8-bit silence, tagged with artist and title.
void Wav(const std::filesystem::path& path, const char* artist, const char* title, int seconds) {
    const uint32_t data = 8000u * static_cast<uint32_t>(seconds);
    auto le = [](uint32_t v, int bytes) {
        std::string s;
        for (int i = 0; i < bytes; ++i)
            s.push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
        return s;
    };
    Write(path, "RIFF" + le(36 + data, 4) + "WAVEfmt " + le(16, 4) + le(1, 2) + le(1, 2) +
                    le(8000, 4) + le(8000, 4) + le(1, 2) + le(8, 2) + "data" + le(data, 4) +
                    std::string(data, '\x80'));
    if (!artist) return;
    TagLib::FileRef file(path.c_str());
    ASSERT_FALSE(file.isNull());
    file.tag()->setArtist(TagLib::String(artist, TagLib::String::UTF8));
    file.tag()->setTitle(TagLib::String(title, TagLib::String::UTF8));
    ASSERT_TRUE(file.save());
}

TEST(Import, StoresLyricFilesWithTheTagsOfTheirAudioFiles) {
    TempDir dir;
    const auto music = dir.path() / "Music";
    const std::string words =
        "\xEF\xBB\xBF[PROPERTY]\r\nMUTATION:55\r\nRIGHTTOLEFT:0\r\n[\\PROPERTY][1000]<1000>Hi\r\n";
    Wav(music / "A" / "song.wav", "Ann \xC3\x89lise", "Harbour", 3);
    Write(music / "A" / "song.tvl", words);
    Wav(music / "B" / "plain.WAV", "Bo", "Plain", 2);
    Write(music / "B" / "plain.lrc", "just words\r\n");
    Wav(music / "C" / "untagged.wav", nullptr, nullptr, 1);
    Write(music / "C" / "untagged.lrc", "[00:01.00]x\r\n");
    Write(music / "C" / "orphan.lrc", "[00:01.00]x\r\n");

    service::cAudioTags tags;
    ASSERT_TRUE(service::ReadAudioTags(music / "A" / "song.wav", tags));
    EXPECT_EQ(tags.artist, "Ann \xC3\x89lise");
    EXPECT_EQ(tags.seconds, 3);
    EXPECT_FALSE(service::ReadAudioTags(music / "C" / "orphan.lrc", tags));

    service::cSqliteStore store((dir.path() / "l.db").string(), 1);
    std::ostringstream log;
    const auto first = service::Import(music, store, log, 1 << 20);
    EXPECT_EQ(first.stored, 2);
    EXPECT_EQ(first.skipped, 2) << log.str();
    EXPECT_FALSE(first.failed);
    EXPECT_NE(log.str().find("orphan.lrc: no audio file beside it"), std::string::npos);
    EXPECT_NE(log.str().find("untagged.lrc: its audio file has no artist or title"),
              std::string::npos);

    const auto again = service::Import(music, store, log, 1 << 20);
    EXPECT_EQ(again.stored, 0);
    EXPECT_EQ(again.known, 2);

    // Served under the audio file's tags, without the byte-order mark, with the
    // lyric's own revision number.
    service::cLyricService lyrics(store, {});
    const std::string page = lyrics.Get("art=ann+elise&tit=harbour&dur=3&mut=0&get=Get").page;
    EXPECT_NE(page.find("<TOVAL>[PROPERTY]"), std::string::npos) << page;
    const auto found = store.Find("annelise", "harbour");
    ASSERT_EQ(found->size(), 1u);
    EXPECT_EQ((*found)[0].mutation, 55);
    EXPECT_EQ((*found)[0].duration, 3);
    EXPECT_EQ(store.Find("bo", "plain")->at(0).kind, service::LyricKind::kPlain);
}

}  // namespace
}  // namespace toval::test
