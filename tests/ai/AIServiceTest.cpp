#include "ai/AIService.h"
#include "tests/support/Awaited.h"
#include "tests/support/FakeHttpSession.h"
#include "tests/support/FakeLanguageModel.h"
#include "tests/support/FakeUserAccount.h"
#include "tests/support/LogCapture.h"

#include <QTemporaryFile>

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

using testing::ElementsAre;

class AnAIService : public testing::Test {
protected:
    AnAIService() { chat.answerChat(u" A reply. "_s); }

    static AIConfiguration configuration() {
        return {.provider = AIProvider::custom,
                .endpoint = u"http://localhost:1234/v1"_s,
                .model = u" some-model "_s,
                .apiKey = u" sk-1 "_s};
    }
    static AIConfiguration onDevice() { return {AIProvider::apple, {}, u"Apple Intelligence"_s, {}}; }

    AIResult polish(const AIConfiguration& with) {
        return awaited(service.polish(u"what is the capital of France"_s, ContextProfile::email, with));
    }
    AIResult transcribe(const QString& path, const AIConfiguration& with = configuration()) {
        return awaited(service.transcribe(path, u" whisper-1 "_s, u" München, "_s, u"de"_s, with));
    }
    static QString words(const AIResult& result) {
        return result ? u"(no failure)"_s : description(result.error());
    }
    static QByteArray header(const HttpRequest& request, const QByteArray& name) {
        for (const auto& entry : request.headers)
            if (entry.name == name)
                return entry.value;
        return {};
    }
    QString recording(const QByteArray& content) {
        EXPECT_TRUE(file.open());
        file.write(content);
        file.flush();
        return file.fileName();
    }

    FakeHttpSession chat;
    FakeHttpSession transcription;
    FakeLanguageModel languageModel;
    FakeUserAccount account;
    AIService service{chat, transcription, languageModel, account};
    QTemporaryFile file;
    LogCapture log;
};

TEST_F(AnAIService, SendsOneRequestWithTheKey) {
    EXPECT_EQ(polish(configuration()), u"A reply."_s);
    ASSERT_EQ(chat.requests.size(), 1U);
    const HttpRequest& request = chat.requests.front();
    EXPECT_EQ(request.url, QUrl(u"http://localhost:1234/v1/chat/completions"_s));
    EXPECT_EQ(header(request, "Content-Type"), "application/json");
    EXPECT_EQ(header(request, "Authorization"), "Bearer sk-1");
    const auto body = QJsonDocument::fromJson(request.body);
    EXPECT_EQ(body[u"model"].toString(), u"some-model"_s);
    EXPECT_EQ(body[u"temperature"].toDouble(), 0.2);
    EXPECT_EQ(body[u"max_tokens"].toInt(), 1600);
    EXPECT_EQ(body[u"messages"][0][u"role"].toString(), u"system"_s);
    EXPECT_EQ(body[u"messages"][1][u"role"].toString(), u"user"_s);
    EXPECT_EQ(chat.userMessage(), u"<transcript>\nwhat is the capital of France\n</transcript>"_s);
    EXPECT_TRUE(chat.systemMessage().endsWith(u"Destination context: Email."_s));
}

TEST_F(AnAIService, ABlankKeyIsNotSent) {
    auto without = configuration();
    without.apiKey = u" \n"_s;
    EXPECT_TRUE(polish(without));
    EXPECT_EQ(chat.requests.front().headers.size(), 1);
}

TEST_F(AnAIService, AKeyGoesOverNoNetworkUnencrypted) {
    AIConfiguration open = configuration();
    for (const auto& address :
         {u"http://ai.example.org/v1"_s, u"http://printer.local:1234"_s, u"http://127.0.0.1.example.org"_s}) {
        open.endpoint = address;
        EXPECT_EQ(words(polish(open)),
                  u"This provider's address is not encrypted, so no key is sent there. Use https."_s);
        EXPECT_EQ(words(transcribe(recording("RIFF"), open)),
                  u"This provider's address is not encrypted, so no key is sent there. Use https."_s);
    }
    EXPECT_TRUE(chat.requests.empty());
    EXPECT_TRUE(transcription.requests.empty());
    for (const auto& address : {u"https://ai.example.org/v1"_s, u"http://localhost"_s,
                                u"http://127.0.0.1:1"_s, u"http://[::1]:11434/v1"_s}) {
        open.endpoint = address;
        EXPECT_TRUE(polish(open)) << address.toStdString();
    }
    open.endpoint = u"http://printer.local:1234"_s;
    open.apiKey.clear();
    EXPECT_TRUE(polish(open)) << "without a key there is nothing to give away";
}

TEST_F(AnAIService, ABadEndpointGoesBeforeAMissingModel) {
    auto bad = configuration();
    bad.model.clear();
    EXPECT_EQ(words(polish(bad)), u"Choose a provider and finish its setup in Settings first."_s);
    bad.endpoint = u"not an address"_s;
    EXPECT_EQ(words(polish(bad)), u"That AI endpoint isn’t a valid URL."_s);
    EXPECT_TRUE(chat.requests.empty());
}

