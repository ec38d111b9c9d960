#include "cServiceArgs.h"

#include <charconv>

namespace toval::service {

namespace {

bool ToNumber(const std::string& text, int32_t low, int32_t high, int32_t& value) {
    int32_t v = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
    if (ec != std::errc() || end != text.data() + text.size() || v < low || v > high) return false;
    value = v;
    return true;
}

}  // namespace

const char* cServiceArgs::Usage() {
    return "usage: toval-service [serve] [options]\n"
           "       toval-service import DIR [--db DB]\n"
           "       toval-service check [--db DB]\n"
           "options:\n"
           "  --listen ADDR          address to listen on (127.0.0.1; 0.0.0.0 for all)\n"
           "  --port N               port (8080; 0 picks a free one)\n"
           "  --db DB                SQLite file (toval-service.db), or a PostgreSQL\n"
           "                         connection string (postgresql://... or key=value ...)\n"
           "  --announce VERSION     latest program version, as a number (1030001 = 1.3.1)\n"
           "  --move-to HOST         tell every client to use HOST from now on\n"
           "  --sends-per-hour N     lyrics one address may send in an hour (60; 0 = any)\n"
           "  --max-lyric-bytes N    largest lyric accepted (262144)\n"
           "  --threads N            most connections served at once (1024)\n"
           "  --deadline SECONDS     longest time one connection may take (20)\n";
}

bool cServiceArgs::IsPostgres() const {
    return database.rfind("postgresql://", 0) == 0 || database.rfind("postgres://", 0) == 0 ||
           database.find('=') != std::string::npos;
}

bool cServiceArgs::Parse(const std::vector<std::string>& args, std::string& error) {
    size_t i = 0;
    if (i < args.size() && !args[i].starts_with("-")) {
        const std::string& word = args[i++];
        if (word == "serve") {
            command = Command::kServe;
        } else if (word == "import") {
            command = Command::kImport;
            if (i == args.size() || args[i].starts_with("-")) {
                error = "import needs a folder";
                return false;
            }
            importDir = args[i++];
        } else if (word == "check") {
            command = Command::kCheck;
        } else {
            error = "unknown command: " + word;
            return false;
        }
    }
    for (; i < args.size(); ++i) {
        const std::string& option = args[i];
        if (option == "--help" || option == "-h") {
            command = Command::kHelp;
            return true;
        }
        if (i + 1 == args.size()) {
            error = option.starts_with("--") ? option + " needs a value" : "unexpected: " + option;
            return false;
        }
        const std::string& value = args[++i];
        bool ok = true;
        if (option == "--listen") {
            listen = value;
        } else if (option == "--port") {
            ok = ToNumber(value, 0, 65535, port);
        } else if (option == "--db") {
            database = value;
            ok = !value.empty();
        } else if (option == "--announce") {
            ok = ToNumber(value, 1, INT32_MAX, options.announceVersion);
        } else if (option == "--move-to") {
            options.moveTo = value;
            ok = !value.empty() && value.find_first_of(" <>&\r\n") == std::string::npos;
        } else if (option == "--sends-per-hour") {
            ok = ToNumber(value, 0, INT32_MAX, options.sendsPerHour);
        } else if (option == "--max-lyric-bytes") {
            int32_t bytes = 0;
            ok = ToNumber(value, 1, 64 * 1024 * 1024, bytes);
            options.maxLyricBytes = static_cast<size_t>(bytes);
        } else if (option == "--threads") {
            ok = ToNumber(value, 1, 4096, threads);
        } else if (option == "--deadline") {
            ok = ToNumber(value, 1, 3600, deadlineSeconds);
        } else {
            error = "unknown option: " + option;
            return false;
        }
        if (!ok) {
            error = "bad value for " + option + ": " + value;
            return false;
        }
    }
    return true;
}

}  // namespace toval::service
