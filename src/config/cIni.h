// One section of one INI file, read and written as program text. Texts go to
// the file in the system's 8-bit code page; characters outside it are lost.
#pragma once

#include <string>

#include "platform/IniFile.h"

namespace toval {

class cIni {
  public:
    explicit cIni(IniFile& ini);

    const std::u16string& File() const { return file_; }
    void setFile(const std::u16string& file) { file_ = file; }
    const std::u16string& Section() const { return section_; }
    void setSection(const std::u16string& section) { section_ = section; }

    // The value of key (at most 1023 characters), or def when it is missing.
    std::u16string ReadIni(const std::u16string& key, const std::u16string& def);
    // Writes value under key; the file and the section are made when missing.
    void WriteIni(const std::u16string& key, const std::u16string& value);

    // The size of the read buffer, terminating zero included.
    static constexpr size_t kBufferSize = 1024;

  private:
    IniFile& ini_;
    std::u16string file_;
    std::u16string section_;
};

}  // namespace toval
