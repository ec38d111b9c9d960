// Reading what a request carries: form values, match keys and the command line.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "cLyricService.h"
#include "cServiceArgs.h"
#include "mForm.h"
#include "mMatchKey.h"

namespace toval::test {
namespace {

using namespace toval::service;

TEST(Form, ReadsWhatTheProgramSendsAndRefusesBrokenEscapesAndNumbers) {
    const struct {
        const char* text;
        bool ok;
        cForm form;
    } cases[] = {
        {"&&a=&b&=v&", true, {{"a", ""}, {"b", ""}, {"", "v"}}},
        {"a=1=2", true, {{"a", "1=2"}}},
        {"a=%00%ff", true, {{"a", std::string("\0\xFF", 2)}}},
        {"a=%", false, {}},
        {"a=%G0", false, {}},
    };
    for (const auto& c : cases) {
        cForm form;
        EXPECT_EQ(ParseForm(c.text, form), c.ok) << c.text;
        if (c.ok) {
            EXPECT_EQ(form, c.form) << c.text;
        }
    }
    cForm many;
    std::string text;
    for (int i = 0; i < 65; ++i)
        text += "k=v&";
    EXPECT_FALSE(ParseForm(text, many));

    // Numbers are decimal and within 32 bits.
    cForm form;
    ASSERT_TRUE(ParseForm("a=2147483647&b=-2147483648&c=2147483648&d=1e3&e=&f=-&h=007", form));
    const struct {
        const char* key;
        bool ok;
        int32_t value;
    } numbers[] = {{"a", true, 2147483647}, {"b", true, -2147483647 - 1},
                   {"c", false, 0},         {"d", false, 0},
                   {"e", false, 0},         {"f", false, 0},
                   {"h", true, 7},          {"x", false, 0}};
    for (const auto& c : numbers) {
        int32_t value = 0;
        EXPECT_EQ(FormNumber(form, c.key, value), c.ok) << c.key;
        if (c.ok) {
            EXPECT_EQ(value, c.value) << c.key;
        }
    }
}

TEST(MatchKey, IgnoresCaseBlanksAndAccents) {
    const struct {
        const char* a;
        const char* b;
        bool same;
    } cases[] = {
        {"\xC3\x86"
         "ther \xC3\x9F",
         "aetherss", true},                       // AE, sharp s
        {"Bj\xC3\xB6rk", "Bjo\xCC\x88rk", true},  // composed and combining
        {"\xC5\x81\xC3\xB3"
         "d\xC5\xBA",
         "lodz", true},  // Latin Extended-A
        {"\xCE\x86\xCE\xBB\xCF\x86\xCE\xB1", "\xCE\xB1\xCE\xBB\xCF\x86\xCE\xB1", true},  // Greek
        {"\xD0\x81\xD0\x96", "\xD0\xB5\xD0\xB6", true},                                  // Cyrillic
        {"abc", "abd", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(MatchKey(c.a) == MatchKey(c.b), c.same) << c.a << " / " << c.b;
}

// The escaping of answers is pinned by the loopback round trip through the
// program's own client; here the check of what a sent lyric may hold.
TEST(LyricAnswer, OnlyWellFormedUtf8IsLyricText) {
    EXPECT_TRUE(cLyricService::IsLyricText("plain \xE4\xB8\xAD \xED\xA0\xBD\xED\xB8\x80"));
    for (const std::string& bad : {std::string("\xC0\xAF"), std::string("\xF4\x90\x80\x80"),
                                   std::string("a\0b", 3), std::string("\x80")}) {
        EXPECT_FALSE(cLyricService::IsLyricText(bad)) << bad;
    }
}

TEST(ServiceArgs, ReadsCommandsAndOptionsAndNamesWhatIsWrong) {
    cServiceArgs args;
    std::string error;
    ASSERT_TRUE(args.Parse({"serve", "--listen", "0.0.0.0", "--db", "postgresql://u@h/db",
                            "--move-to", "new:81", "--sends-per-hour", "0"},
                           error));
    EXPECT_EQ(
        std::tuple(args.listen, args.IsPostgres(), args.options.moveTo, args.options.sendsPerHour),
        std::tuple("0.0.0.0", true, "new:81", 0));

    cServiceArgs import;
    ASSERT_TRUE(import.Parse({"import", "/music", "--db", "lyrics.db"}, error));
    EXPECT_EQ(std::tuple(import.command, import.importDir, import.IsPostgres()),
              std::tuple(cServiceArgs::Command::kImport, "/music", false));
    cServiceArgs keywords;
    EXPECT_TRUE(keywords.Parse({"--db", "host=/run/pg dbname=l"}, error) && keywords.IsPostgres());

    const struct {
        std::vector<std::string> args;
        const char* error;
    } bad[] = {
        {{"fetch"}, "unknown command: fetch"},
        {{"import"}, "import needs a folder"},
        {{"--port", "65536"}, "bad value for --port: 65536"},
        {{"--port"}, "--port needs a value"},
        {{"--move-to", "a<b"}, "bad value for --move-to: a<b"},
        {{"--colour", "red"}, "unknown option: --colour"},
    };
    for (const auto& c : bad) {
        cServiceArgs a;
        EXPECT_FALSE(a.Parse(c.args, error));
        EXPECT_EQ(error, c.error);
    }
}

}  // namespace
}  // namespace toval::test
