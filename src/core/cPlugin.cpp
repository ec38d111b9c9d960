#include "core/cPlugin.h"

#include "base/cErrorLog.h"
#include "base/mString.h"
#include "core/cCore.h"
#include "lyric/cMusic.h"
#include "platform/PluginChannel.h"
#include "platform/Shell.h"

namespace toval {

namespace {

int32_t LittleEndian32(std::string_view bytes, size_t offset) {
    uint32_t value = 0;
    for (size_t k = 0; k < 4; ++k)
        value |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[offset + k])) << (8 * k);
    return static_cast<int32_t>(value);
}

}  // namespace

cPlugin::cPlugin(cGlobals& globals, PluginChannel& channel, Shell& shell,
                 std::function<std::u16string(std::u16string_view key)> texts)
    : globals_(globals),
      channel_(channel),
      shell_(shell),
      texts_(std::move(texts)),
      music_(std::make_shared<cMusic>()) {
    // Older systems have no privilege isolation: the call may fail; go on.
    Guarded("cPlugin.Class_Initialize", [&] { channel_.AllowUserMessages(); });
}

cPlugin::~cPlugin() = default;

std::u16string cPlugin::unspaceString(const std::u16string& text) {
    const size_t first = text.find_first_not_of(u' ');
    if (first == std::u16string::npos) return {};
    const size_t last = text.find_last_not_of(u' ');
    return text.substr(first, last - first + 1);
}

std::u16string cPlugin::retString(const std::u16string& text) {
    const size_t zero = text.find(u'\0');
    return zero == std::u16string::npos ? text : text.substr(0, zero);
}

void cPlugin::RaiseCore(int32_t code) {
    // Hold the core: the event may drop the last other reference.
    if (const auto core = core_) core->PluginEvent(code);
}

void cPlugin::CloseMain() {
    if (onCloseProgram) onCloseProgram();
}

void cPlugin::Wakeup() {
    Guarded("cPlugin.Wakeup", [&] {
        if (channel_.SendCommand(pluginHwnd_, kCmdRegister, channel_.HandlerWindow()) != 1) {
            const std::u16string text = texts_ ? texts_(u"StartErrorBadHandle") : u"";
            const std::u16string title = texts_ ? texts_(u"ErrorTitle") : u"";
            shell_.ShowMessage(text, title, kMbIconError);
            CloseMain();
            return;
        }
        playerHwnd_ = channel_.SendCommand(pluginHwnd_, kCmdPlayerWindow, 0);
        const int32_t unit = channel_.SendCommand(pluginHwnd_, kCmdLengthUnit, 0);
        if (unit == 0 || unit == 1) lengthUnit_ = unit;
        RaiseCore(kEventAwake);
    });
}

int32_t cPlugin::Update() {
    Guarded("cPlugin.Update", [&] {
        const int32_t position = channel_.SendCommand(pluginHwnd_, kCmdPosition, 0);
        globals_.PlayPosition = position;
        // Nothing playing also reads 0; only a plug-in that is gone ends the program.
        if (position == 0 && !Alive()) CloseMain();
    });
    return globals_.PlayPosition;
}

int32_t cPlugin::PlaylistPosisition() {
    return Guarded("cPlugin.PlaylistPosisition", int32_t{0},
                   [&] { return channel_.SendCommand(pluginHwnd_, kCmdPlaylistPos, 0); });
}

bool cPlugin::Alive() {
    return Guarded("cPlugin.Alive", false,
                   [&] { return channel_.SendCommand(pluginHwnd_, kCmdAlive, 0) == 1; });
}

void cPlugin::closeProgram() {
    Guarded("cPlugin.closeProgram", [&] {
        RaiseCore(kEventPlayerClosed);
        if (Alive()) channel_.SendCommand(pluginHwnd_, kCmdClosing, 0);
        CloseMain();
    });
}

bool cPlugin::ProcessMessage(uint32_t message, int64_t /*wParam*/, int64_t lParam,
                             std::string_view data, int64_t& result) {
    if (message != kWmUser && message != kWmCopyData) return false;
    result = 0;
    Guarded("cPlugin.ProcessMessage", [&] {
        if (message == kWmCopyData) {
            if (updateTag(data)) RaiseCore(kEventNewTrack);
            return;
        }
        if (!core_) return;  // nobody to tell yet: every notice is swallowed
        switch (lParam) {
            case 1:
                RaiseCore(kEventStopped);
                break;
            case 2:
                RaiseCore(kEventSlowDown);
                break;
            case 3:  // the player is closing
                RaiseCore(kEventPlayerClosed);
                CloseMain();
                break;
            case 4:  // ping
                result = 1;
                break;
            default:
                break;
        }
    });
    return true;
}

std::u16string cPlugin::Decode(std::string_view field) const {
    return Strings().utf8TOwstring(std::string(field));
}

bool cPlugin::updateTag(std::string_view record) {
    return Guarded("cPlugin.updateTag", false, [&] {
        if (record.size() != kTagRecordSize) return false;
        // A text field: decoded, back into a field of its width padded with
        // blanks, the blanks around it removed, then cut at the first zero.
        const auto textField = [&](size_t offset, size_t width) {
            std::u16string text = Decode(record.substr(offset, width));
            if (text.size() < width) text.resize(width, u' ');
            return retString(unspaceString(text));
        };
        music_->setAlbum(textField(kTagAlbumOffset, kTagAlbumSize));
        music_->setArtist(textField(kTagArtistOffset, kTagArtistSize));
        music_->setTitle(textField(kTagTitleOffset, kTagTitleSize));
        music_->setFileAddress(retString(Decode(record.substr(kTagPathOffset, kTagPathSize))));
        const int32_t length = LittleEndian32(record, kTagLengthOffset);
        if (MiliTrackLength())
            music_->setMiliDuration(length);
        else
            music_->setDuration(length);
        return true;
    });
}

}  // namespace toval
