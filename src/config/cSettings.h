// The shared settings record: one field per config.ini key, named as the key
// (the odd spellings color_Backround and color_HighlighText belong to the file
// format). Loaded once at start by cConfig; the settings dialog edits it and
// calls cConfig::Save. Beside it, in cGlobals, live the other program-wide values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/mNumber.h"

namespace toval {

// The lyric service host until the user names one. ".invalid" never resolves,
// so an unconfigured program can never reach a stranger's server.
inline constexpr char16_t kDefaultServer[] = u"lyrics.invalid";

// Limits of the HTTP client (fixed, not stored in config.ini).
//
// Silence on the wire for this long, while connecting, sending or within an
// answer, ends a request as a failure; the wait between the last byte of the
// request and the first of the answer is not timed. setTime gives the timer
// this interval.
inline constexpr int32_t kInternetTimeout = 10000;
// An answer larger than this (headers included) ends the request as a failure.
inline constexpr size_t kInternetMaxAnswer = 4u * 1024u * 1024u;
// An answer still arriving this long after the request was sent ends it as a
// failure: a server trickling a byte now and then never lets the time-out run.
inline constexpr int64_t kInternetMaxAnswerTime = 60000;

struct cSettings {
    std::u16string language_name = u"enus";
    std::u16string conn_Server = kDefaultServer;
    std::u16string proxy_Host;
    int32_t proxy_Port = 80;
    bool proxy_Enabled = false;
    bool font_Bold = true;
    bool font_UnderlineTitle = true;
    bool font_Italic = false;
    std::u16string font_Name = u"Arial";
    int16_t font_Size = 8;
    bool font_Strikethru = false;
    bool font_Underline = false;
    int32_t text_alignment = 3;
    // Colour references 0x00BBGGRR, the display's colour slots 0 to 3.
    int32_t color_Backround = 14376228;
    int32_t color_BackText = 15570707;
    int32_t color_NormalText = 16239148;
    int32_t color_HighlighText = 16643024;
    int32_t tray_Border = 12;
    int32_t tray_Refresh = 200;
    int32_t tray_FastRefresh = 15;
    int16_t tray_MaxTraySize = 160;
    uint8_t effect_Alpha = 220;
    bool effect_AlwaysOnTop = true;
    int32_t timer_PictureRefresh = 25;
    int32_t timer_TrackPosRefresh = 20;
    int32_t timer_PlayerStateRefresh = 5000;
    // Window geometry in twips; the position defaults centre the windows and
    // are computed from the screen size when the settings are loaded.
    int32_t pos_WinTop = 0;
    int32_t pos_WinLeft = 0;
    int32_t size_WinWidth = 4800;
    int32_t size_WinHeight = 1600;
    int32_t pos_EditWinTop = 0;
    int32_t pos_EditWinLeft = 0;
    int32_t size_EditWinWidth = 8535;
    int32_t size_EditWinHeight = 6855;
    bool edt_AutoImplode = false;
    bool ply_Attach = true;
    bool plugin_AutoStart = true;
    int16_t window_mode = 2;
    int32_t version_LastShow = 0;
    int32_t cache_size = 1024;
    bool cache_simple = true;
    bool editmode_splash = true;

    bool operator==(const cSettings&) const = default;
};

// Every program-wide value, in one place.
struct cGlobals {
    cSettings Settings;
    // The track position in milliseconds, as last polled from the player.
    int32_t PlayPosition = 0;
    // Playlist position and track ID of the current track; kUnset when unknown.
    int32_t PlaylistPosition = kUnset;
    int32_t TrackID = kUnset;
    // The program's folder, with a trailing separator.
    std::u16string ProgramFolder;
    // The language file in use, and whether it is a right-to-left language.
    std::u16string LanguageFile;
    bool RightToLeft = false;
    // Newest version number reported by the service.
    int32_t lastUpdateVersion = 0;
};

}  // namespace toval
