#include "cCliMain.h"

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>

#include "base/mString.h"
#include "config/cSettings.h"
#include "core/cLyricFile.h"
#include "lyric/cLyric.h"
#include "lyric/cMusic.h"
#include "lyric/cTime.h"
#include "mAudioTags.h"
#include "net/cCache.h"
#include "net/cNetError.h"
#include "net/cTovalSite.h"
#include "posix/cPosixLoop.h"
#include "posix/cPosixSocket.h"
#include "posix/cPosixTimer.h"

namespace toval {

namespace {

constexpr char kName[] = "toval-lyric";

std::u16string Text(const std::string& utf8) {
    return Strings().utf8TOwstring(utf8);
}
std::string Bytes(const std::u16string& text) {
    return Strings().wstringTOutf8(text);
}

// The folder of the lyric cache: $XDG_CACHE_HOME/toval, else ~/.cache/toval.
std::filesystem::path DefaultCacheFolder() {
    if (const char* xdg = std::getenv("XDG_CACHE_HOME"); xdg && *xdg) {
        return std::filesystem::path(xdg) / "toval";
    }
    if (const char* home = std::getenv("HOME"); home && *home) {
        return std::filesystem::path(home) / ".cache" / "toval";
    }
    return std::filesystem::temp_directory_path() / "toval";
}

std::shared_ptr<cMusic> TrackOf(const cCliArgs& a) {
    auto track = std::make_shared<cMusic>();
    track->setArtist(Text(a.artist));
    track->setTitle(Text(a.title));
    track->setAlbum(Text(a.album));
    // An unknown length is 0 ms, as a track record without one holds it: the
    // service and the cache key then see 0 seconds.
    track->setMiliDuration(a.duration >= 0 ? a.duration * 1000 : 0);
    return track;
}

// The command line's tags, and the track file's own for those it leaves out.
cCliArgs WithFileTags(const cCliArgs& given) {
    cCliArgs a = given;
    const cAudioTags file = ReadAudioTags(given.file);
    if (!a.artistGiven) a.artist = file.artist;
    if (!a.titleGiven) a.title = file.title;
    if (!a.albumGiven) a.album = file.album;
    if (a.duration < 0 && file.milliseconds >= 0) {
        cMusic length;  // seconds as the track record rounds them
        length.setMiliDuration(file.milliseconds);
        a.duration = length.Duration();
    }
    return a;
}

// "mm:ss.cc" per line time, then the display text.
// With words: a second line under each karaoke line, every timed word behind
// its first time, "<mm:ss.cc>word".
std::u16string Lines(const cLyric& lyric, bool words) {
    std::u16string out;
    for (int32_t i = 0; i < lyric.GetLineSize(); ++i) {
        const auto line = lyric.GetLine(i);
        if (!line) continue;
        std::u16string times;
        for (int32_t t = 0; t < line->GetTimeSize(); ++t) {
            if (const auto time = line->GetTime(t)) {
                if (!times.empty()) times += u' ';
                times += time->TextSimple();
            }
        }
        if (times.empty()) times = u"        ";
        out += times + u"  " + line->TextRebuild() + u"\n";
        if (!words || line->GetWordSize() == 0 || line->Simple()) continue;
        std::u16string timed = u"          ";
        for (int32_t w = 0; w < line->GetWordSize(); ++w) {
            const auto word = line->GetWord(w);
            if (!word) continue;
            if (const auto time = word->GetTime(0)) timed += u"<" + time->TextSimple() + u">";
            timed += word->Text();
        }
        out += timed + u"\n";
    }
    return out;
}

// How long the tool waits for a whole answer. The client's own time-out ends a
// service that falls silent while connecting or within an answer; this is the
// limit for one that takes the request and never answers.
int32_t AnswerLimit(int32_t timeoutMs) {
    return timeoutMs * 6;
}

std::string NoAnswer(int32_t timeoutMs) {
    return "no answer within " + cNetError::Seconds(AnswerLimit(timeoutMs));
}

}  // namespace

const char* cCliMain::Usage() {
    return "Usage: toval-lyric COMMAND FILE [OPTIONS]\n"
           "\n"
           "Commands:\n"
           "  lookup TRACK   find the lyric of a track: a .tvl or .lrc file beside it,\n"
           "                 the lyric cache, then the lyric service (with --server)\n"
           "  print FILE     print a lyric file's lines with their times\n"
           "  convert FILE   write a lyric file as tvl, lrc or plain text\n"
           "  send FILE      send a lyric file to the lyric service\n"
           "\n"
           "Track (lookup reads them from the track file's own tags and these override\n"
           "them; send and the lrc output of convert take them from here):\n"
           "  --artist TEXT  --title TEXT  --album TEXT  --duration SECONDS\n"
           "Service:\n"
           "  --server HOST[:PORT]  the lyric service; lookup asks it only when given\n"
           "  --timeout MS          give up after MS of silence (default 10000), or\n"
           "                        after six times that for an answer that never begins\n"
           "Lookup:\n"
           "  --cache DIR           the lyric cache folder (default ~/.cache/toval)\n"
           "  --save-beside         keep a lyric from the service as a .tvl file beside\n"
           "                        the track (default: in the cache)\n"
           "Output:\n"
           "  --format FORMAT       lines, tvl, lrc or text (lookup and print: lines)\n"
           "  --words               lines: the word times of karaoke lines too\n"
           "  --to FORMAT           the same (convert: tvl)\n"
           "  -o, --output FILE     convert: write here instead of standard output\n"
           "  -h, --help            this help;  --version  the version\n"
           "\n"
           "Exit status: 0 done, 1 no lyric found, 2 bad arguments,\n"
           "3 a file could not be read or written, 4 the service failed or refused.\n";
}

int cCliMain::Run(const std::vector<std::string>& args) {
    const cCliArgs a = cCliArgs::Parse(args);
    if (!a.error.empty()) {
        err_ << kName << ": " << a.error << "\nTry 'toval-lyric --help'.\n";
        return kExitUsage;
    }
    try {
        return Dispatch(a);
    } catch (const std::exception& e) {
        // A name that no text form can hold, memory running out: say so, never crash.
        return Fail(kExitFile, std::string("cannot go on: ") + e.what());
    }
}

int cCliMain::Dispatch(const cCliArgs& a) {
    switch (a.command) {
        case cCliArgs::Command::kHelp:
            out_ << Usage();
            return kExitOk;
        case cCliArgs::Command::kVersion:
            out_ << kName << " 1.3.1\n";
            return kExitOk;
        case cCliArgs::Command::kLookup:
            return Lookup(a);
        case cCliArgs::Command::kPrint:
            return Print(a);
        case cCliArgs::Command::kConvert:
            return Convert(a);
        case cCliArgs::Command::kSend:
            return Send(a);
        case cCliArgs::Command::kNone:
            break;
    }
    return Fail(kExitUsage, "no command given");
}

int cCliMain::Fail(int code, const std::string& message) {
    err_ << kName << ": " << message << "\n";
    return code;
}

bool cCliMain::ReadLyricFile(const std::string& path, std::u16string& text) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) {
        Fail(kExitFile, "cannot read '" + path + "': " +
                            (std::filesystem::exists(path, ec) ? "not a file" : "no such file"));
        return false;
    }
    std::ifstream in(path, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in && !in.eof()) {
        Fail(kExitFile, "cannot read '" + path + "'");
        return false;
    }
    text = TextFileTOwstring(bytes);
    if (!IsText(text)) {
        Fail(kExitFile, "'" + path + "' is not a text file, so it holds no lyric");
        return false;
    }
    return true;
}

