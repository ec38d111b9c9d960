#include "config/cConfig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "base/mFile.h"
#include "base/mPath.h"
#include "config/cIniEngine.h"
#include "fakes/CapturedTrail.h"
#include "fakes/FakeShell.h"
#include "fakes/TempDir.h"

namespace toval::test {
namespace {

// Key names written as one text, separated by blanks.
std::vector<std::string> Names(const std::string& text) {
    std::vector<std::string> names;
    std::istringstream in(text);
    for (std::string name; in >> name;)
        names.push_back(name);
    return names;
}

// The real engine, with a record of the keys asked for and written.
struct RecordingIni : cIniEngine {
    std::vector<std::string> reads, writes;
    std::string ReadString(const std::u16string& file, const std::string& section,
                           const std::string& key, const std::string& def,
                           size_t bufferSize) override {
        reads.push_back(key);
        return cIniEngine::ReadString(file, section, key, def, bufferSize);
    }
    bool WriteString(const std::u16string& file, const std::string& section, const std::string& key,
                     const std::string& value) override {
        writes.push_back(key);
        return cIniEngine::WriteString(file, section, key, value);
    }
};

class cConfigTest : public ::testing::Test {
  protected:
    TempDir dir;
    FakeShell shell;
    RecordingIni ini;
    cGlobals globals;

    cConfigTest() {
        std::filesystem::create_directories(dir.path() / "appdata");
        std::filesystem::create_directories(dir.path() / "program");
        shell.specialFolder = dir.file(u"appdata");
        globals.ProgramFolder = dir.file(u"program") + kPathSeparator;
    }

