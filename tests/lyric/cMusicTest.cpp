#include "lyric/cMusic.h"

#include <gtest/gtest.h>

#include <string>

#include "fakes/TempDir.h"

namespace toval::test {
namespace {

// The identifier sums code-page bytes times positions in 16 bits; the file
// address measures the file on every write and keeps the id of an equal path.
TEST(cMusic, TheIdentifierAndTheFileAddress) {
    EXPECT_EQ(cMusic::ComputeID(u""), kUnset);
    // Characters outside the code page count as "?"; the euro sign is byte 128.
    EXPECT_EQ(cMusic::ComputeID(u"\u20ac"), kUnset + 128);
    EXPECT_EQ(cMusic::ComputeID(u"\U0001F3B5"), kUnset + 63 + 2 * 63);
    // 128 "a" and then "\u00ff" at position 129: 255 * 129 = 32895 wraps to -32641.
    std::u16string name(128, u'a');
    name += u'\u00ff';
    EXPECT_EQ(cMusic::ComputeID(name), -2147483648LL + 97 * 8256 - 32641);

    TempDir dir;
    const std::u16string path = dir.file(u"track.mp3");
    dir.Write("track.mp3", "12345");
    cMusic music;
    music.setFileAddress(path);
    EXPECT_EQ(std::pair(music.ID(), music.FileSize()), std::pair(cMusic::ComputeID(path), 5));

    dir.Write("track.mp3", "123456789");
    music.setID(7);
    music.setFileAddress(path);
    EXPECT_EQ(std::pair(music.ID(), music.FileSize()), std::pair(7, 9));

    // Missing files and folders cannot be measured: the size stays.
    for (const std::u16string& gone : {dir.file(u"gone.mp3"), dir.folder(), std::u16string()}) {
        music.setFileAddress(gone);
        EXPECT_EQ(music.FileSize(), 9);
    }
    EXPECT_EQ(music.ID(), kUnset);
}

TEST(cMusic, DescriptiveTextsAndTheDurationInSeconds) {
    cMusic music;
    music.setFileAddress(u"/music/x.mp3");
    EXPECT_EQ(music.MusicTitle(), u"/music/x.mp3");
    EXPECT_FALSE(music.IsValid());

    music.setArtist(u"Art");
    EXPECT_EQ(music.MusicTitle(), u"Art");
    music.setTitle(u"Caf\u00e9");
    EXPECT_EQ(music.MusicTitle(), u"Art - Caf\u00e9");
    EXPECT_TRUE(music.IsValid());

    music.setAlbum(u"Al bum");
    music.setMiliDuration(215500);
    EXPECT_EQ(music.Info(), "Art Al bum Caf\xc3\xa9 216");
    EXPECT_EQ(music.InfoW(), u"Art - Al bum - Caf\u00e9 - 216");
    EXPECT_EQ(music.IDTag(),
              u"[al:Al bum]\r\n[ar:Art]\r\n[ti:Caf\u00e9]\r\n[re:Toval]\r\n[ve:1.3.1]\r\n");

    // Seconds round halves to even; writing them wraps around.
    const std::pair<int32_t, int32_t> reads[] = {
        {2500, 2}, {3500, 4}, {-2500, -2}, {INT32_MAX, 2147484}, {kUnset, -2147484}};
    for (const auto& [ms, seconds] : reads) {
        music.setMiliDuration(ms);
        EXPECT_EQ(music.Duration(), seconds) << ms;
    }
    music.setDuration(-2147484);  // -2147484000 does not fit: wraps
    EXPECT_EQ(music.MiliDuration(), 2147483296);
}

}  // namespace
}  // namespace toval::test
