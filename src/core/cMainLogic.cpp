#include "core/cMainLogic.h"

#include "base/cErrorLog.h"
#include "base/mFile.h"
#include "base/mNumber.h"
#include "base/mString.h"
#include "config/cConfig.h"
#include "core/cCore.h"
#include "core/cPlugin.h"
#include "display/cDisplay.h"
#include "platform/Clock.h"
#include "platform/PluginChannel.h"
#include "platform/Random.h"
#include "platform/Shell.h"
#include "platform/Timer.h"

namespace toval {

namespace {

std::u16string UpperAscii(std::u16string text) {
    for (char16_t& c : text)
        if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - u'a' + u'A');
    return text;
}

std::u16string WithSeparator(std::u16string folder) {
    if (!folder.empty() && folder.back() != kPathSeparator) folder.push_back(kPathSeparator);
    return folder;
}

uint32_t SeedFrom(const cDateTime& t) {
    uint32_t seed = static_cast<uint32_t>(t.Year);
    for (int32_t part : {t.Month, t.Day, t.Hour, t.Minute, t.Second})
        seed = seed * 61u + static_cast<uint32_t>(part);
    return seed;
}

}  // namespace

cMainLogic::cMainLogic(cGlobals& globals, Parts parts, LoaderFactory makeLoader)
    : globals_(globals), parts_(parts), makeLoader_(std::move(makeLoader)) {
    parts_.destroyTimer.onTimer = [this] { tmrDestroy_Timer(); };
}

cMainLogic::~cMainLogic() {
    parts_.destroyTimer.onTimer = nullptr;
    parts_.channel.onMessage = nullptr;
    if (core_) {
        core_->setTimer(nullptr);
        core_->setTray(nullptr);
        core_->setPlugin(nullptr);
    }
    if (plugin_) plugin_->setCore(nullptr);
    if (releasedPlugin_) releasedPlugin_->setCore(nullptr);
    if (errorLog_ && ErrorTrailLog() == errorLog_.get()) setErrorTrail(nullptr);
}

void cMainLogic::UseProgramFolder(const std::u16string& folder) {
    globals_.ProgramFolder = WithSeparator(folder);
    if (globals_.ProgramFolder.empty()) return;
    const std::u16string logFolder =
        parts_.logFolder.empty() ? globals_.ProgramFolder : WithSeparator(parts_.logFolder);
    auto log = std::make_unique<cErrorLog>(logFolder, parts_.clock);
    setErrorTrail(log.get());
    errorLog_ = std::move(log);
}

std::u16string cMainLogic::Text(std::u16string_view key) const {
    return config_ ? config_->Language().MessageText(key) : std::u16string();
}

void cMainLogic::Quit() {
    if (onQuit) onQuit();
}

bool cMainLogic::Form_Load(const std::u16string& commandLine) {
    Shell& shell = parts_.shell;
    if (shell.PrevInstance()) {
        shell.DoEvents();
        Quit();
        return false;
    }
    closing_ = false;
    int32_t attempts = 1;
    bool install = false;
    UseProgramFolder(shell.ProgramFolder());
    config_ = std::make_unique<cConfig>(globals_, shell, parts_.ini);
    config_->Load(false);

    int32_t handle = 0;
    const std::u16string& command = commandLine;
    if (!command.empty()) {
        if (IsNumeric(command)) {
            if (!TextToInt32(command, handle)) handle = 0;
        } else if (UpperAscii(command) == u"INSTALL") {
            attempts = kInstallAttempts;
            install = true;
        }
    }

    while (attempts >= 1) {
        if (handle != 0) break;
        handle = parts_.channel.FindPluginWindow();
        if (handle != 0) break;
        --attempts;
        if (attempts >= 1) shell.Sleep(kSearchPauseMs);
    }

    if (handle == 0) {
        if (!install)
            shell.ShowMessage(Text(u"StartErrorNoHandle"), Text(u"AttentionTitle"),
                              kMbIconExclamation);
        config_.reset();
        Quit();
        return false;
    }

    parts_.channel.InstallHook();
    hooked_ = true;
    plugin_ = std::make_shared<cPlugin>(globals_, parts_.channel, shell,
                                        [this](std::u16string_view key) { return Text(key); });
    plugin_->setPluginHwnd(handle);
    plugin_->onCloseProgram = [this] { closeProgram(); };
    parts_.channel.onMessage = [this](uint32_t message, int64_t wParam, int64_t lParam,
                                      std::string_view data, int64_t& result) {
        if (const auto plugin = plugin_)
            return plugin->ProcessMessage(message, wParam, lParam, data, result);
        return false;
    };
    StartProgram(u"");
    return true;
}

