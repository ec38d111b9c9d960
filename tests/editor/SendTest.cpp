// Sending through the real service object, with the test as the server.
#include <tuple>

#include "EditorFixture.h"
#include "fakes/FakeSocket.h"
#include "net/cTovalSite.h"

namespace toval::test {
namespace {

using Boxes = std::vector<FakeEditorView::Box>;
using SendTest = EditorTest;

TEST_F(SendTest, TheServicesAnswerReachesTheUserAndHoldsTheWindowOpenMeanwhile) {
    globals.Settings.conn_Server = u"lyrics.test";
    const auto socket = std::make_shared<FakeSocket>();
    std::shared_ptr<cTovalSite> site;
    int made = 0;
    editor.setSenderFactory([&] {
        site = std::make_shared<cTovalSite>(globals);
        site->setSocket(socket);
        site->setTime(std::make_shared<FakeTimer>());
        ++made;
        return site;
    });
    StartTiming(u"one two");
    PressRight({1000, 1200});
    editor.cmdNext_Click();

    // The service's answer (none: the connection fails) and what the user is told.
    const std::tuple<std::string, std::u16string, std::u16string, int32_t> cases[] = {
        {":SUCCESS", u"{TovalSentOk}", u"{TovalSentOkTitle}", kMbIconInformation},
        {":SQL_ERROR", u"{TovalSentSqlError}", u"{TovalSentSqlErrorTitle}", kMbIconError},
        {"", u"{TovalSentFail}", u"{TovalSentFailTitle}", kMbIconError},
    };
    for (const auto& [answer, text, title, flags] : cases) {
        editor.cmdInternet_Click();
        EXPECT_FALSE(view.enabled[eEditorControl::cmdInternet]);
        bool cancel = false;
        editor.Form_Unload(cancel);  // refused while the answer is awaited
        EXPECT_TRUE(cancel);
        site->onToval(1, -12345);  // a stale answer is ignored
        if (answer.empty()) {
            socket->fail();
        } else {
            socket->accept();
            socket->answer("HTTP/1.0 200 OK\r\n\r\n<TOVAL>" + answer + "</TOVAL>");
            socket->hangUp();
        }
        EXPECT_EQ(view.boxes, (Boxes{{text, title, flags}}));
        view.boxes.clear();
        EXPECT_TRUE(view.enabled[eEditorControl::cmdInternet]);
        EXPECT_EQ(std::pair(editor.Sending(), editor.Sent()), std::pair(false, true));
    }
    EXPECT_NE(socket->sent.find("%3C1200%3E"), std::string::npos);  // the timed lyric
    EXPECT_EQ(made, 1);                                             // made on first use only
}

}  // namespace
}  // namespace toval::test
