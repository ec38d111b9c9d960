#include "config/mLanguage.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <tuple>
#include <vector>

#include "config/cIniEngine.h"
#include "fakes/TempDir.h"

namespace toval::test {
namespace {

// A control as a form designer leaves it; a property set to std::nullopt is
// one the control does not have.
struct FakeControl : iLanguageTarget {
    using Number = std::optional<int32_t>;
    std::u16string name, tag;
    std::optional<std::u16string> caption = u"designer";
    std::optional<std::u16string> tip = u"designer tip";
    Number left, width, container, alignment;
    std::vector<iLanguageTarget*> children;

    explicit FakeControl(std::u16string n, std::u16string t = {}, Number l = {}, Number w = {},
                         Number c = {}, Number a = {})
        : name(std::move(n)), tag(std::move(t)), left(l), width(w), container(c), alignment(a) {}
    auto Geometry() const { return std::tuple(tag, left, alignment); }

    std::u16string Name() const override { return name; }
    std::optional<std::u16string> Caption() const override { return caption; }
    // No guard: a control without the property must not be asked to set it.
    void setCaption(const std::u16string& v) override { caption = v; }
    std::optional<std::u16string> ToolTipText() const override { return tip; }
    void setToolTipText(const std::u16string& v) override { tip = v; }
    std::u16string Tag() const override { return tag; }
    void setTag(const std::u16string& v) override { tag = v; }
    std::optional<int32_t> Left() const override { return left; }
    void setLeft(int32_t v) override { left = v; }
    std::optional<int32_t> Width() const override { return width; }
    std::optional<int32_t> Alignment() const override { return alignment; }
    void setAlignment(int32_t v) override { alignment = v; }
    std::optional<int32_t> ContainerWidth() const override { return container; }
    std::vector<iLanguageTarget*> Children() override { return children; }
};

class mLanguageTest : public ::testing::Test {
  protected:
    TempDir dir;
    cIniEngine engine;
    cGlobals globals;
    mLanguage language{engine, globals};

