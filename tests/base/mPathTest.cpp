#include "base/mPath.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "base/mFile.h"
#include "fakes/FakeShell.h"
#include "fakes/TempDir.h"

namespace toval {
namespace {

namespace fs = std::filesystem;

const std::u16string kSep(1, kPathSeparator);

TEST(mPath, SpecialFolderGetsItsOwnSubfolderMadeOnceOrFallsBackToTheProgramFolder) {
    test::TempDir system, program;
    test::FakeShell shell;
    const std::u16string root = system.path().u16string();
    const std::u16string expected = root + kSep + u"Toval" + kSep;

    shell.specialFolder = root;  // no trailing separator
    EXPECT_EQ(getSpecialFolder(shell, kFolderLocalAppData, program.folder()), expected);
    EXPECT_TRUE(fs::is_directory(system.path() / "Toval"));
    EXPECT_EQ(shell.folderQueries, std::vector<int32_t>{kFolderLocalAppData});

    // Already there, asked with a trailing separator: the same folder, untouched.
    std::ofstream(system.path() / "Toval" / "config.ini") << "kept";
    shell.specialFolder = root + kSep;
    EXPECT_EQ(getSpecialFolder(shell, kFolderAppData, program.folder()), expected);
    EXPECT_TRUE(fs::exists(system.path() / "Toval" / "config.ini"));

    // The system's text ends at its first zero character.
    shell.specialFolder = root + std::u16string(1, u'\0') + u"garbage";
    EXPECT_EQ(getSpecialFolder(shell, kFolderAppData, program.folder()), expected);

    // Failing that, the program folder.
    const std::u16string programFolder = program.path().u16string();  // no trailing separator

    shell.specialFolder = u"";
    EXPECT_EQ(getSpecialFolder(shell, kFolderAppData, programFolder), programFolder + kSep);

    // One level only: a missing parent is not made.
    shell.specialFolder = system.path().u16string() + kSep + u"missing";
    EXPECT_EQ(getSpecialFolder(shell, kFolderAppData, programFolder), programFolder + kSep);
    EXPECT_FALSE(fs::exists(system.path() / "missing"));

    // A file in the way of the folder.
    fs::remove_all(system.path() / "Toval");
    std::ofstream(system.path() / "Toval") << "not a folder";
    shell.specialFolder = system.path().u16string();
    EXPECT_EQ(getSpecialFolder(shell, kFolderAppData, program.folder()), program.folder());
}

}  // namespace
}  // namespace toval
