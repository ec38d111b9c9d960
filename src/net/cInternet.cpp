#include "net/cInternet.h"

#include <utility>

#include "base/cErrorLog.h"
#include "base/mString.h"
#include "net/mHttp.h"

namespace toval {

namespace {

using Category = cNetError::Category;

// "host:port" for a message; an IPv6 address goes in brackets.
std::string Where(const std::string& host, int32_t port) {
    const std::string name = cNetError::Printable(host);
    return (host.find(':') != std::string::npos ? "[" + name + "]" : name) + ":" +
           std::to_string(port);
}

// What an error number of the socket (the Winsock numbers) means for a request.
cNetError SocketFailure(int32_t number, const std::string& description, const std::string& host,
                        int32_t port) {
    switch (number) {
        case kSckHostNotFound:
        case 11002:  // WSATRY_AGAIN: the name server did not answer
        case 11004:  // WSANO_DATA: the name has no address
            return {Category::kResolve, "cannot resolve " + cNetError::Printable(host)};
        case kSckConnectionRefused:
            return {Category::kRefused, "connection refused by " + Where(host, port)};
        case kSckTimedOut:
            return {Category::kTimeout, "the connection to " + Where(host, port) + " timed out"};
        case kSckConnectionReset:
        case 10053:  // WSAECONNABORTED
            return {Category::kConnection, "the connection to " + Where(host, port) + " broke"};
        default:
            return {Category::kConnection, "the connection to " + Where(host, port) +
                                               " failed: " + cNetError::Printable(description) +
                                               " (" + std::to_string(number) + ")"};
    }
}

}  // namespace

cInternet::cInternet(cGlobals& globals) : globals_(globals) {}

cInternet::~cInternet() {
    setSocket(nullptr);
    setTime(nullptr);
}

void cInternet::setSocket(std::shared_ptr<toval::Socket> socket) {
    if (socket_) {
        socket_->onConnect = nullptr;
        socket_->onDataArrival = nullptr;
        socket_->onSendProgress = nullptr;
        socket_->onClose = nullptr;
        socket_->onError = nullptr;
        socket_->Close();
    }
    // A request on the old socket is dropped without an event.
    busy_ = false;
    socket_ = std::move(socket);
    if (!socket_) return;
    socket_->onConnect = [this] { ws_Sock_Connect(); };
    socket_->onDataArrival = [this](int32_t total) { ws_Sock_DataArrival(total); };
    socket_->onSendProgress = [this](int32_t sent, int32_t left) {
        ws_Sock_SendProgress(sent, left);
    };
    socket_->onClose = [this] { ws_Sock_Close(); };
    socket_->onError = [this](int32_t number, const std::string& description) {
        ws_Sock_Error(number, description);
    };
}

void cInternet::setTime(std::shared_ptr<toval::Timer> timer) {
    if (timer_) {
        timer_->setEnabled(false);
        timer_->onTimer = nullptr;
    }
    timer_ = std::move(timer);
    if (!timer_) return;
    timer_->setEnabled(false);
    timer_->setInterval(kInternetTimeout);
    timer_->onTimer = [this] { tmr_Timer(); };
    if (busy_) TimerOn();
}

void cInternet::getPage(const std::string& url, int32_t id, const std::string& cookie, bool force,
                        const std::string& referer) {
    Request(false, url, id, {}, cookie, force, referer);
}

void cInternet::postData(const std::string& url, int32_t id, const std::string& body,
                         const std::string& cookie, const std::string& referer) {
    Request(true, url, id, body, cookie, false, referer);
}

void cInternet::Request(bool post, const std::string& url, int32_t id, const std::string& body,
                        const std::string& cookie, bool force, const std::string& referer) {
    enum class Outcome { kSent, kBadUrl, kRepeat, kFailed };
    std::string host;
    int32_t port = 0;
    std::string request;
    const Outcome outcome =
        Guarded(post ? "cInternet.postData" : "cInternet.getPage", Outcome::kFailed, [&] {
            std::string hostPart, target;
            if (!SplitHttpUrl(url, hostPart, target)) return Outcome::kBadUrl;
            // The answer still held is reported again, unless a request is on the
            // wire: then Data is only part of an answer.
            if (!post && !force && !busy_ && url == lastKey_ && !data_.empty()) {
                return Outcome::kRepeat;
            }
            const cSettings& settings = globals_.Settings;
            if (settings.proxy_Enabled) {
                host = Strings().wstringTOutf8(settings.proxy_Host);
                port = settings.proxy_Port;
                request = HttpRequestText(post, true, url, hostPart, cookie, referer, body);
                // With the proxy host in front the key never equals a URL, so a
                // repeat always goes out again.
                lastKey_ = host + url;
            } else {
                HttpDirectHost(hostPart, host, port);
                request = HttpRequestText(post, false, target, host, cookie, referer, body);
                lastKey_ = url;
            }
            return Outcome::kSent;
        });

    switch (outcome) {
        case Outcome::kBadUrl: {
            // Nothing was sent: a request still on the wire keeps its own ID
            // and its own outcome.
            const int32_t pendingId = id_;
            cNetError pendingError = std::move(error_);
            id_ = id;
            error_ = {Category::kBadUrl,
                      "cannot use the address '" + cNetError::Printable(url) + "'"};
            ErrorTrail({post ? "cInternet.postData" : "cInternet.getPage", error_.message});
            Raise(kInternetBadUrl);
            id_ = pendingId;
            error_ = std::move(pendingError);
            return;
        }
        case Outcome::kRepeat:
            id_ = id;
            error_ = {};
            Raise(kInternetSuccess);
            return;
        case Outcome::kFailed:
            // Guarded has written the trail line.
            id_ = id;
            Fail({}, {Category::kInternal, "the request could not be made"});
            return;
        case Outcome::kSent:
            Send(host, port, std::move(request), id);
            return;
    }
}

void cInternet::Send(const std::string& host, int32_t port, std::string request, int32_t id) {
    id_ = id;
    error_ = {};
    if (!socket_) {
        Fail("cInternet.Send", {Category::kInternal, "no socket to send the request on"});
        return;
    }
    host_ = host;
    port_ = port;
    connected_ = false;
    socket_->setTag(std::move(request));
    data_.clear();
    busy_ = true;
    sentAt_ = MonotonicMs ? MonotonicMs() : 0;
    socket_->Close();
    socket_->Connect(host, port);
    // Off and on again, so that a new request gets the whole time-out.
    TimerOff();
    TimerOn();
}

void cInternet::ws_Sock_Connect() {
    if (!busy_ || !socket_) return;
    connected_ = true;
    TimerOff();
    std::string text = socket_->Tag();
    socket_->setTag({});
    socket_->SendData(text);
    TimerOn();
}

void cInternet::ws_Sock_DataArrival(int32_t /*bytesTotal*/) {
    if (!busy_ || !socket_) return;
    TimerOff();
    TimerOn();
    std::string piece;
    socket_->GetData(piece);
    // An answer past the limits is hostile or broken: stop taking it.
    const int64_t elapsed = MonotonicMs ? MonotonicMs() - sentAt_ : 0;
    if (piece.size() > kInternetMaxAnswer - data_.size()) {
        Fail(
            "cInternet.ws_Sock_DataArrival",
            {Category::kTooLarge, "the answer is larger than " +
                                      std::to_string(kInternetMaxAnswer / (1024 * 1024)) + " MiB"});
        return;
    }
    if (elapsed > kInternetMaxAnswerTime) {
        Fail("cInternet.ws_Sock_DataArrival",
             {Category::kTimeout,
              "the answer took longer than " + cNetError::Seconds(kInternetMaxAnswerTime)});
        return;
    }
    const bool stored = Guarded("cInternet.ws_Sock_DataArrival", false, [&] {
        data_.append(piece);
        return true;
    });
    if (!stored) Fail({}, {Category::kInternal, "the answer could not be stored"});
}

void cInternet::ws_Sock_SendProgress(int32_t /*bytesSent*/, int32_t bytesRemaining) {
    if (!busy_) return;
    // The period restarts with every step of the sending. Once the request is
    // all out, the timer rests until the first piece of the answer: the wait
    // for the server's reply is not timed, only the silence within an answer.
    TimerOff();
    if (bytesRemaining > 0) TimerOn();
}

void cInternet::ws_Sock_Close() {
    if (!busy_) return;
    busy_ = false;
    TimerOff();
    if (socket_) socket_->Close();
    const int16_t state = TakeHttpBody(data_, error_);
    if (error_) ErrorTrail({"cInternet.ws_Sock_Close", error_.message});
    Raise(state);
}

void cInternet::ws_Sock_Error(int32_t number, const std::string& description) {
    if (!busy_) return;
    Fail("cInternet.ws_Sock_Error", SocketFailure(number, description, host_, port_));
}

void cInternet::tmr_Timer() {
    if (!busy_) {
        TimerOff();
        return;
    }
    const std::string period = cNetError::Seconds(timer_ ? timer_->Interval() : 0);
    std::string message;
    if (!connected_) {
        message = "no connection to " + Where(host_, port_) + " within " + period;
    } else if (data_.empty()) {
        message = "no answer within " + period;
    } else {
        message = "the answer stopped for " + period;
    }
    Fail("cInternet.tmr_Timer", {Category::kTimeout, message});
}

void cInternet::Fail(std::string_view procedure, cNetError error) {
    busy_ = false;
    TimerOff();
    if (socket_) socket_->Close();
    data_.clear();
    error_ = std::move(error);
    if (!procedure.empty()) ErrorTrail({procedure, error_.message});
    Raise(kInternetFailure);
}

void cInternet::Raise(int16_t state) {
    // A copy: the handler may start the next request or drop this object.
    auto handler = onieEvent;
    if (handler) handler(state);
}

void cInternet::TimerOn() {
    if (timer_) timer_->setEnabled(true);
}

void cInternet::TimerOff() {
    if (timer_) timer_->setEnabled(false);
}

}  // namespace toval
