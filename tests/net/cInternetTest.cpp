#include "net/cInternet.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "fakes/CapturedTrail.h"
#include "fakes/FakeSocket.h"
#include "fakes/FakeTimer.h"

namespace toval::test {
namespace {

using Category = cNetError::Category;

struct Event {
    int16_t state;
    int32_t id;
    std::string data;
    cNetError error;
    bool operator==(const Event&) const = default;
};

class InternetTest : public ::testing::Test {
  protected:
    InternetTest() {
        net.setSocket(socket);
        net.setTime(timer);
        net.onieEvent = [this](int16_t state) {
            events.push_back({state, net.ID(), net.Data(), net.Error()});
        };
    }

    void useProxy(const std::u16string& host, int32_t port) {
        globals.Settings.proxy_Enabled = true;
        globals.Settings.proxy_Host = host;
        globals.Settings.proxy_Port = port;
    }

    // Runs one forced GET to the end with the answer given in the pieces.
    void fetch(const std::string& url, const std::vector<std::string>& pieces, int32_t id = 7) {
        net.getPage(url, id, "", true);
        socket->accept();
        for (const std::string& piece : pieces)
            socket->answer(piece);
        socket->hangUp();
    }

    cGlobals globals;
    std::shared_ptr<FakeSocket> socket = std::make_shared<FakeSocket>();
    std::shared_ptr<FakeTimer> timer = std::make_shared<FakeTimer>();
    cInternet net{globals};
    std::vector<Event> events;
};

TEST_F(InternetTest, RequestsFollowTheFourTemplatesToTheByte) {
    struct Case {
        bool proxy, post;
        std::string cookie, referer, expected;
    };
    const std::string h =
        "User-Agent: Toval/1.3.1\r\nAccept: */*\r\nAccept-Charset: utf-8\r\nAccept-Encoding: "
        "none\r\n";
    const std::string form =
        "Content-Type: application/x-www-form-urlencoded\r\n"
        "Content-Length: 7\r\n\r\na=1&b=2";
    const std::vector<Case> cases = {
        {true, false, "c=1", "",
         "GET http://h/x?y=1 HTTP/1.0\r\nHost: h\r\n" + h +
             "Cookie: c=1\r\nProxy-Connection: Close\r\n\r\n"},
        {false, true, "", "r",
         "POST /x?y=1 HTTP/1.0\r\nHost: h\r\n" + h + "Connection: Close\r\nReferer: r\r\n" + form},
        {true, true, "k", "",
         "POST http://h/x?y=1 HTTP/1.0\r\nHost: h\r\n" + h +
             "Proxy-Connection: Close\r\nCookie: k\r\n" + form},
        // Values are copied as they stand, never expanded as placeholders.
        {false, false, "%A%H", "%R%L",
         "GET /x?y=1 HTTP/1.0\r\nHost: h\r\n" + h +
             "Cookie: %A%H\r\nReferer: %R%L\r\nConnection: Close\r\n\r\n"},
    };
    for (const Case& c : cases) {
        globals.Settings.proxy_Enabled = c.proxy;
        globals.Settings.proxy_Host = u"proxy";
        socket->sent.clear();
        if (c.post) {
            net.postData("http://h/x?y=1", 1, "a=1&b=2", c.cookie, c.referer);
        } else {
            net.getPage("http://h/x?y=1", 1, c.cookie, true, c.referer);
        }
        // The request waits until the connection stands.
        EXPECT_EQ(socket->sent, "");
        socket->accept();
        EXPECT_EQ(socket->sent, c.expected);
    }
}

TEST_F(InternetTest, UrlsGiveHostPortAndTargetOrAreRejected) {
    // The connection and the request line, as "host port target"; "" when rejected.
    const std::pair<std::string, std::string> cases[] = {
        {"http://h:99999/", "h 80 /"},
        {"http://h:65535/", "h 65535 /"},
        {"http://h/a b", "h 80 /a b"},
        {"http://h", ""},
        {"h/x", ""},
        {"http://h/x\r\nX-Injected: 1", ""},
        {"http://a b/x", ""},
    };
    for (const auto& [url, expected] : cases) {
        SCOPED_TRACE(url);
        socket->connects.clear();
        socket->sent.clear();
        events.clear();
        net.getPage(url, 42, "", true);
        if (expected.empty()) {
            EXPECT_EQ(events.at(0).state, kInternetBadUrl);
            EXPECT_EQ(events[0].id, 42);
            EXPECT_TRUE(socket->connects.empty());
            continue;
        }
        ASSERT_EQ(socket->connects.size(), 1u);
        socket->accept();
        const std::string& host = socket->connects[0].host;
        const std::string target = socket->sent.substr(4, socket->sent.find(" HTTP/1.0") - 4);
        EXPECT_EQ(host + " " + std::to_string(socket->connects[0].port) + " " + target, expected);
        EXPECT_NE(socket->sent.find("\r\nHost: " + host + "\r\n"), std::string::npos);
    }
    // A bad URL leaves the request on the wire alone.
    net.getPage("http://h/a", 1);
    socket->accept();
    events.clear();
    net.getPage("no-slashes", 2);
    EXPECT_EQ(events.at(0).error,
              (cNetError{Category::kBadUrl, "cannot use the address 'no-slashes'"}));
    socket->answer("HTTP/1.0 200 OK\r\n\r\nbody");
    socket->hangUp();
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[1], (Event{kInternetSuccess, 1, "body", {}}));
}

TEST_F(InternetTest, AnswersAreJudgedByTheirFirstLine) {
    // The body of a success, or the reason of a failure.
    struct Case {
        std::string answer, body;
        cNetError error = {};
    };
    const auto status = [](const std::string& line) {
        return cNetError{Category::kStatus, "the service answered '" + line + "'"};
    };
    const auto bad = [](const std::string& why) { return cNetError{Category::kBadAnswer, why}; };
    const std::string x41(41, 'x');
    const std::vector<Case> cases = {
        {"HTTP/1.0 200 OK\r\nContent-Type: text/plain\r\n\r\nline 1\r\n\r\nline 2",
         "line 1\r\n\r\nline 2"},
        // A "200 OK" past the first line does not count; a hostile first line is
        // quoted printable and short.
        {"HTTP/1.0 500 \x1b[31m\xff" + x41 + x41 + "\r\n200 OK\r\n\r\nb", "",
         status("HTTP/1.0 500 ?[31m?" + x41 + "...")},
        {"HTTP/1.0 200 OK", "", bad("the service's answer is not HTTP: 'HTTP/1.0 200 OK'")},
        {"HTTP/1.0 200 OK\r\nX: y\r\nno end of headers", "",
         bad("the service's answer ends inside its headers")},
    };
    // The answer is judged whole at the close, however it came in pieces.
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer);
        CapturedTrail trail;
        events.clear();
        fetch("http://h/", {c.answer});
        EXPECT_EQ(events, (std::vector<Event>{{c.error ? kInternetFailure : kInternetSuccess, 7,
                                               c.body, c.error}}));
        EXPECT_EQ(trail.lines.size(), c.error ? 1u : 0u);  // one trail line for each failure
    }
}