void cMainLogic::StartProgram(const std::u16string& path) {
    Guarded("fMain.StartProgram", [&] {
        random_ = std::make_unique<cStdRandom>(SeedFrom(parts_.clock.Now()));

        if (!path.empty()) UseProgramFolder(path);
        if (onStopAuxiliary) onStopAuxiliary();
        if (globals_.ProgramFolder.empty()) UseProgramFolder(parts_.shell.ProgramFolder());

        if (!config_) config_ = std::make_unique<cConfig>(globals_, parts_.shell, parts_.ini);
        config_->Load(false);
        if (parts_.strings) tryLoadStringsDLL(*parts_.strings);
        if (onApplyLanguage) onApplyLanguage(config_->Language());

        // A second start replaces the running objects.
        if (core_) {
            core_->preClose();
            core_->setTimer(nullptr);
            core_->setTray(nullptr);
            core_->setPlugin(nullptr);
        }

        display_ = std::make_unique<cDisplay>(globals_, parts_.surface, parts_.shell);
        if (onDisplayLoaded) onDisplayLoaded(*display_);
        display_->Load();
        display_->setWindow(globals_.Settings.window_mode);

        std::shared_ptr<iLyricSource> loader;
        if (makeLoader_)
            loader = makeLoader_(*config_, *random_, plugin_ ? plugin_->Music() : nullptr);
        core_ = std::make_shared<cCore>(globals_, parts_.shell, *random_, std::move(loader),
                                        [this](std::u16string_view key) { return Text(key); });
        core_->setPlugin(plugin_.get());
        core_->setTray(display_.get());
        core_->setAuxPictureBox(&parts_.measure);
        core_->onSaveLastShow = [this](int32_t version) {
            if (config_) config_->setLastUpdateVersion(version);
        };
        display_->onLinkOpened = [this](const std::u16string& url) {
            if (core_) core_->LinkOpened(url);
        };
        core_->setForecast(parts_.forecast);
        core_->setTimer(&parts_.pollTimer);

        if (onUpdateMenus) onUpdateMenus();

        // From now on the plug-in's events reach the core.
        if (plugin_) plugin_->setCore(core_);
    });
}

void cMainLogic::closeProgram() {
    parts_.destroyTimer.setEnabled(true);
}

void cMainLogic::tmrDestroy_Timer() {
    parts_.destroyTimer.setEnabled(false);
    Teardown();
}

void cMainLogic::setDisplayMode(int32_t mode) {
    if (display_) display_->setWindow(mode);
    if (onUpdateMenus) onUpdateMenus();
}

void cMainLogic::Teardown() {
    if (closing_) return;
    closing_ = true;
    // Every step is guarded on its own: the teardown goes on whatever fails.
    Guarded("fMain.Form_Unload", [&] {
        if (hooked_) parts_.channel.RemoveHook();
        hooked_ = false;
        parts_.channel.onMessage = nullptr;
    });
    Guarded("fMain.Form_Unload", [&] {
        if (onStopAuxiliary) onStopAuxiliary();
    });
    Guarded("fMain.Form_Unload", [&] {
        if (core_) core_->preClose();
    });
    Guarded("fMain.Form_Unload", [&] {
        if (core_) core_->setPlugin(nullptr);
        if (plugin_) plugin_->setCore(nullptr);
        releasedPlugin_ = std::move(plugin_);
    });
    Guarded("fMain.Form_Unload", [&] {
        if (!display_) return;
        const int32_t mode = display_->Window();
        if (mode == kModeTray || mode == kModeWindow)
            globals_.Settings.window_mode = static_cast<int16_t>(mode);
        display_->setWindow(kModeDetached);
        display_->Clear();
    });
    Guarded("fMain.Form_Unload", [&] {
        if (onUnloadForms) onUnloadForms();
    });
    Guarded("fMain.Form_Unload", [&] {
        // The configuration itself stays until the end: the lookup refers to it.
        if (config_) config_->Save(true);
    });
    Guarded("fMain.Form_Unload", [&] { Quit(); });
}

}  // namespace toval
