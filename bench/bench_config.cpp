// Settings and language reads: the INI engine on a full config.ini, a whole
// Load from a real file, and a message from the shipped language file.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "config/cConfig.h"
#include "config/cIniEngine.h"
#include "fakes/FakeShell.h"
#include "fakes/TempDir.h"

namespace {

using namespace toval;

// The shipped language files, found from this source file's place.
std::u16string LangFolder() {
    std::u16string folder =
        (std::filesystem::path(__FILE__).parent_path().parent_path() / "lang").u16string();
    folder.push_back(static_cast<char16_t>(std::filesystem::path::preferred_separator));
    return folder;
}

// A config.ini as the program writes it: every key of both groups.
std::string FullConfig() {
    test::TempDir dir;
    test::FakeShell shell;
    shell.specialFolder = dir.folder();
    cIniEngine engine;
    cGlobals globals;
    globals.ProgramFolder = dir.folder();
    globals.LanguageFile = dir.file(u"enus.ini");
    cConfig config(globals, shell, engine);
    config.Load(false);
    config.Save(true);
    config.Save(false);
    std::ifstream in(std::filesystem::path(config.File()), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void BM_LookupLastKey(benchmark::State& state) {
    const std::string content = FullConfig();
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            cIniEngine::Lookup(content, "toval", "plugin_AutoStart", "", 1024));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * content.size()));
}
BENCHMARK(BM_LookupLastKey);

void BM_UpdateOneKey(benchmark::State& state) {
    const std::string content = FullConfig();
    for (auto _ : state) {
        benchmark::DoNotOptimize(cIniEngine::Update(content, "toval", "pos_WinTop", "1234"));
    }
}
BENCHMARK(BM_UpdateOneKey);

// The start-up read of every setting from a file on disk.
void BM_ConfigLoad(benchmark::State& state) {
    test::TempDir dir;
    test::FakeShell shell;
    shell.specialFolder = dir.folder();
    cIniEngine engine;
    cGlobals globals;
    globals.ProgramFolder = LangFolder();
    cConfig config(globals, shell, engine);
    std::ofstream(std::filesystem::path(config.File()), std::ios::binary) << FullConfig();
    for (auto _ : state)
        config.Load(false);
}
BENCHMARK(BM_ConfigLoad);

void BM_MessageText(benchmark::State& state) {
    cIniEngine engine;
    cGlobals globals;
    globals.LanguageFile = LangFolder() + u"enus.ini";
    mLanguage language(engine, globals);
    for (auto _ : state)
        benchmark::DoNotOptimize(language.MessageText(u"TovalEditHelp"));
}
BENCHMARK(BM_MessageText);

}  // namespace
