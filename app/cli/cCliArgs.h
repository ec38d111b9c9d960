// The command line of toval-lyric, read into one record. Options may stand
// anywhere after the command, as "--name value" or "--name=value"; "--" ends
// the options.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "config/cSettings.h"

namespace toval {

struct cCliArgs {
    enum class Command { kNone, kHelp, kVersion, kLookup, kPrint, kConvert, kSend };
    enum class Format { kLines, kTvl, kLrc, kText };

    Command command = Command::kNone;
    std::string file;  // the track (lookup) or the lyric file (print, convert, send)

    // The track's tags.
    std::string artist, title, album;
    int32_t duration = -1;  // seconds; -1 when not given
    // Given on the command line, even as empty text; lookup reads the others
    // from the track's own tags.
    bool artistGiven = false, titleGiven = false, albumGiven = false;

    std::string server;                  // the lyric service host; empty: ask no service
    int32_t timeout = kInternetTimeout;  // ms of silence before the service counts as failed
    std::string cache;                   // the cache folder; empty: the per-user one
    bool saveBeside = false;             // keep a service lyric as a .tvl file beside the track
    Format format = Format::kLines;
    bool words = false;  // lines: show the word times of karaoke lines
    bool formatGiven = false;
    std::string output;  // convert: the file to write; empty: standard output

    // Empty when the line was understood, else what is wrong with it.
    std::string error;

    static cCliArgs Parse(const std::vector<std::string>& args);
};

}  // namespace toval
