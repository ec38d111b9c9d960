// The settings file config.ini (section "toval" in the per-user application
// data folder): every key with its default and conversion, moved between the
// file and the shared settings record. Load also loads the language.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "config/cIni.h"
#include "config/cSettings.h"
#include "config/mLanguage.h"
#include "platform/IniFile.h"
#include "platform/Shell.h"

namespace toval {

class cConfig {
  public:
    cConfig(cGlobals& globals, Shell& shell, IniFile& ini);

    // Reads language_name and loads the language; unless languageOnly, then
    // reads every other key into the settings record. A value that does not
    // convert leaves its field as it was.
    void Load(bool languageOnly);

    // Writes the window group (positions, sizes, mode; the main window calls
    // this while closing) or the settings group (everything the settings
    // dialog edits), never both.
    void Save(bool windowGroup);

    // The settings group as the settings dialog edits it: the key names in
    // the order Save writes them (language_name among them), each with the
    // text of its value in the settings record.
    static std::vector<std::u16string> SettingsGroup();
    std::u16string SettingText(std::u16string_view name) const;
    // Puts a text into the record as Load would read it from the file: a text
    // that does not convert leaves the value as it was. language_name also
    // chooses the language file. False for a key outside the settings group.
    bool setSettingText(std::u16string_view name, const std::u16string& text);

    // Read from and written to the file on every access.
    bool editModeSplash();
    void setEditModeSplash(bool value);
    int32_t lastUpdateVersion();
    void setLastUpdateVersion(int32_t value);

    // The file in use and the language module loaded with it.
    const std::u16string& File() const { return ini_.File(); }
    mLanguage& Language() { return language_; }

  private:
    void LoadLanguage();

    cGlobals& globals_;
    Shell& shell_;
    cIni ini_;
    mLanguage language_;
};

}  // namespace toval
