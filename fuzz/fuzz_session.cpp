// Any sequence of what the plug-in and the lookup can do to the controller:
// notices with any code, tag records, lyric answers for any request and with
// any text, positions, a plug-in that dies or refuses, settings resets. The
// controller must never crash, and a running lyric always has its stream.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "core/ControllerRig.h"
#include "core/cEventStream.h"

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
    test::ControllerRig rig;
    Reader in{data, size};
    for (int step = 0; in.more() && step < 400; ++step) {
        int64_t result = 0;
        switch (in.byte() % 9) {
            case 0:
                rig.timer.tick();
                break;
            case 1:
                rig.plugin.ProcessMessage(kWmUser, 0, static_cast<int8_t>(in.byte()), {}, result);
                break;
            case 2: {
                std::string record(kTagRecordSize, '\0');
                const size_t n = in.byte();
                for (size_t i = 0; i < n; ++i)
                    record[in.byte() * 14 % kTagRecordSize] = static_cast<char>(in.byte());
                rig.plugin.ProcessMessage(kWmCopyData, 0, 0, record, result);
                break;
            }
            case 3:
                rig.fake->text = in.text();
                rig.fake->Answer(in.byte() % 4, in.byte() % 6);
                break;
            case 4:
                rig.channel.position = in.int32();
                break;
            case 5:
                rig.channel.playlistPosition = in.byte() % 4;
                break;
            case 6:
                rig.channel.dead = in.byte() & 1;
                rig.channel.registerAnswer = in.byte() % 3;
                rig.channel.lengthUnit = in.byte() % 3;
                break;
            case 7: {
                const uint8_t what = in.byte();
                if (what & 1) rig.core->Reset();
                if (what & 2) rig.core->PluginEvent(static_cast<int8_t>(in.byte()));
                if (what & 4) rig.display.Click();
                if (what & 8) rig.globals.lastUpdateVersion = in.int32();
                if (what & 16) rig.globals.Settings.timer_TrackPosRefresh = in.int32();
                break;
            }
            case 8: {
                int32_t line = in.int32(), word = in.int32();
                rig.display.ChooseText(line, word);
                break;
            }
        }
        if (rig.core->LyricActive() && !rig.core->Stream()) __builtin_trap();
        rig.surface.clear();
        rig.channel.sent.clear();
        rig.display.log.clear();
    }
    return 0;
}
