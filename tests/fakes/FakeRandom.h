// A Random that plays back scripted draws (then repeats the last one).
#pragma once

#include <vector>

#include "platform/Random.h"

namespace toval::test {

class FakeRandom : public Random {
  public:
    FakeRandom() = default;
    explicit FakeRandom(std::vector<double> d) : draws(std::move(d)) {}
    double Next() override {
        if (draws.empty()) return 0.0;
        const double value = draws[next < draws.size() ? next : draws.size() - 1];
        if (next < draws.size()) ++next;
        return value;
    }
    std::vector<double> draws;
    size_t next = 0;
};

}  // namespace toval::test
