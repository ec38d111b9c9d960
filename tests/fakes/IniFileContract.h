// What every IniFile must do, whoever implements it (the portable engine, the
// Windows adapter). Instantiate with a maker type that has a static
// std::unique_ptr<IniFile> Make():
//   INSTANTIATE_TYPED_TEST_SUITE_P(Engine, IniFileContract, ::testing::Types<Maker>);
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "fakes/TempDir.h"
#include "platform/IniFile.h"

namespace toval::test {

template <class Maker>
class IniFileContract : public ::testing::Test {
  protected:
    std::unique_ptr<IniFile> ini = Maker::Make();
    TempDir dir;
    std::u16string file = dir.file(u"config.ini");

    void Put(const std::string& bytes) { dir.Write("config.ini", bytes); }
    std::string Read(const std::string& section, const std::string& key,
                     const std::string& def = "DEF", size_t size = 1024) {
        return ini->ReadString(file, section, key, def, size);
    }
};

TYPED_TEST_SUITE_P(IniFileContract);

TYPED_TEST_P(IniFileContract, MissingValuesGiveTheDefaultAndTheBufferCutsLongOnes) {
    EXPECT_EQ(this->Read("toval", "key"), "DEF");
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(this->file)));

    this->Put("[other]\r\nkey=1\r\n");
    EXPECT_EQ(this->Read("toval", "key"), "DEF");
    // The default loses its trailing blanks, as with the system call.
    EXPECT_EQ(this->Read("other", "missing", " d  "), " d");
    EXPECT_EQ(this->Read("other", "missing", "defaults", 4), "def");

    this->Put("[toval]\r\nlong=" + std::string(3000, 'v') + "\r\nshort=abc\r\n");
    EXPECT_EQ(this->Read("toval", "long"), std::string(1023, 'v'));
    EXPECT_EQ(this->Read("toval", "short", "", 1), "");
}

TYPED_TEST_P(IniFileContract, NamesIgnoreCaseAndBlanksValuesLoseBlanksAndOneQuotePair) {
    this->Put(
        "[ToVal]\r\n"
        "  Font_Name =  Arial Black  \r\n"
        "quoted=\"  spaced  \"\r\n"
        "twice=\"\"a\"\"\r\n"
        "unpaired=\"abc\r\n"
        "empty=\r\n"
        ";hidden=1\r\n"
        "first=1\r\n"
        "first=2\r\n"
        "noequals\r\n"
        "=nameless\r\n"
        "[next]\r\n"
        "font_name=other\r\n"
        "[broken\r\n"
        "inNext=1\r\n"
        "[toval]\r\n"
        "again=1\r\n");
    EXPECT_EQ(this->Read("TOVAL", "font_name"), "Arial Black");
    EXPECT_EQ(this->Read("toval", "quoted"), "  spaced  ");
    EXPECT_EQ(this->Read("toval", "twice"), "\"a\"");
    EXPECT_EQ(this->Read("toval", "unpaired"), "\"abc");
    EXPECT_EQ(this->Read("toval", "empty"), "");
    EXPECT_EQ(this->Read("toval", "hidden"), "DEF");
    EXPECT_EQ(this->Read("toval", "first"), "1");
    EXPECT_EQ(this->Read("next", "font_name"), "other");
    EXPECT_EQ(this->Read("toval", "noequals"), "DEF");
    EXPECT_EQ(this->Read("toval", ""), "nameless");
    // "[broken" opens no section; only the first section of a name counts.
    EXPECT_EQ(this->Read("next", "inNext"), "1");
    EXPECT_EQ(this->Read("broken", "inNext"), "DEF");
    EXPECT_EQ(this->Read("toval", "again"), "DEF");
}

TYPED_TEST_P(IniFileContract, WritingCreatesOrReplacesOneValueAndKeepsEveryOtherKey) {
    ASSERT_TRUE(this->ini->WriteString(this->file, "toval", "window_mode", "2"));
    EXPECT_EQ(this->dir.Read("config.ini"), "[toval]\r\nwindow_mode=2\r\n");

    const std::string before =
        "; settings\r\n"
        "[toval]\r\n"
        "font_Name = Arial\r\n"
        "window_mode=1\r\n"
        "\r\n"
        "[other]\r\n"
        "window_mode=9\r\n";
    this->Put(before);
    ASSERT_TRUE(this->ini->WriteString(this->file, "TOVAL", "WINDOW_MODE", "2"));
    EXPECT_EQ(this->Read("toval", "window_mode"), "2");
    EXPECT_EQ(this->Read("other", "window_mode"), "9");
    EXPECT_EQ(this->Read("toval", "font_name"), "Arial");

    // A new key lands in its own section, not in the one that follows.
    ASSERT_TRUE(this->ini->WriteString(this->file, "toval", "proxy_Host", "proxy.lan"));
    EXPECT_EQ(this->Read("toval", "proxy_host"), "proxy.lan");
    EXPECT_EQ(this->Read("other", "proxy_host"), "DEF");
}

TYPED_TEST_P(IniFileContract, AnUnwritableFileIsReportedAndChangesNothing) {
    const std::u16string nowhere = this->dir.file(u"missing-folder") + u"/config.ini";
    EXPECT_FALSE(this->ini->WriteString(nowhere, "toval", "k", "v"));
    EXPECT_EQ(this->ini->ReadString(nowhere, "toval", "k", "d", 1024), "d");

    // A folder in the file's place.
    std::filesystem::create_directory(std::filesystem::path(this->file));
    EXPECT_FALSE(this->ini->WriteString(this->file, "toval", "k", "v"));
    EXPECT_EQ(this->Read("toval", "k"), "DEF");
    EXPECT_TRUE(std::filesystem::is_directory(std::filesystem::path(this->file)));
}

REGISTER_TYPED_TEST_SUITE_P(IniFileContract, MissingValuesGiveTheDefaultAndTheBufferCutsLongOnes,
                            NamesIgnoreCaseAndBlanksValuesLoseBlanksAndOneQuotePair,
                            WritingCreatesOrReplacesOneValueAndKeepsEveryOtherKey,
                            AnUnwritableFileIsReportedAndChangesNothing);

}  // namespace toval::test
