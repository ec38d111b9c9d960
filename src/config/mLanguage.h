// The language strings: captions, tool tips and messages from the language
// file named by cGlobals::LanguageFile (an INI file with the sections "info",
// "objects" and "msg"). A missing file or key gives empty texts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "config/cSettings.h"
#include "config/iLanguageTarget.h"
#include "platform/IniFile.h"

namespace toval {

class mLanguage {
  public:
    mLanguage(IniFile& ini, cGlobals& globals);

    // One value of the language file; empty when missing. Reads at most 1023
    // characters.
    std::u16string GetValue(std::u16string_view section, std::u16string_view key);

    // Sets cGlobals::RightToLeft from "info"/"alignment" (exactly "1" = right to left).
    void ReadDirection();

    // The message "msg"/key with every "\n" turned into CR LF and the first
    // "%%" replaced by each element of fill in turn.
    std::u16string MessageText(std::u16string_view key,
                               const std::vector<std::u16string>& fill = {});

    // Labels object and, recursively, its members; mirrors the controls tagged
    // "RTL"/"LTR" when the reading direction differs. Call with a form and an
    // empty prefix.
    void ApplyLanguage(iLanguageTarget& object, const std::u16string& prefix);

    // The filling step of MessageText on a given text.
    static std::u16string FillMessage(std::u16string text, const std::vector<std::u16string>& fill);

  private:
    IniFile& ini_;

    cGlobals& globals_;
};

}  // namespace toval
