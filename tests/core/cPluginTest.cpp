#include "core/cPlugin.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "core/ControllerRig.h"
#include "lyric/cMusic.h"

namespace toval::test {
namespace {

using Ints = std::vector<int32_t>;

// The notices that reach the controller are followed through it in cCoreTest.
TEST(cPlugin, WakeupRegistersAndLearnsTheUnitTagRecordsAreReadIn) {
    ControllerRig l;
    EXPECT_EQ(l.channel.filterCalls, 1);  // WM_USER let through once, at creation
    l.plugin.Wakeup();
    Ints commands;
    for (const auto& sent : l.channel.sent)
        commands.push_back(sent.command);
    EXPECT_EQ(commands, (Ints{1, 6, 7}));
    // The length unit: 1 milliseconds, 0 seconds; any other answer keeps the unit.
    for (auto [answer, milli] : {std::pair{1, true}, {2, true}, {0, false}, {2, false}}) {
        l.channel.lengthUnit = answer;
        l.plugin.Wakeup();
        EXPECT_EQ(l.plugin.MiliTrackLength(), milli) << answer;
    }
    EXPECT_EQ(std::tuple(l.shell.boxes.size(), l.closes), std::tuple(0u, 0));

    // In seconds: a full-width field of blanks at the end, and a zero inside one.
    ASSERT_TRUE(l.plugin.updateTag(FakePluginChannel::TagRecord(
        "", "", std::string(1000, 'a') + std::string(24, ' '), std::string("T\0hidden", 8), 215)));
    const auto& m = *l.plugin.Music();
    EXPECT_EQ(std::tuple(m.Album(), m.Title(), m.Artist(), m.MiliDuration(), m.Duration()),
              std::tuple(std::u16string(1000, u'a'), u"T", u"", 215000, 215));

    // In milliseconds. Blanks are removed around the whole field, so those
    // before the zeros stay; a lone high byte reads as Latin-1; the path
    // keeps its blanks. (Full-width fields: the Linux program's MPRIS test.)
    l.channel.lengthUnit = 1;
    l.plugin.Wakeup();
    ASSERT_TRUE(l.plugin.updateTag(FakePluginChannel::TagRecord(
        " /music/caf\xC3\xA9.mp3", "  Bj\xC3\xB6rk  ", "Caf\xE9x", "T", 215000)));
    EXPECT_EQ(m.Artist(), u"Bj\u00F6rk  ");
    EXPECT_EQ(m.Album(), u"Caf\u00E9x");
    EXPECT_EQ(m.FileAddress(), u" /music/caf\u00E9.mp3");
    EXPECT_EQ(m.MiliDuration(), 215000);
}

TEST(cPlugin, ProcessMessageFollowsTheTable) {
    ControllerRig l;
    // Without a core every notice is swallowed.
    l.plugin.setCore(nullptr);
    EXPECT_EQ(l.channel.Notice(3), 0);
    EXPECT_EQ(l.closes, 0);
    // Other messages go on to the window's own procedure.
    int64_t result = 0;
    EXPECT_FALSE(l.plugin.ProcessMessage(kWmUser + 1, 0, 1, {}, result));

    // A ping is answered; a code is never cut to its low 32 bits (1 stops).
    l.plugin.setCore(l.core);
    l.Playing(1, u"[1000]a");
    EXPECT_EQ(l.channel.Notice(4), 1);
    EXPECT_EQ(l.channel.Notice(0x100000001LL), 0);
    EXPECT_TRUE(l.core->LyricActive());
}

}  // namespace
}  // namespace toval::test
