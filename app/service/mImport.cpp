#include "mImport.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <fstream>
#include <iterator>
#include <limits>
#include <ostream>
#include <string_view>

#include "base/mString.h"
#include "cLyricService.h"
#include "lyric/cLyric.h"
#include "mAudioTags.h"
#include "mMatchKey.h"

namespace toval::service {

namespace {

constexpr std::array<std::string_view, 14> kAudio = {".mp3", ".flac", ".ogg", ".oga", ".opus",
                                                     ".m4a", ".mp4",  ".aac", ".wma", ".wav",
                                                     ".ape", ".mpc",  ".wv",  ".aiff"};

// The audio file's size as the program's track record holds it: 0 when it
// does not fit.
int32_t FileSize(const std::filesystem::path& file) {
    std::error_code ec;
    const auto size = std::filesystem::file_size(file, ec);
    return !ec && size <= static_cast<uintmax_t>(std::numeric_limits<int32_t>::max())
               ? static_cast<int32_t>(size)
               : 0;
}

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

// The audio file beside a lyric file, or an empty path.
std::filesystem::path AudioBeside(const std::filesystem::path& lyric) {
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(lyric.parent_path(), ec)) {
        const auto& p = entry.path();
        if (p.stem() != lyric.stem() || !entry.is_regular_file(ec)) continue;
        const std::string ext = Lower(p.extension().string());
        if (std::find(kAudio.begin(), kAudio.end(), ext) != kAudio.end()) return p;
    }
    return {};
}

}  // namespace

cImportCount Import(const std::filesystem::path& folder, iLyricStore& store, std::ostream& log,
                    size_t maxLyricBytes) {
    cImportCount count;
    std::error_code ec;
    const auto options = std::filesystem::directory_options::skip_permission_denied;
    for (std::filesystem::recursive_directory_iterator it(folder, options, ec), end;
         !ec && it != end; it.increment(ec)) {
        const auto& path = it->path();
        const std::string ext = Lower(path.extension().string());
        if ((ext != ".tvl" && ext != ".lrc") || !it->is_regular_file(ec)) continue;
        auto skip = [&](const char* why) {
            log << "skipped " << path.string() << ": " << why << "\n";
            ++count.skipped;
        };
        const auto audio = AudioBeside(path);
        if (audio.empty()) {
            skip("no audio file beside it");
            continue;
        }
        const cAudioTags tags = ReadAudioTags(audio.string());
        if (tags.artist.empty() || tags.title.empty()) {
            skip("its audio file has no artist or title");
            continue;
        }
        std::ifstream in(path, std::ios::binary);
        std::string text(std::istreambuf_iterator<char>(in), {});
        if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
        if (text.empty() || text.size() > maxLyricBytes || !cLyricService::IsLyricText(text)) {
            skip("empty, too large or not UTF-8 text");
            continue;
        }
        cLyricRecord r;
        r.artist = tags.artist;
        r.album = tags.album;
        r.title = tags.title;
        r.artistKey = MatchKey(r.artist);
        r.albumKey = MatchKey(r.album);
        r.titleKey = MatchKey(r.title);
        r.duration = tags.milliseconds > 0 ? tags.milliseconds / 1000 : 0;
        r.fileSize = FileSize(audio);
        cLyric lyric;
        lyric.setLoad(Strings().utf8TOwstring(text));
        r.mutation = lyric.Mutation() == kUnset ? 0 : lyric.Mutation();
        r.kind = cLyricService::Kind(text);
        r.text = std::move(text);
        r.address = "import";
        r.created = static_cast<int64_t>(std::time(nullptr));
        const auto found = store.Find(r.artistKey, r.titleKey);
        if (!found) {
            count.failed = true;
            return count;
        }
        if (std::any_of(found->begin(), found->end(),
                        [&](const cLyricRecord& old) { return old.text == r.text; })) {
            ++count.known;
            continue;
        }
        if (!store.Add(r)) {
            count.failed = true;
            return count;
        }
        ++count.stored;
    }
    if (ec) log << "cannot read " << folder.string() << ": " << ec.message() << "\n";
    return count;
}

}  // namespace toval::service
