#include "base/cStrings.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "base/cErrorLog.h"
#include "base/mCodePage.h"
#include "base/mNumber.h"

namespace toval {

namespace {

constexpr char16_t kReplacement = 0xFFFD;

// True when none of the eight bytes at p has its high bit set.
inline bool Ascii8(const unsigned char* p) {
    uint64_t word;
    std::memcpy(&word, p, sizeof word);
    return (word & 0x8080808080808080ULL) == 0;
}

// ---- Character references ------------------------------------------------

struct Entity {
    std::u16string_view name;
    std::u16string_view text;
};

// Built once, in this order. Some rows differ from HTML on purpose and stay so:
// acute and cedil give ",", middot ".", circ and and "^", tilde "~", prime "'",
// hellip "...", the three spaces a plain blank, and capital I acute is "Iacut".
const std::vector<Entity>& EntityTable() {
    static const std::vector<Entity> table = {
        {u"amp", u"&"},         {u"gt", u">"},          {u"lt", u"<"},
        {u"quot", u"\""},       {u"acute", u","},       {u"cedil", u","},
        {u"circ", u"^"},        {u"macr", u"\u00AF"},   {u"middot", u"."},
        {u"tilde", u"~"},       {u"uml", u"\u00A8"},    {u"Aacute", u"\u00C1"},
        {u"aacute", u"\u00E1"}, {u"Acirc", u"\u00C2"},  {u"acirc", u"\u00E2"},
        {u"AElig", u"\u00C6"},  {u"aelig", u"\u00E6"},  {u"Agrave", u"\u00C0"},
        {u"agrave", u"\u00E0"}, {u"Aring", u"\u00C5"},  {u"aring", u"\u00E5"},
        {u"Atilde", u"\u00C3"}, {u"atilde", u"\u00E3"}, {u"Auml", u"\u00C4"},
        {u"auml", u"\u00E4"},   {u"Ccedil", u"\u00C7"}, {u"ccedil", u"\u00E7"},
        {u"Eacute", u"\u00C9"}, {u"eacute", u"\u00E9"}, {u"Ecirc", u"\u00CA"},
        {u"ecirc", u"\u00EA"},  {u"Egrave", u"\u00C8"}, {u"egrave", u"\u00E8"},
        {u"ETH", u"\u00D0"},    {u"eth", u"\u00F0"},    {u"Euml", u"\u00CB"},
        {u"euml", u"\u00EB"},   {u"Iacut", u"\u00CD"},  {u"iacute", u"\u00ED"},
        {u"Icirc", u"\u00CE"},  {u"icirc", u"\u00EE"},  {u"Igrave", u"\u00CC"},
        {u"igrave", u"\u00EC"}, {u"Iuml", u"\u00CF"},   {u"iuml", u"\u00EF"},
        {u"Ntilde", u"\u00D1"}, {u"ntilde", u"\u00F1"}, {u"Oacute", u"\u00D3"},
        {u"oacute", u"\u00F3"}, {u"Ocirc", u"\u00D4"},  {u"ocirc", u"\u00F4"},
        {u"OElig", u"\u0152"},  {u"oelig", u"\u0153"},  {u"Ograve", u"\u00D2"},
        {u"ograve", u"\u00F2"}, {u"Oslash", u"\u00D8"}, {u"oslash", u"\u00F8"},
        {u"Otilde", u"\u00D5"}, {u"otilde", u"\u00F5"}, {u"Ouml", u"\u00D6"},
        {u"ouml", u"\u00F6"},   {u"Scaron", u"\u0160"}, {u"scaron", u"\u0161"},
        {u"szlig", u"\u00DF"},  {u"THORN", u"\u00DE"},  {u"thorn", u"\u00FE"},
        {u"Uacute", u"\u00DA"}, {u"uacute", u"\u00FA"}, {u"Ucirc", u"\u00DB"},
        {u"ucirc", u"\u00FB"},  {u"Ugrave", u"\u00D9"}, {u"ugrave", u"\u00F9"},
        {u"Uuml", u"\u00DC"},   {u"uuml", u"\u00FC"},   {u"Yacute", u"\u00DD"},
        {u"yacute", u"\u00FD"}, {u"yuml", u"\u00FF"},   {u"Yuml", u"\u0178"},
        {u"euro", u"\u20AC"},   {u"pound", u"\u00A3"},  {u"yen", u"\u00A5"},
        {u"brvbar", u"\u00A6"}, {u"copy", u"\u00A9"},   {u"dagger", u"\u2020"},
        {u"Dagger", u"\u2021"}, {u"hellip", u"..."},    {u"iquest", u"\u00BF"},
        {u"lrm", u"\u200E"},    {u"mdash", u"\u2014"},  {u"ndash", u"\u2013"},
        {u"not", u"\u00AC"},    {u"ordf", u"\u00AA"},   {u"ordm", u"\u00BA"},
        {u"para", u"\u00B6"},   {u"prime", u"'"},       {u"Prime", u"\u2033"},
        {u"reg", u"\u00AE"},    {u"rlm", u"\u200F"},    {u"sup1", u"\u00B9"},
        {u"trade", u"\u2122"},  {u"rdquo", u"\u201D"},  {u"ldquo", u"\u201C"},
        {u"times", u"\u00D7"},  {u"and", u"^"},         {u"micro", u"\u00B5"},
        {u"emsp", u" "},        {u"ensp", u" "},        {u"thinsp", u" "},
    };
    return table;
}

// The longest name in the table.
constexpr size_t kMaxName = 6;

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}
bool IsNameChar(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || IsDigit(c);
}

// When `out` ends with a complete reference "&name;" or "&#digits;", where it
// starts and its replacement text. A numeric reference may be of any length
// (leading zeros); its value must fit a 16-bit character.
bool ReferenceAtEnd(const std::u16string& out, size_t& start, std::u16string_view& text,
                    char16_t& single) {
    const size_t end = out.size() - 1;  // the ";"
    size_t first = end;                 // the first digit of a trailing run
    while (first > 0 && IsDigit(out[first - 1]))
        --first;
    if (first < end && first >= 2 && out[first - 1] == u'#' && out[first - 2] == u'&') {
        int32_t value = 0;
        const std::u16string_view digits(out.data() + first, end - first);
        if (!TextToInt32(digits, value) || value > 0xFFFF) return false;
        start = first - 2;
        single = static_cast<char16_t>(value);
        text = std::u16string_view(&single, 1);
        return true;
    }
    size_t amp = end;
    while (amp > 0 && end - amp <= kMaxName && IsNameChar(out[amp - 1]))
        --amp;
    if (amp == 0 || amp == end || out[amp - 1] != u'&') return false;
    const std::u16string_view name(out.data() + amp, end - amp);
    for (const Entity& entity : EntityTable()) {
        if (entity.name == name) {
            start = amp - 1;
            text = entity.text;
            return true;
        }
    }
    return false;
}

// When `out` ends with one of the break tags, its length.
size_t TagAtEnd(const std::u16string& out) {
    static constexpr std::array<std::u16string_view, 4> kTags = {u"<p>", u"<br>", u"<br/>",
                                                                 u"<br />"};
    const std::u16string_view all(out);
    for (std::u16string_view tag : kTags) {
        if (all.ends_with(tag)) return tag.size();
    }
    return 0;
}

void AppendUtf8(std::string& out, char16_t unit) {
    if (unit < 0x80) {
        out.push_back(static_cast<char>(unit));
    } else if (unit < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (unit >> 6)));
        out.push_back(static_cast<char>(0x80 | (unit & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xE0 | (unit >> 12)));
        out.push_back(static_cast<char>(0x80 | ((unit >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (unit & 0x3F)));
    }
}

// The form encoding of one byte, appended.
void AppendFormByte(std::string& out, unsigned char b) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    if (b == ' ') {
        out.push_back('+');
    } else if ((b >= '/' && b <= '9') || (b >= 'A' && b <= 'Z') || (b >= 'a' && b <= 'z')) {
        out.push_back(static_cast<char>(b));
    } else {
        out.push_back('%');
        out.push_back(kHex[b >> 4]);
        out.push_back(kHex[b & 0x0F]);
    }
}

std::u16string LittleEndianToText(const std::string& bytes, size_t from) {
    std::u16string text;
    if (bytes.size() <= from) return text;
    const size_t count = bytes.size() - from;
    text.resize((count + 1) / 2);
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data()) + from;
    for (size_t i = 0; i < count / 2; ++i) {
        text[i] = static_cast<char16_t>(p[2 * i] | (p[2 * i + 1] << 8));
    }
    if (count % 2) text.back() = p[count - 1];
    return text;
}

