// The lyric lookup of the playing track: a .tvl file beside the track, an .lrc
// file beside it, the program's cache, and last the lyrics service. The
// outcome comes by onLoaded(requestId, status); a service answer comes later
// through the same event and is dropped when the track is no longer current
// (its request identifier differs from cGlobals::PlaylistPosition).
//
// The service's "nothing" (result 4: not found, or moved to another server)
// means "not found" only for a plain lookup (request mode 0). For LoadFrom,
// the question for a newer version of the lyric at hand, it changes nothing.
//
// Found lyrics are kept: with the simple-cache setting on in the cache only,
// otherwise as a .tvl file beside the track, and in the cache when that file
// cannot be written (read-only folders, network shares).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "config/cSettings.h"
#include "core/iLyricSource.h"
#include "net/cCache.h"
#include "net/cTovalSite.h"
#include "platform/Random.h"
#include "platform/Shell.h"
#include "platform/Socket.h"
#include "platform/Timer.h"

namespace toval {

class cConfig;
class cMusic;

class cLyricFile : public iLyricSource {
  public:
    // The cache in the per-user local data folder. config: the language (the
    // not-found text) and the settings saved when the service moves; may be null.
    cLyricFile(cGlobals& globals, Shell& shell, Random& random, cConfig* config = nullptr);
    // The same with a cache of the caller's choosing (tests, the command-line tool).
    cLyricFile(cGlobals& globals, std::unique_ptr<cCache> cache, cConfig* config = nullptr);
    cLyricFile(const cLyricFile&) = delete;
    cLyricFile& operator=(const cLyricFile&) = delete;

    // The track the player link reports as playing (shared with it).
    std::shared_ptr<cMusic> Music() const { return music_; }
    void setMusic(std::shared_ptr<cMusic> music) { music_ = std::move(music); }

    // The controls of the service's HTTP client.
    void setSocket(std::shared_ptr<Socket> socket) { site_.setSocket(std::move(socket)); }
    void setTime(std::shared_ptr<Timer> timer) { site_.setTime(std::move(timer)); }

    // Looks the current track up and raises onLoaded: 0 (simple cache on) or 1
    // for a file beside the track, 1 for the cache, 4 while the service is
    // asked; the service's answer follows as 2 (a lyric) or 3 (none).
    void Load(int32_t requestId) override;
    // With source 2 asks the service again for the current track, passing the
    // Mutation of the lyric at hand; other sources do nothing.
    void LoadFrom(int32_t source, int32_t requestId, int32_t mutation) override;
    std::u16string Lyric() const override { return lyric_; }
    void ClearCache() override;

    // The lyric file beside the track (tvl before lrc) into Lyric; false when
    // there is none.
    bool LoadFromLyric(const std::shared_ptr<cMusic>& track);
    // The cache entry of the track into Lyric (and, unless the simple cache is
    // on, out to a tvl file beside the track); false when there is none.
    bool LoadFromCache(const std::shared_ptr<cMusic>& track);
    // Keeps a found lyric: in the cache (simple cache on), else as the tvl file
    // beside the track, falling back to the cache when allowed and that fails.
    void SaveOnCache(const std::shared_ptr<cMusic>& track, const std::u16string& text,
                     bool fallbackToCache);

    // The text shown while the service is asked: the track's display title
    // and two CR LF, its brackets turned into parentheses so that it can never
    // read as time tags.
    static std::u16string WaitingText(const cMusic& track);

    // Handler of the service's answer.
    void tvs_Site_Toval(int32_t result, int32_t id);

    cCache& Cache() { return *cache_; }
    cTovalSite& Site() { return site_; }

  private:
    void Raise(int32_t requestId, int32_t status);
    std::u16string NotFoundText();

    cGlobals& globals_;
    cConfig* config_;
    std::unique_ptr<cCache> cache_;
    cTovalSite site_;
    std::shared_ptr<cMusic> music_;
    std::u16string lyric_;
};

}  // namespace toval
