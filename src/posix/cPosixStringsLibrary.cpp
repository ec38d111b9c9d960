#include "posix/cPosixStringsLibrary.h"

#include <dlfcn.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace toval {

namespace {

extern "C" {
struct TovalStringsArgs {
    const char* first;
    size_t firstSize;
    const char* second;
    size_t secondSize;
    int32_t number;
    int32_t flag;
};
using CallFunction = int32_t (*)(int32_t, const TovalStringsArgs*, char**, size_t*);
using FreeFunction = void (*)(char*);
}

class cOpenLibrary : public StringsLibrary {
  public:
    cOpenLibrary(void* handle, CallFunction call, FreeFunction release)
        : handle_(handle), call_(call), free_(release) {}
    ~cOpenLibrary() override { dlclose(handle_); }
    cOpenLibrary(const cOpenLibrary&) = delete;
    cOpenLibrary& operator=(const cOpenLibrary&) = delete;

    bool Call(StringsFunction function, const StringsCall& call, std::string& result) override {
        const TovalStringsArgs args{call.first.data(),  call.first.size(), call.second.data(),
                                    call.second.size(), call.number,       call.flag ? 1 : 0};
        char* buffer = nullptr;
        size_t size = 0;
        const int32_t status = call_(static_cast<int32_t>(function), &args, &buffer, &size);
        // The library's buffer goes back to it on every way out, also when
        // copying it runs out of memory.
        const std::unique_ptr<char, FreeFunction> owned(buffer, free_);
        if (status != 0 || (!buffer && size != 0)) return false;
        if (buffer)
            result.assign(buffer, size);
        else
            result.clear();
        return true;
    }

  private:
    void* handle_;
    CallFunction call_;
    FreeFunction free_;
};

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
    auto call = reinterpret_cast<CallFunction>(dlsym(handle, "TovalStrings_Call"));
    auto release = reinterpret_cast<FreeFunction>(dlsym(handle, "TovalStrings_Free"));
    if (!call || !release) {
        reason = LastError("the library lacks TovalStrings_Call or TovalStrings_Free");
        dlclose(handle);
        return nullptr;
    }
    return std::make_shared<cOpenLibrary>(handle, call, release);
}

}  // namespace toval
