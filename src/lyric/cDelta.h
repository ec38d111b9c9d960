// A span between two layout points and its size. Diff is recomputed only
// after Initial or Final has been replaced; changing a coordinate of a point
// in place does not refresh it, so the layout replaces points.
#pragma once

#include <memory>

#include "lyric/c2DPoint.h"

namespace toval {

class cDelta {
  public:
    cDelta();

    std::shared_ptr<c2DPoint> Initial() const { return initial_; }
    void setInitial(std::shared_ptr<c2DPoint> point);
    std::shared_ptr<c2DPoint> Final() const { return final_; }
    void setFinal(std::shared_ptr<c2DPoint> point);

    // |Final - Initial| per coordinate; unset where either end is unset.
    std::shared_ptr<c2DPoint> Diff();

  private:
    std::shared_ptr<c2DPoint> initial_, final_, diff_;
    bool stale_ = true;
};

}  // namespace toval
