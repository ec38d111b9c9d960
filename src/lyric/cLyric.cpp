#include "lyric/cLyric.h"

#include <algorithm>
#include <vector>

#include "base/cErrorLog.h"
#include "lyric/cMusic.h"
#include "lyric/mLrcForm.h"

namespace toval {

namespace {

constexpr std::u16string_view kCrLf = u"\r\n";
constexpr std::u16string_view kPropertyStart = u"[PROPERTY]";
constexpr std::u16string_view kPropertyEnd = u"[\\PROPERTY]";

// ASCII upper case: the property keys are ASCII.
std::u16string UpperAscii(std::u16string_view text) {
    std::u16string out(text);
    for (auto& c : out)
        if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - (u'a' - u'A'));
    return out;
}

// A numeric property value; one too large for 32 bits is left out with a
// trail line, the other properties are still read.
void ReadNumber(std::u16string_view value, int32_t& out) {
    if (!IsNumeric(value)) return;
    if (!TextToInt32(value, out)) ErrorTrail({"cLyric.Properties [Let]", "value out of range"});
}

// One text line of a lyric file, read into one line or more.
void ReadPiece(std::u16string_view piece, std::vector<std::shared_ptr<cLyricLine>>& out) {
    // The common LRC forms ([mm:ss.xx] and its kin) go their own way; the
    // records the program writes ([ms], []) and everything else that starts
    // with a tag keep the record reading.
    if (ReadLrcLine(piece, out)) return;
    std::shared_ptr<cLyricLine> line;
    if (!ReadRightToLeftLrcLine(piece, line)) {
        line = std::make_shared<cLyricLine>();
        const size_t first = piece.find_first_not_of(u" \t");
        if (first == std::u16string_view::npos || (piece[first] != u'[' && piece[first] != u'<')) {
            // A line that starts with text is text, brackets and all: a stamp
            // in the middle of it is no time, and the text before it stays.
            line->setText(std::u16string(piece));
        } else {
            line->setLoad(piece);
        }
    }
    out.push_back(std::move(line));
}

}  // namespace

cLyric::cLyric(Random* random) : delta_(std::make_shared<cDelta>()), random_(random) {
    delta_->setInitial(std::make_shared<c2DPoint>(0, 0));
    delta_->setFinal(std::make_shared<c2DPoint>(0, 0));
}

std::u16string cLyric::Text() const {
    return Guarded("cLyric.Text [Get]", std::u16string(), [&] {
        std::u16string out;
        for (const auto& line : lines_) {
            if (line && line->Text() != u" ") out += line->Text();
            out += kCrLf;
        }
        return out;
    });
}

std::u16string cLyric::TextRebuild() const {
    return Guarded("cLyric.TextRebuild [Get]", std::u16string(), [&] {
        std::u16string out;
        for (const auto& line : lines_) {
            const size_t start = out.size();
            if (line) line->AppendTextRebuild(out);
            // A line of exactly one blank is written as an empty line.
            if (out.size() == start + 1 && out[start] == u' ') out.resize(start);
            out += kCrLf;
        }
        return out;
    });
}

int32_t cLyric::TextHeight() const {
    const int32_t count = lines_.Size();
    const auto final = delta_ ? delta_->Final() : nullptr;
    if (count == 0 || !final) return kUnset;
    int32_t height = kUnset;
    ToInt32(static_cast<double>(final->Y()) / count, height);
    return height;
}

void cLyric::Mutate() {
    if (!random_) return;
    // Draws just below 1 make the product round up to 2^31, one past the
    // largest revision; such a draw (and anything outside [0, 1) from a
    // misbehaving source) is clamped into 1..2147483647.
    const double value = RoundHalfEven(random_->Next() * 2147483647.0 + 1.0);
    if (!(value >= 1.0))
        mutation_ = 1;
    else if (value > 2147483647.0)
        mutation_ = INT32_MAX;
    else
        mutation_ = static_cast<int32_t>(value);
}