TEST_F(AnAIService, SaysWhatTheServerSaid) {
    chat.answer = HttpResponse{401, R"({"error": {"message": "x"}})"};
    EXPECT_EQ(words(polish(configuration())), u"AI request failed: x"_s);
    chat.answer = HttpResponse{500, "<html>"};
    EXPECT_EQ(words(polish(configuration())), u"AI request failed: HTTP 500."_s);
    chat.answer = HttpResponse{200, "<html>"};
    EXPECT_EQ(words(polish(configuration())), u"The AI returned an empty response."_s);
    chat.answer = tl::unexpected(HttpFailure{u"No network."_s});
    EXPECT_EQ(words(polish(configuration())), u"No network."_s);
    EXPECT_THAT(log.lines(),
                ElementsAre(u"ai: ai request failed: status=401 host=localhost model=some-model"_s,
                            u"ai: ai request failed: status=500 host=localhost model=some-model"_s));
}

TEST_F(AnAIService, LogsHostModelTimeAndLengthOnly) {
    chat.answerChat(u"Re\u0301ply"_s);
    EXPECT_TRUE(polish(configuration()));
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(QRegularExpression(u"^ai: ai request ok: host=localhost model=some-model ms=\\d+ chars=5$"_s)
                    .match(log.lines().first())
                    .hasMatch())
        << log.lines().first().toStdString();
}

TEST_F(AnAIService, UnwrapsWhatWasEdited) {
    chat.answerChat(u"```\nshort\n```"_s);
    EXPECT_EQ(awaited(service.edit(u" long text "_s, u"shorter"_s, ContextProfile::code, configuration())),
              u"short"_s);
    EXPECT_EQ(chat.userMessage(), u"<selected_text>\n long text \n</selected_text>\n\n"
                                  "<spoken_instruction>\nshorter\n</spoken_instruction>"_s);
}

TEST_F(AnAIService, FillsInTheUsersNameWhenItGenerates) {
    chat.answerChat(u"Best,\n[Your Name]\n[Date]"_s);
    EXPECT_EQ(
        awaited(service.generate(u"a note"_s, QString(13000, u'c'), ContextProfile::chat, configuration())),
        u"Best,\nAda Lovelace"_s);
    EXPECT_TRUE(chat.systemMessage().contains(u"The user's name is Ada Lovelace. Never write"_s));
    EXPECT_EQ(chat.userMessage(), u"<instruction>\na note\n</instruction>\n<context>\n%1\n</context>"_s.arg(
                                      QString(12000, u'c')));
}

TEST_F(AnAIService, AReplyOfPlaceholdersComesOutEmpty) {
    chat.answerChat(u"[Date]"_s);
    EXPECT_EQ(awaited(service.generate(u"a note"_s, u" \n"_s, ContextProfile::chat, configuration())),
              QString());
    EXPECT_EQ(chat.userMessage(), u"<instruction>\na note\n</instruction>"_s);
}

TEST_F(AnAIService, TheTestWantsAnOK) {
    chat.answerChat(u"```looks ok to me"_s);
    EXPECT_EQ(awaited(service.test(configuration())), u"```looks ok to me"_s);
    EXPECT_EQ(QJsonDocument::fromJson(chat.requests.front().body)[u"max_tokens"].toInt(), 512);
    chat.answerChat(u"Hello"_s);
    EXPECT_EQ(words(awaited(service.test(configuration()))), u"The AI response couldn’t be read."_s);
}

TEST_F(AnAIService, TestsTheMachinesOwnModelInTheSameWay) {
    languageModel.state = LanguageModel::Availability::available;
    languageModel.answer = u"ok."_s;
    EXPECT_EQ(awaited(service.test(onDevice())), u"ok."_s);
    EXPECT_EQ(languageModel.requests.front().maximumResponseTokens, 512);
    EXPECT_EQ(languageModel.requests.front().prompt, u"Reply with OK."_s);
}

TEST_F(AnAIService, CutsTheContextOfTheMachinesOwnModelShorter) {
    languageModel.state = LanguageModel::Availability::available;
    languageModel.answer = u"A note."_s;
    // Characters as people count them: each of these is two code units.
    EXPECT_TRUE(awaited(
        service.generate(u"a note"_s, u"e\u0301"_s.repeated(7000), ContextProfile::chat, onDevice())));
    EXPECT_EQ(languageModel.requests.front().prompt.count(u"e\u0301"_s), 6000);
}

TEST_F(AnAIService, WithoutANameThePromptSaysSo) {
    account.name.clear();
    EXPECT_TRUE(awaited(service.generate(u"a note"_s, {}, ContextProfile::chat, configuration())));
    EXPECT_TRUE(chat.systemMessage().contains(u"\nThe user's name is . Never write placeholders"_s));
}

