#include "cMprisTrack.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <limits>

#include "core/cPlugin.h"

namespace toval {

namespace {

// A player's position in milliseconds; a negative one counts as the start.
double PositionMs(int64_t positionUs) {
    return positionUs > 0 ? static_cast<double>(positionUs) / 1000.0 : 0.0;
}

std::string Utf8(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    return std::string(bytes.constData(), static_cast<size_t>(bytes.size()));
}

std::string TextOf(const QVariant& value) {
    if (value.typeId() == QMetaType::QString) return Utf8(value.toString());
    return {};
}

// A list of texts; a single text is taken too (some players send one).
std::string JoinedTexts(const QVariant& value) {
    if (value.typeId() == QMetaType::QString) return Utf8(value.toString());
    QStringList list;
    if (value.typeId() == QMetaType::QStringList) {
        list = value.toStringList();
    } else if (value.typeId() == qMetaTypeId<QDBusArgument>()) {
        const QDBusArgument argument = value.value<QDBusArgument>();
        if (argument.currentSignature() != QLatin1String("as")) return {};
        argument >> list;
    } else {
        return {};
    }
    return Utf8(list.join(QStringLiteral(", ")));
}

int64_t MicrosecondsOf(const QVariant& value) {
    switch (value.typeId()) {
        case QMetaType::LongLong:
        case QMetaType::Int:
            return std::max<int64_t>(value.toLongLong(), -1);
        case QMetaType::ULongLong:
        case QMetaType::UInt: {
            const qulonglong v = value.toULongLong();
            return v > static_cast<qulonglong>(std::numeric_limits<int64_t>::max())
                       ? std::numeric_limits<int64_t>::max()
                       : static_cast<int64_t>(v);
        }
        case QMetaType::Double: {
            const double v = value.toDouble();
            if (!(v >= 0) || v >= 9.2e18) return -1;
            return static_cast<int64_t>(v);
        }
        default:
            return -1;
    }
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The longest start of text of at most width bytes that does not end inside
// a UTF-8 sequence.
std::string_view CutUtf8(std::string_view text, size_t width) {
    if (text.size() <= width) return text;
    size_t end = width;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end);
}

void PutField(std::string& record, size_t offset, size_t width, std::string_view text) {
    const std::string_view cut = CutUtf8(text, width);
    std::copy(cut.begin(), cut.end(), record.begin() + static_cast<std::ptrdiff_t>(offset));
}

}  // namespace

cMprisMetadata MetadataFromMap(const QVariantMap& map) {
    cMprisMetadata m;
    const QVariant id = map.value(QStringLiteral("mpris:trackid"));
    if (id.typeId() == qMetaTypeId<QDBusObjectPath>())
        m.trackId = Utf8(id.value<QDBusObjectPath>().path());
    else
        m.trackId = TextOf(id);
    m.url = TextOf(map.value(QStringLiteral("xesam:url")));
    m.artist = JoinedTexts(map.value(QStringLiteral("xesam:artist")));
    m.album = TextOf(map.value(QStringLiteral("xesam:album")));
    m.title = TextOf(map.value(QStringLiteral("xesam:title")));
    m.lengthUs = MicrosecondsOf(map.value(QStringLiteral("mpris:length")));
    return m;
}

std::string LocalPathOfUrl(std::string_view url) {
    constexpr std::string_view scheme = "file://";
    if (url.size() < scheme.size()) return {};
    for (size_t i = 0; i < scheme.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(url[i])) != scheme[i]) return {};
    std::string_view rest = url.substr(scheme.size());
    const size_t slash = rest.find('/');
    if (slash == std::string_view::npos) return {};
    const std::string_view host = rest.substr(0, slash);
    if (!host.empty() && host != "localhost") return {};
    rest = rest.substr(slash);
    std::string path;
    path.reserve(rest.size());
    for (size_t i = 0; i < rest.size(); ++i) {
        if (rest[i] == '%' && i + 2 < rest.size() && HexDigit(rest[i + 1]) >= 0 &&
            HexDigit(rest[i + 2]) >= 0) {
            path.push_back(static_cast<char>(HexDigit(rest[i + 1]) * 16 + HexDigit(rest[i + 2])));
            i += 2;
        } else if (rest[i] == '?' || rest[i] == '#') {
            break;
        } else {
            path.push_back(rest[i]);
        }
    }
    return path;
}

