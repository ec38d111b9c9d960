#include "net/cTovalSite.h"

#include "base/cErrorLog.h"
#include "base/mNumber.h"
#include "base/mString.h"
#include "config/cConfig.h"
#include "lyric/cLyric.h"
#include "lyric/cMusic.h"

namespace toval {

namespace {

constexpr std::string_view kEnvelopeOpen = "<TOVAL>";
constexpr std::string_view kEnvelopeClose = "</TOVAL>";
constexpr std::string_view kVersionOpen = "<LLV>";
constexpr std::string_view kVersionClose = "</LLV>";
constexpr std::string_view kUpdateServer = ":UPDATESERVER:";

constexpr std::string_view kGetScript = "tvl_get_url.php";
constexpr std::string_view kInsertScript = "tvl_insert.php";

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

// A text value of a form, in full.
std::string FormText(const std::u16string& text) {
    return Strings().wstringTOutf8uhtml(text, 0);
}

// The values that every request starts with: art alb tit dur siz mut vrs.
std::string TrackParameters(const cMusic& music, int32_t mutation) {
    std::string p;
    p += "art=" + FormText(music.Artist());
    p += "&alb=" + FormText(music.Album());
    p += "&tit=" + FormText(music.Title());
    p += "&dur=" + DecimalBytes(music.Duration());
    p += "&siz=" + DecimalBytes(music.FileSize());
    p += "&mut=" + DecimalBytes(mutation);
    p += "&vrs=" + DecimalBytes(cTovalSite::kVersionNumber);
    return p;
}

// LRC writes a line's first time in hundredths and cannot write a negative one.
bool FitsLRC(const std::shared_ptr<cTime>& time) {
    return time && time->Time() >= 0 && time->Time() % 10 == 0;
}

}  // namespace

cTovalSite::cTovalSite(cGlobals& globals, cConfig* config)
    : globals_(globals), config_(config), inet_(globals) {
    inet_.onieEvent = [this](int16_t state) { iNet_ieEvent(state); };
}

void cTovalSite::Load(const cMusic& music, int32_t id, int32_t mode) {
    error_ = {};
    Guarded("cTovalSite.Load", [&] {
        mode_ = mode == kUnset ? 2 : (mode != 0 ? 1 : 0);
        const std::string url = ScriptURL(globals_.Settings.conn_Server, kGetScript) + "?" +
                                LoadParameters(music, mode);
        inet_.getPage(url, id);
    });
}

void cTovalSite::Save(const cMusic& music, const std::shared_ptr<cLyric>& lyric, int32_t id) {
    bool sent = false;
    error_ = {};
    Guarded("cTovalSite.Save", [&] {
        if (!lyric) return;
        const std::string url = ScriptURL(globals_.Settings.conn_Server, kInsertScript);
        const std::string body = SaveParameters(music, *lyric);
        sent = true;
        inet_.postData(url, id, body);
    });
    // Every request is answered once, even one that never left.
    if (!sent) {
        error_ = {cNetError::Category::kInternal, "there is no lyric to send"};
        ErrorTrail({"cTovalSite.Save", error_.message});
        Raise(kFailure, id);
    }
}

void cTovalSite::iNet_ieEvent(int16_t state) {
    int16_t result = kFailure;
    // The client has written the trail line of its own failures.
    error_ = inet_.Error();
    Guarded("cTovalSite.iNet_ieEvent", [&] {
        serverMoved_ = false;
        lyric_.clear();
        if (state != kInternetSuccess) return;
        const Answer answer = ReadAnswer(inet_.Data());
        error_ = answer.error;
        if (error_) ErrorTrail({"cTovalSite.iNet_ieEvent", error_.message});
        if (answer.hasVersion) globals_.lastUpdateVersion = answer.version;
        if (answer.result == kLyric) {
            const cStrings& strings = Strings();
            lyric_ = strings.htmlTOtext(strings.utf8TOwstring(answer.body));
        } else if (!answer.newServer.empty()) {
            globals_.Settings.conn_Server = Strings().utf8TOwstring(answer.newServer);
            serverMoved_ = true;
            if (config_) config_->Save(false);
        }
        result = answer.result;
    });
    if (result == kFailure && !error_) {
        error_ = {cNetError::Category::kInternal, "the service's answer could not be read"};
    }
    Raise(result, inet_.ID());
}

void cTovalSite::Raise(int16_t result, int32_t id) {
    // The handler may start the next request or drop this object.
    const auto handler = onToval;
    if (handler) Guarded("cTovalSite.Toval", [&] { handler(result, id); });
}

bool cTovalSite::AnnouncedVersion(std::string_view data, int32_t& version) {
    std::string_view text;
    if (!Between(data, kVersionOpen, kVersionClose, text)) return false;
    double number = 0;
    if (!ParseNumber(text, number)) return false;
    return ToInt32(number, version);
}

cTovalSite::Answer cTovalSite::ReadAnswer(std::string_view data) {
    using Category = cNetError::Category;
    Answer answer;
    answer.hasVersion = AnnouncedVersion(data, answer.version);
    std::string_view body;
    const bool enveloped = Between(data, kEnvelopeOpen, kEnvelopeClose, body);
    answer.body.assign(body);
    if (!enveloped) {
        answer.result = kFailure;
        answer.error = {Category::kBadAnswer, "the service's answer holds no <TOVAL> envelope"};
    } else if (body.empty()) {
        answer.result = kFailure;
        answer.error = {Category::kBadAnswer, "the service's answer is empty"};
    } else if (body.front() != ':') {
        answer.result = kLyric;
    } else if (body == ":SUCCESS") {
        answer.result = kSuccess;
    } else if (body == ":SQL_CONNECTION_ERROR" || body == ":SQL_ERROR") {
        answer.result = kSqlError;
        answer.error = {Category::kService,
                        "the service's database failed ('" + answer.body + "')"};
    } else if (body == ":NOUPDATES") {
        answer.result = kNoUpdates;
    } else if (body == ":NOTFOUND") {
        answer.result = kNotFound;
    } else if (body.starts_with(kUpdateServer) && body.size() > kUpdateServer.size()) {
        answer.result = kNotFound;
        answer.newServer.assign(body.substr(kUpdateServer.size()));
    } else {
        answer.result = kFailure;
        answer.error = {Category::kService,
                        "the service answered '" + cNetError::Printable(body) + "'"};
    }
    return answer;
}

std::string cTovalSite::ScriptURL(const std::u16string& server, std::string_view script) {
    std::string url = "http://";
    url += Strings().wstringTOutf8(server);
    url += "/website/";
    url += script;
    return url;
}

std::string cTovalSite::LoadParameters(const cMusic& music, int32_t mode) {
    return TrackParameters(music, mode) + "&get=Get";
}

std::string cTovalSite::SaveParameters(const cMusic& music, const cLyric& lyric) {
    std::string p = TrackParameters(music, lyric.Mutation());
    if (SendsAsLRC(lyric)) {
        p += "&lrc=" + FormText(lyric.LRC(std::make_shared<cMusic>(music)));
    } else {
        p += "&tvl=" + FormText(lyric.TVL());
    }
    p += "&add=Add";
    return p;
}

bool cTovalSite::SendsAsLRC(const cLyric& lyric) {
    if (lyric.Simple() || lyric.RightToLeft() || lyric.TrackLength() != kUnset) return false;
    for (int32_t i = 0; i < lyric.GetLineSize(); ++i) {
        const auto line = lyric.GetLine(i);
        if (!line) return false;
        // An untimed line would come back pinned to 00:00.00.
        if (line->GetTimeSize() != 1 || !FitsLRC(line->GetTime(0))) return false;
        for (int32_t w = 0; w < line->GetWordSize(); ++w) {
            const auto word = line->GetWord(w);
            if (word && !word->Simple()) return false;
        }
    }
    return true;
}

}  // namespace toval
