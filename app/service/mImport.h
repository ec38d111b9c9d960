// toval-service import DIR: every .tvl and .lrc file under DIR is stored with
// the tags of the audio file beside it (same name, any audio extension), so a
// person can serve their own collection to all their machines. A lyric file
// without a readable audio file beside it is skipped, as is one already stored.
// Plain-text lyrics are taken too: they are the person's own.
#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>

#include "iLyricStore.h"

namespace toval::service {

struct cImportCount {
    int32_t stored = 0, known = 0, skipped = 0;
    bool failed = false;  // the database failed; the import stopped
};

// Reports one line per skipped file to `log`.
cImportCount Import(const std::filesystem::path& folder, iLyricStore& store, std::ostream& log,
                    size_t maxLyricBytes);

}  // namespace toval::service
