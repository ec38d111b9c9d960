// The lyric service under load, against a real toval-service process.
//
//   toval-service-load bench [sqlite|postgres] [LYRICS] [SECONDS]
//       stores LYRICS lyrics (100000), then for 1, 2, 4, ... 64 parallel
//       clients runs lookups (nine in ten hit) for SECONDS each (5) and prints
//       lookups per second and the 99th-percentile latency.
//   toval-service-load crash [sqlite|postgres] [SECONDS]
//       parallel clients mix lookups and sends for SECONDS (10); the service
//       is killed with SIGKILL in the middle of a send burst and restarted;
//       every send answered ":SUCCESS" must be found, and the database must
//       pass its integrity check. Exit status 0 when it holds.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "base/cStrings.h"
#include "cPgStore.h"
#include "cSqliteStore.h"
#include "fakes/TempDir.h"
#include "mMatchKey.h"
#include "posix/LoopbackServer.h"
#include "service/PgCluster.h"
#include "service/ServiceProcess.h"

using namespace toval;
using Clock = std::chrono::steady_clock;

namespace {

const std::string kLyric =
    "[PROPERTY]\r\nMUTATION:7\r\nRIGHTTOLEFT:0\r\n[\\PROPERTY]"
    "[1000]<1000>Lanterns <1400>on <1600>the <1800>harbour <2300>wall\r\n"
    "[4200]<4200>Boats <4600>come <4900>home <5300>before <5800>the <6000>fall\r\n"
    "[8400]Sing it slow and sing it low\r\n[12600]Tide will carry what we know\r\n";

std::string Artist(int n) {
    return "Artist " + std::to_string(n % 5000);
}
std::string Title(int n) {
    return "Title " + std::to_string(n);
}

// One HTTP/1.0 exchange as the program makes it; the body, or empty on failure.
std::string Exchange(int port, const std::string& request) {
    const int fd = test::LoopbackServer::ConnectLoopback(port);
    if (fd < 0) return {};
    timeval limit{10, 0};
    ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    ::setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    std::string answer;
    if (::send(fd, request.data(), request.size(), MSG_NOSIGNAL) ==
        static_cast<ssize_t>(request.size())) {
        char buffer[8192];
        ssize_t n;
        while ((n = ::recv(fd, buffer, sizeof buffer, 0)) > 0)
            answer.append(buffer, static_cast<size_t>(n));
    }
    ::close(fd);
    if (answer.rfind("HTTP/1.1 200", 0) != 0 && answer.rfind("HTTP/1.0 200", 0) != 0) return {};
    const size_t body = answer.find("\r\n\r\n");
    return body == std::string::npos ? std::string() : answer.substr(body + 4);
}

// A form value as the program encodes it.
std::string Encode(const std::string& text) {
    return toval::cStrings().stringTOhtml(text);
}

std::string Lookup(const std::string& artist, const std::string& title) {
    return "GET /website/tvl_get_url.php?art=" + Encode(artist) + "&alb=&tit=" + Encode(title) +
           "&dur=200&siz=1&mut=0&vrs=1030001&get=Get HTTP/1.0\r\nHost: x\r\n"
           "User-Agent: Toval/1.3.1\r\nConnection: Close\r\n\r\n";
}

std::string Send(const std::string& artist, const std::string& title, const std::string& lyric) {
    const std::string body = "art=" + Encode(artist) + "&alb=&tit=" + Encode(title) +
                             "&dur=200&siz=1&mut=9&vrs=1030001&tvl=" + Encode(lyric) + "&add=Add";
    return "POST /website/tvl_insert.php HTTP/1.0\r\nHost: x\r\nConnection: Close\r\n"
           "Content-Type: application/x-www-form-urlencoded\r\nContent-Length: " +
           std::to_string(body.size()) + "\r\n\r\n" + body;
}

// The database to use: an SQLite file in `dir`, or a fresh database on a
// private PostgreSQL cluster. Empty when PostgreSQL cannot run here.
std::string Database(const std::string& kind, const test::TempDir& dir) {
    if (kind != "postgres") return (dir.path() / "lyrics.db").string();
    const std::string conninfo = test::PgCluster::Shared().NewDatabase();
    if (conninfo.empty())
        std::fprintf(stderr, "PostgreSQL: %s\n", test::PgCluster::Shared().Why().c_str());
    return conninfo;
}

std::unique_ptr<service::iLyricStore> Store(const std::string& kind, const std::string& db) {
    if (kind == "postgres") return std::make_unique<service::cPgStore>(db, 1);
    return std::make_unique<service::cSqliteStore>(db, 1);
}

int Bench(const std::string& kind, int lyrics, int seconds) {
    test::TempDir dir;
    const std::string db = Database(kind, dir);
    if (db.empty()) return 1;
    {
        auto store = Store(kind, db);
        const auto start = Clock::now();
        for (int from = 0; from < lyrics; from += 5000) {
            std::vector<service::cLyricRecord> batch;
            for (int n = from; n < std::min(lyrics, from + 5000); ++n) {
                service::cLyricRecord r;
                r.artist = Artist(n);
                r.title = Title(n);
                r.artistKey = service::MatchKey(r.artist);
                r.titleKey = service::MatchKey(r.title);
                r.duration = 200;
                r.mutation = n + 1;
                r.kind = service::LyricKind::kWords;
                r.text = kLyric;
                r.address = "bench";
                batch.push_back(std::move(r));
            }
            if (!store->AddMany(batch)) {
                std::fprintf(stderr, "storing failed\n");
                return 1;
            }
        }
        std::printf("%s: stored %d lyrics in %.1f s\n", kind.c_str(), lyrics,
                    std::chrono::duration<double>(Clock::now() - start).count());
    }
    test::ServiceProcess svc({"--db", db, "--sends-per-hour", "0"});
    if (!svc.Port()) return 1;
    std::printf("%8s %12s %10s %10s %8s\n", "clients", "lookups/s", "p50 ms", "p99 ms", "errors");
    for (int clients : {1, 2, 4, 8, 16, 32, 64}) {
        std::vector<std::vector<double>> latencies(static_cast<size_t>(clients));
        std::atomic<int> errors{0};
        const auto end = Clock::now() + std::chrono::seconds(seconds);
        std::vector<std::thread> threads;
        for (int c = 0; c < clients; ++c) {
            threads.emplace_back([&, c] {
                std::mt19937 random(static_cast<unsigned>(c) * 7919u + 1);
                while (Clock::now() < end) {
                    const int n = static_cast<int>(random() % static_cast<unsigned>(lyrics));
                    // One lookup in ten asks for a track that is not there.
                    const bool miss = random() % 10 == 0;
                    const auto start = Clock::now();
                    const std::string body =
                        Exchange(svc.Port(), Lookup(Artist(n), miss ? "Nothing" : Title(n)));
                    latencies[static_cast<size_t>(c)].push_back(
                        std::chrono::duration<double, std::milli>(Clock::now() - start).count());
                    const bool ok = miss ? body.find(":NOTFOUND") != std::string::npos
                                         : body.find("Lanterns") != std::string::npos;
                    if (!ok) ++errors;
                }
            });
        }
        for (auto& t : threads)
            t.join();
        std::vector<double> all;
        for (const auto& l : latencies)
            all.insert(all.end(), l.begin(), l.end());
        std::sort(all.begin(), all.end());
        const auto at = [&](double q) {
            return all.empty() ? 0.0
                               : all[std::min(all.size() - 1, static_cast<size_t>(q * all.size()))];
        };
        std::printf("%8d %12.0f %10.2f %10.2f %8d\n", clients,
                    all.size() / static_cast<double>(seconds), at(0.5), at(0.99), errors.load());
        std::fflush(stdout);
    }
    return 0;
}

int Crash(const std::string& kind, int seconds) {
    test::TempDir dir;
    const std::string db = Database(kind, dir);
    if (db.empty()) return 1;
    std::vector<std::string> args = {"--db", db, "--sends-per-hour", "0"};
    auto svc = std::make_unique<test::ServiceProcess>(args);
    if (!svc->Port()) return 1;
    const int port = svc->Port();

    std::mutex mutex;
    std::vector<int> accepted;  // sends answered ":SUCCESS"
    std::atomic<int> next{0}, lookups{0}, failures{0};
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int c = 0; c < 16; ++c) {
        threads.emplace_back([&, c] {
            std::mt19937 random(static_cast<unsigned>(c) + 1);
            while (!stop) {
                if (c % 2 == 0) {  // half the clients send, half look up
                    const int n = next++;
                    const std::string body = Exchange(
                        port, Send("Crash " + std::to_string(n % 97), "Song " + std::to_string(n),
                                   kLyric + "[20000]mark " + std::to_string(n) + "\r\n"));
                    if (body.find("<TOVAL>:SUCCESS</TOVAL>") != std::string::npos) {
                        std::lock_guard lock(mutex);
                        accepted.push_back(n);
                    } else {
                        ++failures;
                    }
                } else {
                    const int n = static_cast<int>(random() % static_cast<unsigned>(next + 1));
                    Exchange(port, Lookup("Crash " + std::to_string(n % 97),
                                          "Song " + std::to_string(n)));
                    ++lookups;
                }
            }
        });
    }
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    // SIGKILL while the senders are in full flow.
    const int status = svc->Stop(5000, SIGKILL);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    stop = true;
    for (auto& t : threads)
        t.join();
    std::printf(
        "%s: %zu sends answered :SUCCESS, %d failed or cut, %d lookups; killed (status %d)\n",
        kind.c_str(), accepted.size(), failures.load(), lookups.load(), status);

