// An integer point of the layout; each coordinate may be unset (kUnset).
#pragma once

#include <cstdint>

#include "base/mNumber.h"

namespace toval {

class c2DPoint {
  public:
    c2DPoint() = default;
    c2DPoint(int32_t x, int32_t y) : x_(x), y_(y) {}

    int32_t X() const { return x_; }
    void setX(int32_t x) { x_ = x; }
    int32_t Y() const { return y_; }
    void setY(int32_t y) { y_ = y; }

  private:
    int32_t x_ = kUnset;
    int32_t y_ = kUnset;
};

}  // namespace toval
