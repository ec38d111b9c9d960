#include "config/cIni.h"

#include "base/cErrorLog.h"
#include "base/mCodePage.h"

namespace toval {

cIni::cIni(IniFile& ini) : ini_(ini) {}

std::u16string cIni::ReadIni(const std::u16string& key, const std::u16string& def) {
    return Guarded("cIni.ReadIni", std::u16string(), [&] {
        return ansiTOwstring(ini_.ReadString(file_, wstringTOansi(section_), wstringTOansi(key),
                                             wstringTOansi(def), kBufferSize));
    });
}

void cIni::WriteIni(const std::u16string& key, const std::u16string& value) {
    Guarded("cIni.WriteIni", [&] {
        ini_.WriteString(file_, wstringTOansi(section_), wstringTOansi(key), wstringTOansi(value));
    });
}

}  // namespace toval
