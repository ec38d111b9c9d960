// Feeds arbitrary service answers to the answer reader: the envelope, the
// announced version and the result codes must hold together for any bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "net/cTovalSite.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto answer = toval::cTovalSite::ReadAnswer(text);
    if (answer.result < toval::cTovalSite::kLyric || answer.result > toval::cTovalSite::kFailure)
        std::abort();
    if (answer.body.size() > size) std::abort();
    if (answer.result == toval::cTovalSite::kLyric &&
        (answer.body.empty() || answer.body.front() == ':'))
        std::abort();
    if (!answer.newServer.empty() && answer.result != toval::cTovalSite::kNotFound) std::abort();
    return 0;
}
