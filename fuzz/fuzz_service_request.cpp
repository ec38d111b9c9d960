// The lyric service's request reading: form decoding, numbers, match keys, the
// check of a sent lyric and the look-up, over a store in memory. The first
// byte picks the script; the rest is its form text.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "cLyricService.h"
#include "service/MemoryStore.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    static toval::test::MemoryStore store;
    static toval::service::cLyricService service(store, [] {
        toval::service::cServiceOptions options;
        options.sendsPerHour = 0;
        options.announceVersion = 1030002;
        return options;
    }());
    const std::string_view form(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 3) {
        case 0:
            service.Insert(form, "fuzz", 0);
            [[fallthrough]];
        case 1:
            service.Get(form);
            break;
        default:
            service.Update(form);
            break;
    }
    return 0;
}
