#include "net/cTovalSite.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/mFile.h"
#include "config/cConfig.h"
#include "config/cIniEngine.h"
#include "fakes/CapturedTrail.h"
#include "fakes/FakeShell.h"
#include "fakes/FakeSocket.h"
#include "fakes/FakeTimer.h"
#include "fakes/TempDir.h"
#include "lyric/cLyric.h"
#include "lyric/cMusic.h"

namespace toval::test {
namespace {

struct Raised {
    int32_t result, id;
    std::u16string lyric;
    cNetError error;
    bool operator==(const Raised&) const = default;
};

// A shell whose folders are the temp folder, set before the settings look for their file.
FakeShell ShellIn(const TempDir& dir) {
    FakeShell shell;
    shell.specialFolder = dir.path().u16string();
    shell.programFolder = dir.folder();
    return shell;
}

class TovalSiteTest : public ::testing::Test {
  protected:
    TovalSiteTest() {
        globals.Settings.conn_Server = u"lyrics.test";
        site.setSocket(socket);
        site.setTime(timer);
        site.onToval = [this](int32_t result, int32_t id) {
            raised.push_back({result, id, site.Lyric(), site.Error()});
        };
        music.setArtist(u"Ann & Bo");
        music.setAlbum(u"");
        music.setTitle(u"Caf\u00e9 / Night?");
        music.setMiliDuration(215500);
        music.setFileSize(4096);
    }

    // The peer accepts, answers with a 200 page around body and closes.
    void answer(const std::string& body) {
        socket->accept();
        socket->answer("HTTP/1.0 200 OK\r\nContent-Type: text/html\r\n\r\n" + body);
        socket->hangUp();
    }
    // The request line.
    std::string line() const { return socket->sent.substr(0, socket->sent.find("\r\n")); }

