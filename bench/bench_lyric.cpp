// Reading and writing lyric texts: a 5,000-line karaoke lyric in the tvl and
// LRC forms, a 50 MB text, and single lines of up to a million characters,
// including lines made only of tag marks (the readers must stay linear).
#include <benchmark/benchmark.h>

#include <string>

#include "fakes/FakeMeasureSurface.h"
#include "lyric/cLyric.h"
#include "lyric/cLyricLine.h"

namespace {

using toval::cLyric;
using toval::cLyricLine;

std::u16string Decimal(int64_t v) {
    const std::string s = std::to_string(v);
    return std::u16string(s.begin(), s.end());
}

// lines karaoke lines of eight timed words each, in tvl form.
std::u16string KaraokeTvl(int lines) {
    std::u16string text =
        u"[PROPERTY]\r\nMUTATION:1804289383\r\nTRACKLENGTH:215000\r\nRIGHTTOLEFT:0\r\n"
        u"[\\PROPERTY]";
    int64_t t = 0;
    for (int i = 0; i < lines; ++i) {
        text += u'[';
        text += Decimal(t);
        text += u']';
        for (int w = 0; w < 8; ++w) {
            text += u'<';
            text += Decimal(t);
            text += u">word";
            text += Decimal(w);
            text += u' ';
            t += 250;
        }
        text += u"\r\n";
    }
    return text;
}

const std::u16string& Tvl5000() {
    static const std::u16string text = KaraokeTvl(5000);
    return text;
}

const std::u16string& Lrc5000() {
    static const std::u16string text = [] {
        cLyric lyric;
        lyric.setLoad(Tvl5000());
        return lyric.LRC(nullptr);
    }();
    return text;
}

void BM_LoadTvl5000(benchmark::State& state) {
    toval::test::FakeMeasureSurface surface;
    for (auto _ : state) {
        cLyric lyric;
        if (state.range(0)) lyric.setAuxPictureBox(&surface);
        lyric.setLoad(Tvl5000());
        benchmark::DoNotOptimize(lyric.GetLineSize());
    }
    state.SetBytesProcessed(state.iterations() * int64_t(Tvl5000().size() * 2));
}
BENCHMARK(BM_LoadTvl5000)->Arg(0)->Arg(1)->ArgName("layout")->Unit(benchmark::kMillisecond);

void BM_WriteTvl5000(benchmark::State& state) {
    cLyric lyric;
    lyric.setLoad(Tvl5000());
    for (auto _ : state)
        benchmark::DoNotOptimize(lyric.TVL());
    state.SetBytesProcessed(state.iterations() * int64_t(Tvl5000().size() * 2));
}
BENCHMARK(BM_WriteTvl5000)->Unit(benchmark::kMillisecond);

void BM_LoadLrc5000(benchmark::State& state) {
    for (auto _ : state) {
        cLyric lyric;
        lyric.setLoad(Lrc5000());
        benchmark::DoNotOptimize(lyric.GetLineSize());
    }
    state.SetBytesProcessed(state.iterations() * int64_t(Lrc5000().size() * 2));
}
BENCHMARK(BM_LoadLrc5000)->Unit(benchmark::kMillisecond);

void BM_WriteLrc5000(benchmark::State& state) {
    cLyric lyric;
    lyric.setLoad(Tvl5000());
    for (auto _ : state)
        benchmark::DoNotOptimize(lyric.LRC(nullptr));
}
BENCHMARK(BM_WriteLrc5000)->Unit(benchmark::kMillisecond);

// A 50 MB text (25 million 16-bit units) of karaoke lines.
void BM_Load50MB(benchmark::State& state) {
    std::u16string text = KaraokeTvl(1);
    const std::u16string block = KaraokeTvl(2000).substr(text.size());
    while (text.size() < 25'000'000)
        text += block;
    for (auto _ : state) {
        cLyric lyric;
        lyric.setLoad(text);
        benchmark::DoNotOptimize(lyric.GetLineSize());
    }
    state.SetBytesProcessed(state.iterations() * int64_t(text.size() * 2));
}
BENCHMARK(BM_Load50MB)->Unit(benchmark::kMillisecond)->Iterations(2);

// One line of n characters built by repeating a pattern; the fit over n
// shows whether the reader stays linear.
std::u16string Repeat(std::u16string_view head, std::u16string_view unit, int64_t n) {
    std::u16string s(head);
    while (static_cast<int64_t>(s.size()) < n)
        s += unit;
    s.resize(static_cast<size_t>(n));
    return s;
}

template <class... Args>
void BM_LongLine(benchmark::State& state, Args... args) {
    const auto [head, unit] = std::make_tuple(args...);
    const std::u16string line = Repeat(head, unit, state.range(0));
    for (auto _ : state) {
        cLyricLine l;
        l.setLoad(line);
        benchmark::DoNotOptimize(l.GetWordSize());
    }
    state.SetComplexityN(state.range(0));
}
#define LONG_LINE(name, head, unit)                                                            \
    BENCHMARK_CAPTURE(BM_LongLine, name, std::u16string_view(head), std::u16string_view(unit)) \
        ->RangeMultiplier(4)                                                                   \
        ->Range(1 << 14, 1 << 20)                                                              \
        ->Complexity()                                                                         \
        ->Unit(benchmark::kMillisecond)
LONG_LINE(plain_text, u"[1000]", u"la la ");
LONG_LINE(karaoke_words, u"[1000]", u"<1000>la ");
LONG_LINE(stacked_word_tags, u"[1000]<1>", u"<1000>");
LONG_LINE(stray_word_closers, u"[1000]<1>a:", u">");
LONG_LINE(stray_line_closers, u"[1000]", u"]");
LONG_LINE(open_marks, u"", u"[<");

// A whole lyric of one million-character karaoke line, laid out on a
// fixed-width surface (layout measures every word's prefix).
void BM_LyricLongLineLayout(benchmark::State& state) {
    const std::u16string line = Repeat(u"[1000]", u"<1000>la ", state.range(0));
    toval::test::FakeMeasureSurface surface;
    for (auto _ : state) {
        cLyric lyric;
        lyric.setAuxPictureBox(&surface);
        lyric.setLoad(line);
        benchmark::DoNotOptimize(lyric.TextHeight());
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_LyricLongLineLayout)
    ->RangeMultiplier(4)
    ->Range(1 << 10, 1 << 14)
    ->Complexity()
    ->Unit(benchmark::kMillisecond);

}  // namespace
