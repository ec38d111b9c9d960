// The store and the service's answers on both databases: SQLite in a temp
// folder and PostgreSQL on a private cluster. Each case gets an empty database.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "base/cStrings.h"
#include "cLyricService.h"
#include "cPgStore.h"
#include "cSqliteStore.h"
#include "fakes/TempDir.h"
#include "mMatchKey.h"
#include "service/PgCluster.h"

namespace toval::test {
namespace {

using service::cLyricRecord;
using service::cLyricService;
using service::cServiceOptions;
using service::iLyricStore;
using service::LyricKind;

const std::string kWords =
    "[PROPERTY]\r\nMUTATION:11\r\nRIGHTTOLEFT:0\r\n[\\PROPERTY][1000]<1000>Hi <1500>there\r\n";
const std::string kLines = "[00:01.00]Hi there\r\n[00:02.00]again\r\n";
const std::string kPlain = "Hi there\r\nagain\r\n";

// A form value as the program encodes it.
std::string Enc(const std::string& text) {
    return cStrings().stringTOhtml(text);
}

std::string GetQuery(const std::string& artist, const std::string& title, int dur, int mut,
                     const std::string& album = "") {
    return "art=" + Enc(artist) + "&alb=" + Enc(album) + "&tit=" + Enc(title) +
           "&dur=" + std::to_string(dur) + "&siz=1&mut=" + std::to_string(mut) +
           "&vrs=1030001&get=Get";
}
std::string SendBody(const std::string& artist, const std::string& title, int dur, int mut,
                     const std::string& lyric, const std::string& key = "tvl") {
    return "art=" + Enc(artist) + "&alb=&tit=" + Enc(title) + "&dur=" + std::to_string(dur) +
           "&siz=1&mut=" + std::to_string(mut) + "&vrs=1030001&" + key + "=" + Enc(lyric) +
           "&add=Add";
}
// Every field of a record, to compare whole records.
auto Fields(const cLyricRecord& r) {
    return std::tie(r.id, r.artist, r.album, r.title, r.artistKey, r.albumKey, r.titleKey,
                    r.duration, r.fileSize, r.mutation, r.kind, r.text, r.address, r.created);
}

// The answer inside the envelope.
std::string Body(const std::string& page) {
    const size_t open = page.find("<TOVAL>");
    const size_t close = page.find("</TOVAL>");
    return open == std::string::npos || close == std::string::npos
               ? "(no envelope)"
               : page.substr(open + 7, close - open - 7);
}

class StoreTest : public ::testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        if (std::string(GetParam()) == "sqlite") {
            store = std::make_unique<service::cSqliteStore>((dir.path() / "l.db").string(), 4);
        } else {
            const std::string conninfo = PgCluster::Shared().NewDatabase();
            if (conninfo.empty()) GTEST_SKIP() << "PostgreSQL: " << PgCluster::Shared().Why();
            store = std::make_unique<service::cPgStore>(conninfo, 4);
        }
    }

    // Stores a lyric directly (as the import does), returning its revision.
    int64_t Put(const std::string& artist, const std::string& title, int32_t duration,
                const std::string& text, int32_t mutation = 1, const std::string& album = "") {
        cLyricRecord r{.artist = artist,
                       .album = album,
                       .title = title,
                       .artistKey = service::MatchKey(artist),
                       .albumKey = service::MatchKey(album),
                       .titleKey = service::MatchKey(title),
                       .duration = duration,
                       .mutation = mutation,
                       .kind = cLyricService::Kind(text),
                       .text = text,
                       .address = "test"};
        EXPECT_TRUE(store->Add(r));
        return r.id;
    }

    TempDir dir;
    std::unique_ptr<iLyricStore> store;
};

