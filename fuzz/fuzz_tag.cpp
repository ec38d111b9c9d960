// The plug-in's track tag record and notices are untrusted input: any bytes,
// any size. The first byte picks the length unit and whether the rest is fitted
// to the record size (so that the field decoding is reached), the second the
// notice sent afterwards.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/FakeLyricSource.h"
#include "core/cCore.h"
#include "core/cPlugin.h"
#include "fakes/FakePluginChannel.h"
#include "fakes/FakeRandom.h"
#include "fakes/FakeShell.h"
#include "fakes/FakeTimer.h"
#include "lyric/cMusic.h"

using namespace toval;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const uint8_t mode = data[0];
    const uint8_t notice = data[1];
    std::string block(reinterpret_cast<const char*>(data + 2), size - 2);
    if (mode & 1) block.resize(kTagRecordSize, '\0');

    cGlobals globals;
    test::FakeShell shell;
    test::FakeRandom random;
    test::FakeTimer timer;
    test::FakePluginChannel channel;
    channel.lengthUnit = (mode & 2) ? 1 : 0;
    cPlugin plugin(globals, channel, shell, nullptr);
    auto core = std::make_shared<cCore>(globals, shell, random,
                                        std::make_shared<test::FakeLyricSource>(), nullptr);
    core->setPlugin(&plugin);
    core->setTimer(&timer);
    if (mode & 4) plugin.setCore(core);
    plugin.Wakeup();

    int64_t result = 0;
    const bool taken = plugin.updateTag(block);
    if (taken != (block.size() == kTagRecordSize)) __builtin_trap();
    const cMusic& music = *plugin.Music();
    if (music.Title().find(u'\0') != std::u16string::npos ||
        music.FileAddress().find(u'\0') != std::u16string::npos)
        __builtin_trap();
    plugin.ProcessMessage(kWmCopyData, 0, 0, block, result);
    plugin.ProcessMessage(kWmUser, 0, static_cast<int8_t>(notice), {}, result);
    timer.tick();

    plugin.setCore(nullptr);
    core->setTimer(nullptr);
    return 0;
}
