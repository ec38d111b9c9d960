// The tags of an audio file, read with TagLib.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace toval::service {

struct cAudioTags {
    std::string artist, album, title;  // UTF-8
    int32_t seconds = 0;               // 0 when unknown
    int32_t fileSize = 0;
};

// False when the file cannot be read as audio.
bool ReadAudioTags(const std::filesystem::path& file, cAudioTags& tags);

}  // namespace toval::service
