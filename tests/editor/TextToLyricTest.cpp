// Plain text to lyric: the separator set, lines split at CR LF, words and
// separators as words of their own, right-to-left runs, and the deliberate
// losses of a one-character tail.
#include <string>
#include <vector>

#include "EditorFixture.h"

namespace toval::test {
namespace {

using TextToLyric = EditorTest;

TEST_F(TextToLyric, LinesAndTheirEndings) {
    const std::vector<std::pair<std::u16string, std::u16string>> cases = {
        {u"ab\r\nc", u"[]<>ab\r\n"},  // a last line of one character is dropped
        {u"\r\n\r\nab", u"[]\r\n[]\r\n[]<>ab\r\n"},
        {u"ab\ncd", u"[]<>ab\ncd\r\n"},  // a lone LF stays inside the line
        {u"Hello, world", u"[]<>Hello<>,<> <>world\r\n"},
        {u"ab c", u"[]<>ab<> \r\n"},  // and a last word of one character
        {u"tab\there", u"[]<>tab\there\r\n"},
        {u"\u3000\u4F60\u597D\u3002", u"[]<>\u3000<>\u4F60\u597D<>\u3002\r\n"},
        // The separators below 0x8000 sort after those above it as 16-bit numbers.
        {u"ab\uFF0Ccd\uFF0Dx\uFF1Ay\u205F\u2060z",
         u"[]<>ab<>\uFF0C<>cd\uFF0Dx<>\uFF1A<>y<>\u205F<>\u2060z\r\n"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(editor.textToLyric(text), expected) << std::string(text.begin(), text.end());
}

TEST_F(TextToLyric, RightToLeftRunsComeOutReversed) {
    const std::u16string a = u"\u05D0\u05D1", b = u"\u05D2\u05D3", c = u"\u05D4\u05D5";
    // Three Hebrew words: reverse order, each blank kept next to the word it
    // followed.
    EXPECT_EQ(editor.wordSep(a + u" " + b + u" " + c, u"<>"),
              u"<>" + c + u"<> <>" + b + u"<> <>" + a);
    // A left-to-right word closes the run; the blank before it closes the run too.
    EXPECT_EQ(editor.wordSep(a + u" " + b + u" xy", u"<>"), u"<>" + b + u"<> <>" + a + u"<> <>xy");
    // A run after a left-to-right word: the separator between stays in front.
    EXPECT_EQ(editor.wordSep(u"xy " + a + u" " + b, u"<>"), u"<>xy<> <>" + b + u"<> <>" + a);
    // A trailing separator after a run comes last.
    EXPECT_EQ(editor.wordSep(a + u" " + b + u".", u"<>"), u"<>" + b + u"<> <>" + a + u"<>.");
}

}  // namespace
}  // namespace toval::test
