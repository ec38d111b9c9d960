// The HTTP client and the socket adapters against real servers on 127.0.0.1:
// what the fake socket cannot show (the kernel's pieces, servers that close
// early, a port nobody listens on); the time-outs are the fake timer's tests.
// Each adapter of the Socket and Timer ports runs the same tests: add its
// harness to Adapters.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "net/cInternet.h"
#include "posix/LoopbackServer.h"

#ifdef _WIN32
#include "win32/WinAdapter.h"
#else
#include "posix/cPosixLoop.h"
#include "posix/cPosixSocket.h"
#include "posix/cPosixTimer.h"
#endif

namespace toval::test {
namespace {

#ifdef _WIN32
using Adapters = ::testing::Types<WinAdapter>;
#else
struct PosixAdapter {
    std::shared_ptr<Socket> MakeSocket() { return std::make_shared<cPosixSocket>(loop); }
    std::shared_ptr<Timer> MakeTimer() { return std::make_shared<cPosixTimer>(loop); }
    bool RunUntil(const std::function<bool()>& done, int32_t limitMs) {
        return loop.RunUntil(done, limitMs);
    }
    cPosixLoop loop;
};

#ifdef TOVAL_QT_ADAPTER
// The same tests, built into the Qt program's tests.
}  // namespace
}  // namespace toval::test
#include "QtAdapter.h"
namespace toval::test {
namespace {
using Adapters = ::testing::Types<QtAdapter>;
#else
using Adapters = ::testing::Types<PosixAdapter>;
#endif  // TOVAL_QT_ADAPTER
#endif  // _WIN32

template <class Adapter>
class InternetLoopbackTest : public ::testing::Test {
  protected:
    InternetLoopbackTest() {
        net.setSocket(adapter.MakeSocket());
        net.setTime(adapter.MakeTimer());
        net.onieEvent = [this](int16_t s) { states.push_back(s); };
    }

    // Runs one GET on the port to its event; the state, or 0 when none came in time.
    int16_t fetch(int32_t port) {
        const size_t before = states.size();
        net.getPage("http://127.0.0.1:" + std::to_string(port) + "/", 1, "", true);
        return adapter.RunUntil([&] { return states.size() > before; }, 8000) ? states.back() : 0;
    }

