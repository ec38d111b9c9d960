// The system's 8-bit code page, Windows-1252, as the INI files and the track ID
// use it. A character the code page cannot hold becomes "?". The five bytes that
// Windows-1252 leaves undefined (81 8D 8F 90 9D) map to the control characters of
// the same number, as Windows maps them, so every byte survives a round trip.
#pragma once

#include <cstdint>
#include <string>

namespace toval {

std::string wstringTOansi(const std::u16string& text);
std::u16string ansiTOwstring(const std::string& bytes);
// The character of one byte of the code page.
char16_t ansiTOwchar(unsigned char byte);

// Code pages a language file may be written in.
inline constexpr int32_t kCodePageWestern = 1252;
inline constexpr int32_t kCodePageHebrew = 1255;
inline constexpr int32_t kCodePageUtf8 = 65001;

// Bytes in a code page: Windows-1255, UTF-8, and Windows-1252 for any other.
std::u16string codepageTOwstring(const std::string& bytes, int32_t codePage);

}  // namespace toval
