// Loads the optional conversion library TovalStrings.dll with LoadLibrary,
// from the program's folder. Its calling interface is the same C one on every
// system (see cPosixStringsLibrary.h).
#pragma once

#include <string>

#include "platform/StringsLibrary.h"

namespace toval {

class cWinStringsLibrary final : public StringsLibraryLoader {
  public:
    explicit cWinStringsLibrary(std::u16string path) : path_(std::move(path)) {}
    std::shared_ptr<StringsLibrary> Load(std::string& reason) override;

  private:
    std::u16string path_;
};

}  // namespace toval
