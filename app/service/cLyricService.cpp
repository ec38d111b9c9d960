#include "cLyricService.h"

#include <algorithm>
#include <climits>
#include <tuple>

#include "base/mString.h"
#include "lyric/cLyric.h"
#include "mForm.h"
#include "mMatchKey.h"

namespace toval::service {

namespace {

std::string Text(const cForm& form, std::string_view key) {
    const std::string* value = FormValue(form, key);
    return value ? *value : std::string();
}

int32_t Number(const cForm& form, std::string_view key) {
    int32_t value = 0;
    return FormNumber(form, key, value) ? value : 0;
}

constexpr int32_t kUnsetMutation = INT32_MIN;

bool SameRecording(int32_t a, int32_t b, int32_t slack) {
    if (a <= 0 || b <= 0) return true;
    const int64_t gap = static_cast<int64_t>(a) - b;
    return gap <= slack && gap >= -slack;
}

}  // namespace

cLyricService::cLyricService(iLyricStore& store, cServiceOptions options)
    : store_(store), options_(std::move(options)), limit_(options_.sendsPerHour) {}

std::string cLyricService::Page(std::string_view answer) const {
    std::string page = "<html><body>";
    if (options_.announceVersion > 0) {
        page += "<LLV>" + std::to_string(options_.announceVersion) + "</LLV>";
    }
    page += "<TOVAL>";
    page += answer;
    page += "</TOVAL></body></html>";
    return page;
}

cReply cLyricService::Answer(std::string answer, std::string outcome) const {
    cReply reply;
    reply.page = Page(answer);
    reply.outcome = outcome.empty() ? std::move(answer) : std::move(outcome);
    return reply;
}

std::string cLyricService::EscapeLyric(std::string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 8);
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '&') {
            out += "&amp;";
        } else if (c == '<') {
            out += "&lt;";
        } else if (c == '>') {
            out += "&gt;";
        } else if (c == ':' && i == 0) {
            out += "&#58;";
        } else {
            out.push_back(c);
        }
    }
    return out;
}

bool cLyricService::IsLyricText(std::string_view bytes) {
    for (size_t i = 0; i < bytes.size();) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        size_t more;
        uint32_t code;
        if (b == 0) return false;
        if (b < 0x80) {
            ++i;
            continue;
        } else if ((b & 0xE0) == 0xC0) {
            more = 1, code = b & 0x1F;
        } else if ((b & 0xF0) == 0xE0) {
            more = 2, code = b & 0x0F;
        } else if ((b & 0xF8) == 0xF0) {
            more = 3, code = b & 0x07;
        } else {
            return false;
        }
        if (bytes.size() - i <= more) return false;
        for (size_t k = 1; k <= more; ++k) {
            const auto c = static_cast<unsigned char>(bytes[i + k]);
            if ((c & 0xC0) != 0x80) return false;
            code = (code << 6) | (c & 0x3F);
        }
        // Overlong forms and code points past U+10FFFF are not text.
        if ((more == 1 && code < 0x80) || (more == 2 && code < 0x800) ||
            (more == 3 && (code < 0x10000 || code > 0x10FFFF))) {
            return false;
        }
        i += more + 1;
    }
    return true;
}

LyricKind cLyricService::Kind(std::string_view utf8) {
    cLyric lyric;
    lyric.setLoad(Strings().utf8TOwstring(std::string(utf8)));
    LyricKind kind = LyricKind::kPlain;
    for (int32_t i = 0; i < lyric.GetLineSize(); ++i) {
        const auto line = lyric.GetLine(i);
        if (!line) continue;
        if (line->GetTimeSize() > 0) kind = std::max(kind, LyricKind::kLines);
        for (int32_t w = 0; w < line->GetWordSize(); ++w) {
            const auto word = line->GetWord(w);
            if (word && !word->Simple()) return LyricKind::kWords;
        }
    }
    return kind;
}

