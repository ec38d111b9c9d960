#include "mServe.h"

#include <httplib.h>
#include <signal.h>
#include <sys/socket.h>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <memory>
#include <mutex>
#include <thread>

#include "cConnectionWatch.h"
#include "cElasticPool.h"

namespace toval::service {

namespace {

constexpr const char* kGetPath = "/website/tvl_get_url.php";
constexpr const char* kInsertPath = "/website/tvl_insert.php";
constexpr const char* kUpdatePath = "/website/tvl_update.php";

// What the handler learnt about the request, for its log line (the logger runs
// on the same thread, right after the handler).
thread_local std::string tOutcome;
thread_local std::chrono::steady_clock::time_point tStart;

std::mutex gLogMutex;

// The library listens with a backlog of 5: a burst of clients (or of idle
// connections) overflows that at once and the kernel drops their SYNs, which
// clients retry only a second later. Listening again widens the queue.
class cHttpServer : public httplib::Server {
  public:
    void WidenBacklog(int backlog) { ::listen(svr_sock_, backlog); }
};

void LogLine(const httplib::Request& req, const httplib::Response& res) {
    const auto took =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - tStart);
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y-%m-%dT%H:%M:%SZ", &utc);
    std::string outcome = tOutcome.empty() ? "-" : tOutcome;
    tOutcome.clear();
    // The path as sent may hold anything; only its printable part is logged.
    std::string path;
    for (char c : req.path.substr(0, 80))
        path.push_back(c >= 0x20 && c < 0x7F ? c : '?');
    std::lock_guard lock(gLogMutex);
    std::fprintf(stderr, "%s %s %s %s %d %s %.1fms\n", stamp, req.remote_addr.c_str(),
                 req.method.c_str(), path.c_str(), res.status, outcome.c_str(), took.count());
}

std::string Query(const httplib::Request& req) {
    const size_t q = req.target.find('?');
    return q == std::string::npos ? std::string() : req.target.substr(q + 1);
}

void Send(httplib::Response& res, cReply reply) {
    tOutcome = std::move(reply.outcome);
    res.set_content(std::move(reply.page), "text/html; charset=utf-8");
}

}  // namespace

int Serve(const cServiceArgs& args, iLyricStore& store) {
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGTERM);
    sigaddset(&stopSignals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    signal(SIGPIPE, SIG_IGN);

    cLyricService service(store, args.options);
    cHttpServer server;
    const size_t threads = static_cast<size_t>(args.threads);
    server.new_task_queue = [threads] {
        return new cElasticPool(std::min<size_t>(8, threads), threads);
    };
    // HTTP/1.0 clients close after one answer; a kept-alive connection gets a few.
    server.set_keep_alive_max_count(8);
    server.set_keep_alive_timeout(2);
    server.set_read_timeout(5, 0);
    server.set_write_timeout(5, 0);
    // A form body is at most three bytes per lyric byte, plus the track fields.
    server.set_payload_max_length(args.options.maxLyricBytes * 3 + 16 * 1024);

    server.set_pre_routing_handler([](const httplib::Request&, httplib::Response&) {
        tStart = std::chrono::steady_clock::now();
        tOutcome.clear();
        return httplib::Server::HandlerResponse::Unhandled;
    });
    server.set_logger(LogLine);
    server.set_exception_handler(
        [](const httplib::Request&, httplib::Response& res, std::exception_ptr) {
            tOutcome = "exception";
            res.status = 500;
        });

    server.Get(kGetPath, [&](const httplib::Request& req, httplib::Response& res) {
        Send(res, service.Get(Query(req)));
    });
    server.Get(kUpdatePath, [&](const httplib::Request& req, httplib::Response& res) {
        Send(res, service.Update(Query(req)));
    });
    server.Post(kInsertPath, [&](const httplib::Request& req, httplib::Response& res,
                                 const httplib::ContentReader& reader) {
        // Read here rather than by the library, which refuses form bodies
        // above 8 KB; the payload limit above bounds what arrives.
        std::string body;
        const size_t cap = args.options.maxLyricBytes * 3 + 16 * 1024;
        bool tooLarge = false;
        reader([&](const char* data, size_t length) {
            if (body.size() + length > cap) {
                tooLarge = true;
                return false;
            }
            body.append(data, length);
            return true;
        });
        if (tooLarge) {
            Send(res, {service.Page(":TOOLARGE"), ":TOOLARGE"});
            return;
        }
        Send(res, service.Insert(body, req.remote_addr, static_cast<int64_t>(std::time(nullptr))));
    });

    const int port = args.port == 0
                         ? server.bind_to_any_port(args.listen)
                         : (server.bind_to_port(args.listen, args.port) ? args.port : -1);
    if (port <= 0) {
        std::fprintf(stderr, "toval-service: cannot listen on %s:%d\n", args.listen.c_str(),
                     args.port);
        return 1;
    }
    server.WidenBacklog(1024);
    std::fprintf(stderr, "toval-service: listening on %s:%d\n", args.listen.c_str(), port);
    std::fflush(stderr);

    cConnectionWatch watch(port, std::chrono::seconds(args.deadlineSeconds));
    std::thread stopper([&] {
        int signal = 0;
        sigwait(&stopSignals, &signal);
        server.stop();
    });
    const bool ran = server.listen_after_bind();
    // Wake the stopper when the server ended on its own.
    if (!ran) pthread_kill(stopper.native_handle(), SIGTERM);
    stopper.join();
    std::fprintf(stderr, "toval-service: stopped\n");
    return ran ? 0 : 1;
}

}  // namespace toval::service
