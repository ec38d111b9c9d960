#include "cMprisBridge.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <chrono>
#include <optional>
#include <utility>

#include "core/cPlugin.h"

namespace toval {

namespace {

const QString kPrefix = QStringLiteral("org.mpris.MediaPlayer2.");
const QString kPath = QStringLiteral("/org/mpris/MediaPlayer2");
const QString kPlayerInterface = QStringLiteral("org.mpris.MediaPlayer2.Player");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");

// The map inside a variant, whatever way D-Bus delivered it; empty when the
// value is no a{sv}.
QVariantMap MapOf(const QVariant& value) {
    if (value.typeId() == QMetaType::QVariantMap) return value.toMap();
    if (value.typeId() != qMetaTypeId<QDBusArgument>()) return {};
    const QDBusArgument argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("a{sv}")) return {};
    QVariantMap map;
    argument >> map;
    return map;
}

QVariant Unwrapped(const QVariant& value) {
    if (value.typeId() == qMetaTypeId<QDBusVariant>()) return value.value<QDBusVariant>().variant();
    return value;
}

// The position in an answer to a reading, in microseconds; none for an error
// or a value of the wrong type.
std::optional<int64_t> PositionOf(const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) return {};
    const QVariant value = Unwrapped(reply.arguments().constFirst());
    if (value.typeId() != QMetaType::LongLong && value.typeId() != QMetaType::Int) return {};
    return value.toLongLong();
}

}  // namespace

cMprisBridge::cMprisBridge(QDBusConnection bus, QString player, QObject* parent)
    : QObject(parent), bus_(std::move(bus)), filter_(std::move(player)) {
    readTimer_.setInterval(kPositionReadLateMs);
    connect(&readTimer_, &QTimer::timeout, this, [this] {
        if (TakeUnwaited()) {
            // A jump: the hunt has begun, with its first reading.
            if (onPositionChanged) onPositionChanged();
            return;
        }
        if (hunt_ > 0 && --hunt_ == 0) EndHunt();
        ReadPosition();
    });
    if (!bus_.isConnected()) return;
    bus_.connect(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                 QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameOwnerChanged"), this,
                 SLOT(NameOwnerChanged(QString, QString, QString)));
    // Any sender: the signals come from unique names, matched to players below.
    bus_.connect(QString(), kPath, kProperties, QStringLiteral("PropertiesChanged"), this,
                 SLOT(PropertiesChanged(QDBusMessage)));
    bus_.connect(QString(), kPath, kPlayerInterface, QStringLiteral("Seeked"), this,
                 SLOT(Seeked(QDBusMessage)));
    // The players already there.
    QDBusMessage list = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ListNames"));
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(list, kCallTimeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* w) {
        w->deleteLater();
        const QDBusPendingReply<QStringList> reply = *w;
        if (reply.isError()) return;
        for (const QString& name : reply.value())
            if (name.startsWith(kPrefix) && Accepts(name)) AddPlayer(name, QString());
    });
}

cMprisBridge::~cMprisBridge() = default;

int64_t cMprisBridge::Now() const {
    if (nowMs) return nowMs();
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

bool cMprisBridge::Accepts(const QString& name) const {
    if (filter_.isEmpty()) return true;
    const QString own = kPrefix + filter_;
    return name == own || name.startsWith(own + QLatin1Char('.'));
}

void cMprisBridge::AddPlayer(const QString& name, const QString& owner) {
    Player& player = players_[name];
    player.owner = owner;
    if (owner.isEmpty()) {
        // The unique name behind it, asked without waiting.
        QDBusMessage ask = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
        ask << name;
        auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(ask, kCallTimeoutMs), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this,
                [this, name](QDBusPendingCallWatcher* w) {
                    w->deleteLater();
                    const QDBusPendingReply<QString> reply = *w;
                    const auto it = players_.find(name);
                    if (reply.isError() || it == players_.end()) return;
                    it->second.owner = reply.value();
                });
    }
    ReadProperties(name);
}

void cMprisBridge::RemovePlayer(const QString& name) {
    if (players_.erase(name) == 0) return;
    if (name == followed_) {
        followed_.clear();
        readTimer_.stop();
        Stopped();
    }
    Follow();
}

