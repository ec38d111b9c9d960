// The optional conversion library TovalStrings, as the core sees it. A loader
// of the platform opens the shared library and hands back its functions, or
// says why it could not; the core never opens a library itself.
// POSIX: cPosixStringsLibrary (dlopen); tests: a scripted fake.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace toval {

// The library's functions. The numbers are part of the library's calling
// interface: never renumber.
enum class StringsFunction : int32_t {
    utf8TOwstring = 1,
    wstringTOutf8 = 2,
    stringTOhtml = 3,
    wstringTOutf8html = 4,
    wstringTOutf8uhtml = 5,
    htmlTOtext = 6,
    txtuniTOwstring = 7,
    wstringTOtxtuni = 8,
    wcharTOwstring = 9,
    wstringTOwchar = 10,
    wstringTOtxtuni8 = 11,
    normalizeString = 12,
    FileSave = 13,
    FileSaveAscii = 14,
    FileSaveUTF8 = 15,
    FileRead = 16,
    FileExists = 17,
    FileKill = 18,
};

// The arguments of one call. Every argument and result is a byte string: a
// text travels as its UTF-16 little-endian bytes, a boolean result as one
// byte 0 or 1.
struct StringsCall {
    std::string_view first;   // the text, the bytes or the file path
    std::string_view second;  // the data of a file save
    int32_t number = 0;       // the limit of wstringTOutf8uhtml, the start of FileSave
    bool flag = false;        // killFirst of FileSave
};

class StringsLibrary {
  public:
    virtual ~StringsLibrary() = default;
    // Runs one function of the library; false when the library failed.
    virtual bool Call(StringsFunction function, const StringsCall& call, std::string& result) = 0;
};

class StringsLibraryLoader {
  public:
    virtual ~StringsLibraryLoader() = default;
    // The loaded library, or nullptr with `reason` telling why.
    virtual std::shared_ptr<StringsLibrary> Load(std::string& reason) = 0;
};

}  // namespace toval
