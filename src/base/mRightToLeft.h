// The right-to-left test shared by the lyric model and the editor.
#pragma once

#include <string_view>

namespace toval {

// True when any character is Hebrew, Arabic, Syriac or Thaana (U+05BE to
// U+07B1), a Hebrew or Arabic presentation form (U+FB1D to U+FEFC), or one of
// the marks RLE (U+202B), RLO (U+202E), RLM (U+200F). Empty text is not.
bool IsRightToLeft(std::u16string_view text);

}  // namespace toval
