#include "core/cCore.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "core/ControllerRig.h"
#include "core/cEventStream.h"
#include "lyric/cLyric.h"
#include "lyric/cMusic.h"

namespace toval::test {
namespace {

using Rig = ControllerRig;

TEST(cCore, WakesThePluginThenPolls) {
    Rig r;
    r.timer.tick();
    EXPECT_EQ(r.State(), "on 20 alive");
    // Idle: every tick polls the position and nothing else.
    r.channel.sent.clear();
    r.Tick(1234);
    EXPECT_EQ(std::tuple(r.channel.Count(kCmdPosition), r.channel.sent.size(),
                         r.globals.PlayPosition, r.fake->loads.size()),
              std::tuple(1, 1u, 1234, 0u));

    // A refused registration closes the program; while waking, ticks send nothing.
    Rig refused;
    refused.channel.registerAnswer = 0;
    refused.timer.tick();
    EXPECT_EQ(refused.State(), "on 5000 waking");
    EXPECT_EQ(refused.closes, 1);
    refused.channel.sent.clear();
    refused.timer.tick();
    EXPECT_TRUE(refused.channel.sent.empty());
}

TEST(cCore, ANewTrackIsLookedUpOnTheNextTickAndMayChangeWhileItsLyricLoads) {
    Rig w;
    auto& fake = w.fake;
    w.timer.tick();
    w.channel.playlistPosition = 1;
    w.channel.CopyData(FakePluginChannel::TagRecord("/a.mp3", "A", "", "One", 1000));
    EXPECT_EQ(w.State(), "on 20 alive pending at 1 track -2147481967");
    w.Tick(0);  // the lookup (checked below)
    w.display.Take();

    // A track announced while the answer is being taken in (the controller
    // pumps messages there, with the timer off): the answer is still shown,
    // and the new track's lookup waits until the service's answer for the
    // old track is dropped.
    bool timerDuringPump = true;
    w.shell.onDoEvents = [&] {
        w.shell.onDoEvents = nullptr;
        timerDuringPump = w.timer.enabled;
        w.channel.playlistPosition = 2;
        w.channel.CopyData(FakePluginChannel::TagRecord("/b.mp3", "B", "", "Two", 1000));
    };
    fake->text = u"[PROPERTY]\r\nMUTATION:42\r\n[\\PROPERTY][10]lyric of one";
    fake->Answer(1, kLyricLocal);
    EXPECT_FALSE(timerDuringPump);
    EXPECT_EQ(w.display.Take(), (Texts{"Clear", "Lyric", "Music"}));
    EXPECT_EQ(w.State(), "on 20 alive pending lyric stream at 2 track -2147481965");
    // A local hit asks the service for a newer version of the same lyric.
    EXPECT_EQ(fake->loadFroms, (std::vector<FakeLyricSource::Request>{{2, 1, 42}}));
    w.Tick(5);
    EXPECT_EQ(fake->loads, (std::vector<int32_t>{1}));
    // An answer for a track that no longer plays clears the display and the
    // lookup restarts for the new track on the next tick.
    fake->Answer(1, kLyricFromService);
    EXPECT_EQ(w.display.Take(), (Texts{"Clear"}));
    fake->text = u"[10]lyric of two";
    fake->answerOnLoad = kLyricFromService;
    w.Tick(5);
    EXPECT_EQ(w.display.Take(), (Texts{"Lyric", "Music"}));
    EXPECT_EQ(fake->loads, (std::vector<int32_t>{1, 2}));
    EXPECT_EQ(fake->loadFroms.size(), 1u);  // only a local hit asks for a newer version
}

TEST(cCore, SlowDownNoticesStepTheIntervalUp) {
    Rig r;
    r.timer.tick();
    std::vector<int32_t> intervals;
    for (int i = 0; i < 300; ++i) {
        r.channel.Notice(2);
        intervals.push_back(r.timer.interval);
    }
    EXPECT_EQ(std::tuple(intervals[0], intervals[1], intervals.back()), std::tuple(40, 60, 5000));
    // The window is refitted only while polling at the fast interval.
    EXPECT_EQ(r.display.Take(), (Texts{"ReajustWindow"}));

    // A huge step is an error in the trail, not a wrap to a negative interval.
    r.globals.Settings.timer_TrackPosRefresh = 2147483647;
    r.timer.interval = 4000;
    r.channel.Notice(2);
    EXPECT_EQ(r.timer.interval, 4000);
}

TEST(cCore, StoppedForgetsTheTrackAndShowsTheUpdateNoticeOnce) {
    // The notice: only for a version newer than this one and not yet shown.
    for (const auto& [newest, lastShown, notice] :
         {std::tuple{1030001, 0, false}, {1030002, 1030002, false}, {2000000, 1030002, true}}) {
        Rig r;
        r.globals.Settings.conn_Server = u"lyrics.example";
        r.globals.lastUpdateVersion = newest;
        r.globals.Settings.version_LastShow = lastShown;
        r.Playing(5, u"[1000]a");
        r.display.Take();
        r.channel.Notice(1);
        EXPECT_EQ(r.State(), "on 20 alive");
        EXPECT_EQ(r.display.Take(), (notice ? Texts{"Clear", "Lyric"} : Texts{"Clear"})) << newest;
        if (!notice) continue;
        EXPECT_EQ(r.display.Lyric()->GetLine(0)->Text(), u"TovalNewVersion");

        // Following another link changes nothing; following the download link
        // retires the notice for this version.
        std::vector<int32_t> saved;
        r.core->onSaveLastShow = [&](int32_t v) { saved.push_back(v); };
        r.core->LinkOpened(u"http://elsewhere.example/");
        EXPECT_TRUE(saved.empty());
        r.display.Click();
        EXPECT_EQ(r.shell.links,
                  (std::vector<std::u16string>{u"http://lyrics.example/?page=download"}));
        EXPECT_EQ(saved, (std::vector<int32_t>{newest}));
        EXPECT_EQ(std::pair(r.globals.Settings.version_LastShow, !r.display.Lyric()),
                  std::pair(newest, true));
    }
}

TEST(cCore, PlayerClosedLeavesTheTimerOff) {
    Rig r;
    r.Playing(2, u"[1000]a");
    r.display.Take();
    r.channel.Notice(3);
    EXPECT_EQ(std::pair(r.State(), r.closes), std::pair(std::string("off 5000"), 1));
    EXPECT_EQ(r.display.log, (Texts{"Clear"}));
    // A plug-in that dies without a word: the zero position closes the program.
    Rig quiet;
    quiet.timer.tick();
    quiet.channel.dead = true;
    quiet.timer.tick();
    EXPECT_EQ(quiet.closes, 1);
}

TEST(cCore, ForgetKeepsTheLyricAndResetLooksTheTrackUpAgain) {
    Rig r;
    r.Playing(2, u"[1000]a");
    r.globals.TrackID = 11;
    r.core->PluginEvent(kEventForget);
    EXPECT_EQ(r.State(), "on 20 alive lyric stream");

    // Reset looks the current track up again, only while playing.
    r.core->Reset();
    EXPECT_EQ(r.State(), "on 20 alive pending stream at 2");
    Rig idle;
    idle.timer.tick();
    idle.core->Reset();
    EXPECT_EQ(idle.State(), "on 20 alive");
}

TEST(cCore, AForecastPollSleepsUntilTheNextEventAndWakesWhenThePlayerMoves) {
    Rig r;
    bool paused = false;
    r.core->setForecast([&](int32_t at) -> int64_t {
        if (paused) return -1;
        return at > r.channel.position ? at - r.channel.position : 0;
    });
    r.Playing(1, u"[1000]a\r\n[3000]b\r\n[9000]c");
    r.display.Take();

    r.Tick(1001);
    // A long instrumental sleeps at most kMaxSleepMs at a time.
    r.Tick(3000);
    EXPECT_EQ(r.timer.interval, kMaxSleepMs);

    // Paused: the timer stops until the player moves; a wake then looks at once.
    paused = true;
    r.core->Wake();
    EXPECT_FALSE(r.timer.enabled);
    paused = false;
    r.channel.position = 1200;  // and it was a seek back
    r.core->Wake();
    EXPECT_EQ(r.display.Take(),
              (Texts{"Choose 0 -2147483648", "Choose 1 -2147483648", "Choose 0 -2147483648"}));
    EXPECT_TRUE(r.timer.enabled);
    EXPECT_EQ(r.timer.interval, 1801);  // the sleep to the next event, plus one millisecond

    // Past the last event nothing is due.
    r.Tick(9500);
    EXPECT_FALSE(r.timer.enabled);
}

TEST(cCore, AForecastingLinkIsWokenAndItsTrackLookedUpAtOnce) {
    Rig r;
    r.core->setForecast([](int32_t) -> int64_t { return 0; });
    r.core->setTimer(&r.timer);
    EXPECT_EQ(r.State(), "on 1");
    // The link told of the track before it was woken: one tick wakes it and
    // looks the track up, then the regular pace returns.
    r.channel.playlistPosition = 3;
    r.core->PluginEvent(kEventNewTrack);
    r.timer.tick();
    // Nothing is polled while the lookup runs; its answer ticks at once.
    EXPECT_EQ(r.State(), "off 20 alive at 3");
    r.fake->text = u"[1000]a";
    r.fake->Answer(3, kLyricLocal);
    EXPECT_EQ(r.State(), "on 1 alive lyric stream at 3");
    // A later track is looked up on the next turn too, not a poll later.
    r.channel.playlistPosition = 4;
    r.core->PluginEvent(kEventNewTrack);
    EXPECT_EQ(r.State(), "on 1 alive pending stream at 4");
    r.timer.tick();
    EXPECT_EQ(r.fake->loads, (std::vector<int32_t>{3, 4}));
    // A stopped player: one tick finds nothing to do and the timer stays off.
    r.core->PluginEvent(kEventStopped);
    r.timer.tick();
    EXPECT_EQ(r.State(), "off 20 alive");
}

}  // namespace
}  // namespace toval::test
