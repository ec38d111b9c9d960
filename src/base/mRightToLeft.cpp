#include "base/mRightToLeft.h"

namespace toval {

bool IsRightToLeft(std::u16string_view text) {
    for (const char16_t c : text) {
        if ((c >= 0x05BE && c <= 0x07B1) || (c >= 0xFB1D && c <= 0xFEFC) || c == 0x202B ||
            c == 0x202E || c == 0x200F)
            return true;
    }
    return false;
}

}  // namespace toval
