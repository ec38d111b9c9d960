// HTML clean-up of arbitrary service answers: nothing may crash, the result is
// never longer, nothing replaceable is left in it, and it equals what whole
// passes of replacements give.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/cStrings.h"

namespace {

const toval::cStrings strings;

void ReplaceAll(std::u16string& s, std::u16string_view from) {
    std::u16string out;
    size_t at = 0;
    for (size_t hit; (hit = s.find(from, at)) != std::u16string::npos; at = hit + from.size()) {
        out.append(s, at, hit - at);
        out += u"\r\n";
    }
    out.append(s, at);
    s = out;
}

bool ReferenceChar(char16_t c) {
    return c == u'#' || (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z') ||
           (c >= u'A' && c <= u'Z');
}

// Tags, then references from left to right, until a pass changes nothing. A
// single reference on its own is looked up by the function under test.
std::u16string ByPasses(std::u16string text) {
    for (;;) {
        const std::u16string before = text;
        for (const char16_t* tag : {u"<p>", u"<br>", u"<br/>", u"<br />"})
            ReplaceAll(text, tag);
        std::u16string out;
        for (size_t i = 0; i < text.size(); ++i) {
            if (text[i] == u'&') {
                size_t j = i + 1;
                while (j < text.size() && ReferenceChar(text[j]))
                    ++j;
                if (j < text.size() && text[j] == u';') {
                    const std::u16string reference = text.substr(i, j - i + 1);
                    const std::u16string replaced = strings.htmlTOtext(reference);
                    if (replaced != reference) {
                        out += replaced;
                        i = j;
                        continue;
                    }
                }
            }
            out.push_back(text[i]);
        }
        text = out;
        if (text == before) return text;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    for (const std::u16string& html :
         {strings.utf8TOwstring(bytes), strings.wcharTOwstring(bytes)}) {
        const std::u16string text = strings.htmlTOtext(html);
        if (text.size() > html.size()) std::abort();
        if (strings.htmlTOtext(text) != text) std::abort();
        if (html.size() <= 256 && ByPasses(html) != text) std::abort();
    }
    return 0;
}
