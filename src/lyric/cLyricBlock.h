// A run of lines, as the editor describes it (indexes are 0-based, inclusive).
#pragma once

#include <cstdint>

namespace toval {

class cLyricBlock {
  public:
    int32_t StartLine() const { return startLine_; }
    void setStartLine(int32_t v) { startLine_ = v; }
    int32_t EndLine() const { return endLine_; }
    void setEndLine(int32_t v) { endLine_ = v; }
    int32_t LineCount() const { return lineCount_; }
    void setLineCount(int32_t v) { lineCount_ = v; }
    int32_t WordCount() const { return wordCount_; }
    void setWordCount(int32_t v) { wordCount_ = v; }

  private:
    int32_t startLine_ = 0, endLine_ = 0, lineCount_ = 0, wordCount_ = 0;
};

}  // namespace toval
