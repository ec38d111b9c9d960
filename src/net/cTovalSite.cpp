#include "net/cTovalSite.h"

#include "lyric/mNumber.h"

namespace toval {

namespace {

constexpr std::string_view kEnvelopeOpen = "<TOVAL>";
constexpr std::string_view kEnvelopeClose = "</TOVAL>";
constexpr std::string_view kVersionOpen = "<LLV>";
constexpr std::string_view kVersionClose = "</LLV>";
constexpr std::string_view kUpdateServer = ":UPDATESERVER:";

// The text between the first open marker and the first close marker behind it.
bool Between(std::string_view data, std::string_view open, std::string_view close,
             std::string_view& inner) {
    const size_t start = data.find(open);
    if (start == std::string_view::npos) return false;
    const size_t from = start + open.size();
    const size_t end = data.find(close, from);
    if (end == std::string_view::npos) return false;
    inner = data.substr(from, end - from);
    return true;
}

}  // namespace

std::string_view cTovalSite::Envelope(std::string_view data) {
    std::string_view body;
    return Between(data, kEnvelopeOpen, kEnvelopeClose, body) ? body : std::string_view();
}

bool cTovalSite::AnnouncedVersion(std::string_view data, int32_t& version) {
    std::string_view text;
    if (!Between(data, kVersionOpen, kVersionClose, text)) return false;
    double number = 0;
    if (!ParseNumber(text, number)) return false;
    return ToInt32(number, version);
}

cTovalSite::Answer cTovalSite::ReadAnswer(std::string_view data) {
    Answer answer;
    answer.hasVersion = AnnouncedVersion(data, answer.version);
    const std::string_view body = Envelope(data);
    answer.body.assign(body);
    if (body.empty()) {
        answer.result = kFailure;
    } else if (body.front() != ':') {
        answer.result = kLyric;
    } else if (body == ":SUCCESS") {
        answer.result = kSuccess;
    } else if (body == ":SQL_CONNECTION_ERROR" || body == ":SQL_ERROR") {
        answer.result = kSqlError;
    } else if (body == ":NOUPDATES") {
        answer.result = kNoUpdates;
    } else if (body == ":NOTFOUND") {
        answer.result = kNotFound;
    } else if (body.starts_with(kUpdateServer) && body.size() > kUpdateServer.size()) {
        answer.result = kNotFound;
        answer.newServer.assign(body.substr(kUpdateServer.size()));
    } else {
        answer.result = kFailure;
    }
    return answer;
}

}  // namespace toval
