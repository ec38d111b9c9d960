#include "core/cMainLogic.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "base/cErrorLog.h"
#include "config/cConfig.h"
#include "config/cIniEngine.h"
#include "core/FakeLyricSource.h"
#include "core/cCore.h"
#include "core/cPlugin.h"
#include "display/cDisplay.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeDrawSurface.h"
#include "fakes/FakeMeasureSurface.h"
#include "fakes/FakePluginChannel.h"
#include "fakes/FakeShell.h"
#include "fakes/FakeTimer.h"
#include "fakes/TempDir.h"

namespace toval::test {
namespace {

struct Program {
    TempDir dir;
    cGlobals globals;
    FakeShell shell;
    FakePluginChannel channel;
    cIniEngine ini;
    FakeClock clock;
    FakeTimer poll, destroy;
    FakeDrawSurface surface;
    FakeMeasureSurface measure;
    std::shared_ptr<FakeLyricSource> source = std::make_shared<FakeLyricSource>();
    std::unique_ptr<cMainLogic> main;
    std::vector<std::string> log;

    Program() {
        shell.programFolder = dir.folder();
        shell.specialFolder = dir.path().u16string();
        main = std::make_unique<cMainLogic>(
            globals, cMainLogic::Parts{shell, channel, ini, clock, poll, destroy, surface, measure},
            [this](cConfig&, Random&, const std::shared_ptr<cMusic>& track) {
                log.push_back(track ? "loader for the plug-in's track" : "loader without track");
                return source;
            });
        main->onStopAuxiliary = [this] { log.push_back("stop auxiliary"); };
        main->onApplyLanguage = [this](mLanguage&) { log.push_back("language"); };
        main->onDisplayLoaded = [this](cDisplay&) { log.push_back("display"); };
        main->onUpdateMenus = [this] {
            log.push_back(main->Plugin() && main->Plugin()->Core() ? "menus (core linked)"
                                                                   : "menus");
        };
        main->onUnloadForms = [this] { log.push_back("unload forms"); };
        main->onQuit = [this] { log.push_back("quit"); };
    }
};

// Without a player the program says so and quits (driven under Wine); after
// an install it looks for the player seven times, 2 s apart, then quits silently.
TEST(cMainLogic, AfterAnInstallThePluginIsSoughtSevenTimes) {
    Program p;
    EXPECT_FALSE(p.main->Form_Load(u"InStAlL"));
    EXPECT_EQ(p.channel.findCalls, 7);
    EXPECT_EQ(p.shell.sleeps, std::vector<int32_t>(6, 2000));
    EXPECT_TRUE(p.shell.boxes.empty());
    EXPECT_EQ(p.log, (std::vector<std::string>{"quit"}));
}

TEST(cMainLogic, ANumericCommandLineIsThePluginWindowAndTheProgramKeepsAnErrorLog) {
    Program p;
    p.globals.Settings.window_mode = 1;
    EXPECT_TRUE(p.main->Form_Load(u"305419896"));
    EXPECT_EQ(std::pair(p.channel.findCalls, p.channel.installs), std::pair(0, 1));
    ASSERT_TRUE(p.main->Plugin());
    EXPECT_EQ(p.main->Plugin()->PluginHwnd(), 305419896);
    // The order in which the running objects come up; the plug-in reaches the core last.
    EXPECT_EQ(p.log, (std::vector<std::string>{"stop auxiliary", "language", "display",
                                               "loader for the plug-in's track", "menus"}));
    EXPECT_EQ(p.main->Display()->Window(), 2);  // no config.ini: the default mode
    EXPECT_EQ(std::pair(p.poll.enabled, p.poll.interval), std::pair(true, 20));

    // Failures go to Error.log in the program folder while the program runs.
    ErrorTrail({"cThing.Work", "broken"});
    EXPECT_NE(p.dir.Read("Error.log").find(" - cThing.Work ; broken\r\n"), std::string::npos);
    p.main.reset();
    EXPECT_EQ(ErrorTrailLog(), nullptr) << "the program's log goes with the program";
}

TEST(cMainLogic, CloseIsDeferredAndTheTeardownRunsOnce) {
    Program p;
    ASSERT_TRUE(p.main->Form_Load(u"77"));
    p.poll.tick();
    p.main->setDisplayMode(kModeTray);
    p.log.clear();

    // The player closes: the notice only asks for the close.
    EXPECT_EQ(p.channel.Notice(3), 0);
    EXPECT_EQ(std::tuple(p.destroy.enabled, p.main->Closing(), p.main->Core()->PluginAlive()),
              std::tuple(true, false, false));
    EXPECT_TRUE(p.log.empty());

    p.destroy.tick();
    EXPECT_EQ(std::tuple(p.destroy.enabled, p.main->Closing(), p.channel.removes, p.poll.enabled,
                         p.main->Plugin() != nullptr),
              std::tuple(false, true, 1, false, false));
    EXPECT_EQ(p.main->Display()->Window(), kModeDetached);
    EXPECT_EQ(p.log, (std::vector<std::string>{"stop auxiliary", "unload forms", "quit"}));
    EXPECT_NE(p.dir.Read("Toval/config.ini").find("window_mode=1"), std::string::npos);
    // The unhooked handler takes nothing any more.
    EXPECT_EQ(p.channel.Notice(4), -1);

    p.main->closeProgram();
    p.destroy.tick();
    EXPECT_EQ(p.channel.removes, 1);
    EXPECT_EQ(p.log.size(), 3u);
}

}  // namespace
}  // namespace toval::test
