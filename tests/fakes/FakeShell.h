// A Shell that records what the program asks of it and answers from fields.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Shell.h"

namespace toval::test {

class FakeShell : public Shell {
  public:
    struct Box {
        std::u16string text, title;
        int32_t flags;
        bool operator==(const Box&) const = default;
    };

    int32_t ShowMessage(const std::u16string& text, const std::u16string& title,
                        int32_t flags) override {
        boxes.push_back({text, title, flags});
        return boxAnswer;
    }
    void OpenLink(const std::u16string& url) override { links.push_back(url); }
    void Sleep(int32_t ms) override { sleeps.push_back(ms); }
    bool PrevInstance() override { return false; }
    std::u16string SpecialFolder(int32_t id) override {
        folderQueries.push_back(id);
        return specialFolder;
    }
    std::u16string ProgramFolder() override { return programFolder; }
    int32_t ScreenWidthTwips() override { return screenWidth; }
    int32_t ScreenHeightTwips() override { return screenHeight; }
    void DoEvents() override {
        if (onDoEvents) onDoEvents();
    }

    // Answers.
    int32_t boxAnswer = kIdOk;
    std::u16string specialFolder;
    std::u16string programFolder;
    int32_t screenWidth = 1920 * 15;
    int32_t screenHeight = 1080 * 15;
    std::function<void()> onDoEvents;

    // Records.
    std::vector<Box> boxes;
    std::vector<std::u16string> links;
    std::vector<int32_t> sleeps;
    std::vector<int32_t> folderQueries;
};

}  // namespace toval::test
