#include "config/cIniEngine.h"

#include <gtest/gtest.h>

#include <memory>

#include "fakes/IniFileContract.h"

namespace toval::test {

struct EngineMaker {
    static std::unique_ptr<IniFile> Make() { return std::make_unique<cIniEngine>(); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Engine, IniFileContract, ::testing::Types<EngineMaker>);

TEST(cIniEngine, NewKeysGoBehindTheLastLineOfTheirSection) {
    struct Case {
        const char* before;
        const char* after;
    };
    const Case cases[] = {
        {"[a]\r\nx=1\r\n\r\n[b]\r\ny=2\r\n", "[a]\r\nx=1\r\nk=v\r\n\r\n[b]\r\ny=2\r\n"},
        {"[a]\r\n; note\r\n\r\n", "[a]\r\n; note\r\nk=v\r\n\r\n"},
        {"[a]", "[a]\r\nk=v\r\n"},
        {"[b]\r\ny=2", "[b]\r\ny=2\r\n[a]\r\nk=v\r\n"},
        {"", "[a]\r\nk=v\r\n"},
        // Only the first section of the name is read, so it is the one written.
        {"[A]\r\n[b]\r\n[a]\r\nk=old\r\n", "[A]\r\nk=v\r\n[b]\r\n[a]\r\nk=old\r\n"},
        {"[a]\r\nk\r\n", "[a]\r\nk\r\nk=v\r\n"},
        // Names match in any case and keep their spelling, trimmed; every other
        // line stays byte for byte.
        {"; c\r\n[A]\r\nx = 1\r\n K = 1 \r\n\r\n[b]\nk=9\n",
         "; c\r\n[A]\r\nx = 1\r\nK=v\r\n\r\n[b]\nk=9\n"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(cIniEngine::Update(c.before, "a", "k", "v"), c.after) << c.before;
    }
}

TEST(cIniEngine, AValueCannotBreakIntoTheNextLine) {
    const std::string text = cIniEngine::Update("", "a", "k", "one\r\n[evil]\r\nx=1");
    EXPECT_EQ(text, "[a]\r\nk=one\r\n");
    EXPECT_EQ(cIniEngine::Update("", "a", "k", std::string("cut\0here", 8)), "[a]\r\nk=cut\r\n");
    EXPECT_EQ(cIniEngine::Lookup(text, "evil", "x", "d", 1024), "d");
}

TEST(cIniEngine, GarbageContentReadsAsWhatItHoldsOrTheDefault) {
    const std::string garbage("\xff\xfe[\0]\r\n=\r\n[[x]]\r\n]=[\r\n\x1a\r\n[", 24);
    EXPECT_EQ(cIniEngine::Lookup(garbage, "toval", "k", "d", 1024), "d");
    EXPECT_EQ(cIniEngine::Lookup("[[x]]\r\n=v\r\n", "[x", "", "d", 1024), "v");
    EXPECT_EQ(cIniEngine::Lookup("[t]\r\nk=1", "t", "k", "d", 0), "");
    const std::string updated = cIniEngine::Update(garbage, "toval", "k", "1");
    EXPECT_EQ(updated.substr(0, garbage.size()), garbage);
    EXPECT_EQ(cIniEngine::Lookup(updated, "toval", "k", "d", 1024), "1");
}

}  // namespace toval::test
