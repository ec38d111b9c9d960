// A real toval-service process on 127.0.0.1: the program's own client
// (cTovalSite over the POSIX socket) against it, and hostile clients that must
// each get an answer or a closed connection in bounded time while the service
// goes on answering others.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "fakes/TempDir.h"
#include "lyric/cLyric.h"
#include "lyric/cMusic.h"
#include "net/cTovalSite.h"
#include "posix/LoopbackServer.h"
#include "posix/cPosixLoop.h"
#include "posix/cPosixSocket.h"
#include "posix/cPosixTimer.h"
#include "service/ServiceProcess.h"

namespace toval::test {
namespace {

// A raw client: what it got back, and whether the service closed the
// connection (rather than leaving it silent for 5 s).
std::pair<std::string, bool> Exchange(int port, const std::string& request) {
    std::string answer;
    const int fd = LoopbackServer::ConnectLoopback(port);
    if (fd < 0) return {};
    SetTimeouts(fd, 5);
    ::send(fd, request.data(), request.size(), MSG_NOSIGNAL);
    char buffer[4096];
    ssize_t n;
    while ((n = ::recv(fd, buffer, sizeof buffer, 0)) > 0)
        answer.append(buffer, static_cast<size_t>(n));
    const bool closed = n == 0 || errno != EAGAIN;  // an end or a reset, not the time-out
    ::close(fd);
    return {answer, closed};
}

std::string Get(const std::string& query) {
    return "GET /website/tvl_get_url.php?" + query + " HTTP/1.0\r\nHost: x\r\n\r\n";
}

// (Matching, ranking and refusals are the service's own unit tests'.)
TEST(ServiceLoopback, TheProgramLooksUpSendsAndHearsOfANewVersion) {
    TempDir dir;
    ServiceProcess service({"--db", (dir.path() / "l.db").string(), "--announce", "1030002"});
    ASSERT_NE(service.Port(), 0) << service.Log();
    // The program's side: its client on the POSIX loop.
    cPosixLoop loop;
    cGlobals globals;
    const std::string host = "127.0.0.1:" + std::to_string(service.Port());
    globals.Settings.conn_Server = std::u16string(host.begin(), host.end());
    const auto timer = std::make_shared<cPosixTimer>(loop);
    timer->setInterval(kInternetTimeout);
    std::vector<int32_t> results;
    cTovalSite site{globals};
    site.setSocket(std::make_shared<cPosixSocket>(loop));
    site.setTime(timer);
    site.onToval = [&](int32_t result, int32_t) { results.push_back(result); };
    const auto await = [&] {  // the result of the request just started; -1 when none came
        const size_t want = results.size() + 1;
        return loop.RunUntil([&] { return results.size() >= want; }, 15000) ? results.back() : -1;
    };
    cMusic track;
    track.setArtist(u"Ann \u00c9lise");
    track.setTitle(u"Harbour & <Lights>");
    track.setMiliDuration(215000);

    site.Load(track, 1, 0);
    EXPECT_EQ(await(), cTovalSite::kNotFound);
    EXPECT_EQ(globals.lastUpdateVersion, 1030002);

    // Text that the answer's envelope and HTML decoding must carry intact.
    const auto sent = std::make_shared<cLyric>();
    sent->setLoad(
        u"[PROPERTY]\r\nMUTATION:4242\r\nRIGHTTOLEFT:0\r\n[\\PROPERTY]"
        u"[1000]<1000>Caf\u00e9 <1500>& <1800>\u4e2d\r\n[2000]</TOVAL> <br> :x\r\n[]\r\n");
    site.Save(track, sent, 1);
    EXPECT_EQ(await(), cTovalSite::kSuccess);

    site.Load(track, 1, 0);
    EXPECT_EQ(await(), cTovalSite::kLyric);
    cLyric back;
    back.setLoad(site.Lyric());
    EXPECT_EQ(back.TVL(), sent->TVL());  // its properties hold the revision 4242

    EXPECT_EQ(service.Stop(5000), 0);
    const std::string& log = service.Log();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1 + 3 + 1) << log;
    EXPECT_NE(log.find("POST /website/tvl_insert.php 200 :SUCCESS (lyric 1)"), std::string::npos)
        << log;
    EXPECT_NE(log.find("toval-service: stopped"), std::string::npos);
}

TEST(ServiceLoopback, HostileClientsAreCutOffAndOthersStillServed) {
    // The thousand idle connections need file descriptors on both sides.
    rlimit files{};
    ::getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = std::min<rlim_t>(std::max<rlim_t>(files.rlim_cur, 4096), files.rlim_max);
    ::setrlimit(RLIMIT_NOFILE, &files);
    const int idle = static_cast<int>(std::min<rlim_t>(1000, files.rlim_cur / 2 - 50));

    TempDir dir;
    ServiceProcess service({"--db", (dir.path() / "l.db").string(), "--deadline", "2",
                            "--max-lyric-bytes", "10000", "--threads", "128"});
    ASSERT_NE(service.Port(), 0) << service.Log();
    const int port = service.Port();

    // A request line of 1 MB.
    const auto [huge, hugeClosed] = Exchange(port, Get(std::string(1 << 20, 'a')));
    EXPECT_TRUE(hugeClosed);
    EXPECT_EQ(huge.find("200 OK"), std::string::npos);

    // A body larger than the limit.
    const auto [announced, announcedClosed] =
        Exchange(port,
                 "POST /website/tvl_insert.php HTTP/1.0\r\nContent-Type: "
                 "application/x-www-form-urlencoded\r\nContent-Length: "
                 "200000\r\n\r\n" +
                     std::string(200000, 'x'));
    EXPECT_TRUE(announcedClosed);
    EXPECT_NE(announced.find("413"), std::string::npos) << announced.substr(0, 100);

    // A thousand connections opened and left idle (a slow sender meets the
    // same watch): the service closes each within the deadline, and serves
    // others again. (Not checked: a client queued behind them while they hold
    // every thread is sometimes cut with them, unanswered.)
    std::vector<int> idlers;
    for (int i = 0; i < idle; ++i) {
        const int fd = LoopbackServer::ConnectLoopback(port);
        if (fd >= 0) idlers.push_back(fd);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(3500));
    int closed = 0;
    for (int fd : idlers) {
        char c;
        if (::recv(fd, &c, 1, MSG_DONTWAIT) == 0) ++closed;
        ::close(fd);
    }
    EXPECT_EQ(closed, idle);

    EXPECT_NE(Exchange(port, Get("art=A&tit=T&dur=1&mut=0&get=Get")).first.find(":NOTFOUND"),
              std::string::npos);
    EXPECT_EQ(service.Stop(8000), 0);
}

}  // namespace
}  // namespace toval::test
