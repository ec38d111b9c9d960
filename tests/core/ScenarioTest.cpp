// Whole sessions on the fakes: the plug-in wakes up, tracks arrive as tag
// records through the hooked handler, lyrics are found beside the track by the
// real lookup, and the position moves; checked are the exact highlight calls
// and the exact repaints on the surface.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/mFile.h"
#include "core/FakeLyricSource.h"
#include "core/RecordingDisplay.h"
#include "core/cCore.h"
#include "core/cLyricFile.h"
#include "core/cPlugin.h"
#include "fakes/FakeDrawSurface.h"
#include "fakes/FakeMeasureSurface.h"
#include "fakes/FakePluginChannel.h"
#include "fakes/FakeRandom.h"
#include "fakes/FakeShell.h"
#include "fakes/FakeTimer.h"
#include "fakes/TempDir.h"
#include "lyric/cLyric.h"
#include "lyric/cMusic.h"
#include "net/cCache.h"

namespace toval::test {
namespace {

using Texts = std::vector<std::string>;
const std::string U = std::to_string(kUnset);

struct World {
    TempDir dir;
    cGlobals globals;
    FakeShell shell;
    FakeRandom random{{0.25}};
    FakeTimer timer;
    FakePluginChannel channel;
    FakeDrawSurface surface;
    FakeMeasureSurface measure;
    cPlugin plugin{globals, channel, shell,
                   [](std::u16string_view k) { return std::u16string(k); }};
    RecordingDisplay display{globals, surface, shell};
    std::shared_ptr<iLyricSource> source;
    std::shared_ptr<cCore> core;
    int closes = 0;

    // fake: a scripted lookup instead of the real one over files in a temp folder.
    explicit World(std::shared_ptr<iLyricSource> fake = nullptr) {
        globals.Settings.color_Backround = 100;
        globals.Settings.color_BackText = 101;
        globals.Settings.color_NormalText = 102;
        globals.Settings.color_HighlighText = 103;
        display.Load();
        if (fake) {
            source = std::move(fake);
        } else {
            std::filesystem::create_directories(dir.path() / "cache");
            auto file = std::make_shared<cLyricFile>(
                globals,
                std::make_unique<cCache>(globals, random, dir.file(u"cache") + kPathSeparator));
            file->setMusic(plugin.Music());
            source = file;
        }
        core = std::make_shared<cCore>(globals, shell, random, source,
                                       [](std::u16string_view k) { return std::u16string(k); });
        core->setTray(&display);
        core->setAuxPictureBox(&measure);
        core->setPlugin(&plugin);
        core->setTimer(&timer);
        plugin.setPluginHwnd(0x99);
        plugin.onCloseProgram = [this] { ++closes; };
        channel.onMessage = [this](uint32_t m, int64_t w, int64_t l, std::string_view d,
                                   int64_t& r) { return plugin.ProcessMessage(m, w, l, d, r); };
        plugin.setCore(core);
    }
    ~World() {
        plugin.setCore(nullptr);
        core->setTimer(nullptr);
    }
    void Write(const std::string& name, const std::string& content) {
        std::ofstream(dir.path() / name, std::ios::binary) << content;
    }
    std::string Path(const std::string& name) const { return (dir.path() / name).string(); }
    // One polling tick at position ms; the highlight calls and texts painted.
    std::pair<Texts, Texts> At(int32_t ms) {
        channel.position = ms;
        display.Take();
        surface.clear();
        timer.tick();
        return {display.Take(), surface.Painted()};
    }
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

    const std::pair<Texts, Texts> expected[] = {
        {{}, {}},                                   // 500
        {{"Choose 0 " + U}, {"Song title/102/u"}},  // 1000
        {{}, {}},                                   // 1999
        // The line and its first word start together: the line is raised.
        {{"Choose 1 " + U}, {"Song title/101/u", "Hel/102", "lo /102", "world/102"}},  // 2000
        {{"Choose 1 1"}, {"lo /103"}},                                                 // 2500
        {{"Choose 1 2"}, {"lo /102", "world/103"}},                                    // 3000
        {{"Choose 2 " + U}, {"Hel/101", "lo /101", "world/101", "Bye/102"}},           // 4100
        // Seek back into the second word.
        {{"Choose 1 1"}, {"Bye/101", "Hel/102", "lo /102", "world/102", "lo /103"}},  // 2450
        // Back before the first event: the first line at once ...
        {{"Choose 0 " + U}, {"Hel/101", "lo /101", "world/101", "Song title/102/u"}},  // 100
        // ... and again on reaching it, which repaints nothing.
        {{"Choose 0 " + U}, {}},  // 1000
    };
    const int32_t positions[] = {500, 1000, 1999, 2000, 2500, 3000, 4100, 2450, 100, 1000};
    for (size_t i = 0; i < std::size(positions); ++i)
        EXPECT_EQ(w.At(positions[i]), expected[i]) << "at " << positions[i];
}

TEST(Scenario, TheTrackChangesWhileItsLyricIsLoading) {
    auto fake = std::make_shared<FakeLyricSource>();
    World w(fake);
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

TEST(Scenario, ThePlayerClosesAndTheTimerStaysOff) {
    World w;
    w.Write("song.tvl", kSongTvl);
    w.timer.tick();
    w.channel.CopyData(FakePluginChannel::TagRecord(w.Path("song.mp3"), "A", "", "T", 1));
    w.At(0);
    w.At(1500);
    ASSERT_TRUE(w.core->LyricActive());

    EXPECT_EQ(w.channel.Notice(3), 0);
    EXPECT_EQ(w.closes, 1);
    EXPECT_FALSE(w.timer.enabled);
    EXPECT_FALSE(w.core->PluginAlive());
    EXPECT_FALSE(w.display.Lyric());
    EXPECT_EQ(w.display.log, (Texts{"Clear"}));
    w.channel.sent.clear();
    EXPECT_FALSE(w.timer.tick());
    EXPECT_TRUE(w.channel.sent.empty());

    // A plug-in that dies without a word: the zero position closes the program.
    World quiet;
    quiet.timer.tick();
    quiet.channel.dead = true;
    quiet.timer.tick();
    EXPECT_EQ(quiet.closes, 1);
}

TEST(Scenario, TheUpdateNoticeAppearsForANewVersionOnce) {
    World w;
    w.globals.Settings.conn_Server = u"lyrics.example";
    w.globals.lastUpdateVersion = 1030005;
    std::vector<int32_t> saved;
    w.core->onSaveLastShow = [&](int32_t v) { saved.push_back(v); };
    w.display.onLinkOpened = [&](const std::u16string& url) { w.core->LinkOpened(url); };
    w.timer.tick();

    w.surface.clear();
    EXPECT_EQ(w.channel.Notice(1), 0);  // playback stopped
    EXPECT_EQ(w.surface.Painted(), (Texts{"TovalNewVersion/101/u"}));
    w.display.Click();
    EXPECT_EQ(w.shell.links,
              (std::vector<std::u16string>{u"http://lyrics.example/?page=download"}));
    EXPECT_EQ(saved, (std::vector<int32_t>{1030005}));
    EXPECT_FALSE(w.display.Lyric());

    w.surface.clear();
    w.channel.Notice(1);
    EXPECT_TRUE(w.surface.Painted().empty());
    w.display.Click();
    EXPECT_EQ(w.shell.links.size(), 1u);
}

}  // namespace
}  // namespace toval::test
