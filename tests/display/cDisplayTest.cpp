#include "display/cDisplay.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "fakes/FakeDrawSurface.h"
#include "fakes/FakeMeasureSurface.h"
#include "fakes/FakeShell.h"
#include "lyric/cLyric.h"

namespace toval::test {
namespace {

using Strings = std::vector<std::string>;

// Measuring runs a turn of the message loop; a test may act in that turn.
struct LoopingMeasure : FakeMeasureSurface {
    std::function<void()> turn;
    void DoEvents() override {
        if (const auto once = std::exchange(turn, nullptr)) once();
    }
};

// Colour slots 0..3 hold 100..103, so a painted "/102" reads "slot 2".
struct Display {
    cGlobals globals;
    FakeDrawSurface surface;
    FakeShell shell;
    LoopingMeasure measure;
    cDisplay display{globals, surface, shell};

    explicit Display(std::u16string_view text =
                         u"[1000]Title\r\n"
                         u"[2000]<2000>one <2500>two <3000>three\r\n"
                         u"[4000]<4000>four <4500>five\r\n"
                         u"[5000]Tom & Jerry") {
        globals.Settings.color_Backround = 100;
        globals.Settings.color_BackText = 101;
        globals.Settings.color_NormalText = 102;
        globals.Settings.color_HighlighText = 103;
        globals.Settings.font_UnderlineTitle = false;
        display.Load();
        display.setLyric(LyricOf(text));
        surface.clear();
    }
    std::shared_ptr<cLyric> LyricOf(std::u16string_view text) {
        auto lyric = std::make_shared<cLyric>();
        lyric->setAuxPictureBox(&measure);
        lyric->setLoad(text);
        return lyric;
    }
    // The texts that one ChooseText painted.
    Strings Choose(int32_t line, int32_t word) {
        surface.clear();
        display.ChooseText(line, word);
        EXPECT_EQ(surface.Count(FakeDrawSurface::Kind::Refresh), 1);
        return surface.Painted();
    }
};

TEST(cDisplay, ChooseTextRepaintsOnlyWhatChanged) {
    Display d;
    // First line: the line in slot 2; no word.
    EXPECT_EQ(d.Choose(0, kUnset), (Strings{"Title/102"}));
    // The same event again (a double raise) repaints nothing.
    EXPECT_EQ(d.Choose(0, kUnset), Strings{});
    // A karaoke line with its word: old line back to 1, new line in 2, word in 3.
    EXPECT_EQ(d.Choose(1, 1),
              (Strings{"Title/101", "one /102", "two /102", "three/102", "two /103"}));
    // A word change repaints exactly two words.
    EXPECT_EQ(d.Choose(1, 2), (Strings{"two /102", "three/103"}));
    // Same line, word cleared: the line part runs (back text, then current).
    EXPECT_EQ(d.Choose(1, kUnset),
              (Strings{"one /101", "two /101", "three/101", "one /102", "two /102", "three/102"}));
    // Nothing: the old line goes back to slot 1, nothing is highlighted.
    EXPECT_EQ(d.Choose(kUnset, kUnset), (Strings{"one /101", "two /101", "three/101"}));
    // With the title underlined, only the first line is.
    d.globals.Settings.font_UnderlineTitle = true;
    EXPECT_EQ(d.Choose(0, kUnset), (Strings{"Title/102/u"}));
    EXPECT_EQ(d.Choose(3, kUnset), (Strings{"Title/101/u", "Tom & Jerry/102"}));
}

TEST(cDisplay, EveryRepaintErasesItsBoxAndDrawsUnprefixedCentredText) {
    Display d;
    d.Choose(3, kUnset);
    const auto& calls = d.surface.calls;
    // Fill (background), colour, underline, text; then the refresh.
    using K = FakeDrawSurface::Kind;
    std::vector<K> kinds;
    for (const auto& call : calls)
        kinds.push_back(call.kind);
    ASSERT_EQ(kinds, (std::vector{K::Fill, K::Color, K::Underline, K::Text, K::Refresh}));
    EXPECT_EQ(calls[0].color, 100);
    // 11 characters of 10 px centred under the widest line (13), 16 px high.
    EXPECT_EQ(std::tuple(calls[3].text, calls[3].flags, calls[3].rect, calls[0].rect),
              std::tuple(u"Tom & Jerry", 2052, cRect{10, 48, 120, 64}, cRect{10, 48, 120, 64}));

    // A word's box is the measured prefix of its line.
    d.Choose(1, 1);
    const auto& word = d.surface.calls[d.surface.calls.size() - 2];
    EXPECT_EQ(std::tuple(word.text, word.rect), std::tuple(u"two ", cRect{40, 16, 80, 32}));
}

TEST(cDisplay, MissingPiecesAreSkippedButTheStateMoves) {
    Display d;
    EXPECT_EQ(d.Choose(42, 7), Strings{});
    EXPECT_EQ(std::pair(d.display.CurrentLine(), d.display.CurrentWord()), std::pair(42, 7));
    // Line 3 has no words: word 0 of it is nothing.
    EXPECT_EQ(d.Choose(3, 0), (Strings{"Tom & Jerry/102"}));
}

// The full redraw measures the lyric: a player that closes in that turn of
// the message loop clears the display under the redraw's feet.
TEST(cDisplay, ALyricClearedOrReplacedWhileMeasuringIsNotDrawn) {
    Display d;
    const auto gone = d.LyricOf(u"[1000]gone");
    d.measure.turn = [&] { d.display.Clear(); };
    d.display.setLyric(gone);
    EXPECT_EQ(d.display.Lyric(), nullptr);
    EXPECT_TRUE(d.surface.Painted().empty());

    const auto newer = d.LyricOf(u"[1000]newer"), older = d.LyricOf(u"[1000]older");
    d.measure.turn = [&] { d.display.setLyric(newer); };
    d.display.setLyric(older);
    EXPECT_EQ(d.display.Lyric(), newer);
    EXPECT_EQ(d.surface.Painted(), (Strings{"newer/101"}));
}

}  // namespace
}  // namespace toval::test
