#include "base/cErrorLog.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace toval {

namespace {

cErrorLog* gTrail = nullptr;

void Append2(std::string& out, int32_t value) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%02d", static_cast<int>(value));
    out += buffer;
}

}  // namespace

cErrorLog::cErrorLog(std::u16string folder, Clock& clock)
    : file_(std::move(folder) + u"Error.log"), clock_(clock) {}

std::string cErrorLog::FormatLine(const cDateTime& when, const std::vector<std::string>& texts) {
    std::string line;
    char year[16];
    std::snprintf(year, sizeof year, "%04d", static_cast<int>(when.Year));
    line += year;
    line += '/';
    Append2(line, when.Month);
    line += '/';
    Append2(line, when.Day);
    line += ' ';
    Append2(line, when.Hour);
    line += ':';
    Append2(line, when.Second);
    line += " - ";
    for (size_t i = 0; i < texts.size(); ++i) {
        if (i) line += " ; ";
        line += texts[i];
    }
    line += "\r\n";
    return line;
}

void cErrorLog::Write(const std::vector<std::string>& texts) {
    const std::string line = FormatLine(clock_.Now(), texts);
    std::ofstream out(std::filesystem::path(file_), std::ios::binary | std::ios::app);
    out.write(line.data(), static_cast<std::streamsize>(line.size()));
}

void setErrorTrail(cErrorLog* log) {
    gTrail = log;
}
cErrorLog* ErrorTrailLog() {
    return gTrail;
}

void ErrorTrail(std::initializer_list<std::string_view> texts) noexcept {
    try {
        if (!gTrail) return;
        std::vector<std::string> copy;
        copy.reserve(texts.size());
        for (std::string_view text : texts)
            copy.emplace_back(text);
        gTrail->Write(copy);
    } catch (...) {
        // The trail is the last resort: a failure to write it goes nowhere.
    }
}

}  // namespace toval
