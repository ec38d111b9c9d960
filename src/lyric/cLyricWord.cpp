#include "lyric/cLyricWord.h"

#include "config/cErrorLog.h"
#include "lyric/mNumber.h"

namespace toval {

namespace {

constexpr size_t npos = std::u16string_view::npos;

// 1-based position of c at or after the 1-based position from; 0 when absent.
size_t InStr(std::u16string_view s, size_t from, char16_t c) {
    if (from == 0 || from > s.size()) return 0;
    const size_t i = s.find(c, from - 1);
    return i == npos ? 0 : i + 1;
}

}  // namespace

cLyricWord::cLyricWord() : delta_(std::make_shared<cDelta>()) {}

std::u16string cLyricWord::Load() const {
    return Guarded("cLyricWord.Load [Get]", std::u16string(), [&] {
        std::u16string out;
        AppendLoad(out);
        return out;
    });
}

void cLyricWord::AppendLoad(std::u16string& out) const {
    if (times_.Size() == 0) {
        out += u"<>";
    } else {
        for (const auto& time : times_) {
            out += u'<';
            if (time) out += DecimalText(time->Time());
            out += u'>';
        }
    }
    out += text_;
}

void cLyricWord::setLoad(std::u16string_view s) {
    Guarded("cLyricWord.Load [Let]", [&] {
        times_.Free(true);
        // Positions are 1-based, 0 meaning "none": with no "<" before it, a ">"
        // closes a tag that starts at the beginning of the record.
        size_t p = InStr(s, 1, u'<');
        size_t pos = 1;
        // Once no "<" is left, every further tag is the whole record up to the
        // next ">", which then holds an earlier ">": such a text is never a
        // number and any field of it fails, so it is 0 without a ":" and no
        // time with one. Deciding that from the ":" alone keeps a record full
        // of ">" linear.
        const size_t firstClose = s.find(u'>');
        const size_t signLength = !s.empty() && (s[0] == u'-' || s[0] == u'+') ? 1 : 0;
        const size_t colon = s.find(u':', signLength);
        for (;;) {
            const size_t q = InStr(s, pos, u'>');
            if (q <= p) break;
            if (q > p + 1) {
                auto time = std::make_shared<cTime>();
                const size_t length = q - p - 1;
                if (p == 0 && firstClose < length) {
                    time->setTime(colon != npos && colon < length ? kUnset : 0);
                } else {
                    time->setText(s.substr(p, length));
                }
                times_.Add(std::move(time));
            }
            pos = q + 1;
            p = InStr(s, pos, u'<');
        }
        text_ = s.substr(pos - 1);
    });
}

}  // namespace toval
