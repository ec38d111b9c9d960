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

constexpr char kHead[] =
    "User-Agent: Toval/1.3.1\r\nAccept: */*\r\nAccept-Charset: utf-8\r\nAccept-Encoding: none\r\n";

TEST_F(InternetTest, RequestsFollowTheFourTemplatesToTheByte) {
    struct Case {
        bool proxy, post;
        std::string cookie, referer, expected;
    };
    const std::string h = kHead;
    const std::vector<Case> cases = {
        {false, false, "", "",
         "GET /x?y=1 HTTP/1.0\r\nHost: h\r\n" + h + "Connection: Close\r\n\r\n"},
        {false, false, "c=1", "http://r/",
         "GET /x?y=1 HTTP/1.0\r\nHost: h\r\n" + h +
             "Cookie: c=1\r\nReferer: http://r/\r\nConnection: Close\r\n\r\n"},
        {true, false, "c=1", "",
         "GET http://h/x?y=1 HTTP/1.0\r\nHost: h\r\n" + h +
             "Cookie: c=1\r\nProxy-Connection: Close\r\n\r\n"},
        {false, true, "", "r",
         "POST /x?y=1 HTTP/1.0\r\nHost: h\r\n" + h +
             "Connection: Close\r\nReferer: r\r\nContent-Type: "
             "application/x-www-form-urlencoded\r\nContent-Length: 7\r\n\r\na=1&b=2"},
        {true, true, "k", "",
         "POST http://h/x?y=1 HTTP/1.0\r\nHost: h\r\n" + h +
             "Proxy-Connection: Close\r\nCookie: k\r\nContent-Type: "
             "application/x-www-form-urlencoded\r\nContent-Length: 7\r\n\r\na=1&b=2"},
        // Values are copied as they stand, never expanded as placeholders.
        {false, false, "%A%H", "%R%L",
         "GET /x?y=1 HTTP/1.0\r\nHost: h\r\n" + h +
             "Cookie: %A%H\r\nReferer: %R%L\r\nConnection: Close\r\n\r\n"},
    };
    for (const Case& c : cases) {
        globals.Settings.proxy_Enabled = c.proxy;
        globals.Settings.proxy_Host = u"proxy";
        socket->sent.clear();
        socket->setTag({});
        if (c.post) {
            net.postData("http://h/x?y=1", 1, "a=1&b=2", c.cookie, c.referer);
        } else {
            net.getPage("http://h/x?y=1", 1, c.cookie, true, c.referer);
        }
        // The request waits in the tag until the connection stands.
        EXPECT_EQ(socket->Tag(), c.expected);
        EXPECT_EQ(socket->sent, "");
        socket->accept();
        EXPECT_EQ(socket->sent, c.expected);
        EXPECT_EQ(socket->Tag(), "");
    }
}

