#include "lyric/cLyricLine.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "base/mNumber.h"
#include "fakes/FakeMeasureSurface.h"
#include "lyric/cLyricWord.h"

namespace toval {
namespace {

std::string Narrow(std::u16string_view s) {
    std::string out;
    for (const char16_t c : s)
        out += c < 128 ? static_cast<char>(c) : '?';
    return out;
}

// The times of a word or a line.
template <class T>
std::vector<int32_t> Times(const T& owner) {
    std::vector<int32_t> out;
    for (int32_t i = 0; i < owner.GetTimeSize(); ++i)
        out.push_back(owner.GetTime(i)->Time());
    return out;
}

std::shared_ptr<cLyricWord> Word(std::u16string text, std::vector<int32_t> times = {}) {
    auto w = std::make_shared<cLyricWord>();
    w->setText(std::move(text));
    for (const int32_t t : times)
        w->AddTime(std::make_shared<cTime>(t));
    return w;
}

TEST(cLyricWord, ReadsAndWritesWordRecords) {
    const struct {
        const char16_t* record;
        std::vector<int32_t> times;
        const char16_t* text;
    } cases[] = {
        // clang-format off
        {u"<12340><65000>love ", {12340, 65000}, u"love "}, {u"<>oh", {}, u"oh"},
        {u"<1000><1000>la", {1000, 1000}, u"la"}, {u"<00:01.50>x", {1500}, u"x"},
        {u"<abc>x", {0}, u"x"},         // no ":" parses as 0
        {u"<01:xx>x", {kUnset}, u"x"},  // a bad word tag stays as no time
        {u"plain", {}, u"plain"}, {u"", {}, u""},
        {u"<5", {}, u"<5"},            // unclosed tag is text
        {u"x>y<5>z", {}, u"x>y<5>z"},  // ">" before the first "<" stops at once
        // A ">" with no "<" before it closes a tag from the start of the record.
        {u"12>y", {12}, u"y"}, {u"a>b>c", {0, 0}, u"c"}, {u"<1>a>b", {1, 0}, u"b"},
        {u"<1>a:>b", {1, kUnset}, u"b"}, {u"<1>a:1>>b", {1, kUnset, kUnset}, u"b"},
        {u"<1<2>a", {0}, u"a"}, {u"<-5>a", {-5}, u"a"},
        // clang-format on
    };
    for (const auto& c : cases) {
        cLyricWord w;
        w.AddTime(std::make_shared<cTime>(99));
        w.setLoad(c.record);
        EXPECT_EQ(Times(w), c.times) << Narrow(c.record);
        EXPECT_EQ(w.Text(), c.text) << Narrow(c.record);
        EXPECT_EQ(w.Simple(), c.times.empty());
    }

    cLyricWord w;
    w.setLoad(u"<12340><65000>love ");
    EXPECT_EQ(w.Load(), u"<12340><65000>love ");
    w.RemoveTime(0);
    EXPECT_EQ(w.Load(), u"<65000>love ");
    EXPECT_FALSE(w.GetTime(1) || w.GetTime(-1));
    w.RemoveTimeAll();
    EXPECT_EQ(w.Load(), u"<>love ");
    // A bad tag is written as no time and reads back as no time.
    w.setLoad(u"<01:xx>x");
    EXPECT_EQ(w.Load(), u"<-2147483648>x");
    w.setLoad(w.Load());
    EXPECT_EQ(Times(w), std::vector<int32_t>{kUnset});
}

TEST(cLyricLine, ReadsLineRecords) {
    const struct {
        const char16_t* record;
        std::vector<int32_t> times;
        const char16_t* text;
        std::vector<std::u16string> words;
    } cases[] = {
        // clang-format off
        {u"[]", {}, u"", {}}, {u"[]some untimed text", {}, u"some untimed text", {}},
        {u"[5000][65000]chorus line", {5000, 65000}, u"chorus line", {}},
        {u"[00:01.50]Hi", {1500}, u"Hi", {}},
        {u"[01:xx]text", {}, u"text", {}},  // a bad line tag is dropped
        {u"[ar:A]", {}, u"", {}},
        {u"[abc]text", {0}, u"text", {}},  // no ":" in a tag parses as 0, a valid time
        {u"no tags", {}, u"no tags", {}},
        {u"abc]def", {0}, u"def", {}},  // a stray "]" closes a tag from the start
        {u"[1]]]x", {1, 0, 0}, u"x", {}},
        {u"[00:01]]x", {1000}, u"x", {}},  // the second "tag" holds a ":" and fails
        {u"]x[5]y", {}, u"]x[5]y", {}},    // "]" before the first "[" stops at once
        {u"[12340]<12340>Hello <12800>world", {12340}, u"Hello world", {u"Hello ", u"world"}},
        {u"[5000]pre<100>a<200>b", {5000}, u"preab", {u"pre", u"a", u"b"}},
        {u"[]<1><2>la<3", {}, u"la<3", {u"la", u"<3"}}, {u"<1>a", {}, u"a", {u"a"}},
        {u"[]<>", {}, u"", {u""}}, {u"[]<1>a>b<2>c", {}, u"bc", {u"b", u"c"}},
        // clang-format on
    };
    for (const auto& c : cases) {
        cLyricLine l;
        l.setLoad(c.record);
        EXPECT_EQ(Times(l), c.times) << Narrow(c.record);
        EXPECT_EQ(l.Text(), c.text) << Narrow(c.record);
        ASSERT_EQ(l.GetWordSize(), static_cast<int32_t>(c.words.size())) << Narrow(c.record);
        for (size_t i = 0; i < c.words.size(); ++i)
            EXPECT_EQ(l.GetWord(static_cast<int32_t>(i))->Text(), c.words[i]);
        EXPECT_EQ(l.Karaoke(), !c.words.empty()) << Narrow(c.record);
    }

    cLyricLine l;
    l.setLoad(u"[12340]<12340>Hello <12800><13000>world");
    EXPECT_EQ(Times(*l.GetWord(1)), (std::vector<int32_t>{12800, 13000}));
    // Reloading drops the old times and words.
    l.setLoad(u"[]plain");
    EXPECT_EQ(l.GetWordSize(), 0);
    EXPECT_EQ(l.GetTimeSize(), 0);
}

TEST(cLyricLine, WritesRecordsAndRoundTrips) {
    const char16_t* records[] = {u"[]",
                                 u"[12340]<12340>Hello <12800>world",
                                 u"[]some untimed text",
                                 u"[5000][65000]chorus line",
                                 u"[1]<5>solo",
                                 u"[-300]<-300>neg<>un<7><8>two"};
    for (const auto* r : records) {
        cLyricLine l;
        l.setLoad(r);
        EXPECT_EQ(l.Load(), r);
    }
    cLyricLine l;
    l.setLoad(u"[5000]pre<100>a<200>b");
    EXPECT_EQ(l.Load(), u"[5000]<>pre<100>a<200>b");
}

TEST(cLyricLine, DisplayTextAndLrcForm) {
    cLyricLine l;
    l.setLoad(u"x");
    EXPECT_EQ(l.LoadLRC(), u"[00:00.00]x");
    l.setLoad(u"[1996][5000]x");
    EXPECT_EQ(l.LoadLRC(), u"[00:01.100]x");  // first time only, short form

    // One word: the line's own text is the display text (here it differs).
    l.setLoad(u"[1]<5>solo");
    l.setText(u"own");
    EXPECT_EQ(l.TextRebuild(), u"own");
    EXPECT_EQ(l.LoadLRC(), u"[00:00.00]own");
    EXPECT_EQ(l.Load(), u"[1]<5>solo");  // the record uses the word at once

    // Right-to-left words go on the left of what is joined so far; a single
    // blank keeps the direction in force.
    cLyricLine r;
    for (const auto* t : {u"A ", u"\u05D1 ", u"\u05D2", u" ", u"D"})
        r.AddWord(Word(t));
    EXPECT_EQ(r.TextRebuild(), u" \u05D2\u05D1 A D");
    r.AddTime(std::make_shared<cTime>(1000));
    EXPECT_EQ(r.LoadLRC(), u" \u05D2\u05D1 [00:01.00]A D");

    // Words after a right-to-left word that are not a single blank switch back.
    cLyricLine m;
    for (const auto* t : {u"\u05D0", u"  ", u"b"})
        m.AddWord(Word(t));
    EXPECT_EQ(m.TextRebuild(), u"\u05D0  b");
}

TEST(cLyricLine, EmptinessSimplicityAndEditingWords) {
    cLyricLine l;
    l.setLoad(u"[]");
    EXPECT_TRUE(l.Simple());
    for (const auto& [text, empty] : {std::pair{u"", true}, {u"   ", true}, {u"\t", false}}) {
        l.setText(text);
        EXPECT_EQ(l.IsEmpty(), empty) << Narrow(text);
    }
    l.setText(u" ");
    l.AddWord(Word(u" "));
    EXPECT_FALSE(l.IsEmpty());  // a line with a word is never empty

    cLyricLine k;
    k.setLoad(u"[]<>a<>b");
    EXPECT_TRUE(k.Simple());
    k.GetWord(0)->AddTime(std::make_shared<cTime>(1));
    EXPECT_FALSE(k.Simple());
    k.setLoad(u"[3]a");
    EXPECT_FALSE(k.Simple());

    k.setLoad(u"[]<1>a<2>b");
    k.InsertWord(1, Word(u"x"));
    k.InsertWord(99, Word(u"z"));
    k.RemoveWord(0);
    k.RemoveWord(7);
    EXPECT_EQ(k.Load(), u"[]<>x<2>b<>z");
    EXPECT_EQ(k.GetWord(3), nullptr);
}

TEST(cLyricLine, LaysWordsOutByMeasuredPrefixes) {
    test::FakeMeasureSurface surface;
    surface.keepTexts = true;
    cLyricLine l;
    l.setLoad(u"[]<1>ab<2>c");
    l.Delta()->setInitial(std::make_shared<c2DPoint>(5, 16));
    l.Delta()->setFinal(std::make_shared<c2DPoint>(35, 32));

    l.Resize();  // no surface: nothing happens
    EXPECT_EQ(surface.extentCalls, 0);
    EXPECT_EQ(l.GetWord(0)->Delta()->Initial()->X(), kUnset);

    l.setAuxPictureBox(&surface);
    l.Resize();
    EXPECT_EQ(surface.measured, (std::vector<std::u16string>{u"ab", u"abc"}));
    const auto box = [&](int32_t w) {
        const auto d = l.GetWord(w)->Delta();
        return std::array{d->Initial()->X(), d->Initial()->Y(), d->Final()->X(), d->Final()->Y()};
    };
    EXPECT_EQ(box(0), (std::array{5, 16, 25, 32}));
    EXPECT_EQ(box(1), (std::array{25, 16, 35, 32}));
    EXPECT_EQ(l.GetWord(1)->Delta()->Diff()->X(), 10);
}

}  // namespace
}  // namespace toval
