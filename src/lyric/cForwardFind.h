// The 1-based position (0 when absent) of one character at or after 1-based
// positions that never go back, as the record readers ask for it. It
// remembers the last hit (or that there is none further on), so that asking
// again and again for a mark that is not there does not rescan the rest of
// the text: the readers stay linear on lines full of stray marks.
#pragma once

#include <cstddef>
#include <string_view>

namespace toval {

class cForwardFind {
  public:
    cForwardFind(std::u16string_view s, char16_t c) : s_(s), c_(c) {}
    size_t At(size_t from) {
        if (from == 0 || from > s_.size()) return 0;
        if (!(searched_ && from - 1 >= from_ && (hit_ == npos || hit_ >= from - 1))) {
            from_ = from - 1;
            hit_ = s_.find(c_, from_);
            searched_ = true;
        }
        return hit_ == npos ? 0 : hit_ + 1;
    }

  private:
    static constexpr size_t npos = std::u16string_view::npos;
    std::u16string_view s_;
    char16_t c_;
    size_t from_ = 0, hit_ = npos;
    bool searched_ = false;
};

}  // namespace toval
