// Why a request to the lyric service failed: a category that code can act on
// and a message that a person can read. It travels beside the result codes of
// the HTTP client and the service, which keep their meaning.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace toval {

struct cNetError {
    enum class Category : int16_t {
        kNone,        // no failure
        kBadUrl,      // the address cannot be used; nothing was sent
        kResolve,     // the host name does not resolve
        kRefused,     // nobody listens at the host and port
        kTimeout,     // silence past the time-out, or an answer past its time limit
        kConnection,  // the connection could not be made or broke
        kTooLarge,    // the answer is past the size limit
        kStatus,      // the answer's first line does not hold "200 OK"
        kBadAnswer,   // not an HTTP answer, or no envelope of the service in it
        kService,     // the service reported a failure of its own
        kInternal,    // no socket to send on, memory ran out
    };

    Category category = Category::kNone;
    // One line of printable text; empty without a failure.
    std::string message;

    explicit operator bool() const { return category != Category::kNone; }
    bool operator==(const cNetError&) const = default;

    // Bytes from the wire, made safe for a message: printable ASCII kept,
    // anything else shown as "?", cut to `limit` characters with "..." behind.
    static std::string Printable(std::string_view bytes, size_t limit = 60);
    // A count of milliseconds in seconds: "6 s", "0.25 s".
    static std::string Seconds(int64_t ms);
};

}  // namespace toval
