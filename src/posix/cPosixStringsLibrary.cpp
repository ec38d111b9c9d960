#include "posix/cPosixStringsLibrary.h"

#include <dlfcn.h>

#include <memory>
#include <utility>

#include "platform/cLoadedStringsLibrary.h"

namespace toval {

namespace {

std::string LastError(const char* otherwise) {
    const char* text = dlerror();
    return text ? std::string(text) : std::string(otherwise);
}

}  // namespace

cPosixStringsLibrary::cPosixStringsLibrary(std::string name) : name_(std::move(name)) {}

std::shared_ptr<StringsLibrary> cPosixStringsLibrary::Load(std::string& reason) {
    dlerror();
    void* handle = dlopen(name_.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        reason = LastError("the library could not be opened");
        return nullptr;
    }
    auto call = reinterpret_cast<TovalStringsCallFunction>(dlsym(handle, "TovalStrings_Call"));
    auto release = reinterpret_cast<TovalStringsFreeFunction>(dlsym(handle, "TovalStrings_Free"));
    if (!call || !release) {
        reason = LastError("the library lacks TovalStrings_Call or TovalStrings_Free");
        dlclose(handle);
        return nullptr;
    }
    return std::make_shared<cLoadedStringsLibrary>(call, release, [handle] { dlclose(handle); });
}

}  // namespace toval
