#include "base/cStrings.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace toval {
namespace {

const cStrings kStrings;

std::string Bytes(std::initializer_list<int> values) {
    std::string bytes;
    for (int v : values)
        bytes.push_back(static_cast<char>(v));
    return bytes;
}

TEST(cStrings, Utf8DecodingKeepsTheWideMasksAndTheLatin1Fallback) {
    const std::vector<std::pair<std::string, std::u16string>> cases = {
        // Well-formed two-byte text and a lone Latin-1 byte: the fast path's cases below.
        {Bytes({0xC3}), u"\u00C3"},              // a two-byte lead alone
        {Bytes({0xE2, 0x82}), u"\u00E2\u201A"},  // three-byte lead cut short; 82 in Windows-1252
        {Bytes({0xD8, 0xC0}), u"\u0640"},        // second byte's bit 6 is kept
        {Bytes({0xEF, 0xBF, 0xBF}), u"\uFFFF"},
        // Past 16 bits: a four-byte lead or continuation bytes from C0 up.
        {Bytes({0xF0, 0x9F, 0x98, 0x80}), u"\uFFFD\u20AC"},
    };
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(kStrings.utf8TOwstring(bytes), text) << testing::PrintToString(bytes);

    // The same around the ASCII fast path: a multi-byte character or a lone
    // high byte at every position of the first two eight-byte blocks, and at
    // the end.
    for (size_t before = 0; before < 18; ++before) {
        for (size_t after = 0; after < 10; ++after) {
            const std::string a(before, 'a'), b(after, 'b');
            const std::u16string ta(before, u'a'), tb(after, u'b');
            EXPECT_EQ(kStrings.utf8TOwstring(a + "\xC3\xA9" + b), ta + u"\u00E9" + tb);
            EXPECT_EQ(kStrings.utf8TOwstring(a + "\xE9" + b), ta + u"\u00E9" + tb);
        }
    }
}

// Every encoding boundary (7F/80, 7FF/800, each half of a surrogate pair) is
// pinned by the round trip through the decoder, whose exact bytes are pinned
// above; writing 16-bit texts and files by the round trip too.
TEST(cStrings, EveryUnitSurvivesEncodingAndDecodingAndSixteenBitFilesAreRead) {
    std::u16string all;
    for (uint32_t unit = 0; unit <= 0xFFFF; ++unit)
        all.push_back(static_cast<char16_t>(unit));
    EXPECT_EQ(kStrings.utf8TOwstring(kStrings.wstringTOutf8(all)), all);
    EXPECT_EQ(kStrings.wcharTOwstring(kStrings.wstringTOwchar(all)), all);
    EXPECT_EQ(kStrings.txtuniTOwstring(kStrings.wstringTOtxtuni(all)), all);

    // Files carry a byte-order mark, skipped when present; a lone last byte is kept.
    const std::pair<std::string, std::u16string> files[] = {
        {Bytes({0xFF, 0xFE, 'a', 0, 0xE9, 0}), u"a\u00E9"},
        {Bytes({'a', 0, 'b', 0}), u"ab"},
        {Bytes({0xFF, 0xFE, 'a', 0, 'b'}), u"ab"}};
    for (const auto& [bytes, text] : files)
        EXPECT_EQ(kStrings.txtuniTOwstring(bytes), text) << testing::PrintToString(bytes);
    EXPECT_EQ(kStrings.wstringTOtxtuni(u""), Bytes({0xFF, 0xFE}));

    // Plain 16-bit texts share the reading: a mark is a character here.
    EXPECT_EQ(kStrings.wcharTOwstring(Bytes({0xFF, 0xFE})), u"\uFEFF");
}

TEST(cStrings, FormEncodingKeepsOnlySlashDigitsAndLettersAndCutsBetweenWholeCharacters) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"a b/c?", "a+b/c%3F"},
        // The edges of the kept ranges: "." and ":" around "/" to "9", "@" and "["
        // around the capitals, "`" and "{" around the small letters.
        {"./09:", "%2E/09%3A"},
        {"@AZ[`az{", "%40AZ%5B%60az%7B"},
        {Bytes({0x00, 0x0A, 0x7F, 0x80, 0xFF}), "%00%0A%7F%80%FF"},  // two digits, upper case
    };
    for (const auto& [bytes, encoded] : cases)
        EXPECT_EQ(kStrings.stringTOhtml(bytes), encoded);

    // With a limit on the encoded length (none below 1).
    const std::u16string text = u"a\u00E9 b";  // a%C3%A9+b
    const std::vector<std::pair<int32_t, std::string>> limits = {
        {0, "a%C3%A9+b"}, {6, "a"}, {7, "a%C3%A9"}, {8, "a%C3%A9+"}, {9, "a%C3%A9+b"},
    };
    for (const auto& [limit, expected] : limits)
        EXPECT_EQ(kStrings.wstringTOutf8uhtml(text, limit), expected) << limit;
    const std::u16string pair = u"\U0001F600";  // two halves, 18 characters
    EXPECT_EQ(kStrings.wstringTOutf8uhtml(pair, 17), "");
    EXPECT_EQ(kStrings.wstringTOutf8uhtml(pair, 18), kStrings.wstringTOutf8html(pair));
    // A lone half is a character of its own.
    EXPECT_EQ(kStrings.wstringTOutf8uhtml(u"\xD83Dx", 9), "%ED%A0%BD");
}

TEST(cStrings, HtmlTagsAndReferencesBecomeText) {
    const std::vector<std::pair<std::u16string, std::u16string>> cases = {
        {u"a<br>b<p>c<br/>d<br />e", u"a\r\nb\r\nc\r\nd\r\ne"},
        {u"<BR><br  /><b>", u"<BR><br  /><b>"},  // other spellings stay
        {u"&eacute;t&eacute; &Eacute;", u"\u00E9t\u00E9 \u00C9"},
        {u"&AMP;&Amp;&nbsp;&foo;& amp;&amp", u"&AMP;&Amp;&nbsp;&foo;& amp;&amp"},
        // Numeric references: decimal, up to 65535.
        {u"&#233;&#0065;&#65535;", u"\u00E9A\uFFFF"},
        {u"&#" + std::u16string(40, u'0') + u"65;", u"A"},  // leading zeros of any length
        {u"&#65536;&#;&#x41;&#-1;", u"&#65536;&#;&#x41;&#-1;"},
        // Again and again until nothing is left.
        {u"&amp;lt;", u"<"},
        {u"&lt;br&gt;", u"\r\n"},
    };
    for (const auto& [html, text] : cases)
        EXPECT_EQ(kStrings.htmlTOtext(html), text) << testing::PrintToString(std::u16string(html));

    // Chains of any length need no deep recursion: each "&#59;" completes the reference before it:
    // 200000 replacements in a row.
    std::u16string chain;
    for (int i = 0; i < 200000; ++i)
        chain += u"&#59";
    EXPECT_EQ(kStrings.htmlTOtext(chain + u";"), u";");
}

}  // namespace
}  // namespace toval