TEST_F(AnAIService, SendsARecordingAsAForm) {
    transcription.answerTranscription(u" Grüße "_s);
    EXPECT_EQ(transcribe(recording("RIFF")), u"Grüße"_s);
    ASSERT_EQ(transcription.requests.size(), 1U);
    const HttpRequest& request = transcription.requests.front();
    EXPECT_EQ(request.url, QUrl(u"http://localhost:1234/v1/audio/transcriptions"_s));
    const QByteArray type = header(request, "Content-Type");
    ASSERT_TRUE(type.startsWith("multipart/form-data; boundary=Velorin-"));
    EXPECT_EQ(request.body.indexOf(type.mid(type.indexOf("Velorin-"))), 2);
    EXPECT_TRUE(request.body.contains("name=\"prompt\"\r\n\r\nMünchen,\r\n"));
    EXPECT_TRUE(request.body.contains("RIFF"));
    EXPECT_TRUE(QFile::exists(file.fileName()));
}

TEST_F(AnAIService, SaysWhatIsWrongWithATranscription) {
    const QString path = recording("RIFF");
    transcription.answer = HttpResponse{200, "{}"};
    EXPECT_EQ(words(transcribe(path)), u"The AI response couldn’t be read."_s);
    transcription.answerTranscription(u" "_s);
    EXPECT_EQ(words(transcribe(path)), u"The AI returned an empty response."_s);
    transcription.answer = HttpResponse{413, R"({"message": "too long"})"};
    EXPECT_EQ(words(transcribe(path)), u"AI request failed: too long"_s);
    EXPECT_THAT(log.lines(),
                ElementsAre(u"ai: transcription failed: status=413 host=localhost model=whisper-1"_s));
}

TEST_F(AnAIService, SendsNoRecordingThatIsNotThere) {
    EXPECT_EQ(words(transcribe(u"/nowhere/a.wav"_s)), u"The recorded audio couldn’t be read."_s);
    EXPECT_EQ(words(transcribe(recording(QByteArray()))), u"The recorded audio couldn’t be read."_s);
    auto local = configuration();
    local.provider = AIProvider::ollama;
    EXPECT_EQ(words(transcribe(u"/nowhere/a.wav"_s, local)),
              u"Choose a provider and finish its setup in Settings first."_s);
    EXPECT_TRUE(transcription.requests.empty());
}

TEST_F(AnAIService, TheMachinesOwnModelSaysWhyItCannotBeUsed) {
    EXPECT_EQ(words(polish(onDevice())), u"This Mac doesn’t support Apple Intelligence."_s);
    EXPECT_TRUE(languageModel.requests.empty());
}

TEST_F(AnAIService, TheMachinesOwnModelIsAskedAfresh) {
    languageModel.state = LanguageModel::Availability::available;
    languageModel.answer = u" Fine. "_s;
    EXPECT_EQ(polish(onDevice()), u"Fine."_s);
    ASSERT_EQ(languageModel.requests.size(), 1U);
    EXPECT_EQ(languageModel.requests.front().maximumResponseTokens, 1600);
    EXPECT_EQ(languageModel.requests.front().temperature, 0.2);
    EXPECT_TRUE(chat.requests.empty());
}

TEST_F(AnAIService, TellsTheFailuresOfTheMachinesOwnModelApart) {
    languageModel.state = LanguageModel::Availability::available;
    languageModel.answer = u" "_s;
    EXPECT_EQ(words(polish(onDevice())), u"The AI returned an empty response."_s);
    languageModel.answer = tl::unexpected(LanguageModelFailure{u"gone"_s, true});
    EXPECT_TRUE(std::holds_alternative<RequestCancelled>(polish(onDevice()).error()));
    EXPECT_TRUE(log.lines().isEmpty());
    languageModel.answer = tl::unexpected(LanguageModelFailure{u"too hot"_s, false});
    EXPECT_EQ(words(polish(onDevice())), u"Apple Intelligence couldn’t complete the request: too hot"_s);
    EXPECT_THAT(log.lines(), ElementsAre(u"ai: apple intelligence failed: too hot"_s));
}

TEST_F(AnAIService, HasASentenceForEachStateOfTheMachinesOwnModel) {
    QStringList sentences;
    for (const auto state :
         {LanguageModel::Availability::available, LanguageModel::Availability::notEnabled,
          LanguageModel::Availability::modelNotReady, LanguageModel::Availability::unknown}) {
        languageModel.state = state;
        sentences.append(service.appleIntelligenceAvailabilityDescription());
    }
    EXPECT_THAT(sentences,
                ElementsAre(u"Apple Intelligence is ready on this Mac."_s,
                            u"Turn on Apple Intelligence in System Settings > Apple Intelligence & Siri."_s,
                            u"The on-device model isn’t ready yet. It may still be downloading."_s,
                            u"Apple Intelligence isn’t available right now."_s));
}

} // namespace
} // namespace velorin
