// The bridge's own logic apart from the bus: what a player's metadata becomes
// in the track record (read back by the real plug-in link), and the position
// between readings on a scripted clock.
#include <gtest/gtest.h>

#include <QDBusObjectPath>
#include <QStringList>
#include <limits>
#include <tuple>

#include "cMprisTrack.h"
#include "config/cSettings.h"
#include "core/cPlugin.h"
#include "fakes/FakePluginChannel.h"
#include "fakes/FakeShell.h"
#include "lyric/cMusic.h"

namespace toval::test {
namespace {

TEST(MprisTrack, MetadataTakesTheRightTypesAndLeavesGarbageOut) {
    // (The url and the title are texts like the album; mpv's own reach the GUI test.)
    const QVariantMap good{
        {"mpris:trackid", QVariant::fromValue(QDBusObjectPath("/org/mpv/Track/1"))},
        {"xesam:artist", QStringList{"Ann", "Bo"}},
        {"xesam:album", "Album"},
        {"mpris:length", qlonglong{19000000}}};
    EXPECT_EQ(MetadataFromMap(good),
              (cMprisMetadata{"/org/mpv/Track/1", "", "Ann, Bo", "Album", "", 19000000}));

    // Wrong types: a list for a text, a map for a list, a negative or NaN length.
    QVariantMap bad;
    bad["xesam:artist"] = QVariantMap{{"x", 1}};
    bad["xesam:title"] = QStringList{"not", "a", "text"};
    bad["mpris:length"] = qlonglong{-5};
    EXPECT_EQ(MetadataFromMap(bad), cMprisMetadata{});
    bad["mpris:length"] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(MetadataFromMap(bad).lengthUs, -1);
    bad["mpris:length"] = quint64{std::numeric_limits<quint64>::max()};
    EXPECT_EQ(MetadataFromMap(bad).lengthUs, std::numeric_limits<int64_t>::max());
    // One artist as a plain text is taken too.
    EXPECT_EQ(MetadataFromMap({{"xesam:artist", "Solo"}}).artist, "Solo");
}

TEST(MprisTrack, OnlyLocalFileUrlsGiveAPath) {
    const struct {
        const char* url;
        const char* path;
    } cases[] = {
        {"FILE://localhost/x/%C3%A9.ogg", "/x/\xC3\xA9.ogg"},
        {"file:///a%zz%4", "/a%zz%4"},  // broken escapes stay as they are
        {"file:///a%41?query#frag", "/aA"},
        {"file://otherhost/x", ""},
        {"https://example.org/stream", ""},
        {"file://", ""},
        {"", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LocalPathOfUrl(c.url), c.path) << c.url;
}

// The record goes through the plug-in link's own reader, as in the program.
struct Read {
    cGlobals globals;
    FakePluginChannel channel;
    FakeShell shell;
    cPlugin plugin{globals, channel, shell, nullptr};
    explicit Read(const cMprisMetadata& m) {
        channel.lengthUnit = 1;
        plugin.Wakeup();
        EXPECT_TRUE(plugin.updateTag(TagRecord(m)));
    }
    // The path, artist, title and length as the program reads them.
    auto Fields() const {
        const cMusic& music = *plugin.Music();
        return std::tuple(music.FileAddress(), music.Artist(), music.Title(), music.MiliDuration());
    }
};

TEST(MprisTrack, TagRecordReadsBackThroughThePluginLink) {
    cMprisMetadata m;
    m.url = "file:///music/caf%C3%A9.flac";
    m.artist = "Toval Samples";
    m.title = "Harbour Lanterns";
    m.lengthUs = 19'500'999;
    EXPECT_EQ(Read(m).Fields(),
              std::tuple(u"/music/caf\u00e9.flac", u"Toval Samples", u"Harbour Lanterns", 19500));

    // Huge fields are cut at a character boundary; a path too long is left out;
    // an unknown length is 0; a stream has no path.
    m.url = "file:///" + std::string(600, 'p');
    m.artist = std::string(1023, 'a') + "\xC3\xA9";  // the 2-byte character would straddle the end
    m.title = std::string(5000, 't');
    m.lengthUs = -1;
    EXPECT_EQ(Read(m).Fields(),
              std::tuple(u"", std::u16string(1023, u'a'), std::u16string(1024, u't'), 0));
    m.lengthUs = std::numeric_limits<int64_t>::max();
    EXPECT_EQ(Read(m).plugin.Music()->MiliDuration(), std::numeric_limits<int32_t>::max());
}

TEST(MprisTrack, PositionRunsWithTheClockAndTheRateAndStandsStillWhenPaused) {
    cPositionClock c;
    EXPECT_EQ(c.At(1000), 0);
    c.setPlaying(true, 1000);
    c.Read(2'000'000, 1000);  // 2 s at t = 1 s
    EXPECT_EQ(c.Until(2000, 1500), 0);
    c.setRate(2.0, 1500);
    EXPECT_EQ(c.At(2000), 3500);
    EXPECT_EQ(c.Until(4500, 2000), 500);
    c.setRate(-1.0, 2000);  // not a rate: 1
    c.setPlaying(false, 2100);
    EXPECT_EQ(c.At(9000), 3600);
    EXPECT_EQ(c.Until(5000, 9000), -1);

    // Readings while playing: ahead is taken, a lag of the player is left, a
    // jump back beyond the lag is taken.
    c.setPlaying(true, 10000);
    c.Reading(4'000'000, 10000);
    c.Reading(3'600'000, 10200);
    EXPECT_EQ(c.At(10200), 4200);
    c.Reading(1'000'000, 10200);
    EXPECT_EQ(c.At(10200), 1000);
    // A reading timed only roughly moves the clock only by a jump, either way.
    EXPECT_FALSE(c.Jumped(1'040'000, 10200));
    EXPECT_FALSE(c.Jumped(400'000, 10200));
    EXPECT_EQ(c.At(10200), 1000);
    EXPECT_TRUE(c.Jumped(1'800'000, 10200));
    EXPECT_EQ(c.At(10200), 1800);
    EXPECT_TRUE(c.Jumped(1'000'000, 10200));
    EXPECT_EQ(c.At(10200), 1000);
    // A hunt ends with the first reading that differs from its first one,
    // the report just after a step: that one sets the clock.
    c.Hunt();
    c.Reading(1'000'000, 10220);
    c.Reading(1'000'000, 10240);
    EXPECT_TRUE(c.Hunting());
    c.Reading(1'250'000, 10260);
    EXPECT_FALSE(c.Hunting());
    EXPECT_EQ(c.At(10300), 1290);
    // Far beyond 32 bits stays at the largest position.
    c.Read(std::numeric_limits<int64_t>::max(), 10200);
    EXPECT_EQ(c.At(20000), std::numeric_limits<int32_t>::max());
}

}  // namespace
}  // namespace toval::test