bool cCliMain::HoldsLyric(const std::string& path, const std::u16string& text) {
    cLyric lyric;
    lyric.setLoad(text);
    if (lyric.GetLineSize() > 0) return true;
    Fail(kExitNotFound,
         "'" + path + "' holds no lyric: " +
             (lyric.IDTags().empty() ? "the file is empty" : "only ID tags, no lines"));
    return false;
}

std::u16string cCliMain::Render(const std::u16string& text, const cCliArgs& a) {
    cLyric lyric;
    lyric.setLoad(text);
    switch (a.format) {
        case cCliArgs::Format::kTvl:
            return lyric.TVL();
        case cCliArgs::Format::kLrc: {
            const bool tagged = !a.artist.empty() || !a.title.empty() || !a.album.empty();
            return lyric.LRC(tagged ? TrackOf(a) : nullptr);
        }
        case cCliArgs::Format::kText:
            return lyric.TextRebuild();
        case cCliArgs::Format::kLines:
            break;
    }
    return Lines(lyric, a.words);
}

int cCliMain::Print(const cCliArgs& a) {
    std::u16string text;
    if (!ReadLyricFile(a.file, text)) return kExitFile;
    if (!HoldsLyric(a.file, text)) return kExitNotFound;
    out_ << Bytes(Render(text, a));
    return kExitOk;
}

int cCliMain::Convert(const cCliArgs& a) {
    std::u16string text;
    if (!ReadLyricFile(a.file, text)) return kExitFile;
    if (!HoldsLyric(a.file, text)) return kExitNotFound;
    const std::string bytes = Bytes(Render(text, a));
    if (a.output.empty()) {
        out_ << bytes;
        return kExitOk;
    }
    std::ofstream file(a.output, std::ios::binary | std::ios::trunc);
    file << bytes;
    file.close();
    if (!file) return Fail(kExitFile, "cannot write '" + a.output + "'");
    return kExitOk;
}

