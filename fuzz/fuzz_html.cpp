// HTML clean-up of arbitrary service answers: nothing may crash, the result is
// never longer, and nothing replaceable is left in it. (The tests pin chains
// of replacements case by case.)
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/cStrings.h"

namespace {

const toval::cStrings strings;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    for (const std::u16string& html :
         {strings.utf8TOwstring(bytes), strings.wcharTOwstring(bytes)}) {
        const std::u16string text = strings.htmlTOtext(html);
        if (text.size() > html.size()) std::abort();
        if (strings.htmlTOtext(text) != text) std::abort();
    }
    return 0;
}
