// The lyric service and the lyric lookup over real sockets against a service
// on 127.0.0.1 that speaks the protocol: a lyric sent and fetched back whole,
// and a lookup that keeps what the service sent. How each answer is sorted is
// shown on the fake socket (cTovalSiteTest) and through the tool (ServiceCliTest).
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "core/cLyricFile.h"
#include "fakes/FakeRandom.h"
#include "fakes/TempDir.h"
#include "lyric/cLyric.h"
#include "lyric/cMusic.h"
#include "net/cTovalSite.h"
#include "posix/FakeLyricService.h"
#include "posix/cPosixLoop.h"
#include "posix/cPosixSocket.h"
#include "posix/cPosixTimer.h"

namespace toval::test {
namespace {

std::u16string Host(const FakeLyricService& service) {
    const std::string host = service.Host();
    return std::u16string(host.begin(), host.end());
}

TEST(ServiceLoopback, SentLyricComesBackFromTheServiceAsItWasSent) {
    FakeLyricService service;
    cPosixLoop loop;
    cGlobals globals;
    globals.Settings.conn_Server = Host(service);
    globals.PlaylistPosition = 1;
    cTovalSite site{globals};
    site.setSocket(std::make_shared<cPosixSocket>(loop));
    site.setTime(std::make_shared<cPosixTimer>(loop));
    std::vector<int32_t> results;
    site.onToval = [&](int32_t result, int32_t) { results.push_back(result); };
    const auto await = [&](size_t count) {
        return loop.RunUntil([&] { return results.size() >= count; }, 8000);
    };
    cMusic track;
    track.setArtist(u"Ann \u00c9");
    track.setTitle(u"Harbour & Lanterns");
    auto lyric = std::make_shared<cLyric>();
    lyric->setLoad(
        u"[PROPERTY]\r\nMUTATION:4242\r\nRIGHTTOLEFT:0\r\n[\\PROPERTY]"
        u"[1000]<1000>Caf\u00e9 <1500>& <1800>\u4e2d\r\n[]\r\n[3000]last\r\n");
    site.Save(track, lyric, 7);
    ASSERT_TRUE(await(1));
    EXPECT_EQ(results[0], cTovalSite::kSuccess);
    const auto stored = service.Stored("Ann \xC3\x89", "Harbour & Lanterns");
    EXPECT_EQ(stored.mutation, "4242");
    EXPECT_EQ(stored.lyric,
              "[PROPERTY]\r\nMUTATION:4242\r\nRIGHTTOLEFT:0\r\n[\\PROPERTY]"
              "[1000]<1000>Caf\xC3\xA9 <1500>& <1800>\xE4\xB8\xAD\r\n[]\r\n[3000]last\r\n");

    // Asked for it with another revision, the service sends it back; asked
    // with the same revision, it has nothing newer.
    site.Load(track, 8, 1);
    ASSERT_TRUE(await(2));
    EXPECT_EQ(results[1], cTovalSite::kLyric);
    cLyric back;
    back.setLoad(site.Lyric());
    EXPECT_EQ(back.TVL(), lyric->TVL());
    site.Load(track, 9, 4242);
    ASSERT_TRUE(await(3));
    EXPECT_EQ(results[2], cTovalSite::kNoUpdates);
}

TEST(ServiceLoopback, TrackWithoutLyricGetsOneFromTheServiceAndKeepsIt) {
    FakeLyricService service;
    service.AddLyric("Ann", "Tide", "[500]from the service\r\n", "77");
    TempDir music, cache;
    cPosixLoop loop;
    cGlobals globals;
    globals.Settings.conn_Server = Host(service);
    globals.Settings.cache_simple = false;
    globals.PlaylistPosition = 9;
    FakeRandom random;
    cLyricFile lookup(globals, std::make_unique<cCache>(globals, random, cache.folder()));
    lookup.setSocket(std::make_shared<cPosixSocket>(loop));
    lookup.setTime(std::make_shared<cPosixTimer>(loop));
    auto track = std::make_shared<cMusic>();
    track->setArtist(u"Ann");
    track->setTitle(u"Tide");
    track->setFileAddress(music.file(u"tide.ogg"));
    lookup.setMusic(track);
    std::vector<int32_t> statuses;
    lookup.onLoaded = [&](int32_t, int32_t status) { statuses.push_back(status); };

    lookup.Load(9);
    EXPECT_EQ(statuses, std::vector<int32_t>{4});
    EXPECT_EQ(lookup.Lyric(), u"Ann - Tide\r\n\r\n");
    ASSERT_TRUE(loop.RunUntil([&] { return statuses.size() == 2; }, 8000));
    EXPECT_EQ(statuses[1], 2);
    std::ifstream in(music.path() / "tide.tvl", std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "[500]from the service\r\n");

    // Next time the file beside the track answers; the service is asked again
    // only for something newer than the lyric at hand.
    lookup.Load(9);
    EXPECT_EQ(statuses.back(), 1);
    lookup.LoadFrom(2, 9, 77);
    loop.RunUntil([&] { return service.Requests().size() == 2; }, 8000);
    loop.RunUntil([] { return false; }, 200);
    EXPECT_EQ(statuses.size(), 3u) << "nothing newer: no event";
}

}  // namespace
}  // namespace toval::test