cReply cLyricService::Get(std::string_view query) {
    cForm form;
    if (!ParseForm(query, form)) return Answer(":BADREQUEST");
    if (!options_.moveTo.empty()) return Answer(":UPDATESERVER:" + options_.moveTo);
    const std::string artist = Text(form, "art");
    const std::string title = Text(form, "tit");
    if (artist.empty() || title.empty()) return Answer(":NOTFOUND");
    const auto found = store_.Find(MatchKey(artist), MatchKey(title));
    if (!found) return Answer(":SQL_ERROR");

    const int32_t duration = Number(form, "dur");
    const std::string albumKey = MatchKey(Text(form, "alb"));
    const int32_t held = Number(form, "mut");
    const cLyricRecord* best = nullptr;
    bool holdsKnown = false;
    auto rank = [&](const cLyricRecord& r) {
        return std::make_tuple(static_cast<int32_t>(r.kind), r.albumKey == albumKey, r.id);
    };
    for (const cLyricRecord& r : *found) {
        if (!SameRecording(r.duration, duration, options_.durationSlack)) continue;
        // The unset number marks a lyric never revised: whoever holds one holds
        // their own, not a revision of ours.
        if (held != 0 && held != kUnsetMutation && r.mutation == held) holdsKnown = true;
        if (!best || rank(r) > rank(*best)) best = &r;
    }
    if (!best) return Answer(":NOTFOUND");
    if (held != 0 && (!holdsKnown || best->mutation == held)) return Answer(":NOUPDATES");
    return Answer(EscapeLyric(best->text), "lyric " + std::to_string(best->id));
}

cReply cLyricService::Insert(std::string_view body, const std::string& address, int64_t now) {
    cForm form;
    if (!ParseForm(body, form)) return Answer(":BADREQUEST");
    if (!options_.moveTo.empty()) return Answer(":UPDATESERVER:" + options_.moveTo);
    cLyricRecord r;
    r.artist = Text(form, "art");
    r.title = Text(form, "tit");
    r.album = Text(form, "alb");
    if (r.artist.empty() || r.title.empty()) return Answer(":NOTRACK");
    const std::string* text = FormValue(form, "tvl");
    if (!text) text = FormValue(form, "lrc");
    if (!text || text->empty()) return Answer(":NOLYRIC");
    if (text->size() > options_.maxLyricBytes) return Answer(":TOOLARGE");
    if (!IsLyricText(*text) || !IsLyricText(r.artist + r.title + r.album)) {
        return Answer(":BADLYRIC");
    }
    r.kind = Kind(*text);
    if (r.kind == LyricKind::kPlain) return Answer(":NOTIMES");

    r.text = *text;
    r.artistKey = MatchKey(r.artist);
    r.titleKey = MatchKey(r.title);
    r.albumKey = MatchKey(r.album);
    r.duration = std::max(Number(form, "dur"), 0);
    r.fileSize = Number(form, "siz");
    r.mutation = Number(form, "mut");
    r.address = address;
    r.created = now;

    const auto found = store_.Find(r.artistKey, r.titleKey);
    if (!found) return Answer(":SQL_ERROR");
    for (const cLyricRecord& old : *found) {
        if (old.text == r.text && old.duration == r.duration) {
            return Answer(":SUCCESS", ":SUCCESS (lyric " + std::to_string(old.id) + " again)");
        }
    }
    if (!limit_.Take(address, now)) return Answer(":LIMIT");
    if (!store_.Add(r)) {
        limit_.GiveBack(address);
        return Answer(":SQL_ERROR");
    }
    return Answer(":SUCCESS", ":SUCCESS (lyric " + std::to_string(r.id) + ")");
}

cReply cLyricService::Update(std::string_view query) {
    cForm form;
    if (!ParseForm(query, form)) return Answer(":BADREQUEST");
    const bool newer =
        options_.announceVersion > 0 && Number(form, "vrs") < options_.announceVersion;
    return Answer(newer ? ":NEWVERSION" : ":NOUPDATES");
}

}  // namespace toval::service