std::u16string cLyric::Properties() const {
    return Guarded("cLyric.Properties [Get]", std::u16string(), [&] {
        std::u16string out(kPropertyStart);
        out += kCrLf;
        out += u"MUTATION:" + DecimalText(mutation_);
        out += kCrLf;
        if (trackLength_ != kUnset) {
            out += u"TRACKLENGTH:" + DecimalText(trackLength_);
            out += kCrLf;
        }
        out += rightToLeft_ ? u"RIGHTTOLEFT:1" : u"RIGHTTOLEFT:0";
        out += kCrLf;
        out += kPropertyEnd;
        return out;
    });
}

void cLyric::setProperties(std::u16string_view section) {
    Guarded("cLyric.Properties [Let]", [&] {
        // The section starts with the CR LF behind "[PROPERTY]"; every piece
        // counts only when a CR LF ends it.
        size_t pos = 2;
        while (pos < section.size()) {
            const size_t end = section.find(kCrLf, pos);
            if (end == std::u16string_view::npos) break;
            const std::u16string_view piece = section.substr(pos, end - pos);
            pos = end + kCrLf.size();
            const size_t colon = piece.find(u':');
            if (colon == std::u16string_view::npos) continue;
            const std::u16string key = UpperAscii(piece.substr(0, colon));
            const std::u16string_view value = piece.substr(colon + 1);
            if (key == u"MUTATION") {
                ReadNumber(value, mutation_);
            } else if (key == u"RIGHTTOLEFT") {
                if (value.size() == 1) rightToLeft_ = value == u"1";
            } else if (key == u"TRACKLENGTH") {
                ReadNumber(value, trackLength_);
            }
        }
    });
}

std::u16string cLyric::LoadLRC() const {
    return Guarded("cLyric.LoadLRC [Get]", std::u16string(), [&] {
        std::u16string out;
        for (const auto& line : lines_) {
            if (line) line->AppendLoadLRC(out);
            out += kCrLf;
        }
        return out;
    });
}

std::u16string cLyric::Load() const {
    return Guarded("cLyric.Load [Get]", std::u16string(), [&] {
        std::u16string out;
        for (const auto& line : lines_) {
            if (line) line->AppendLoad(out);
            out += kCrLf;
        }
        return out;
    });
}

void cLyric::setLoad(std::u16string_view s) {
    Guarded("cLyric.Load [Let]", [&] {
        lines_.Free(true);
        simple_ = true;
        if (!s.empty()) {
            // Property section, when complete; otherwise everything is lines.
            size_t pos = 0;
            bool header = true;
            const size_t start = s.find(kPropertyStart);
            if (start != std::u16string_view::npos) {
                header = false;
                const size_t bodyStart = start + kPropertyStart.size();
                const size_t end = s.find(kPropertyEnd, bodyStart);
                if (end != std::u16string_view::npos) {
                    setProperties(s.substr(bodyStart, end - bodyStart));
                    pos = end + kPropertyEnd.size();
                }
            }
            // Files from other systems end their lines in LF or CR alone.
            int32_t offset = 0;
            std::vector<std::shared_ptr<cLyricLine>> read;
            while (pos < s.size()) {
                const size_t end = s.find_first_of(u"\r\n", pos);
                const size_t pieceEnd = end == std::u16string_view::npos ? s.size() : end;
                const std::u16string_view piece = s.substr(pos, pieceEnd - pos);
                if (end == std::u16string_view::npos)
                    pos = s.size();
                else
                    pos = end + (s.substr(end, 2) == kCrLf ? 2 : 1);

                // The offset moves every time of the file; it is applied here
                // and not kept, so a file written back does not apply it twice.
                if (ReadOffsetTag(piece, offset)) continue;
                read.clear();
                ReadPiece(piece, read);
                if (header) {
                    // Leading bracket lines without a valid time ([ar:x]) are
                    // ID tags; the first other line ends the header. A tag
                    // must open the line: text with a bracket further on is a
                    // lyric line, not a tag.
                    const size_t open = piece.find(u'[');
                    const size_t first = piece.find_first_not_of(u" \t");
                    const size_t close = open == std::u16string_view::npos
                                             ? std::u16string_view::npos
                                             : piece.find(u']', open);
                    if (read.size() == 1 && read[0]->GetTimeSize() == 0 && open == first &&
                        close != std::u16string_view::npos && close > open + 1) {
                        idTags_ += piece;
                        idTags_ += kCrLf;
                        continue;
                    }
                    header = false;
                }
                for (auto& line : read) {
                    if (simple_ && !line->Simple()) simple_ = false;
                    lines_.Add(std::move(line));
                }
            }
            // Positive: the lyric comes earlier, as LRC players read it.
            if (offset != 0)
                for (const auto& line : lines_)
                    if (line) ShiftLineTimes(*line, -static_cast<int64_t>(offset));
        }
        Resize();
    });
}

