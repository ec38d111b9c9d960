#include "lyric/cLyricWord.h"

#include "base/cErrorLog.h"
#include "base/mNumber.h"
#include "lyric/cForwardFind.h"

namespace toval {

namespace {

constexpr size_t npos = std::u16string_view::npos;

}  // namespace

std::shared_ptr<cDelta> cLyricWord::Delta() const {
    if (!delta_) delta_ = std::make_shared<cDelta>();
    return delta_;
}

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
        cForwardFind open(s, u'<'), close(s, u'>');
        size_t p = open.At(1);
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
            const size_t q = close.At(pos);
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
            p = open.At(pos);
        }
        text_ = s.substr(pos - 1);
    });
}

}  // namespace toval
