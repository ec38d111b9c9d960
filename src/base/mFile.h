// Files shared by the lyric files, the cache and the configuration: the names of
// the lyric files that belong to a track, and whole-file reading and writing.
// No function throws; each gives its empty result (empty text, false) instead.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace toval {

// The folder separator of the platform; the one place that decides it.
inline constexpr char16_t kPathSeparator =
    static_cast<char16_t>(std::filesystem::path::preferred_separator);

// The path without its extension: everything before the last "." when that "."
// is not the first character, else the path unchanged. The search does not stop
// at folder separators, so a dot-less file name in a dotted folder is cut inside
// the folder name.
std::u16string GetBaseAddress(const std::u16string& path);
// GetBaseAddress(path) + ".tvl" / ".lrc".
std::u16string GetTovalAddress(const std::u16string& path);
std::u16string GetLyricAddress(const std::u16string& path);
// The folder part including the last separator when that separator is not the
// first character, else empty.
std::u16string GetLyricPath(const std::u16string& path);

// `length` bytes from byte `start` (1-based); a length below 1 reads to the end.
// Reading stops at the end of the file, so the result may be shorter. Empty for
// a start below 1 or a missing file.
std::string ReadFile(const std::u16string& path, int32_t start, int32_t length);
// The whole file as text: UTF-8, or UTF-16 behind a byte-order mark (lyric
// files saved by Windows editors come so); through the library when it is
// available.
std::u16string FileRead(const std::u16string& path);
// Writes `data` at byte `start` (1-based), after deleting the file when
// killFirst; a start below 1 appends at the end. False on any error.
bool SaveFile(const std::u16string& path, const std::string& data, int32_t start, bool killFirst);
// Replaces the file with the text as UTF-8 / in the 8-bit code page. With the
// library: its save, and the result is whether the file exists afterwards.
bool FileSaveUTF8(const std::u16string& path, const std::u16string& text);
bool FileSaveAscii(const std::u16string& path, const std::u16string& text);
// True when the path names something on disk (a folder too).
bool FileExists(const std::u16string& path);
// Deletes a file, ignoring errors.
void FileKill(const std::u16string& path);

// FileExists and FileKill without the library (what its adapter falls back to).
bool FileExistsDirect(const std::u16string& path);
void FileKillDirect(const std::u16string& path);

}  // namespace toval