void AppendLittleEndian(std::string& out, const std::u16string& text) {
    const size_t at = out.size();
    out.resize(at + 2 * text.size());
    char* p = out.data() + at;
    for (char16_t unit : text) {
        *p++ = static_cast<char>(unit & 0xFF);
        *p++ = static_cast<char>(unit >> 8);
    }
}

}  // namespace

std::u16string cStrings::utf8TOwstring(const std::string& bytes) const {
    return Guarded("cStrings.utf8TOwstring", std::u16string(), [&] {
        const size_t n = bytes.size();
        const auto* in = reinterpret_cast<const unsigned char*>(bytes.data());
        std::u16string text;
        text.resize(n);  // one unit per byte at most
        char16_t* out = text.data();
        size_t i = 0;
        while (i < n) {
            // Runs of ASCII: eight bytes at a time.
            while (i + 8 <= n && Ascii8(in + i)) {
                for (size_t k = 0; k < 8; ++k)
                    out[k] = in[i + k];
                out += 8;
                i += 8;
            }
            if (i >= n) break;
            const uint32_t b = in[i];
            if (b <= 127) {
                *out++ = static_cast<char16_t>(b);
                i += 1;
            } else if (b <= 223) {
                const uint32_t n1 = i + 1 < n ? in[i + 1] : 0;
                if (n1 < 128) {
                    // A lone byte reads in the single-byte code page: Latin-1,
                    // except that 80 to 9F are Windows-1252's curly quotes,
                    // dashes and euro sign (files saved by Windows editors),
                    // never invisible control characters.
                    *out++ = ansiTOwchar(static_cast<unsigned char>(b));
                    i += 1;
                } else {
                    *out++ = static_cast<char16_t>(((b & 63) << 6) + (n1 & 127));
                    i += 2;
                }
            } else {
                const uint32_t n1 = i + 1 < n ? in[i + 1] : 0;
                const uint32_t n2 = i + 2 < n ? in[i + 2] : 0;
                if (n1 < 128 || n2 < 128) {
                    *out++ = static_cast<char16_t>(b);
                    i += 1;
                } else {
                    // The wide masks can reach past 16 bits (a four-byte lead, or
                    // continuation bytes from C0 up): such a sequence has no
                    // 16-bit character and reads as the replacement character.
                    const uint32_t code = ((b & 31) << 12) + ((n1 & 127) << 6) + (n2 & 127);
                    *out++ = code <= 0xFFFF ? static_cast<char16_t>(code) : kReplacement;
                    i += 3;
                }
            }
        }
        text.resize(static_cast<size_t>(out - text.data()));
        return text;
    });
}

