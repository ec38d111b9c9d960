// A DrawSurface that records every call. Painted() lists the texts drawn, each
// with the text colour and underline in force, for tests that check exactly
// which pieces were repainted and how.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "platform/DrawSurface.h"

namespace toval::test {

class FakeDrawSurface : public DrawSurface {
  public:
    enum class Kind { Fill, Blank, Color, Underline, Text, Refresh };
    struct Call {
        Kind kind;
        cRect rect;
        cColor color = 0;
        bool underline = false;
        std::u16string text;
        int32_t flags = 0;
    };

    void FillRectangle(const cRect& rect, cColor color) override {
        calls.push_back({Kind::Fill, rect, color, false, {}, 0});
    }
    void Blank(cColor color) override { calls.push_back({Kind::Blank, {}, color, false, {}, 0}); }
    void setTextColor(cColor color) override {
        color_ = color;
        calls.push_back({Kind::Color, {}, color, false, {}, 0});
    }
    void setUnderline(bool underline) override {
        underline_ = underline;
        calls.push_back({Kind::Underline, {}, 0, underline, {}, 0});
    }
    void PaintText(const std::u16string& text, const cRect& rect, int32_t flags) override {
        calls.push_back({Kind::Text, rect, color_, underline_, text, flags});
    }
    void Refresh() override { calls.push_back({Kind::Refresh, {}, 0, false, {}, 0}); }

    // Each text drawn, as "text/colour" with "/u" behind it when underlined.
    std::vector<std::string> Painted() const {
        std::vector<std::string> out;
        for (const Call& c : calls) {
            if (c.kind != Kind::Text) continue;
            std::string line;
            for (char16_t ch : c.text)
                line.push_back(ch < 128 ? static_cast<char>(ch) : '?');
            line += "/" + std::to_string(c.color);
            if (c.underline) line += "/u";
            out.push_back(line);
        }
        return out;
    }
    int Count(Kind kind) const {
        return static_cast<int>(std::count_if(calls.begin(), calls.end(),
                                              [&](const Call& c) { return c.kind == kind; }));
    }
    void clear() { calls.clear(); }

    std::vector<Call> calls;

  private:
    cColor color_ = 0;
    bool underline_ = false;
};

}  // namespace toval::test
