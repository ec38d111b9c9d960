// The conversions of the optional TovalStrings library behind the interface of
// cStrings, plus the library's own extras and file functions. The first failed
// call turns the adapter off for good: that call and every later one use the
// built-in conversions (and mString then hands out the built-in converter).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/cStrings.h"
#include "platform/StringsLibrary.h"

namespace toval {

class cStringsDLL : public cStrings {
  public:
    explicit cStringsDLL(std::shared_ptr<StringsLibrary> library);

    // True until a library call fails.
    bool Available() const { return available_; }

    std::u16string utf8TOwstring(const std::string& bytes) const override;
    std::string wstringTOutf8(const std::u16string& text) const override;
    std::string stringTOhtml(const std::string& bytes) const override;
    std::string wstringTOutf8html(const std::u16string& text) const override;
    std::string wstringTOutf8uhtml(const std::u16string& text, int32_t limit) const override;
    std::u16string htmlTOtext(const std::u16string& text) const override;
    std::u16string txtuniTOwstring(const std::string& bytes) const override;
    std::string wstringTOtxtuni(const std::u16string& text) const override;
    std::u16string wcharTOwstring(const std::string& bytes) const override;
    std::string wstringTOwchar(const std::u16string& text) const override;

    // A UTF-8 text file: the mark EF BB BF, then the text as UTF-8.
    std::string wstringTOtxtuni8(const std::u16string& text) const;
    // Line ends made uniform: every CR LF, lone CR and lone LF becomes CR LF.
    std::u16string normalizeString(const std::u16string& text) const;

    // The file functions of the library, as mFile defines them.
    bool FileSave(const std::u16string& path, const std::string& data, int32_t start,
                  bool killFirst) const;
    bool FileSaveAscii(const std::u16string& path, const std::u16string& text) const;
    bool FileSaveUTF8(const std::u16string& path, const std::u16string& text) const;
    std::u16string FileRead(const std::u16string& path) const;
    bool FileExists(const std::u16string& path) const;
    void FileKill(const std::u16string& path) const;

  private:
    // One library call; false (and the adapter off) when it failed.
    bool Call(StringsFunction function, const StringsCall& call, std::string& result,
              const char* procedure) const;
    bool CallText(StringsFunction function, const StringsCall& call, std::u16string& result,
                  const char* procedure) const;
    bool CallFlag(StringsFunction function, const StringsCall& call, bool& result,
                  const char* procedure) const;

    std::shared_ptr<StringsLibrary> library_;
    mutable bool available_;
};

}  // namespace toval