TEST_F(InternetTest, RepeatShortcutAnswersFromTheHeldBodyButNeverThroughAProxy) {
    fetch("http://h/a", {"HTTP/1.0 200 OK\r\n\r\nlyric"}, 1);
    // Same URL, not forced, body held: answered at once with the new ID.
    net.getPage("http://h/a", 2);
    EXPECT_EQ(socket->connects.size(), 1u);
    EXPECT_EQ(events.back(), (Event{kInternetSuccess, 2, "lyric", {}}));
    // Forced or a POST: the request goes out.
    fetch("http://h/a", {"HTTP/1.0 200 OK\r\n\r\nlyric"});
    net.postData("http://h/a", 4, "x=1");
    EXPECT_EQ(socket->connects.size(), 3u);
    net.getPage("http://h/b", 6);
    EXPECT_EQ(socket->connects.size(), 4u);
    // While a request is on the wire, Data is only part of an answer: no shortcut.
    socket->accept();
    socket->answer("HTTP/1.0 200 OK\r\n");
    net.getPage("http://h/b", 7);
    EXPECT_EQ(socket->connects.size(), 5u);
    // After a failure nothing is held, so the URL goes out again.
    socket->fail();
    net.getPage("http://h/b", 8);
    EXPECT_EQ(socket->connects.size(), 6u);

    // Through a proxy the remembered key carries it, so the URL goes out again.
    useProxy(u"proxy.local", 3128);
    fetch("http://h:8080/x", {"HTTP/1.0 200 OK\r\n\r\nfirst"});
    net.getPage("http://h:8080/x", 9);
    EXPECT_EQ(socket->connects.size(), 8u);
}

