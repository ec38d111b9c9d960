// The artist, album, title and length an audio file's own tags give (MP3,
// FLAC, Ogg, Opus, M4A, WAV and the other forms TagLib reads). A file that is
// missing, not audio or broken gives empty fields, never an exception.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace toval {

struct cAudioTags {
    std::string artist, album, title;  // UTF-8; empty when the file has none
    int32_t milliseconds = -1;         // the playing length; -1 when unknown

    bool operator==(const cAudioTags&) const = default;
};

// Reads the tags of the regular file at path (anything else gives empty fields).
cAudioTags ReadAudioTags(const std::string& path);

// The same from a whole file held in memory, its form told by its content.
cAudioTags ReadAudioTagsFromMemory(std::string_view bytes);

}  // namespace toval
