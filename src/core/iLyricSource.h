// What the controller needs of the lyric lookup: look the current track up,
// ask the service again for a newer version, the text found, and the answer
// as an event. cLyricFile serves it in the program; tests script it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace toval {

// Outcome of a lookup, as carried by onLoaded.
enum LyricStatus : int32_t {
    kLyricLocalSimple = 0,  // beside the track or in the cache (simple cache on)
    kLyricLocal = 1,        // beside the track or in the cache
    kLyricFromService = 2,
    kLyricNotFound = 3,
    kLyricWaiting = 4,  // asked the service; a later answer follows
};

// The source value of LoadFrom that asks the service.
inline constexpr int32_t kSourceService = 2;

class iLyricSource {
  public:
    virtual ~iLyricSource() = default;

    // Looks the playing track up; raises onLoaded (possibly more than once).
    virtual void Load(int32_t requestId) = 0;
    // With source 2, asks the service for a version newer than mutation.
    virtual void LoadFrom(int32_t source, int32_t requestId, int32_t mutation) = 0;
    // The text found by the last lookup.
    virtual std::u16string Lyric() const = 0;
    virtual void ClearCache() = 0;

    std::function<void(int32_t requestId, int32_t status)> onLoaded;
};

}  // namespace toval