TEST_F(InternetTest, TimeOutsAndSocketErrorsFailOnceInEveryPhaseAndSayWhy) {
    EXPECT_EQ(timer->interval, kInternetTimeout);
    timer->setInterval(2500);
    // A tick of the timer (0) or a socket error, before the connection (phase 0),
    // before the answer (1) or inside it (2).
    const struct {
        int32_t number, phase;
        Category category;
        std::string reason;
    } cases[] = {
        {0, 0, Category::kTimeout, "no connection to h:8080 within 2.5 s"},
        {0, 1, Category::kTimeout, "no answer within 2.5 s"},
        {0, 2, Category::kTimeout, "the answer stopped for 2.5 s"},
        {kSckHostNotFound, 0, Category::kResolve, "cannot resolve h"},
        {kSckConnectionRefused, 1, Category::kRefused, "connection refused by h:8080"},
        {10050, 2, Category::kConnection, "the connection to h:8080 failed: down?? (10050)"},
    };
    for (const auto& c : cases) {
        CapturedTrail trail;
        events.clear();
        net.getPage("http://h:8080/", c.phase, "", true);
        if (c.phase >= 1) socket->accept();
        if (c.phase == 2) {
            // The timer runs while bytes of the request remain, then rests until the answer.
            socket->progress(10, 5);
            EXPECT_TRUE(timer->enabled);
            socket->progress(5, 0);
            EXPECT_FALSE(timer->enabled);
            socket->answer("HTTP/1.0 200 OK\r\n\r\npartial");
        }
        const int closes = socket->closes;
        if (c.number == 0) {
            EXPECT_TRUE(timer->tick());
        } else {
            socket->fail(c.number, "down\x7f\n");
        }
        EXPECT_EQ(events,
                  (std::vector<Event>{{kInternetFailure, c.phase, "", {c.category, c.reason}}}));
        EXPECT_EQ(trail.lines.size(), 1u);
        EXPECT_FALSE(timer->enabled);
        EXPECT_GT(socket->closes, closes);
        // Late events of the dropped connection change nothing.
        socket->answer("\r\nlate");
        socket->hangUp();
        socket->fail();
        EXPECT_EQ(events.size(), 1u);
        EXPECT_EQ(net.Data(), "");
    }
    // Through a proxy the reason names the proxy; an IPv6 address goes in brackets.
    useProxy(u"::1", 3128);
    net.getPage("http://h/", 1);
    socket->fail(kSckConnectionRefused);
    EXPECT_EQ(events.back().error.message, "connection refused by [::1]:3128");
    // Without a socket a request fails.
    cInternet bare(globals);
    bare.getPage("http://h/", 3);
    EXPECT_EQ(bare.Error().category, Category::kInternal);
}

TEST_F(InternetTest, AnswersPastTheSizeOrTimeLimitFail) {
    const std::string head = "HTTP/1.0 200 OK\r\n\r\n";
    net.getPage("http://h/", 1);
    socket->accept();
    socket->answer(head);
    socket->answer(std::string(kInternetMaxAnswer - head.size() + 1, 'x'));
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].error, (cNetError{Category::kTooLarge, "the answer is larger than 4 MiB"}));
    // An answer of exactly the limit is still taken.
    fetch("http://h/", {head, std::string(kInternetMaxAnswer - head.size(), 'y')});
    EXPECT_EQ(events.back().state, kInternetSuccess);
    EXPECT_EQ(net.Data().size(), kInternetMaxAnswer - head.size());

    // One byte every nine seconds restarts the time-out each time, but not the
    // limit on the whole answer.
    int64_t now = 1000;
    net.MonotonicMs = [&now] { return now; };
    events.clear();
    net.getPage("http://h/", 1, "", true);
    socket->accept();
    socket->answer(head);
    for (int i = 0; i < 7; ++i) {
        EXPECT_TRUE(events.empty()) << i;
        now += 9000;
        socket->answer("x");
    }
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].error, (cNetError{Category::kTimeout, "the answer took longer than 60 s"}));
    // The next request gets the whole time again.
    fetch("http://h/again", {"HTTP/1.0 200 OK\r\n\r\nbody"});
    EXPECT_EQ(events.back().state, kInternetSuccess);
}

TEST_F(InternetTest, NewRequestOrTheOwnerInTheEventDropsThePendingOne) {
    net.getPage("http://h/one", 1);
    socket->accept();
    socket->answer("HTTP/1.0 200 OK\r\n\r\nold");
    const int closes = socket->closes;
    net.onieEvent = [&](int16_t state) {
        events.push_back({state, net.ID(), net.Data(), net.Error()});
        if (state == kInternetFailure) net.getPage("http://h/retry", 9);
    };
    net.getPage("http://h/two", 2);
    EXPECT_GT(socket->closes, closes);
    EXPECT_EQ(net.Data(), "");
    socket->fail();  // the owner starts the next request in the event
    EXPECT_TRUE(timer->enabled);
    socket->accept();
    socket->answer("HTTP/1.0 200 OK\r\n\r\nnew");
    socket->hangUp();
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[1], (Event{kInternetSuccess, 9, "new", {}}));

    // The owner may drop the client in the event: it lets go of the socket and timer.
    net.setSocket(nullptr);
    auto owned = std::make_unique<cInternet>(globals);
    owned->setSocket(socket);
    owned->setTime(timer);
    owned->onieEvent = [&](int16_t) { owned.reset(); };
    owned->getPage("http://h/", 1);
    socket->accept();
    socket->hangUp();
    EXPECT_EQ(owned, nullptr);
    EXPECT_FALSE(timer->enabled);
    EXPECT_FALSE(socket->onConnect);
    EXPECT_FALSE(timer->onTimer);
}

}  // namespace
}  // namespace toval::test
