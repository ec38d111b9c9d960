// The editor's hot paths: the separator test on every character, text to
// lyric, folding a song with a repeated chorus, and one arrow press (a stamp
// with its undo step) on a long lyric.
#include <benchmark/benchmark.h>

#include <string>

#include "config/cSettings.h"
#include "editor/cEditor.h"
#include "fakes/FakeMeasureSurface.h"
#include "fakes/FakeRandom.h"
#include "lyric/cLyric.h"
#include "lyric/cLyricLine.h"
#include "lyric/cMusic.h"

namespace {

using namespace toval;

// A song: verses and a chorus of four lines sung `choruses` times.
std::u16string Song(int choruses) {
    const std::u16string verse =
        u"Walking down the empty road, I don't know where to go,\r\n"
        u"lights are fading (one by one) - and the night is slow.\r\n";
    const std::u16string chorus =
        u"Sing it loud, sing it clear,\r\nsing it for the ones who're here;\r\n"
        u"sing it low, sing it near,\r\nsing until the dawn is here!\r\n";
    std::u16string text;
    for (int i = 0; i < choruses; ++i)
        text += verse + u"\r\n" + chorus + u"\r\n";
    return text;
}

struct Editor {
    cGlobals globals;
    test::FakeRandom random{{0.5}};
    test::FakeMeasureSurface measure;
    cEditor editor{globals, random};
    Editor() { editor.setAuxPictureBox(&measure); }
};

void BM_findSepChar(benchmark::State& state) {
    Editor e;
    const std::u16string text = Song(1);
    for (auto _ : state)
        for (const char16_t c : text)
            benchmark::DoNotOptimize(e.editor.findSepChar(static_cast<int16_t>(c)));
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(BM_findSepChar);

void BM_textToLyric(benchmark::State& state) {
    Editor e;
    const std::u16string text = Song(static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(e.editor.textToLyric(text));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size() * 2));
}
BENCHMARK(BM_textToLyric)->Arg(4)->Arg(64);

void BM_implodeToval(benchmark::State& state) {
    Editor e;
    const std::u16string records = e.editor.textToLyric(Song(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        state.PauseTiming();
        e.editor.Lyric()->setLoad(records);
        state.ResumeTiming();
        e.editor.implodeToval();
    }
}
BENCHMARK(BM_implodeToval)->Arg(4)->Arg(32);

// One forward press on a lyric of `range` songs: locate, stamp (with its undo
// step and new revision) and move the highlight.
void BM_ArrowPress(benchmark::State& state) {
    Editor e;
    e.editor.Form_Load(cMusic());
    e.editor.txtEdit_Change(Song(static_cast<int>(state.range(0))));
    e.editor.cmdNext_Click();
    int32_t position = 0;
    for (auto _ : state) {
        e.globals.PlayPosition = position += 10;
        e.editor.pb_Main_KeyDown(kKeyRight, 0);
    }
    int32_t words = 0;
    for (int32_t l = 0; l < e.editor.Lyric()->GetLineSize(); ++l)
        words += e.editor.Lyric()->GetLine(l)->GetWordSize();
    state.counters["words"] = words;
    // Memory of the undo history: line copies held after all those presses.
    state.counters["undo_lines"] = static_cast<double>(e.editor.History().HeldLines());
    state.counters["undo_steps"] = static_cast<double>(e.editor.History().UndoSize());
}
BENCHMARK(BM_ArrowPress)->Arg(1)->Arg(4);

}  // namespace
