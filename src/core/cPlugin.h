// The link to the player plug-in: the commands the program sends (wake-up,
// position, playlist position, alive, closing), the dispatcher of the plug-in's
// notices and the reader of its 3596-byte track tag, which fills the track
// record. Events for the controller go to Core; while there is none, the
// plug-in's notices are swallowed.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "config/cSettings.h"

namespace toval {

class PluginChannel;
class Shell;
class cCore;
class cMusic;

// Commands (lParam of WM_USER to the plug-in).
enum PluginCommand : int32_t {
    kCmdRegister = 1,      // wParam: the handler window; answer 1
    kCmdPosition = 2,      // answer: track position in ms
    kCmdPlaylistPos = 3,   // answer: playlist position
    kCmdAlive = 4,         // answer 1 while working
    kCmdClosing = 5,       // the program closes
    kCmdPlayerWindow = 6,  // answer: the player's window
    kCmdLengthUnit = 7,    // answer: 1 = ms, 0 = s
};

// Layout of the track tag record (byte offsets and widths).
inline constexpr size_t kTagRecordSize = 3596;
inline constexpr size_t kTagPathOffset = 0, kTagPathSize = 520;
inline constexpr size_t kTagArtistOffset = 520, kTagArtistSize = 1024;
inline constexpr size_t kTagAlbumOffset = 1544, kTagAlbumSize = 1024;
inline constexpr size_t kTagTitleOffset = 2568, kTagTitleSize = 1024;
inline constexpr size_t kTagLengthOffset = 3592;

class cPlugin {
  public:
    // texts: the language text of a message key.
    cPlugin(cGlobals& globals, PluginChannel& channel, Shell& shell,
            std::function<std::u16string(std::u16string_view key)> texts);
    ~cPlugin();
    cPlugin(const cPlugin&) = delete;
    cPlugin& operator=(const cPlugin&) = delete;

    int32_t PluginHwnd() const { return pluginHwnd_; }
    void setPluginHwnd(int32_t window) { pluginHwnd_ = window; }
    int32_t PlayerHwnd() const { return playerHwnd_; }
    bool MiliTrackLength() const { return lengthUnit_ == 1; }
    const std::shared_ptr<cMusic>& Music() const { return music_; }
    const std::shared_ptr<cCore>& Core() const { return core_; }
    void setCore(std::shared_ptr<cCore> core) { core_ = std::move(core); }

    // Registers the handler window; on success learns the player's window and
    // the length unit and raises core event 16.
    void Wakeup();
    // Polls the track position; a zero position from a dead plug-in closes
    // the program.
    // Polls the play position, stores it program-wide and returns it.
    int32_t Update();
    int32_t PlaylistPosisition();
    bool Alive();
    // The program closes: core event 8, the plug-in is told, fMain closes.
    void closeProgram();

    // The handler window's dispatcher. data is a WM_COPYDATA block.
    bool ProcessMessage(uint32_t message, int64_t wParam, int64_t lParam, std::string_view data,
                        int64_t& result);
    // Reads a track tag record into Music; false (nothing changed) unless the
    // record is exactly 3596 bytes.
    bool updateTag(std::string_view record);

    // Removes the blanks (U+0020) at both ends of a text.
    static std::u16string unspaceString(const std::u16string& text);
    // The text up to its first zero character.
    static std::u16string retString(const std::u16string& text);

    // fMain's closeProgram.
    std::function<void()> onCloseProgram;

  private:
    void RaiseCore(int32_t code);
    void CloseMain();
    std::u16string Decode(std::string_view field) const;

    cGlobals& globals_;
    PluginChannel& channel_;
    Shell& shell_;
    std::function<std::u16string(std::u16string_view)> texts_;
    std::shared_ptr<cMusic> music_;
    std::shared_ptr<cCore> core_;
    int32_t pluginHwnd_ = 0;
    int32_t playerHwnd_ = 0;
    int32_t lengthUnit_ = 0;
};

}  // namespace toval
