// The editor's text procedures on arbitrary text: textToLyric and wordSep,
// then the resulting lyric through folding, a run of arrow presses and range
// operations. Input: bytes taken two at a time as 16-bit characters; the first
// byte picks the separator text for wordSep.
#include <cstddef>
#include <cstdint>
#include <string>

#include "config/cSettings.h"
#include "editor/cEditor.h"
#include "fakes/FakeMeasureSurface.h"
#include "fakes/FakeRandom.h"
#include "lyric/cLyric.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace toval;
    if (size == 0) return 0;
    static cGlobals globals;
    static test::FakeRandom random({0.5});
    static test::FakeMeasureSurface measure;
    // A fresh editor per input: nothing (the undo history above all) carries
    // over, so the leak check sees every allocation freed.
    cEditor editor(globals, random);
    editor.setAuxPictureBox(&measure);

    std::u16string text;
    for (size_t i = 1; i + 1 < size; i += 2)
        text.push_back(static_cast<char16_t>(data[i] | (data[i + 1] << 8)));
    static const std::u16string seps[] = {u"<>", u"", u"|", u"<1>"};
    (void)editor.wordSep(text, seps[data[0] % 4]);

    const std::u16string records = editor.textToLyric(text);
    // Every line of the result is a line record ending in CR LF.
    if (!records.empty() && records.compare(records.size() - 2, 2, u"\r\n") != 0) __builtin_trap();

    const auto lyric = editor.Lyric();
    lyric->setLoad(records);
    lyric->setRightToLeft((data[0] & 4) != 0);
    globals.PlayPosition = 0;
    for (int press = 0; press < 16; ++press) {
        globals.PlayPosition += 100;
        editor.locateNextWord(editor.curWord());
        editor.setTime(globals.PlayPosition);
        editor.ChooseText(editor.newLine(), editor.newWord());
    }
    editor.implodeToval();
    int32_t low = 0, high = 0;
    editor.getTimerLimits(low, high);
    editor.setDelay(static_cast<int32_t>(data[0]) * -8000000, low, high);
    editor.setAdjust(3.5, INT32_MAX - 5000, INT32_MIN, INT32_MAX);
    editor.delTimes(low, kNoNext);
    editor.locateLineWord(data[0], data[size - 1]);
    (void)editor.SaveText(1 + data[0] % 3);
    return 0;
}
