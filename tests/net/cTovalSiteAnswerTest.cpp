#include <gtest/gtest.h>

#include "net/cTovalSite.h"

namespace toval {
namespace {

TEST(cTovalSiteAnswer, SortsEnvelopeBodiesIntoResultCodesAndSaysWhyOnFailure) {
    using C = cNetError::Category;
    const std::string noEnvelope = "the service's answer holds no <TOVAL> envelope";
    const struct {
        const char* data;
        int16_t result;
        cNetError error;
    } cases[] = {
        {"<TOVAL>:SUCCESS</TOVAL>", cTovalSite::kSuccess, {}},
        {"<TOVAL>:SQL_ERROR</TOVAL>",
         cTovalSite::kSqlError,
         {C::kService, "the service's database failed (':SQL_ERROR')"}},
        {"<TOVAL>:SQL_CONNECTION_ERROR</TOVAL>",
         cTovalSite::kSqlError,
         {C::kService, "the service's database failed (':SQL_CONNECTION_ERROR')"}},
        {"<TOVAL>:NOUPDATES</TOVAL>", cTovalSite::kNoUpdates, {}},
        {"<TOVAL>:NOTFOUND</TOVAL>", cTovalSite::kNotFound, {}},
        {"<TOVAL>:UPDATESERVER:lyrics.example</TOVAL>", cTovalSite::kNotFound, {}},
        {"<TOVAL>[1000]Hello</TOVAL>", cTovalSite::kLyric, {}},
        {"<html><TOVAL>x</TOVAL></html>", cTovalSite::kLyric, {}},
        // Codes are compared whole and case-sensitively.
        {"<TOVAL>:notfound</TOVAL>",
         cTovalSite::kFailure,
         {C::kService, "the service answered ':notfound'"}},
        {"<TOVAL>:NOTFOUND </TOVAL>",
         cTovalSite::kFailure,
         {C::kService, "the service answered ':NOTFOUND '"}},
        {"<TOVAL>:SUCCESSFUL</TOVAL>",
         cTovalSite::kFailure,
         {C::kService, "the service answered ':SUCCESSFUL'"}},
        {"<TOVAL>:UPDATESERVER:</TOVAL>",
         cTovalSite::kFailure,
         {C::kService, "the service answered ':UPDATESERVER:'"}},
        {"<TOVAL>:\x1b\n</TOVAL>",
         cTovalSite::kFailure,
         {C::kService,
          "the service answered ':?"
          "?'"}},
        // Broken envelopes.
        {"", cTovalSite::kFailure, {C::kBadAnswer, noEnvelope}},
        {"<TOVAL></TOVAL>", cTovalSite::kFailure, {C::kBadAnswer, "the service's answer is empty"}},
        {"<TOVAL>:SUCCESS", cTovalSite::kFailure, {C::kBadAnswer, noEnvelope}},
        {":SUCCESS</TOVAL>", cTovalSite::kFailure, {C::kBadAnswer, noEnvelope}},
        {"</TOVAL><TOVAL>:SUCCESS", cTovalSite::kFailure, {C::kBadAnswer, noEnvelope}},
        {"<toval>:SUCCESS</toval>", cTovalSite::kFailure, {C::kBadAnswer, noEnvelope}},
    };
    for (const auto& c : cases) {
        const auto answer = cTovalSite::ReadAnswer(c.data);
        EXPECT_EQ(answer.result, c.result) << c.data;
        EXPECT_EQ(answer.error, c.error) << c.data;
    }
}

TEST(cTovalSiteAnswer, TakesTheFirstEnvelopeAndTheServerBehindTheMovePrefix) {
    auto a = cTovalSite::ReadAnswer("<TOVAL>one</TOVAL><TOVAL>two</TOVAL>");
    EXPECT_EQ(a.body, "one");
    // The close marker is searched behind the open one.
    a = cTovalSite::ReadAnswer("</TOVAL><TOVAL>body</TOVAL>");
    EXPECT_EQ(a.body, "body");
    EXPECT_EQ(a.result, cTovalSite::kLyric);

    a = cTovalSite::ReadAnswer("<TOVAL>:UPDATESERVER:new.host:8080</TOVAL>");
    EXPECT_EQ(a.newServer, "new.host:8080");
    a = cTovalSite::ReadAnswer("<TOVAL>:NOTFOUND</TOVAL>");
    EXPECT_EQ(a.newServer, "");

    // A lyric body keeps its bytes as they came (decoding is the caller's).
    a = cTovalSite::ReadAnswer("<TOVAL>[00:01.00]\xC3\xA9\r\n</TOVAL>");
    EXPECT_EQ(a.body, "[00:01.00]\xC3\xA9\r\n");
}

TEST(cTovalSiteAnswer, ReadsTheAnnouncedVersionOnlyWhenNumeric) {
    const struct {
        const char* data;
        bool has;
        int32_t version;
    } cases[] = {
        {"<LLV>1030002</LLV><TOVAL>:NOTFOUND</TOVAL>", true, 1030002},
        {"<TOVAL>:NOTFOUND</TOVAL><LLV> 1030005 </LLV>", true, 1030005},
        {"<LLV>1.5</LLV>", true, 2},
        {"<LLV>2.5</LLV>", true, 2},
        {"<LLV>-7</LLV>", true, -7},
        {"<LLV>1.3.2</LLV>", false, 0},
        {"<LLV>new</LLV>", false, 0},
        {"<LLV></LLV>", false, 0},
        {"<LLV>1030002", false, 0},
        {"</LLV>1030002<LLV>", false, 0},
        {"<LLV>99999999999</LLV>", false, 0},
        {"<LLV>1e400</LLV>", false, 0},
    };
    for (const auto& c : cases) {
        const auto a = cTovalSite::ReadAnswer(c.data);
        EXPECT_EQ(a.hasVersion, c.has) << c.data;
        if (c.has) {
            EXPECT_EQ(a.version, c.version) << c.data;
        }
    }
    // The version is read even when the envelope is broken.
    EXPECT_TRUE(cTovalSite::ReadAnswer("<LLV>5</LLV><TOVAL>").hasVersion);
}

}  // namespace
}  // namespace toval
