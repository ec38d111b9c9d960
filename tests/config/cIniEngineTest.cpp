#include "config/cIniEngine.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "fakes/IniFileContract.h"

namespace toval::test {

struct EngineMaker {
    static std::unique_ptr<IniFile> Make() { return std::make_unique<cIniEngine>(); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Engine, IniFileContract, ::testing::Types<EngineMaker>);

TEST(cIniEngine, NewKeysGoBehindTheLastLineOfTheirSection) {
    // Which section and line hold the key is found by the search that reading
    // uses, pinned by the contract above.
    const std::pair<const char*, const char*> cases[] = {
        {"[a]\r\nx=1\r\n\r\n[b]\r\ny=2\r\n", "[a]\r\nx=1\r\nk=v\r\n\r\n[b]\r\ny=2\r\n"},
        {"[a]", "[a]\r\nk=v\r\n"},
        {"[b]\r\ny=2", "[b]\r\ny=2\r\n[a]\r\nk=v\r\n"},
        {"", "[a]\r\nk=v\r\n"},
        // Names match in any case and keep their spelling, trimmed; every other
        // line stays byte for byte.
        {"; c\r\n[A]\r\nx = 1\r\n K = 1 \r\n\r\n[b]\nk=9\n",
         "; c\r\n[A]\r\nx = 1\r\nK=v\r\n\r\n[b]\nk=9\n"},
    };
    for (const auto& [before, after] : cases)
        EXPECT_EQ(cIniEngine::Update(before, "a", "k", "v"), after) << before;
}

TEST(cIniEngine, AValueCannotBreakIntoTheNextLineAndGarbageReadsAsWhatItHolds) {
    EXPECT_EQ(cIniEngine::Update("", "a", "k", "one\r\n[evil]\r\nx=1"), "[a]\r\nk=one\r\n");
    EXPECT_EQ(cIniEngine::Update("", "a", "k", std::string("cut\0here", 8)), "[a]\r\nk=cut\r\n");

    const std::string garbage("\xff\xfe[\0]\r\n=\r\n[[x]]\r\n]=[\r\n\x1a\r\n[", 24);
    EXPECT_EQ(cIniEngine::Lookup(garbage, "toval", "k", "d", 1024), "d");
    EXPECT_EQ(cIniEngine::Lookup("[t]\r\nk=1", "t", "k", "d", 0), "");
    const std::string updated = cIniEngine::Update(garbage, "toval", "k", "1");
    EXPECT_EQ(updated.substr(0, garbage.size()), garbage);
    EXPECT_EQ(cIniEngine::Lookup(updated, "toval", "k", "d", 1024), "1");
}

}  // namespace toval::test
