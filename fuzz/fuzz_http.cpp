// Feeds arbitrary bytes to the HTTP client as a server's answer, cut into
// pieces chosen by the first byte, and as a URL. Whatever the bytes, exactly one
// outcome is reported, it does not depend on the cut, a success holds
// exactly the bytes after the headers, and a failure has a printable reason.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "fakes/FakeSocket.h"
#include "fakes/FakeTimer.h"
#include "net/cInternet.h"
#include "net/mHttp.h"

using namespace toval;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    if (size == 0) return 0;
    const size_t piece = 1 + bytes[0] % 16;
    const std::string input(reinterpret_cast<const char*>(bytes) + 1, size - 1);

    cGlobals globals;
    globals.Settings.proxy_Enabled = (bytes[0] & 0x80) != 0;
    globals.Settings.proxy_Host = u"proxy";
    auto socket = std::make_shared<test::FakeSocket>();
    auto timer = std::make_shared<test::FakeTimer>();
    int events = 0;
    int16_t state = 0;
    {
        cInternet net(globals);
        net.setSocket(socket);
        net.setTime(timer);
        net.onieEvent = [&](int16_t s) {
            ++events;
            state = s;
        };

        // The answer, in pieces.
        net.getPage("http://h/x", 1, "", true);
        socket->accept();
        for (size_t at = 0; at < input.size(); at += piece)
            socket->answer(input.substr(at, piece));
        socket->hangUp();
        std::string whole = input;
        cNetError why;
        const int16_t expected = TakeHttpBody(whole, why);
        if (events != 1 || state != expected || net.Data() != whole) std::abort();
        // A failure, and only a failure, says why, in one short printable line.
        if (net.Error() != why || (state == kInternetSuccess) == static_cast<bool>(why))
            std::abort();
        if (why.message.size() > 120) std::abort();
        for (const char c : why.message) {
            if (c < 0x20 || c > 0x7E) std::abort();
        }
        if (state == kInternetSuccess) {
            const size_t headEnd = input.find("\r\n\r\n");
            if (headEnd == std::string::npos || input.substr(headEnd + 4) != net.Data()) {
                std::abort();
            }
        } else if (!net.Data().empty()) {
            std::abort();
        }

        // The bytes as a URL: either refused at once or sent as one request.
        events = 0;
        const size_t connects = socket->connects.size();
        net.getPage(input, 2, input, true, input);
        const bool refused = events == 1 && state == kInternetBadUrl;
        const bool sent = events == 0 && socket->connects.size() == connects + 1 &&
                          socket->Tag().compare(0, 4, "GET ") == 0;
        if (refused == sent) std::abort();
        net.postData(input, 3, input);
    }
    return 0;
}
