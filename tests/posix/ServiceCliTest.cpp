// toval-lyric: its commands against real files in a temp folder and a lyric
// service on 127.0.0.1, the real binary's exit codes, and the audio-tag reader
// on real audio files (made with sox, as a user's files are made).
#ifdef TOVAL_LYRIC_TOOL

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "cCliArgs.h"
#include "cCliMain.h"
#include "fakes/TempDir.h"
#include "mAudioTags.h"
#include "posix/FakeLyricService.h"
#include "posix/Sox.h"

namespace toval::test {
namespace {

struct Outcome {
    int code;
    std::string out, err;
};

Outcome Tool(std::vector<std::string> args) {
    std::ostringstream out, err;
    cCliMain tool(out, err);
    const int code = tool.Run(args);
    return {code, out.str(), err.str()};
}

const std::string kSamples = std::string(TOVAL_SOURCE_DIR) + "/samples/";
const std::string kSample = kSamples + "harbour.tvl";

TEST(ServiceCli, BadCommandLinesAndUnusableFilesExitWithTheirCodeAndSayWhy) {
    TempDir dir;
    const auto at = [&](const char* name) { return (dir.path() / name).string(); };
    dir.Write("id3.lrc", std::string("ID3\x03\0\0\0", 7));
    dir.Write("tags.lrc", "[ar:Me]\n");
    dir.Write("empty.lrc", "");
    const struct {
        std::vector<std::string> args;
        int code;
        const char* says;
    } cases[] = {
        {{}, kExitUsage, "no command"},
        {{"fetch", "x"}, kExitUsage, "unknown command 'fetch'"},
        {{"print"}, kExitUsage, "print needs a file"},
        {{"print", "a", "b"}, kExitUsage, "unexpected argument 'b'"},
        {{"print", "a", "--colour"}, kExitUsage, "unknown option '--colour'"},
        {{"lookup", "a", "--server"}, kExitUsage, "'--server' needs a value"},
        {{"lookup", "a", "--duration=-1"}, kExitUsage, "not a duration"},
        {{"print", "a", "--format", "xml"}, kExitUsage, "unknown format 'xml'"},
        {{"send", "a", "--server", "h", "--title", "T"}, kExitUsage, "--artist and --title"},
        {{"print", "a", "-o", "b"}, kExitUsage, "--output belongs to convert"},
        {{"print", "--", "-h"}, kExitFile, "cannot read '-h'"},  // "--" ends the options
        {{"print", at("none.tvl")}, kExitFile, "no such file"},
        {{"convert", kSample, "-o", at("no/x.lrc")}, kExitFile, "cannot write"},
        {{"print", at("id3.lrc")}, kExitFile, "not a text file"},
        {{"print", at("tags.lrc")}, kExitNotFound, "only ID tags"},
        {{"print", at("empty.lrc")}, kExitNotFound, "the file is empty"},
        {{"send", at("tags.lrc"), "--server", "h", "--artist", "A", "--title", "T"},
         kExitFile,
         "holds no lyric"},
    };
    for (const auto& c : cases) {
        const Outcome o = Tool(c.args);
        EXPECT_EQ(o.code, c.code) << c.says;
        EXPECT_NE(o.err.find(c.says), std::string::npos) << o.err;
        EXPECT_EQ(o.err.find("--help") != std::string::npos, c.code == kExitUsage) << o.err;
        EXPECT_EQ(o.out, "");
    }
    // Help wins over everything else on the line.
    EXPECT_EQ(Tool({"lookup", "--bogus", "--help"}).code, kExitOk);
    EXPECT_EQ(Tool({"--version"}).out, "toval-lyric 1.3.1\n");
    EXPECT_EQ(cCliArgs::Parse({"lookup", "t.mp3", "--artist=A=B"}).artist, "A=B");
    // The installed binary, as a script sees it.
    const std::string tool = TOVAL_LYRIC_TOOL;
    EXPECT_EQ(WEXITSTATUS(Shell(tool + " -h | grep -q 'Exit status'")), 0);
    EXPECT_EQ(WEXITSTATUS(Shell(tool + " print /nonexistent/x.tvl")), 3);
}

TEST(ServiceCli, PrintAndConvertReadAndWriteRealFiles) {
    TempDir dir;
    Outcome o = Tool({"print", kSample, "--words"});
    EXPECT_EQ(o.code, kExitOk);
    EXPECT_EQ(o.out.substr(0, o.out.find("Boats")),
              "00:01.00  Lanterns on the harbour wall\n          <00:01.00>Lanterns "
              "<00:01.70>on <00:01.95>the <00:02.20>harbour <00:03.00>wall\n00:04.20  ");
    dir.Write("mixed.lrc", "[ar:Me]\r\n[00:01.50][00:09.00]Hi\r\nno time\r\n");
    EXPECT_EQ(Tool({"print", (dir.path() / "mixed.lrc").string()}).out,
              "00:01.50 00:09.00  Hi\n          no time\n");

    // tvl -> lrc -> back: line times survive in hundredths, word times go.
    const std::string lrc = (dir.path() / "out.lrc").string();
    EXPECT_EQ(Tool({"convert", kSample, "--to", "lrc", "-o", lrc}).code, kExitOk);
    EXPECT_EQ(dir.Read("out.lrc").substr(0, 39), "[00:01.00]Lanterns on the harbour wall\r");
    EXPECT_EQ(Tool({"convert", lrc}).out.substr(0, 66),
              "[PROPERTY]\r\nMUTATION:-2147483648\r\nRIGHTTOLEFT:0\r\n[\\PROPERTY][1000]");
}

TEST(ServiceCli, LookupFindsBesideInTheCacheAndAtTheServiceAndSendPostsThere) {
    TempDir dir, cache;
    FakeLyricService service;
    // The sample track alone, without its lyric beside it: its tags name it.
    const std::string track = (dir.path() / "harbour.flac").string();
    std::filesystem::copy_file(kSamples + "harbour.flac", track);
    const std::string server = service.Host();
    const auto lookup = [&](std::vector<std::string> tail) {
        std::vector<std::string> args = {"lookup", track, "--cache", cache.path().string()};
        args.insert(args.end(), tail.begin(), tail.end());
        return Tool(args);
    };
    EXPECT_EQ(lookup({}).code, kExitNotFound);
    EXPECT_FALSE(service.LastAsked("")) << "no --server, no service";
    service.setAnswer("[500]from the service<br>[900]again");
    // The options win over the track's tags, an empty one too.
    Outcome o = lookup({"--server", server, "--artist", "Other", "--album=", "--duration", "7",
                        "--format", "lrc"});
    EXPECT_EQ(o.out.substr(0, o.out.find("[re:")), "[ar:Other]\r\n[ti:Harbour Lanterns]\r\n");
    EXPECT_TRUE(service.LastAsked("?art=Other&alb=&tit=Harbour+Lanterns&dur=7&"));
    o = lookup({"--server", server, "--format", "text"});
    EXPECT_EQ(o.code, kExitOk) << o.err;
    EXPECT_EQ(o.out, "from the service\r\nagain\r\n");
    EXPECT_TRUE(
        service.LastAsked("?art=Toval+Samples&alb=Toval+Samples&tit=Harbour+Lanterns&dur=19&"));
    EXPECT_FALSE(std::filesystem::exists(dir.path() / "harbour.tvl"));
    // Kept in the cache: found again without the service.
    EXPECT_EQ(lookup({}).out, "00:00.50  from the service\n00:00.90  again\n");
    // What the service says, and a time-out the option sets, as exit codes and reasons (the
    // client's own failures are its tests).
    const struct {
        std::string answer;
        int code;
        std::string says;
    } cases[] = {
        {":NOTFOUND", kExitNotFound, "no lyric for this track"},
        {":UPDATESERVER:elsewhere.test", kExitService, "moved to elsewhere.test"},
        {FakeLyricService::kEndless, kExitService, "the answer stopped for 0.3 s"},
    };
    for (const auto& c : cases) {
        service.setAnswer(c.answer);
        o = lookup({"--title", "Nothing", "--server", server, "--timeout",
                    c.answer == FakeLyricService::kEndless ? "300" : "1000"});
        EXPECT_EQ(o.code, c.code);
        EXPECT_NE(o.err.find(c.says), std::string::npos) << o.err;
    }
    // --save-beside keeps the service's lyric beside the track, where it comes first.
    service.setAnswer("[1]wave");
    EXPECT_EQ(lookup({"--server", server, "--title", "Wave", "--save-beside"}).code, kExitOk);
    EXPECT_EQ(lookup({"--format", "text"}).out, "wave\r\n");
    // A file name that is not UTF-8 ends in a message, never in a crash.
    o = Tool({"lookup", (dir.path() / "\xff\xfe.mp3").string(), "--cache", cache.path().string()});
    EXPECT_TRUE(o.code == kExitNotFound || o.code == kExitFile) << o.code;

    // A karaoke lyric goes as tvl=, a track without a length as 0 seconds, and the
    // service's word comes back.
    service.setAnswer(":SUCCESS");
    o = Tool({"send", kSample, "--server", server, "--artist", "Toval", "--title", "Harbour"});
    EXPECT_EQ(o.code, kExitOk) << o.err;
    EXPECT_TRUE(service.LastAsked("&dur=0&siz=0&mut=1804289383&vrs=1030001&tvl=%5BPROPERTY%5D"));
}

TEST(TagReader, ReadsEveryFormAndNeverFailsOnOthers) {
    TempDir dir;
    const auto at = [&](const char* name) { return (dir.path() / name).string(); };
    ASSERT_EQ(Shell("command -v sox"), 0) << "sox makes the test files: run scripts/deps.sh";
    ASSERT_TRUE(MakeAudio(at("a.ogg"), {"TITLE=Ogg Title", "ARTIST=Ogg Artist"}, 2.5));
    // A title with a line break, an artist past the record's width in two-byte letters.
    std::string longArtist = "a";
    for (int i = 0; i < 600; ++i)
        longArtist += "\xC3\xB3";  // ó
    ASSERT_TRUE(MakeAudio(
        at("utf8.flac"),
        {"ARTIST=" + longArtist, "ALBUM=  \xC3\x81g\xC3\xA6tis byrjun ", "TITLE=Two\nlines"}, 2.5));
    std::filesystem::copy_file(at("a.ogg"), at("ogg-named.mp3"));
    // A WAV file whose tags are only in its RIFF INFO list: title T, artist A, album B.
    std::filesystem::copy_file(
        std::string(TOVAL_SOURCE_DIR) + "/fuzz/corpus/fuzz_audiotags/seed.wav", at("tagged.wav"));
    ASSERT_EQ(::mkfifo(at("pipe.mp3").c_str(), 0600), 0);

    const std::string cutArtist = longArtist.substr(0, 1023);  // a whole letter less
    const struct {
        std::string path;
        cAudioTags tags;
    } cases[] = {
        {at("ogg-named.mp3"), {"Ogg Artist", "", "Ogg Title", 2500}},  // told by content
        {at("utf8.flac"), {cutArtist, "\xC3\x81g\xC3\xA6tis byrjun", "Two lines", 2500}},
        {at("tagged.wav"), {"A", "B", "T", 12}},
        {at("pipe.mp3"), {}},  // would block a reader that opened it
    };
    for (const auto& c : cases) {
        const cAudioTags got = ReadAudioTags(c.path);
        EXPECT_EQ(std::tie(got.artist, got.album, got.title),
                  std::tie(c.tags.artist, c.tags.album, c.tags.title));
        // Encoders pad the sound by a few frames.
        EXPECT_NEAR(got.milliseconds, c.tags.milliseconds, c.tags.milliseconds < 0 ? 0 : 250)
            << c.path;
    }
}

}  // namespace
}  // namespace toval::test

#endif  // TOVAL_LYRIC_TOOL