std::string cStrings::wstringTOutf8(const std::u16string& text) const {
    return Guarded("cStrings.wstringTOutf8", std::string(), [&] {
        std::string bytes;
        bytes.resize(3 * text.size());  // three bytes per unit at most
        auto* out = reinterpret_cast<unsigned char*>(bytes.data());
        const char16_t* in = text.data();
        const size_t n = text.size();
        for (size_t i = 0; i < n; ++i) {
            const uint32_t unit = in[i];
            if (unit < 0x80) {
                *out++ = static_cast<unsigned char>(unit);
            } else if (unit < 0x800) {
                *out++ = static_cast<unsigned char>(0xC0 | (unit >> 6));
                *out++ = static_cast<unsigned char>(0x80 | (unit & 0x3F));
            } else {
                *out++ = static_cast<unsigned char>(0xE0 | (unit >> 12));
                *out++ = static_cast<unsigned char>(0x80 | ((unit >> 6) & 0x3F));
                *out++ = static_cast<unsigned char>(0x80 | (unit & 0x3F));
            }
        }
        bytes.resize(static_cast<size_t>(out - reinterpret_cast<unsigned char*>(bytes.data())));
        return bytes;
    });
}

std::string cStrings::stringTOhtml(const std::string& bytes) const {
    return Guarded("cStrings.stringTOhtml", std::string(), [&] {
        std::string out;
        out.reserve(bytes.size() * 3);
        for (char c : bytes)
            AppendFormByte(out, static_cast<unsigned char>(c));
        return out;
    });
}