    svc = std::make_unique<test::ServiceProcess>(args);
    if (!svc->Port()) {
        std::printf("the service does not start again:\n%s\n", svc->Log().c_str());
        return 1;
    }
    int missing = 0;
    for (int n : accepted) {
        const std::string body = Exchange(
            svc->Port(), Lookup("Crash " + std::to_string(n % 97), "Song " + std::to_string(n)));
        if (body.find("mark " + std::to_string(n) + "\r\n") == std::string::npos) ++missing;
    }
    svc->Stop(5000);
    auto store = Store(kind, db);
    const std::string problem = store->Check();
    std::printf("after restart: %d of %zu answered sends missing; integrity check: %s\n", missing,
                accepted.size(), problem.empty() ? "ok" : problem.c_str());
    return missing == 0 && problem.empty() && !accepted.empty() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
    const std::string mode = args.size() > 0 ? args[0] : "";
    const std::string kind = args.size() > 1 ? args[1] : "sqlite";
    if (mode == "bench") {
        return Bench(kind, args.size() > 2 ? std::atoi(args[2].c_str()) : 100000,
                     args.size() > 3 ? std::atoi(args[3].c_str()) : 5);
    }
    if (mode == "crash") return Crash(kind, args.size() > 2 ? std::atoi(args[2].c_str()) : 10);
    std::fprintf(stderr, "usage: toval-service-load bench|crash [sqlite|postgres] ...\n");
    return 2;
}
