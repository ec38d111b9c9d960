#include "core/cLyricFile.h"

#include <filesystem>
#include <fstream>

#include "base/cErrorLog.h"
#include "base/mFile.h"
#include "base/mString.h"
#include "config/cConfig.h"
#include "lyric/cMusic.h"

namespace toval {

cLyricFile::cLyricFile(cGlobals& globals, Shell& shell, Random& random, cConfig* config)
    : cLyricFile(globals, std::make_unique<cCache>(globals, shell, random), config) {}

cLyricFile::cLyricFile(cGlobals& globals, std::unique_ptr<cCache> cache, cConfig* config)
    : globals_(globals), config_(config), cache_(std::move(cache)), site_(globals, config) {
    site_.onToval = [this](int32_t result, int32_t id) { tvs_Site_Toval(result, id); };
}

void cLyricFile::Load(int32_t requestId) {
    Guarded("cLyricFile.Load", [&] {
        // Hold the record: a handler of onLoaded may hand us another one.
        const std::shared_ptr<cMusic> track = music_;
        if (!track) {
            ErrorTrail({"cLyricFile.Load", "no track"});
            return;
        }
        if (LoadFromLyric(track)) {
            Raise(requestId, globals_.Settings.cache_simple ? kLyricLocalSimple : kLyricLocal);
            return;
        }
        if (LoadFromCache(track)) {
            Raise(requestId, kLyricLocal);
            return;
        }
        lyric_ = WaitingText(*track);
        Raise(requestId, kLyricWaiting);
        site_.Load(*track, requestId, 0);
    });
}

void cLyricFile::LoadFrom(int32_t source, int32_t requestId, int32_t mutation) {
    Guarded("cLyricFile.LoadFrom", [&] {
        if (source != kSourceService || !music_) return;
        const std::shared_ptr<cMusic> track = music_;
        site_.Load(*track, requestId, mutation);
    });
}

void cLyricFile::ClearCache() {
    Guarded("cLyricFile.ClearCache", [&] { cache_->ClearCache(); });
}

bool cLyricFile::LoadFromLyric(const std::shared_ptr<cMusic>& track) {
    return Guarded("cLyricFile.LoadFromLyric", false, [&] {
        // A track without a file (a stream) has nothing beside it.
        if (!track || track->FileAddress().empty()) return false;
        // A file that cannot be read (a folder of that name, no permission)
        // counts as missing, so that the lookup goes on to the next source.
        const auto usable = [](const std::u16string& path) {
            if (!FileExists(path)) return false;
            const std::filesystem::path file(path);
            std::error_code error;
            return std::filesystem::is_regular_file(file, error) &&
                   std::ifstream(file, std::ios::binary).is_open();
        };
        for (const std::u16string& path :
             {GetTovalAddress(track->FileAddress()), GetLyricAddress(track->FileAddress())}) {
            if (!usable(path)) continue;
            // A file that is no text (a picture or an audio file under a
            // lyric's name) is no lyric either: the lookup goes on as if it
            // were missing.
            std::u16string text = FileRead(path);
            if (!IsText(text)) {
                ErrorTrail({"cLyricFile.LoadFromLyric", "not a text file"});
                continue;
            }
            lyric_ = std::move(text);
            return true;
        }
        return false;
    });
}

bool cLyricFile::LoadFromCache(const std::shared_ptr<cMusic>& track) {
    return Guarded("cLyricFile.LoadFromCache", false, [&] {
        if (!track) return false;
        lyric_ = cache_->GetLyric(track);
        if (lyric_.empty()) return false;
        if (!globals_.Settings.cache_simple) SaveOnCache(track, lyric_, false);
        return true;
    });
}

void cLyricFile::SaveOnCache(const std::shared_ptr<cMusic>& track, const std::u16string& text,
                             bool fallbackToCache) {
    Guarded("cLyricFile.SaveOnCache", [&] {
        if (!track) return;
        if (globals_.Settings.cache_simple) {
            cache_->SetLyric(track, text);
            return;
        }
        const bool saved = !track->FileAddress().empty() &&
                           FileSaveUTF8(GetTovalAddress(track->FileAddress()), text);
        if (saved || !fallbackToCache) return;
        cache_->SetLyric(track, text);
    });
}

std::u16string cLyricFile::WaitingText(const cMusic& track) {
    std::u16string text = track.MusicTitle() + u"\r\n\r\n";
    for (char16_t& c : text) {
        if (c == u'[' || c == u'<') c = u'(';
        if (c == u']' || c == u'>') c = u')';
    }
    return text;
}

void cLyricFile::tvs_Site_Toval(int32_t result, int32_t id) {
    Guarded("cLyricFile.tvs_Site_Toval", [&] {
        // An answer for a track that no longer plays is dropped.
        if (id != globals_.PlaylistPosition) return;
        if (result == cTovalSite::kLyric) {
            lyric_ = site_.Lyric();
            SaveOnCache(music_, lyric_, true);
            Raise(id, kLyricFromService);
        } else if (result == cTovalSite::kNotFound && site_.Mode() == 0) {
            // Only a plain lookup ends in "not found"; when the service has
            // nothing newer than the lyric at hand (LoadFrom), that lyric stays.
            lyric_ += u"(" + NotFoundText() + u")";
            Raise(id, kLyricNotFound);
        }
    });
}

void cLyricFile::Raise(int32_t requestId, int32_t status) {
    const auto handler = onLoaded;
    if (handler) handler(requestId, status);
}

std::u16string cLyricFile::NotFoundText() {
    return config_ ? config_->Language().MessageText(u"TovalNotFound") : std::u16string();
}

}  // namespace toval