TEST_P(StoreTest, KeepsEveryFieldAndEveryRevisionInOrder) {
    // SQL metacharacters and text beyond ASCII go in and come out as they were.
    const std::string nasty = "O'Brien\"; DROP TABLE lyrics; -- \\ % _ \xE4\xB8\xAD";
    cLyricRecord r{.artist = nasty,
                   .album = "al'b",
                   .title = "t",
                   .artistKey = "k1",
                   .albumKey = "k3",
                   .titleKey = "k2",
                   .duration = 215,
                   .fileSize = 2147483647,
                   .mutation = -2147483647 - 1,
                   .kind = LyricKind::kWords,
                   .text = kWords + nasty,
                   .address = "::1",
                   .created = 1700000000123};
    ASSERT_TRUE(store->Add(r));
    cLyricRecord second = r;
    ASSERT_TRUE(store->Add(second));
    EXPECT_GT(second.id, r.id);

    const auto found = store->Find("k1", "k2");
    ASSERT_TRUE(found);
    ASSERT_EQ(found->size(), 2u);
    EXPECT_EQ(Fields((*found)[0]), Fields(r));
    EXPECT_EQ((*found)[1].id, second.id);

    // Many at once: all of them, in order, after the two above.
    std::vector<cLyricRecord> batch(3, r);
    ASSERT_TRUE(store->AddMany(batch));
    EXPECT_GT(batch[0].id, second.id);
    EXPECT_LT(batch[0].id, batch[2].id);
    EXPECT_EQ(store->Find("k1", "k2")->size(), 5u);

    EXPECT_TRUE(store->Find(nasty, "k2")->empty());
    EXPECT_EQ(store->Count(), 5);
    EXPECT_EQ(store->Check(), "");
}

TEST_P(StoreTest, ParallelSendsAreAllStoredUnderDistinctRevisions) {
    cServiceOptions options;
    options.sendsPerHour = 0;
    cLyricService service(*store, options);
    std::vector<std::thread> threads;
    std::vector<std::string> answers(4 * 15);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 15; ++i) {
                const int n = t * 15 + i;
                answers[n] = Body(service
                                      .Insert(SendBody("Band", "Song " + std::to_string(n % 3), 100,
                                                       n, kWords + std::to_string(n)),
                                              "10.0.0." + std::to_string(t), 1)
                                      .page);
                Body(service.Get(GetQuery("Band", "Song 1", 100, 0)).page);
            }
        });
    }
    for (auto& t : threads)
        t.join();
    for (const auto& a : answers)
        EXPECT_EQ(a, ":SUCCESS");
    EXPECT_EQ(store->Count(), 60);
    std::vector<int64_t> ids;
    for (int s = 0; s < 3; ++s) {
        const auto found = store->Find("band", "song" + std::to_string(s));
        for (const auto& r : *found)
            ids.push_back(r.id);
    }
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(std::unique(ids.begin(), ids.end()), ids.end());
    EXPECT_EQ(ids.size(), 60u);
    EXPECT_EQ(store->Check(), "");
}

TEST_P(StoreTest, LookUpMatchesArtistAndTitleLooselyAndTheDurationClosely) {
    cLyricService service(*store, {});
    Put("Ann \xC3\x89lise", "Harbour  Lights", 200, kWords);
    const struct {
        const char* artist;
        const char* title;
        int dur;
        bool found;
    } cases[] = {
        {"ANNELISE", "Harbour Lights", 203, true},    // case, blanks, accents; 3 s off
        {"ann elise", "harbour lights", 204, false},  // 4 s off: another recording
        {"ann elise", "harbour lights", 0, true},     // unknown duration
        {"ann elise", "harbour light", 200, false},  {"", "harbour lights", 200, false},
    };
    for (const auto& c : cases) {
        const std::string body = Body(service.Get(GetQuery(c.artist, c.title, c.dur, 0)).page);
        EXPECT_EQ(body == ":NOTFOUND", !c.found) << c.artist << " / " << c.title << " " << c.dur;
    }
}

TEST_P(StoreTest, LookUpAnswersTheBestLyricAndMutNamesWhatTheClientHolds) {
    cLyricService service(*store, {});
    const std::string newerWords = kWords + "[3000]<3000>more\r\n";
    Put("A", "T", 100, kPlain, 100);
    Put("A", "T", 100, kPlain, -2147483647 - 1);  // sent without a revision number
    Put("A", "T", 100, kLines, 200, "Album");
    Put("A", "T", 100, kWords, 300);
    Put("A", "T", 100, newerWords, 400);
    Put("A", "T", 100, kWords + "[9000]other album\r\n", 500, "Other");
    auto body = [&](int mut, const std::string& album = "") {
        return Body(service.Get(GetQuery("A", "T", 100, mut, album)).page);
    };
    // Word-timed over line-timed over plain; then the album; then the newest.
    EXPECT_EQ(body(0, "Album"), cLyricService::EscapeLyric(kWords + "[9000]other album\r\n"));
    EXPECT_EQ(body(0, ""), cLyricService::EscapeLyric(newerWords));
    // The client holds the best already, an older revision, or its own lyric.
    EXPECT_EQ(body(400), ":NOUPDATES");
    EXPECT_EQ(body(100), cLyricService::EscapeLyric(newerWords));
    EXPECT_EQ(body(777), ":NOUPDATES");
    EXPECT_EQ(body(-2147483647 - 1), ":NOUPDATES");
}

