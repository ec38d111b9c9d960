// Arbitrary answers of the lyrics service: the answer reader must sort any
// bytes into one result code, and the service object must raise exactly one
// event for them whatever the envelope, the codes or the lyric body hold,
// with a printable reason beside every failure.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "config/cSettings.h"
#include "fakes/FakeSocket.h"
#include "fakes/FakeTimer.h"
#include "lyric/cMusic.h"
#include "net/cTovalSite.h"

using toval::cTovalSite;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto answer = cTovalSite::ReadAnswer(text);
    if (answer.result < cTovalSite::kLyric || answer.result > cTovalSite::kFailure) std::abort();
    if (answer.body.size() > size) std::abort();
    if (answer.result == cTovalSite::kLyric && (answer.body.empty() || answer.body.front() == ':'))
        std::abort();
    if (!answer.newServer.empty() && answer.result != cTovalSite::kNotFound) std::abort();
    // A failure, and only a failure, says why, in one short printable line.
    const bool failed =
        answer.result == cTovalSite::kFailure || answer.result == cTovalSite::kSqlError;
    if (failed != static_cast<bool>(answer.error) || answer.error.message.size() > 120)
        std::abort();
    for (const char c : answer.error.message) {
        if (c < 0x20 || c > 0x7E) std::abort();
    }

    // The same bytes as the body of a 200 answer on the wire.
    toval::cGlobals globals;
    cTovalSite site(globals);
    auto socket = std::make_shared<toval::test::FakeSocket>();
    site.setSocket(socket);
    site.setTime(std::make_shared<toval::test::FakeTimer>());
    int events = 0;
    int32_t result = -1;
    site.onToval = [&](int32_t r, int32_t) {
        ++events;
        result = r;
    };
    site.Load(toval::cMusic(), 1, 0);
    socket->accept();
    socket->answer("HTTP/1.0 200 OK\r\n\r\n");
    socket->answer(std::string(text));
    socket->hangUp();
    if (events != 1 || result != answer.result || site.Error() != answer.error) std::abort();
    if (result != cTovalSite::kLyric && !site.Lyric().empty()) std::abort();
    if (answer.hasVersion && globals.lastUpdateVersion != answer.version) std::abort();
    return 0;
}
