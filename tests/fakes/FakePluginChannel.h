// A scripted player plug-in behind the PluginChannel port: answers every
// command from fields, records what was sent, and delivers the plug-in's
// notices and tag records to the hooked handler.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core/cPlugin.h"
#include "platform/PluginChannel.h"

namespace toval::test {

class FakePluginChannel : public PluginChannel {
  public:
    struct Sent {
        int32_t window, command, argument;
    };

    int32_t SendCommand(int32_t window, int32_t command, int32_t argument) override {
        sent.push_back({window, command, argument});
        if (dead) return 0;
        const std::pair<int32_t, int32_t> answers[] = {
            {kCmdRegister, registerAnswer},      {kCmdPosition, position},
            {kCmdPlaylistPos, playlistPosition}, {kCmdAlive, 1},
            {kCmdPlayerWindow, 0x777},           {kCmdLengthUnit, lengthUnit}};
        for (const auto& [code, answer] : answers)
            if (code == command) return answer;
        return 0;
    }
    // The plug-in's window is never found.
    int32_t FindPluginWindow() override {
        ++findCalls;
        return 0;
    }
    void InstallHook() override { ++installs; }
    void RemoveHook() override { ++removes; }
    int32_t HandlerWindow() override { return 0x1234; }
    void AllowUserMessages() override { ++filterCalls; }

    // The plug-in sends WM_USER with lParam = code to the handler window.
    // Returns the result, or -1 when the handler did not take the message.
    int64_t Notice(int64_t code) { return Deliver(kWmUser, code, {}); }
    // The plug-in sends a WM_COPYDATA block.
    int64_t CopyData(const std::string& block) { return Deliver(kWmCopyData, 0, block); }

    // The commands sent so far with the given code.
    int Count(int32_t command) const {
        return static_cast<int>(std::count_if(sent.begin(), sent.end(),
                                              [&](const Sent& s) { return s.command == command; }));
    }

    // A tag record as the plug-in builds it: zero-padded UTF-8 fields.
    static std::string TagRecord(const std::string& path, const std::string& artist,
                                 const std::string& album, const std::string& title,
                                 int32_t length) {
        std::string block(kTagRecordSize, '\0');
        const auto put = [&](size_t offset, size_t width, const std::string& text) {
            block.replace(offset, std::min(width, text.size()), text.substr(0, width));
        };
        put(kTagPathOffset, kTagPathSize, path);
        put(kTagArtistOffset, kTagArtistSize, artist);
        put(kTagAlbumOffset, kTagAlbumSize, album);
        put(kTagTitleOffset, kTagTitleSize, title);
        const auto bits = static_cast<uint32_t>(length);
        for (size_t k = 0; k < 4; ++k)
            block[kTagLengthOffset + k] = static_cast<char>((bits >> (8 * k)) & 0xFF);
        return block;
    }

    // Answers.
    bool dead = false;  // a window that is gone answers 0 to everything
    int32_t registerAnswer = 1;
    int32_t position = 0;
    int32_t playlistPosition = 0;
    int32_t lengthUnit = 1;

    // Records.
    std::vector<Sent> sent;
    int findCalls = 0;
    int installs = 0;
    int removes = 0;
    int filterCalls = 0;

  private:
    int64_t Deliver(uint32_t message, int64_t lParam, const std::string& block) {
        int64_t result = -1;
        if (!onMessage || !onMessage(message, 0, lParam, block, result)) return -1;
        return result;
    }
};

}  // namespace toval::test