std::string TagRecord(const cMprisMetadata& track) {
    std::string record(kTagRecordSize, '\0');
    const std::string path = LocalPathOfUrl(track.url);
    if (path.size() <= kTagPathSize && path.find('\0') == std::string::npos)
        PutField(record, kTagPathOffset, kTagPathSize, path);
    PutField(record, kTagArtistOffset, kTagArtistSize, track.artist);
    PutField(record, kTagAlbumOffset, kTagAlbumSize, track.album);
    PutField(record, kTagTitleOffset, kTagTitleSize, track.title);
    const int64_t ms = track.lengthUs < 0 ? 0 : std::min<int64_t>(track.lengthUs / 1000, INT32_MAX);
    const uint32_t length = static_cast<uint32_t>(ms);
    for (size_t k = 0; k < 4; ++k)
        record[kTagLengthOffset + k] = static_cast<char>((length >> (8 * k)) & 0xFFu);
    return record;
}

double cPositionClock::Extrapolated(int64_t nowMs) const {
    if (!playing_) return anchorMs_;
    // A clock reading older than the anchor (it cannot go back) counts as none.
    const double elapsed = nowMs > anchorTime_ ? static_cast<double>(nowMs - anchorTime_) : 0.0;
    return anchorMs_ + elapsed * rate_;
}

void cPositionClock::Read(int64_t positionUs, int64_t nowMs) {
    anchorMs_ = PositionMs(positionUs);
    anchorTime_ = nowMs;
}

void cPositionClock::Hunt() {
    hunting_ = true;
    huntFrom_.reset();
}

void cPositionClock::Reading(int64_t positionUs, int64_t nowMs) {
    if (hunting_ && !huntFrom_)
        huntFrom_ = positionUs;
    else if (hunting_ && positionUs != *huntFrom_)
        hunting_ = false;
    const double reading = PositionMs(positionUs);
    const double clock = Extrapolated(nowMs);
    if (!playing_ || reading > clock || reading < clock - kLagMs) Read(positionUs, nowMs);
}

bool cPositionClock::Jumped(int64_t positionUs, int64_t nowMs) {
    const double reading = PositionMs(positionUs);
    if (std::abs(reading - Extrapolated(nowMs)) <= kLagMs) return false;
    Read(positionUs, nowMs);
    return true;
}

void cPositionClock::setPlaying(bool playing, int64_t nowMs) {
    anchorMs_ = Extrapolated(nowMs);
    anchorTime_ = nowMs;
    playing_ = playing;
}

void cPositionClock::setRate(double rate, int64_t nowMs) {
    anchorMs_ = Extrapolated(nowMs);
    anchorTime_ = nowMs;
    rate_ = std::isfinite(rate) && rate > 0 && rate < 1000 ? rate : 1.0;
}

int32_t cPositionClock::At(int64_t nowMs) const {
    const double ms = std::floor(Extrapolated(nowMs));
    if (!(ms > 0)) return 0;
    if (ms >= static_cast<double>(INT32_MAX)) return INT32_MAX;
    return static_cast<int32_t>(ms);
}

int64_t cPositionClock::Until(int32_t positionMs, int64_t nowMs) const {
    const double now = Extrapolated(nowMs);
    if (positionMs <= now) return 0;
    if (!playing_) return -1;
    const double wait = std::ceil((positionMs - now) / rate_);
    return wait > 9.0e15 ? -1 : static_cast<int64_t>(wait);
}

}  // namespace toval
