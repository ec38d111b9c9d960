// A scripted player plug-in behind the PluginChannel port: answers every
// command from fields, records what was sent, and delivers the plug-in's
// notices and tag records to the hooked handler.
#pragma once

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
    int32_t FindPluginWindow() override {
        ++findCalls;
        return findCalls >= foundOnCall ? windowToFind : 0;
    }
    void InstallHook() override { ++installs; }
    void RemoveHook() override { ++removes; }
    int32_t HandlerWindow() override { return 0x1234; }
    void AllowUserMessages() override { ++filterCalls; }

    // The plug-in sends WM_USER with lParam = code to the handler window.
    // Returns the result, or -1 when the handler did not take the message.
    int64_t Notice(int64_t code) {
        int64_t result = -1;
        if (!onMessage || !onMessage(kWmUser, 0, code, {}, result)) return -1;
        return result;
    }
    // The plug-in sends a WM_COPYDATA block.
    int64_t CopyData(const std::string& block) {
        int64_t result = -1;
        if (!onMessage || !onMessage(kWmCopyData, 0, 0, block, result)) return -1;
        return result;
    }

    // The commands sent so far with the given code.
    int Count(int32_t command) const {
        int n = 0;
        for (const Sent& s : sent)
            n += s.command == command ? 1 : 0;
        return n;
    }

    // Answers.
    bool dead = false;  // a window that is gone answers 0 to everything
    int32_t registerAnswer = 1;
    int32_t position = 0;
    int32_t playlistPosition = 0;
    int32_t lengthUnit = 1;
    int32_t windowToFind = 0;
    int foundOnCall = 1;

    // Records.
    std::vector<Sent> sent;
    int findCalls = 0;
    int installs = 0;
    int removes = 0;
    int filterCalls = 0;
};

}  // namespace toval::test
