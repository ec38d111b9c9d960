#include "base/cStringsDLL.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <stdexcept>
#include <vector>

#include "base/mFile.h"
#include "base/mString.h"
#include "fakes/CapturedTrail.h"
#include "fakes/TempDir.h"

namespace toval {
namespace {

// A library that answers from a table and records its calls.
class FakeLibrary : public StringsLibrary {
  public:
    struct Seen {
        StringsFunction function;
        std::string first, second;
        int32_t number;
        bool flag;
    };
    bool Call(StringsFunction function, const StringsCall& call, std::string& result) override {
        calls.push_back(
            {function, std::string(call.first), std::string(call.second), call.number, call.flag});
        if (throws) throw std::runtime_error("crash in the library");
        const auto answer = answers.find(function);
        if (answer == answers.end()) return false;
        result = answer->second;
        return true;
    }
    std::map<StringsFunction, std::string> answers;
    std::vector<Seen> calls;
    bool throws = false;
};

class FakeLoader : public StringsLibraryLoader {
  public:
    std::shared_ptr<StringsLibrary> Load(std::string& reason) override {
        if (throws) throw std::runtime_error("loader broke");
        if (!library) reason = "libTovalStrings.so: cannot open shared object file";
        return library;
    }
    std::shared_ptr<FakeLibrary> library;
    bool throws = false;
};

using Lines = std::vector<std::vector<std::string>>;

std::string Wide(const std::u16string& text) {
    return cStrings().wstringTOwchar(text);
}

class StringsDLLTest : public testing::Test {
  protected:
    ~StringsDLLTest() override { resetStringsDLL(); }
    test::TempDir dir;
    test::CapturedTrail trail;
};

TEST_F(StringsDLLTest, MissingLibraryWritesTheReasonAndKeepsTheBuiltIns) {
    FakeLoader loader;
    EXPECT_FALSE(tryLoadStringsDLL(loader));
    EXPECT_FALSE(StringsDLLAvailable());
    EXPECT_EQ(StringsDLL(), nullptr);
    EXPECT_EQ(Strings().utf8TOwstring("\xC3\xA9"), u"\u00E9");
    EXPECT_EQ(trail.lines, (Lines{{"mString.tryLoadStringsDLL",
                                   "Can't load TovalStrings (Framework) library, using old "
                                   "functions instead.\r\nReason: libTovalStrings.so: cannot "
                                   "open shared object file"}}));

    loader.throws = true;  // a loader that breaks is a missing library too
    EXPECT_FALSE(tryLoadStringsDLL(loader));
    EXPECT_TRUE(trail.Has("Reason: loader broke"));
}

TEST_F(StringsDLLTest, LoadedLibraryDoesTheWorkUntilItsFirstFailure) {
    FakeLoader loader;
    loader.library = std::make_shared<FakeLibrary>();
    FakeLibrary& library = *loader.library;
    library.answers[StringsFunction::utf8TOwstring] = Wide(u"from the library");
    library.answers[StringsFunction::wstringTOutf8uhtml] = "a%2B";
    ASSERT_TRUE(tryLoadStringsDLL(loader));
    ASSERT_TRUE(StringsDLLAvailable());
    EXPECT_EQ(&Strings(), StringsDLL());

    EXPECT_EQ(Strings().utf8TOwstring("x"), u"from the library");
    EXPECT_EQ(Strings().wstringTOutf8uhtml(u"\u00E9", 40), "a%2B");
    ASSERT_EQ(library.calls.size(), 2u);
    EXPECT_EQ(library.calls[0].first, "x");
    EXPECT_EQ(library.calls[1].first, std::string("\xE9\0", 2));  // texts go as UTF-16 LE
    EXPECT_EQ(library.calls[1].number, 40);
    EXPECT_TRUE(trail.lines.empty());

    // No answer for htmlTOtext: the built-in result, and the library is off for good.
    EXPECT_EQ(Strings().htmlTOtext(u"&amp;"), u"&");
    EXPECT_FALSE(StringsDLLAvailable());
    EXPECT_EQ(StringsDLL(), nullptr);
    EXPECT_EQ(Strings().utf8TOwstring("x"), u"x");
    EXPECT_EQ(library.calls.size(), 3u);
    EXPECT_EQ(trail.lines, (Lines{{"cStringsDLL.htmlTOtext",
                                   "TovalStrings failed; using the built-in functions from now "
                                   "on"}}));
}

TEST_F(StringsDLLTest, MalformedOrThrowingAnswersTurnTheLibraryOff) {
    auto library = std::make_shared<FakeLibrary>();
    {
        cStringsDLL dll(library);
        library->answers[StringsFunction::wcharTOwstring] = "odd";  // not a 16-bit text
        EXPECT_EQ(dll.wcharTOwstring("A\0"), u"A");
        EXPECT_FALSE(dll.Available());
    }
    {
        cStringsDLL dll(library);
        library->answers[StringsFunction::FileExists] = "yes";  // not a flag
        EXPECT_FALSE(dll.FileExists(dir.file(u"missing")));
        EXPECT_FALSE(dll.Available());
    }
    {
        cStringsDLL dll(library);
        library->throws = true;
        EXPECT_EQ(dll.wstringTOutf8(u"\u20AC"), "\xE2\x82\xAC");
        EXPECT_FALSE(dll.Available());
    }
    cStringsDLL none(nullptr);
    EXPECT_FALSE(none.Available());
    EXPECT_EQ(none.stringTOhtml("a b"), "a+b");
}

TEST_F(StringsDLLTest, ExtrasFallBackToTheirOwnMeaning) {
    cStringsDLL dll(std::make_shared<FakeLibrary>());  // answers nothing
    EXPECT_EQ(dll.wstringTOtxtuni8(u"\u00E9"), "\xEF\xBB\xBF\xC3\xA9");
    cStringsDLL again(std::make_shared<FakeLibrary>());
    EXPECT_EQ(again.normalizeString(u"a\r\nb\nc\rd\n\re\r"), u"a\r\nb\r\nc\r\nd\r\n\r\ne\r\n");
}

TEST_F(StringsDLLTest, FileFunctionsGoThroughTheLibraryWhileItWorks) {
    FakeLoader loader;
    loader.library = std::make_shared<FakeLibrary>();
    FakeLibrary& library = *loader.library;
    library.answers[StringsFunction::FileRead] = Wide(u"library text");
    library.answers[StringsFunction::FileSaveUTF8] = std::string(1, '\0');
    library.answers[StringsFunction::FileExists] = std::string(1, '\1');
    ASSERT_TRUE(tryLoadStringsDLL(loader));

    const std::u16string file = dir.file(u"song.tvl");
    EXPECT_EQ(FileRead(file), u"library text");
    // The library's save reports failure, but the result is whether the file exists.
    EXPECT_TRUE(FileSaveUTF8(file, u"x"));
    EXPECT_EQ(library.calls[1].function, StringsFunction::FileSaveUTF8);
    EXPECT_EQ(library.calls[1].first, Wide(file));
    EXPECT_EQ(library.calls[1].second, Wide(u"x"));
    EXPECT_EQ(library.calls[2].function, StringsFunction::FileExists);
    EXPECT_FALSE(std::filesystem::exists(dir.path() / "song.tvl"));

    // FileKill has no answer: the file is deleted by the built-in way instead.
    ASSERT_TRUE(SaveFile(file, "data", 1, true));
    FileKill(file);
    EXPECT_FALSE(std::filesystem::exists(dir.path() / "song.tvl"));
    EXPECT_FALSE(StringsDLLAvailable());
    EXPECT_TRUE(FileSaveUTF8(file, u"\u00E9"));
    EXPECT_EQ(dir.Read("song.tvl"), "\xC3\xA9");
}

}  // namespace
}  // namespace toval