void cLyric::Resize() {
    Guarded("cLyric.Resize", [&] {
        // Pending messages (a font just chosen) are handled before measuring.
        if (aux_) aux_->DoEvents();
        const int32_t count = lines_.Size();
        if (count == 0) {
            delta_->setInitial(std::make_shared<c2DPoint>(0, 0));
            delta_->setFinal(std::make_shared<c2DPoint>(0, 0));
            return;
        }
        // Without a surface nothing can be measured: positions stay as they are.
        if (!aux_) return;

        // Vertical pass: lines touch, each as high as its measured run.
        std::vector<int32_t> widths;
        widths.reserve(static_cast<size_t>(count));
        int32_t y = 0, width = 0;
        for (const auto& line : lines_) {
            if (!line) {
                widths.push_back(0);
                continue;
            }
            line->setAuxPictureBox(aux_);
            const cTextExtent extent = aux_->TextExtent(line->Text());
            const auto box = line->Delta();
            const int32_t oldLeft = box->Initial() ? box->Initial()->X() : kUnset;
            const int32_t bottom = WrapAdd(y, extent.cy);
            box->setInitial(std::make_shared<c2DPoint>(oldLeft, y));
            box->setFinal(std::make_shared<c2DPoint>(extent.cx, bottom));
            y = bottom;
            width = std::max(width, extent.cx);
            widths.push_back(extent.cx);
        }

        // Horizontal pass, then the words of each line.
        if (alignment_ >= 0 && alignment_ <= 3) {
            for (int32_t i = 0; i < count; ++i) {
                const auto line = lines_.Element(i);
                if (!line) continue;
                const int32_t cx = widths[static_cast<size_t>(i)];
                const int32_t spare = WrapSub(width, cx);
                int32_t left = 0;
                if (alignment_ == 2) {
                    left = spare;
                } else if (alignment_ == 3) {
                    left = static_cast<int32_t>(RoundHalfEven(spare / 2.0));
                }
                const auto box = line->Delta();
                const int32_t top = box->Initial() ? box->Initial()->Y() : kUnset;
                const int32_t bottom = box->Final() ? box->Final()->Y() : kUnset;
                box->setInitial(std::make_shared<c2DPoint>(left, top));
                if (alignment_ >= 2)
                    box->setFinal(std::make_shared<c2DPoint>(WrapAdd(left, cx), bottom));
                line->Resize();
            }
        }

        const auto last = lines_.Element(count - 1);
        delta_->setInitial(std::make_shared<c2DPoint>(0, 0));
        delta_->setFinal(std::make_shared<c2DPoint>(width, last ? last->Delta()->Final()->Y() : y));

        // Give the surface back.
        for (const auto& line : lines_)
            if (line) line->setAuxPictureBox(nullptr);
    });
}

std::u16string cLyric::TVL() const {
    return Guarded("cLyric.TVL [Get]", std::u16string(),
                   [&] { return Properties() + (simple_ ? TextRebuild() : Load()); });
}

std::u16string cLyric::LRC(std::shared_ptr<cMusic> track) const {
    return Guarded("cLyric.LRC", std::u16string(), [&] {
        std::u16string out;
        if (!idTags_.empty())
            out = idTags_;
        else if (track)
            out = track->IDTag();
        out += LoadLRC();
        return out;
    });
}

}  // namespace toval
