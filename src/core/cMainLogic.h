// The start and the end of the program, as the main window runs them: the
// single-instance test, the command line, the search for the plug-in window,
// building the running objects in their order, and the teardown, which a
// close request defers to the next tick of the destroy timer so that it never
// runs inside the handler that asked for it. The windows only call in here.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "config/cSettings.h"

namespace toval {

class Clock;
class DrawSurface;
class IniFile;
class MeasureSurface;
class PluginChannel;
class Random;
class Shell;
class StringsLibraryLoader;
class Timer;
class cConfig;
class cCore;
class cDisplay;
class cErrorLog;
class cMusic;
class cPlugin;
class iLyricSource;
class mLanguage;

// Searches for the plug-in window after an installation, 2000 ms apart.
inline constexpr int32_t kInstallAttempts = 7;
inline constexpr int32_t kSearchPauseMs = 2000;

class cMainLogic {
  public:
    // What the main window lends the program; everything must outlive this object.
    struct Parts {
        Shell& shell;
        PluginChannel& channel;
        IniFile& ini;
        Clock& clock;
        Timer& pollTimer;     // the core's polling timer
        Timer& destroyTimer;  // tmrDestroy
        DrawSurface& surface;
        MeasureSurface& measure;  // the auxiliary picture box
        // The optional string library's loader; nullptr: built-in conversions only.
        StringsLibraryLoader* strings = nullptr;
        // Where Error.log goes; empty: the program folder (the Windows way).
        std::u16string logFolder = {};
        // The player link's forecast of the play position (cCore::setForecast);
        // empty: the polling keeps its fixed pace.
        std::function<int64_t(int32_t positionMs)> forecast = {};
    };
    // Builds the lyric lookup of a new core (a cLyricFile with the window's
    // socket and timer) for the plug-in's track record.
    using LoaderFactory = std::function<std::shared_ptr<iLyricSource>(
        cConfig& config, Random& random, const std::shared_ptr<cMusic>& track)>;
    cMainLogic(cGlobals& globals, Parts parts, LoaderFactory makeLoader);
    ~cMainLogic();
    cMainLogic(const cMainLogic&) = delete;
    cMainLogic& operator=(const cMainLogic&) = delete;

    // Program start with the command line (a plug-in window handle, "INSTALL",
    // or anything else). False when the program ends at once (onQuit was raised).
    bool Form_Load(const std::u16string& commandLine);
    // Builds the running objects; path, when not empty, becomes the program folder.
    void StartProgram(const std::u16string& path);
    // Asks for the end of the program: the teardown runs on the next destroy tick.
    void closeProgram();
    void tmrDestroy_Timer();
    // The teardown (also the main window's unload); runs once.
    void Teardown();
    bool Closing() const { return closing_; }

    // Display mode from the main menu (1 task bar, 2 window).
    void setDisplayMode(int32_t mode);

    cConfig* Config() const { return config_.get(); }
    const std::shared_ptr<cCore>& Core() const { return core_; }
    const std::shared_ptr<cPlugin>& Plugin() const { return plugin_; }
    cDisplay* Display() const { return display_.get(); }
    Random* RandomSource() const { return random_.get(); }
    // The language text of a message key (empty before the configuration exists).
    std::u16string Text(std::u16string_view key) const;

    // For the windows.
    // Stop the two auxiliary sockets and disable the two auxiliary timers.
    std::function<void()> onStopAuxiliary;
    // Label the main window's controls (the language has just been loaded).
    std::function<void(mLanguage&)> onApplyLanguage;
    // The display was created: attach it to its window before it is shown.
    std::function<void(cDisplay&)> onDisplayLoaded;
    // Bring the menus up to date with the mode and the settings.
    std::function<void()> onUpdateMenus;
    // Unload every other form (editor, settings, about, display, handler).
    std::function<void()> onUnloadForms;
    // Unload the main window: the program ends.
    std::function<void()> onQuit;

  private:
    void Quit();
    // Error.log follows the program folder: (re)opened whenever it is set.
    void UseProgramFolder(const std::u16string& folder);

    cGlobals& globals_;
    Parts parts_;
    LoaderFactory makeLoader_;
    std::unique_ptr<cErrorLog> errorLog_;
    std::unique_ptr<cConfig> config_;
    std::unique_ptr<Random> random_;
    std::unique_ptr<cDisplay> display_;
    std::shared_ptr<cCore> core_;
    std::shared_ptr<cPlugin> plugin_;
    // A released link stays allocated until the end: its own handler may
    // still be on the call stack when the teardown runs inside a message pump.
    std::shared_ptr<cPlugin> releasedPlugin_;
    bool closing_ = false;
    bool hooked_ = false;
};

}  // namespace toval
