// What the service answers, without the wire: each script takes its form text
// (the query of a GET, the body of a POST) and gives the page to send back,
// the answer inside the <TOVAL> envelope and, when a version is announced, in
// front of it <LLV>version</LLV>.
//
// Look-up (tvl_get_url.php): artist and title match by MatchKey; a lyric whose
// duration differs from the track's by more than durationSlack seconds belongs
// to another recording (an unknown duration, 0 or less, matches any). Among the
// matches the best wins: word-timed over line-timed over plain text, then one
// stored for the same album, then the newest revision.
// mut= names the lyric the client holds: 0 for none, else that lyric's
// Mutation. The best match is sent unless the client holds it already; a
// client holding a lyric that this service never stored (its own work, a file
// from elsewhere, or one never revised: -2147483648) gets ":NOUPDATES", so a
// service answer never replaces it.
//
// Sending (tvl_insert.php): the lyric (tvl= or lrc=) is read with the
// program's own lyric reader. Refused, with the code in brackets: a form that
// is not well encoded [:BADREQUEST], no artist or title [:NOTRACK], no lyric
// [:NOLYRIC], more than maxLyricBytes [:TOOLARGE], bytes that are not UTF-8
// text [:BADLYRIC], no time on any line or word [:NOTIMES], over the sends an
// address may make in an hour [:LIMIT]. The program shows these as a failed
// send. An accepted lyric is stored as a new revision with mut= as its
// Mutation; sending the very same text again stores nothing new.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "cSendLimit.h"
#include "iLyricStore.h"

namespace toval::service {

struct cServiceOptions {
    int32_t announceVersion = 0;  // <LLV>; 0: none
    std::string moveTo;           // when set, every look-up and send is told to move there
    size_t maxLyricBytes = 256 * 1024;
    int32_t sendsPerHour = 60;  // per address; 0: no limit
    int32_t durationSlack = 3;  // seconds
};

struct cReply {
    std::string page;
    std::string outcome;  // for the log line: the code, or "lyric N"
};

class cLyricService {
  public:
    cLyricService(iLyricStore& store, cServiceOptions options);

    cReply Get(std::string_view query);
    cReply Insert(std::string_view body, const std::string& address, int64_t now);
    // The update check: ":NOUPDATES" when the client's vrs= is not older than
    // the announced version, else ":NEWVERSION".
    cReply Update(std::string_view query);

    // The page around an answer.
    std::string Page(std::string_view answer) const;
    // A stored lyric as an answer: the program reads the answer as HTML text,
    // so "&", "<" and ">" go as references, and a leading ":" (which would
    // read as a code) as "&#58;".
    static std::string EscapeLyric(std::string_view text);
    // How a lyric text is timed; kPlain also for text the reader finds no line in.
    static LyricKind Kind(std::string_view utf8);
    // Well-formed UTF-8 without NUL, allowing the surrogate halves that the
    // program writes as three bytes each.
    static bool IsLyricText(std::string_view bytes);

    const cServiceOptions& Options() const { return options_; }

  private:
    cReply Answer(std::string answer, std::string outcome = {}) const;

    iLyricStore& store_;
    cServiceOptions options_;
    cSendLimit limit_;
};

}  // namespace toval::service