TEST_F(InternetTest, UrlsGiveHostPortAndTargetOrAreRejected) {
    struct Case {
        std::string url;
        bool accepted;
        std::string host;
        int32_t port;
        std::string requestLine, hostLine;
    };
    const std::vector<Case> cases = {
        {"http://h/x?y=1", true, "h", 80, "GET /x?y=1 HTTP/1.0", "Host: h"},
        {"http://h:8080/a", true, "h", 8080, "GET /a HTTP/1.0", "Host: h"},
        {"http://h:99999/", true, "h", 80, "GET / HTTP/1.0", "Host: h"},
        {"http://h:65535/", true, "h", 65535, "GET / HTTP/1.0", "Host: h"},
        {"http://h:0/", true, "h", 0, "GET / HTTP/1.0", "Host: h"},
        {"http://h:-1/", true, "h", 80, "GET / HTTP/1.0", "Host: h"},
        {"http://h:abc/", true, "h", 80, "GET / HTTP/1.0", "Host: h"},
        {"http://h:/", true, "h", 80, "GET / HTTP/1.0", "Host: h"},
        {"http://h:8e3/", true, "h", 8000, "GET / HTTP/1.0", "Host: h"},
        {"http://h:1:2/", true, "h", 80, "GET / HTTP/1.0", "Host: h"},
        {"x//h/a//b", true, "h", 80, "GET /a//b HTTP/1.0", "Host: h"},
        {"http:///p", true, "", 80, "GET /p HTTP/1.0", "Host: "},
        {"http://h", false, "", 0, "", ""},
        {"http://h:8080", false, "", 0, "", ""},
        {"h/x", false, "", 0, "", ""},
        {"http:/h/x", false, "", 0, "", ""},
        {"", false, "", 0, "", ""},
        {"http://evil\r\nX-Injected: 1/x", false, "", 0, "", ""},
        {"http://h/x\r\nX-Injected: 1", false, "", 0, "", ""},
        {"http://a b/x", false, "", 0, "", ""},
        {"http://h/a b", true, "h", 80, "GET /a b HTTP/1.0", "Host: h"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.url);
        socket->connects.clear();
        events.clear();
        net.getPage(c.url, 42, "", true);
        if (!c.accepted) {
            ASSERT_EQ(events.size(), 1u);
            EXPECT_EQ(events[0].state, kInternetBadUrl);
            EXPECT_EQ(events[0].id, 42);
            EXPECT_EQ(events[0].error.category, Category::kBadUrl);
            EXPECT_TRUE(socket->connects.empty());
            continue;
        }
        EXPECT_TRUE(events.empty());
        ASSERT_EQ(socket->connects.size(), 1u);
        EXPECT_EQ(socket->connects[0].host, c.host);
        EXPECT_EQ(socket->connects[0].port, c.port);
        const std::string& tag = socket->Tag();
        EXPECT_EQ(tag.substr(0, tag.find("\r\n")), c.requestLine);
        EXPECT_NE(tag.find("\r\n" + c.hostLine + "\r\n"), std::string::npos);
    }
}

TEST_F(InternetTest, BadUrlLeavesARequestOnTheWireAlone) {
    net.getPage("http://h/a", 1);
    socket->accept();
    net.getPage("no-slashes", 2);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].id, 2);
    EXPECT_EQ(events[0].error,
              (cNetError{Category::kBadUrl, "cannot use the address 'no-slashes'"}));
    EXPECT_EQ(net.ID(), 1);
    socket->answer("HTTP/1.0 200 OK\r\n\r\nbody");
    socket->hangUp();
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[1].state, kInternetSuccess);
    EXPECT_EQ(events[1].id, 1);
    EXPECT_EQ(events[1].data, "body");
    EXPECT_FALSE(events[1].error);
}

TEST_F(InternetTest, ProxyGetsTheWholeUrlAndTheRepeatShortcutNeverFires) {
    useProxy(u"proxy.local", 3128);
    fetch("http://h:8080/x", {"HTTP/1.0 200 OK\r\n\r\nfirst"});
    ASSERT_EQ(socket->connects.size(), 1u);
    EXPECT_EQ(socket->connects[0].host, "proxy.local");
    EXPECT_EQ(socket->connects[0].port, 3128);
    EXPECT_EQ(socket->sent.substr(0, socket->sent.find("\r\n\r\n")),
              "GET http://h:8080/x HTTP/1.0\r\nHost: h:8080\r\n" + std::string(kHead) +
                  "Proxy-Connection: Close");
    // The remembered key carries the proxy host in front, so the same URL goes out again.
    net.getPage("http://h:8080/x", 8);
    EXPECT_EQ(socket->connects.size(), 2u);
    EXPECT_EQ(events.size(), 1u);
}

