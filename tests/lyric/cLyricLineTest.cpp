#include "lyric/cLyricLine.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "base/mNumber.h"
#include "lyric/cLyricWord.h"

namespace toval {
namespace {

// The times of a word or a line.
template <class T>
std::vector<int32_t> Times(const T& owner) {
    std::vector<int32_t> out;
    for (int32_t i = 0; i < owner.GetTimeSize(); ++i)
        out.push_back(owner.GetTime(i)->Time());
    return out;
}

std::shared_ptr<cLyricWord> Word(std::u16string text) {
    auto w = std::make_shared<cLyricWord>();
    w->setText(std::move(text));
    return w;
}

TEST(cLyricWord, ReadsAndWritesWordRecords) {
    // A record, its times and its text.
    const std::tuple<const char16_t*, std::vector<int32_t>, const char16_t*> cases[] = {
        // clang-format off
        {u"<12340><65000>love ", {12340, 65000}, u"love "}, {u"<>oh", {}, u"oh"},
        {u"<01:xx>x", {kUnset}, u"x"},  // a bad word tag stays as no time
        {u"x>y<5>z", {}, u"x>y<5>z"},  // ">" before the first "<" stops at once
        // A ">" with no "<" before it closes a tag from the start of the record.
        {u"12>y", {12}, u"y"}, {u"<1>a:1>>b", {1, kUnset, kUnset}, u"b"}, {u"<1<2>a", {0}, u"a"},
        // clang-format on
    };
    // One word for every record: each reload drops the old times.
    cLyricWord w;
    for (const auto& [record, times, text] : cases) {
        SCOPED_TRACE(testing::PrintToString(std::u16string(record)));
        w.setLoad(record);
        EXPECT_EQ(Times(w), times);
        EXPECT_EQ(w.Text(), text);
        EXPECT_EQ(w.Simple(), times.empty());
    }

    w.setLoad(u"<12340><65000>love ");
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

TEST(cLyricLine, ReadsAndWritesLineRecords) {
    // A record, its times, its text and its words.
    using Texts = std::vector<std::u16string>;
    const std::tuple<const char16_t*, std::vector<int32_t>, const char16_t*, Texts> cases[] = {
        // clang-format off
        {u"[]some untimed text", {}, u"some untimed text", {}},
        {u"[5000][00:01.50]chorus", {5000, 1500}, u"chorus", {}},
        {u"[01:xx]text", {}, u"text", {}},  // a bad line tag is dropped
        {u"abc]def", {0}, u"def", {}},  // a stray "]" closes a tag from the start
        {u"[00:01]]x", {1000}, u"x", {}},  // the second "tag" holds a ":" and fails
        {u"]x[5]y", {}, u"]x[5]y", {}},    // "]" before the first "[" stops at once
        {u"[12340]<12340>Hello <12800>world", {12340}, u"Hello world", {u"Hello ", u"world"}},
        {u"[5000]pre<100>a<200>b", {5000}, u"preab", {u"pre", u"a", u"b"}},
        {u"[]<1><2>la<3", {}, u"la<3", {u"la", u"<3"}}, {u"[]<>", {}, u"", {u""}},
        // clang-format on
    };
    // One line for every record: each reload drops the old times and words.
    cLyricLine l;
    for (const auto& [record, times, text, words] : cases) {
        SCOPED_TRACE(testing::PrintToString(std::u16string(record)));
        l.setLoad(record);
        EXPECT_EQ(Times(l), times);
        EXPECT_EQ(l.Text(), text);
        ASSERT_EQ(l.GetWordSize(), static_cast<int32_t>(words.size()));
        for (size_t i = 0; i < words.size(); ++i)
            EXPECT_EQ(l.GetWord(static_cast<int32_t>(i))->Text(), words[i]);
        EXPECT_EQ(l.Karaoke(), !words.empty());
    }

    // Writes back what it read.
    for (const auto* r : {u"[]", u"[5000][65000]chorus line", u"[-300]<-300>neg<>un<7><8>two"}) {
        l.setLoad(r);
        EXPECT_EQ(l.Load(), r);
    }
    l.setLoad(u"[5000]pre<100>a<200>b");
    EXPECT_EQ(l.Load(), u"[5000]<>pre<100>a<200>b");
}

TEST(cLyricLine, DisplayTextLrcFormEmptinessSimplicityAndEditingWords) {
    cLyricLine l;
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

    l.setLoad(u"[]");
    EXPECT_TRUE(l.Simple());
    for (const auto& [text, empty] : {std::pair{u"", true}, {u"   ", true}, {u"\t", false}}) {
        l.setText(text);
        EXPECT_EQ(l.IsEmpty(), empty);
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
    k.InsertWord(99, Word(u"z"));
    k.RemoveWord(0);
    EXPECT_EQ(k.Load(), u"[]<2>b<>z");
}

}  // namespace
}  // namespace toval
