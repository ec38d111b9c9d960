// The player link on Linux: the plug-in's side of the wire, answered from the
// MPRIS2 players on the session bus. The bridge follows the player that plays
// (or only players of one name), answers position, track identity, alive,
// wake-up and the length unit (milliseconds), sends the tag record when the
// track changes and notice 1 when playback stops or the player goes away;
// Toval then waits for the next player. Every D-Bus call is asynchronous, so a
// slow or broken player never stalls the program; the position is read now
// and then and extrapolated in between.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "cMprisTrack.h"
#include "platform/PluginChannel.h"

namespace toval {

// The handles the bridge stands in with: a plug-in window that always exists.
inline constexpr int32_t kBridgeWindow = 1;
inline constexpr int32_t kBridgeHandler = 2;
// Readings of the position while playing, this far apart. A reading goes
// with a tick of the core: the first tick after kPositionReadMs, or an earlier
// one (after kPositionReadEarlyMs) when the core then sleeps past
// kPositionReadLateMs. Without a tick, the reading comes by itself after
// kPositionReadLateMs.
inline constexpr int32_t kPositionReadMs = 1000;
inline constexpr int32_t kPositionReadEarlyMs = 600;
inline constexpr int32_t kPositionReadLateMs = 1500;
// The answer to a reading wakes nothing when the player answered the last
// reading waited for within kQuickAnswerMs: the next tick of the core, or
// the next reading, takes it. Since when the player answered is then not
// known, such an answer counts only when it shows a jump the player did not
// announce. The hunt below waits for its answers, and so does every tenth
// reading: they keep the clock at the front of the player's reports, and
// tell a player that grew slow.
inline constexpr int32_t kQuickAnswerMs = 10;
inline constexpr int32_t kUnwaitedReadings = 9;
// After a new track, a seek or play, readings come this often while the
// clock hunts for the front of the player's reports, this many at most.
inline constexpr int32_t kHuntReadMs = 20;
inline constexpr int32_t kHuntReadings = 20;
// A player's answer later than this counts as none.
inline constexpr int32_t kCallTimeoutMs = 1000;

class cMprisBridge : public QObject, public PluginChannel {
    Q_OBJECT

  public:
    // player: follow only the players of this name ("mpv" follows
    // org.mpris.MediaPlayer2.mpv and org.mpris.MediaPlayer2.mpv.*); empty: any.
    cMprisBridge(QDBusConnection bus, QString player, QObject* parent = nullptr);
    ~cMprisBridge() override;

    int32_t SendCommand(int32_t window, int32_t command, int32_t argument) override;
    int32_t FindPluginWindow() override { return kBridgeWindow; }
    void InstallHook() override { hooked_ = true; }
    void RemoveHook() override { hooked_ = false; }
    int32_t HandlerWindow() override { return kBridgeHandler; }
    void AllowUserMessages() override {}

    // The bus name of the followed player; empty when none.
    QString Followed() const { return followed_; }
    // The followed player's position, as the core sees it.
    const cPositionClock& Position() const { return clock_; }
    // Milliseconds until the followed player reaches positionMs (as
    // cPositionClock::Until), for the core to sleep that long. A reading
    // that would fall due while the core sleeps goes now, with this tick.
    int64_t Until(int32_t positionMs);
    // Raised after anything that may move the position (a reading, a seek,
    // play, pause, rate): a sleeping poll should look again.
    std::function<void()> onPositionChanged;

    // The monotonic clock in milliseconds (tests replace it through nowMs).
    int64_t Now() const;
    std::function<int64_t()> nowMs;

  private slots:
    void NameOwnerChanged(const QString& name, const QString& oldOwner, const QString& newOwner);
    void PropertiesChanged(const QDBusMessage& message);
    void Seeked(const QDBusMessage& message);

  private:
    struct Player {
        QString owner;       // unique name
        bool known = false;  // its properties have been read
        QString status;      // PlaybackStatus
        double rate = 1.0;
        cMprisMetadata track;
    };

    bool Accepts(const QString& name) const;
    void AddPlayer(const QString& name, const QString& owner);
    void RemovePlayer(const QString& name);
    void ReadProperties(const QString& name);
    // Takes a property map of the Player interface into the player's record.
    void TakeProperties(const QString& name, const QVariantMap& properties);
    QString NameOfOwner(const QString& owner) const;
    // Chooses the player to follow and tells the core what changed.
    void Follow();
    // Tells the core the followed player's track, when it is new to it.
    void Announce(bool force);
    void Stopped();
    void ReadPosition();
    // Takes the answer to a reading not waited for, if it came; true when it
    // showed a jump, after which a hunt has begun.
    bool TakeUnwaited();
    void StartHunt();
    void EndHunt();
    void Deliver(uint32_t message, int64_t lParam, const std::string& data);

    QDBusConnection bus_;
    QString filter_;
    std::map<QString, Player> players_;  // by well-known name
    QString followed_;
    bool hooked_ = false;
    // The track the core was last told of, and its identity for the core.
    bool announced_ = false;
    cMprisMetadata announcedTrack_;
    int32_t serial_ = 0;
    cPositionClock clock_;
    QTimer readTimer_;
    int32_t hunt_ = 0;          // quick readings left
    int64_t lastRead_ = 0;      // when the last reading was asked for (Now)
    int32_t unwaitedLeft_ = 0;  // readings not to wait for until the next one waited for
    struct Unwaited {
        QDBusPendingCall call;
        QString asked;  // the player asked
        int64_t sent;
    };
    std::optional<Unwaited> unwaited_;
};

}  // namespace toval
