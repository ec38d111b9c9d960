#include "base/mPath.h"

#include <filesystem>
#include <system_error>

#include "base/cErrorLog.h"
#include "base/mFile.h"

namespace toval {

namespace fs = std::filesystem;

std::u16string AddPathSeparator(const std::u16string& path) {
    if (!path.empty() && path.back() == kPathSeparator) return path;
    return path + kPathSeparator;
}

std::u16string getSpecialFolder(Shell& shell, int32_t folderId,
                                const std::u16string& programFolder) {
    const auto fallback = [&] { return AddPathSeparator(programFolder); };
    return Guarded("mPath.getSpecialFolder", fallback(), [&] {
        std::u16string folder = shell.SpecialFolder(folderId);
        folder = folder.substr(0, folder.find(u'\0'));  // the system's text ends at its first zero
        if (folder.empty()) return fallback();
        folder = AddPathSeparator(folder) + u"Toval" + kPathSeparator;
        const fs::path own(folder);
        std::error_code error;
        if (!fs::is_directory(own, error)) {
            // One level only: a missing parent is not made up.
            fs::create_directory(own, error);
            if (!fs::is_directory(own, error)) return fallback();
        }
        return folder;
    });
}

}  // namespace toval
