#include "base/mCodePage.h"

#include <gtest/gtest.h>

namespace toval {
namespace {

TEST(mCodePage, Windows1252BothWays) {
    std::string all;
    for (int b = 0; b < 256; ++b)
        all.push_back(static_cast<char>(b));
    const std::u16string text = ansiTOwstring(all);
    ASSERT_EQ(text.size(), 256u);
    EXPECT_EQ(wstringTOansi(text), all);  // every byte survives
    EXPECT_EQ(text[0x80], u'\u20AC');
    EXPECT_EQ(text[0x81], u'\u0081');  // undefined in the code page: kept as is
    EXPECT_EQ(text[0xE9], u'\u00E9');
    // What the code page cannot hold becomes "?".
    EXPECT_EQ(wstringTOansi(u"\u0080\u0100\u65E5\xD83D\uFFFF"), "?????");
}

}  // namespace
}  // namespace toval
