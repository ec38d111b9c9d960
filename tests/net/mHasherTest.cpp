#include "net/mHasher.h"

#include <gtest/gtest.h>

#include <string>

namespace toval::test {
namespace {

using namespace std::string_literals;

TEST(mHasher, SumsEveryFourthByteModulo256AndFoldsKeysToTheirWidth) {
    // 300 bytes of 0xFF: 75 * 255 = 74 * 256 + 181 in each accumulator.
    EXPECT_EQ(GetLngHash(std::string(300, '\xFF')), static_cast<int32_t>(0xB5B5B5B5u));
    EXPECT_EQ(GetLngHash("\x01\x02\x03\x04"), 0x04030201);
    EXPECT_EQ(GetLngHash("\0\0\0\x80"s), INT32_MIN);
    EXPECT_EQ(GetStrHash("abcdef", 3),
              std::string({char(97 + 100), char(98 + 101), char(99 + 102)}));
    EXPECT_EQ(GetStrHash("\xFF\x02", 1), "\x01");  // 255 + 2 wraps to 1
}

}  // namespace
}  // namespace toval::test
