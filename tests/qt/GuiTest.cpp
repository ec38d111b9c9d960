// Whole runs of the program on a virtual display and a private session bus
// (tests/qt/with-desktop.sh), with a real mpv speaking MPRIS: it finds the
// lyric beside the track, shows it, and the highlight follows a seek back, a
// pause and a change of track; no player, a player that quits and another
// that appears, a player that sends garbage; the editor times the playing
// track with the arrow keys and saves the lyric beside it. And the bridge
// alone against a scripted player: when it takes the answers of its readings.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileDialog>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <filesystem>
#include <memory>

#include "cEditorWindow.h"
#include "cMprisBridge.h"
#include "cQtProgram.h"
#include "cSettingsDialog.h"
#include "core/cMainLogic.h"
#include "core/cPlugin.h"
#include "display/cDisplay.h"
#include "fakes/TempDir.h"
#include "lyric/cLyric.h"
#include "lyric/cLyricLine.h"
#include "posix/Sox.h"

namespace toval::test {
namespace {

namespace fs = std::filesystem;

bool WaitFor(const std::function<bool()>& done, int ms) {
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > ms) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

void Pump(int ms) {
    WaitFor([] { return false; }, ms);
}

// Saves a picture of a window under build/ for a look.
void Grab(QWidget* widget, const char* name) {
    const QString folder = QStringLiteral(TOVAL_BUILD_DIR "/qt-screenshots");
    QDir().mkpath(folder);
    if (widget) widget->grab().save(folder + "/" + name + ".png");
}

// Acts on the modal dialog or the pop-up menu that the next call opens.
void OnModal(std::function<void(QWidget*)> act) {
    QTimer::singleShot(400, [act] {
        QWidget* w = QApplication::activePopupWidget();
        act(w ? w : QApplication::activeModalWidget());
    });
}

bool Have(const char* program) {
    return !QStandardPaths::findExecutable(QString::fromLatin1(program)).isEmpty();
}

class Mpv {
  public:
    explicit Mpv(const QStringList& files) {
        QStringList args{"--ao=null", "--vo=null", "--idle=no", "--really-quiet"};
        if (!QFile::exists("/etc/mpv/scripts/mpris.so"))
            for (const char* so :
                 {"/usr/lib/mpv-mpris/mpris.so", "/usr/lib/x86_64-linux-gnu/mpv/mpris.so"})
                if (QFile::exists(so)) args << QStringLiteral("--script=") + so;
        process_.start("mpv", args + files);
        process_.waitForStarted(5000);
    }
    ~Mpv() {
        process_.terminate();
        if (!process_.waitForFinished(5000)) process_.kill();
        process_.waitForFinished(2000);
    }
    // An MPRIS method of the player interface.
    void Call(const QString& method, const QVariantList& args = {}) {
        QDBusMessage m =
            QDBusMessage::createMethodCall("org.mpris.MediaPlayer2.mpv", "/org/mpris/MediaPlayer2",
                                           "org.mpris.MediaPlayer2.Player", method);
        m.setArguments(args);
        QDBusConnection::sessionBus().call(m, QDBus::Block, 2000);
    }

  private:
    QProcess process_;
};

// A player of the test's own on the bus, as org.mpris.MediaPlayer2.<name>:
// it answers every call with what answer makes of it.
class FakePlayer final : public QDBusVirtualObject {
  public:
    using Answer = std::function<QVariant(const QDBusMessage&)>;
    FakePlayer(const QString& name, Answer answer)
        : name_(name),
          answer_(std::move(answer)),
          bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)) {
        bus_.registerVirtualObject("/org/mpris/MediaPlayer2", this);
        bus_.registerService("org.mpris.MediaPlayer2." + name);
    }
    ~FakePlayer() override {
        bus_.unregisterService("org.mpris.MediaPlayer2." + name_);
        bus_.unregisterObject("/org/mpris/MediaPlayer2");
        QDBusConnection::disconnectFromBus(name_);
    }
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        connection.send(message.createReply(answer_(message)));
        return true;
    }
    void Signal(const QString& interface, const QString& member, const QVariantList& args) {
        QDBusMessage signal =
            QDBusMessage::createSignal("/org/mpris/MediaPlayer2", interface, member);
        signal.setArguments(args);
        bus_.send(signal);
    }

  private:
    QString name_;
    Answer answer_;
    QDBusConnection bus_;
};

