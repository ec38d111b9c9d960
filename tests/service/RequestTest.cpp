// Reading what a request carries: form values, match keys and the command line.
#include <gtest/gtest.h>

#include <optional>
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

TEST(Form, ReadsWhatTheProgramSendsAndRefusesBrokenEscapesNumbersAndLyrics) {
    // What a text reads as; nothing when it is refused.
    const std::pair<const char*, std::optional<cForm>> cases[] = {
        {"&&a=&b&=v&", cForm{{"a", ""}, {"b", ""}, {"", "v"}}},
        {"a=1=2", cForm{{"a", "1=2"}}},
        {"a=%00%ff", cForm{{"a", std::string("\0\xFF", 2)}}},
        {"a=%", std::nullopt},
        {"a=%G0", std::nullopt},
    };
    for (const auto& [text, expected] : cases) {
        cForm form;
        const bool ok = ParseForm(text, form);
        EXPECT_EQ(ok ? std::optional(form) : std::nullopt, expected) << text;
    }
    cForm many;
    std::string text;
    for (int i = 0; i < 65; ++i)
        text += "k=v&";
    EXPECT_FALSE(ParseForm(text, many));

    // Numbers are decimal and within 32 bits.
    cForm form;
    ASSERT_TRUE(ParseForm("a=2147483647&b=-2147483648&c=2147483648&d=1e3&e=&f=-", form));
    const std::pair<const char*, std::optional<int32_t>> numbers[] = {
        {"a", 2147483647},   {"b", -2147483647 - 1}, {"c", std::nullopt}, {"d", std::nullopt},
        {"e", std::nullopt}, {"f", std::nullopt},    {"x", std::nullopt}};
    for (const auto& [key, expected] : numbers) {
        int32_t value = 0;
        const bool ok = FormNumber(form, key, value);
        EXPECT_EQ(ok ? std::optional(value) : std::nullopt, expected) << key;
    }

    // Only well-formed UTF-8 is lyric text (the escaping of answers is pinned by
    // the loopback round trip through the program's own client).
    EXPECT_TRUE(cLyricService::IsLyricText("plain \xE4\xB8\xAD \xED\xA0\xBD\xED\xB8\x80"));
    for (const std::string& bad : {std::string("\xC0\xAF"), std::string("\xF4\x90\x80\x80"),
                                   std::string("a\0b", 3), std::string("\x80")})
        EXPECT_FALSE(cLyricService::IsLyricText(bad)) << bad;
}

TEST(MatchKey, IgnoresCaseBlanksAndAccents) {
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"\xC3\x86ther \xC3\x9F", "aetherss", true},  // AE, sharp s
        {"Bj\xC3\xB6rk", "Bjo\xCC\x88rk", true},      // composed and combining
        {"\xC5\x81\xC3\xB3"
         "d\xC5\xBA",
         "lodz", true},  // Latin Extended-A
        {"\xCE\x86\xCE\xBB\xCF\x86\xCE\xB1", "\xCE\xB1\xCE\xBB\xCF\x86\xCE\xB1", true},  // Greek
        {"\xD0\x81\xD0\x96", "\xD0\xB5\xD0\xB6", true},                                  // Cyrillic
        {"abc", "abd", false},
    };
    for (const auto& [a, b, same] : cases)
        EXPECT_EQ(MatchKey(a) == MatchKey(b), same) << a << " / " << b;
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

    const std::pair<std::vector<std::string>, const char*> bad[] = {
        {{"fetch"}, "unknown command: fetch"},
        {{"import"}, "import needs a folder"},
        {{"--port", "65536"}, "bad value for --port: 65536"},
        {{"--port"}, "--port needs a value"},
        {{"--move-to", "a<b"}, "bad value for --move-to: a<b"},
        {{"--colour", "red"}, "unknown option: --colour"},
    };
    for (const auto& [words, message] : bad) {
        cServiceArgs a;
        EXPECT_FALSE(a.Parse(words, error));
        EXPECT_EQ(error, message);
    }
}

}  // namespace
}  // namespace toval::test
