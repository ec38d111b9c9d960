#include "core/cEventStream.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/mNumber.h"
#include "lyric/cLyric.h"
#include "lyric/cTime.h"

namespace toval::test {
namespace {

using Raised = std::pair<int32_t, int32_t>;  // line, word

std::shared_ptr<cLyric> LyricOf(std::u16string_view text) {
    auto lyric = std::make_shared<cLyric>();
    lyric->setLoad(text);
    return lyric;
}

struct Player {
    cEventStream stream;
    std::vector<Raised> raised;

    explicit Player(std::u16string_view text) {
        stream.onLoadEvent = [this](int32_t& line, int32_t& word) {
            raised.emplace_back(line, word);
        };
        stream.Load(LyricOf(text));
    }
    // Moves to ms, ticks once and returns what that tick raised.
    std::vector<Raised> At(int32_t ms) {
        raised.clear();
        stream.UpdateTimeEvent(ms);
        return raised;
    }
};

std::vector<Raised> Order(const cEventStream& s) {
    std::vector<Raised> out;
    for (int32_t i = 0; i < s.NumEvents(); ++i)
        out.emplace_back(s.EventLine(i), s.EventWord(i));
    return out;
}

TEST(cEventStream, LoadTakesEveryLineTimeAndOnlyPositiveWordTimes) {
    Player p(
        u"[5000][65000]chorus\r\n"
        u"[]<0>zero <2000>two <-5>neg <1>one\r\n"
        u"[-100]early");
    EXPECT_EQ(Order(p.stream),
              (std::vector<Raised>{{2, kUnset}, {1, 3}, {1, 1}, {0, kUnset}, {0, kUnset}}));
    EXPECT_EQ(std::tuple(p.stream.EventTime(0), p.stream.EventTime(4), p.stream.CurrentTime(),
                         p.stream.NextTime()),
              std::tuple(-100, 65000, kUnset, -100));

    // An untimed lyric, or none, never raises.
    for (auto none : {LyricOf(u"plain\r\ntext\r\n"), std::shared_ptr<cLyric>()}) {
        p.stream.Load(none);
        EXPECT_EQ(std::pair(p.stream.NumEvents(), p.stream.NextTime()), std::pair(0, kNoNext));
        for (int32_t ms : {0, kNoNext})
            EXPECT_TRUE(p.At(ms).empty());
    }
}

TEST(cEventStream, EachTickRaisesOnlyTheLastEventPassedEitherWay) {
    std::u16string text;
    for (int i = 0; i < 12; ++i)
        text += u"[" + DecimalText((i + 1) * 1000) + u"]line\r\n";
    Player p(text);
    const std::vector<Raised> none, first{{0, kUnset}};
    // The position, what it raises, then the current event, its time and the next time.
    const std::tuple<int32_t, std::vector<Raised>, int32_t, int32_t, int32_t> steps[] = {
        {1000, first, 0, 1000, 2000},               // exactly at the time
        {1000, none, 0, 1000, 2000},                // still inside the current interval
        {11999, {{10, kUnset}}, 10, 11000, 12000},  // ten events at once: only the tenth
        {50000, {{11, kUnset}}, 11, 12000, kNoNext},
        {kNoNext, none, 11, 12000, kNoNext},  // the largest position is no next event either
        {3500, {{2, kUnset}}, 2, 3000, 4000},
        {500, first, 0, kUnset, 1000},  // back before the first event: event 0 at once
    };
    for (const auto& [ms, raised, current, currentTime, next] : steps) {
        EXPECT_EQ(p.At(ms), raised) << ms;
        EXPECT_EQ(std::tuple(p.stream.Current(), p.stream.CurrentTime(), p.stream.NextTime()),
                  std::tuple(current, currentTime, next))
            << ms;
    }
}

TEST(cEventStream, SortKeepsItsOwnTieOrderAndSurvivesItsBudgetAndBadBounds) {
    // A line and its first word at the same time: the sort puts the word first,
    // so the line (no word) is what is raised, and the first word never is.
    Player p(u"[1000]<1000>Hello <1500>world");
    EXPECT_EQ(Order(p.stream), (std::vector<Raised>{{0, 0}, {0, kUnset}, {0, 1}}));
    EXPECT_EQ(p.At(1000), (std::vector<Raised>{{0, kUnset}}));

    // Many ties over several levels: equal times end in the order the
    // recursive sort leaves them; a stable sort, or a pivot rounded down or
    // up, gives another order.
    cEventStream ties;
    const int32_t times[] = {1, 1, 2, 3, 0, 0, 3, 2, 1, 1, 3, 3, 3, 1};
    for (int32_t i = 0; i < 14; ++i)
        ties.AddEvent(i, kUnset, std::make_shared<cTime>(times[i] * 100));
    ties.QuickSort(0, 13);
    std::vector<int32_t> lines;
    for (int32_t i = 0; i < 14; ++i)
        lines.push_back(ties.EventLine(i));
    EXPECT_EQ(lines, (std::vector<int32_t>{4, 5, 0, 9, 8, 13, 1, 2, 7, 11, 12, 3, 6, 10}));

    // Past the comparison budget the rest is still sorted, every event kept.
    cEventStream over;
    for (int32_t i = 0; i < 300; ++i)
        over.AddEvent(i, kUnset, std::make_shared<cTime>((i * 7919) % 50));
    over.QuickSort(0, 299, 100);
    over.QuickSort(-1, 300);  // out-of-range bounds are refused rather than read
    std::set<int32_t> seen;
    for (int32_t i = 0; i < 300; ++i) {
        seen.insert(over.EventLine(i));
        EXPECT_LE(over.EventTime(i > 0 ? i - 1 : 0), over.EventTime(i)) << i;
    }
    EXPECT_EQ(seen.size(), 300u);
}

TEST(cEventStream, TimeMixOnlyCompresses) {
    const std::u16string before = u"[5]a\r\n[15]b\r\n[1000]c\r\n[200000]d\r\n";
    // The lyric's length, the track's, and the lyric after.
    const std::tuple<int32_t, int32_t, std::u16string> cases[] = {
        {200000, 199950, before},                                       // difference 50
        {200000, 180000, u"[4]a\r\n[14]b\r\n[900]c\r\n[180000]d\r\n"},  // 0.9, halves to even
        {180000, 200000, before},                                       // never stretched
        {200000, -180000, before},                                      // both must be positive
        {kUnset, 1000, before},
    };
    for (const auto& [lyricLength, trackLength, after] : cases) {
        auto lyric = LyricOf(before);
        cEventStream stream;
        stream.Load(lyric);
        stream.TimeMix(lyricLength, trackLength);
        // The events hold the lyric's own times: the lyric itself is fitted.
        EXPECT_EQ(lyric->Load(), after) << lyricLength << " " << trackLength;
    }
}

}  // namespace
}  // namespace toval::test
