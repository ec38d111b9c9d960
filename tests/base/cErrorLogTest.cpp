#include "base/cErrorLog.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "fakes/FakeClock.h"
#include "fakes/TempDir.h"

namespace toval {
namespace {

// A line shows the hours, then the seconds (09:45 at 09:30:45), and the texts
// joined by " ; ".
TEST(cErrorLog, GuardedWritesOneLineAndReturnsTheNeutralResult) {
    test::TempDir dir;
    test::FakeClock clock;
    cErrorLog log(dir.folder(), clock);
    setErrorTrail(&log);
    EXPECT_EQ(Guarded("cThing.Work", -1, []() -> int { throw std::runtime_error("boom"); }), -1);
    Guarded("cThing.Void [Let]", [] { throw 42; });
    ErrorTrail({"one text"});
    setErrorTrail(nullptr);
    ErrorTrail({"dropped", "no log installed"});
    EXPECT_EQ(dir.Read("Error.log"),
              "2026/11/21 09:45 - cThing.Work ; boom\r\n"
              "2026/11/21 09:45 - cThing.Void [Let] ; unknown failure\r\n"
              "2026/11/21 09:45 - one text\r\n");
}

}  // namespace
}  // namespace toval
