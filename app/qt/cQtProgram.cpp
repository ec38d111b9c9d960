#include "cQtProgram.h"

#include <QApplication>
#include <QDBusConnection>
#include <QIcon>
#include <QMessageBox>
#include <QPainter>
#include <QPixmap>
#include <QTimer>
#include <chrono>

#include "base/cErrorLog.h"
#include "base/mString.h"
#include "cEditorWindow.h"
#include "cQtSocket.h"
#include "cSettingsDialog.h"
#include "config/cConfig.h"
#include "core/cCore.h"
#include "core/cEventStream.h"
#include "core/cLyricFile.h"
#include "core/cMainLogic.h"
#include "core/cPlugin.h"
#include "display/cDisplay.h"

namespace toval {

namespace {

// The tray icon comes this long after the start.
constexpr int kTrayDelayMs = 700;

int64_t MonotonicMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// The tray icon, drawn: no image file to find at run time.
QIcon ProgramIcon() {
    QIcon icon = QIcon::fromTheme(QStringLiteral("toval"));
    if (!icon.isNull()) return icon;
    QPixmap pixmap(64, 64);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setBrush(QColor(0x24, 0x5d, 0xdb));
    p.setPen(Qt::NoPen);
    p.drawRoundedRect(QRectF(2, 2, 60, 60), 12, 12);
    QFont font;
    font.setBold(true);
    font.setPixelSize(44);
    p.setFont(font);
    p.setPen(Qt::white);
    p.drawText(QRect(0, 0, 64, 64), Qt::AlignCenter, QStringLiteral("T"));
    return QIcon(pixmap);
}

}  // namespace

cQtProgram::cQtProgram(Options options)
    : options_(std::move(options)),
      languageFolder_(cQtShell::DefaultDataFolder()),
      shell_(languageFolder_),
      bridge_(QDBusConnection::sessionBus(), options_.player),
      window_(globals_, picture_) {
    destroy_.setInterval(10);
    if (!options_.tracePath.isEmpty())
        trace_ = std::fopen(options_.tracePath.toLocal8Bit().constData(), "w");
    cMainLogic::Parts parts{shell_, bridge_, ini_, clock_, poll_, destroy_, picture_, picture_};
    parts.logFolder = cQtShell::StateFolder();
    // The bridge knows where the player will be: the core sleeps until the next highlight.
    parts.forecast = [this](int32_t positionMs) { return bridge_.Until(positionMs); };
    logic_ = std::make_unique<cMainLogic>(
        globals_, parts,
        [this](cConfig& config, Random& random, const std::shared_ptr<cMusic>& track) {
            auto loader = std::make_shared<cLyricFile>(globals_, shell_, random, &config);
            loader->setMusic(track);
            loader->setSocket(std::make_shared<cQtSocket>());
            loader->setTime(std::make_shared<cQtTimer>());
            return loader;
        });
    logic_->onApplyLanguage = [this](mLanguage&) {
        shell_.setRightToLeft(globals_.RightToLeft);
        window_.setLayoutDirection(globals_.RightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        menu_.setLayoutDirection(window_.layoutDirection());
        picture_.setFont(globals_.Settings);
    };
    logic_->onDisplayLoaded = [this](cDisplay& display) { window_.Attach(display); };
    logic_->onUpdateMenus = [this] { UpdateMenus(); };
    logic_->onUnloadForms = [this] {
        editor_.reset();
        window_.Detach();
        window_.hide();
        tray_.hide();
    };
    logic_->onQuit = [] { QCoreApplication::quit(); };
    bridge_.onPositionChanged = [this] {
        if (const auto core = logic_->Core()) core->Wake();
    };
    window_.onMenu = [this](const QPoint& at) { menu_.popup(at); };
    if (trace_) window_.onPainted = [this] { Trace(); };
}

cQtProgram::~cQtProgram() {
    editor_.reset();
    window_.Detach();
    logic_->Teardown();
    logic_.reset();
    if (trace_) std::fclose(trace_);
}

QString cQtProgram::Caption(const char16_t* key, const QString& fallback) const {
    if (!logic_->Config()) return fallback;
    const std::u16string text = logic_->Config()->Language().GetValue(u"objects", key);
    return text.empty() ? fallback : QString::fromStdU16String(text);
}

void cQtProgram::BuildMenu() {
    menu_.clear();
    const auto add = [this](const char16_t* control, const QString& english, auto click) {
        QAction* action = menu_.addAction(
            Caption((u".fMain." + std::u16string(control) + u".caption").c_str(), english));
        connect(action, &QAction::triggered, this, click);
        return action;
    };
    modeWindow_ =
        add(u"mnuWindowMode", tr("&Window mode"), [this] { logic_->setDisplayMode(kModeWindow); });
    modeDocked_ =
        add(u"mnuTrayMode", tr("&Task-bar mode"), [this] { logic_->setDisplayMode(kModeTray); });
    modeWindow_->setCheckable(true);
    modeDocked_->setCheckable(true);
    menu_.addSeparator();
    add(u"mnuEdit", tr("Lyric &editor..."), [this] { OpenEditor(); });
    add(u"mnuSettings", tr("&Settings..."), [this] {
        cSettingsDialog dialog(globals_, languageFolder_);
        if (dialog.exec() == QDialog::Accepted)
            ApplySettings(dialog.Edited(), dialog.LanguageFile());
    });
    add(u"mnuClearCache", tr("&Clear cache"), [this] {
        if (const auto core = logic_->Core()) core->ClearCache();
    });
    add(u"mnuAbout", tr("&About Toval..."), [this] {
        QMessageBox::about(
            nullptr, tr("About Toval"),
            tr("<b>Toval %1</b><p>Shows the lyric of the playing track and "
               "highlights, word by word, what is being sung.</p>"
               "<p>Following: %2</p>")
                .arg(QStringLiteral("1.3.1"),
                     bridge_.Followed().isEmpty() ? tr("no player") : bridge_.Followed()));
    });
    menu_.addSeparator();
    add(u"mnuExit", tr("E&xit"), [this] { logic_->closeProgram(); });
}

void cQtProgram::OpenEditor() {
    const auto plugin = logic_->Plugin();
    const auto music = plugin ? plugin->Music() : nullptr;
    if (!music || !music->IsValid()) {
        shell_.ShowMessage(logic_->Text(u"InvalidMusicTAG"), logic_->Text(u"AttentionTitle"),
                           kMbIconExclamation);
        return;
    }
    if (editor_) {
        editor_->raise();
        editor_->activateWindow();
        return;
    }
    cConfig* config = logic_->Config();
    Random* random = logic_->RandomSource();
    if (!config || !random) return;
    editor_ = std::make_unique<cEditorWindow>(cEditorWindow::Links{
        globals_, *random, shell_,
        [config](std::u16string_view key) { return config->Language().GetValue(u"objects", key); },
        [this](std::u16string_view key) { return logic_->Text(key); },
        // The bridge knows where the player is between the core's polls.
        [this] { globals_.PlayPosition = bridge_.Position().At(bridge_.Now()); }});
    cEditor& editor = editor_->Editor();
    editor.setConfig(config);
    // A saved lyric beside the track is shown at once.
    editor.onSaved = [this](const std::u16string&) {
        if (const auto core = logic_->Core()) core->Reset();
    };
    editor.onClosed = [this] {
        // Dropped once its own close event has returned.
        QTimer::singleShot(0, this, [this] { editor_.reset(); });
    };
    editor.Form_Load(*music);
    editor_->show();
}

void cQtProgram::ApplySettings(const cSettings& settings, const std::u16string& languageFile) {
    cConfig* config = logic_->Config();
    if (!config) return;
    globals_.Settings = settings;
    globals_.LanguageFile = languageFile;
    config->Save(false);  // also loads the language chosen
    config->Language().ReadDirection();
    if (logic_->onApplyLanguage) logic_->onApplyLanguage(config->Language());
    BuildMenu();
    UpdateMenus();
    if (cDisplay* display = logic_->Display()) display->Load();
    window_.ApplySettings();
    // Another service may know the track's lyric.
    if (const auto core = logic_->Core()) core->Reset();
}

void cQtProgram::UpdateMenus() {
    const int32_t mode = logic_->Display() ? logic_->Display()->Window() : kModeDetached;
    if (modeWindow_) modeWindow_->setChecked(mode == kModeWindow);
    if (modeDocked_) modeDocked_->setChecked(mode == kModeTray);
}

bool cQtProgram::Start() {
    if (trace_) std::fprintf(trace_, "%lld start\n", static_cast<long long>(MonotonicMs()));
    if (!logic_->Form_Load(u"")) return false;
    BuildMenu();
    UpdateMenus();
    // The tray icon waits until the first lyric has had its turn: it asks
    // the desktop over D-Bus and draws an icon, which the lyric does not need.
    QTimer::singleShot(kTrayDelayMs, this, [this] { ShowTray(); });
    return true;
}

void cQtProgram::ShowTray() {
    tray_.setIcon(ProgramIcon());
    tray_.setToolTip(QStringLiteral("Toval"));
    tray_.setContextMenu(&menu_);
    connect(&tray_, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason why) {
                if (why != QSystemTrayIcon::Trigger || !logic_->Display()) return;
                // A click on the icon shows the lyric window again.
                logic_->setDisplayMode(kModeWindow);
                window_.raise();
            });
    if (QSystemTrayIcon::isSystemTrayAvailable()) tray_.show();
}

void cQtProgram::Trace() {
    const cDisplay* display = logic_->Display();
    const auto core = logic_->Core();
    if (!display || !core) return;
    const int32_t line = display->CurrentLine(), word = display->CurrentWord();
    if (line == tracedLine_ && word == tracedWord_) return;
    tracedLine_ = line;
    tracedWord_ = word;
    const auto stream = core->Stream();
    const int64_t now = MonotonicMs();
    // The highlight reached the screen now: where the player really is, and the event's time.
    std::fprintf(trace_, "%lld highlight line=%d word=%d position=%d event=%d\n",
                 static_cast<long long>(now), line, word, bridge_.Position().At(now),
                 stream ? stream->CurrentTime() : -1);
    std::fflush(trace_);
}

}  // namespace toval
