#include "lyric/cLyricWord.h"

namespace toval {

cLyricWord::cLyricWord() : delta_(std::make_shared<cDelta>()) {}

std::u16string cLyricWord::Load() const {
    std::u16string out;
    AppendLoad(out);
    return out;
}

void cLyricWord::AppendLoad(std::u16string& out) const {
    out += text_;
}

void cLyricWord::setLoad(std::u16string_view record) {
    text_ = record;
}

}  // namespace toval
