#include "cWinStringsLibrary.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>

#include "cWindow.h"

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

class cOpenLibrary final : public StringsLibrary {
  public:
    cOpenLibrary(HMODULE module, CallFunction call, FreeFunction release)
        : module_(module), call_(call), free_(release) {}
    ~cOpenLibrary() override { FreeLibrary(module_); }
    cOpenLibrary(const cOpenLibrary&) = delete;
    cOpenLibrary& operator=(const cOpenLibrary&) = delete;

    bool Call(StringsFunction function, const StringsCall& call, std::string& result) override {
        const TovalStringsArgs args{call.first.data(),  call.first.size(), call.second.data(),
                                    call.second.size(), call.number,       call.flag ? 1 : 0};
        char* buffer = nullptr;
        size_t size = 0;
        const int32_t status = call_(static_cast<int32_t>(function), &args, &buffer, &size);
        const std::unique_ptr<char, FreeFunction> owned(buffer, free_);
        if (status != 0 || (!buffer && size != 0)) return false;
        if (buffer)
            result.assign(buffer, size);
        else
            result.clear();
        return true;
    }

  private:
    HMODULE module_;
    CallFunction call_;
    FreeFunction free_;
};

}  // namespace

std::shared_ptr<StringsLibrary> cWinStringsLibrary::Load(std::string& reason) {
    const HMODULE module = LoadLibraryW(Wide(path_));
    if (!module) {
        reason = "the library could not be opened (error " + std::to_string(GetLastError()) + ")";
        return nullptr;
    }
    const auto call = reinterpret_cast<CallFunction>(
        reinterpret_cast<void*>(GetProcAddress(module, "TovalStrings_Call")));
    const auto release = reinterpret_cast<FreeFunction>(
        reinterpret_cast<void*>(GetProcAddress(module, "TovalStrings_Free")));
    if (!call || !release) {
        reason = "the library lacks TovalStrings_Call or TovalStrings_Free";
        FreeLibrary(module);
        return nullptr;
    }
    return std::make_shared<cOpenLibrary>(module, call, release);
}

}  // namespace toval
