// The lyrics web service: asks for the lyric of a track (Load), sends a lyric
// made in the editor (Save), unwraps the answer from its <TOVAL> envelope and
// sorts it into a result code raised once per request by onToval.
//
// Requests go through an owned cInternet over the socket and timer handed in.
// Three scripts on the host conn_Server:
//   http://host/website/tvl_get_url.php   GET  art alb tit dur siz mut vrs get=Get
//   http://host/website/tvl_insert.php    POST art alb tit dur siz mut vrs tvl|lrc add=Add
//   http://host/website/tvl_update.php    update check (the about box)
//
// What a send carries (our choice; the service only stores it):
//   mut= the lyric's Mutation, the random revision number that the editor
//        renews on every change, so the service can tell versions apart and
//        answer ":NOUPDATES" to a client that already has the newest one.
//   tvl= or lrc=: lrc= only when the LRC form loses nothing of the lyric:
//        at least one line time, no word time, at most one time per line,
//        every time a whole number of hundredths, not right-to-left and no
//        stored track length. Everything else (a karaoke lyric with word
//        times above all, and an untimed lyric, which LRC would pin to 0:00)
//        goes as tvl=.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace toval {

class cTovalSite {
  public:
    // The result codes of onToval.
    enum Result : int16_t {
        kLyric = 0,      // a lyric arrived; Lyric() holds it
        kSuccess = 1,    // ":SUCCESS", the lyric was accepted
        kSqlError = 2,   // ":SQL_CONNECTION_ERROR" or ":SQL_ERROR"
        kNoUpdates = 3,  // ":NOUPDATES"
        kNotFound = 4,   // ":NOTFOUND", or ":UPDATESERVER:host" (the service moved)
        kFailure = 5,    // network failure, no envelope, empty body, unknown ":" code
    };

    // What one answer of the service says, before anything is done with it.
    struct Answer {
        int16_t result = kFailure;
        std::string body;       // the envelope's content
        std::string newServer;  // after ":UPDATESERVER:", else empty
        bool hasVersion = false;
        int32_t version = 0;  // from <LLV>...</LLV> when hasVersion
    };

    // Reads a whole answer body. Never fails; anything unexpected is kFailure.
    static Answer ReadAnswer(std::string_view data);
    // The text between the first "<TOVAL>" and the "</TOVAL>" after it; empty
    // when either marker is missing.
    static std::string_view Envelope(std::string_view data);
    // The number between "<LLV>" and the "</LLV>" after it, when it is numeric
    // and fits 32 bits.
    static bool AnnouncedVersion(std::string_view data, int32_t& version);
    // The program version as the service counts it (1.3.1).
    static constexpr int32_t kVersionNumber = 1030001;
};

}  // namespace toval
