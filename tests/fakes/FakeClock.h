// A Clock that always tells the time the test set.
#pragma once

#include "platform/Clock.h"

namespace toval::test {

class FakeClock : public Clock {
  public:
    cDateTime Now() override { return now; }
    cDateTime now{2026, 11, 21, 9, 30, 45};
};

}  // namespace toval::test
