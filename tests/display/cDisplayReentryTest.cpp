// The full redraw measures the lyric, and measuring runs a turn of the
// message loop: a player that closes in that turn clears the display under
// the redraw's feet.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <utility>

#include "display/cDisplay.h"
#include "fakes/FakeDrawSurface.h"
#include "fakes/FakeMeasureSurface.h"
#include "fakes/FakeShell.h"
#include "lyric/cLyric.h"

namespace toval::test {
namespace {

struct LoopingMeasure : FakeMeasureSurface {
    std::function<void()> turn;
    void DoEvents() override {
        if (const auto once = std::exchange(turn, nullptr)) once();
    }
};

TEST(cDisplayReentryTest, ALyricClearedOrReplacedWhileMeasuringIsNotDrawn) {
    cGlobals globals;
    FakeDrawSurface surface;
    FakeShell shell;
    LoopingMeasure measure;
    cDisplay display(globals, surface, shell);
    const auto lyricOf = [&](std::u16string_view text) {
        auto lyric = std::make_shared<cLyric>();
        lyric->setAuxPictureBox(&measure);
        lyric->setLoad(text);
        return lyric;
    };
    const auto gone = lyricOf(u"[1000]gone");
    measure.turn = [&] { display.Clear(); };
    display.setLyric(gone);
    EXPECT_EQ(display.Lyric(), nullptr);
    EXPECT_TRUE(surface.Painted().empty());

    const auto newer = lyricOf(u"[1000]newer"), older = lyricOf(u"[1000]older");
    measure.turn = [&] { display.setLyric(newer); };
    display.setLyric(older);
    EXPECT_EQ(display.Lyric(), newer);
    ASSERT_EQ(surface.Painted().size(), 1u);
    EXPECT_EQ(surface.Painted()[0].rfind("newer/", 0), 0u);
}

}  // namespace
}  // namespace toval::test
