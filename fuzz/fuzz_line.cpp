// Word and line records: reading any text and writing it back never crashes;
// a line built from times and words whose texts hold no tag characters is
// read back from its record to the same times, words and text.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "base/mNumber.h"
#include "lyric/cLyricLine.h"
#include "lyric/cLyricWord.h"

#include "FuzzText.h"

namespace {

struct Reader {
    const uint8_t* data;
    size_t size, at = 0;
    bool More() const { return at < size; }
    uint8_t Byte() { return at < size ? data[at++] : 0; }
    int32_t Int() {
        uint32_t v = 0;
        for (int i = 0; i < 4; ++i)
            v = (v << 8) | Byte();
        return static_cast<int32_t>(v);
    }
    std::u16string Piece() {
        std::u16string out;
        for (uint8_t n = Byte() % 6; n > 0 && More(); --n) {
            const char16_t c = static_cast<char16_t>(Byte());
            if (c != u'<' && c != u'>' && c != u'[' && c != u']') out.push_back(c);
        }
        return out;
    }
};

void RoundTrip(const uint8_t* data, size_t size) {
    Reader in{data, size};
    toval::cLyricLine line;
    for (uint8_t n = in.Byte() % 3; n > 0; --n) {
        const int32_t t = in.Int();
        if (t != toval::kUnset) line.AddTime(std::make_shared<toval::cTime>(t));
    }
    std::u16string text;
    for (uint8_t n = in.Byte() % 4; n > 0; --n) {
        auto word = std::make_shared<toval::cLyricWord>();
        for (uint8_t k = in.Byte() % 3; k > 0; --k)
            word->AddTime(std::make_shared<toval::cTime>(in.Int()));
        // An empty word's tags would run on into the next word's.
        word->setText(in.Piece() + u"w");
        text += word->Text();
        line.AddWord(word);
    }
    line.setText(line.GetWordSize() > 0 ? text : in.Piece());

    toval::cLyricLine back;
    back.setLoad(line.Load());
    bool same = back.GetTimeSize() == line.GetTimeSize() && back.Text() == line.Text() &&
                back.GetWordSize() == line.GetWordSize();
    for (int32_t i = 0; same && i < line.GetTimeSize(); ++i)
        same = back.GetTime(i)->Time() == line.GetTime(i)->Time();
    for (int32_t i = 0; same && i < line.GetWordSize(); ++i) {
        const auto a = line.GetWord(i), b = back.GetWord(i);
        same = a->Text() == b->Text() && a->GetTimeSize() == b->GetTimeSize();
        for (int32_t k = 0; same && k < a->GetTimeSize(); ++k)
            same = a->GetTime(k)->Time() == b->GetTime(k)->Time();
    }
    if (!same || back.Load() != line.Load()) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::u16string text = FuzzText(data, size);

    toval::cLyricWord word;
    word.setLoad(text);
    toval::cLyricWord wordBack;
    wordBack.setLoad(word.Load());

    toval::cLyricLine line;
    line.setLoad(text);
    (void)line.IsEmpty();
    (void)line.Simple();
    (void)line.TextRebuild();
    (void)line.LoadLRC();
    toval::cLyricLine back;
    back.setLoad(line.Load());
    (void)back.Load();

    RoundTrip(data, size);
    return 0;
}
