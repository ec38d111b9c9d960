// The store on both databases, SQLite in a temp folder and PostgreSQL on a
// private cluster, each case on an empty database; the service's answers on
// the store in memory.
#include <gtest/gtest.h>

#include <atomic>
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
#include "service/MemoryStore.h"
#include "service/PgCluster.h"

namespace toval::test {
namespace {

using service::cLyricRecord;
using service::cLyricService;
using service::cServiceOptions;
using service::LyricKind;

const std::string kWords =
    "[PROPERTY]\r\nMUTATION:11\r\nRIGHTTOLEFT:0\r\n[\\PROPERTY][1000]<1000>Hi <1500>there\r\n";
const std::string kLines = "[00:01.00]Hi there\r\n[00:02.00]again\r\n";

// A form value as the program encodes it.
std::string Enc(const std::string& text) {
    return cStrings().stringTOhtml(text);
}

// A look-up's form as the program sends it; a send's adds the lyric.
std::string GetQuery(const std::string& artist, const std::string& title, int dur, int mut,
                     const std::string& album = "") {
    return "art=" + Enc(artist) + "&alb=" + Enc(album) + "&tit=" + Enc(title) +
           "&dur=" + std::to_string(dur) + "&siz=1&mut=" + std::to_string(mut) + "&vrs=1030001";
}
std::string SendBody(const std::string& artist, const std::string& title, int dur, int mut,
                     const std::string& lyric, const std::string& album = "",
                     const std::string& key = "tvl") {
    return GetQuery(artist, title, dur, mut, album) + "&" + key + "=" + Enc(lyric);
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

    TempDir dir;
    std::unique_ptr<service::iLyricStore> store;
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
    // Many at once: all of them, in order, after the one above.
    std::vector<cLyricRecord> batch(2, r);
    ASSERT_TRUE(store->AddMany(batch));
    EXPECT_GT(batch[0].id, r.id);
    EXPECT_LT(batch[0].id, batch[1].id);

    const auto found = store->Find("k1", "k2");
    ASSERT_TRUE(found);
    ASSERT_EQ(found->size(), 3u);
    EXPECT_EQ(Fields((*found)[0]), Fields(r));
    EXPECT_EQ((*found)[2].id, batch[1].id);
    EXPECT_EQ(store->Count(), 3);
    EXPECT_TRUE(store->Find(nasty, "k2")->empty());
}

TEST_P(StoreTest, ParallelSendsAreAllStored) {
    cServiceOptions options;
    options.sendsPerHour = 0;
    cLyricService service(*store, options);
    std::atomic<int> stored = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 15; ++i) {
                const std::string body =
                    SendBody("Band", "Song", 100, i, kWords + std::to_string(t * 15 + i));
                stored += Body(service.Insert(body, "10.0.0.1", 1).page) == ":SUCCESS";
                service.Get(GetQuery("Band", "Song", 100, 0));  // reads among the writes
            }
        });
    }
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(stored, 60);
    EXPECT_EQ(store->Find("band", "song")->size(), 60u);
    EXPECT_EQ(store->Check(), "");
}

INSTANTIATE_TEST_SUITE_P(Stores, StoreTest, ::testing::Values("sqlite", "postgres"),
                         [](const auto& info) { return std::string(info.param); });

TEST(ServiceAnswers, LookUpMatchesLooselyAndAnswersTheBestLyricForWhatTheClientHolds) {
    MemoryStore store;
    cLyricService service(store, {});
    const auto put = [&](const std::string& body) {
        EXPECT_EQ(Body(service.Insert(body, "1.2.3.4", 0).page), ":SUCCESS") << body;
    };
    put(SendBody("Ann \xC3\x89lise", "Harbour  Lights", 200, 1, kWords));
    // Artist, title and duration asked for; whether the lyric is found.
    const std::tuple<const char*, const char*, int, bool> cases[] = {
        {"ANNELISE", "Harbour Lights", 203, true},    // case, blanks, accents; 3 s off
        {"ann elise", "harbour lights", 204, false},  // 4 s off: another recording
        {"ann elise", "harbour lights", 0, true},     // unknown duration
        {"ann elise", "harbour light", 200, false},
    };
    for (const auto& [artist, title, dur, found] : cases) {
        const std::string body = Body(service.Get(GetQuery(artist, title, dur, 0)).page);
        EXPECT_EQ(body == ":NOTFOUND", !found) << artist << " / " << title << " " << dur;
    }

    const std::string newerWords = kWords + "[3000]<3000>more\r\n";
    put(SendBody("A", "T", 100, 100, kLines));
    // One sent without a revision number.
    put(SendBody("A", "T", 100, -2147483647 - 1, kLines + "[00:03.00]x"));
    put(SendBody("A", "T", 100, 200, kLines + "[00:04.00]y", "Album"));
    put(SendBody("A", "T", 100, 300, kWords));
    put(SendBody("A", "T", 100, 400, newerWords));
    put(SendBody("A", "T", 100, 500, kWords + "[9000]other album\r\n", "Other"));
    auto body = [&](int mut, const std::string& album = "") {
        return Body(service.Get(GetQuery("A", "T", 100, mut, album)).page);
    };
    // Word-timed over line-timed; then the album; then the newest.
    EXPECT_EQ(body(0, "Album"), cLyricService::EscapeLyric(kWords + "[9000]other album\r\n"));
    EXPECT_EQ(body(0, ""), cLyricService::EscapeLyric(newerWords));
    // The client holds the best already, an older revision, or its own lyric.
    EXPECT_EQ(body(400), ":NOUPDATES");
    EXPECT_EQ(body(100), cLyricService::EscapeLyric(newerWords));
    EXPECT_EQ(body(777), ":NOUPDATES");
    EXPECT_EQ(body(-2147483647 - 1), ":NOUPDATES");
}

