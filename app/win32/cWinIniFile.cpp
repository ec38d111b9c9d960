#include "cWinIniFile.h"

#include <vector>

#include "cWindow.h"

namespace toval {

namespace {
// Beyond this a caller's buffer size is clamped: the call takes a DWORD, and
// no value of the program comes near it.
constexpr size_t kMaxBuffer = 1 << 20;
}  // namespace

std::string cWinIniFile::ReadString(const std::u16string& file, const std::string& section,
                                    const std::string& key, const std::string& def,
                                    size_t bufferSize) {
    if (bufferSize == 0) return {};
    if (bufferSize > kMaxBuffer) bufferSize = kMaxBuffer;
    std::vector<char> buffer(bufferSize, '\0');
    const DWORD n =
        GetPrivateProfileStringA(section.c_str(), key.c_str(), def.c_str(), buffer.data(),
                                 static_cast<DWORD>(bufferSize), ToAnsi(file).c_str());
    return std::string(buffer.data(), n < bufferSize ? n : bufferSize - 1);
}

bool cWinIniFile::WriteString(const std::u16string& file, const std::string& section,
                              const std::string& key, const std::string& value) {
    return WritePrivateProfileStringA(section.c_str(), key.c_str(), value.c_str(),
                                      ToAnsi(file).c_str()) != FALSE;
}

}  // namespace toval
