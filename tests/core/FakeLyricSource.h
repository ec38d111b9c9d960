// A scripted lyric lookup: records what the controller asks and answers when
// the test says so (or at once, with `answerOnLoad`).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/iLyricSource.h"

namespace toval::test {

class FakeLyricSource : public iLyricSource {
  public:
    struct Request {
        int32_t source, requestId, mutation;
        bool operator==(const Request&) const = default;
    };

    void Load(int32_t requestId) override {
        loads.push_back(requestId);
        if (answerOnLoad) Answer(requestId, *answerOnLoad);
    }
    void LoadFrom(int32_t source, int32_t requestId, int32_t mutation) override {
        loadFroms.push_back({source, requestId, mutation});
    }
    std::u16string Lyric() const override { return text; }
    void ClearCache() override {}

    void Answer(int32_t requestId, int32_t status) {
        if (onLoaded) onLoaded(requestId, status);
    }

    std::u16string text;
    std::optional<int32_t> answerOnLoad;
    std::vector<int32_t> loads;
    std::vector<Request> loadFroms;
};

}  // namespace toval::test
