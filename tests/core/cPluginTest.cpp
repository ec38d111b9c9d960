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

// A controller that only records the events it receives.
class RecordingCore : public cCore {
  public:
    RecordingCore(cGlobals& g, Shell& shell, Random& random)
        : cCore(g, shell, random, std::make_shared<FakeLyricSource>(), nullptr) {}
    void PluginEvent(int32_t code) override { events.push_back(code); }
    Ints events;
};

// The controller rig with the recording controller linked to the plug-in, or none.
struct Link : ControllerRig {
    std::shared_ptr<RecordingCore> recorder =
        std::make_shared<RecordingCore>(globals, shell, random);

    explicit Link(bool linked = true) { plugin.setCore(linked ? recorder : nullptr); }
    Ints Commands() const {
        Ints out;
        for (const auto& s : channel.sent)
            out.push_back(s.command);
        return out;
    }
    int64_t Send(uint32_t message, int64_t code, std::string_view data = {}) {
        int64_t result = -1;
        EXPECT_TRUE(plugin.ProcessMessage(message, 0, code, data, result)) << code;
        return result;
    }
};

TEST(cPlugin, WakeupRegistersAndLearnsThePlayer) {
    Link l;
    EXPECT_EQ(l.channel.filterCalls, 1);  // WM_USER let through once, at creation
    l.plugin.Wakeup();
    EXPECT_EQ(l.Commands(), (Ints{1, 6, 7}));
    EXPECT_EQ(l.recorder->events, (Ints{kEventAwake}));
    // The length unit: 1 milliseconds, 0 seconds; any other answer keeps the unit.
    for (auto [answer, milli] : {std::pair{1, true}, {2, true}, {0, false}, {2, false}}) {
        l.channel.lengthUnit = answer;
        l.plugin.Wakeup();
        EXPECT_EQ(l.plugin.MiliTrackLength(), milli) << answer;
    }
    EXPECT_EQ(std::tuple(l.shell.boxes.size(), l.closes), std::tuple(0u, 0));
}

TEST(cPlugin, ProcessMessageFollowsTheTable) {
    // Without a core every notice is swallowed.
    Link alone(false);
    EXPECT_EQ(alone.Send(kWmUser, 3), 0);
    EXPECT_EQ(alone.closes, 0);
    // Other messages go on to the window's own procedure.
    int64_t result = 0;
    EXPECT_FALSE(alone.plugin.ProcessMessage(kWmUser + 1, 0, 1, {}, result));

    struct Row {
        int64_t code, result;
        Ints events;
        int closes;
    };
    const Row rows[] = {{1, 0, {kEventStopped}, 0},
                        {2, 0, {kEventSlowDown}, 0},
                        {3, 0, {kEventPlayerClosed}, 1},
                        {4, 1, {}, 0},
                        {0x100000001LL, 0, {}, 0}};
    for (const Row& row : rows) {
        Link l;
        EXPECT_EQ(l.Send(kWmUser, row.code), row.result) << row.code;
        EXPECT_EQ(std::tuple(l.recorder->events, l.closes), std::tuple(row.events, row.closes))
            << row.code;
    }
}

TEST(cPlugin, TagFieldsAreDecodedTrimmedAndCut) {
    Link l;
    l.plugin.Wakeup();
    ASSERT_TRUE(l.plugin.updateTag(FakePluginChannel::TagRecord(" /music/caf\xC3\xA9.mp3",
                                                                "  Bj\xC3\xB6rk  ", "Caf\xE9x",
                                                                std::string(1024, 'x'), 215000)));
    const auto& m = *l.plugin.Music();
    // Blanks are removed around the whole field, so those before the zeros
    // stay; a lone high byte reads as Latin-1; a field that fills its width
    // is taken whole; the path keeps its blanks.
    EXPECT_EQ(m.Artist(), u"Bj\u00F6rk  ");
    EXPECT_EQ(m.Album(), u"Caf\u00E9x");
    EXPECT_EQ(m.Title(), std::u16string(1024, u'x'));
    EXPECT_EQ(m.FileAddress(), u" /music/caf\u00E9.mp3");
    EXPECT_EQ(m.MiliDuration(), 215000);

    // A full-width field of blanks at the end, and lengths in seconds.
    l.channel.lengthUnit = 0;
    l.plugin.Wakeup();
    ASSERT_TRUE(l.plugin.updateTag(FakePluginChannel::TagRecord(
        "", "", std::string(1000, 'a') + std::string(24, ' '), std::string("T\0hidden", 8), 215)));
    EXPECT_EQ(std::tuple(m.Album(), m.Title(), m.Artist(), m.MiliDuration(), m.Duration()),
              std::tuple(std::u16string(1000, u'a'), u"T", u"", 215000, 215));
}

}  // namespace
}  // namespace toval::test
