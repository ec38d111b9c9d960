#include "lyric/cLyric.h"

#include <gtest/gtest.h>

#include <array>
#include <tuple>

#include "fakes/CapturedTrail.h"
#include "fakes/FakeMeasureSurface.h"
#include "fakes/FakeRandom.h"
#include "lyric/mLrcForm.h"

namespace toval {
namespace {

constexpr char16_t kTimedTvl[] =
    u"[PROPERTY]\r\nMUTATION:1804289383\r\nTRACKLENGTH:215000\r\nRIGHTTOLEFT:0\r\n"
    u"[\\PROPERTY][12000]First line\r\n"
    u"[15500]<15500>Sec<15900>ond <16400>line\r\n"
    u"[]\r\n";

// A box as left, top, right, bottom.
std::array<int32_t, 4> Box(const std::shared_ptr<cDelta>& d) {
    return {d->Initial()->X(), d->Initial()->Y(), d->Final()->X(), d->Final()->Y()};
}

TEST(cLyric, LoadsAndWritesTheTvlDocumentAndWritesSimpleLyricsAsPlainText) {
    cLyric empty;
    empty.setLoad(u"");
    EXPECT_EQ(empty.TVL(), u"[PROPERTY]\r\nMUTATION:-2147483648\r\nRIGHTTOLEFT:0\r\n[\\PROPERTY]");

    cLyric l;
    l.setLoad(kTimedTvl);
    EXPECT_EQ(std::tuple(l.GetLineSize(), l.Mutation(), l.TrackLength()),
              std::tuple(3, 1804289383, 215000));
    EXPECT_EQ(l.GetLine(3), nullptr);
    EXPECT_EQ(l.TVL(), kTimedTvl);
    EXPECT_EQ(l.Text(), u"First line\r\nSecond line\r\n\r\n");
    EXPECT_EQ(l.LRC(nullptr), u"[00:12.00]First line\r\n[00:15.50]Second line\r\n[00:00.00]\r\n");

    cLyric plain;
    plain.setLoad(u"one\r\n \r\n\u05D0\r\n<>a<> <>b");
    plain.setRightToLeft(true);
    plain.setTrackLength(1000);
    const std::u16string tvl = plain.TVL();
    EXPECT_EQ(tvl,
              u"[PROPERTY]\r\nMUTATION:-2147483648\r\nTRACKLENGTH:1000\r\nRIGHTTOLEFT:1\r\n"
              u"[\\PROPERTY]one\r\n\r\n\u05D0\r\na b\r\n");
    EXPECT_EQ(plain.Text(), u"one\r\n\r\n\u05D0\r\na b\r\n");
    cLyric again;
    again.setLoad(tvl);
    EXPECT_EQ(again.TVL(), tvl);
}

// LRC files as other programs and the web write them, each read into the
// records the program writes itself and the leading ID tags it keeps.
TEST(cLyric, ReadsLrcFilesAsUsersHaveThem) {
    const struct {
        const char16_t* text;
        const char16_t* records;
        const char16_t* tags = u"";
    } cases[] = {
        // A later tag is an ordinary untimed line.
        {u"[ar:A]\r\n[ti:T]\r\n[00:01.00]x\r\n[al:later]", u"[1000]x\r\n[]\r\n",
         u"[ar:A]\r\n[ti:T]\r\n"},
        // An empty first piece ends the header; a tag with nothing between the
        // brackets is not an ID tag; a complete property section ends it too.
        {u"\r\n[ar:x]\r\n", u"[]\r\n[]\r\n"},
        {u"[PROPERTY]\r\n[\\PROPERTY][ar:x]\r\n", u"[]\r\n"},
        {u"a\n\n[00:01]b", u"[]a\r\n[]\r\n[1000]b\r\n"},  // LF alone
        {u"\uFEFF  [00:01.00]x", u"[1000]x\r\n"},
        // Brackets that hold no time are text.
        {u"[00:01.00][scared]more", u"[1000][scared]more\r\n"},
        {u"[00:01.00][length: 2:23][00:02]x", u"[1000][2000]x\r\n"},  // a tag among them is not
        // Time forms, blanks inside and between stamps.
        {u"[00:00.00]  [00:10.00]Rep\n[13:00][51:00:00.00]",
         u"[0][10000]Rep\r\n[780000][183600000]\r\n"},
        // Word times in angle or square brackets; a word of blanks is a gap,
        // a time with nothing behind it ends the last word.
        {u"[00:05.000] hello [00:06.000] world", u"[5000]<> hello <6000> world\r\n"},
        {u"[00:01.00]<00:01.10>  <00:02.00>x<00:02.50>", u"[1000]<>  <2000>x<2500>\r\n"},
        // Each repeat of a line with word times gets its own.
        {u"[00:10.00][00:30.00]<00:10.10>Hi <00:10.50>you",
         u"[10000]<10100>Hi <10500>you\r\n[30000]<30100>Hi <30500>you\r\n"},
        // The offset: positive comes earlier.
        {u"[ar:A]\n[offset:+500]\n[00:01.00]<00:01.20>a", u"[500]<700>a\r\n", u"[ar:A]\r\n"},
        // A right-to-left line as the program writes it in LRC.
        {u"\u05D0[00:01.00]b", u"[1000]\u05D0b\r\n"},
    };
    for (const auto& c : cases) {
        cLyric l;
        l.setLoad(c.text);
        SCOPED_TRACE(testing::PrintToString(std::u16string(c.text)));
        EXPECT_EQ(l.Load(), c.records);
        EXPECT_EQ(l.IDTags(), c.tags);
        // The LRC written reads back to itself: an offset is not applied twice.
        cLyric back;
        back.setLoad(l.LRC(nullptr));
        EXPECT_EQ(back.LRC(nullptr), l.LRC(nullptr));
    }
    cLyric tagged;
    tagged.setLoad(cases[0].text);
    EXPECT_EQ(tagged.LRC(nullptr), u"[ar:A]\r\n[ti:T]\r\n[00:01.00]x\r\n[00:00.00]\r\n");
    // A stamp inside the text is text, and so is the text before it (written
    // back as LRC, that stamp would read as a word time).
    tagged.setLoad(u"[00:01]a\nThis could [00:00:00] be");
    EXPECT_EQ(tagged.Load(), u"[1000]a\r\n[]This could [00:00:00] be\r\n");

    // The time of a stamp; kUnset: not a stamp.
    const std::pair<const char16_t*, int32_t> stamps[] = {
        // clang-format off
        {u"-00:01.00", -1000}, {u"00:01.1234", 1123}, {u"1:00:00,5", 3600500}, {u"1:10:10", 70100},
        {u"00:01a50", kUnset}, {u"1:2:3:4", kUnset}, {u"596524:00", kUnset}, {u"", kUnset},
        // clang-format on
    };
    for (const auto& [stamp, expected] : stamps) {
        int32_t ms = 7;
        EXPECT_EQ(ParseLrcStamp(stamp, ms) ? ms : kUnset, expected)
            << testing::PrintToString(std::u16string(stamp));
    }
}

TEST(cLyric, ReadsPropertySectionsAndKeepsTheRevisionAPositive32BitNumber) {
    cLyric l;
    l.setLoad(
        u"ignored before[PROPERTY]\r\nmutation:5\r\nRIGHTTOLEFT:yes\r\nnocolon\r\n"
        u"TrackLength: 2.5 \r\nOTHER:1\r\n[\\PROPERTY]a");
    EXPECT_EQ(std::tuple(l.Mutation(), l.RightToLeft(), l.TrackLength(), l.Load()),
              std::tuple(5, false, 2, u"[]a\r\n"));

    // A section over a lyric of revision 3: the revision and direction it leaves.
    const std::tuple<const char16_t*, int32_t, bool> cases[] = {
        {u"\r\nMUTATION:7\r\nRIGHTTOLEFT:1\r\n", 7, true},
        {u"\r\nMUTATION:7\r\nRIGHTTOLEFT:1", 7, false},  // no CR LF after it: ignored
        {u"\r\nMUTATION:99999999999\r\n", 3, false},     // does not fit: ignored
        {u"MUTATION:8\r\n", 3, false},                   // reading starts at the third character
    };
    // A number too large for 32 bits leaves a trail line.
    test::CapturedTrail trail;
    for (const auto& [section, mutation, rightToLeft] : cases) {
        cLyric p;
        p.setMutation(3);
        p.setProperties(section);
        EXPECT_EQ(std::pair(p.Mutation(), p.RightToLeft()), std::pair(mutation, rightToLeft));
    }
    EXPECT_EQ(trail.lines,
              (decltype(trail.lines){{"cLyric.Properties [Let]", "value out of range"}}));

    // A new revision is drawn at random, clamped into 1..2147483647.
    test::FakeRandom random({0.0, 0.5, 0.99999999999999989, -0.5});
    cLyric drawn(&random);
    for (const int32_t expected : {1, 1073741824, 2147483647, 1}) {
        drawn.Mutate();
        EXPECT_EQ(drawn.Mutation(), expected);
    }
    cLyric none;
    none.setMutation(42);
    none.Mutate();
    EXPECT_EQ(none.Mutation(), 42);
}

TEST(cLyric, LaysOutLinesAndWords) {
    test::FakeMeasureSurface surface(10, 16);
    cLyric l;
    l.setAuxPictureBox(&surface);
    l.setLoad(u"[]<1>ab<2>cd\r\n\r\n[]x");
    EXPECT_EQ(surface.doEvents, 1);
    // An empty line is as high as any.
    EXPECT_EQ(std::tuple(l.Delta()->Final()->X(), l.Delta()->Final()->Y(), l.TextHeight()),
              std::tuple(40, 48, 16));
    EXPECT_EQ(Box(l.GetLine(2)->Delta()), (std::array{0, 32, 10, 48}));
    EXPECT_EQ(Box(l.GetLine(0)->GetWord(1)->Delta()), (std::array{20, 0, 40, 16}));
    EXPECT_EQ(l.GetLine(0)->AuxPictureBox(), nullptr);  // given back after layout
    l.setAlignment(2);
    l.Resize();
    EXPECT_EQ(Box(l.GetLine(2)->Delta()), (std::array{30, 32, 40, 48}));

    // Centring rounds half to even: 101 px spare gives 50, 103 gives 52;
    // a word: (200-3)/2=98.5 -> 98, +2.
    test::FakeMeasureSurface narrow(1, 10);
    cLyric c;
    c.setAlignment(3);
    c.setAuxPictureBox(&narrow);
    c.setLoad(std::u16string(200, u'w') + u"\r\n" + std::u16string(99, u'n') + u"\r\n" +
              std::u16string(97, u'n') + u"\r\n" + u"<>ab<>c");
    EXPECT_EQ(Box(c.GetLine(1)->Delta())[0], 50);
    EXPECT_EQ(Box(c.GetLine(2)->Delta()), (std::array{52, 20, 149, 30}));
    EXPECT_EQ(c.GetLine(3)->GetWord(1)->Delta()->Initial()->X(), 100);
}

}  // namespace
}  // namespace toval
