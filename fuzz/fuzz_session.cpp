// Any sequence of what the plug-in and the lookup can do to the controller:
// notices with any code, tag records, lyric answers for any request and with
// any text, positions, a plug-in that dies or refuses, settings resets. The
// controller must never crash, and a running lyric always has its stream.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "core/FakeLyricSource.h"
#include "core/cCore.h"
#include "core/cEventStream.h"
#include "core/cPlugin.h"
#include "display/cDisplay.h"
#include "fakes/FakeDrawSurface.h"
#include "fakes/FakeMeasureSurface.h"
#include "fakes/FakePluginChannel.h"
#include "fakes/FakeRandom.h"
#include "fakes/FakeShell.h"
#include "fakes/FakeTimer.h"

using namespace toval;

namespace {

struct Reader {
    const uint8_t* data;
    size_t size, at = 0;
    bool more() const { return at < size; }
    uint8_t byte() { return at < size ? data[at++] : 0; }
    int32_t int32() {
        uint32_t v = 0;
        for (int k = 0; k < 4; ++k)
            v |= static_cast<uint32_t>(byte()) << (8 * k);
        return static_cast<int32_t>(v);
    }
    std::u16string text() {
        const size_t n = byte();
        std::u16string out;
        for (size_t i = 0; i < n && more(); ++i) {
            const uint8_t c = byte();
            // Mostly the characters that make up time tags.
            static const char16_t kAlphabet[] = u"[]<>0123456789:.-\r\n abc";
            out.push_back(c < 200 ? kAlphabet[c % (std::size(kAlphabet) - 1)]
                                  : static_cast<char16_t>(0xD800 + c));
        }
        return out;
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    cGlobals globals;
    test::FakeShell shell;
    test::FakeRandom random;
    test::FakeTimer timer;
    test::FakePluginChannel channel;
    test::FakeDrawSurface surface;
    test::FakeMeasureSurface measure;
    auto source = std::make_shared<test::FakeLyricSource>();
    cPlugin plugin(globals, channel, shell, nullptr);
    cDisplay display(globals, surface, shell);
    auto core = std::make_shared<cCore>(globals, shell, random, source, nullptr);
    core->setTray(&display);
    core->setAuxPictureBox(&measure);
    core->setPlugin(&plugin);
    core->setTimer(&timer);
    plugin.setCore(core);
    display.onLinkOpened = [&](const std::u16string& url) { core->LinkOpened(url); };

    Reader in{data, size};
    for (int step = 0; in.more() && step < 400; ++step) {
        int64_t result = 0;
        switch (in.byte() % 9) {
            case 0:
                timer.tick();
                break;
            case 1:
                plugin.ProcessMessage(kWmUser, 0, static_cast<int8_t>(in.byte()), {}, result);
                break;
            case 2: {
                std::string record(kTagRecordSize, '\0');
                const size_t n = in.byte();
                for (size_t i = 0; i < n; ++i)
                    record[in.byte() * 14 % kTagRecordSize] = static_cast<char>(in.byte());
                plugin.ProcessMessage(kWmCopyData, 0, 0, record, result);
                break;
            }
            case 3:
                source->text = in.text();
                source->Answer(in.byte() % 4, in.byte() % 6);
                break;
            case 4:
                channel.position = in.int32();
                break;
            case 5:
                channel.playlistPosition = in.byte() % 4;
                break;
            case 6:
                channel.dead = in.byte() & 1;
                channel.registerAnswer = in.byte() % 3;
                channel.lengthUnit = in.byte() % 3;
                break;
            case 7: {
                const uint8_t what = in.byte();
                if (what & 1) core->Reset();
                if (what & 2) core->PluginEvent(static_cast<int8_t>(in.byte()));
                if (what & 4) display.Click();
                if (what & 8) globals.lastUpdateVersion = in.int32();
                if (what & 16) globals.Settings.timer_TrackPosRefresh = in.int32();
                break;
            }
            case 8: {
                int32_t line = in.int32(), word = in.int32();
                display.ChooseText(line, word);
                break;
            }
        }
        if (core->LyricActive() && !core->Stream()) __builtin_trap();
        surface.clear();
        channel.sent.clear();
    }
    plugin.setCore(nullptr);
    core->setTimer(nullptr);
    return 0;
}
