// Text to lyric: the separator set, textToLyric and wordSep, and the folding
// of repeated blocks (implodeToval).
#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/cErrorLog.h"
#include "base/mRightToLeft.h"
#include "editor/cEditor.h"
#include "lyric/cLyric.h"
#include "lyric/cTime.h"

namespace toval {

namespace {

// Ascending as signed 16-bit values, which is the order the halving search
// relies on: the fullwidth forms (0xFFxx) are negative and come first. The
// apostrophe and the tab are not separators: "don't" stays one word.
constexpr std::array<char16_t, 45> kSeparators = {
    0xFF0C, 0xFF0F, 0xFF1A,                                  // fullwidth , / :
    0x0020, 0x0021, 0x0022, 0x0023, 0x0026, 0x0028, 0x0029,  // blank ! " # & ( )
    0x002A, 0x002B, 0x002C, 0x002D, 0x002E, 0x002F, 0x003A,  // * + , - . / :
    0x003B, 0x003D, 0x003F, 0x0040, 0x005C, 0x007B, 0x007C,  // ; = ? @ \ { |
    0x007D,                                                  // }
    0x1680, 0x180E,                                          // Ogham, Mongolian
    0x2000, 0x2001, 0x2002, 0x2003, 0x2004, 0x2005, 0x2006,  // typographic spaces
    0x2007, 0x2008, 0x2009, 0x200A,                          //
    0x201C, 0x201D,                                          // double quotes
    0x2028, 0x205F,                                          // line sep., math space
    0x3000, 0x3001, 0x3002,                                  // ideographic
};

constexpr std::u16string_view kCrLf = u"\r\n";

}  // namespace

int32_t cEditor::Middle(int32_t low, int32_t high) {
    // Exact in double: the sum of two 32-bit values needs 33 bits.
    int32_t mid = low;
    ToInt32(RoundHalfEven((static_cast<double>(low) + high) / 2.0), mid);
    return mid;
}

void cEditor::loadSepChars() {
    sepChars_.clear();
    sepStrings_.clear();
    lastSep_ = -1;
    for (const char16_t c : kSeparators)
        addSepChar(static_cast<int16_t>(c));
}

void cEditor::addSepChar(int16_t code) {
    lastSep_ = WrapAdd(lastSep_, 1);
    sepChars_.push_back(code);
    sepStrings_.emplace_back(1, static_cast<char16_t>(code));
}

int32_t cEditor::findSepIndex(int16_t code, int32_t low, int32_t high) const {
    if (low > high) return 0;
    const int32_t mid = Middle(low, high);
    if (mid < 0 || mid >= static_cast<int32_t>(sepChars_.size())) return 0;
    const int16_t entry = sepChars_[static_cast<size_t>(mid)];
    if (entry == code) return mid;
    if (entry > code) return findSepIndex(code, low, mid - 1);
    return findSepIndex(code, mid + 1, high);
}

int16_t cEditor::findSepChar(int16_t code) const {
    if (lastSep_ < 0) return kNoSep;
    const int32_t index = findSepIndex(code, 0, lastSep_);
    if (index >= 0 && index < static_cast<int32_t>(sepChars_.size()) &&
        sepChars_[static_cast<size_t>(index)] == code)
        return code;
    return kNoSep;
}

std::u16string cEditor::textToLyric(std::u16string_view text) const {
    return Guarded("fEdit.textToLyric", std::u16string(), [&] {
        std::u16string result;
        const size_t length = text.size();
        // 0-based here; the loop stops while pos < length in 1-based terms,
        // so a last line of one character after the final CR LF is dropped.
        size_t pos = 0;
        while (pos + 1 < length) {
            const size_t q = text.find(kCrLf, pos);
            std::u16string_view line;
            size_t next;
            if (q != std::u16string_view::npos) {
                line = text.substr(pos, q - pos);
                next = q + 2;
            } else {
                line = text.substr(pos);
                next = length + 1;
            }
            result += u"[]";
            result += wordSep(line, u"<>");
            result += kCrLf;
            pos = next;
        }
        return result;
    });
}

std::u16string cEditor::wordSep(std::u16string_view line, std::u16string_view sep) const {
    return Guarded("fEdit.wordSep", std::u16string(), [&] {
        std::u16string result;
        // The pending right-to-left run, kept as the pieces put in front of
        // it (newest last), so that a long run costs no quadratic inserts.
        std::vector<std::u16string> rtlRun;
        auto flushRtl = [&] {
            for (auto it = rtlRun.rbegin(); it != rtlRun.rend(); ++it)
                result += *it;
            rtlRun.clear();
        };
        bool inRtl = false;
        int16_t prev = kNoSep;
        const size_t n = line.size();
        if (n == 0) return result;
        // 1-based positions, as the algorithm is stated.
        size_t start = 1;
        size_t i = 1;
        auto at = [&](size_t pos) { return static_cast<int16_t>(line[pos - 1]); };
        auto prevText = [&] { return std::u16string(1, static_cast<char16_t>(prev)); };
        for (;;) {
            while (i <= n && findSepChar(at(i)) == kNoSep)
                ++i;
            int16_t c;
            if (i > n) {
                // A last piece of one character after a separator is lost here.
                if (start >= n) break;
                i = n + 1;
                c = kNoSep;
            } else {
                c = at(i);
            }
            if (i > start) {
                const std::u16string_view piece = line.substr(start - 1, i - start);
                if (IsRightToLeft(piece)) {
                    if (!inRtl) {
                        if (prev != kNoSep) {
                            result.append(sep).append(prevText());
                            prev = kNoSep;
                        }
                        inRtl = true;
                    }
                    // Right-to-left words go in front of the run: a run comes
                    // out in reverse order, each separator after its word.
                    std::u16string front(sep);
                    front.append(piece);
                    if (prev != kNoSep) front.append(sep).append(prevText());
                    rtlRun.push_back(std::move(front));
                } else {
                    if (inRtl) {
                        // The separator before this piece closes the run.
                        std::u16string tail;
                        if (prev != kNoSep) {
                            tail.append(sep).append(prevText());
                            prev = kNoSep;
                        }
                        flushRtl();
                        result += tail;
                        inRtl = false;
                    }
                    if (prev != kNoSep) result.append(sep).append(prevText());
                    result.append(sep).append(piece);
                }
            } else if (prev != kNoSep) {
                if (inRtl)
                    rtlRun.push_back(std::u16string(sep) + prevText());
                else
                    result.append(sep).append(prevText());
            }
            prev = c;
            start = i + 1;
            i = i + 1;
        }
        flushRtl();
        if (prev != kNoSep) result.append(sep).append(prevText());
        return result;
    });
}

cObjectArray<cLyricBlock> cEditor::getBlocks() const {
    cObjectArray<cLyricBlock> blocks;
    Guarded("fEdit.getBlocks", [&] {
        const int32_t n = lyric_->GetLineSize() - 1;
        if (n <= 0) return;
        auto close = [&](int32_t blockStart, int32_t end) {
            auto block = std::make_shared<cLyricBlock>();
            block->setStartLine(blockStart);
            block->setEndLine(end - 1);
            block->setLineCount(end - blockStart);
            block->setWordCount(0);
            blocks.Add(std::move(block));
        };
        int32_t blockStart = 0;
        for (int32_t i = 0; i <= n; ++i) {
            const auto line = lyric_->GetLine(i);
            if (line && line->IsEmpty()) {
                close(blockStart, i);
                blockStart = i + 1;
            }
        }
        if (blockStart <= n) close(blockStart, n + 1);
    });
    return blocks;
}

bool cEditor::blSimilarBlocks(const cLyricBlock& a, const cLyricBlock& b) const {
    return Guarded("fEdit.blSimilarBlocks", false, [&] {
        if (a.LineCount() != b.LineCount() || a.WordCount() != b.WordCount()) return false;
        for (int32_t k = a.LineCount() - 1; k >= 0; --k) {
            const auto lineA = lyric_->GetLine(WrapSub(a.EndLine(), k));
            const auto lineB = lyric_->GetLine(WrapSub(b.EndLine(), k));
            if (!lineA || !lineB) return false;
            if (lineA->GetWordSize() != lineB->GetWordSize()) return false;
            if (lineA->Text() != lineB->Text()) return false;
        }
        return true;
    });
}

void cEditor::implodeLines(cLyricLine& target, const cLyricLine& source) {
    Guarded("fEdit.implodeLines", [&] {
        // Copied, never shared; appended after the target's own times.
        for (int32_t t = 0; t < source.GetTimeSize(); ++t)
            if (const auto time = source.GetTime(t))
                target.AddTime(std::make_shared<cTime>(time->Time()));
        for (int32_t w = 0; w < target.GetWordSize(); ++w) {
            const auto to = target.GetWord(w);
            const auto from = source.GetWord(w);
            if (!to || !from) continue;
            for (int32_t t = 0; t < from->GetTimeSize(); ++t)
                if (const auto time = from->GetTime(t))
                    to->AddTime(std::make_shared<cTime>(time->Time()));
        }
    });
}

void cEditor::implodeBlocks(const cLyricBlock& target, const cLyricBlock& source) {
    Guarded("fEdit.implodeBlocks", [&] {
        for (int32_t k = target.LineCount() - 1; k >= 0; --k) {
            const auto to = lyric_->GetLine(WrapSub(target.EndLine(), k));
            const auto from = lyric_->GetLine(WrapSub(source.EndLine(), k));
            if (to && from) implodeLines(*to, *from);
        }
    });
}

void cEditor::delLinesBlock(const cLyricBlock& block) {
    Guarded("fEdit.delLinesBlock", [&] {
        for (int32_t k = 0; k < block.LineCount(); ++k)
            lyric_->RemoveLine(WrapSub(block.EndLine(), k));
    });
}

namespace {

// A hash of what similarity compares: the line count and, line by line, the
// word count and the text. Similar blocks have equal signatures.
size_t BlockSignature(const cLyric& lyric, const cLyricBlock& block) {
    size_t h = static_cast<size_t>(static_cast<uint32_t>(block.LineCount()));
    const std::hash<std::u16string_view> hashText;
    for (int32_t k = block.LineCount() - 1; k >= 0; --k) {
        const auto line = lyric.GetLine(WrapSub(block.EndLine(), k));
        if (!line) continue;
        h = h * 1000003u ^ static_cast<size_t>(static_cast<uint32_t>(line->GetWordSize()));
        h = h * 1000003u ^ hashText(line->Text());
    }
    return h;
}

}  // namespace

void cEditor::implodeToval() {
    Guarded("fEdit.implodeToval", [&] {
        const int32_t lineCount = lyric_->GetLineSize();
        // Lines of the copies folded away. They are all taken out at the end,
        // together with the runs of empty lines: taking them out one by one
        // costs a shift of every later line each time.
        std::vector<bool> deleted(static_cast<size_t>(std::max(lineCount, 0)), false);
        bool anyDeleted = false;
        {
            const cObjectArray<cLyricBlock> blocks = getBlocks();
            const int32_t count = blocks.Size();
            // Candidates by signature, in ascending block order, so that only
            // blocks that can be similar are compared (a song of thousands
            // of different blocks would otherwise compare every pair).
            std::vector<size_t> signature(static_cast<size_t>(std::max(count, 0)));
            std::unordered_map<size_t, std::vector<int32_t>> candidates;
            for (int32_t b = 0; b < count; ++b) {
                const auto block = blocks.Element(b);
                signature[static_cast<size_t>(b)] = block ? BlockSignature(*lyric_, *block) : 0;
                candidates[signature[static_cast<size_t>(b)]].push_back(b);
            }
            // Latest block first, each folded into the nearest earlier block
            // like it (the first match wins). Folding changes only times, so
            // which blocks are alike stays as it was, and no line moves
            // before the end, so every block's indexes stay valid.
            for (int32_t b = count - 1; b >= 1; --b) {
                std::vector<int32_t>& same = candidates[signature[static_cast<size_t>(b)]];
                if (!same.empty() && same.back() == b) same.pop_back();
                const auto later = blocks.Element(b);
                if (!later) continue;
                for (auto a = same.rbegin(); a != same.rend(); ++a) {
                    const auto earlier = blocks.Element(*a);
                    if (earlier && blSimilarBlocks(*later, *earlier)) {
                        implodeBlocks(*earlier, *later);
                        for (int32_t k = 0; k < later->LineCount(); ++k) {
                            const int32_t l = WrapSub(later->EndLine(), k);
                            if (l >= 0 && l < lineCount) deleted[static_cast<size_t>(l)] = true;
                        }
                        anyDeleted = true;
                        break;
                    }
                }
            }
        }
        // The lines that stay, with each run of empty lines cut to one (each
        // copy folded away leaves its separating empty line behind).
        std::vector<std::shared_ptr<cLyricLine>> kept;
        kept.reserve(static_cast<size_t>(std::max(lineCount, 0)));
        bool seen = false;
        for (int32_t i = 0; i < lineCount; ++i) {
            if (deleted[static_cast<size_t>(i)]) continue;
            auto line = lyric_->GetLine(i);
            if (!line || !line->IsEmpty()) {
                seen = false;
            } else if (!seen) {
                seen = true;
            } else {
                anyDeleted = true;
                continue;
            }
            kept.push_back(std::move(line));
        }
        if (anyDeleted) {
            for (int32_t i = lyric_->GetLineSize() - 1; i >= 0; --i)
                lyric_->RemoveLine(i);
            for (auto& line : kept)
                if (line) lyric_->AddLine(std::move(line));
        }
        lyric_->setAuxPictureBox(aux_);
        lyric_->Resize();
    });
}

}  // namespace toval