TEST_F(InternetTest, AnswersAreJudgedByTheirFirstLineInEverySplit) {
    struct Case {
        std::string answer;
        std::string body;  // the body of a success
        cNetError error;   // the reason of a failure
    };
    const std::string status = "the service answered ";
    const std::vector<Case> cases = {
        {"HTTP/1.0 200 OK\r\nContent-Type: text/plain\r\nX: y\r\n\r\nline 1\r\n\r\nline 2",
         "line 1\r\n\r\nline 2",
         {}},
        {"HTTP/1.1 200 OK\r\n\r\n", "", {}},
        {"junk 200 OK junk\r\n\r\nb", "b", {}},
        {std::string("HTTP/1.0 200 OK\r\n\r\n\0\xff\x01", 22), std::string("\0\xff\x01", 3), {}},
        {"HTTP/1.0 404 Not Found\r\n\r\nmissing",
         "",
         {Category::kStatus, status + "'HTTP/1.0 404 Not Found'"}},
        {"HTTP/1.0 301 Moved\r\nLocation: http://h/\r\n\r\n",
         "",
         {Category::kStatus, status + "'HTTP/1.0 301 Moved'"}},
        {"HTTP/1.0 200 ok\r\n\r\nb", "", {Category::kStatus, status + "'HTTP/1.0 200 ok'"}},
        {"HTTP/1.0 500 Error\r\n200 OK\r\n\r\nb",
         "",
         {Category::kStatus, status + "'HTTP/1.0 500 Error'"}},
        // A hostile first line is quoted printable and short.
        {"HTTP/1.0 500 \x1b[31m\xff" + std::string(100, 'x') + "\r\n\r\n",
         "",
         {Category::kStatus, status + "'HTTP/1.0 500 ?[31m?" + std::string(41, 'x') + "...'"}},
        {"HTTP/1.0 200 OK",
         "",
         {Category::kBadAnswer, "the service's answer is not HTTP: 'HTTP/1.0 200 OK'"}},
        {"HTTP/1.0 200 OK\r\nX: y\r\nbody without end of headers",
         "",
         {Category::kBadAnswer, "the service's answer ends inside its headers"}},
        {"", "", {Category::kBadAnswer, "the service closed the connection without answering"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer);
        std::vector<std::vector<std::string>> splits = {{c.answer}};
        std::vector<std::string> bytes;
        for (char ch : c.answer)
            bytes.emplace_back(1, ch);
        splits.push_back(bytes);
        for (size_t cut = 0; cut <= c.answer.size(); ++cut) {
            splits.push_back({c.answer.substr(0, cut), c.answer.substr(cut)});
        }
        for (const auto& pieces : splits) {
            CapturedTrail trail;
            events.clear();
            fetch("http://h/", pieces);
            ASSERT_EQ(events.size(), 1u);
            EXPECT_EQ(events[0].state, c.error ? kInternetFailure : kInternetSuccess);
            EXPECT_EQ(events[0].data, c.body);
            EXPECT_EQ(net.Data(), c.body);
            EXPECT_EQ(events[0].error, c.error);
            // One trail line for each failure.
            ASSERT_EQ(trail.lines.size(), c.error ? 1u : 0u);
            if (c.error) {
                EXPECT_EQ(trail.lines[0],
                          (std::vector<std::string>{"cInternet.ws_Sock_Close", c.error.message}));
            }
        }
    }
}

TEST_F(InternetTest, RepeatShortcutAnswersFromTheHeldBody) {
    fetch("http://h/a", {"HTTP/1.0 200 OK\r\n\r\nlyric"}, 1);
    // Same URL, not forced, body held: answered at once with the new ID.
    net.getPage("http://h/a", 2);
    EXPECT_EQ(socket->connects.size(), 1u);
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[1].state, kInternetSuccess);
    EXPECT_EQ(events[1].id, 2);
    EXPECT_EQ(events[1].data, "lyric");
    // Forced, another URL, or a POST: the request goes out.
    net.getPage("http://h/a", 3, "", true);
    EXPECT_EQ(socket->connects.size(), 2u);
    socket->accept();
    socket->answer("HTTP/1.0 200 OK\r\n\r\nlyric");
    socket->hangUp();
    net.postData("http://h/a", 4, "x=1");
    EXPECT_EQ(socket->connects.size(), 3u);
    // A POST is remembered too; its answer is what a repeated GET then gets.
    socket->accept();
    socket->answer("HTTP/1.0 200 OK\r\n\r\nposted");
    socket->hangUp();
    net.getPage("http://h/a", 5);
    EXPECT_EQ(socket->connects.size(), 3u);
    EXPECT_EQ(events.back().data, "posted");
    net.getPage("http://h/b", 6);
    EXPECT_EQ(socket->connects.size(), 4u);
    // While a request is on the wire, Data is only part of an answer: no shortcut.
    socket->accept();
    socket->answer("HTTP/1.0 200 OK\r\n");
    net.getPage("http://h/b", 7);
    EXPECT_EQ(socket->connects.size(), 5u);
    // After a failure nothing is held, so the URL goes out again.
    socket->fail();
    EXPECT_EQ(events.back().state, kInternetFailure);
    net.getPage("http://h/b", 8);
    EXPECT_EQ(socket->connects.size(), 6u);
}

