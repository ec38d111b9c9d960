// UTF-8, UTF-16 and form encoding of arbitrary bytes, and text files in their
// encodings: nothing may crash, and every text comes back unchanged from its
// UTF-8 and 16-bit byte forms.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/cStrings.h"
#include "base/mString.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const toval::cStrings strings;
    const std::string bytes(reinterpret_cast<const char*>(data), size);

    // Any bytes decode, never to more units than bytes.
    const std::u16string decoded = strings.utf8TOwstring(bytes);
    if (decoded.size() > bytes.size()) std::abort();
    // Bytes that are valid UTF-8 for the 16-bit range decode to a text that
    // encodes back to the same bytes.
    const std::string again = strings.wstringTOutf8(decoded);
    if (strings.utf8TOwstring(again) != decoded) std::abort();

    // The bytes read as 16-bit units: any text survives both byte forms.
    const std::u16string text = strings.wcharTOwstring(bytes);
    if (strings.utf8TOwstring(strings.wstringTOutf8(text)) != text) std::abort();
    if (size % 2 == 0 && strings.wstringTOwchar(text) != bytes) std::abort();
    if (strings.txtuniTOwstring(strings.wstringTOtxtuni(text)) != text) std::abort();
    strings.txtuniTOwstring(bytes);

    // Form encoding: ASCII out, and a limited encoding is a prefix that fits.
    const std::string form = strings.wstringTOutf8html(text);
    for (char c : form) {
        if (static_cast<unsigned char>(c) > 127) std::abort();
    }
    const int32_t limit = size ? static_cast<int32_t>(data[0]) * 3 : 0;
    const std::string cut = strings.wstringTOutf8uhtml(text, limit);
    if (form.compare(0, cut.size(), cut) != 0) std::abort();
    if (limit >= 1 && cut.size() > static_cast<size_t>(limit)) std::abort();
    if (limit < 1 && cut != form) std::abort();
    strings.stringTOhtml(bytes);

    // A text file in any of its encodings: never more units than bytes, and
    // the test for text holds no surprise on any of them.
    const std::u16string file = toval::TextFileTOwstring(bytes);
    if (file.size() > bytes.size()) std::abort();
    (void)toval::IsText(file);
    return 0;
}
