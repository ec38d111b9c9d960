// The built-in text conversions. Text inside the program is 16-bit; files and
// the network carry bytes. cStringsDLL overrides every method with the calls of
// the optional TovalStrings library, so all methods are virtual.
//
// Byte strings hold one byte per character. No method throws: an empty input
// gives an empty result, and a failure gives the empty result.
#pragma once

#include <cstdint>
#include <string>

namespace toval {

class cStrings {
  public:
    virtual ~cStrings() = default;

    // UTF-8 bytes -> text. The masks are wider than UTF-8 asks and a broken
    // sequence reads its lead byte in the Windows-1252 code page, so a file
    // written in a Western code page still reads sensibly. Four-byte sequences are not supported.
    virtual std::u16string utf8TOwstring(const std::string& bytes) const;
    // Text -> UTF-8 bytes, unit by unit: a surrogate half becomes three bytes of
    // its own. No byte-order mark.
    virtual std::string wstringTOutf8(const std::u16string& text) const;

    // URL form encoding: blank -> "+", "/", digits and ASCII letters kept,
    // every other byte "%XX" (upper-case hex). The result is ASCII.
    virtual std::string stringTOhtml(const std::string& bytes) const;
    // stringTOhtml(wstringTOutf8(text)).
    virtual std::string wstringTOutf8html(const std::u16string& text) const;
    // The same, cut to at most `limit` bytes between whole text characters (an
    // escape, a UTF-8 sequence or a surrogate pair is never split). A limit
    // below 1 means no limit.
    virtual std::string wstringTOutf8uhtml(const std::u16string& text, int32_t limit) const;

    // Replaces "<p>", "<br>", "<br/>", "<br />" by CR LF and the character
    // references "&name;" and "&#decimal;" by their characters, again and again
    // until none is left ("&amp;lt;" gives "<").
    virtual std::u16string htmlTOtext(const std::u16string& text) const;

    // UTF-16 little-endian text file: the mark FF FE is skipped when present,
    // then two bytes per character. A lone last byte is a character of its own.
    virtual std::u16string txtuniTOwstring(const std::string& bytes) const;
    // The mark FF FE, then two bytes per character, low byte first.
    virtual std::string wstringTOtxtuni(const std::u16string& text) const;

    // Two bytes per character, low byte first, no mark (a lone last byte is a
    // character of its own).
    virtual std::u16string wcharTOwstring(const std::string& bytes) const;
    virtual std::string wstringTOwchar(const std::u16string& text) const;
};

}  // namespace toval
