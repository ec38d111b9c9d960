#include "mMatchKey.h"

#include "base/mString.h"

namespace toval::service {

namespace {

// Base letters of U+00C0..U+00FF; '*' marks the letters written as two.
constexpr std::u16string_view kLatin1 =
    u"aaaaaa*ceeeeiiiidnooooo\u00d7ouuuuy**aaaaaa*ceeeeiiiidnooooo\u00f7ouuuuy*y";
// Base letters of U+0100..U+017F; '*' marks the ligature OE.
constexpr std::u16string_view kLatinA =
    u"aaaaaaccccccccddddeeeeeeeeeegggggggghhhhiiiiiiiiiiiijjkkkllllllllllnnnnnnnnnoooooo**"
    u"rrrrrrssssssssttttttuuuuuuuuuuuuwwyyyzzzzzzs";
static_assert(kLatin1.size() == 64 && kLatinA.size() == 128);

bool IsBlank(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == 0x00A0 ||
           (c >= 0x2000 && c <= 0x200B) || c == 0x202F || c == 0x205F || c == 0x3000;
}

void Fold(char16_t c, std::u16string& out) {
    if (IsBlank(c) || (c >= 0x0300 && c <= 0x036F)) return;  // blanks, combining accents
    if (c >= u'A' && c <= u'Z') {
        out.push_back(static_cast<char16_t>(c + 32));
    } else if (c >= 0x00C0 && c <= 0x00FF) {
        const char16_t base = kLatin1[c - 0x00C0];
        if (base != u'*') {
            out.push_back(base);
        } else if (c == 0x00C6 || c == 0x00E6) {
            out += u"ae";
        } else if (c == 0x00DE || c == 0x00FE) {
            out += u"th";
        } else {
            out += u"ss";
        }
    } else if (c >= 0x0100 && c <= 0x017F) {
        const char16_t base = kLatinA[c - 0x0100];
        if (base == u'*') {
            out += u"oe";
        } else {
            out.push_back(base);
        }
    } else if (c >= 0x0391 && c <= 0x03A9) {
        out.push_back(static_cast<char16_t>(c + 32));  // Greek capitals
    } else if (c >= 0x0386 && c <= 0x03CE) {
        switch (c) {  // Greek letters with tonos, and the final sigma
            case 0x0386:
            case 0x03AC:
                out.push_back(0x03B1);
                break;
            case 0x0388:
            case 0x03AD:
                out.push_back(0x03B5);
                break;
            case 0x0389:
            case 0x03AE:
                out.push_back(0x03B7);
                break;
            case 0x038A:
            case 0x03AF:
            case 0x03CA:
            case 0x0390:
                out.push_back(0x03B9);
                break;
            case 0x038C:
            case 0x03CC:
                out.push_back(0x03BF);
                break;
            case 0x038E:
            case 0x03CD:
            case 0x03CB:
            case 0x03B0:
                out.push_back(0x03C5);
                break;
            case 0x038F:
            case 0x03CE:
                out.push_back(0x03C9);
                break;
            case 0x03C2:
                out.push_back(0x03C3);
                break;
            default:
                out.push_back(c);
                break;
        }
    } else if (c >= 0x0410 && c <= 0x042F) {
        out.push_back(static_cast<char16_t>(c + 32));  // Cyrillic capitals
    } else if (c >= 0x0400 && c <= 0x040F) {
        out.push_back(c == 0x0401 ? char16_t{0x0435} : static_cast<char16_t>(c + 80));
    } else if (c == 0x0451) {
        out.push_back(0x0435);  // yo reads as ye
    } else {
        out.push_back(c);
    }
}

}  // namespace

std::string MatchKey(std::string_view utf8) {
    const std::u16string text = Strings().utf8TOwstring(std::string(utf8));
    std::u16string folded;
    folded.reserve(text.size());
    for (char16_t c : text)
        Fold(c, folded);
    return Strings().wstringTOutf8(folded);
}

}  // namespace toval::service
