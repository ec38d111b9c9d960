#include "base/cErrorLog.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "fakes/FakeClock.h"
#include "fakes/TempDir.h"

namespace toval {
namespace {

TEST(cErrorLog, LineShowsHoursThenSecondsAndJoinsTexts) {
    cDateTime when{2026, 3, 4, 7, 59, 8};
    EXPECT_EQ(cErrorLog::FormatLine(when, {"cLyric.Resize", "bad index"}),
              "2026/03/04 07:08 - cLyric.Resize ; bad index\r\n");
    EXPECT_EQ(cErrorLog::FormatLine(when, {"x"}), "2026/03/04 07:08 - x\r\n");
}

TEST(cErrorLog, GuardedWritesOneLineAndReturnsTheNeutralResult) {
    test::TempDir dir;
    test::FakeClock clock;
    cErrorLog log(dir.folder(), clock);
    setErrorTrail(&log);
    EXPECT_EQ(Guarded("cThing.Work", -1, []() -> int { throw std::runtime_error("boom"); }), -1);
    EXPECT_EQ(Guarded("cThing.Fine", -1, [] { return 5; }), 5);
    Guarded("cThing.Void [Let]", [] { throw 42; });
    setErrorTrail(nullptr);
    ErrorTrail({"dropped", "no log installed"});
    EXPECT_EQ(dir.Read("Error.log"),
              "2026/11/21 09:45 - cThing.Work ; boom\r\n"
              "2026/11/21 09:45 - cThing.Void [Let] ; unknown failure\r\n");
}

}  // namespace
}  // namespace toval