    Adapter adapter;
    cGlobals globals;
    cInternet net{globals};
    std::vector<int16_t> states;
};

TYPED_TEST_SUITE(InternetLoopbackTest, Adapters);

// The bytes of requests and answers are the fake socket's tests; here a big answer comes
// in the kernel's pieces and arrives whole, and servers that close early fail.
TYPED_TEST(InternetLoopbackTest, ABigAnswerComesBackWholeAndEarlyClosesFail) {
    const std::string big(1 << 20, 'z');
    LoopbackServer server([&](LoopbackServer::Connection& c) {
        c.ReadRequest();
        c.Send("HTTP/1.0 200 OK\r\nX: y\r\n\r\n" + big);
    });
    ASSERT_EQ(this->fetch(server.Port()), kInternetSuccess);
    EXPECT_EQ(this->net.Data(), big);

    using C = cNetError::Category;
    for (const bool readsRequest : {false, true}) {
        LoopbackServer closing([&](LoopbackServer::Connection& c) {
            if (readsRequest) c.ReadRequest();
        });
        EXPECT_EQ(this->fetch(closing.Port()), kInternetFailure);
        // Closing with the request unread resets the connection, unless the close
        // arrives before the request leaves; closing after it is an empty answer.
        const C category = this->net.Error().category;
        EXPECT_TRUE(category == C::kBadAnswer || (!readsRequest && category == C::kConnection))
            << this->net.Error().message;
        EXPECT_EQ(this->net.Data(), "");
    }
}

// The port's own promises, which every adapter keeps.
TYPED_TEST(InternetLoopbackTest, EventsComeFromTheLoopInOrder) {
    LoopbackServer server([](LoopbackServer::Connection& c) {
        std::string got;
        if (c.Read(got, 4)) c.Send("echo:" + got);
    });
    auto socket = this->adapter.MakeSocket();
    std::vector<std::string> log;
    int32_t remaining = -1;
    std::string received;
    socket->onConnect = [&] {
        log.push_back("connect");
        socket->SendData("ping");
    };
    socket->onSendProgress = [&](int32_t, int32_t left) { remaining = left; };
    socket->onDataArrival = [&](int32_t) {
        std::string piece;
        socket->GetData(piece);
        received += piece;
    };
    socket->onClose = [&] { log.push_back("close"); };
    socket->onError = [&](int32_t, const std::string&) { log.push_back("error"); };

    socket->Connect("127.0.0.1", server.Port());
    EXPECT_TRUE(log.empty());  // nothing is raised inside the call
    ASSERT_TRUE(
        this->adapter.RunUntil([&] { return !log.empty() && log.back() == "close"; }, 5000));
    EXPECT_EQ(log, (std::vector<std::string>{"connect", "close"}));
    EXPECT_EQ(remaining, 0);
    EXPECT_EQ(received, "echo:ping");
}

TYPED_TEST(InternetLoopbackTest, FailuresArriveAsErrorEventsWithTheWinsockNumbers) {
    const int32_t closed = LoopbackServer([](LoopbackServer::Connection&) {}).Port();
    const struct {
        std::string host;
        int32_t port;
        int32_t number;
    } cases[] = {
        {"127.0.0.1", closed, kSckConnectionRefused},  // nothing listens there any more
        {"lyrics.invalid", 80, kSckHostNotFound},
        {"127.0.0.1", 0, kSckInvalidArg},
        {"127.0.0.1", 65536, kSckInvalidArg},
    };
    auto socket = this->adapter.MakeSocket();
    std::vector<int32_t> errors;
    socket->onError = [&](int32_t number, const std::string&) { errors.push_back(number); };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.host + ":" + std::to_string(c.port));
        errors.clear();
        socket->Connect(c.host, c.port);
        EXPECT_TRUE(errors.empty());
        ASSERT_TRUE(this->adapter.RunUntil([&] { return !errors.empty(); }, 5000));
        EXPECT_EQ(errors, std::vector<int32_t>{c.number});
    }
    // Sending without a connection, and a Close that cancels what is pending.
    errors.clear();
    socket->Close();
    socket->SendData("x");
    ASSERT_TRUE(this->adapter.RunUntil([&] { return !errors.empty(); }, 1000));
    EXPECT_EQ(errors, std::vector<int32_t>{kSckBadState});
    socket->Connect("", 80);
    socket->Close();
    this->adapter.RunUntil([] { return false; }, 100);
    EXPECT_EQ(errors.size(), 1u);
}

TYPED_TEST(InternetLoopbackTest, TimerTicksOnlyWhileEnabledWithAnInterval) {
    auto timer = this->adapter.MakeTimer();
    int ticks = 0;
    timer->onTimer = [&] { ++ticks; };
    timer->setEnabled(true);  // no interval yet: never ticks
    this->adapter.RunUntil([] { return false; }, 60);
    EXPECT_EQ(ticks, 0);
    timer->setInterval(10);
    EXPECT_TRUE(this->adapter.RunUntil([&] { return ticks >= 3; }, 2000));
    timer->setEnabled(false);
    const int stopped = ticks;
    this->adapter.RunUntil([] { return false; }, 60);
    EXPECT_EQ(ticks, stopped);
    // A tick may drop its own timer.
    timer->onTimer = [&] {
        ++ticks;
        timer.reset();
    };
    timer->setEnabled(true);
    EXPECT_TRUE(this->adapter.RunUntil([&] { return !timer; }, 2000));
}

}  // namespace
}  // namespace toval::test
