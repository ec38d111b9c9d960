#include "posix/cPosixStringsLibrary.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "base/cErrorLog.h"
#include "base/mString.h"
#include "fakes/FakeClock.h"
#include "fakes/TempDir.h"

namespace toval {
namespace {

TEST(cPosixStringsLibrary, TellsWhyTheLibraryIsMissingOrUnfit) {
    std::string reason;
    cPosixStringsLibrary missing;
    EXPECT_EQ(missing.Load(reason), nullptr);
    EXPECT_NE(reason.find("libTovalStrings.so"), std::string::npos) << reason;

    // A library that loads but is not TovalStrings.
    cPosixStringsLibrary other("libm.so.6");
    reason.clear();
    EXPECT_EQ(other.Load(reason), nullptr);
    EXPECT_NE(reason.find("TovalStrings_"), std::string::npos) << reason;
}

TEST(cPosixStringsLibrary, ProgramStartsWithTheBuiltInsWhenTheLibraryIsMissing) {
    test::TempDir dir;
    test::FakeClock clock;
    cErrorLog log(dir.folder(), clock);
    setErrorTrail(&log);
    cPosixStringsLibrary loader;
    EXPECT_FALSE(tryLoadStringsDLL(loader));
    setErrorTrail(nullptr);
    EXPECT_FALSE(StringsDLLAvailable());
    EXPECT_EQ(Strings().wstringTOutf8(u"\u00E9"), "\xC3\xA9");

    std::ifstream in(dir.path() / "Error.log", std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    const std::string line = s.str();
    EXPECT_EQ(line.rfind("2026/11/21 09:45 - mString.tryLoadStringsDLL ; Can't load TovalStrings "
                         "(Framework) library, using old functions instead.\r\nReason: ",
                         0),
              0u)
        << line;
    EXPECT_NE(line.find("libTovalStrings.so"), std::string::npos);
    EXPECT_EQ(line.substr(line.size() - 2), "\r\n");
}

}  // namespace
}  // namespace toval
