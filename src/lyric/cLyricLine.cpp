#include "lyric/cLyricLine.h"

namespace toval {

std::shared_ptr<cDelta> cLyricLine::Delta() const {
    if (!delta_) delta_ = std::make_shared<cDelta>();
    return delta_;
}
bool cLyricLine::IsEmpty() const {
    return false;
}
bool cLyricLine::Simple() const {
    return true;
}
std::u16string cLyricLine::TextRebuild() const {
    return text_;
}
std::u16string cLyricLine::LoadLRC() const {
    return text_;
}
std::u16string cLyricLine::Load() const {
    return text_;
}
void cLyricLine::setLoad(std::u16string_view record) {
    text_ = record;
}
void cLyricLine::Resize() {}
void cLyricLine::AppendLoad(std::u16string& out) const {
    out += text_;
}
void cLyricLine::AppendLoadLRC(std::u16string& out) const {
    out += text_;
}
void cLyricLine::AppendTextRebuild(std::u16string& out) const {
    out += text_;
}
void cLyricLine::AppendJoined(std::u16string& out, std::u16string_view head) const {
    out += head;
}

}  // namespace toval