TEST_F(InternetTest, TimerGuardsEveryStepAndItsTickFails) {
    EXPECT_EQ(timer->interval, kInternetTimeout);
    net.getPage("http://h/", 1);
    EXPECT_TRUE(timer->enabled);
    socket->accept();
    EXPECT_TRUE(timer->enabled);
    socket->progress(10, 5);
    EXPECT_TRUE(timer->enabled);
    // After the last byte the timer rests until the answer begins.
    socket->progress(5, 0);
    EXPECT_FALSE(timer->enabled);
    const int before = timer->enableChanges;
    socket->answer("HTTP/1.0 200 OK\r\n");
    EXPECT_TRUE(timer->enabled);
    EXPECT_GT(timer->enableChanges, before);  // restarted by the piece
    const int closesBefore = socket->closes;
    CapturedTrail trail;
    EXPECT_TRUE(timer->tick());
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].state, kInternetFailure);
    EXPECT_EQ(events[0].data, "");
    EXPECT_EQ(events[0].error, (cNetError{Category::kTimeout, "the answer stopped for 10 s"}));
    EXPECT_TRUE(trail.Has("cInternet.tmr_Timer ; the answer stopped for 10 s"));
    EXPECT_FALSE(timer->enabled);
    EXPECT_GT(socket->closes, closesBefore);
    // Late events of the dropped connection change nothing.
    socket->answer("\r\nlate");
    socket->hangUp();
    socket->fail();
    EXPECT_EQ(events.size(), 1u);
    EXPECT_EQ(net.Data(), "");
    // Silence before the connection stands names the host; silence while
    // sending, before any answer, is no answer.
    timer->setInterval(2500);
    net.getPage("http://h:8080/", 2);
    EXPECT_TRUE(timer->tick());
    EXPECT_EQ(events.back().error,
              (cNetError{Category::kTimeout, "no connection to h:8080 within 2.5 s"}));
    net.getPage("http://h:8080/", 3);
    socket->accept();
    EXPECT_TRUE(timer->tick());
    EXPECT_EQ(events.back().error, (cNetError{Category::kTimeout, "no answer within 2.5 s"}));
}

TEST_F(InternetTest, SocketErrorsFailOnceInEveryPhaseAndSayWhy) {
    const struct {
        int32_t number;
        cNetError error;
    } cases[] = {
        {kSckHostNotFound, {Category::kResolve, "cannot resolve lyrics.invalid"}},
        {kSckConnectionRefused, {Category::kRefused, "connection refused by lyrics.invalid:8080"}},
        {kSckTimedOut, {Category::kTimeout, "the connection to lyrics.invalid:8080 timed out"}},
        {kSckConnectionReset,
         {Category::kConnection, "the connection to lyrics.invalid:8080 broke"}},
        {10050,
         {Category::kConnection, "the connection to lyrics.invalid:8080 failed: down?? (10050)"}},
    };
    for (const auto& c : cases) {
        for (int phase = 0; phase < 3; ++phase) {
            CapturedTrail trail;
            events.clear();
            net.getPage("http://lyrics.invalid:8080/", phase, "", true);
            if (phase >= 1) socket->accept();
            if (phase >= 2) socket->answer("HTTP/1.0 200 OK\r\n\r\npartial");
            socket->fail(c.number, "down\x7f\n");
            socket->hangUp();  // an adapter that also reports the close
            ASSERT_EQ(events.size(), 1u) << phase;
            EXPECT_EQ(events[0].state, kInternetFailure);
            EXPECT_EQ(events[0].id, phase);
            EXPECT_EQ(events[0].error, c.error);
            EXPECT_EQ(trail.lines, (std::vector<std::vector<std::string>>{
                                       {"cInternet.ws_Sock_Error", c.error.message}}));
            EXPECT_EQ(net.Data(), "");
            EXPECT_FALSE(timer->enabled);
        }
    }
    // Through a proxy the reason names the proxy; an IPv6 address goes in brackets.
    useProxy(u"::1", 3128);
    net.getPage("http://h/", 1);
    socket->fail(kSckConnectionRefused);
    EXPECT_EQ(events.back().error.message, "connection refused by [::1]:3128");
}

