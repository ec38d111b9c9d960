// A portable INI engine that behaves like the Windows private-profile
// functions: case-insensitive section and key names, blanks around names and
// values trimmed, one pair of surrounding quotes taken off a value, ";"
// comment lines, CR LF line ends, and every other line kept as it was when a
// value is written.
#pragma once

#include <string>
#include <string_view>

#include "platform/IniFile.h"

namespace toval {

class cIniEngine : public IniFile {
  public:
    std::string ReadString(const std::u16string& file, const std::string& section,
                           const std::string& key, const std::string& def,
                           size_t bufferSize) override;
    bool WriteString(const std::u16string& file, const std::string& section, const std::string& key,
                     const std::string& value) override;

    // The engine on file content already in memory: the value of key in
    // section, or def when either is missing.
    static std::string Lookup(std::string_view content, std::string_view section,
                              std::string_view key, const std::string& def, size_t bufferSize);
    // The content after writing key = value into section.
    static std::string Update(std::string_view content, std::string_view section,
                              std::string_view key, std::string_view value);
};

}  // namespace toval
