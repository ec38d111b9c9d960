// INI files as the Windows private-profile functions see them: 8-bit text in
// the system code page, one key of one section per call.
// Win32: GetPrivateProfileStringA / WritePrivateProfileStringA; elsewhere (and
// in tests): the portable engine cIniEngine.
#pragma once

#include <cstddef>
#include <string>

namespace toval {

class IniFile {
  public:
    virtual ~IniFile() = default;

    // The value of key in section of file, or def when the file, the section or
    // the key is missing. Returns what the call reports: at most bufferSize - 1
    // characters (an empty text for a bufferSize of 0).
    virtual std::string ReadString(const std::u16string& file, const std::string& section,
                                   const std::string& key, const std::string& def,
                                   size_t bufferSize) = 0;

    // Writes key = value in section of file, creating the file and the section
    // when they are missing. False when the file cannot be written.
    virtual bool WriteString(const std::u16string& file, const std::string& section,
                             const std::string& key, const std::string& value) = 0;
};

}  // namespace toval