void cMprisBridge::ReadProperties(const QString& name) {
    QDBusMessage get =
        QDBusMessage::createMethodCall(name, kPath, kProperties, QStringLiteral("GetAll"));
    get << kPlayerInterface;
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(get, kCallTimeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, name](QDBusPendingCallWatcher* w) {
                w->deleteLater();
                const QDBusMessage reply = w->reply();
                const auto it = players_.find(name);
                if (it == players_.end()) return;
                QVariantMap properties;
                if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty())
                    properties = MapOf(reply.arguments().constFirst());
                it->second.known = true;
                TakeProperties(name, properties);
            });
}

QString cMprisBridge::NameOfOwner(const QString& owner) const {
    for (const auto& [name, player] : players_)
        if (player.owner == owner || name == owner) return name;
    return {};
}

void cMprisBridge::TakeProperties(const QString& name, const QVariantMap& properties) {
    const auto it = players_.find(name);
    if (it == players_.end()) return;
    Player& player = it->second;
    const bool isFollowed = name == followed_;
    const int64_t now = Now();
    bool moved = false;
    if (properties.contains(QStringLiteral("PlaybackStatus"))) {
        const QVariant status = Unwrapped(properties.value(QStringLiteral("PlaybackStatus")));
        if (status.typeId() == QMetaType::QString) {
            player.status = status.toString();
            moved = true;
        }
    }
    if (properties.contains(QStringLiteral("Rate"))) {
        const QVariant rate = Unwrapped(properties.value(QStringLiteral("Rate")));
        if (rate.typeId() == QMetaType::Double) {
            player.rate = rate.toDouble();
            moved = true;
        }
    }
    if (properties.contains(QStringLiteral("Metadata")))
        player.track =
            MetadataFromMap(MapOf(Unwrapped(properties.value(QStringLiteral("Metadata")))));

    if (!isFollowed) {
        Follow();
        return;
    }
    if (moved) {
        clock_.setRate(player.rate, now);
        clock_.setPlaying(player.status == QLatin1String("Playing"), now);
    }
    if (player.status == QLatin1String("Stopped")) {
        readTimer_.stop();
        Stopped();
    } else {
        Announce(false);
    }
    if (moved) {
        StartHunt();
        ReadPosition();
    }
    Follow();
}

void cMprisBridge::Follow() {
    const auto playing = [&](const QString& name) {
        const auto it = players_.find(name);
        return it != players_.end() && it->second.known &&
               it->second.status == QLatin1String("Playing");
    };
    if (!followed_.isEmpty() && playing(followed_)) return;
    QString next;
    for (const auto& [name, player] : players_)
        if (playing(name)) {
            next = name;
            break;
        }
    if (next.isEmpty()) {
        if (!followed_.isEmpty()) return;  // a paused or stopped player stays followed
        for (const auto& [name, player] : players_)
            if (player.known) {
                next = name;
                break;
            }
        if (next.isEmpty()) return;
    }
    if (next == followed_) return;
    followed_ = next;
    const Player& player = players_[next];
    const int64_t now = Now();
    clock_ = cPositionClock();
    clock_.setRate(player.rate, now);
    clock_.setPlaying(player.status == QLatin1String("Playing"), now);
    if (player.status == QLatin1String("Stopped"))
        Stopped();
    else
        Announce(true);
    ReadPosition();
}

void cMprisBridge::Announce(bool force) {
    const auto it = players_.find(followed_);
    if (it == players_.end() || it->second.status == QLatin1String("Stopped")) return;
    const cMprisMetadata& track = it->second.track;
    if (!force && announced_ && track == announcedTrack_) return;
    if (track == cMprisMetadata{}) return;  // nothing known yet: wait for the metadata
    announced_ = true;
    announcedTrack_ = track;
    // A new identity for every track, so that a late lyric of the last one is dropped.
    serial_ = serial_ == INT32_MAX ? 1 : serial_ + 1;
    clock_.Read(0, Now());
    Deliver(kWmCopyData, 0, TagRecord(track));
    StartHunt();
    ReadPosition();
}

void cMprisBridge::Stopped() {
    if (!announced_) return;
    announced_ = false;
    announcedTrack_ = {};
    clock_ = cPositionClock();
    unwaited_.reset();
    Deliver(kWmUser, 1, {});
}

void cMprisBridge::Deliver(uint32_t message, int64_t lParam, const std::string& data) {
    if (!hooked_ || !onMessage) return;
    int64_t result = 0;
    onMessage(message, 0, lParam, data, result);
}

void cMprisBridge::StartHunt() {
    // A reading taken before the clock was set anew would move it back.
    unwaited_.reset();
    hunt_ = kHuntReadings;
    clock_.Hunt();
    readTimer_.setInterval(kHuntReadMs);
}

