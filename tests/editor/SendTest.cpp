// Sending through the real service object, with the test as the server.
#include <functional>
#include <tuple>

#include "EditorFixture.h"
#include "fakes/FakeSocket.h"
#include "net/cTovalSite.h"

namespace toval::test {
namespace {

using Boxes = std::vector<FakeEditorView::Box>;

class SendTest : public EditorTest {
  protected:
    void SetUp() override {
        globals.Settings.conn_Server = u"lyrics.test";
        editor.setSenderFactory([this] {
            site = std::make_shared<cTovalSite>(globals);
            site->setSocket(socket);
            site->setTime(netTimer);
            ++made;
            return site;
        });
        StartTiming(u"one two");
        PressRight({1000, 1200});
        editor.cmdNext_Click();
    }
    void Serve(const std::string& body) {
        socket->accept();
        socket->answer("HTTP/1.0 200 OK\r\nContent-Type: text/html\r\n\r\n" + body);
        socket->hangUp();
    }

    std::shared_ptr<cTovalSite> site;
    std::shared_ptr<FakeSocket> socket = std::make_shared<FakeSocket>();
    std::shared_ptr<FakeTimer> netTimer = std::make_shared<FakeTimer>();
    int made = 0;
};

TEST_F(SendTest, TheServicesAnswerReachesTheUserAndHoldsTheWindowOpenMeanwhile) {
    const std::tuple<std::function<void()>, std::u16string, std::u16string, int32_t> cases[] = {
        {[&] { Serve("<TOVAL>:SUCCESS</TOVAL>"); }, u"{TovalSentOk}", u"{TovalSentOkTitle}",
         kMbIconInformation},
        {[&] { Serve("<TOVAL>:SQL_ERROR</TOVAL>"); }, u"{TovalSentSqlError}",
         u"{TovalSentSqlErrorTitle}", kMbIconError},
        {[&] { socket->fail(); }, u"{TovalSentFail}", u"{TovalSentFailTitle}", kMbIconError},
    };
    for (const auto& [answer, text, title, flags] : cases) {
        editor.cmdInternet_Click();
        EXPECT_FALSE(view.enabled[eEditorControl::cmdInternet]);
        bool cancel = false;
        editor.Form_Unload(cancel);  // refused while the answer is awaited
        EXPECT_TRUE(cancel);
        site->onToval(1, -12345);  // a stale answer is ignored
        answer();
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