// The answer to a reading of a quick player wakes nothing: the next tick takes
// it, and it moves the clock only by an unannounced jump; an answer that was
// on its way when the player announced a seek never undoes the seek.
TEST(MprisBridge, AnswersWaitForTheNextTickAndNeverUndoASeek) {
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        GTEST_SKIP() << "needs a session bus (with-desktop.sh)";
    // A playing player; its position moves a microsecond with every answer.
    std::atomic<int64_t> positionUs{5'000'000};
    FakePlayer player("scripted", [&](const QDBusMessage& message) -> QVariant {
        if (message.member() != "GetAll")
            return QVariant::fromValue(QDBusVariant(qlonglong{positionUs.fetch_add(1)}));
        const QVariantMap metadata{{"xesam:title", "Scripted"},
                                   {"mpris:length", qlonglong{60'000'000}}};
        return QVariantMap{{"PlaybackStatus", "Playing"}, {"Rate", 1.0}, {"Metadata", metadata}};
    });
    cMprisBridge bridge(QDBusConnection::sessionBus(), "scripted");
    int64_t now = 1000;
    bridge.nowMs = [&] { return now; };
    int wakes = 0;
    bridge.onPositionChanged = [&] { ++wakes; };
    const auto position = [&] { return bridge.SendCommand(kBridgeWindow, kCmdPosition, 0); };
    ASSERT_TRUE(WaitFor(
        [&] { return !bridge.Followed().isEmpty() && !bridge.Position().Hunting(); }, 3000));
    Pump(100);
    EXPECT_NEAR(position(), 5000, 1);

    // When the player answered is not known: an answer a little ahead of the
    // clock leaves it, a jump moves it.
    const int before = wakes;
    for (const auto& [us, shown] : {std::pair{6'040'000, 6000}, {30'000'000, 30'000}}) {
        positionUs = us;
        now += kPositionReadMs;
        bridge.Until(100'000);
        Pump(200);
        EXPECT_EQ(wakes, before);
        EXPECT_NEAR(position(), shown, 1);
    }
    ASSERT_TRUE(WaitFor([&] { return !bridge.Position().Hunting(); }, 2000));

    now += kPositionReadMs;
    bridge.Until(100'000);
    Pump(200);
    positionUs = 2'000'000;
    player.Signal("org.mpris.MediaPlayer2.Player", "Seeked", {qlonglong{2'000'000}});
    ASSERT_TRUE(WaitFor([&] { return bridge.Position().At(now) < 3000; }, 2000));
    EXPECT_NEAR(position(), 2000, 1);

    // Nor does a reading that comes by itself, without a tick.
    ASSERT_TRUE(WaitFor([&] { return !bridge.Position().Hunting(); }, 2000));
    positionUs = 40'000'000;
    const int settled = wakes;
    Pump(kPositionReadLateMs + 300);
    EXPECT_EQ(wakes, settled);
    EXPECT_NEAR(position(), 40'000, 1);
}

class GuiTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!Have("mpv") || !Have("sox") || qEnvironmentVariableIsEmpty("DISPLAY") ||
            qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
            GTEST_SKIP() << "needs mpv, sox, a display and a session bus (with-desktop.sh)";
        // The program's own settings, cache, log and lock, fresh for every test.
        for (const char* v :
             {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME", "XDG_RUNTIME_DIR"}) {
            const fs::path folder = home_.path() / v;
            fs::create_directories(folder);
            fs::permissions(folder, fs::perms::owner_all);
            qputenv(v, QByteArray::fromStdString(folder.string()));
        }
        // Two tagged 20 s tracks, each with a lyric beside it.
        ASSERT_TRUE(MakeAudio(home_.path() / "a.flac",
                              {"Artist=Toval Samples", "Title=Harbour Lanterns"}, 20));
        fs::copy_file(fs::path(TOVAL_SOURCE_DIR) / "samples/harbour.tvl", home_.path() / "a.tvl");
        ASSERT_TRUE(
            MakeAudio(home_.path() / "b.flac", {"Artist=Toval Samples", "Title=Second Song"}, 20));
        home_.Write("b.tvl",
                    "[PROPERTY]\r\nMUTATION:7\r\nTRACKLENGTH:20000\r\nRIGHTTOLEFT:0\r\n[\\PROPERTY]"
                    "[500]<500>Second <900>song <1300>opens\r\n[3000]<3000>and <3400>goes "
                    "<3800>on\r\n");
    }
    // The program, with these lines in its config.ini.
    void Start(const std::string& config) {
        fs::create_directories(home_.path() / "XDG_CONFIG_HOME/Toval");
        home_.Write("XDG_CONFIG_HOME/Toval/config.ini", "[toval]\r\n" + config);
        program_ = std::make_unique<cQtProgram>(cQtProgram::Options{});
        ASSERT_TRUE(program_->Start());
    }

    QString Track(const char* name) const {
        return QString::fromStdString((home_.path() / name).string());
    }
    cDisplay* Display() { return program_->Logic().Display(); }
    // The first line of the shown lyric; empty when none is shown.
    std::u16string FirstLine() {
        const auto lyric = Display() ? Display()->Lyric() : nullptr;
        const auto line = lyric ? lyric->GetLine(0) : nullptr;
        return line ? line->Text() : std::u16string();
    }
    // The player's tags have arrived (they come a moment after the track).
    bool Tagged() {
        const auto plugin = program_->Logic().Plugin();
        return plugin && plugin->Music() && plugin->Music()->IsValid();
    }
    int32_t Line() { return Display() ? Display()->CurrentLine() : kUnset; }
    int32_t Word() { return Display() ? Display()->CurrentWord() : kUnset; }

    TempDir home_;
    std::unique_ptr<cQtProgram> program_;  // ends before its folders go
};

TEST_F(GuiTest, HighlightFollowsPlayersThatComeGoAndSendGarbage) {
    ASSERT_NO_FATAL_FAILURE(Start(""));
    auto mpv = std::make_unique<Mpv>(QStringList{Track("a.flac"), Track("b.flac")});
    ASSERT_TRUE(WaitFor([&] { return FirstLine() == u"Lanterns on the harbour wall"; }, 10000));
    // Line 1 starts at 4.2 s, its second word at 4.8 s.
    ASSERT_TRUE(WaitFor([&] { return Line() == 1 && Word() >= 1; }, 9000))
        << Line() << " " << Word();
    Grab(&program_->Window(), "window");

    mpv->Call("Seek", {qlonglong{-3'000'000}});
    EXPECT_TRUE(WaitFor([&] { return Line() == 0; }, 2000)) << Line();

    mpv->Call("Pause");
    Pump(400);
    const int32_t at = program_->Bridge().Position().At(0);
    Pump(1500);
    EXPECT_EQ(program_->Bridge().Position().At(0), at);
    mpv->Call("Play");

    // The settings the dialog hands back reach the window at once: it grows
    // to the larger font's widest line, and takes the new alpha.
    {
        cSettingsDialog dialog(program_->Globals(), program_->LanguageFolder());
        cSettings edited = dialog.Edited();
        edited.font_Size = 14;
        edited.effect_Alpha = 128;
        program_->ApplySettings(edited, dialog.LanguageFile());
        Pump(300);
        const auto whole = Display()->Lyric()->Delta();
        EXPECT_GE(program_->Window().width(), whole->Final()->X() - whole->Initial()->X());
        EXPECT_NEAR(program_->Window().windowOpacity(), 128 / 255.0, 0.01);
    }

    mpv->Call("Next");
    EXPECT_TRUE(WaitFor([&] { return FirstLine() == u"Second song opens"; }, 8000));

    // The player is gone: the lyric goes, the program stays.
    mpv.reset();
    EXPECT_TRUE(WaitFor(
        [&] { return FirstLine().empty() && program_->Bridge().Followed().isEmpty(); }, 5000));

    {
        // It answers every question with garbage. (What the bridge makes of
        // each wrong field is its own unit test's.)
        FakePlayer garbage("garbage", [](const QDBusMessage& message) -> QVariant {
            if (message.member() != "GetAll") return QStringLiteral("soon");
            const QVariantMap metadata{{"xesam:title", 12},
                                       {"xesam:artist", QString(200000, QChar(0x05D0))}};
            return QVariantMap{
                {"PlaybackStatus", "Playing"}, {"Rate", "fast"}, {"Metadata", metadata}};
        });
        ASSERT_TRUE(WaitFor(
            [&] { return program_->Bridge().Followed() == "org.mpris.MediaPlayer2.garbage"; },
            5000));
        // Signals of the wrong shape.
        garbage.Signal("org.freedesktop.DBus.Properties", "PropertiesChanged", {5, "x"});
        garbage.Signal("org.mpris.MediaPlayer2.Player", "Seeked", {"later"});
        Pump(1500);
        EXPECT_NE(FirstLine(), u"Second song opens");  // nothing left of the player gone
    }
    EXPECT_TRUE(WaitFor([&] { return program_->Bridge().Followed().isEmpty(); }, 5000));

    Mpv second({Track("a.flac")});
    EXPECT_TRUE(WaitFor([&] { return FirstLine() == u"Lanterns on the harbour wall"; }, 10000))
        << QString::fromStdU16String(FirstLine()).toStdString();
}

// In Hebrew, its windows mirrored.
TEST_F(GuiTest, EditorRefusedWithoutAPlayerTimesThePlayingTrackAndSavesTheLyricBesideIt) {
    ASSERT_NO_FATAL_FAILURE(Start("language_name=heil\r\n"));
    // No player: the editor is refused with a mirrored message.
    Qt::LayoutDirection direction = Qt::LeftToRight;
    OnModal([&](QWidget* box) {
        if (!box) return;
        direction = box->layoutDirection();
        Grab(box, "hebrew-message");
        box->close();
    });
    program_->OpenEditor();
    EXPECT_EQ(program_->Editor(), nullptr);
    EXPECT_EQ(direction, Qt::RightToLeft);
    program_->Window().onMenu(QPoint(600, 300));
    Pump(200);
    QWidget* menu = QApplication::activePopupWidget();
    ASSERT_NE(menu, nullptr);
    Grab(menu, "hebrew-menu");
    EXPECT_EQ(menu->layoutDirection(), Qt::RightToLeft);
    menu->close();

    Mpv mpv({Track("a.flac")});
    ASSERT_TRUE(WaitFor([&] { return Tagged() && !FirstLine().empty(); }, 10000));
    program_->OpenEditor();
    cEditorWindow* window = program_->Editor();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->layoutDirection(), Qt::RightToLeft);
    cEditor& editor = window->Editor();
    const auto click = [&](const char* name) { window->findChild<QPushButton*>(name)->click(); };
    window->findChild<QPlainTextEdit*>("txtEdit")->setPlainText("Lamps on the quay\nand the tide");
    Pump(200);
    Grab(window, "editor-text");

    // Step 2 opens with the timing help.
    OnModal([](QWidget* help) {
        Grab(help, "editor-help");
        if (help) help->close();
    });
    click("cmdNext");
    ASSERT_EQ(editor.Step(), 2);
    const int32_t start = program_->Bridge().Position().At(program_->Bridge().Now());
    // Line 0, its four words, line 1, its three words; one press every 150 ms.
    for (const Qt::Key key :
         {Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Down,
          Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Left}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&window->Picture(), &press);
        Pump(150);
    }
    const int32_t end = program_->Bridge().Position().At(program_->Bridge().Now());
    Grab(window, "editor-timing");

    click("cmdNext");
    Pump(1000);
    Grab(window, "editor-preview");

    fs::remove(home_.path() / "a.tvl");
    OnModal([&](QWidget* dialog) {
        auto* files = qobject_cast<QFileDialog*>(dialog);
        if (files) static_cast<QDialog*>(files)->accept();  // offers the track's own lyric file
    });
    click("cmdSave");
    // The saved lyric replaces the shown one; its times follow one another
    // within the span that was played while they were stamped.
    EXPECT_TRUE(WaitFor([&] { return FirstLine() == u"Lamps on the quay"; }, 5000));
    QFile file(Track("a.tvl"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    std::vector<int32_t> times;  // every [line] and <word> time, in the file's order
    const QRegularExpression stamp(QStringLiteral(R"([\[<](\d+)[\]>])"));
    for (const auto& match : stamp.globalMatch(QString::fromUtf8(file.readAll())))
        times.push_back(match.captured(1).toInt());
    ASSERT_EQ(times.size(), 9u);
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
    EXPECT_GE(times.front(), start);
    EXPECT_LE(times.back(), end);
    window->close();
    EXPECT_TRUE(WaitFor([&] { return program_->Editor() == nullptr; }, 2000));
}

}  // namespace
}  // namespace toval::test

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