TEST(ServiceAnswers, SendsAreCheckedLimitedAndNeverOverwrite) {
    MemoryStore store;
    cServiceOptions options;
    options.maxLyricBytes = 4096;
    options.sendsPerHour = 3;
    cLyricService service(store, options);
    auto send = [&](const std::string& body, const std::string& address = "1.2.3.4") {
        return Body(service.Insert(body, address, 1000).page);
    };
    const std::pair<std::string, const char*> refused[] = {
        {"art=A&tit=T&tvl=%G1", ":BADREQUEST"},
        {SendBody("", "T", 100, 1, kWords), ":NOTRACK"},
        {SendBody("A", "T", 100, 1, ""), ":NOLYRIC"},
        {SendBody("A", "T", 100, 1, kWords + std::string(4096, 'x')), ":TOOLARGE"},
        {SendBody("A", "T", 100, 1, kWords + "\xC3"), ":BADLYRIC"},
        {SendBody("A", "T", 100, 1, "Hi there\r\n"), ":NOTIMES"},
    };
    for (const auto& [body, answer] : refused)
        EXPECT_EQ(send(body), answer) << body;
    EXPECT_EQ(store.Count(), 0);

    EXPECT_EQ(send(SendBody("A", "T", 100, 5, kLines, "", "lrc")), ":SUCCESS");
    EXPECT_EQ(send(SendBody("A", "T", 100, 5, kLines, "", "lrc")), ":SUCCESS");  // the same again
    EXPECT_EQ(send(SendBody("A", "T", 100, 6, kWords)), ":SUCCESS");
    EXPECT_EQ(send(SendBody("A", "T", 100, 7, kWords + "[5000]x\r\n")), ":SUCCESS");
    EXPECT_EQ(send(SendBody("A", "T", 100, 8, kWords + "[6000]y\r\n")), ":LIMIT");
    EXPECT_EQ(send(SendBody("A", "T", 100, 8, kWords + "[6000]y\r\n"), "5.6.7.8"), ":SUCCESS");
    const auto found = store.Find("a", "t");
    ASSERT_EQ(found->size(), 4u);
    EXPECT_EQ((*found)[0].kind, LyricKind::kLines);
    EXPECT_EQ((*found)[1].kind, LyricKind::kWords);
}

TEST(ServiceAnswers, MoveAndUpdateCheck) {
    MemoryStore store;
    cServiceOptions options;
    options.announceVersion = 1030002;
    options.moveTo = "lyrics.example.org:8080";
    cLyricService service(store, options);
    EXPECT_EQ(Body(service.Get(GetQuery("A", "T", 1, 0)).page),
              ":UPDATESERVER:lyrics.example.org:8080");
    EXPECT_EQ(Body(service.Insert(SendBody("A", "T", 1, 1, kWords), "x", 0).page),
              ":UPDATESERVER:lyrics.example.org:8080");
    EXPECT_EQ(store.Count(), 0);
    EXPECT_EQ(Body(service.Update("vrs=1030001").page), ":NEWVERSION");
    EXPECT_EQ(Body(service.Update("vrs=1030002").page), ":NOUPDATES");
    EXPECT_EQ(Body(cLyricService(store, {}).Update("vrs=1").page), ":NOUPDATES");
}

}  // namespace
}  // namespace toval::test
