#include "lyric/cLyric.h"

namespace toval {

cLyric::cLyric(Random* random) : delta_(std::make_shared<cDelta>()), random_(random) {}
std::u16string cLyric::Text() const {
    return {};
}
std::u16string cLyric::TextRebuild() const {
    return {};
}
int32_t cLyric::TextHeight() const {
    return kUnset;
}
void cLyric::Mutate() {}
std::u16string cLyric::Properties() const {
    return {};
}
void cLyric::setProperties(std::u16string_view) {}
std::u16string cLyric::LoadLRC() const {
    return {};
}
std::u16string cLyric::Load() const {
    return {};
}
void cLyric::setLoad(std::u16string_view) {}
void cLyric::Resize() {}
std::u16string cLyric::TVL() const {
    return {};
}
std::u16string cLyric::LRC(std::shared_ptr<cMusic>) const {
    return {};
}

}  // namespace toval
