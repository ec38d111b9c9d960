// The IniFile port on the system's own private-profile functions.
#pragma once

#include "platform/IniFile.h"

namespace toval {

class cWinIniFile final : public IniFile {
  public:
    std::string ReadString(const std::u16string& file, const std::string& section,
                           const std::string& key, const std::string& def,
                           size_t bufferSize) override;
    bool WriteString(const std::u16string& file, const std::string& section, const std::string& key,
                     const std::string& value) override;
};

}  // namespace toval
