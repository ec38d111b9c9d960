#include "config/cConfig.h"

#include <variant>

#include "base/cErrorLog.h"
#include "base/mFile.h"
#include "base/mNumber.h"
#include "base/mPath.h"

namespace toval {
namespace {

// A settings field of one of the types the file holds. A bool is a flag
// ("1" is true), the integers convert with range checks (colours are 32-bit).
using Field = std::variant<std::u16string cSettings::*, bool cSettings::*, int32_t cSettings::*,
                           int16_t cSettings::*, uint8_t cSettings::*>;

// Keys whose default centres a window on the screen: (screen - size) / 2.
enum class Centre { kNone, kWidth, kHeight };

struct Key {
    const char16_t* name;
    Field field;
    const char16_t* def;
    Centre centre = Centre::kNone;
    int32_t size = 0;
};

// Every key that Load reads, in the order it reads them, up to the mode and
// the version shown; the rest follow in Load.
const Key kKeys[] = {
    {u"conn_Server", &cSettings::conn_Server, kDefaultServer},
    {u"proxy_Host", &cSettings::proxy_Host, u""},
    {u"proxy_Port", &cSettings::proxy_Port, u"80"},
    {u"proxy_Enabled", &cSettings::proxy_Enabled, u"0"},
    {u"font_Bold", &cSettings::font_Bold, u"1"},
    {u"font_UnderlineTitle", &cSettings::font_UnderlineTitle, u"1"},
    {u"font_Italic", &cSettings::font_Italic, u"0"},
    {u"font_Name", &cSettings::font_Name, u"Arial"},
    {u"font_Size", &cSettings::font_Size, u"8"},
    {u"font_Strikethru", &cSettings::font_Strikethru, u"0"},
    {u"font_Underline", &cSettings::font_Underline, u"0"},
    {u"text_alignment", &cSettings::text_alignment, u"3"},
    {u"color_Backround", &cSettings::color_Backround, u"14376228"},
    {u"color_BackText", &cSettings::color_BackText, u"15570707"},
    {u"color_NormalText", &cSettings::color_NormalText, u"16239148"},
    {u"color_HighlighText", &cSettings::color_HighlighText, u"16643024"},
    {u"tray_Border", &cSettings::tray_Border, u"12"},
    {u"tray_Refresh", &cSettings::tray_Refresh, u"200"},
    {u"tray_FastRefresh", &cSettings::tray_FastRefresh, u"15"},
    {u"tray_MaxTraySize", &cSettings::tray_MaxTraySize, u"160"},
    {u"effect_Alpha", &cSettings::effect_Alpha, u"220"},
    {u"effect_AlwaysOnTop", &cSettings::effect_AlwaysOnTop, u"1"},
    {u"timer_PictureRefresh", &cSettings::timer_PictureRefresh, u"25"},
    {u"timer_TrackPosRefresh", &cSettings::timer_TrackPosRefresh, u"20"},
    {u"timer_PlayerStateRefresh", &cSettings::timer_PlayerStateRefresh, u"5000"},
    {u"pos_WinTop", &cSettings::pos_WinTop, nullptr, Centre::kHeight, 1600},
    {u"pos_WinLeft", &cSettings::pos_WinLeft, nullptr, Centre::kWidth, 4800},
    {u"size_WinWidth", &cSettings::size_WinWidth, u"4800"},
    {u"size_WinHeight", &cSettings::size_WinHeight, u"1600"},
    {u"pos_EditWinTop", &cSettings::pos_EditWinTop, nullptr, Centre::kHeight, 6855},
    {u"pos_EditWinLeft", &cSettings::pos_EditWinLeft, nullptr, Centre::kWidth, 8535},
    {u"size_EditWinWidth", &cSettings::size_EditWinWidth, u"8535"},
    {u"size_EditWinHeight", &cSettings::size_EditWinHeight, u"6855"},
    {u"edt_AutoImplode", &cSettings::edt_AutoImplode, u"0"},
    {u"ply_Attach", &cSettings::ply_Attach, u"1"},
    {u"plugin_AutoStart", &cSettings::plugin_AutoStart, u"1"},
    {u"window_mode", &cSettings::window_mode, u"2"},
    {u"version_LastShow", &cSettings::version_LastShow, u"0"},
};

const Key kEditModeSplash{u"editmode_splash", &cSettings::editmode_splash, u"1"};
const Key kCacheKeys[] = {
    {u"cache_size", &cSettings::cache_size, u"1024"},
    {u"cache_simple", &cSettings::cache_simple, u"1"},
};

// The two groups that Save writes, in their order. language_name is written
// between the settings keys and the cache keys by its own rule.
const char16_t* const kWindowGroup[] = {
    u"pos_WinTop",      u"pos_WinLeft",     u"size_WinWidth",      u"size_WinHeight",
    u"pos_EditWinTop",  u"pos_EditWinLeft", u"size_EditWinWidth",  u"size_EditWinHeight",
    u"edt_AutoImplode", u"window_mode",     u"effect_AlwaysOnTop", u"ply_Attach",
};
const char16_t* const kSettingsGroup[] = {
    u"conn_Server",
    u"proxy_Host",
    u"proxy_Port",
    u"proxy_Enabled",
    u"font_Bold",
    u"font_UnderlineTitle",
    u"font_Italic",
    u"font_Name",
    u"font_Size",
    u"font_Strikethru",
    u"font_Underline",
    u"text_alignment",
    u"color_Backround",
    u"color_BackText",
    u"color_NormalText",
    u"color_HighlighText",
    u"tray_Border",
    u"tray_Refresh",
    u"tray_FastRefresh",
    u"tray_MaxTraySize",
    u"effect_Alpha",
    u"timer_PictureRefresh",
    u"timer_TrackPosRefresh",
    u"timer_PlayerStateRefresh",
};
const char16_t* const kSettingsGroupTail[] = {u"cache_size", u"cache_simple", u"plugin_AutoStart"};

const Key* FindKey(std::u16string_view name) {
    for (const Key& key : kKeys) {
        if (name == key.name) return &key;
    }
    for (const Key& key : kCacheKeys) {
        if (name == key.name) return &key;
    }
    return nullptr;
}

// Half of a number as the text of a floating value: 7 gives "3.5", -1 "-0.5".
std::u16string HalfText(int64_t value) {
    const int64_t whole = value / 2;
    if (value % 2 == 0) return DecimalText(whole);
    return (value < 0 && whole == 0 ? u"-" : u"") + DecimalText(whole) + u".5";
}

// Converts the stored text into the field; a text that does not convert
// leaves the field as it was.
void Assign(cSettings& settings, const Field& field, const std::u16string& text) {
    std::visit(
        [&](auto member) {
            using T = std::remove_reference_t<decltype(settings.*member)>;
            if constexpr (std::is_same_v<T, std::u16string>) {
                settings.*member = text;
            } else if constexpr (std::is_same_v<T, bool>) {
                settings.*member = text == u"1";
            } else if constexpr (std::is_same_v<T, int32_t>) {
                TextToInt32(text, settings.*member);
            } else if constexpr (std::is_same_v<T, int16_t>) {
                TextToInt16(text, settings.*member);
            } else {
                TextToByte(text, settings.*member);
            }
        },
        field);
}

std::u16string Text(const cSettings& settings, const Field& field) {
    return std::visit(
        [&](auto member) -> std::u16string {
            using T = std::remove_cvref_t<decltype(settings.*member)>;
            if constexpr (std::is_same_v<T, std::u16string>) {
                return settings.*member;
            } else if constexpr (std::is_same_v<T, bool>) {
                return settings.*member ? u"1" : u"0";
            } else {
                return DecimalText(settings.*member);
            }
        },
        field);
}

}  // namespace

cConfig::cConfig(cGlobals& globals, Shell& shell, IniFile& ini)
    : globals_(globals), shell_(shell), ini_(ini), language_(ini, globals) {
    Guarded("cConfig.Class_Initialize", [&] {
        const std::u16string program =
            globals_.ProgramFolder.empty() ? shell_.ProgramFolder() : globals_.ProgramFolder;
        ini_.setFile(getSpecialFolder(shell_, kFolderAppData, program) + u"config.ini");
        ini_.setSection(u"toval");
    });
}

void cConfig::LoadLanguage() {
    language_.ReadDirection();
}

void cConfig::Load(bool languageOnly) {
    Guarded("cConfig.Load", [&] {
        cSettings& settings = globals_.Settings;
        settings.language_name = ini_.ReadIni(u"language_name", u"enus");
        const std::u16string program =
            globals_.ProgramFolder.empty() ? shell_.ProgramFolder() : globals_.ProgramFolder;
        globals_.LanguageFile = AddPathSeparator(program) + settings.language_name + u".ini";
        LoadLanguage();
        if (languageOnly) return;

        for (const Key& key : kKeys) {
            std::u16string def;
            if (key.centre == Centre::kNone) {
                def = key.def;
            } else {
                const int64_t screen = key.centre == Centre::kWidth ? shell_.ScreenWidthTwips()
                                                                    : shell_.ScreenHeightTwips();
                def = HalfText(screen - key.size);
            }
            Assign(settings, key.field, ini_.ReadIni(key.name, def));
        }
        if (settings.window_mode != 1 && settings.window_mode != 2) settings.window_mode = 2;
        Assign(settings, kEditModeSplash.field,
               ini_.ReadIni(kEditModeSplash.name, kEditModeSplash.def));

        // A proxy that cannot be used is switched off in the record only; the
        // file keeps its value until the next Save.
        if (settings.proxy_Enabled && (settings.proxy_Host.empty() || settings.proxy_Port < 1 ||
                                       settings.proxy_Port > 65535)) {
            settings.proxy_Enabled = false;
        }

        for (const Key& key : kCacheKeys)
            Assign(settings, key.field, ini_.ReadIni(key.name, key.def));
    });
}

void cConfig::Save(bool windowGroup) {
    Guarded("cConfig.Save", [&] {
        const cSettings& settings = globals_.Settings;
        auto write = [&](const char16_t* name) {
            if (const Key* key = FindKey(name)) ini_.WriteIni(name, Text(settings, key->field));
        };
        if (windowGroup) {
            for (const char16_t* name : kWindowGroup) {
                if (std::u16string_view(name) == u"window_mode" && settings.window_mode != 1 &&
                    settings.window_mode != 2) {
                    continue;
                }
                write(name);
            }
            return;
        }
        for (const char16_t* name : kSettingsGroup)
            write(name);

        // The language is saved as the base name of the language file in use,
        // and only when that path has a folder and an extension.
        const std::u16string& path = globals_.LanguageFile;
        const size_t separator = path.rfind(kPathSeparator);
        const size_t dot = path.rfind(u'.');
        if (separator != std::u16string::npos && dot != std::u16string::npos && dot > separator) {
            const std::u16string name = path.substr(separator + 1, dot - separator - 1);
            ini_.WriteIni(u"language_name", name);
            globals_.Settings.language_name = name;
            LoadLanguage();
        }

        for (const char16_t* name : kSettingsGroupTail)
            write(name);
    });
}

std::vector<std::u16string> cConfig::SettingsGroup() {
    std::vector<std::u16string> names(std::begin(kSettingsGroup), std::end(kSettingsGroup));
    names.emplace_back(u"language_name");
    names.insert(names.end(), std::begin(kSettingsGroupTail), std::end(kSettingsGroupTail));
    return names;
}

namespace {
bool InSettingsGroup(std::u16string_view name) {
    for (const std::u16string& key : cConfig::SettingsGroup())
        if (key == name) return true;
    return false;
}
}  // namespace

std::u16string cConfig::SettingText(std::u16string_view name) const {
    return Guarded("cConfig.SettingText", std::u16string(), [&] {
        if (name == u"language_name") return globals_.Settings.language_name;
        const Key* key = InSettingsGroup(name) ? FindKey(name) : nullptr;
        return key ? Text(globals_.Settings, key->field) : std::u16string();
    });
}

bool cConfig::setSettingText(std::u16string_view name, const std::u16string& text) {
    return Guarded("cConfig.setSettingText", false, [&] {
        if (!InSettingsGroup(name)) return false;
        if (name == u"language_name") {
            // Save takes the language's name from the file in use.
            const std::u16string program =
                globals_.ProgramFolder.empty() ? shell_.ProgramFolder() : globals_.ProgramFolder;
            globals_.Settings.language_name = text;
            globals_.LanguageFile = AddPathSeparator(program) + text + u".ini";
            LoadLanguage();
            return true;
        }
        const Key* key = FindKey(name);
        if (!key) return false;
        Assign(globals_.Settings, key->field, text);
        return true;
    });
}

bool cConfig::editModeSplash() {
    return Guarded("cConfig.editModeSplash [Get]", false,
                   [&] { return ini_.ReadIni(u"editmode_splash", u"1") == u"1"; });
}

void cConfig::setEditModeSplash(bool value) {
    Guarded("cConfig.editModeSplash [Let]", [&] {
        ini_.WriteIni(u"editmode_splash", value ? u"1" : u"0");
        globals_.Settings.editmode_splash = value;
    });
}

int32_t cConfig::lastUpdateVersion() {
    return Guarded("cConfig.lastUpdateVersion [Get]", int32_t{0}, [&] {
        int32_t version = 0;
        if (!TextToInt32(ini_.ReadIni(u"version_LastShow", u"0"), version)) {
            ErrorTrail({"cConfig.lastUpdateVersion [Get]", "version_LastShow is not a number"});
        }
        return version;
    });
}

void cConfig::setLastUpdateVersion(int32_t value) {
    Guarded("cConfig.lastUpdateVersion [Let]", [&] {
        ini_.WriteIni(u"version_LastShow", DecimalText(value));
        globals_.Settings.version_LastShow = value;
    });
}

}  // namespace toval
