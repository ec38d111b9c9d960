#include "base/cStringsDLL.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <stdexcept>
#include <tuple>
#include <vector>

#include "base/mFile.h"
#include "base/mString.h"
#include "fakes/CapturedTrail.h"
#include "fakes/TempDir.h"

namespace toval {
namespace {

using F = StringsFunction;

// One call as the library saw it: the function, two texts and the number.
using Seen = std::tuple<F, std::string, std::string, int32_t>;

// A library that answers from a table and records its calls.
class FakeLibrary : public StringsLibrary {
  public:
    bool Call(F function, const StringsCall& call, std::string& result) override {
        calls.push_back({function, std::string(call.first), std::string(call.second), call.number});
        if (throws) throw std::runtime_error("crash in the library");
        const auto answer = answers.find(function);
        if (answer == answers.end()) return false;
        result = answer->second;
        return true;
    }
    std::map<F, std::string> answers;
    std::vector<Seen> calls;
    bool throws = false;
};

class FakeLoader : public StringsLibraryLoader {
  public:
    std::shared_ptr<StringsLibrary> Load(std::string&) override {
        if (!library) throw std::runtime_error("loader broke");
        return library;
    }
    std::shared_ptr<FakeLibrary> library;
};

std::string Wide(const std::u16string& text) {
    return cStrings().wstringTOwchar(text);
}

class StringsDLLTest : public testing::Test {
  protected:
    ~StringsDLLTest() override { resetStringsDLL(); }
    test::TempDir dir;
    test::CapturedTrail trail;
};

TEST_F(StringsDLLTest, LoadedLibraryDoesTheWorkUntilItsFirstFailureOfAnyKind) {
    // A loader that breaks is a missing library (the missing file itself is
    // tested with the real loader).
    FakeLoader loader;
    EXPECT_FALSE(tryLoadStringsDLL(loader));
    EXPECT_TRUE(trail.Has("using old functions instead.\r\nReason: loader broke"));
    trail.lines.clear();

    loader.library = std::make_shared<FakeLibrary>();
    FakeLibrary& library = *loader.library;
    library.answers = {{F::utf8TOwstring, Wide(u"from the library")},
                       {F::wstringTOutf8uhtml, "a%2B"},
                       {F::FileRead, Wide(u"library text")},
                       {F::FileSaveUTF8, std::string(1, '\0')},
                       {F::FileExists, std::string(1, '\1')}};
    ASSERT_TRUE(tryLoadStringsDLL(loader));

    const std::u16string file = dir.file(u"song.tvl");
    EXPECT_EQ(Strings().utf8TOwstring("x"), u"from the library");
    EXPECT_EQ(Strings().wstringTOutf8uhtml(u"\u00E9", 40), "a%2B");
    EXPECT_EQ(FileRead(file), u"library text");
    // The library's save reports failure, but the result is whether the file exists.
    EXPECT_TRUE(FileSaveUTF8(file, u"x"));
    EXPECT_FALSE(std::filesystem::exists(dir.path() / "song.tvl"));
    // Texts go as UTF-16 LE.
    EXPECT_EQ(library.calls, (std::vector<Seen>{{F::utf8TOwstring, "x", "", 0},
                                                {F::wstringTOutf8uhtml, Wide(u"\u00E9"), "", 40},
                                                {F::FileRead, Wide(file), "", 0},
                                                {F::FileSaveUTF8, Wide(file), Wide(u"x"), 0},
                                                {F::FileExists, Wide(file), "", 0}}));

    // FileKill has no answer: the file goes the built-in way, and the library is off for good.
    ASSERT_TRUE(SaveFile(file, "data", 1, true));
    FileKill(file);
    EXPECT_FALSE(std::filesystem::exists(dir.path() / "song.tvl"));
    EXPECT_FALSE(StringsDLLAvailable());
    EXPECT_EQ(Strings().utf8TOwstring("x"), u"x");
    EXPECT_EQ(trail.lines,
              (decltype(trail.lines){{"cStringsDLL.FileKill",
                                      "TovalStrings failed; using the built-in functions from now "
                                      "on"}}));

    // Malformed, throwing or missing answers turn a library off.
    auto broken = std::make_shared<FakeLibrary>();
    broken->answers = {{F::wcharTOwstring, "odd"},  // not a 16-bit text
                       {F::FileExists, "yes"}};     // not a flag
    cStringsDLL text(broken), flag(broken), crash(broken), none(nullptr);
    // No answer at all: the extras keep their own meaning.
    cStringsDLL txtuni8(broken), normalize(broken);
    EXPECT_EQ(text.wcharTOwstring("A\0"), u"A");
    EXPECT_FALSE(flag.FileExists(dir.file(u"missing")));
    EXPECT_EQ(none.stringTOhtml("a b"), "a+b");
    EXPECT_EQ(txtuni8.wstringTOtxtuni8(u"\u00E9"), "\xEF\xBB\xBF\xC3\xA9");
    EXPECT_EQ(normalize.normalizeString(u"a\r\nb\nc\rd\n\re\r"), u"a\r\nb\r\nc\r\nd\r\n\r\ne\r\n");
    broken->throws = true;
    EXPECT_EQ(crash.wstringTOutf8(u"\u20AC"), "\xE2\x82\xAC");
    for (const cStringsDLL* dll : {&text, &flag, &crash, &none, &txtuni8, &normalize})
        EXPECT_FALSE(dll->Available());
}

}  // namespace
}  // namespace toval
