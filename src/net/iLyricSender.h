// What the editor needs of the lyrics service to send a lyric: one request,
// answered once through onToval with the service's result code (1 accepted,
// 2 database failure, anything else a failure). The program adapts cTovalSite
// to it; tests script the answer.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace toval {

class cLyric;
class cMusic;

class iLyricSender {
  public:
    virtual ~iLyricSender() = default;

    // Sends the lyric made for the track; the answer comes through onToval
    // (possibly before Save returns).
    virtual void Save(const cMusic& music, const std::shared_ptr<cLyric>& lyric, int32_t id) = 0;

    std::function<void(int32_t result, int32_t id)> onToval;
};

}  // namespace toval
