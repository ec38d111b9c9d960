#include "net/cInternet.h"

#include <utility>

#include "base/cErrorLog.h"
#include "base/mString.h"
#include "net/mHttp.h"

namespace toval {

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
            // Nothing was sent: a request still on the wire keeps its own ID.
            const int32_t pendingId = id_;
            id_ = id;
            Raise(kInternetBadUrl);
            id_ = pendingId;
            return;
        }
        case Outcome::kRepeat:
            id_ = id;
            Raise(kInternetSuccess);
            return;
        case Outcome::kFailed:
            id_ = id;
            Fail();
            return;
        case Outcome::kSent:
            Send(host, port, std::move(request), id);
            return;
    }
}

void cInternet::Send(const std::string& host, int32_t port, std::string request, int32_t id) {
    id_ = id;
    if (!socket_) {
        Fail();
        return;
    }
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
    if (piece.size() > kInternetMaxAnswer - data_.size() || elapsed > kInternetMaxAnswerTime) {
        data_.clear();
        ws_Sock_Close();
        return;
    }
    const bool stored = Guarded("cInternet.ws_Sock_DataArrival", false, [&] {
        data_.append(piece);
        return true;
    });
    if (!stored) {
        data_.clear();
        ws_Sock_Close();
    }
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
    Raise(TakeHttpBody(data_));
}

void cInternet::ws_Sock_Error(int32_t /*number*/, const std::string& /*description*/) {
    if (!busy_) return;
    TimerOff();
    data_.clear();
    ws_Sock_Close();
}

void cInternet::tmr_Timer() {
    if (!busy_) {
        TimerOff();
        return;
    }
    data_.clear();
    ws_Sock_Close();
}

void cInternet::Fail() {
    busy_ = false;
    TimerOff();
    if (socket_) socket_->Close();
    data_.clear();
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
