// What a user reads when a provider misbehaves, over a real connection.
#include "ai/AIService.h"
#include "platform/linux/desktop/SystemClock.h"
#include "platform/linux/network/QtHttpSession.h"
#include "tests/support/Awaited.h"
#include "tests/support/FakeLanguageModel.h"
#include "tests/support/FakeUserAccount.h"
#include "tests/support/LogCapture.h"
#include "tests/support/provider/TestProvider.h"

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace velorin {
namespace {

struct Misbehaviour {
    QStringView mode;
    QStringView words;
    QStringView kind = u"http";
};

const Misbehaviour misbehaviours[] = {
    {u"status-401-json", u"AI request failed: The server says no."},
    {u"status-403-empty", u"AI request failed: HTTP 403."},
    {u"status-404-html", u"AI request failed: HTTP 404."},
    {u"status-429-json", u"AI request failed: The server says no."},
    {u"status-500-json", u"AI request failed: The server says no."},
    {u"status-500-html", u"AI request failed: HTTP 500."},
    {u"status-304-empty", u"AI request failed: HTTP 304."},
    {u"html", u"The AI returned an empty response."},
    {u"empty", u"The AI returned an empty response."},
    {u"badutf8", u"The AI returned an empty response."},
    {u"tooshort", u"The AI returned an empty response."},
    {u"bomb", u"The AI returned an empty response."},
    {u"toolong", u"Connection closed"},
    {u"reset", u"Connection closed"},
    {u"resetatonce", u"Connection closed"},
    {u"nothttp", u"Connection closed"},
    {u"huge", u"The server’s reply is too large."},
    {u"hugechunked", u"The server’s reply is too large."},
    {u"drip", u"The request timed out."},
    {u"hang", u"The request timed out."},
    {u"redirect-host", u"AI request failed: HTTP 307."},
    {u"redirect-found", u"AI request failed: HTTP 302."},
    {u"redirect-http", u"AI request failed: HTTP 307.", u"good"},
    {u"ok", u"SSL handshake failed: The certificate has expired", u"expired"},
    {u"ok", u"SSL handshake failed: The host name did not match any of the valid hosts for this certificate",
     u"wrong"},
};

TEST(MisbehavingProvider, LeadsToASentenceEachTime) {
    const TestProvider provider;
    SystemClock clock;
    QtHttpSession session(clock, {2s, 3s, 16LL << 20}, provider.trust());
    FakeLanguageModel languageModel;
    FakeUserAccount account;
    AIService service(session, session, languageModel, account);
    const LogCapture log;
    for (const auto& [mode, words, kind] : misbehaviours) {
        const AIConfiguration configuration{
            AIProvider::custom, provider.endpoint(mode.toString(), kind.toString()), u"m"_s, u"sk-1"_s};
        const auto reply = awaited(service.test(configuration));
        EXPECT_EQ((reply ? *reply : description(reply.error())).toStdString(), words.toString().toStdString())
            << mode.toString().toStdString();
    }
    EXPECT_EQ(log.lines(u"ai"_s).filter(u"sk-1"_s), QStringList());
    EXPECT_TRUE(
        awaited(service.test({AIProvider::custom, provider.endpoint(u"ok"_s, u"good"_s), u"m"_s, {}})));
}

} // namespace
} // namespace velorin
