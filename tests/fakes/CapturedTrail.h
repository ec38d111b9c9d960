// Catches the error trail for the lifetime of the object: every line is kept
// in memory instead of being written, and the previous log comes back at the
// end of the scope.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "base/cErrorLog.h"
#include "fakes/FakeClock.h"

namespace toval::test {

class CapturedTrail : private FakeClock, public cErrorLog {
  public:
    CapturedTrail() : cErrorLog(u"", static_cast<FakeClock&>(*this)), previous_(ErrorTrailLog()) {
        setErrorTrail(this);
    }
    ~CapturedTrail() override { setErrorTrail(previous_); }
    CapturedTrail(const CapturedTrail&) = delete;
    CapturedTrail& operator=(const CapturedTrail&) = delete;

    void Write(const std::vector<std::string>& texts) override { lines.push_back(texts); }

    // Whether some line's texts, joined by " ; ", contain the fragment.
    bool Has(std::string_view fragment) const {
        return std::any_of(lines.begin(), lines.end(), [&](const auto& line) {
            std::string joined;
            for (const auto& text : line)
                joined += (joined.empty() ? "" : " ; ") + text;
            return joined.find(fragment) != std::string::npos;
        });
    }

    std::vector<std::vector<std::string>> lines;

  private:
    cErrorLog* previous_;
};

}  // namespace toval::test
