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
//        renews on every change. It is the same number a later Load passes
//        back, so the service can tell versions apart and answer ":NOUPDATES"
//        to a client that already has the newest one.
//   tvl= or lrc=: lrc= only when the LRC form loses nothing of the lyric (see
//        SendsAsLRC): exactly one time on every line, not negative and in whole
//        hundredths, no word time, no stored track length, left to right.
//        Everything else goes as tvl=: a karaoke lyric with word times above
//        all, and any lyric with untimed lines, which LRC would pin to 00:00.00.
//
// A received lyric body is UTF-8 with HTML line breaks and character
// references; it is decoded with utf8TOwstring and then htmlTOtext.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "config/cSettings.h"
#include "net/cInternet.h"
#include "net/cNetError.h"
#include "net/iLyricSender.h"
#include "platform/Socket.h"
#include "platform/Timer.h"

namespace toval {

class cConfig;
class cLyric;
class cMusic;

class cTovalSite : public iLyricSender {
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
        cNetError error;      // why the answer is a failure (results 2 and 5)
    };

    // config: saves the settings group after the service named a new server;
    // may be null (nothing is saved then, the record still changes).
    explicit cTovalSite(cGlobals& globals, cConfig* config = nullptr);
    cTovalSite(const cTovalSite&) = delete;
    cTovalSite& operator=(const cTovalSite&) = delete;

    // The controls, handed on to the HTTP client.
    std::shared_ptr<toval::Socket> Socket() const { return inet_.Socket(); }
    void setSocket(std::shared_ptr<toval::Socket> socket) { inet_.setSocket(std::move(socket)); }
    std::shared_ptr<toval::Timer> Time() const { return inet_.Time(); }
    void setTime(std::shared_ptr<toval::Timer> timer) { inet_.setTime(std::move(timer)); }

    // Asks for the lyric of the track. mode goes as mut=: 0 for a track
    // without lyric, else the Mutation of the lyric at hand.
    void Load(const cMusic& music, int32_t id, int32_t mode);
    // Sends a lyric for the track.
    void Save(const cMusic& music, const std::shared_ptr<cLyric>& lyric, int32_t id) override;

    // Handler of the HTTP client's event.
    void iNet_ieEvent(int16_t state);

    // The lyric of the last answer; empty unless it was result 0.
    const std::u16string& Lyric() const { return lyric_; }
    // 0 without a lyric, 2 for a lyric that was never revised (mode kUnset),
    // 1 for any other revision; set by Load.
    int32_t Mode() const { return mode_; }
    // The last result 4 came from ":UPDATESERVER:" rather than ":NOTFOUND".
    bool ServerMoved() const { return serverMoved_; }
    // Why the last request failed (results 2 and 5): the network's reason or
    // the service's; no failure after any other result. The reason has its
    // line in the error trail.
    const cNetError& Error() const { return error_; }
    cInternet& Internet() { return inet_; }

    // --- the protocol, without the wire ---

    // Reads a whole answer body. Never fails; anything unexpected is kFailure.
    static Answer ReadAnswer(std::string_view data);
    // The number between "<LLV>" and the "</LLV>" after it, when it is numeric
    // and fits 32 bits.
    static bool AnnouncedVersion(std::string_view data, int32_t& version);

    // "http://" server "/website/" script.
    static std::string ScriptURL(const std::u16string& server, std::string_view script);
    // The form values of a request, in the service's order.
    static std::string LoadParameters(const cMusic& music, int32_t mode);
    static std::string SaveParameters(const cMusic& music, const cLyric& lyric);
    // Whether a lyric goes as lrc= (true) or tvl= (false).
    static bool SendsAsLRC(const cLyric& lyric);

    // The program version as the service counts it (1.3.1).
    static constexpr int32_t kVersionNumber = 1030001;

  private:
    void Raise(int16_t result, int32_t id);

    cGlobals& globals_;
    cConfig* config_;
    cInternet inet_;
    std::u16string lyric_;
    int32_t mode_ = 0;
    bool serverMoved_ = false;
    cNetError error_;
};

}  // namespace toval
