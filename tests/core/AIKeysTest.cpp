// The keys of the providers, as the model sees them: stored, moved, locked away, deleted behind its back.
#include "tests/core/ModelFixture.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

class AIKeys : public ModelFixture {
protected:
    void startWith(AIProvider provider) {
        startWithFlows();
        model->selectAIProvider(provider);
        chatSession.answerChat(u"OK"_s);
        model->setAIGenerateEnabled(true);
    }
    QByteArray sentAuthorization() {
        dictate(u"generate a note"_s);
        EXPECT_TRUE(waitUntilSettled());
        for (const HttpHeader& header :
             chatSession.requests.empty() ? QList<HttpHeader>() : chatSession.requests.back().headers)
            if (header.name == "Authorization")
                return header.value;
        return {};
    }
};

TEST_F(AIKeys, OfALocalEndpointIsSentAndNeedNotBeThere) {
    startWith(AIProvider::ollama);
    EXPECT_TRUE(model->aiConfigured());
    EXPECT_EQ(sentAuthorization(), QByteArray());
    EXPECT_EQ(chatSession.requests.size(), 1U);
    EXPECT_TRUE(model->saveAIKey(u"sk-1"_s));
    EXPECT_EQ(sentAuthorization(), "Bearer sk-1");
}

TEST_F(AIKeys, OfARemoteEndpointMustBeThere) {
    startWith(AIProvider::openAI);
    EXPECT_FALSE(model->aiConfigured());
    EXPECT_TRUE(model->saveAIKey(u"sk-1"_s));
    EXPECT_TRUE(model->aiConfigured());
    EXPECT_EQ(sentAuthorization(), "Bearer sk-1");
}

TEST_F(AIKeys, OneThatIsDeletedBehindUsIsMissedWhenItIsNeeded) {
    startWith(AIProvider::openAI);
    model->saveAIKey(u"sk-1"_s);
    secrets.items.clear();
    EXPECT_TRUE(model->aiKeyConfigured());
    sentAuthorization();
    EXPECT_TRUE(chatSession.requests.empty());
    EXPECT_EQ(model->errorMessage(), u"AI isn't configured. Add an endpoint, model and key in Settings."_s);
}

TEST_F(AIKeys, AreFoundWhenTheStoreIsUnlocked) {
    startWith(AIProvider::openAI);
    EXPECT_FALSE(model->aiKeyConfigured());
    secrets.items[u"api-key.openAI"_s] = "sk-1";
    secrets.onChanged();
    EXPECT_TRUE(model->aiKeyConfigured());
    EXPECT_EQ(sentAuthorization(), "Bearer sk-1");
}

TEST_F(AIKeys, ThatCannotBeStoredLeaveNone) {
    startWith(AIProvider::openAI);
    EXPECT_TRUE(model->saveAIKey(u"sk-1"_s));
    secrets.canAdd = false;
    EXPECT_FALSE(model->saveAIKey(u"sk-2"_s));
    EXPECT_FALSE(model->aiKeyConfigured());
    EXPECT_TRUE(secrets.items.empty());
}

TEST_F(AIKeys, ThatAreNoTextAreNone) {
    secrets.items[u"api-key.openAI"_s] = "\xff\xfe";
    startWith(AIProvider::openAI);
    EXPECT_FALSE(model->aiKeyConfigured());
}

TEST_F(AIKeys, ALegacyKeyGoesToItsProviderOnce) {
    secrets.items[u"api-key"_s] = "sk-old";
    defaults.values[u"aiProvider"_s] = u"groq"_s;
    startWith(AIProvider::groq);
    EXPECT_EQ(secrets.items, (std::map<QString, QByteArray>{{u"api-key.groq"_s, "sk-old"}}));
    EXPECT_TRUE(model->aiKeyConfigured());
}

TEST_F(AIKeys, ALegacyKeyNeverReplacesTheProvidersOwn) {
    secrets.items = {{u"api-key"_s, "sk-old"}, {u"api-key.openAI"_s, "sk-own"}};
    defaults.values[u"aiProvider"_s] = u"openAI"_s;
    startWith(AIProvider::openAI);
    EXPECT_EQ(secrets.items, (std::map<QString, QByteArray>{{u"api-key.openAI"_s, "sk-own"}}));
}

TEST_F(AIKeys, NobodyIsWokenWhileNoProviderIsSetUp) {
    secrets.items[u"api-key"_s] = "sk-old";
    secrets.sleeps = true;
    start();
    EXPECT_EQ(model->aiProvider(), AIProvider::apple);
    EXPECT_TRUE(secrets.sleeps);
    EXPECT_EQ(secrets.reads, 0);
    model->selectAIProvider(AIProvider::openAI);
    EXPECT_FALSE(secrets.sleeps) << "now somebody wants to know";
    secrets.onChanged();
    EXPECT_EQ(secrets.items, (std::map<QString, QByteArray>{{u"api-key.openAI"_s, "sk-old"}}));
    EXPECT_TRUE(model->aiKeyConfigured());
}

TEST_F(AIKeys, ALocalNameIsOllamasWhateverKeyThereIs) {
    secrets.items[u"api-key"_s] = "sk-old";
    defaults.values[u"aiEndpoint"_s] = u"http://box.LOCAL:1/v1"_s;
    start();
    EXPECT_EQ(model->aiProvider(), AIProvider::ollama);
}

TEST_F(AIKeys, ATableWithOneBadRowIsNoTable) {
    EXPECT_EQ(decodeAIProviderConfigs(uR"({"custom":{"endpoint":"e","model":"m"},"groq":{"endpoint":"e"}})"),
              std::nullopt);
}

} // namespace
} // namespace velorin
