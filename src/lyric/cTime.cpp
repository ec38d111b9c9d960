#include "lyric/cTime.h"

#include "base/cErrorLog.h"
#include "base/mNumber.h"

namespace toval {

namespace {

void AppendPadded(std::u16string& out, int32_t value, size_t width) {
    const std::u16string digits = DecimalText(value);
    if (digits.size() < width) out.append(width - digits.size(), u'0');
    out += digits;
}

// "[-]MM:SS." with the fraction still to come.
std::u16string MinutesSeconds(const cTime& t, int32_t& ms) {
    int32_t minutes = 0, seconds = 0;
    bool negative = false;
    t.GetTime(minutes, seconds, ms, negative);
    std::u16string out;
    out.reserve(12);
    if (negative) out += u'-';
    AppendPadded(out, minutes, 2);
    out += u':';
    AppendPadded(out, seconds, 2);
    out += u'.';
    return out;
}

}  // namespace

int32_t cTime::Compare(const cTime& other) const {
    if (other.time_ == time_) return 0;
    return other.time_ > time_ ? 1 : 2;
}

int32_t cTime::LongCompare(int32_t ms) const {
    if (time_ == 0) return 0;
    return time_ > ms ? 1 : 2;
}

int32_t cTime::Seconds() const {
    // Floor division: C++ truncates toward zero.
    int32_t q = time_ / 1000;
    if (time_ % 1000 < 0) --q;
    return q;
}

void cTime::setTime(int32_t minutes, int32_t seconds, int32_t ms, bool negative) {
    const int64_t total =
        static_cast<int64_t>(ms) +
        (static_cast<int64_t>(seconds) + static_cast<int64_t>(minutes) * 60) * 1000;
    if (total < INT32_MIN || total > INT32_MAX) {
        ErrorTrail({"cTime.setTime", "time out of range"});
        return;
    }
    time_ = static_cast<int32_t>(total);
    if (negative) {
        // The smallest value has no positive counterpart: it stays as it is.
        if (time_ == INT32_MIN) {
            ErrorTrail({"cTime.setTime", "time out of range"});
            return;
        }
        time_ = -time_;
    }
}

void cTime::GetTime(int32_t& minutes, int32_t& seconds, int32_t& ms, bool& negative) const {
    minutes = 0;
    seconds = 0;
    ms = 0;
    negative = false;
    if (time_ == kUnset) return;
    negative = time_ < 0;
    const int32_t a = negative ? -time_ : time_;
    minutes = a / 60000;
    const int32_t r = a - minutes * 60000;
    seconds = r / 1000;
    ms = r - seconds * 1000;
}

std::u16string cTime::Text() const {
    int32_t ms = 0;
    std::u16string out = MinutesSeconds(*this, ms);
    AppendPadded(out, ms, 3);
    return out;
}

std::u16string cTime::TextSimple() const {
    int32_t ms = 0;
    std::u16string out = MinutesSeconds(*this, ms);
    // No carry: 995..999 ms give "100".
    AppendPadded(out, static_cast<int32_t>(RoundHalfEven(ms / 10.0)), 2);
    return out;
}

void cTime::setText(std::u16string_view s) {
    // A plain number is milliseconds; one outside 32 bits is no time.
    double value = 0;
    if (ParseNumber(s, value)) {
        int32_t whole = 0;
        time_ = ToInt32(value, whole) ? whole : kUnset;
        return;
    }
    bool negative = false;
    size_t start = 0;
    if (!s.empty() && s[0] == u'-') {
        negative = true;
        start = 1;
    } else if (!s.empty() && s[0] == u'+') {
        start = 1;
    }
    int32_t minutes = 0, seconds = 0, ms = 0;
    const size_t colon = s.find(u':', start);
    if (colon != std::u16string_view::npos) {
        int16_t field = 0;
        if (!TextToInt16(s.substr(start, colon - start), field)) {
            time_ = kUnset;
            return;
        }
        minutes = field;
        const size_t dot = s.find(u'.', colon + 1);
        if (dot == std::u16string_view::npos) {
            if (!TextToInt16(s.substr(colon + 1), field)) {
                time_ = kUnset;
                return;
            }
            seconds = field;
        } else {
            if (!TextToInt16(s.substr(colon + 1, dot - colon - 1), field)) {
                time_ = kUnset;
                return;
            }
            seconds = field;
            const std::u16string_view fraction = s.substr(dot + 1);
            if (!TextToInt16(fraction, field)) {
                time_ = kUnset;
                return;
            }
            // One digit is tenths, two are hundredths, anything else is
            // taken as milliseconds.
            ms = fraction.size() == 1 ? field * 100 : fraction.size() == 2 ? field * 10 : field;
        }
    }
    setTime(minutes, seconds, ms, negative);
}

}  // namespace toval
