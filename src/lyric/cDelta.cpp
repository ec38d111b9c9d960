#include "lyric/cDelta.h"

#include <cstdlib>

#include "base/cErrorLog.h"
#include "base/mNumber.h"

namespace toval {

namespace {

// |b - a| of two coordinates, kUnset when either is unset; false when the
// span does not fit in 32 bits.
bool Span(int32_t a, int32_t b, int32_t& out) {
    if (a == kUnset || b == kUnset) {
        out = kUnset;
        return true;
    }
    const int64_t d = std::llabs(static_cast<int64_t>(b) - static_cast<int64_t>(a));
    if (d > INT32_MAX) return false;
    out = static_cast<int32_t>(d);
    return true;
}

}  // namespace

cDelta::cDelta()
    : initial_(std::make_shared<c2DPoint>()),
      final_(std::make_shared<c2DPoint>()),
      diff_(std::make_shared<c2DPoint>()) {}

void cDelta::setInitial(std::shared_ptr<c2DPoint> point) {
    initial_ = std::move(point);
    stale_ = true;
}

void cDelta::setFinal(std::shared_ptr<c2DPoint> point) {
    final_ = std::move(point);
    stale_ = true;
}

std::shared_ptr<c2DPoint> cDelta::Diff() {
    if (stale_) {
        // X first, then Y. A missing end, or a span too wide for 32 bits,
        // stops there: what is not recomputed keeps its previous value and
        // the span stays stale.
        int32_t x = 0, y = 0;
        if (!initial_ || !final_ || !Span(initial_->X(), final_->X(), x)) {
            ErrorTrail({"cDelta.Diff [Get]", "span out of range"});
            return diff_;
        }
        diff_->setX(x);
        if (!Span(initial_->Y(), final_->Y(), y)) {
            ErrorTrail({"cDelta.Diff [Get]", "span out of range"});
            return diff_;
        }
        diff_->setY(y);
        stale_ = false;
    }
    return diff_;
}

}  // namespace toval
