#include "config/cConfig.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <tuple>

#include "base/mFile.h"
#include "base/mPath.h"
#include "config/cIniEngine.h"
#include "fakes/CapturedTrail.h"
#include "fakes/FakeShell.h"
#include "fakes/TempDir.h"

namespace toval::test {
namespace {

// A value other than the default in every field that the file keeps.
cSettings Changed() {
    // clang-format off
    return {u"x", u"lyrics.example", u"proxy.lan", 3128, true, false, false, true,
            u"Caf\u00e9 \u2603", -32768, true, true, 1, 1, 2, 3, -1, 4, 5, 6, 32767, 255, false,
            7, 8, INT32_MIN, -10, 11, 12, 13, 14, 15, 16, INT32_MAX, true, false, false, 1, 0,
            17, false};
    // clang-format on
}

class cConfigTest : public ::testing::Test {
  protected:
    TempDir dir;
    FakeShell shell;
    cIniEngine ini;
    cGlobals globals;

    cConfigTest() {
        std::filesystem::create_directories(dir.path() / "appdata");
        std::filesystem::create_directories(dir.path() / "program");
        shell.specialFolder = dir.file(u"appdata");
        globals.ProgramFolder = dir.file(u"program") + kPathSeparator;
        dir.Write("program/heil.ini", "[info]\r\nalignment=1\r\n");
    }
    std::filesystem::path ConfigPath() const {
        return dir.path() / "appdata" / "Toval" / "config.ini";
    }
    void PutConfig(const std::string& lines) {
        std::filesystem::create_directories(ConfigPath().parent_path());
        dir.Write(ConfigPath(), "[toval]\r\n" + lines);
    }
    std::string ConfigBytes() const { return dir.Read("appdata/Toval/config.ini"); }
    // The record that a fresh program loads from the file as it stands.
    cSettings Reloaded() {
        cGlobals fresh;
        fresh.ProgramFolder = globals.ProgramFolder;
        cConfig(fresh, shell, ini).Load(false);
        return fresh.Settings;
    }
};

TEST_F(cConfigTest, AMissingFileLoadsEveryDefaultWithTheWindowsCentred) {
    shell.screenHeight = 1081 * 15;  // 16215 twips; 28800 wide
    globals.Settings.font_Name = u"changed";
    cConfig(globals, shell, ini).Load(false);
    cSettings expected;
    expected.pos_WinTop = 7308;        // (16215 - 1600) / 2 = 7307.5, halves to even
    expected.pos_WinLeft = 12000;      // (28800 - 4800) / 2
    expected.pos_EditWinTop = 4680;    // (16215 - 6855) / 2
    expected.pos_EditWinLeft = 10132;  // (28800 - 8535) / 2 = 10132.5, halves to even
    EXPECT_EQ(globals.Settings, expected);
    EXPECT_EQ(globals.LanguageFile, globals.ProgramFolder + u"enus.ini");
    EXPECT_FALSE(std::filesystem::exists(ConfigPath()));
}

// One key per number type (32-, 16- and 8-bit) and a flag: a value that does not
// convert leaves its field, and the keys behind it still load. A window mode
// other than 1 or 2 loads as 2. Texts, flags "1", positions present and modes
// 1 and 2 come back in the round trip below.
TEST_F(cConfigTest, ValuesThatDoNotConvertLeaveTheirFieldAndLoadingGoesOn) {
    PutConfig(
        "font_Size=40000\r\neffect_Alpha=256\r\ntimer_PlayerStateRefresh=2147483648\r\n"
        "font_Bold=true\r\nwindow_mode=3\r\ncache_size=5\r\n");
    cSettings& s = globals.Settings;
    s.font_Size = 12;
    s.effect_Alpha = 7;
    s.timer_PlayerStateRefresh = 44;
    s.window_mode = 1;
    cConfig(globals, shell, ini).Load(false);
    EXPECT_EQ(std::tuple(s.font_Size, s.effect_Alpha, s.timer_PlayerStateRefresh, s.font_Bold,
                         s.window_mode, s.cache_size),
              std::tuple(12, 7, 44, false, 2, 5));  // "true" is not 1

    // A mode that is neither 1 nor 2 in the record is not written at all.
    std::filesystem::remove(ConfigPath());
    s.window_mode = 0;
    cConfig(globals, shell, ini).Save(true);
    EXPECT_EQ(ConfigBytes().find("window_mode"), std::string::npos);
    EXPECT_NE(ConfigBytes().find("ply_Attach"), std::string::npos);
}

TEST_F(cConfigTest, AnUnusableProxyIsSwitchedOffInTheRecordOnly) {
    const std::pair<const char*, bool> cases[] = {
        {"proxy_Enabled=1\r\nproxy_Host=proxy\r\nproxy_Port=65535\r\n", true},
        {"proxy_Enabled=1\r\nproxy_Host=proxy\r\nproxy_Port=0\r\n", false},
        {"proxy_Enabled=1\r\nproxy_Host=proxy\r\nproxy_Port=65536\r\n", false},
        {"proxy_Enabled=1\r\nproxy_Port=8080\r\n", false},
        {"proxy_Enabled=0\r\nproxy_Host=proxy\r\nproxy_Port=8080\r\n", false},
    };
    for (const auto& [lines, enabled] : cases) {
        PutConfig(lines);
        globals.Settings = cSettings{};
        cConfig(globals, shell, ini).Load(false);
        EXPECT_EQ(globals.Settings.proxy_Enabled, enabled) << lines;
        EXPECT_EQ(ConfigBytes(), std::string("[toval]\r\n") + lines);
    }
}

// A load of the language alone touches nothing else; the language name is
// saved only from a path with a folder and an extension.
TEST_F(cConfigTest, TheLanguageAloneLoadsAndIsSavedFromItsFilesPath) {
    PutConfig("language_name=heil\r\nfont_Name=Tahoma\r\ncache_size=5\r\n");
    cConfig(globals, shell, ini).Load(true);
    cSettings expected;
    expected.language_name = u"heil";
    EXPECT_EQ(globals.Settings, expected);
    EXPECT_EQ(globals.LanguageFile, globals.ProgramFolder + u"heil.ini");
    EXPECT_TRUE(globals.RightToLeft);

    const std::u16string sep(1, kPathSeparator);
    const std::pair<std::u16string, std::string> cases[] = {
        {sep + u"lang.d" + sep + u"frfr.x.ini", "frfr.x"},
        {sep + u"lang.d" + sep + u"noext", "-"},  // "-": not written
        {u"plain.ini", "-"},
    };
    for (const auto& [path, written] : cases) {
        std::filesystem::remove(ConfigPath());
        cConfig config(globals, shell, ini);
        globals.LanguageFile = path;
        config.Save(false);
        EXPECT_EQ(ini.ReadString(config.File(), "toval", "language_name", "-", 1024), written);
    }
}

TEST_F(cConfigTest, EachGroupSavesItsOwnKeysAndEverySettingSurvives) {
    cConfig config(globals, shell, ini);
    globals.Settings = Changed();
    globals.LanguageFile = globals.ProgramFolder + u"heil.ini";

    // The window group alone: positions, sizes, mode and the window flags.
    config.Save(true);
    cSettings expected;
    const cSettings changed = Changed();
    for (auto f :
         {&cSettings::pos_WinTop, &cSettings::pos_WinLeft, &cSettings::size_WinWidth,
          &cSettings::size_WinHeight, &cSettings::pos_EditWinTop, &cSettings::pos_EditWinLeft,
          &cSettings::size_EditWinWidth, &cSettings::size_EditWinHeight})
        expected.*f = changed.*f;
    for (auto f :
         {&cSettings::edt_AutoImplode, &cSettings::effect_AlwaysOnTop, &cSettings::ply_Attach})
        expected.*f = changed.*f;
    expected.window_mode = changed.window_mode;
    EXPECT_EQ(Reloaded(), expected);

    // Then the settings group: every field comes back, the language as the
    // file in use names it, and characters outside the 8-bit code page lost.
    config.Save(false);
    expected = changed;
    expected.language_name = u"heil";
    expected.font_Name = u"Caf\u00e9 ?";
    EXPECT_EQ(Reloaded(), expected);
}

TEST_F(cConfigTest, SplashFlagAndShownVersionGoToTheFileOnEveryAccess) {
    cConfig config(globals, shell, ini);
    EXPECT_TRUE(config.editModeSplash());

    PutConfig("editmode_splash=0\r\nversion_LastShow=131\r\n");
    EXPECT_FALSE(config.editModeSplash());
    EXPECT_EQ(config.lastUpdateVersion(), 131);

    config.setEditModeSplash(true);
    config.setLastUpdateVersion(140);
    EXPECT_EQ(ConfigBytes(), "[toval]\r\neditmode_splash=1\r\nversion_LastShow=140\r\n");
    // A version that is no number reads as 0 and leaves a trail line.
    CapturedTrail trail;
    PutConfig("version_LastShow=junk\r\n");
    EXPECT_EQ(config.lastUpdateVersion(), 0);
    EXPECT_TRUE(trail.Has("cConfig.lastUpdateVersion [Get]"));
}

TEST_F(cConfigTest, TheSettingsDialogEditsTheSettingsGroupByName) {
    cConfig config(globals, shell, ini);
    config.Load(false);
    // The name, the text typed, and the text after a save and a fresh load.
    const std::tuple<const char16_t*, const char16_t*, const char16_t*> edits[] = {
        {u"font_Size", u"14", u"14"},
        {u"font_Name", u"Tahoma", u"Tahoma"},
        {u"language_name", u"heil", u"heil"},
    };
    for (const auto& [name, text, back] : edits)
        EXPECT_TRUE(config.setSettingText(name, text)) << std::string(name, name + 4);
    // Keys outside the group are not the dialog's to change.
    EXPECT_FALSE(config.setSettingText(u"window_mode", u"1"));
    EXPECT_EQ(config.SettingText(u"window_mode"), u"");
    EXPECT_TRUE(globals.RightToLeft);
    // Load reads every key from the file or its default, over the record.
    config.Save(false);
    config.Load(false);
    for (const auto& [name, text, back] : edits)
        EXPECT_EQ(config.SettingText(name), back) << std::string(name, name + 4);
}

}  // namespace
}  // namespace toval::test
