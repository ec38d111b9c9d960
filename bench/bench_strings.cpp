// Text conversions on 1 MB: the built-in UTF-8 decoder and encoder beside
// glibc's iconv doing the same work, plus the HTML clean-up and form encoding.
#include <benchmark/benchmark.h>
#include <iconv.h>

#include <string>

#include "base/cStrings.h"

namespace {

constexpr size_t kSize = 1 << 20;

// Lyric-like text: mostly ASCII lines with accented letters and some CJK.
std::u16string MixedText() {
    const std::u16string line =
        u"[00:12.34]Je t'aime \u00E0 la folie, ma ch\u00E9rie \u2014 \u65E5\u672C\u8A9E\r\n";
    std::u16string text;
    while (text.size() * 1.2 < kSize)
        text += line;
    return text;
}

std::u16string AsciiText() {
    const std::u16string line = u"[00:12.34]<00:12.34>Hello <00:12.80>world, <00:13.10>again\r\n";
    std::u16string text;
    while (text.size() < kSize)
        text += line;
    return text;
}

// glibc's conversion of `in` into `out` (sized generously beforehand).
size_t Iconv(iconv_t cd, const std::string& in, std::string& out) {
    char* source = const_cast<char*>(in.data());
    size_t left = in.size();
    char* target = out.data();
    size_t room = out.size();
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
    iconv(cd, &source, &left, &target, &room);
    return out.size() - room;
}

void Decode(benchmark::State& state, const std::u16string& text) {
    const toval::cStrings strings;
    const std::string bytes = strings.wstringTOutf8(text);
    for (auto _ : state)
        benchmark::DoNotOptimize(strings.utf8TOwstring(bytes));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes.size()));
}

void DecodeIconv(benchmark::State& state, const std::u16string& text) {
    const std::string bytes = toval::cStrings().wstringTOutf8(text);
    iconv_t cd = iconv_open("UTF-16LE", "UTF-8");
    std::string out(bytes.size() * 2, '\0');
    for (auto _ : state)
        benchmark::DoNotOptimize(Iconv(cd, bytes, out));
    iconv_close(cd);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes.size()));
}

void Encode(benchmark::State& state, const std::u16string& text) {
    const toval::cStrings strings;
    for (auto _ : state)
        benchmark::DoNotOptimize(strings.wstringTOutf8(text));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size() * 2));
}

void EncodeIconv(benchmark::State& state, const std::u16string& text) {
    const std::string wide = toval::cStrings().wstringTOwchar(text);
    iconv_t cd = iconv_open("UTF-8", "UTF-16LE");
    std::string out(text.size() * 3, '\0');
    for (auto _ : state)
        benchmark::DoNotOptimize(Iconv(cd, wide, out));
    iconv_close(cd);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(wide.size()));
}

void BM_Utf8Decode_Mixed(benchmark::State& s) {
    Decode(s, MixedText());
}
void BM_Utf8Decode_Mixed_iconv(benchmark::State& s) {
    DecodeIconv(s, MixedText());
}
void BM_Utf8Decode_Ascii(benchmark::State& s) {
    Decode(s, AsciiText());
}
void BM_Utf8Decode_Ascii_iconv(benchmark::State& s) {
    DecodeIconv(s, AsciiText());
}
void BM_Utf8Encode_Mixed(benchmark::State& s) {
    Encode(s, MixedText());
}
void BM_Utf8Encode_Mixed_iconv(benchmark::State& s) {
    EncodeIconv(s, MixedText());
}
void BM_Utf8Encode_Ascii(benchmark::State& s) {
    Encode(s, AsciiText());
}
void BM_Utf8Encode_Ascii_iconv(benchmark::State& s) {
    EncodeIconv(s, AsciiText());
}

void BM_HtmlToText(benchmark::State& state) {
    const toval::cStrings strings;
    std::u16string html;
    while (html.size() < kSize)
        html += u"Caf&eacute; &amp; cr&egrave;me<br />&#8364; 5 &hellip; ";
    for (auto _ : state)
        benchmark::DoNotOptimize(strings.htmlTOtext(html));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(html.size() * 2));
}

void BM_FormEncode(benchmark::State& state) {
    const toval::cStrings strings;
    const std::u16string text = MixedText();
    for (auto _ : state)
        benchmark::DoNotOptimize(strings.wstringTOutf8html(text));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size() * 2));
}

BENCHMARK(BM_Utf8Decode_Mixed);
BENCHMARK(BM_Utf8Decode_Mixed_iconv);
BENCHMARK(BM_Utf8Decode_Ascii);
BENCHMARK(BM_Utf8Decode_Ascii_iconv);
BENCHMARK(BM_Utf8Encode_Mixed);
BENCHMARK(BM_Utf8Encode_Mixed_iconv);
BENCHMARK(BM_Utf8Encode_Ascii);
BENCHMARK(BM_Utf8Encode_Ascii_iconv);
BENCHMARK(BM_HtmlToText);
BENCHMARK(BM_FormEncode);

}  // namespace
