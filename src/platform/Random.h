// The program's random source (lyric revision numbers, cache eviction).
// Injectable so that tests can script the draws.
#pragma once

#include <cstdint>
#include <random>

namespace toval {

class Random {
  public:
    virtual ~Random() = default;
    // A uniform number in [0, 1).
    virtual double Next() = 0;
};

// The real source: a Mersenne twister seeded once (from the clock at start).
class cStdRandom final : public Random {
  public:
    explicit cStdRandom(uint32_t seed) : engine_(seed) {}
    double Next() override { return std::uniform_real_distribution<double>(0.0, 1.0)(engine_); }

  private:
    std::mt19937 engine_;
};

}  // namespace toval