    TempDir dir;
    FakeShell shell = ShellIn(dir);
    cIniEngine ini;
    cGlobals globals;
    cConfig config{globals, shell, ini};
    std::shared_ptr<FakeSocket> socket = std::make_shared<FakeSocket>();
    std::shared_ptr<FakeTimer> timer = std::make_shared<FakeTimer>();
    cTovalSite site{globals, &config};
    cMusic music;
    std::vector<Raised> raised;
};

TEST_F(TovalSiteTest, LoadAsksTheGetScriptWithTheTrackInOrder) {
    site.Load(music, 12, -5);
    socket->accept();
    EXPECT_EQ(line(),
              "GET /website/tvl_get_url.php?art=Ann+%26+Bo&alb=&tit=Caf%C3%A9+/+Night%3F"
              "&dur=216&siz=4096&mut=-5&vrs=1030001&get=Get HTTP/1.0");
    // The mode argument sorts into the request mode.
    for (const auto& [mode, requestMode] : {std::pair{-5, 1}, {kUnset, 2}, {0, 0}}) {
        site.Load(music, 13, mode);
        EXPECT_EQ(site.Mode(), requestMode) << mode;
    }
}

// A karaoke lyric goes as tvl=, as the command-line tool's send shows.
TEST_F(TovalSiteTest, SaveSendsLineTimedLyricsAsLrc) {
    auto lines = std::make_shared<cLyric>();
    lines->setLoad(u"[ar:X]\r\n[00:01.50]one\r\n[00:02.00]two\r\n");
    site.Save(music, lines, 6);
    socket->accept();
    EXPECT_EQ(line(), "POST /website/tvl_insert.php HTTP/1.0");
    EXPECT_EQ(socket->sent.substr(socket->sent.find("\r\n\r\n") + 4),
              "art=Ann+%26+Bo&alb=&tit=Caf%C3%A9+/+Night%3F&dur=216&siz=4096&mut=-2147483648"
              "&vrs=1030001&lrc=%5Bar%3AX%5D%0D%0A%5B00%3A01%2E50%5Done%0D%0A%5B00%3A02%2E00%5D"
              "two%0D%0A&add=Add");
}

TEST(cTovalSiteRule, LrcOnlyWhenNothingIsLost) {
    const std::pair<const char16_t*, bool> cases[] = {
        {u"[1000]<>one <>two", true},  // words without times
        {u"[1000]<1000>Hel<1500>lo", false},
        {u"[1000]one\r\n[]gap\r\n[3000]three", false},  // an untimed line anywhere
        {u"[1000][9000]chorus", false},                 // two times: LRC keeps the first
        {u"[1005]one", false},                          // LRC keeps hundredths
        {u"[PROPERTY]\r\nTRACKLENGTH:5000\r\n[\\PROPERTY][1000]one", false},
    };
    for (const auto& [text, lrc] : cases) {
        cLyric lyric;
        lyric.setLoad(text);
        EXPECT_EQ(cTovalSite::SendsAsLRC(lyric), lrc) << lyric.TVL().size();
    }
}

TEST(cTovalSiteAnswer, SortsEnvelopeBodiesIntoResultCodesAndSaysWhyOnFailure) {
    using C = cNetError::Category;
    using S = cTovalSite;
    const std::string none = "the service's answer holds no <TOVAL> envelope";
    const std::string said = "the service answered ";
    // The version the service announces counts only when it is a number, and
    // whether or not the envelope is whole.
    const struct {
        std::string data;
        int16_t result;
        cNetError error;
        std::string body = {}, server = {};
        int32_t version = kUnset;
    } cases[] = {
        {"<LLV>1030002</LLV><TOVAL>:SUCCESS</TOVAL>", S::kSuccess, {}, "", "", 1030002},
        {"<TOVAL>:SQL_ERROR</TOVAL>",
         S::kSqlError,
         {C::kService, "the service's database failed (':SQL_ERROR')"}},
        {"<LLV>99999999999</LLV><TOVAL>:NOUPDATES</TOVAL>", S::kNoUpdates, {}},
        {"<TOVAL>:NOTFOUND</TOVAL>", S::kNotFound, {}},
        {"<TOVAL>:UPDATESERVER:new.host:8080</TOVAL>", S::kNotFound, {}, "", "new.host:8080"},
        // The first envelope, its close marker searched behind the open one; a
        // lyric keeps its bytes as they came.
        {"</TOVAL><TOVAL>[0]\xC3\xA9\r\n</TOVAL><TOVAL>two</TOVAL>",
         S::kLyric,
         {},
         "[0]\xC3\xA9\r\n"},
        // Codes are compared whole and case-sensitively.
        {"<TOVAL>:notfound</TOVAL>", S::kFailure, {C::kService, said + "':notfound'"}},
        {"<TOVAL>:UPDATESERVER:</TOVAL>", S::kFailure, {C::kService, said + "':UPDATESERVER:'"}},
        {"<TOVAL></TOVAL>", S::kFailure, {C::kBadAnswer, "the service's answer is empty"}},
        {"<LLV>5</LLV><TOVAL>:SUCCESS", S::kFailure, {C::kBadAnswer, none}, "", "", 5},
        {"<LLV>new</LLV><toval>:SUCCESS</toval>", S::kFailure, {C::kBadAnswer, none}},
    };
    for (const auto& c : cases) {
        const auto answer = S::ReadAnswer(c.data);
        EXPECT_EQ(answer.result, c.result) << c.data;
        EXPECT_EQ(answer.error, c.error) << c.data;
        if (c.result == S::kLyric) {
            EXPECT_EQ(answer.body, c.body);
        }
        EXPECT_EQ(answer.newServer, c.server) << c.data;
        EXPECT_EQ(answer.hasVersion ? answer.version : kUnset, c.version) << c.data;
    }
}

TEST_F(TovalSiteTest, AnswersBecomeOneEventWithTheRequestId) {
    // A lyric, UTF-8 with HTML line breaks and references.
    site.Load(music, 21, 0);
    answer("<html><TOVAL>[1000]Caf\xC3\xA9 &amp; more<br>[2000]two</TOVAL></html>");
    EXPECT_EQ(raised, (std::vector<Raised>{{0, 21, u"[1000]Caf\u00e9 & more\r\n[2000]two", {}}}));

    // A failure on the wire, a page that is not the service's answer and a save
    // without a lyric: result 5 with the reason beside it, and one trail line each.
    // Nothing but a lyric leaves a lyric behind.
    CapturedTrail trail;
    raised.clear();
    site.Load(music, 50, 50);
    socket->fail(kSckHostNotFound);
    site.Load(music, 51, 51);
    answer("<p>maintenance</p>");
    site.Save(music, nullptr, 52);
    using C = cNetError::Category;
    ASSERT_EQ(raised.size(), 3u);
    EXPECT_EQ(raised[0], (Raised{5, 50, u"", {C::kResolve, "cannot resolve lyrics.test"}}));
    EXPECT_EQ(raised[1].error.category, C::kBadAnswer);
    EXPECT_EQ(raised[2], (Raised{5, 52, u"", {C::kInternal, "there is no lyric to send"}}));
    EXPECT_EQ(trail.lines.size(), 3u);
    // Success clears the reason.
    site.Load(music, 54, 54);
    answer("<TOVAL>:NOTFOUND</TOVAL>");
    EXPECT_EQ(raised.back(), (Raised{4, 54, u"", {}}));
}

TEST_F(TovalSiteTest, UpdateServerWritesTheHostAndSavesTheSettingsGroup) {
    site.Load(music, 2, 2);
    answer("<TOVAL>:UPDATESERVER:new.example:8080</TOVAL>");
    const std::u16string file = dir.folder() + u"Toval" + kPathSeparator + u"config.ini";
    EXPECT_EQ(ini.ReadString(file, "toval", "conn_Server", "", 1024), "new.example:8080");
}

}  // namespace
}  // namespace toval::test
