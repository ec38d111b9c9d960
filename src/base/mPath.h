// The program's per-user data folders.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Shell.h"

namespace toval {

// The system's special folder `folderId` (kFolderAppData, kFolderLocalAppData)
// with "Toval" and a separator appended, created one level deep when missing.
// When the system has no such folder or it cannot be made: programFolder with
// a trailing separator. Always ends with the separator.
std::u16string getSpecialFolder(Shell& shell, int32_t folderId,
                                const std::u16string& programFolder);

// The path with the separator appended when it does not already end with one.
std::u16string AddPathSeparator(const std::u16string& path);

}  // namespace toval
