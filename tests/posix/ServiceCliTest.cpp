// toval-lyric: its commands against real files in a temp folder and a lyric
// service on 127.0.0.1, and the real binary's exit codes.
#ifdef TOVAL_LYRIC_TOOL

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "cCliArgs.h"
#include "cCliMain.h"
#include "fakes/TempDir.h"
#include "posix/FakeLyricService.h"

namespace toval::test {
namespace {

void Write(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}
std::string Read(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

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

const std::string kSample = std::string(TOVAL_SOURCE_DIR) + "/samples/harbour.tvl";

TEST(ServiceCli, BadCommandLinesExitWithTwoAndSayWhy) {
    const struct {
        std::vector<std::string> args;
        const char* says;
    } cases[] = {
        {{}, "no command"},
        {{"fetch", "x"}, "unknown command 'fetch'"},
        {{"print"}, "print needs a file"},
        {{"print", "a", "b"}, "unexpected argument 'b'"},
        {{"print", "a", "--colour"}, "unknown option '--colour'"},
        {{"lookup", "a", "--server"}, "'--server' needs a value"},
        {{"lookup", "a", "--duration", "3m"}, "not a duration"},
        {{"lookup", "a", "--duration=-1"}, "not a duration"},
        {{"lookup", "a", "--timeout", "0"}, "not a time-out"},
        {{"lookup", "a", "--timeout", "99999999999"}, "not a time-out"},
        {{"print", "a", "--format", "xml"}, "unknown format 'xml'"},
        {{"send", "a", "--artist", "A", "--title", "T"}, "send needs --server"},
        {{"send", "a", "--server", "h", "--title", "T"}, "--artist and --title"},
        {{"print", "a", "-o", "b"}, "--output belongs to convert"},
    };
    for (const auto& c : cases) {
        const Outcome o = Tool(c.args);
        EXPECT_EQ(o.code, kExitUsage) << c.says;
        EXPECT_NE(o.err.find(c.says), std::string::npos) << o.err;
        EXPECT_NE(o.err.find("--help"), std::string::npos);
        EXPECT_EQ(o.out, "");
    }
    // Help wins over everything else on the line; "--" ends the options.
    EXPECT_EQ(Tool({"lookup", "--bogus", "--help"}).code, kExitOk);
    EXPECT_NE(Tool({"-h"}).out.find("Exit status"), std::string::npos);
    EXPECT_EQ(Tool({"--version"}).out, "toval-lyric 1.3.1\n");
    const cCliArgs dashed = cCliArgs::Parse({"print", "--", "-odd.tvl"});
    EXPECT_EQ(dashed.error, "");
    EXPECT_EQ(dashed.file, "-odd.tvl");
    const cCliArgs joined = cCliArgs::Parse({"lookup", "t.mp3", "--artist=A=B", "--duration=215"});
    EXPECT_EQ(joined.artist, "A=B");
    EXPECT_EQ(joined.duration, 215);
}

TEST(ServiceCli, PrintAndConvertReadAndWriteRealFiles) {
    TempDir dir;
    Outcome o = Tool({"print", kSample, "--words"});
    EXPECT_EQ(o.code, kExitOk);
    EXPECT_EQ(o.out.substr(0, o.out.find("Boats")),
              "00:01.00  Lanterns on the harbour wall\n          <00:01.00>Lanterns "
              "<00:01.70>on <00:01.95>the <00:02.20>harbour <00:03.00>wall\n00:04.20  ");
    Write(dir.path() / "mixed.lrc", "[ar:Me]\r\n[00:01.50][00:09.00]Hi\r\nno time\r\n");
    EXPECT_EQ(Tool({"print", (dir.path() / "mixed.lrc").string()}).out,
              "00:01.50 00:09.00  Hi\n          no time\n");

    // tvl -> lrc -> back: line times survive in hundredths, word times go.
    const std::string lrc = (dir.path() / "out.lrc").string();
    o = Tool({"convert", kSample, "--to", "lrc", "-o", lrc});
    EXPECT_EQ(o.code, kExitOk);
    EXPECT_EQ(Read(lrc).substr(0, 39), "[00:01.00]Lanterns on the harbour wall\r");
    EXPECT_EQ(Tool({"convert", lrc}).out.substr(0, 66),
              "[PROPERTY]\r\nMUTATION:-2147483648\r\nRIGHTTOLEFT:0\r\n[\\PROPERTY][1000]");
    EXPECT_EQ(Tool({"convert", kSample, "--to=text"}).out.substr(0, 30),
              "Lanterns on the harbour wall\r\n");

    // What cannot be read or written, or holds no lyric, says so.
    Write(dir.path() / "id3.lrc", std::string("ID3\x03\0\0\0", 7));
    Write(dir.path() / "tags.lrc", "[ar:Me]\n");
    Write(dir.path() / "empty.lrc", "");
    const struct {
        std::vector<std::string> args;
        int code;
        const char* says;
    } cases[] = {
        {{"print", (dir.path() / "none.tvl").string()}, kExitFile, "no such file"},
        {{"print", dir.path().string()}, kExitFile, ""},
        {{"convert", kSample, "-o", (dir.path() / "no" / "x.lrc").string()},
         kExitFile,
         "cannot write"},
        {{"print", (dir.path() / "id3.lrc").string()}, kExitFile, "not a text file"},
        {{"print", (dir.path() / "tags.lrc").string()}, kExitNotFound, "only ID tags"},
        {{"print", (dir.path() / "empty.lrc").string()}, kExitNotFound, "the file is empty"},
    };
    for (const auto& c : cases) {
        o = Tool(c.args);
        EXPECT_EQ(o.code, c.code) << c.says;
        EXPECT_EQ(o.out, "");
        EXPECT_NE(o.err.find(c.says), std::string::npos) << o.err;
    }
}

TEST(ServiceCli, LookupFindsBesideTheTrackInTheCacheAndAtTheService) {
    TempDir dir, cache;
    FakeLyricService service;
    service.AddLyric("Ann", "Tide", "[500]from the service<br>[900]again");
    const std::string track = (dir.path() / "tide.flac").string();
    const std::string server = service.Host();
    const auto lookup = [&](std::vector<std::string> tail) {
        std::vector<std::string> args = {"lookup",  track,  "--artist", "Ann",
                                         "--title", "Tide", "--cache",  cache.path().string()};
        args.insert(args.end(), tail.begin(), tail.end());
        return Tool(args);
    };
    EXPECT_EQ(lookup({}).code, kExitNotFound);
    EXPECT_TRUE(service.Requests().empty()) << "no --server, no service";
    Outcome o = lookup({"--server", server, "--format", "text"});
    EXPECT_EQ(o.code, kExitOk) << o.err;
    EXPECT_EQ(o.out, "from the service\r\nagain\r\n");
    EXPECT_FALSE(std::filesystem::exists(dir.path() / "tide.tvl"));
    // Kept in the cache: found again without the service.
    EXPECT_EQ(lookup({}).out, "00:00.50  from the service\n00:00.90  again\n");
    // A file beside the track comes first.
    Write(dir.path() / "tide.lrc", "[00:03.00]beside\r\n");
    EXPECT_EQ(lookup({"--format", "lrc"}).out,
              "[ar:Ann]\r\n[ti:Tide]\r\n[re:Toval]\r\n[ve:1.3.1]\r\n[00:03.00]beside\r\n");
    // --save-beside writes the service's lyric as a .tvl file.
    service.AddLyric("Ann", "Wave", "[1]wave");
    o = Tool({"lookup", (dir.path() / "wave.mp3").string(), "--artist", "Ann", "--title", "Wave",
              "--cache", cache.path().string(), "--server", server, "--save-beside"});
    EXPECT_EQ(o.code, kExitOk);
    EXPECT_EQ(Read(dir.path() / "wave.tvl"), "[1]wave");
    // A file name that is not UTF-8 ends in a message, never in a crash.
    o = Tool({"lookup", (dir.path() / "\xff\xfe.mp3").string(), "--cache", cache.path().string()});
    EXPECT_TRUE(o.code == kExitNotFound || o.code == kExitFile) << o.code;

    // What the service says and failures on the way, as exit codes and reasons.
    const std::string closed = "127.0.0.1:" + std::to_string(LoopbackServer::ClosedPort());
    const struct {
        std::string answer, server, says;
    } cases[] = {
        {"", server, "no lyric for this track"},
        {"<TOVAL>:SQL_ERROR</TOVAL>", server, "the service's database failed (':SQL_ERROR')"},
        {"<TOVAL>:SUCCESS", server, "the service's answer holds no <TOVAL> envelope"},
        {"HTTP/1.0 500 Internal Server Error\r\n\r\n", server,
         "the service answered 'HTTP/1.0 500 Internal Server Error'"},
        {"<TOVAL>:UPDATESERVER:elsewhere.test</TOVAL>", server, "moved to elsewhere.test"},
        {FakeLyricService::kEndless, server, "the answer stopped for 0.3 s"},
        {"", closed, "connection refused by " + closed},
        {"", "lyrics.invalid", "cannot resolve lyrics.invalid"},
    };
    for (const auto& c : cases) {
        service.setAnswer(c.answer);
        o = Tool({"lookup", (dir.path() / "none.mp3").string(), "--title", "Nothing", "--cache",
                  cache.path().string(), "--server", c.server, "--timeout",
                  c.answer == FakeLyricService::kEndless ? "300" : "1000"});
        EXPECT_EQ(o.code, c.answer.empty() && c.server == server ? kExitNotFound : kExitService);
        EXPECT_NE(o.err.find(c.says), std::string::npos) << o.err;
    }
    // Without --duration the service is sent 0 seconds.
    EXPECT_EQ(service.Requests().back().Value("dur"), "0");
}

TEST(ServiceCli, SendReportsWhatTheServiceSaid) {
    FakeLyricService service;
    const std::vector<std::string> send = {"send",     kSample, "--server", service.Host(),
                                           "--artist", "Toval", "--title",  "Harbour"};
    Outcome o = Tool(send);
    EXPECT_EQ(o.code, kExitOk) << o.err;
    const auto stored = service.Stored("Toval", "Harbour");
    EXPECT_EQ(stored.mutation, "1804289383");
    EXPECT_EQ(stored.lyric.substr(0, 11), "[PROPERTY]\r");
    service.setAnswer("<TOVAL>:SQL_CONNECTION_ERROR</TOVAL>");
    o = Tool(send);
    EXPECT_EQ(o.code, kExitService);
    EXPECT_NE(o.err.find("database"), std::string::npos);

    TempDir dir;
    Write(dir.path() / "empty.tvl", "");
    std::vector<std::string> empty = send;
    empty[1] = (dir.path() / "empty.tvl").string();
    EXPECT_EQ(Tool(empty).code, kExitFile);
}

// The installed binary, as a script sees it.
TEST(ServiceCli, TheBinaryExitsWithTheDocumentedCodes) {
    auto run = [](const std::string& args, std::string* out = nullptr) {
        const std::string command = std::string(TOVAL_LYRIC_TOOL) + " " + args + " 2>/dev/null";
        FILE* pipe = ::popen(command.c_str(), "r");
        if (!pipe) return -1;
        std::string text;
        char buffer[4096];
        size_t n;
        while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
            text.append(buffer, n);
        const int status = ::pclose(pipe);
        if (out) *out = text;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    std::string out;
    EXPECT_EQ(run("--help", &out), 0);
    EXPECT_NE(out.find("Usage: toval-lyric"), std::string::npos);
    EXPECT_EQ(run("print '" + kSample + "'", &out), 0);
    EXPECT_NE(out.find("00:16.50  \xE2\x80\xA6\n"), std::string::npos);
    EXPECT_EQ(run("frobnicate"), 2);
    EXPECT_EQ(run("print /nonexistent/x.tvl"), 3);
}

}  // namespace
}  // namespace toval::test

#endif  // TOVAL_LYRIC_TOOL
