// The Linux program: builds the adapters, the MPRIS bridge and the core's
// start-up (cMainLogic), the display window and the tray icon with its menu,
// and forwards the user's choices to the core.
#pragma once

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <cstdio>
#include <memory>

#include "cDisplayWindow.h"
#include "cMprisBridge.h"
#include "cQtPicture.h"
#include "cQtShell.h"
#include "cQtTimer.h"
#include "config/cIniEngine.h"
#include "config/cSettings.h"
#include "platform/Clock.h"

namespace toval {

class cEditorWindow;
class cMainLogic;

class cQtProgram final : public QObject {
    Q_OBJECT

  public:
    struct Options {
        QString player;     // --player NAME: follow only this player
        QString tracePath;  // TOVAL_TRACE: log every highlight shown
    };
    explicit cQtProgram(Options options);
    ~cQtProgram() override;

    // False when the program ends at once (another instance runs).
    bool Start();

    cDisplayWindow& Window() { return window_; }
    // The lyric editor on the playing track ("InvalidMusicTAG" without a valid one).
    void OpenEditor();
    cEditorWindow* Editor() const { return editor_.get(); }
    cMprisBridge& Bridge() { return bridge_; }
    cMainLogic& Logic() { return *logic_; }
    cGlobals& Globals() { return globals_; }
    const std::u16string& LanguageFolder() const { return languageFolder_; }
    // Takes edited settings and a language file: saves them and shows them.
    void ApplySettings(const cSettings& settings, const std::u16string& languageFile);

  private:
    void BuildMenu();
    void ShowTray();
    void UpdateMenus();
    void Trace();
    QString Caption(const char16_t* key, const QString& fallback) const;

    Options options_;
    std::u16string languageFolder_;
    cGlobals globals_;
    cQtShell shell_;
    cIniEngine ini_;
    cSystemClock clock_;
    cQtTimer poll_, destroy_;
    cQtPicture picture_;
    cMprisBridge bridge_;
    cDisplayWindow window_;
    std::unique_ptr<cMainLogic> logic_;
    std::unique_ptr<cEditorWindow> editor_;
    QSystemTrayIcon tray_;
    QMenu menu_;
    QAction* modeWindow_ = nullptr;
    QAction* modeDocked_ = nullptr;
    std::FILE* trace_ = nullptr;
    int32_t tracedLine_ = -1, tracedWord_ = -1;
};

}  // namespace toval
