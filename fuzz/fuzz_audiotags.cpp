// The audio-tag reader takes any file a user points the tool at: any bytes, of
// any audio form or none, must give tags or empty fields and never fail.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "mAudioTags.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const toval::cAudioTags tags =
        toval::ReadAudioTagsFromMemory(std::string_view(reinterpret_cast<const char*>(data), size));
    // The fields are one line each and no wider than the player's track record.
    for (const auto* field : {&tags.artist, &tags.album, &tags.title}) {
        if (field->size() > 1024) std::abort();
        for (const char c : *field)
            if (c == '\n' || c == '\r') std::abort();
    }
    return 0;
}