std::string cStrings::wstringTOutf8html(const std::u16string& text) const {
    return stringTOhtml(wstringTOutf8(text));
}

std::string cStrings::wstringTOutf8uhtml(const std::u16string& text, int32_t limit) const {
    if (limit < 1) return wstringTOutf8html(text);
    return Guarded("cStrings.wstringTOutf8uhtml", std::string(), [&] {
        const size_t cap = static_cast<size_t>(limit);
        std::string out;
        out.reserve(std::min(cap, text.size() * 9));
        std::string piece;
        std::string utf8;
        for (size_t i = 0; i < text.size(); ++i) {
            // A surrogate pair is one character: both halves or neither.
            size_t units = 1;
            if (text[i] >= 0xD800 && text[i] <= 0xDBFF && i + 1 < text.size() &&
                text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
                units = 2;
            }
            utf8.clear();
            for (size_t k = 0; k < units; ++k)
                AppendUtf8(utf8, text[i + k]);
            piece.clear();
            for (char c : utf8)
                AppendFormByte(piece, static_cast<unsigned char>(c));
            if (out.size() + piece.size() > cap) break;
            out += piece;
            i += units - 1;
        }
        return out;
    });
}

std::u16string cStrings::htmlTOtext(const std::u16string& text) const {
    // Replacing until nothing is left is done in one pass: whenever a character
    // completes a tag or a reference at the end of the output, it is replaced
    // there, and the replacement's last character is looked at in turn (it may
    // complete an older reference: "&amp;lt;" -> "&lt;" -> "<"). Tags and
    // references never overlap and every replacement is shorter than what it
    // replaces, so the result is the same as repeating whole passes.
    return Guarded("cStrings.htmlTOtext", std::u16string(), [&] {
        std::u16string out;
        out.reserve(text.size());
        for (char16_t c : text) {
            out.push_back(c);
            for (;;) {
                const char16_t last = out.back();
                std::u16string_view replacement;
                char16_t single = 0;
                size_t start = 0;
                if (last == u'>') {
                    const size_t length = TagAtEnd(out);
                    if (!length) break;
                    start = out.size() - length;
                    replacement = u"\r\n";
                } else if (last == u';') {
                    if (!ReferenceAtEnd(out, start, replacement, single)) break;
                } else {
                    break;
                }
                // Copy before erasing: `replacement` may point at `single` only.
                const std::u16string copy(replacement);
                out.erase(start);
                if (copy.empty()) break;
                out.append(copy, 0, copy.size() - 1);
                out.push_back(copy.back());
                // Only a ">" or ";" can complete another tag or reference, and
                // only as the last character of a replacement.
            }
        }
        return out;
    });
}

std::u16string cStrings::txtuniTOwstring(const std::string& bytes) const {
    return Guarded("cStrings.txtuniTOwstring", std::u16string(), [&] {
        const bool mark = bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
                          static_cast<unsigned char>(bytes[1]) == 0xFE;
        return LittleEndianToText(bytes, mark ? 2 : 0);
    });
}

std::string cStrings::wstringTOtxtuni(const std::u16string& text) const {
    return Guarded("cStrings.wstringTOtxtuni", std::string(), [&] {
        std::string bytes("\xFF\xFE", 2);
        AppendLittleEndian(bytes, text);
        return bytes;
    });
}

std::u16string cStrings::wcharTOwstring(const std::string& bytes) const {
    return Guarded("cStrings.wcharTOwstring", std::u16string(),
                   [&] { return LittleEndianToText(bytes, 0); });
}

std::string cStrings::wstringTOwchar(const std::u16string& text) const {
    return Guarded("cStrings.wstringTOwchar", std::string(), [&] {
        std::string bytes;
        AppendLittleEndian(bytes, text);
        return bytes;
    });
}

}  // namespace toval
