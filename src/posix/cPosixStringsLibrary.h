// Loads TovalStrings as the shared library "libTovalStrings.so" with dlopen.
//
// The library's calling interface (C):
//   typedef struct { const char* first; size_t firstSize;
//                    const char* second; size_t secondSize;
//                    int32_t number; int32_t flag; } TovalStringsArgs;
//   int32_t TovalStrings_Call(int32_t function, const TovalStringsArgs* args,
//                             char** result, size_t* resultSize);
//       0 on success; the result buffer belongs to the caller, who frees it:
//   void TovalStrings_Free(char* buffer);
// The function numbers and argument meanings are those of StringsFunction and
// StringsCall.
#pragma once

#include <memory>
#include <string>

#include "platform/StringsLibrary.h"

namespace toval {

class cPosixStringsLibrary : public StringsLibraryLoader {
  public:
    // name: the file dlopen looks for.
    explicit cPosixStringsLibrary(std::string name = "libTovalStrings.so");
    std::shared_ptr<StringsLibrary> Load(std::string& reason) override;

  private:
    std::string name_;
};

}  // namespace toval