TEST_P(StoreTest, SendsAreCheckedLimitedAndNeverOverwrite) {
    cServiceOptions options;
    options.maxLyricBytes = 4096;
    options.sendsPerHour = 3;
    cLyricService service(*store, options);
    auto send = [&](const std::string& body, const std::string& address = "1.2.3.4") {
        return Body(service.Insert(body, address, 1000).page);
    };
    const struct {
        std::string body;
        const char* answer;
    } refused[] = {
        {"art=A&tit=T&tvl=%G1", ":BADREQUEST"},
        {SendBody("", "T", 100, 1, kWords), ":NOTRACK"},
        {SendBody("A", "T", 100, 1, ""), ":NOLYRIC"},
        {SendBody("A", "T", 100, 1, kWords + std::string(4096, 'x')), ":TOOLARGE"},
        {SendBody("A", "T", 100, 1, kWords + "\xC3"), ":BADLYRIC"},
        {SendBody("A", "T", 100, 1, kPlain), ":NOTIMES"},
    };
    for (const auto& c : refused)
        EXPECT_EQ(send(c.body), c.answer) << c.body;
    EXPECT_EQ(store->Count(), 0);

    EXPECT_EQ(send(SendBody("A", "T", 100, 5, kLines, "lrc")), ":SUCCESS");
    EXPECT_EQ(send(SendBody("A", "T", 100, 5, kLines, "lrc")), ":SUCCESS");  // the same again
    EXPECT_EQ(send(SendBody("A", "T", 100, 6, kWords)), ":SUCCESS");
    EXPECT_EQ(store->Count(), 2);
    EXPECT_EQ(send(SendBody("A", "T", 100, 7, kWords + "[5000]x\r\n")), ":SUCCESS");
    EXPECT_EQ(send(SendBody("A", "T", 100, 8, kWords + "[6000]y\r\n")), ":LIMIT");
    EXPECT_EQ(send(SendBody("A", "T", 100, 8, kWords + "[6000]y\r\n"), "5.6.7.8"), ":SUCCESS");
    const auto found = store->Find("a", "t");
    ASSERT_EQ(found->size(), 4u);
    EXPECT_EQ((*found)[0].kind, LyricKind::kLines);
    EXPECT_EQ((*found)[1].kind, LyricKind::kWords);
}

INSTANTIATE_TEST_SUITE_P(Stores, StoreTest, ::testing::Values("sqlite", "postgres"),
                         [](const auto& info) { return std::string(info.param); });

TEST(ServiceAnswers, MoveAnnounceAndUpdateCheck) {
    TempDir dir;
    service::cSqliteStore store((dir.path() / "l.db").string(), 1);
    cServiceOptions options;
    options.announceVersion = 1030002;
    options.moveTo = "lyrics.example.org:8080";
    cLyricService service(store, options);
    const std::string page = service.Get(GetQuery("A", "T", 1, 0)).page;
    EXPECT_EQ(page,
              "<html><body><LLV>1030002</LLV><TOVAL>:UPDATESERVER:lyrics.example.org:8080"
              "</TOVAL></body></html>");
    EXPECT_EQ(Body(service.Insert(SendBody("A", "T", 1, 1, kWords), "x", 0).page),
              ":UPDATESERVER:lyrics.example.org:8080");
    EXPECT_EQ(Body(service.Update("vrs=1030001").page), ":NEWVERSION");
    EXPECT_EQ(Body(service.Update("vrs=1030002").page), ":NOUPDATES");
    EXPECT_EQ(store.Count(), 0);

    cLyricService quiet(store, {});
    EXPECT_EQ(quiet.Get(GetQuery("A", "T", 1, 0)).page,
              "<html><body><TOVAL>:NOTFOUND</TOVAL></body></html>");
    EXPECT_EQ(Body(quiet.Update("vrs=1").page), ":NOUPDATES");
}

}  // namespace
}  // namespace toval::test
