// Sending through the real service object, with the test as the server.
#include "EditorFixture.h"
#include "fakes/FakeSocket.h"
#include "net/cTovalSite.h"

namespace toval::test {
namespace {

class SendTest : public EditorTest {
  protected:
    void SetUp() override {
        globals.Settings.conn_Server = u"lyrics.test";
        editor.setSenderFactory([this] {
            auto site = std::make_shared<cTovalSite>(globals);
            site->setSocket(socket);
            site->setTime(netTimer);
            ++made;
            return site;
        });
        StartTiming(u"one two");
        Press(kKeyRight, 1000);
        Press(kKeyRight, 1200);
        editor.cmdNext_Click();
    }
    void Serve(const std::string& body) {
        socket->accept();
        socket->answer("HTTP/1.0 200 OK\r\nContent-Type: text/html\r\n\r\n" + body);
        socket->hangUp();
    }

    std::shared_ptr<FakeSocket> socket = std::make_shared<FakeSocket>();
    std::shared_ptr<FakeTimer> netTimer = std::make_shared<FakeTimer>();
    int made = 0;
};

TEST_F(SendTest, TheServicesAnswerReachesTheUser) {
    editor.cmdInternet_Click();
    ASSERT_EQ(socket->connects.size(), 1u);
    EXPECT_EQ(socket->connects[0].host, "lyrics.test");
    bool cancel = false;
    editor.Form_Unload(cancel);
    EXPECT_TRUE(cancel);
    Serve("<TOVAL>:SUCCESS</TOVAL>");
    EXPECT_NE(socket->sent.find("tvl_insert.php"), std::string::npos);
    EXPECT_NE(socket->sent.find("%3C1200%3E"), std::string::npos);  // the word time
    ASSERT_EQ(view.boxes.size(), 1u);
    EXPECT_EQ(view.boxes[0].text, u"{TovalSentOk}");
    EXPECT_TRUE(editor.Sent());
    EXPECT_FALSE(editor.Sending());

    editor.cmdInternet_Click();
    Serve("<TOVAL>:SQL_ERROR</TOVAL>");
    EXPECT_EQ(view.boxes.back().text, u"{TovalSentSqlError}");
    editor.cmdInternet_Click();
    socket->fail();
    EXPECT_EQ(view.boxes.back().text, u"{TovalSentFail}");
    EXPECT_FALSE(editor.Sending());
    EXPECT_EQ(made, 1);
    editor.Form_Unload(cancel);
    EXPECT_FALSE(cancel);
}

}  // namespace
}  // namespace toval::test
