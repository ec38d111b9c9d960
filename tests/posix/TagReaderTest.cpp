// The audio-tag reader on real audio files made in a temp folder (sox and
// metaflac, as a user's files are made), and lookup taking a track's tags.
#ifdef TOVAL_LYRIC_TOOL

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "cCliMain.h"
#include "fakes/TempDir.h"
#include "mAudioTags.h"
#include "posix/FakeLyricService.h"

namespace toval::test {
namespace {

const std::string kSamples = std::string(TOVAL_SOURCE_DIR) + "/samples/";

std::string Read(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Little-endian fields of a RIFF file.
std::string U32(uint32_t v) {
    return {char(v), char(v >> 8), char(v >> 16), char(v >> 24)};
}
std::string U16(uint16_t v) {
    return {char(v), char(v >> 8)};
}
std::string Chunk(const std::string& id, std::string body) {
    if (body.size() % 2) body += '\0';
    return id + U32(static_cast<uint32_t>(body.size())) + body;
}

// One second of 8 kHz mono silence with a RIFF INFO list: title, artist, album.
std::string TaggedWav() {
    const std::string fmt = U16(1) + U16(1) + U32(8000) + U32(16000) + U16(2) + U16(16);
    const std::string info = "INFO" + Chunk("INAM", std::string("Wav Title") + '\0') +
                             Chunk("IART", std::string("Wav Artist") + '\0') +
                             Chunk("IPRD", std::string("Wav Album") + '\0');
    const std::string body =
        "WAVE" + Chunk("fmt ", fmt) + Chunk("data", std::string(16000, '\0')) + Chunk("LIST", info);
    return "RIFF" + U32(static_cast<uint32_t>(body.size())) + body;
}

int Shell(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str());
}

TEST(TagReader, ReadsEveryFormAndNeverFailsOnOthers) {
    TempDir dir;
    const auto at = [&](const char* name) { return (dir.path() / name).string(); };
    ASSERT_EQ(Shell("command -v sox && command -v metaflac"), 0)
        << "sox and metaflac make the test files: run scripts/deps.sh";
    // Options of the file to write come before its name, the tone behind it.
    const auto sox = [&](const std::string& comments, const char* name) {
        return Shell("sox -n " + comments + " -r 8000 -c 1 '" + at(name) + "' synth 2.5 sine 440");
    };
    ASSERT_EQ(sox("--comment 'Title=Mp3 Title' --add-comment 'Artist=Mp3 Artist' "
                  "--add-comment 'Album=Mp3 Album'",
                  "a.mp3"),
              0);
    ASSERT_EQ(sox("--comment 'TITLE=Ogg Title' --add-comment 'ARTIST=Ogg Artist'", "a.ogg"), 0);
    ASSERT_EQ(sox("", "bare.flac"), 0);
    std::filesystem::copy_file(at("bare.flac"), at("utf8.flac"));
    // A title with a line break, an artist past the record's width in two-byte letters.
    std::string longArtist = "a";
    for (int i = 0; i < 600; ++i)
        longArtist += "\xC3\xB3";  // ó
    ASSERT_EQ(Shell("metaflac --set-tag='ARTIST=" + longArtist +
                    "' --set-tag='ALBUM=  \xC3\x81g\xC3\xA6tis byrjun ' --set-tag='TITLE=Two\n"
                    "lines' '" +
                    at("utf8.flac") + "'"),
              0);
    std::filesystem::copy_file(at("a.ogg"), at("ogg-named.mp3"));
    std::ofstream(at("tagged.wav"), std::ios::binary) << TaggedWav();
    std::ofstream(at("notes.txt"), std::ios::binary) << "ARTIST=Nobody\nTITLE=Nothing\n";
    std::ofstream(at("empty.flac"), std::ios::binary);
    std::filesystem::create_directory(at("folder.mp3"));
    ASSERT_EQ(::mkfifo(at("pipe.mp3").c_str(), 0600), 0);

    const std::string cutArtist = longArtist.substr(0, 1023);  // a whole letter less
    const struct {
        std::string path;
        cAudioTags tags;
    } cases[] = {
        {kSamples + "harbour.flac", {"Toval Samples", "Toval Samples", "Harbour Lanterns", 19000}},
        {at("a.mp3"), {"Mp3 Artist", "Mp3 Album", "Mp3 Title", 2500}},
        {at("a.ogg"), {"Ogg Artist", "", "Ogg Title", 2500}},
        {at("ogg-named.mp3"), {"Ogg Artist", "", "Ogg Title", 2500}},  // told by content
        {at("bare.flac"), {"", "", "", 2500}},
        {at("utf8.flac"), {cutArtist, "\xC3\x81g\xC3\xA6tis byrjun", "Two lines", 2500}},
        {at("tagged.wav"), {"Wav Artist", "Wav Album", "Wav Title", 1000}},
        {at("notes.txt"), {}},
        {at("empty.flac"), {}},
        {at("folder.mp3"), {}},
        {at("pipe.mp3"), {}},  // would block a reader that opened it
        {at("missing.mp3"), {}},
        {"", {}},
    };
    for (const auto& c : cases) {
        const cAudioTags got = ReadAudioTags(c.path);
        EXPECT_EQ(got.artist, c.tags.artist) << c.path;
        EXPECT_EQ(got.album, c.tags.album) << c.path;
        EXPECT_EQ(got.title, c.tags.title) << c.path;
        // Encoders pad the sound by a few frames.
        EXPECT_NEAR(got.milliseconds, c.tags.milliseconds, c.tags.milliseconds < 0 ? 0 : 250)
            << c.path;
        if (std::filesystem::is_regular_file(c.path)) {
            EXPECT_EQ(ReadAudioTagsFromMemory(Read(c.path)).title, got.title) << c.path;
        }
    }
    // Every prefix of a tagged file reads without failing (the fuzz target goes further).
    const std::string flac = Read(at("utf8.flac"));
    for (size_t size = 0; size < flac.size(); size += 97)
        ReadAudioTagsFromMemory(std::string_view(flac).substr(0, size));
}

TEST(TagReader, LookupTakesTheTrackTagsAndTheOptionsWin) {
    TempDir dir, cache;
    FakeLyricService service;
    service.AddLyric("Toval Samples", "Harbour Lanterns", "[500]from the service");
    service.AddLyric("Other", "Harbour Lanterns", "[500]another");
    // The sample track alone, without its lyric beside it.
    const std::string track = (dir.path() / "harbour.flac").string();
    std::filesystem::copy_file(kSamples + "harbour.flac", track);
    for (const auto& [extra, head, dur] :
         {std::tuple{std::vector<std::string>{}, "[al:Toval Samples]\r\n[ar:Toval Samples]\r\n",
                     "19"},
          {{"--artist", "Other", "--album=", "--duration", "7"}, "[ar:Other]\r\n", "7"}}) {
        std::vector<std::string> args = {
            "lookup",   track,          "--format", "lrc",
            "--server", service.Host(), "--cache",  cache.path().string()};
        args.insert(args.end(), extra.begin(), extra.end());
        std::ostringstream out, err;
        EXPECT_EQ(cCliMain(out, err).Run(args), kExitOk) << err.str();
        EXPECT_EQ(out.str().substr(0, out.str().find("[re:")),
                  std::string(head) + "[ti:Harbour Lanterns]\r\n");
        EXPECT_EQ(service.Requests().back().Value("dur"), dur);
    }
}

}  // namespace
}  // namespace toval::test

#endif  // TOVAL_LYRIC_TOOL