    void UseFile(const std::string& content) {
        globals.LanguageFile = dir.file(u"test.ini");
        dir.Write("test.ini", content);
    }
};

// Messages break lines and fill markers in order. Only exactly "1" in [info]
// means right to left. A right-to-left file is read as Hebrew (Windows-1255),
// a file in UTF-8 as UTF-8, any other as Windows-1252.
TEST_F(mLanguageTest, MessagesTheDirectionAndTheFilesCodePage) {
    UseFile(
        "[msg]\r\n"
        "Two=Found %% of %%.\\nDone\r\n"
        "One=Only %% here\r\n"
        "Slashes=a\\\\nb \\x\r\n"
        "Self=%%|%%\r\n");
    EXPECT_EQ(language.MessageText(u"Two", {u"3", u"7"}), u"Found 3 of 7.\r\nDone");
    EXPECT_EQ(language.MessageText(u"One", {u"a", u"b", u"c"}), u"Only a here");
    EXPECT_EQ(language.MessageText(u"Slashes"), u"a\\\r\nb \\x");
    // The search starts at the beginning each time, so a filled-in marker is
    // taken by the next element.
    EXPECT_EQ(language.MessageText(u"Self", {u"%%", u"x"}), u"x|%%");

    // A file, its direction and its message.
    const std::tuple<const char*, bool, std::u16string> cases[] = {
        {"[info]\r\nalignment = \"1\" \r\n[msg]\r\nHello=\xF9\xEC\xE5\xED\r\n", true,
         u"\u05E9\u05DC\u05D5\u05DD"},
        {"[info]\r\nalignment=1\r\n[msg]\r\nHello=\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D\r\n", true,
         u"\u05E9\u05DC\u05D5\u05DD"},
        {"[info]\r\nalignment=01\r\n[msg]\r\nHello=caf\xE9 \xC3\r\n", false, u"caf\u00E9 \u00C3"},
    };
    for (const auto& [content, rtl, hello] : cases) {
        UseFile(content);
        globals.RightToLeft = !rtl;
        language.ReadDirection();
        EXPECT_EQ(globals.RightToLeft, rtl) << content;
        EXPECT_EQ(language.MessageText(u"Hello"), hello) << content;
    }
}

TEST_F(mLanguageTest, LabelsAFormAndEverythingInItAndMirrorsTaggedControls) {
    UseFile(
        "[objects]\r\n"
        ".fEdit.caption=Editor\r\n"
        ".fEdit.cmdSave.caption=&Save as\r\n"
        ".fEdit.cmdSave.tooltiptext=Save the lyric\r\n"
        ".fEdit.fmrSelect.optAll.caption=All\r\n"
        ".fEdit.noCaption.caption=ignored\r\n"
        ".fEdit.emptyValue.caption=\r\n"
        ".cmdSave.caption=wrong path\r\n");
    FakeControl form(u"fEdit"), save(u"cmdSave"), frame(u"fmrSelect"), all(u"optAll"),
        noCaption(u"noCaption"), empty(u"emptyValue");
    form.children = {&save, &frame, &noCaption, &empty};
    frame.children = {&all};
    noCaption.caption.reset();
    noCaption.tip.reset();

    language.ApplyLanguage(form, u"");
    using Text = std::optional<std::u16string>;
    EXPECT_EQ((std::vector<Text>{form.caption, form.tip, save.caption, save.tip, frame.caption,
                                 all.caption, noCaption.caption, empty.caption}),
              (std::vector<Text>{u"Editor", u"designer tip", u"&Save as", u"Save the lyric",
                                 u"designer", u"All", std::nullopt, u"designer"}));

    // Tagged controls mirror once when the direction differs.
    UseFile("[info]\r\nalignment=1\r\n");
    language.ReadDirection();
    FakeControl ltr(u"lbl", u"LTR", 100, 50, 1000, kAlignLeft);
    FakeControl centred(u"centred", u"LTR", 0, 1000, 1000, kAlignCenter);
    FakeControl untagged(u"plain", u"ltr", 10, 10, 100);
    FakeControl noGeometry(u"menu", u"LTR", {}, {}, {}, kAlignRight);
    FakeControl window(u"fMain");
    window.children = {&ltr, &centred, &untagged, &noGeometry};

    // Applying twice moves nothing back: the tags now match.
    for (int pass = 0; pass < 2; ++pass) {
        language.ApplyLanguage(window, u"");
        EXPECT_EQ(ltr.Geometry(), std::tuple(u"RTL", 850, kAlignRight));
        EXPECT_EQ(centred.Geometry(), std::tuple(u"RTL", 0, kAlignCenter));
        EXPECT_EQ(untagged.Geometry(), std::tuple(u"ltr", 10, std::nullopt));
        EXPECT_EQ(noGeometry.Geometry(), std::tuple(u"RTL", std::nullopt, kAlignLeft));
    }
    // Back to a left-to-right language: the controls return.
    UseFile("[info]\r\nalignment=0\r\n");
    language.ReadDirection();
    language.ApplyLanguage(window, u"");
    EXPECT_EQ(ltr.Geometry(), std::tuple(u"LTR", 100, kAlignLeft));

    // Extreme geometry wraps instead of overflowing.
    FakeControl odd(u"odd", u"RTL", INT32_MAX, INT32_MAX, INT32_MIN);
    language.ApplyLanguage(odd, u"");
    EXPECT_EQ(odd.left, INT32_MIN + 2);
}

TEST(LanguageFiles, ShippedFilesHoldEveryMessageAndTheirDirection) {
    // Every message key that the program shows, as its callers name them.
    const std::u16string keys =
        u"StartErrorNoHandle StartErrorBadHandle AttentionTitle ErrorTitle InvalidMusicTAG "
        u"TovalNotFound TovalNewVersion SaveFailed AllFiles RequestLyricReset "
        u"RequestLyricResetTitle TovalSentOk TovalSentOkTitle TovalSentSqlError "
        u"TovalSentSqlErrorTitle TovalSentFail TovalSentFailTitle TovalEditText TovalEditTime "
        u"TovalEditPreview TovalEditPreviewText TovalEditHelp ";
    const std::filesystem::path folder = std::filesystem::path(TOVAL_SOURCE_DIR) / "lang";
    cIniEngine engine;
    for (const auto& [name, rtl] : {std::pair{"enus.ini", false}, std::pair{"heil.ini", true}}) {
        cGlobals globals;
        globals.LanguageFile = (folder / name).u16string();
        mLanguage language(engine, globals);
        for (size_t at = 0, end; (end = keys.find(u' ', at)) != std::u16string::npos;
             at = end + 1) {
            const std::u16string text = language.MessageText(keys.substr(at, end - at));
            EXPECT_FALSE(text.empty()) << name << " lacks key " << at;
            EXPECT_EQ(text.find(u"%%"), std::u16string::npos) << name << " key " << at;
        }
        EXPECT_FALSE(language.GetValue(u"objects", u".fEdit.cmdSave.caption").empty()) << name;
        language.ReadDirection();
        EXPECT_EQ(globals.RightToLeft, rtl) << name;
    }
}

}  // namespace
}  // namespace toval::test
