// The cost of following playback: one polling tick of the controller with a
// 5,000-event lyric (nothing changes; a word changes and two words are
// repainted on a recording surface), and one hour of playback at the default
// 20 ms interval.
#include <benchmark/benchmark.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "base/mNumber.h"
#include "core/ControllerRig.h"
#include "core/cEventStream.h"
#include "lyric/cLyric.h"

namespace {

using namespace toval;

constexpr int32_t kHourMs = 3600000;
constexpr int32_t kLines = 1000;  // a line start and four words each: 5,000 events
constexpr int32_t kLineMs = kHourMs / kLines;

std::u16string HourLyric() {
    std::u16string text;
    for (int32_t i = 0; i < kLines; ++i) {
        const int32_t t = i * kLineMs + 1;
        text += u"[" + DecimalText(t) + u"]";
        for (int32_t w = 0; w < 4; ++w)
            text += u"<" + DecimalText(t + w * (kLineMs / 4)) + u">word" + DecimalText(w) + u" ";
        text += u"\r\n";
    }
    return text;
}

// A playing controller on the fakes, its lyric loaded and laid out.
struct Session : test::ControllerRig {
    Session() {
        timer.tick();  // wake-up
        core->PluginEvent(kEventNewTrack);
        fake->text = HourLyric();
        fake->answerOnLoad = kLyricFromService;
        timer.tick();  // lookup
        if (!core->LyricActive() || core->Stream()->NumEvents() != 5 * kLines)
            throw std::runtime_error("the session did not start");
    }
    void Tick(int32_t ms) {
        ControllerRig::Tick(ms);
        channel.sent.clear();
        surface.clear();
        display.log.clear();
    }
};

void BM_TickNoChange(benchmark::State& state) {
    Session s;
    s.Tick(kHourMs / 2);
    for (auto _ : state)
        s.Tick(kHourMs / 2 + 1);
}
BENCHMARK(BM_TickNoChange);

void BM_TickWordChangeWithRepaint(benchmark::State& state) {
    Session s;
    const int32_t line = kLines / 2 * kLineMs + 1;
    const int32_t a = line + kLineMs / 4 + 10, b = line + 2 * (kLineMs / 4) + 10;
    s.Tick(a);
    bool flip = false;
    for (auto _ : state) {
        s.Tick(flip ? a : b);  // back and forth between two words
        flip = !flip;
    }
}
BENCHMARK(BM_TickWordChangeWithRepaint);

void BM_HourOfPlaybackAt20ms(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto s = std::make_unique<Session>();
        state.ResumeTiming();
        for (int32_t ms = 0; ms < kHourMs; ms += 20)
            s->Tick(ms);
        state.PauseTiming();
        s.reset();
        state.ResumeTiming();
    }
    state.counters["ticks"] = kHourMs / 20;
}
BENCHMARK(BM_HourOfPlaybackAt20ms)->Unit(benchmark::kMillisecond);

void BM_StreamLoad5000(benchmark::State& state) {
    auto lyric = std::make_shared<cLyric>();
    lyric->setLoad(HourLyric());
    for (auto _ : state) {
        cEventStream stream;
        stream.Load(lyric);
        benchmark::DoNotOptimize(stream.NumEvents());
    }
}
BENCHMARK(BM_StreamLoad5000)->Unit(benchmark::kMicrosecond);

}  // namespace
