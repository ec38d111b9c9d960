#include "base/cStringsDLL.h"

#include <utility>

#include "base/cErrorLog.h"
#include "base/mCodePage.h"
#include "base/mFile.h"

namespace toval {

namespace {

StringsCall Args(std::string_view first, std::string_view second = {}, int32_t number = 0,
                 bool flag = false) {
    StringsCall call;
    call.first = first;
    call.second = second;
    call.number = number;
    call.flag = flag;
    return call;
}

}  // namespace

cStringsDLL::cStringsDLL(std::shared_ptr<StringsLibrary> library)
    : library_(std::move(library)), available_(library_ != nullptr) {}

bool cStringsDLL::Call(StringsFunction function, const StringsCall& call, std::string& result,
                       const char* procedure) const {
    if (!available_) return false;
    bool ok = false;
    try {
        result.clear();
        ok = library_->Call(function, call, result);
    } catch (...) {
        ok = false;
    }
    if (!ok) {
        available_ = false;
        ErrorTrail({procedure, "TovalStrings failed; using the built-in functions from now on"});
    }
    return ok;
}

bool cStringsDLL::CallText(StringsFunction function, const StringsCall& call,
                           std::u16string& result, const char* procedure) const {
    std::string bytes;
    if (!Call(function, call, bytes, procedure)) return false;
    if (bytes.size() % 2) {  // not a 16-bit text: the library is broken
        available_ = false;
        ErrorTrail({procedure, "TovalStrings gave an odd number of bytes for a text"});
        return false;
    }
    result = cStrings::wcharTOwstring(bytes);
    return true;
}

bool cStringsDLL::CallFlag(StringsFunction function, const StringsCall& call, bool& result,
                           const char* procedure) const {
    std::string bytes;
    if (!Call(function, call, bytes, procedure)) return false;
    if (bytes.size() != 1 || (bytes[0] != '\0' && bytes[0] != '\1')) {
        available_ = false;
        ErrorTrail({procedure, "TovalStrings gave no flag"});
        return false;
    }
    result = bytes[0] == '\1';
    return true;
}

std::u16string cStringsDLL::utf8TOwstring(const std::string& bytes) const {
    std::u16string text;
    if (CallText(StringsFunction::utf8TOwstring, Args(bytes), text, "cStringsDLL.utf8TOwstring")) {
        return text;
    }
    return cStrings::utf8TOwstring(bytes);
}

std::string cStringsDLL::wstringTOutf8(const std::u16string& text) const {
    const std::string wide = cStrings::wstringTOwchar(text);
    std::string bytes;
    if (Call(StringsFunction::wstringTOutf8, Args(wide), bytes, "cStringsDLL.wstringTOutf8")) {
        return bytes;
    }
    return cStrings::wstringTOutf8(text);
}

std::string cStringsDLL::stringTOhtml(const std::string& bytes) const {
    std::string out;
    if (Call(StringsFunction::stringTOhtml, Args(bytes), out, "cStringsDLL.stringTOhtml"))
        return out;
    return cStrings::stringTOhtml(bytes);
}

std::string cStringsDLL::wstringTOutf8html(const std::u16string& text) const {
    const std::string wide = cStrings::wstringTOwchar(text);
    std::string out;
    if (Call(StringsFunction::wstringTOutf8html, Args(wide), out,
             "cStringsDLL.wstringTOutf8html")) {
        return out;
    }
    return cStrings::wstringTOutf8html(text);
}

std::string cStringsDLL::wstringTOutf8uhtml(const std::u16string& text, int32_t limit) const {
    const std::string wide = cStrings::wstringTOwchar(text);
    StringsCall call = Args(wide);
    call.number = limit;
    std::string out;
    if (Call(StringsFunction::wstringTOutf8uhtml, call, out, "cStringsDLL.wstringTOutf8uhtml")) {
        return out;
    }
    return cStrings::wstringTOutf8uhtml(text, limit);
}

std::u16string cStringsDLL::htmlTOtext(const std::u16string& text) const {
    const std::string wide = cStrings::wstringTOwchar(text);
    std::u16string out;
    if (CallText(StringsFunction::htmlTOtext, Args(wide), out, "cStringsDLL.htmlTOtext"))
        return out;
    return cStrings::htmlTOtext(text);
}

std::u16string cStringsDLL::txtuniTOwstring(const std::string& bytes) const {
    std::u16string out;
    if (CallText(StringsFunction::txtuniTOwstring, Args(bytes), out,
                 "cStringsDLL.txtuniTOwstring")) {
        return out;
    }
    return cStrings::txtuniTOwstring(bytes);
}

std::string cStringsDLL::wstringTOtxtuni(const std::u16string& text) const {
    const std::string wide = cStrings::wstringTOwchar(text);
    std::string out;
    if (Call(StringsFunction::wstringTOtxtuni, Args(wide), out, "cStringsDLL.wstringTOtxtuni")) {
        return out;
    }
    return cStrings::wstringTOtxtuni(text);
}

std::u16string cStringsDLL::wcharTOwstring(const std::string& bytes) const {
    std::u16string out;
    if (CallText(StringsFunction::wcharTOwstring, Args(bytes), out, "cStringsDLL.wcharTOwstring")) {
        return out;
    }
    return cStrings::wcharTOwstring(bytes);
}

std::string cStringsDLL::wstringTOwchar(const std::u16string& text) const {
    const std::string wide = cStrings::wstringTOwchar(text);
    std::string out;
    if (Call(StringsFunction::wstringTOwchar, Args(wide), out, "cStringsDLL.wstringTOwchar")) {
        return out;
    }
    return wide;
}

std::string cStringsDLL::wstringTOtxtuni8(const std::u16string& text) const {
    const std::string wide = cStrings::wstringTOwchar(text);
    std::string out;
    if (Call(StringsFunction::wstringTOtxtuni8, Args(wide), out, "cStringsDLL.wstringTOtxtuni8")) {
        return out;
    }
    return Guarded("cStringsDLL.wstringTOtxtuni8", std::string(),
                   [&] { return "\xEF\xBB\xBF" + cStrings::wstringTOutf8(text); });
}

std::u16string cStringsDLL::normalizeString(const std::u16string& text) const {
    const std::string wide = cStrings::wstringTOwchar(text);
    std::u16string out;
    if (CallText(StringsFunction::normalizeString, Args(wide), out,
                 "cStringsDLL.normalizeString")) {
        return out;
    }
    return Guarded("cStringsDLL.normalizeString", std::u16string(), [&] {
        std::u16string lines;
        lines.reserve(text.size() + text.size() / 8);
        for (size_t i = 0; i < text.size(); ++i) {
            const char16_t c = text[i];
            if (c == u'\r' || c == u'\n') {
                lines += u"\r\n";
                if (c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
            } else {
                lines.push_back(c);
            }
        }
        return lines;
    });
}

bool cStringsDLL::FileSave(const std::u16string& path, const std::string& data, int32_t start,
                           bool killFirst) const {
    const std::string widePath = cStrings::wstringTOwchar(path);
    const StringsCall call = Args(widePath, data, start, killFirst);
    bool saved = false;
    if (CallFlag(StringsFunction::FileSave, call, saved, "cStringsDLL.FileSave")) return saved;
    return SaveFile(path, data, start, killFirst);
}

bool cStringsDLL::FileSaveAscii(const std::u16string& path, const std::u16string& text) const {
    const std::string widePath = cStrings::wstringTOwchar(path);
    const std::string wide = cStrings::wstringTOwchar(text);
    bool saved = false;
    if (CallFlag(StringsFunction::FileSaveAscii, Args(widePath, wide), saved,
                 "cStringsDLL.FileSaveAscii")) {
        return saved;
    }
    return SaveFile(path, wstringTOansi(text), 1, true);
}

bool cStringsDLL::FileSaveUTF8(const std::u16string& path, const std::u16string& text) const {
    const std::string widePath = cStrings::wstringTOwchar(path);
    const std::string wide = cStrings::wstringTOwchar(text);
    bool saved = false;
    if (CallFlag(StringsFunction::FileSaveUTF8, Args(widePath, wide), saved,
                 "cStringsDLL.FileSaveUTF8")) {
        return saved;
    }
    return SaveFile(path, cStrings::wstringTOutf8(text), 1, true);
}

std::u16string cStringsDLL::FileRead(const std::u16string& path) const {
    const std::string widePath = cStrings::wstringTOwchar(path);
    std::u16string text;
    if (CallText(StringsFunction::FileRead, Args(widePath), text, "cStringsDLL.FileRead"))
        return text;
    return cStrings::utf8TOwstring(ReadFile(path, 1, 0));
}

bool cStringsDLL::FileExists(const std::u16string& path) const {
    const std::string widePath = cStrings::wstringTOwchar(path);
    bool exists = false;
    if (CallFlag(StringsFunction::FileExists, Args(widePath), exists, "cStringsDLL.FileExists")) {
        return exists;
    }
    return FileExistsDirect(path);
}

void cStringsDLL::FileKill(const std::u16string& path) const {
    const std::string widePath = cStrings::wstringTOwchar(path);
    std::string ignored;
    if (Call(StringsFunction::FileKill, Args(widePath), ignored, "cStringsDLL.FileKill")) return;
    FileKillDirect(path);
}

}  // namespace toval