TEST_F(InternetTest, AnswerPastTheLimitFailsWithoutGrowing) {
    net.getPage("http://h/", 1);
    socket->accept();
    const std::string piece(64 * 1024, 'x');
    socket->answer("HTTP/1.0 200 OK\r\n\r\n");
    for (size_t sent = 0; sent <= kInternetMaxAnswer; sent += piece.size())
        socket->answer(piece);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].state, kInternetFailure);
    EXPECT_EQ(events[0].error, (cNetError{Category::kTooLarge, "the answer is larger than 4 MiB"}));
    EXPECT_EQ(net.Data(), "");
    // An answer of exactly the limit is still taken.
    const std::string head = "HTTP/1.0 200 OK\r\n\r\n";
    fetch("http://h/", {head, std::string(kInternetMaxAnswer - head.size(), 'y')});
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[1].state, kInternetSuccess);
    EXPECT_EQ(net.Data().size(), kInternetMaxAnswer - head.size());
}

TEST_F(InternetTest, AnswerTricklingPastTheTimeLimitFails) {
    int64_t now = 1000;
    net.MonotonicMs = [&now] { return now; };
    net.getPage("http://h/", 1);
    socket->accept();
    socket->answer("HTTP/1.0 200 OK\r\n\r\n");
    // One byte every nine seconds restarts the time-out each time...
    for (int i = 0; i < 6; ++i) {
        now += 9000;
        socket->answer("x");
    }
    EXPECT_TRUE(events.empty()) << "54 s after sending: still within the limit";
    now += 9000;
    socket->answer("x");
    // ...but not the limit on the whole answer.
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].state, kInternetFailure);
    EXPECT_EQ(events[0].error, (cNetError{Category::kTimeout, "the answer took longer than 60 s"}));
    EXPECT_EQ(net.Data(), "");
    // The next request gets the whole time again.
    fetch("http://h/again", {"HTTP/1.0 200 OK\r\n\r\nbody"});
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[1].state, kInternetSuccess);
}

TEST_F(InternetTest, NewRequestDropsThePendingOne) {
    net.getPage("http://h/one", 1);
    socket->accept();
    socket->answer("HTTP/1.0 200 OK\r\n\r\nold");
    const int closes = socket->closes;
    net.getPage("http://h/two", 2);
    EXPECT_GT(socket->closes, closes);
    EXPECT_EQ(net.Data(), "");
    socket->accept();
    socket->answer("HTTP/1.0 200 OK\r\n\r\nnew");
    socket->hangUp();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].id, 2);
    EXPECT_EQ(events[0].data, "new");
}

TEST_F(InternetTest, OwnerMayStartTheNextRequestOrDropTheClientInTheEvent) {
    int calls = 0;
    net.onieEvent = [&](int16_t state) {
        ++calls;
        if (state == kInternetFailure && calls == 1) net.getPage("http://h/retry", 9);
    };
    net.getPage("http://h/", 1);
    socket->fail();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(socket->connects.size(), 2u);
    EXPECT_TRUE(timer->enabled);
    socket->accept();
    socket->answer("HTTP/1.0 200 OK\r\n\r\nok");
    socket->hangUp();
    EXPECT_EQ(calls, 2);

    auto owned = std::make_unique<cInternet>(globals);
    auto sock = std::make_shared<FakeSocket>();
    auto tmr = std::make_shared<FakeTimer>();
    owned->setSocket(sock);
    owned->setTime(tmr);
    owned->onieEvent = [&](int16_t) { owned.reset(); };
    owned->getPage("http://h/", 1);
    sock->accept();
    sock->hangUp();
    EXPECT_EQ(owned, nullptr);
    EXPECT_FALSE(tmr->enabled);
    EXPECT_FALSE(sock->onConnect);
    EXPECT_FALSE(tmr->onTimer);
}

TEST_F(InternetTest, WithoutASocketARequestFails) {
    cInternet bare(globals);
    std::vector<int16_t> states;
    bare.onieEvent = [&](int16_t state) { states.push_back(state); };
    bare.getPage("http://h/", 1);
    bare.getPage("http://h", 2);
    EXPECT_EQ(states, (std::vector<int16_t>{kInternetFailure, kInternetBadUrl}));
    bare.getPage("http://h/", 3);
    EXPECT_EQ(bare.Error().category, Category::kInternal);
}

}  // namespace
}  // namespace toval::test
