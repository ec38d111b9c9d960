// The controller wired as the program wires it, on fakes: the plug-in link
// over a scripted channel, the display on a recording surface, a manual timer
// and a lyric lookup that answers when told. Shared by
// the tests, the benchmark and the fuzz target.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/FakeLyricSource.h"
#include "core/cCore.h"
#include "core/cPlugin.h"
#include "display/cDisplay.h"
#include "fakes/FakeDrawSurface.h"
#include "fakes/FakeMeasureSurface.h"
#include "fakes/FakePluginChannel.h"
#include "fakes/FakeRandom.h"
#include "fakes/FakeShell.h"
#include "fakes/FakeTimer.h"

namespace toval::test {

using Texts = std::vector<std::string>;

// A display that also records what the controller asks of it, as short texts
// ("Clear", "Lyric", "Music", "ReajustWindow", "Choose line word").
class RecordingDisplay : public cDisplay {
  public:
    using cDisplay::cDisplay;
    void Clear() override { log.push_back("Clear"), cDisplay::Clear(); }
    void ReajustWindow() override { log.push_back("ReajustWindow"), cDisplay::ReajustWindow(); }
    void setLyric(std::shared_ptr<cLyric> l) override {
        log.push_back("Lyric"), cDisplay::setLyric(std::move(l));
    }
    void setMusic(std::shared_ptr<cMusic> m) override {
        log.push_back("Music"), cDisplay::setMusic(std::move(m));
    }
    void ChooseText(int32_t line, int32_t word) override {
        log.push_back("Choose " + std::to_string(line) + " " + std::to_string(word));
        cDisplay::ChooseText(line, word);
    }
    Texts Take() { return std::exchange(log, {}); }
    Texts log;
};

struct ControllerRig {
    cGlobals globals;
    FakeShell shell;
    FakeRandom random{{0.5}};
    FakeTimer timer;
    FakePluginChannel channel;
    FakeDrawSurface surface;
    FakeMeasureSurface measure;
    std::shared_ptr<FakeLyricSource> fake = std::make_shared<FakeLyricSource>();
    // Language texts are their keys.
    cPlugin plugin{globals, channel, shell,
                   [](std::u16string_view k) { return std::u16string(k); }};
    RecordingDisplay display{globals, surface, shell};
    std::shared_ptr<cCore> core;
    int closes = 0;

    ControllerRig() {
        display.Load();
        core = std::make_shared<cCore>(globals, shell, random, fake,
                                       [](std::u16string_view k) { return std::u16string(k); });
        core->setTray(&display);
        core->setAuxPictureBox(&measure);
        core->setPlugin(&plugin);
        core->setTimer(&timer);
        plugin.setPluginHwnd(0x99);
        plugin.onCloseProgram = [this] { ++closes; };
        channel.onMessage = [this](uint32_t m, int64_t w, int64_t l, std::string_view d,
                                   int64_t& r) { return plugin.ProcessMessage(m, w, l, d, r); };
        display.onLinkOpened = [this](const std::u16string& url) { core->LinkOpened(url); };
        plugin.setCore(core);
    }
    ~ControllerRig() {
        plugin.setCore(nullptr);
        core->setTimer(nullptr);
    }
    ControllerRig(const ControllerRig&) = delete;
    ControllerRig& operator=(const ControllerRig&) = delete;

    // Wakes the plug-in up and plays a track at playlist position pos whose
    // lyric the scripted lookup answers.
    void Playing(int32_t pos, std::u16string lyric) {
        timer.tick();  // wake-up
        channel.playlistPosition = pos;
        core->PluginEvent(kEventNewTrack);
        timer.tick();  // lookup
        fake->text = std::move(lyric);
        fake->Answer(pos, kLyricLocal);
    }
    // The controller's state in one text: the timer, then what holds.
    std::string State() const {
        std::string s = (timer.enabled ? "on " : "off ") + std::to_string(timer.interval);
        const std::pair<bool, const char*> flags[] = {{core->PluginAlive(), " alive"},
                                                      {core->Waking(), " waking"},
                                                      {core->LoadPending(), " pending"},
                                                      {core->LyricActive(), " lyric"},
                                                      {core->Stream() != nullptr, " stream"}};
        for (const auto& [on, name] : flags)
            if (on) s += name;
        if (globals.PlaylistPosition != kUnset)
            s += " at " + std::to_string(globals.PlaylistPosition);
        if (globals.TrackID != kUnset) s += " track " + std::to_string(globals.TrackID);
        return s;
    }
    // One polling tick at position ms.
    void Tick(int32_t ms) {
        channel.position = ms;
        timer.tick();
    }
};

}  // namespace toval::test