    std::filesystem::path ConfigPath() const {
        return dir.path() / "appdata" / "Toval" / "config.ini";
    }
    void PutConfig(const std::string& lines) {
        std::filesystem::create_directories(ConfigPath().parent_path());
        std::ofstream(ConfigPath(), std::ios::binary) << "[toval]\r\n" << lines;
    }
    std::string ConfigBytes() const {
        std::ifstream in(ConfigPath(), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    void PutLanguage(const std::string& name, const std::string& content) {
        std::ofstream(dir.path() / "program" / name, std::ios::binary) << content;
    }
};

TEST_F(cConfigTest, AMissingFileLoadsEveryDefaultWithTheWindowsCentred) {
    shell.screenWidth = 1920 * 15;   // 28800 twips
    shell.screenHeight = 1081 * 15;  // 16215 twips
    globals.Settings.font_Name = u"changed";
    cConfig config(globals, shell, ini);
    EXPECT_EQ(config.File(),
              AddPathSeparator(dir.file(u"appdata")) + u"Toval" + kPathSeparator + u"config.ini");
    EXPECT_EQ(shell.folderQueries, std::vector<int32_t>{kFolderAppData});
    config.Load(false);

    cSettings expected;
    expected.pos_WinTop = 7308;        // (16215 - 1600) / 2 = 7307.5, halves to even
    expected.pos_WinLeft = 12000;      // (28800 - 4800) / 2
    expected.pos_EditWinTop = 4680;    // (16215 - 6855) / 2
    expected.pos_EditWinLeft = 10132;  // (28800 - 8535) / 2 = 10132.5, halves to even
    const cSettings& got = globals.Settings;
    EXPECT_EQ(got.language_name, expected.language_name);
    EXPECT_EQ(got.conn_Server, u"lyrics.invalid");
    EXPECT_EQ(got.font_Name, u"Arial");
    EXPECT_EQ(got.pos_WinTop, expected.pos_WinTop);
    EXPECT_EQ(got.pos_WinLeft, expected.pos_WinLeft);
    EXPECT_EQ(got.pos_EditWinTop, expected.pos_EditWinTop);
    EXPECT_EQ(got.pos_EditWinLeft, expected.pos_EditWinLeft);
    EXPECT_EQ(got.size_WinWidth, 4800);
    EXPECT_EQ(got.size_WinHeight, 1600);
    EXPECT_EQ(got.color_Backround, 14376228);
    EXPECT_EQ(got.color_HighlighText, 16643024);
    EXPECT_EQ(got.effect_Alpha, 220);
    EXPECT_EQ(got.window_mode, 2);
    EXPECT_EQ(got.cache_size, 1024);
    EXPECT_TRUE(got.cache_simple);
    EXPECT_TRUE(got.font_Bold);
    EXPECT_FALSE(got.proxy_Enabled);
    EXPECT_EQ(globals.LanguageFile, globals.ProgramFolder + u"enus.ini");
    EXPECT_FALSE(std::filesystem::exists(ConfigPath()));

    // A screen smaller than the window gives negative positions, still centred.
    shell.screenWidth = 4799;
    config.Load(false);
    EXPECT_EQ(globals.Settings.pos_WinLeft, 0);  // -0.5 rounds to 0
    shell.screenWidth = 4797;
    config.Load(false);
    EXPECT_EQ(globals.Settings.pos_WinLeft, -2);  // -1.5 rounds to -2
}

TEST_F(cConfigTest, KeysAreReadInTheirOrderWithTheCacheLast) {
    cConfig config(globals, shell, ini);
    config.Load(false);
    const std::vector<std::string> order = Names(
        "language_name conn_Server proxy_Host proxy_Port proxy_Enabled font_Bold "
        "font_UnderlineTitle font_Italic font_Name font_Size font_Strikethru font_Underline "
        "text_alignment color_Backround color_BackText color_NormalText color_HighlighText "
        "tray_Border tray_Refresh tray_FastRefresh tray_MaxTraySize effect_Alpha "
        "effect_AlwaysOnTop timer_PictureRefresh timer_TrackPosRefresh "
        "timer_PlayerStateRefresh pos_WinTop pos_WinLeft size_WinWidth size_WinHeight "
        "pos_EditWinTop pos_EditWinLeft size_EditWinWidth size_EditWinHeight edt_AutoImplode "
        "ply_Attach plugin_AutoStart window_mode version_LastShow editmode_splash cache_size "
        "cache_simple");
    // language_name, then the language's direction from the language file.
    ASSERT_GE(ini.reads.size(), 2u);
    EXPECT_EQ(ini.reads[1], "alignment");
    ini.reads.erase(ini.reads.begin() + 1);
    EXPECT_EQ(ini.reads, order);
    EXPECT_TRUE(ini.writes.empty());
}

TEST_F(cConfigTest, ValuesThatDoNotConvertLeaveTheirFieldAndLoadingGoesOn) {
    PutConfig(
        "font_Size=40000\r\n"
        "tray_MaxTraySize=-32769\r\n"
        "effect_Alpha=256\r\n"
        "tray_Border=abc\r\n"
        "tray_Refresh=12.5\r\n"
        "tray_FastRefresh=13.5\r\n"
        "text_alignment= 2 \r\n"
        "timer_PictureRefresh=1e2\r\n"
        "timer_TrackPosRefresh=0x10\r\n"
        "timer_PlayerStateRefresh=2147483648\r\n"
        "font_Bold=true\r\n"
        "font_UnderlineTitle=-1\r\n"
        "font_Italic=1\r\n"
        "font_Strikethru=\"1\"\r\n"
        "font_Underline= 1\r\n"
        "font_Name=\"Courier New\"\r\n"
        "color_NormalText=255\r\n"
        "cache_size=\r\n");
    globals.Settings.font_Size = 12;
    globals.Settings.tray_MaxTraySize = 99;
    globals.Settings.effect_Alpha = 7;
    globals.Settings.tray_Border = 3;
    globals.Settings.timer_TrackPosRefresh = 33;
    globals.Settings.timer_PlayerStateRefresh = 44;
    globals.Settings.cache_size = 55;
    cConfig config(globals, shell, ini);
    config.Load(false);
    const cSettings& s = globals.Settings;
    EXPECT_EQ(s.font_Size, 12);
    EXPECT_EQ(s.tray_MaxTraySize, 99);
    EXPECT_EQ(s.effect_Alpha, 7);
    EXPECT_EQ(s.tray_Border, 3);
    EXPECT_EQ(s.tray_Refresh, 12);
    EXPECT_EQ(s.tray_FastRefresh, 14);
    EXPECT_EQ(s.text_alignment, 2);
    EXPECT_EQ(s.timer_PictureRefresh, 100);
    EXPECT_EQ(s.timer_TrackPosRefresh, 33);
    EXPECT_EQ(s.timer_PlayerStateRefresh, 44);
    EXPECT_FALSE(s.font_Bold);
    EXPECT_FALSE(s.font_UnderlineTitle);
    EXPECT_TRUE(s.font_Italic);
    EXPECT_TRUE(s.font_Strikethru);
    EXPECT_TRUE(s.font_Underline);
    EXPECT_EQ(s.font_Name, u"Courier New");
    EXPECT_EQ(s.color_NormalText, 255);
    EXPECT_EQ(s.cache_size, 55);
    EXPECT_TRUE(s.cache_simple);
}

TEST_F(cConfigTest, WindowModeOtherThanOneOrTwoLoadsAndSavesAsTwo) {
    struct Case {
        const char* stored;
        int16_t loaded;
    };
    // A text that does not convert keeps the mode the record held (1 here).
    const Case cases[] = {{"3", 2}, {"0", 2}, {"-1", 2}, {"1", 1}, {"x", 1}, {"70000", 1}};
    for (const Case& c : cases) {
        PutConfig(std::string("window_mode=") + c.stored + "\r\n");
        globals.Settings.window_mode = 1;
        cConfig config(globals, shell, ini);
        config.Load(false);
        EXPECT_EQ(globals.Settings.window_mode, c.loaded) << c.stored;
        config.Save(true);
        EXPECT_NE(ConfigBytes().find("window_mode=" + std::to_string(c.loaded) + "\r\n"),
                  std::string::npos)
            << c.stored;
    }
    // A mode that is neither 1 nor 2 in the record is not written at all.
    cConfig config(globals, shell, ini);
    globals.Settings.window_mode = 0;
    ini.writes.clear();
    config.Save(true);
    EXPECT_EQ(std::count(ini.writes.begin(), ini.writes.end(), "window_mode"), 0);
    EXPECT_EQ(ini.writes.size(), 11u);
}

TEST_F(cConfigTest, AnUnusableProxyIsSwitchedOffInTheRecordOnly) {
    struct Case {
        const char* lines;
        bool enabled;
    };
    const Case cases[] = {
        {"proxy_Enabled=1\r\nproxy_Host=proxy\r\nproxy_Port=8080\r\n", true},
        {"proxy_Enabled=1\r\nproxy_Host=proxy\r\nproxy_Port=1\r\n", true},
        {"proxy_Enabled=1\r\nproxy_Host=proxy\r\nproxy_Port=65535\r\n", true},
        {"proxy_Enabled=1\r\nproxy_Host=proxy\r\n", true},
        {"proxy_Enabled=1\r\nproxy_Host=proxy\r\nproxy_Port=0\r\n", false},
        {"proxy_Enabled=1\r\nproxy_Host=proxy\r\nproxy_Port=65536\r\n", false},
        {"proxy_Enabled=1\r\nproxy_Host=proxy\r\nproxy_Port=-80\r\n", false},
        {"proxy_Enabled=1\r\nproxy_Host=\r\nproxy_Port=8080\r\n", false},
        {"proxy_Enabled=1\r\nproxy_Port=8080\r\n", false},
        {"proxy_Enabled=0\r\nproxy_Host=proxy\r\nproxy_Port=8080\r\n", false},
    };
    for (const Case& c : cases) {
        PutConfig(c.lines);
        globals.Settings = cSettings{};
        cConfig config(globals, shell, ini);
        config.Load(false);
        EXPECT_EQ(globals.Settings.proxy_Enabled, c.enabled) << c.lines;
        EXPECT_EQ(ConfigBytes(), std::string("[toval]\r\n") + c.lines);
    }
}

TEST_F(cConfigTest, LanguageOnlyLoadTouchesTheLanguageAlone) {
    PutConfig("language_name=heil\r\nfont_Name=Tahoma\r\ncache_size=5\r\n");
    PutLanguage("heil.ini", "[info]\r\nalignment=1\r\n");
    cConfig config(globals, shell, ini);
    config.Load(true);
    EXPECT_EQ(ini.reads, (std::vector<std::string>{"language_name", "alignment"}));
    EXPECT_EQ(globals.Settings.language_name, u"heil");
    EXPECT_EQ(globals.LanguageFile, globals.ProgramFolder + u"heil.ini");
    EXPECT_TRUE(globals.RightToLeft);
    EXPECT_EQ(globals.Settings.font_Name, u"Arial");
    EXPECT_EQ(globals.Settings.cache_size, 1024);
}

TEST_F(cConfigTest, SaveWritesOneGroupInItsOrder) {
    cConfig config(globals, shell, ini);
    config.Load(false);
    config.Save(true);
    EXPECT_EQ(ini.writes, Names("pos_WinTop pos_WinLeft size_WinWidth size_WinHeight "
                                "pos_EditWinTop pos_EditWinLeft size_EditWinWidth "
                                "size_EditWinHeight edt_AutoImplode window_mode "
                                "effect_AlwaysOnTop ply_Attach"));
    ini.writes.clear();
    ini.reads.clear();
    config.Save(false);
    EXPECT_EQ(ini.writes, Names("conn_Server proxy_Host proxy_Port proxy_Enabled font_Bold "
                                "font_UnderlineTitle font_Italic font_Name font_Size "
                                "font_Strikethru font_Underline text_alignment color_Backround "
                                "color_BackText color_NormalText color_HighlighText tray_Border "
                                "tray_Refresh tray_FastRefresh tray_MaxTraySize effect_Alpha "
                                "timer_PictureRefresh timer_TrackPosRefresh "
                                "timer_PlayerStateRefresh language_name cache_size cache_simple "
                                "plugin_AutoStart"));
    // Writing the language name loads the language again.
    EXPECT_EQ(ini.reads, std::vector<std::string>{"alignment"});
}

TEST_F(cConfigTest, EverySettingSurvivesSaveAndLoad) {
    cConfig config(globals, shell, ini);
    config.Load(false);
    cSettings& s = globals.Settings;
    // A value other than the default in every field, in the record's order.
    s = {u"x",
         u"lyrics.example",
         u"proxy.lan",
         3128,
         true,
         false,
         false,
         true,
         u"Caf\u00e9 \u2603",
         -32768,
         true,
         true,
         1,
         1,
         2,
         3,
         -1,
         4,
         5,
         6,
         32767,
         255,
         false,
         7,
         8,
         INT32_MIN,
         -10,
         11,
         12,
         13,
         14,
         15,
         16,
         INT32_MAX,
         true,
         false,
         false,
         1};
    s.cache_size = 17;
    s.cache_simple = false;
    PutLanguage("heil.ini", "[info]\r\nalignment=1\r\n");
    globals.LanguageFile = globals.ProgramFolder + u"heil.ini";
    config.Save(false);
    config.Save(true);
    const std::string saved = ConfigBytes();

    // A fresh record loaded from the file saves the very same file: a key that
    // did not load would be written back with its default.
    cGlobals fresh;
    fresh.ProgramFolder = globals.ProgramFolder;
    cConfig again(fresh, shell, ini);
    again.Load(false);
    EXPECT_TRUE(fresh.RightToLeft);
    EXPECT_EQ(fresh.Settings.language_name, u"heil");
    // Characters outside the 8-bit code page do not survive the file.
    EXPECT_EQ(fresh.Settings.font_Name, u"Caf\u00e9 ?");
    EXPECT_EQ(fresh.Settings.timer_PlayerStateRefresh, INT32_MIN);
    std::filesystem::remove(ConfigPath());
    fresh.LanguageFile = globals.LanguageFile;
    again.Save(false);
    again.Save(true);
    EXPECT_EQ(ConfigBytes(), saved);
    EXPECT_NE(saved.find("color_HighlighText=-1\r\n"), std::string::npos);
    EXPECT_NE(saved.find("cache_simple=0\r\n"), std::string::npos);
}

TEST_F(cConfigTest, TheLanguageNameIsSavedOnlyFromAPathWithFolderAndExtension) {
    const std::u16string sep(1, kPathSeparator);
    struct Case {
        std::u16string path;
        std::u16string written;  // empty: language_name is not written
    };
    const Case cases[] = {
        {sep + u"lang" + sep + u"dede.ini", u"dede"},
        {sep + u"lang.d" + sep + u"frfr.x.ini", u"frfr.x"},
        {sep + u"lang.d" + sep + u"noext", u""},
        {u"plain.ini", u""},
        {u"", u""},
    };
    for (const Case& c : cases) {
        std::filesystem::remove(ConfigPath());
        ini.writes.clear();
        cConfig config(globals, shell, ini);
        globals.LanguageFile = c.path;
        config.Save(false);
        const bool written =
            std::find(ini.writes.begin(), ini.writes.end(), "language_name") != ini.writes.end();
        EXPECT_EQ(written, !c.written.empty());
        if (written) {
            EXPECT_EQ(config.Language().GetValue(u"info", u"name"), u"");
            cIniEngine plain;
            EXPECT_EQ(plain.ReadString(config.File(), "toval", "language_name", "-", 1024),
                      std::string(c.written.begin(), c.written.end()));
        }
    }
}

TEST_F(cConfigTest, SplashFlagAndShownVersionGoToTheFileOnEveryAccess) {
    cConfig config(globals, shell, ini);
    EXPECT_TRUE(config.editModeSplash());
    EXPECT_EQ(config.lastUpdateVersion(), 0);

    PutConfig("editmode_splash=0\r\nversion_LastShow=131\r\n");
    EXPECT_FALSE(config.editModeSplash());
    EXPECT_EQ(config.lastUpdateVersion(), 131);

    config.setEditModeSplash(true);
    config.setLastUpdateVersion(140);
    const std::string bytes = ConfigBytes();
    EXPECT_NE(bytes.find("editmode_splash=1\r\n"), std::string::npos);
    EXPECT_NE(bytes.find("version_LastShow=140\r\n"), std::string::npos);
    // A version that is no number reads as 0 and leaves a trail line.
    test::CapturedTrail trail;
    PutConfig("editmode_splash=yes\r\nversion_LastShow=junk\r\n");
    EXPECT_FALSE(config.editModeSplash());
    EXPECT_EQ(config.lastUpdateVersion(), 0);
    ASSERT_EQ(trail.lines.size(), 1u);
    EXPECT_EQ(trail.lines[0][0], "cConfig.lastUpdateVersion [Get]");
}

TEST_F(cConfigTest, WithoutASpecialFolderTheProgramFolderHoldsTheFile) {
    shell.specialFolder.clear();
    cConfig config(globals, shell, ini);
    EXPECT_EQ(config.File(), globals.ProgramFolder + u"config.ini");
    globals.Settings.font_Name = u"Verdana";
    config.Save(false);
    EXPECT_TRUE(std::filesystem::exists(dir.path() / "program" / "config.ini"));
}

TEST_F(cConfigTest, TheSettingsDialogEditsTheSettingsGroupByName) {
    PutLanguage("heil.ini", "[info]\r\nalignment=1\r\n");
    cConfig config(globals, shell, ini);
    config.Load(false);
    const auto names = cConfig::SettingsGroup();
    EXPECT_EQ(names.front(), u"conn_Server");
    EXPECT_EQ(names.back(), u"plugin_AutoStart");
    EXPECT_EQ(config.SettingText(u"font_Size"), u"8");
    EXPECT_EQ(config.SettingText(u"language_name"), u"enus");

    const std::pair<const char16_t*, const char16_t*> edits[] = {
        {u"font_Size", u"14"},        {u"font_Bold", u"0"},      {u"font_Name", u"Tahoma"},
        {u"color_Backround", u"255"}, {u"effect_Alpha", u"300"},  // does not convert: stays
        {u"tray_Refresh", u"soon"},                               // does not convert: stays
        {u"language_name", u"heil"},  {u"cache_simple", u"0"},
    };
    for (const auto& [name, text] : edits)
        EXPECT_TRUE(config.setSettingText(name, text)) << std::string(name, name + 4);
    // Keys outside the group are not the dialog's to change.
    EXPECT_FALSE(config.setSettingText(u"window_mode", u"1"));
    EXPECT_FALSE(config.setSettingText(u"nonsense", u"1"));
    EXPECT_EQ(config.SettingText(u"window_mode"), u"");
    EXPECT_TRUE(globals.RightToLeft);
    config.Save(false);

    cGlobals fresh;
    fresh.ProgramFolder = globals.ProgramFolder;
    cConfig reread(fresh, shell, ini);
    reread.Load(false);
    EXPECT_EQ(fresh.Settings.font_Size, 14);
    EXPECT_FALSE(fresh.Settings.font_Bold);
    EXPECT_EQ(fresh.Settings.font_Name, u"Tahoma");
    EXPECT_EQ(fresh.Settings.color_Backround, 255);
    EXPECT_EQ(fresh.Settings.effect_Alpha, 220);
    EXPECT_EQ(fresh.Settings.tray_Refresh, 200);
    EXPECT_EQ(fresh.Settings.language_name, u"heil");
    EXPECT_FALSE(fresh.Settings.cache_simple);
    EXPECT_EQ(fresh.Settings.window_mode, 2);
}

}  // namespace
}  // namespace toval::test
