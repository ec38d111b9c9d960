#include "mAudioTags.h"

#include <taglib/fileref.h>
#include <taglib/tag.h>

#include <limits>

namespace toval::service {

bool ReadAudioTags(const std::filesystem::path& file, cAudioTags& tags) {
    TagLib::FileRef ref(file.c_str(), true, TagLib::AudioProperties::Fast);
    if (ref.isNull() || !ref.tag()) return false;
    const TagLib::Tag* tag = ref.tag();
    tags.artist = tag->artist().to8Bit(true);
    tags.album = tag->album().to8Bit(true);
    tags.title = tag->title().to8Bit(true);
    tags.seconds = ref.audioProperties() ? ref.audioProperties()->lengthInSeconds() : 0;
    std::error_code ec;
    const auto size = std::filesystem::file_size(file, ec);
    tags.fileSize = !ec && size <= static_cast<uintmax_t>(std::numeric_limits<int32_t>::max())
                        ? static_cast<int32_t>(size)
                        : 0;
    return true;
}

}  // namespace toval::service
