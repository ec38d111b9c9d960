#include "lyric/cLyricLine.h"

#include <vector>

#include "base/cErrorLog.h"
#include "base/mNumber.h"
#include "base/mRightToLeft.h"
#include "lyric/cForwardFind.h"

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

std::shared_ptr<cDelta> cLyricLine::Delta() const {
    if (!delta_) delta_ = std::make_shared<cDelta>();
    return delta_;
}

bool cLyricLine::IsEmpty() const {
    if (words_.Size() > 0) return false;
    return text_.find_first_not_of(u' ') == std::u16string::npos;
}

bool cLyricLine::Simple() const {
    if (times_.Size() > 0) return false;
    for (int32_t i = words_.Size() - 1; i >= 0; --i) {
        const auto word = words_.Element(i);
        if (word && !word->Simple()) return false;
    }
    return true;
}

void cLyricLine::AppendJoined(std::u16string& out, std::u16string_view head) const {
    if (words_.Size() < 2) {
        out += head;
        out += text_;
        return;
    }
    // While the latest non-blank word reads right to left, words go on the
    // left of everything joined so far. The left-hand pieces are gathered in
    // the order they were put there and written out reversed.
    std::vector<std::u16string_view> left, right;
    right.push_back(head);
    bool rightToLeft = false;
    for (const auto& word : words_) {
        if (!word) continue;
        const std::u16string_view text = word->Text();
        if (text != u" ") rightToLeft = IsRightToLeft(text);
        (rightToLeft ? left : right).push_back(text);
    }
    for (auto it = left.rbegin(); it != left.rend(); ++it)
        out += *it;
    for (const auto piece : right)
        out += piece;
}

void cLyricLine::AppendTextRebuild(std::u16string& out) const {
    AppendJoined(out, {});
}

void cLyricLine::AppendLoadLRC(std::u16string& out) const {
    const auto first = times_.Element(0);
    const std::u16string head = u"[" + (first ? first->TextSimple() : u"00:00.00") + u"]";
    AppendJoined(out, head);
}

std::u16string cLyricLine::TextRebuild() const {
    return Guarded("cLyricLine.TextRebuild [Get]", std::u16string(), [&] {
        std::u16string out;
        AppendTextRebuild(out);
        return out;
    });
}

std::u16string cLyricLine::LoadLRC() const {
    return Guarded("cLyricLine.LoadLRC [Get]", std::u16string(), [&] {
        std::u16string out;
        AppendLoadLRC(out);
        return out;
    });
}

void cLyricLine::AppendLoad(std::u16string& out) const {
    if (times_.Size() == 0) {
        out += u"[]";
    } else {
        for (const auto& time : times_) {
            out += u'[';
            if (time) out += DecimalText(time->Time());
            out += u']';
        }
    }
    if (words_.Size() == 0) {
        out += text_;
        return;
    }
    for (const auto& word : words_)
        if (word) word->AppendLoad(out);
}

std::u16string cLyricLine::Load() const {
    return Guarded("cLyricLine.Load [Get]", std::u16string(), [&] {
        std::u16string out;
        AppendLoad(out);
        return out;
    });
}

void cLyricLine::setLoad(std::u16string_view s) {
    Guarded("cLyricLine.Load [Let]", [&] {
        times_.Free(true);
        words_.Free(true);
        const size_t length = s.size();

        // Line tags. Positions are 1-based, 0 meaning "none". Once no "[" is
        // left, a "]" closes a tag that starts at the beginning of the line;
        // such a tag already holds an earlier "]", so it is never a number and
        // gives no time with a ":" in it and 0 without (see cLyricWord).
        const size_t firstClose = s.find(u']');
        const size_t signLength = !s.empty() && (s[0] == u'-' || s[0] == u'+') ? 1 : 0;
        const size_t colon = s.find(u':', signLength);
        cForwardFind open(s, u'['), close(s, u']');
        size_t p = open.At(1);
        size_t pos = 1;
        for (;;) {
            const size_t q = close.At(pos);
            if (q <= p) break;
            if (q > p + 1) {
                const size_t tagLength = q - p - 1;
                auto time = std::make_shared<cTime>();
                if (p == 0 && firstClose < tagLength) {
                    time->setTime(colon != npos && colon < tagLength ? kUnset : 0);
                } else {
                    time->setText(s.substr(p, tagLength));
                }
                // A bad line tag is dropped.
                if (time->Time() != kUnset) times_.Add(std::move(time));
            }
            pos = q + 1;
            p = open.At(pos);
        }

        size_t w = InStr(s, pos, u'<');
        if (w == 0) {
            text_ = s.substr(pos - 1);
            return;
        }

        // Words. Text before the first "<" is an untimed word of its own.
        karaoke_ = true;
        text_.clear();
        if (w > pos) {
            auto word = std::make_shared<cLyricWord>();
            word->setText(std::u16string(s.substr(pos - 1, w - pos)));
            text_ += word->Text();
            words_.Add(std::move(word));
        }
        while (w != 0) {
            // The run of tags: after each ">", a "<" right behind it goes on.
            size_t e = InStr(s, w, u'>');
            if (e == 0) {
                e = length + 1;
            } else {
                while (e < length && s[e] == u'<') {
                    const size_t next = InStr(s, e + 1, u'>');
                    if (next == 0) {
                        e = length + 1;
                        break;
                    }
                    e = next;
                }
            }
            const size_t next = InStr(s, e + 1, u'<');
            const size_t end = next == 0 ? length : next - 1;
            auto word = std::make_shared<cLyricWord>();
            word->setLoad(s.substr(w - 1, end - w + 1));
            text_ += word->Text();
            words_.Add(std::move(word));
            w = next;
        }
    });
}

void cLyricLine::Resize() {
    Guarded("cLyricLine.Resize", [&] {
        if (!aux_ || words_.Size() == 0) return;
        const auto box = Delta();
        const auto initial = box->Initial();
        const auto final = box->Final();
        // A line that was not placed horizontally starts at 0.
        const int32_t left = initial && initial->X() != kUnset ? initial->X() : 0;
        const int32_t top = initial ? initial->Y() : kUnset;
        const int32_t bottom = final ? final->Y() : kUnset;
        std::u16string prefix;
        int32_t before = 0;
        for (const auto& word : words_) {
            if (!word) continue;
            prefix += word->Text();
            const int32_t after = aux_->TextExtent(prefix).cx;
            const auto wordBox = word->Delta();
            wordBox->setInitial(std::make_shared<c2DPoint>(WrapAdd(left, before), top));
            wordBox->setFinal(std::make_shared<c2DPoint>(WrapAdd(left, after), bottom));
            before = after;
        }
    });
}

}  // namespace toval
