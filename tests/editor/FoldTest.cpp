// Blocks of non-empty lines and the folding of repeated blocks into their
// first copy.
#include "EditorFixture.h"

namespace toval::test {
namespace {

using FoldTest = EditorTest;

TEST_F(FoldTest, RepeatedChorusFoldsIntoItsFirstCopy) {
    // verse, chorus, verse2, chorus, chorus: the last chorus goes into the
    // second, which then goes with both into the first.
    editor.Lyric()->setLoad(
        u"[100]<110>v1\r\n[]\r\n"
        u"[200]<210>ch <220>us\r\n[300]<310>end\r\n[]\r\n"
        u"[400]<410>v2\r\n[]\r\n"
        u"[500]<510>ch <520>us\r\n[600]<610>end\r\n[]\r\n"
        u"[700]<710>ch <720>us\r\n[800]<810>end\r\n");
    editor.implodeToval();
    // v1, -, chorus (2 lines), -, v2, and the empty line the deleted copies
    // left behind.
    EXPECT_EQ(Records(),
              u"[100]<110>v1\r\n[]\r\n[200][500][700]<210><510><710>ch <220><520><720>us\r\n"
              u"[300][600][800]<310><610><810>end\r\n[]\r\n[400]<410>v2\r\n[]\r\n");
    // Laid out again on the editor's surface.
    EXPECT_EQ(editor.Lyric()->GetLine(5)->Delta()->Initial()->Y(), 5 * 16);
}

TEST_F(FoldTest, CaseDifferencesStayAndRunsOfEmptyLinesCollapse) {
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"[1]<1>Oh\r\n[]\r\n[2]<2>oh\r\n", u"[1]<1>Oh\r\n[]\r\n[2]<2>oh\r\n"},
        {u"[]\r\n[]\r\n[]a\r\n[]\r\n[] \r\n[]\r\n[]b\r\n[]\r\n[]\r\n",
         u"[]\r\n[]a\r\n[]\r\n[]b\r\n[]\r\n"},
    };
    for (const auto& [before, after] : cases) {
        editor.Lyric()->setLoad(before);
        editor.implodeToval();
        EXPECT_EQ(Records(), after);
    }
}

}  // namespace
}  // namespace toval::test
