#include "posix/cPosixStringsLibrary.h"

#include <gtest/gtest.h>

#include "base/mString.h"
#include "fakes/CapturedTrail.h"

namespace toval {
namespace {

TEST(cPosixStringsLibrary, TellsWhyTheLibraryIsMissingOrUnfitAndTheBuiltInsStay) {
    // A library that loads but is not TovalStrings.
    std::string reason;
    EXPECT_EQ(cPosixStringsLibrary("libm.so.6").Load(reason), nullptr);
    EXPECT_NE(reason.find("TovalStrings_"), std::string::npos) << reason;

    test::CapturedTrail trail;
    cPosixStringsLibrary missing;
    EXPECT_FALSE(tryLoadStringsDLL(missing));
    EXPECT_EQ(Strings().wstringTOutf8(u"\u00E9"), "\xC3\xA9");
    ASSERT_EQ(trail.lines.size(), 1u);
    EXPECT_TRUE(trail.Has("library, using old functions instead.\r\nReason: libTovalStrings.so"))
        << trail.lines[0].at(1);
}

}  // namespace
}  // namespace toval
