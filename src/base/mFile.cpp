#include "base/mFile.h"

#include <filesystem>
#include <fstream>
#include <system_error>

#include "base/cErrorLog.h"
#include "base/mCodePage.h"
#include "base/mString.h"

namespace toval {

namespace fs = std::filesystem;

std::u16string GetBaseAddress(const std::u16string& path) {
    const size_t dot = path.rfind(u'.');
    if (dot == std::u16string::npos || dot == 0) return path;
    return path.substr(0, dot);
}

std::u16string GetTovalAddress(const std::u16string& path) {
    return GetBaseAddress(path) + u".tvl";
}

std::u16string GetLyricAddress(const std::u16string& path) {
    return GetBaseAddress(path) + u".lrc";
}

std::u16string GetLyricPath(const std::u16string& path) {
    const size_t separator = path.rfind(kPathSeparator);
    if (separator == std::u16string::npos || separator == 0) return std::u16string();
    return path.substr(0, separator + 1);
}

std::string ReadFile(const std::u16string& path, int32_t start, int32_t length) {
    return Guarded("mFile.ReadFile", std::string(), [&] {
        std::string data;
        if (start < 1 || path.empty()) return data;
        // Only a plain file: a folder would report a huge size, and a pipe or a
        // device would block the open or never end.
        const fs::path file(path);
        std::error_code error;
        if (!fs::is_regular_file(file, error)) return data;
        std::ifstream in(file, std::ios::binary);
        if (!in) return data;
        in.seekg(0, std::ios::end);
        const std::streamoff size = in.tellg();
        const std::streamoff from = static_cast<std::streamoff>(start) - 1;
        if (size < 0 || from >= size) return data;
        std::streamoff count = size - from;
        if (length >= 1 && length < count) count = length;
        data.resize(static_cast<size_t>(count));
        in.seekg(from);
        in.read(data.data(), count);
        data.resize(static_cast<size_t>(in.gcount()));
        return data;
    });
}

std::u16string FileRead(const std::u16string& path) {
    if (cStringsDLL* dll = StringsDLL()) return dll->FileRead(path);
    return TextFileTOwstring(ReadFile(path, 1, 0));
}

bool SaveFile(const std::u16string& path, const std::string& data, int32_t start, bool killFirst) {
    return Guarded("mFile.SaveFile", false, [&] {
        if (path.empty()) return false;
        const fs::path file(path);
        if (killFirst) FileKillDirect(path);
        std::error_code error;
        const fs::file_status status = fs::status(file, error);
        if (!fs::exists(status)) {
            // The file must exist to be opened in place.
            std::ofstream create(file, std::ios::binary);
            if (!create) return false;
        } else if (!fs::is_regular_file(status)) {
            return false;  // a folder, a pipe or a device is not written as a file
        }
        std::fstream out(file, std::ios::binary | std::ios::in | std::ios::out);
        if (!out) return false;
        if (start < 1) {
            out.seekp(0, std::ios::end);
        } else {
            out.seekp(static_cast<std::streamoff>(start) - 1);
        }
        out.write(data.data(), static_cast<std::streamsize>(data.size()));
        out.flush();
        return static_cast<bool>(out);
    });
}

bool FileSaveUTF8(const std::u16string& path, const std::u16string& text) {
    if (cStringsDLL* dll = StringsDLL()) {
        dll->FileSaveUTF8(path, text);
        return dll->FileExists(path);
    }
    return SaveFile(path, Strings().wstringTOutf8(text), 1, true);
}

bool FileSaveAscii(const std::u16string& path, const std::u16string& text) {
    if (cStringsDLL* dll = StringsDLL()) {
        dll->FileSaveAscii(path, text);
        return dll->FileExists(path);
    }
    return SaveFile(path, wstringTOansi(text), 1, true);
}

bool FileExists(const std::u16string& path) {
    if (cStringsDLL* dll = StringsDLL()) return dll->FileExists(path);
    return FileExistsDirect(path);
}

void FileKill(const std::u16string& path) {
    if (cStringsDLL* dll = StringsDLL()) return dll->FileKill(path);
    FileKillDirect(path);
}

bool FileExistsDirect(const std::u16string& path) {
    return Guarded("mFile.FileExists", false, [&] {
        if (path.empty()) return false;
        std::error_code error;
        return fs::exists(fs::path(path), error);
    });
}

void FileKillDirect(const std::u16string& path) {
    // Kill deletes files only; a folder of that name stays.
    Guarded("mFile.FileKill", [&] {
        if (path.empty()) return;
        const fs::path file(path);
        std::error_code error;
        if (fs::is_directory(fs::symlink_status(file, error))) return;
        fs::remove(file, error);
    });
}

}  // namespace toval
