#include "core/cLyricFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "fakes/FakeRandom.h"
#include "fakes/FakeSocket.h"
#include "fakes/FakeTimer.h"
#include "fakes/TempDir.h"
#include "lyric/cMusic.h"

namespace toval::test {
namespace {

using Loaded = std::tuple<int32_t, int32_t, std::u16string>;  // request, status, lyric

class LyricFileTest : public ::testing::Test {
  protected:
    LyricFileTest() {
        globals.Settings.conn_Server = u"lyrics.test";
        globals.PlaylistPosition = 3;
        track->setArtist(u"Ann");
        track->setTitle(u"Song [Live] <edit>");
        track->setFileAddress(music.file(u"song.mp3"));
        lookup.setMusic(track);
        lookup.setSocket(socket);
        lookup.setTime(std::make_shared<FakeTimer>());
        lookup.onLoaded = [this](int32_t id, int32_t status) {
            loaded.push_back({id, status, lookup.Lyric()});
        };
    }

    void serve(const std::string& body) {
        socket->accept();
        socket->answer("HTTP/1.0 200 OK\r\n\r\n<TOVAL>" + body + "</TOVAL>");
        socket->hangUp();
    }

    TempDir music, cacheDir;
    cGlobals globals;
    FakeRandom random;
    std::shared_ptr<FakeSocket> socket = std::make_shared<FakeSocket>();
    std::shared_ptr<cMusic> track = std::make_shared<cMusic>();
    cLyricFile lookup{globals, std::make_unique<cCache>(globals, random, cacheDir.folder()),
                      nullptr};
    std::vector<Loaded> loaded;
};

TEST_F(LyricFileTest, FilesBesideTheTrackComeFirstTvlBeforeLrc) {
    music.Write("song.lrc", "[00:01.50]from lrc\r\n");
    lookup.Load(3);
    // A tvl that is no text counts as missing.
    globals.Settings.cache_simple = false;
    music.Write("song.tvl", std::string("ID3\x03\0\0\0", 7));
    lookup.Load(5);
    music.Write("song.tvl", "[1000]from tvl \xC3\xA9\r\n");
    lookup.Load(6);
    EXPECT_EQ(loaded, (std::vector<Loaded>{{3, 0, u"[00:01.50]from lrc\r\n"},
                                           {5, 1, u"[00:01.50]from lrc\r\n"},
                                           {6, 1, u"[1000]from tvl \u00e9\r\n"}}));
    EXPECT_TRUE(socket->connects.empty()) << "a local lyric asks no service";
}

TEST_F(LyricFileTest, ServiceIsAskedWithAWaitingTextThatCannotParseAsTags) {
    lookup.Load(3);
    serve("[1000]got it");
    EXPECT_NE(socket->sent.find("&mut=0&"), std::string::npos);  // any version will do
    EXPECT_EQ(loaded, (std::vector<Loaded>{{3, 4, u"Ann - Song (Live) (edit)\r\n\r\n"},
                                           {3, 2, u"[1000]got it"}}));
}

TEST_F(LyricFileTest, ServiceLyricGoesBesideTheTrackOrToTheCacheWhenThereIsNoPlace) {
    globals.Settings.cache_simple = false;
    lookup.Load(3);
    serve("[1000]written \xE2\x82\xAC");
    EXPECT_EQ(music.Read("song.tvl"), "[1000]written \xE2\x82\xAC");
    EXPECT_EQ(lookup.Cache().GetLyric(track), u"");

    // A folder that cannot take the file: the cache keeps the lyric.
    auto gone = std::make_shared<cMusic>(*track);
    gone->setTitle(u"Elsewhere");  // a new request, not the repeat of the last one
    gone->setFileAddress((music.path() / "missing" / "other.mp3").u16string());
    lookup.setMusic(gone);
    lookup.Load(3);
    serve("[1000]kept in cache");
    EXPECT_EQ(lookup.Cache().GetLyric(gone), u"[1000]kept in cache");

    // A stream has no folder: no ".tvl" is written in the working folder.
    auto stream = std::make_shared<cMusic>();
    stream->setTitle(u"Radio");
    lookup.setMusic(stream);
    lookup.Load(3);
    serve("[1]on air");
    EXPECT_FALSE(std::filesystem::exists(".tvl"));
}

TEST_F(LyricFileTest, NoAnswerButALyricReplacesTheLyricAtHand) {
    // Asked for something newer than the lyric at hand: no answer but a lyric
    // raises anything, and the lyric stays as it was.
    music.Write("song.tvl", "[1]mine");
    lookup.Load(3);
    loaded.clear();
    int32_t mutation = 90;
    for (const char* body : {":NOTFOUND", ":NOUPDATES"}) {
        lookup.LoadFrom(2, 3, ++mutation);
        serve(body);
        EXPECT_EQ(std::tuple(loaded.size(), lookup.Lyric()), std::tuple(0u, u"[1]mine")) << body;
    }
}

}  // namespace
}  // namespace toval::test
