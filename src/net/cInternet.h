// A minimal HTTP/1.0 client for one request at a time, driven only by the
// events of a socket control and a time-out timer that its owner hands over.
// It connects (directly or through the proxy of the settings), sends one GET or
// POST, gathers the answer until the server closes, accepts only a first line
// holding "200 OK", strips the headers and reports once through onieEvent.
//
// URLs, cookies, referers and bodies are bytes as they go on the wire (text is
// encoded by the caller); Data() is the raw body.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "config/cSettings.h"
#include "net/cNetError.h"
#include "platform/Socket.h"
#include "platform/Timer.h"

namespace toval {

// States of ieEvent.
inline constexpr int16_t kInternetBadUrl = 1;   // nothing was sent
inline constexpr int16_t kInternetSuccess = 2;  // Data() holds the body
inline constexpr int16_t kInternetFailure = 3;  // Data() is empty

class cInternet {
  public:
    explicit cInternet(cGlobals& globals);
    ~cInternet();
    cInternet(const cInternet&) = delete;
    cInternet& operator=(const cInternet&) = delete;

    // The controls. Setting one hooks its events and unhooks the previous one.
    std::shared_ptr<toval::Socket> Socket() const { return socket_; }
    void setSocket(std::shared_ptr<toval::Socket> socket);
    std::shared_ptr<toval::Timer> Time() const { return timer_; }
    void setTime(std::shared_ptr<toval::Timer> timer);

    // The answer so far; after state 2 the body alone.
    const std::string& Data() const { return data_; }
    // The ID of the current (or last) request.
    int32_t ID() const { return id_; }
    // Why the last request failed (state 1 or 3): a category and a message,
    // also written to the error trail; no failure after state 2.
    const cNetError& Error() const { return error_; }

    // Starts a GET. When url repeats the last request, force is false and the
    // last answer is still held, that answer is reported again at once.
    void getPage(const std::string& url, int32_t id, const std::string& cookie = {},
                 bool force = false, const std::string& referer = {});
    // Starts a POST of a form-encoded body.
    void postData(const std::string& url, int32_t id, const std::string& body,
                  const std::string& cookie = {}, const std::string& referer = {});

    // The outcome of a request: kInternetBadUrl, kInternetSuccess or kInternetFailure.
    std::function<void(int16_t state)> onieEvent;

    // A monotonic clock in milliseconds, for the limit on a whole answer;
    // tests replace it.
    std::function<int64_t()> MonotonicMs = [] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
                   std::chrono::steady_clock::now().time_since_epoch())
            .count();
    };

    // Handlers of the controls' events.
    void ws_Sock_Connect();
    void ws_Sock_DataArrival(int32_t bytesTotal);
    void ws_Sock_SendProgress(int32_t bytesSent, int32_t bytesRemaining);
    void ws_Sock_Close();
    void ws_Sock_Error(int32_t number, const std::string& description);
    void tmr_Timer();

  private:
    void Request(bool post, const std::string& url, int32_t id, const std::string& body,
                 const std::string& cookie, bool force, const std::string& referer);
    void Send(const std::string& host, int32_t port, std::string request, int32_t id);
    // Ends the request with state 3; a procedure name writes the trail line.
    void Fail(std::string_view procedure, cNetError error);
    void Raise(int16_t state);
    void TimerOn();
    void TimerOff();

    cGlobals& globals_;
    std::shared_ptr<toval::Socket> socket_;
    std::shared_ptr<toval::Timer> timer_;
    std::string data_;
    int32_t id_ = 0;
    cNetError error_;
    std::string lastKey_;
    // Where the current request connects to, and whether it got there.
    std::string host_;
    int32_t port_ = 0;
    bool connected_ = false;
    // A request is on the wire; events of the controls outside one are ignored.
    bool busy_ = false;
    // When the current request was sent (MonotonicMs).
    int64_t sentAt_ = 0;
};

}  // namespace toval
