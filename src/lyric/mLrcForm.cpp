#include "lyric/mLrcForm.h"

#include <array>
#include <string>

#include "base/mNumber.h"
#include "base/mRightToLeft.h"

namespace toval {

namespace {

constexpr size_t npos = std::u16string_view::npos;
// No stamp is longer than this; looking no further for a closing bracket keeps
// a line full of stray brackets linear.
constexpr size_t kMaxStamp = 40;

bool IsBlank(char16_t c) {
    return c == u' ' || c == u'\t' || c == 0xFEFF;
}

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

size_t SkipBlanks(std::u16string_view s, size_t i) {
    while (i < s.size() && IsBlank(s[i]))
        ++i;
    return i;
}

// The closing mark of a tag that opens at `open`, within kMaxStamp characters.
size_t CloseOf(std::u16string_view s, size_t open, char16_t mark) {
    const size_t end = std::min(s.size(), open + 2 + kMaxStamp);
    for (size_t i = open + 1; i < end; ++i)
        if (s[i] == mark) return i;
    return npos;
}

// The time of a tag at `open` ("[" or "<"), and where it ends; false when the
// tag is not a time stamp.
bool StampAt(std::u16string_view s, size_t open, int32_t& ms, size_t& close) {
    const char16_t mark = s[open] == u'[' ? u']' : u'>';
    close = CloseOf(s, open, mark);
    return close != npos && ParseLrcStamp(s.substr(open + 1, close - open - 1), ms);
}

// A tag as the program writes it in a line record: empty, or a number of ms.
bool IsRecordTag(std::u16string_view s, size_t open) {
    const size_t close = s.find(u']', open);
    if (close == npos) return false;
    const std::u16string_view tag = s.substr(open + 1, close - open - 1);
    return tag.empty() || IsNumeric(tag);
}

// An ID tag at `open`: "[", ASCII letters, ":", anything up to "]".
bool IsIdTag(std::u16string_view s, size_t open, size_t& close) {
    size_t k = open + 1;
    while (k < s.size() && ((s[k] >= u'a' && s[k] <= u'z') || (s[k] >= u'A' && s[k] <= u'Z')))
        ++k;
    if (k == open + 1 || k >= s.size() || s[k] != u':') return false;
    close = s.find(u']', k);
    return close != npos;
}

int32_t Clamp(int64_t value) {
    // Times stay inside 32 bits and off the no-time mark.
    if (value > INT32_MAX) return INT32_MAX;
    if (value <= INT32_MIN) return INT32_MIN + 1;
    return static_cast<int32_t>(value);
}

struct Segment {
    std::vector<int32_t> times;
    std::u16string text;
};

}  // namespace

bool ParseLrcStamp(std::u16string_view stamp, int32_t& ms) {
    // Up to four digit fields and the marks between them, blanks dropped.
    std::array<int64_t, 4> field{};
    std::array<size_t, 4> digits{};
    std::array<char16_t, 3> mark{};
    size_t count = 0;
    bool negative = false, signed_ = false, begun = false;
    for (char16_t c : stamp) {
        if (IsBlank(c)) continue;
        if (!begun && (c == u'-' || c == u'+')) {
            if (signed_) return false;
            signed_ = true;
            negative = c == u'-';
            continue;
        }
        begun = true;
        if (IsDigit(c)) {
            // Nine digits are plenty; more could only overflow.
            if (++digits[count] > 9) return false;
            field[count] = field[count] * 10 + (c - u'0');
        } else if (c == u':' || c == u'.' || c == u',') {
            if (digits[count] == 0 || count == 3) return false;
            mark[count++] = c;
        } else {
            return false;
        }
    }
    if (count == 0 || digits[count] == 0 || mark[0] != u':') return false;
    // Three fields: a colon before the fraction means hundredths (m:s:f);
    // four: hours in front, and the fraction behind a point or comma.
    if (count == 3 && (mark[1] != u':' || mark[2] == u':')) return false;

    int64_t hours = 0, minutes = 0, seconds = 0, fraction = 0;
    size_t fractionDigits = 0;
    if (count == 1) {  // m:s
        minutes = field[0];
        seconds = field[1];
    } else if (count == 2) {  // m:s.f, m:s,f, m:s:f
        minutes = field[0];
        seconds = field[1];
        fraction = field[2];
        fractionDigits = digits[2];
    } else {  // h:m:s.f, h:m:s,f
        hours = field[0];
        minutes = field[1];
        seconds = field[2];
        fraction = field[3];
        fractionDigits = digits[3];
    }
    // Tenths, hundredths, milliseconds; finer digits are dropped.
    if (fractionDigits == 1) fraction *= 100;
    if (fractionDigits == 2) fraction *= 10;
    for (size_t d = fractionDigits; d > 3; --d)
        fraction /= 10;
    const int64_t total = ((hours * 60 + minutes) * 60 + seconds) * 1000 + fraction;
    if (total > INT32_MAX) return false;
    ms = static_cast<int32_t>(negative ? -total : total);
    return true;
}

bool ReadLrcLine(std::u16string_view piece, std::vector<std::shared_ptr<cLyricLine>>& out) {
    // The stamps in front, blanks between them allowed.
    std::vector<int32_t> stamps;
    size_t i = SkipBlanks(piece, 0);
    if (i >= piece.size() || piece[i] != u'[' || IsRecordTag(piece, i)) return false;
    for (;;) {
        const size_t at = stamps.empty() ? i : SkipBlanks(piece, i);
        int32_t ms = 0;
        size_t close = 0;
        if (at >= piece.size() || piece[at] != u'[') break;
        if (StampAt(piece, at, ms, close)) {
            stamps.push_back(ms);
        } else if (!stamps.empty() && IsIdTag(piece, at, close)) {
            // [length: 2:23] among the stamps is a tag, dropped as the record
            // reading drops it; [Chorus] and other text in brackets stay.
        } else {
            break;
        }
        i = close + 1;
    }
    if (stamps.empty()) return false;

    // The text, cut into words at every <time> or [time]; any other bracket
    // is text. Tags in a row belong to the word behind them.
    const std::u16string_view body = piece.substr(i);
    std::vector<Segment> segments(1);
    bool tagged = false;
    for (size_t k = 0; k < body.size(); ++k) {
        const char16_t c = body[k];
        int32_t ms = 0;
        size_t close = 0;
        if ((c == u'<' || c == u'[') && StampAt(body, k, ms, close)) {
            if (!segments.back().text.empty()) segments.emplace_back();
            segments.back().times.push_back(ms);
            tagged = true;
            k = close;
            continue;
        }
        segments.back().text.push_back(c);
    }

    auto line = std::make_shared<cLyricLine>();
    if (!tagged) {
        line->setText(std::u16string(body));
        for (int32_t t : stamps)
            line->AddTime(std::make_shared<cTime>(t));
        out.push_back(std::move(line));
        return true;
    }

    // A word of blanks only inside the line is a gap, not a word to sing: its
    // time goes (a time with nothing at all behind it, at the end, stays: it
    // ends the last word).
    for (size_t k = 0; k + 1 < segments.size(); ++k) {
        Segment& s = segments[k];
        if (!s.text.empty() && s.text.find_first_not_of(u" \t") == npos) s.times.clear();
    }
    if (segments.front().times.empty() && segments.front().text.empty())
        segments.erase(segments.begin());

    // One line per stamp: each repeat's word times move with its line time.
    const size_t repeats = stamps.size();
    for (size_t r = 0; r < repeats; ++r) {
        auto repeat = std::make_shared<cLyricLine>();
        repeat->setKaraoke(true);
        repeat->AddTime(std::make_shared<cTime>(stamps[r]));
        const int64_t delta = static_cast<int64_t>(stamps[r]) - stamps[0];
        std::u16string text;
        for (const Segment& s : segments) {
            auto word = std::make_shared<cLyricWord>();
            word->setText(s.text);
            for (int32_t t : s.times)
                word->AddTime(std::make_shared<cTime>(Clamp(t + delta)));
            text += s.text;
            repeat->AddWord(std::move(word));
        }
        repeat->setText(std::move(text));
        out.push_back(std::move(repeat));
    }
    return true;
}

bool ReadRightToLeftLrcLine(std::u16string_view piece, std::shared_ptr<cLyricLine>& out) {
    const size_t open = piece.find(u'[');
    if (open == npos || open == 0 || piece[0] == u'<' || !IsRightToLeft(piece.substr(0, open)))
        return false;
    int32_t ms = 0;
    size_t close = 0;
    if (!StampAt(piece, open, ms, close)) return false;
    out = std::make_shared<cLyricLine>();
    out->AddTime(std::make_shared<cTime>(ms));
    out->setText(std::u16string(piece.substr(0, open)) + std::u16string(piece.substr(close + 1)));
    return true;
}

bool ReadOffsetTag(std::u16string_view piece, int32_t& offset) {
    size_t i = SkipBlanks(piece, 0);
    constexpr std::u16string_view kName = u"[offset:";
    if (piece.size() - i < kName.size()) return false;
    for (size_t k = 0; k < kName.size(); ++k) {
        char16_t c = piece[i + k];
        if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + (u'a' - u'A'));
        if (c != kName[k]) return false;
    }
    i += kName.size();
    const size_t close = piece.find(u']', i);
    if (close == npos || SkipBlanks(piece, close + 1) != piece.size()) return false;
    std::u16string value;
    for (char16_t c : piece.substr(i, close - i))
        if (!IsBlank(c)) value.push_back(c);
    if (!value.empty() && value[0] == u'+') value.erase(0, 1);
    if (value.empty() || !(IsDigit(value[0]) || value[0] == u'-')) return false;
    for (size_t k = 1; k < value.size(); ++k)
        if (!IsDigit(value[k])) return false;
    int32_t ms = 0;
    if (!TextToInt32(value, ms)) return false;
    offset = ms;
    return true;
}

void ShiftLineTimes(cLyricLine& line, int64_t delta) {
    const auto shift = [delta](const std::shared_ptr<cTime>& time) {
        if (time && time->Time() != kUnset) time->setTime(Clamp(time->Time() + delta));
    };
    for (int32_t i = 0; i < line.GetTimeSize(); ++i)
        shift(line.GetTime(i));
    for (int32_t w = 0; w < line.GetWordSize(); ++w) {
        const auto word = line.GetWord(w);
        if (!word) continue;
        for (int32_t i = 0; i < word->GetTimeSize(); ++i)
            shift(word->GetTime(i));
    }
}

}  // namespace toval
