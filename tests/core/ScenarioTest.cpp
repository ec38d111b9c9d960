// Whole sessions on the fakes: the plug-in wakes up, tracks arrive as tag
// records through the hooked handler, lyrics are found beside the track by the
// real lookup, and the position moves.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/mFile.h"
#include "core/ControllerRig.h"
#include "core/cLyricFile.h"
#include "fakes/TempDir.h"
#include "lyric/cMusic.h"
#include "net/cCache.h"

namespace toval::test {
namespace {

const std::string U = std::to_string(kUnset);

// The rig with the real lookup over files in a temp folder (made first).
struct World : TempDir, ControllerRig {
    World()
        : ControllerRig([this](ControllerRig& r) {
              std::filesystem::create_directories(path() / "cache");
              auto lookup = std::make_shared<cLyricFile>(
                  r.globals,
                  std::make_unique<cCache>(r.globals, r.random, file(u"cache") + kPathSeparator));
              lookup->setMusic(r.plugin.Music());
              return lookup;
          }) {}
    void Write(const std::string& name, const std::string& content) {
        std::ofstream(path() / name, std::ios::binary) << content;
    }
    std::string Path(const std::string& name) const { return (path() / name).string(); }
};

const char kSongTvl[] =
    "[PROPERTY]\r\nMUTATION:5\r\nRIGHTTOLEFT:0\r\n[\\PROPERTY][1000]Song title\r\n"
    "[2000]<2000>Hel<2400>lo <2800>world\r\n[4000]Bye\r\n";

TEST(Scenario, ALyricBesideTheTrackFollowsThePosition) {
    World w;
    w.Write("song.tvl", kSongTvl);
    w.Write("song.mp3", "not really music");

    w.timer.tick();  // the plug-in wakes up
    ASSERT_TRUE(w.core->PluginAlive());
    w.channel.playlistPosition = 0;
    EXPECT_EQ(w.channel.CopyData(
                  FakePluginChannel::TagRecord(w.Path("song.mp3"), "Artist", "", "Song", 215000)),
              0);
    EXPECT_EQ(w.plugin.Music()->FileSize(), 16);
    EXPECT_TRUE(w.core->LoadPending());

    // The lookup runs on the next tick and finds the file beside the track.
    auto [calls, painted] = w.At(0);
    EXPECT_EQ(calls, (Texts{"Lyric", "Music"}));
    EXPECT_EQ(painted, (Texts{"Song title/101/u", "Hel/101", "lo /101", "world/101", "Bye/101"}));
    EXPECT_TRUE(w.core->LyricActive());

    // What is painted for each highlight is the display's business; here the
    // stream raises through the controller, seeks included.
    const std::pair<int32_t, std::string> steps[] = {
        {500, ""},
        {1000, "Choose 0 " + U},
        {2000, "Choose 1 " + U},  // the line and its first word start together
        {2500, "Choose 1 1"},
        {4100, "Choose 2 " + U},
        {2450, "Choose 1 1"},    // seek back into the second word
        {100, "Choose 0 " + U},  // back before the first event: the first line at once
    };
    for (const auto& [ms, call] : steps)
        EXPECT_EQ(w.At(ms).first, call.empty() ? Texts{} : Texts{call}) << "at " << ms;
    EXPECT_EQ(w.At(2000).second, (Texts{"Song title/101/u", "Hel/102", "lo /102", "world/102"}));
}

TEST(Scenario, TheTrackChangesWhileItsLyricIsLoading) {
    ControllerRig w;
    auto& fake = w.fake;
    w.timer.tick();
    w.channel.playlistPosition = 1;
    w.channel.CopyData(FakePluginChannel::TagRecord("/a.mp3", "A", "", "One", 1000));
    w.At(0);
    EXPECT_EQ(fake->loads, (std::vector<int32_t>{1}));

    // The player moves on before the answer comes.
    w.channel.playlistPosition = 2;
    w.channel.CopyData(FakePluginChannel::TagRecord("/b.mp3", "B", "", "Two", 1000));
    fake->text = u"[10]lyric of one";
    w.display.Take();
    fake->Answer(1, kLyricLocal);
    EXPECT_EQ(w.display.Take(), (Texts{"Clear"}));
    EXPECT_FALSE(w.core->LyricActive());

    // The lookup restarts for the new track on the next tick.
    w.At(5);
    EXPECT_EQ(fake->loads, (std::vector<int32_t>{1, 2}));

    // A track announced while the answer is being taken in (the controller
    // pumps messages there): the answer is still shown, and the new track's
    // lookup waits until the service's answer for the old track is dropped.
    w.shell.onDoEvents = [&] {
        w.shell.onDoEvents = nullptr;
        w.channel.playlistPosition = 3;
        w.channel.CopyData(FakePluginChannel::TagRecord("/c.mp3", "C", "", "Three", 1000));
    };
    fake->text = u"[10]lyric of two";
    w.display.Take();
    fake->Answer(2, kLyricLocal);
    EXPECT_EQ(w.display.Take(), (Texts{"Clear", "Lyric", "Music"}));
    EXPECT_TRUE(w.core->LyricActive());
    EXPECT_TRUE(w.core->LoadPending());
    ASSERT_EQ(fake->loadFroms.size(), 1u);
    EXPECT_EQ(fake->loadFroms[0].requestId, 2);
    w.At(5);
    EXPECT_EQ(fake->loads, (std::vector<int32_t>{1, 2}));
    fake->Answer(2, kLyricFromService);
    EXPECT_FALSE(w.core->LyricActive());

    fake->text = u"[10]lyric of three";
    fake->answerOnLoad = kLyricFromService;
    auto [calls, painted] = w.At(5);
    EXPECT_EQ(fake->loads, (std::vector<int32_t>{1, 2, 3}));
    EXPECT_EQ(calls, (Texts{"Lyric", "Music"}));
    EXPECT_EQ(painted, (Texts{"lyric of three/101/u"}));
    EXPECT_EQ(w.At(10).first, (Texts{"Choose 0 " + U}));
}

}  // namespace
}  // namespace toval::test