void cMprisBridge::EndHunt() {
    hunt_ = 0;
    readTimer_.setInterval(kPositionReadLateMs);
}

void cMprisBridge::ReadPosition() {
    const auto it = players_.find(followed_);
    if (it == players_.end()) return;
    if (it->second.status == QLatin1String("Playing")) {
        readTimer_.start();  // the next reading counts from this one
    } else {
        readTimer_.stop();
    }
    QDBusMessage get =
        QDBusMessage::createMethodCall(followed_, kPath, kProperties, QStringLiteral("Get"));
    get << kPlayerInterface << QStringLiteral("Position");
    const QString asked = followed_;
    const int64_t sent = Now();
    lastRead_ = sent;
    const QDBusPendingCall call = bus_.asyncCall(get, kCallTimeoutMs);
    if (hunt_ == 0 && unwaitedLeft_ > 0) {
        --unwaitedLeft_;
        unwaited_ = Unwaited{call, asked, sent};
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(call, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, asked, sent](QDBusPendingCallWatcher* w) {
                w->deleteLater();
                if (asked != followed_) return;
                const int64_t now = Now();
                unwaitedLeft_ = now - sent <= kQuickAnswerMs ? kUnwaitedReadings : 0;
                // The player answered somewhere between sending and now: take the middle.
                if (const auto us = PositionOf(w->reply())) {
                    clock_.Reading(*us, sent + (now - sent) / 2);
                    if (hunt_ > 0 && !clock_.Hunting()) EndHunt();
                }
                if (onPositionChanged) onPositionChanged();
            });
}

bool cMprisBridge::TakeUnwaited() {
    if (!unwaited_ || !unwaited_->call.isFinished()) return false;
    const Unwaited reading = *std::exchange(unwaited_, std::nullopt);
    const auto us = PositionOf(reading.call.reply());
    if (reading.asked != followed_ || !us || !clock_.Jumped(*us, reading.sent)) return false;
    // The player moved without a word: find the front of its reports again.
    StartHunt();
    ReadPosition();
    return true;
}

int64_t cMprisBridge::Until(int32_t positionMs) {
    const int64_t now = Now();
    const int64_t wait = clock_.Until(positionMs, now);
    if (hunt_ == 0 && readTimer_.isActive()) {
        const int64_t since = now - lastRead_;
        const bool sleepsLong = wait < 0 || since + wait > kPositionReadLateMs;
        if (since >= kPositionReadMs || (since >= kPositionReadEarlyMs && sleepsLong))
            ReadPosition();
    }
    return wait;
}

int32_t cMprisBridge::SendCommand(int32_t window, int32_t command, int32_t /*argument*/) {
    if (window != kBridgeWindow) return 0;
    switch (command) {
        case kCmdRegister:
            // A plug-in sends the playing track once it knows where to: after the core woke up.
            QTimer::singleShot(0, this, [this] { Announce(true); });
            return 1;
        case kCmdPosition: {
            if (!announced_) return 0;
            TakeUnwaited();
            return clock_.At(Now());
        }
        case kCmdPlaylistPos:
            return serial_;
        case kCmdAlive:
            return 1;  // the bridge is there even without a player: Toval waits for one
        case kCmdLengthUnit:
            return 1;
        default:
            return 0;
    }
}

void cMprisBridge::NameOwnerChanged(const QString& name, const QString& /*oldOwner*/,
                                    const QString& newOwner) {
    if (!name.startsWith(kPrefix) || !Accepts(name)) return;
    if (newOwner.isEmpty())
        RemovePlayer(name);
    else
        AddPlayer(name, newOwner);
}

void cMprisBridge::PropertiesChanged(const QDBusMessage& message) {
    const QList<QVariant> args = message.arguments();
    if (args.size() < 2 || args[0].typeId() != QMetaType::QString ||
        args[0].toString() != kPlayerInterface)
        return;
    const QString name = NameOfOwner(message.service());
    if (name.isEmpty()) return;
    players_[name].known = true;
    TakeProperties(name, MapOf(args[1]));
}

void cMprisBridge::Seeked(const QDBusMessage& message) {
    const QList<QVariant> args = message.arguments();
    if (args.isEmpty() || NameOfOwner(message.service()) != followed_ || followed_.isEmpty())
        return;
    if (args[0].typeId() != QMetaType::LongLong) return;
    clock_.Read(args[0].toLongLong(), Now());
    StartHunt();
    if (onPositionChanged) onPositionChanged();
}

}  // namespace toval
