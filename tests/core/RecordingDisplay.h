// A display that also records what the controller asks of it, as short texts
// ("Clear", "Lyric", "Music", "ReajustWindow", "Choose line word").
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "display/cDisplay.h"

namespace toval::test {

class RecordingDisplay : public cDisplay {
  public:
    using cDisplay::cDisplay;
    void Clear() override {
        log.push_back("Clear");
        cDisplay::Clear();
    }
    void ReajustWindow() override {
        log.push_back("ReajustWindow");
        cDisplay::ReajustWindow();
    }
    void setLyric(std::shared_ptr<cLyric> lyric) override {
        log.push_back("Lyric");
        cDisplay::setLyric(std::move(lyric));
    }
    void setMusic(std::shared_ptr<cMusic> music) override {
        log.push_back("Music");
        cDisplay::setMusic(std::move(music));
    }
    void ChooseText(int32_t line, int32_t word) override {
        log.push_back("Choose " + std::to_string(line) + " " + std::to_string(word));
        cDisplay::ChooseText(line, word);
    }
    std::vector<std::string> Take() { return std::exchange(log, {}); }
    std::vector<std::string> log;
};

}  // namespace toval::test
