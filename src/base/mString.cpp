#include "base/mString.h"

#include <memory>
#include <string>

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

}  // namespace toval
