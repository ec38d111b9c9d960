#include "cWinStringsLibrary.h"

#include <windows.h>

#include <memory>
#include <string>

#include "cWindow.h"
#include "platform/cLoadedStringsLibrary.h"

namespace toval {

std::shared_ptr<StringsLibrary> cWinStringsLibrary::Load(std::string& reason) {
    const HMODULE module = LoadLibraryW(Wide(path_));
    if (!module) {
        reason = "the library could not be opened (error " + std::to_string(GetLastError()) + ")";
        return nullptr;
    }
    const auto call = reinterpret_cast<TovalStringsCallFunction>(
        reinterpret_cast<void*>(GetProcAddress(module, "TovalStrings_Call")));
    const auto release = reinterpret_cast<TovalStringsFreeFunction>(
        reinterpret_cast<void*>(GetProcAddress(module, "TovalStrings_Free")));
    if (!call || !release) {
        reason = "the library lacks TovalStrings_Call or TovalStrings_Free";
        FreeLibrary(module);
        return nullptr;
    }
    return std::make_shared<cLoadedStringsLibrary>(call, release,
                                                   [module] { FreeLibrary(module); });
}

}  // namespace toval
