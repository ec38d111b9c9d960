// The calling interface of the TovalStrings library once a loader has found
// its two functions: the arguments as the library takes them, and the call
// that hands the library's buffer back to it on every way out. Each platform
// only opens the library (dlopen, LoadLibrary) and closes it again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/StringsLibrary.h"

namespace toval {

extern "C" {
struct TovalStringsArgs {
    const char* first;
    size_t firstSize;
    const char* second;
    size_t secondSize;
    int32_t number;
    int32_t flag;
};
using TovalStringsCallFunction = int32_t (*)(int32_t, const TovalStringsArgs*, char**, size_t*);
using TovalStringsFreeFunction = void (*)(char*);
}

class cLoadedStringsLibrary final : public StringsLibrary {
  public:
    // `close` unloads the library; it runs when the last user lets go.
    cLoadedStringsLibrary(TovalStringsCallFunction call, TovalStringsFreeFunction release,
                          std::function<void()> close)
        : call_(call), free_(release), close_(std::move(close)) {}
    ~cLoadedStringsLibrary() override {
        if (close_) close_();
    }
    cLoadedStringsLibrary(const cLoadedStringsLibrary&) = delete;
    cLoadedStringsLibrary& operator=(const cLoadedStringsLibrary&) = delete;

    bool Call(StringsFunction function, const StringsCall& call, std::string& result) override {
        const TovalStringsArgs args{call.first.data(),  call.first.size(), call.second.data(),
                                    call.second.size(), call.number,       call.flag ? 1 : 0};
        char* buffer = nullptr;
        size_t size = 0;
        const int32_t status = call_(static_cast<int32_t>(function), &args, &buffer, &size);
        // The library's buffer goes back to it on every way out, also when
        // copying it runs out of memory.
        const std::unique_ptr<char, TovalStringsFreeFunction> owned(buffer, free_);
        if (status != 0 || (!buffer && size != 0)) return false;
        if (buffer)
            result.assign(buffer, size);
        else
            result.clear();
        return true;
    }

  private:
    TovalStringsCallFunction call_;
    TovalStringsFreeFunction free_;
    std::function<void()> close_;
};

}  // namespace toval
