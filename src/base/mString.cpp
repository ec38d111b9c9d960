#include "base/mString.h"

#include <memory>
#include <string>
#include <utility>

#include "base/cErrorLog.h"

namespace toval {

namespace {

cStrings& BuiltIn() {
    static cStrings builtIn;
    return builtIn;
}

std::unique_ptr<cStringsDLL>& Library() {
    static std::unique_ptr<cStringsDLL> library;
    return library;
}

}  // namespace

cStrings& Strings() {
    if (cStringsDLL* dll = StringsDLL()) return *dll;
    return BuiltIn();
}

bool StringsDLLAvailable() {
    return StringsDLL() != nullptr;
}

cStringsDLL* StringsDLL() {
    cStringsDLL* dll = Library().get();
    return dll && dll->Available() ? dll : nullptr;
}

bool tryLoadStringsDLL(StringsLibraryLoader& loader) {
    std::string reason;
    std::shared_ptr<StringsLibrary> library;
    try {
        library = loader.Load(reason);
    } catch (const std::exception& e) {
        reason = e.what();
    } catch (...) {
        reason = "unknown failure";
    }
    if (library) {
        Library() = std::make_unique<cStringsDLL>(std::move(library));
        return true;
    }
    Library().reset();
    ErrorTrail({"mString.tryLoadStringsDLL",
                "Can't load TovalStrings (Framework) library, using old functions instead.\r\n"
                "Reason: " +
                    reason});
    return false;
}

void resetStringsDLL() {
    Library().reset();
}

std::u16string TextFileTOwstring(const std::string& bytes) {
    const auto at = [&](size_t i) { return static_cast<unsigned char>(bytes[i]); };
    if (bytes.size() >= 2 && at(0) == 0xFF && at(1) == 0xFE)
        return Strings().txtuniTOwstring(bytes);
    if (bytes.size() >= 2 && at(0) == 0xFE && at(1) == 0xFF) {
        // Big-endian: swap each pair, then read it as little-endian.
        std::string swapped(bytes, 2);
        for (size_t i = 0; i + 1 < swapped.size(); i += 2)
            std::swap(swapped[i], swapped[i + 1]);
        return Strings().wcharTOwstring(swapped);
    }
    if (bytes.size() >= 3 && at(0) == 0xEF && at(1) == 0xBB && at(2) == 0xBF)
        return Strings().utf8TOwstring(bytes.substr(3));
    return Strings().utf8TOwstring(bytes);
}

bool IsText(std::u16string_view text) {
    size_t controls = 0;
    for (char16_t c : text) {
        if (c == 0) return false;
        if ((c < 0x20 && c != u'\t' && c != u'\n' && c != u'\r' && c != u'\f') || c == 0x7F ||
            (c >= 0x80 && c < 0xA0))
            ++controls;
    }
    return controls * 10 <= text.size();
}

}  // namespace toval
