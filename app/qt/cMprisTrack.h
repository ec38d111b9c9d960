// What the MPRIS bridge makes of a player's properties, apart from D-Bus: the
// track's fields from its metadata, the 3596-byte tag record the plug-in link
// reads, and the play position between two readings of the player.
#pragma once

#include <QVariantMap>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace toval {

// One track as a player describes it. Texts are UTF-8; a field the player
// left out or sent with a wrong type is empty.
struct cMprisMetadata {
    std::string trackId;
    std::string url;
    std::string artist;
    std::string album;
    std::string title;
    int64_t lengthUs = -1;  // -1: unknown
    friend bool operator==(const cMprisMetadata&, const cMprisMetadata&) = default;
};

// Reads "mpris:trackid", "xesam:url", "xesam:artist" (a list, joined by
// ", "), "xesam:album", "xesam:title" and "mpris:length" (microseconds).
cMprisMetadata MetadataFromMap(const QVariantMap& map);

// The local path of a file:// URL (empty or "localhost" host), with its
// percent-escapes decoded; empty for any other URL.
std::string LocalPathOfUrl(std::string_view url);

// The tag record of a track: path, artist, album and title as zero-padded
// UTF-8 fields (cut at a character boundary when too long; a path that does
// not fit is left out, since a shortened path names another file), and the
// length in milliseconds (0 when unknown).
std::string TagRecord(const cMprisMetadata& track);

// The play position between readings: the last reading moved on by the time
// that passed on a monotonic clock, times the rate, while playing.
class cPositionClock {
  public:
    // How far a reading may lag behind the clock before it counts as a jump.
    static constexpr double kLagMs = 750.0;

    // A reading of the player's position at the time nowMs, taken as it is
    // (a new track, a seek, a paused player).
    void Read(int64_t positionUs, int64_t nowMs);
    // A reading while playing. Players report the position in steps (mpv's
    // lags up to half a second behind, then catches up): a reading ahead of
    // the clock is taken, one a little behind it is the player's lag and is
    // left, one far behind is a jump the player did not announce.
    void Reading(int64_t positionUs, int64_t nowMs);
    // A reading whose time is known only roughly (to within tens of ms):
    // taken as it is when it is a jump, more than kLagMs off the clock either
    // way, and left otherwise. True when it was a jump.
    bool Jumped(int64_t positionUs, int64_t nowMs);
    // Players report the position in steps (mpv's every 50 to 300 ms) and
    // stand still in between, so a single reading lags by up to a step. After
    // a new track, a seek or play, the bridge reads quickly while the clock
    // hunts: until a reading differs from the first one of the hunt. That
    // reading was taken just after a step, at the front of the reports.
    void Hunt();
    bool Hunting() const { return hunting_; }
    // Playing or not from nowMs on (the position stands still when not).
    void setPlaying(bool playing, int64_t nowMs);
    // The playback rate from nowMs on; a rate that is not a positive number
    // counts as 1.
    void setRate(double rate, int64_t nowMs);
    bool Playing() const { return playing_; }
    double Rate() const { return rate_; }

    // The position in milliseconds at nowMs, within 0 .. INT32_MAX.
    int32_t At(int64_t nowMs) const;
    // Milliseconds from nowMs until the position reaches positionMs: 0 when
    // it is there already, -1 when it never will (paused).
    int64_t Until(int32_t positionMs, int64_t nowMs) const;

  private:
    double Extrapolated(int64_t nowMs) const;

    double anchorMs_ = 0;
    int64_t anchorTime_ = 0;
    double rate_ = 1.0;
    bool playing_ = false;
    bool hunting_ = false;
    std::optional<int64_t> huntFrom_;  // the hunt's first reading, once it came
};

}  // namespace toval