int cCliMain::Lookup(const cCliArgs& given) {
    const cCliArgs a = WithFileTags(given);
    cGlobals globals;
    globals.Settings.cache_simple = !a.saveBeside;
    globals.Settings.conn_Server = Text(a.server);
    const int32_t request = 1;
    globals.PlaylistPosition = request;

    std::error_code ec;
    const std::filesystem::path cacheFolder =
        a.cache.empty() ? DefaultCacheFolder() : std::filesystem::path(a.cache);
    std::filesystem::create_directories(cacheFolder, ec);
    if (!std::filesystem::is_directory(cacheFolder, ec)) {
        return Fail(kExitFile, "cannot use the cache folder '" + cacheFolder.string() + "'");
    }
    std::u16string folder = cacheFolder.u16string();
    if (folder.back() != u'/') folder += u'/';

    cStdRandom random(static_cast<uint32_t>(std::random_device()()));
    cPosixLoop loop;
    cLyricFile lookup(globals, std::make_unique<cCache>(globals, random, folder));
    const auto track = TrackOf(a);
    track->setFileAddress(std::filesystem::absolute(a.file, ec).u16string());
    lookup.setMusic(track);

    // The last status, and whether the service has answered (any result).
    int32_t status = -1;
    int32_t serviceResult = -1;
    lookup.onLoaded = [&](int32_t, int32_t s) { status = s; };
    auto lookupHandler = lookup.Site().onToval;
    lookup.Site().onToval = [&, lookupHandler](int32_t result, int32_t id) {
        serviceResult = result;
        if (lookupHandler) lookupHandler(result, id);
    };

    if (a.server.empty()) {
        if (lookup.LoadFromLyric(track)) {
            status = kLyricLocal;
        } else if (lookup.LoadFromCache(track)) {
            status = kLyricLocal;
        } else {
            return Fail(kExitNotFound, "no lyric beside the track or in the cache");
        }
    } else {
        const auto timer = std::make_shared<cPosixTimer>(loop);
        lookup.setSocket(std::make_shared<cPosixSocket>(loop));
        lookup.setTime(timer);
        timer->setInterval(a.timeout);
        lookup.Load(request);
        if (status == kLyricWaiting) {
            loop.RunUntil([&] { return serviceResult >= 0; }, AnswerLimit(a.timeout));
        }
        if (lookup.Site().ServerMoved()) {
            return Fail(kExitService, "the service moved to " +
                                          Bytes(globals.Settings.conn_Server) + "; ask it there");
        }
        if (status == kLyricWaiting) {
            if (serviceResult < 0) return Fail(kExitService, NoAnswer(a.timeout));
            const cNetError& why = lookup.Site().Error();
            return Fail(kExitService, why ? why.message : "the lyric service sent no lyric");
        }
        if (status == kLyricNotFound) {
            return Fail(kExitNotFound, "the lyric service has no lyric for this track");
        }
    }
    out_ << Bytes(Render(lookup.Lyric(), a));
    return kExitOk;
}

int cCliMain::Send(const cCliArgs& a) {
    std::u16string text;
    if (!ReadLyricFile(a.file, text)) return kExitFile;
    auto lyric = std::make_shared<cLyric>();
    lyric->setLoad(text);
    if (lyric->GetLineSize() == 0) return Fail(kExitFile, "'" + a.file + "' holds no lyric");

    cGlobals globals;
    globals.Settings.conn_Server = Text(a.server);
    cPosixLoop loop;
    cTovalSite site(globals);
    const auto timer = std::make_shared<cPosixTimer>(loop);
    site.setSocket(std::make_shared<cPosixSocket>(loop));
    site.setTime(timer);
    timer->setInterval(a.timeout);
    int32_t result = -1;
    site.onToval = [&](int32_t r, int32_t) { result = r; };
    site.Save(*TrackOf(a), lyric, 1);
    loop.RunUntil([&] { return result >= 0; }, AnswerLimit(a.timeout));

    const cNetError& why = site.Error();
    switch (result) {
        case cTovalSite::kSuccess:
            out_ << "sent: the service accepted the lyric\n";
            return kExitOk;
        case -1:
            return Fail(kExitService, NoAnswer(a.timeout));
        case cTovalSite::kSqlError:
            return Fail(kExitService, why ? why.message : "the service's database failed");
        case cTovalSite::kFailure:
            // The network's reasons stand alone: the lyric never reached the
            // service, so nobody refused it.
            if (why && why.category != cNetError::Category::kService) {
                return Fail(kExitService, why.message);
            }
            if (why)
                return Fail(kExitService, "the lyric service refused the lyric: " + why.message);
            [[fallthrough]];
        default:
            return Fail(kExitService, "the lyric service refused the lyric");
    }
}

}  // namespace toval
