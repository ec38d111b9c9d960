#include "cCliArgs.h"

#include <string_view>

#include "base/mNumber.h"

namespace toval {

namespace {

bool ParseFormat(std::string_view text, cCliArgs::Format& format) {
    if (text == "lines")
        format = cCliArgs::Format::kLines;
    else if (text == "tvl")
        format = cCliArgs::Format::kTvl;
    else if (text == "lrc")
        format = cCliArgs::Format::kLrc;
    else if (text == "text" || text == "txt")
        format = cCliArgs::Format::kText;
    else
        return false;
    return true;
}

// A whole number from min to max, digits only.
bool ParseCount(std::string_view text, int32_t min, int32_t max, int32_t& out) {
    if (text.empty() || text.size() > 10) return false;
    int64_t value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return false;
        value = value * 10 + (c - '0');
    }
    if (value < min || value > max) return false;
    out = static_cast<int32_t>(value);
    return true;
}

}  // namespace

cCliArgs cCliArgs::Parse(const std::vector<std::string>& args) {
    cCliArgs a;
    auto fail = [&a](std::string message) {
        if (a.error.empty()) a.error = std::move(message);
        return a;
    };
    // Help and version win over anything else on the line.
    for (const std::string& arg : args) {
        if (arg == "--") break;
        if (arg == "-h" || arg == "--help") {
            a.command = Command::kHelp;
            return a;
        }
        if (arg == "--version") {
            a.command = Command::kVersion;
            return a;
        }
    }
    std::vector<std::string> positional;
    bool optionsEnded = false;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (optionsEnded || arg.size() < 2 || arg[0] != '-') {
            positional.push_back(arg);
            continue;
        }
        if (arg == "--") {
            optionsEnded = true;
            continue;
        }
        if (arg == "--save-beside") {
            a.saveBeside = true;
            continue;
        }
        if (arg == "--words") {
            a.words = true;
            continue;
        }
        std::string name = arg;
        std::string value;
        bool hasValue = false;
        if (const size_t eq = arg.find('='); arg.starts_with("--") && eq != std::string::npos) {
            name = arg.substr(0, eq);
            value = arg.substr(eq + 1);
            hasValue = true;
        }
        const bool known = name == "--artist" || name == "--title" || name == "--album" ||
                           name == "--duration" || name == "--server" || name == "--timeout" ||
                           name == "--cache" || name == "--format" || name == "--to" ||
                           name == "-o" || name == "--output";
        if (!known) return fail("unknown option '" + arg + "'");
        if (!hasValue) {
            if (i + 1 >= args.size()) return fail("option '" + name + "' needs a value");
            value = args[++i];
        }
        if (name == "--artist") {
            a.artist = value;
            a.artistGiven = true;
        } else if (name == "--title") {
            a.title = value;
            a.titleGiven = true;
        } else if (name == "--album") {
            a.album = value;
            a.albumGiven = true;
        } else if (name == "--server")
            a.server = value;
        else if (name == "--cache")
            a.cache = value;
        else if (name == "-o" || name == "--output")
            a.output = value;
        else if (name == "--duration") {
            if (!ParseCount(value, 0, INT32_MAX / 1000, a.duration))
                return fail("'" + value + "' is not a duration in seconds");
        } else if (name == "--timeout") {
            if (!ParseCount(value, 1, 600000, a.timeout))
                return fail("'" + value + "' is not a time-out in milliseconds (1 to 600000)");
        } else {
            if (!ParseFormat(value, a.format))
                return fail("unknown format '" + value + "' (lines, tvl, lrc or text)");
            a.formatGiven = true;
        }
    }

    if (positional.empty()) return fail("no command given");
    const std::string& command = positional[0];
    if (command == "lookup")
        a.command = Command::kLookup;
    else if (command == "print")
        a.command = Command::kPrint;
    else if (command == "convert")
        a.command = Command::kConvert;
    else if (command == "send")
        a.command = Command::kSend;
    else if (command == "help") {
        a.command = Command::kHelp;
        return a;
    } else
        return fail("unknown command '" + command + "'");

    if (positional.size() < 2) return fail(command + " needs a file");
    if (positional.size() > 2) return fail("unexpected argument '" + positional[2] + "'");
    a.file = positional[1];

    if (a.command == Command::kConvert && !a.formatGiven) a.format = Format::kTvl;
    if (a.command == Command::kSend) {
        if (a.server.empty()) return fail("send needs --server");
        if (a.artist.empty() || a.title.empty()) return fail("send needs --artist and --title");
    }
    if (a.command != Command::kConvert && !a.output.empty())
        return fail("--output belongs to convert");
    return a;
}

}  // namespace toval
