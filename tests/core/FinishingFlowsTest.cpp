#include "core/FinishingFlows.h"
#include "core/AISettings.h"
#include "core/MainTasks.h"
#include "tests/core/ModelFixture.h"
#include "tests/support/Awaited.h"

#include <QFile>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

class FinishingFlow : public ModelFixture {
protected:
    FinishingFlow() { startWithFlows(); }

    void configure() {
        model->setAIProvider(AIProvider::custom);
        model->setAIEndpoint(u"http://localhost:1234/v1"_s);
        model->setAIModel(u"some-model"_s);
        model->setContextMode(ContextMode::generic);
        chatSession.answerChat(u"A reply."_s);
    }
    void configurePolish() {
        configure();
        model->setAIPolishEnabled(true);
        chatSession.answerChat(u"One two, three four."_s);
    }
    void configureGenerate() {
        configure();
        model->setAIGenerateEnabled(true);
    }
    void configureEdit() {
        configure();
        model->setAIEnabled(true);
        selection->answer = SelectionSnapshot{.text = u"selected"_s, .appPID = 42};
    }
    void say(const QString& text) {
        dictate(text);
        ASSERT_TRUE(waitUntilSettled());
    }
    /// The key comes up, and the provider takes its time.
    void sayAndWait(const QString& text) {
        chatSession.gate.close();
        dictate(text);
        ASSERT_TRUE(waitUntil([this] { return !chatSession.requests.empty(); }));
    }
    void answer() {
        chatSession.gate.open();
        ASSERT_TRUE(waitUntilSettled());
    }
    void expectEnd(const QString& status, OverlayPhase phase, const std::optional<QString>& error) {
        EXPECT_EQ(model->status(), status);
        EXPECT_EQ(model->overlayPhase(), phase);
        EXPECT_EQ(model->errorMessage(), error);
        EXPECT_EQ(hud.calls.last(), u"hide"_s);
    }
};

TEST_F(FinishingFlow, WithoutAProviderNothingIsAsked) {
    model->setAIPolishEnabled(true);
    model->setAIGenerateEnabled(true);
    model->setAIEnabled(true);
    say(u"generate one two three four"_s);
    EXPECT_TRUE(chatSession.requests.empty());
    EXPECT_EQ(model->lastInsertedText(), u"Generate one two three four"_s);
}

TEST_F(FinishingFlow, PolishDeliversTheModelsText) {
    configurePolish();
    say(u"one two three four"_s);
    EXPECT_EQ(model->lastInsertedText(), u"One two, three four."_s);
    EXPECT_EQ(model->history().first().text, u"One two, three four."_s);
    EXPECT_EQ(model->history().first().raw, u"one two three four"_s);
    EXPECT_EQ(model->aiProcessing(), std::nullopt);
    expectEnd(u"Idle"_s, OverlayPhase::done, std::nullopt);
    EXPECT_TRUE(log.lines().contains(u"ai: polish request: app=org.xfce.mousepad chars=18"_s));
}

TEST_F(FinishingFlow, PolishShowsThePlainTextWhileItWaits) {
    configurePolish();
    sayAndWait(u"one two three four"_s);
    EXPECT_EQ(model->cleanedText(), u"One two three four"_s);
    EXPECT_EQ(model->status(), u"Polishing…"_s);
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::processing);
    EXPECT_EQ(model->aiProcessing(), AIProcessing::polish);
    answer();
}

TEST_F(FinishingFlow, ThreeWordsAreNotPolished) {
    configurePolish();
    say(u"one two three"_s);
    EXPECT_TRUE(chatSession.requests.empty());
    EXPECT_EQ(model->lastInsertedText(), u"One two three"_s);
}

TEST_F(FinishingFlow, ATerminalGetsNoPolish) {
    configurePolish();
    model->setContextMode(ContextMode::terminal);
    say(u"one two three four"_s);
    EXPECT_TRUE(chatSession.requests.empty());
}

TEST_F(FinishingFlow, APolishThatIsRejectedIsDroppedInSilence) {
    configurePolish();
    chatSession.answerChat(u"Sure, here is one two three four."_s);
    say(u"one two three four"_s);
    EXPECT_EQ(model->lastInsertedText(), u"One two three four"_s);
    EXPECT_FALSE(model->hasErrorMessage());
    EXPECT_TRUE(log.lines().contains(u"ai: polish rejected: reason=new words chars=33"_s));
}

TEST_F(FinishingFlow, APolishThatFailsIsDroppedInSilence) {
    configurePolish();
    chatSession.answer = tl::unexpected(HttpFailure{u"No network."_s});
    say(u"one two three four"_s);
    EXPECT_EQ(model->lastInsertedText(), u"One two three four"_s);
    expectEnd(u"Idle"_s, OverlayPhase::done, std::nullopt);
    EXPECT_TRUE(log.lines().contains(u"ai: polish failed: connection chars=11"_s));
}

TEST_F(FinishingFlow, APolishThatIsOvertakenDeliversThePlainTextAtOnceAndOnce) {
    configurePolish();
    sayAndWait(u"one two three four"_s);
    pressHold();
    EXPECT_EQ(model->lastInsertedText(), u"One two three four"_s) << "nobody waits for the provider any more";
    EXPECT_EQ(model->history().size(), 1);
    hear(u"new words"_s, false);
    const auto lines = log.lines().filter(u"polish"_s);
    chatSession.gate.open();
    ASSERT_FALSE(waitUntil([this] { return model->history().size() > 1; }, std::chrono::milliseconds(200)));
    EXPECT_EQ(model->volatileText(), u"new words"_s);
    EXPECT_EQ(model->status(), u"Listening…"_s);
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::listening);
    EXPECT_EQ(log.lines().filter(u"polish"_s), lines);
    EXPECT_TRUE(model->isRecording());
}

TEST_F(FinishingFlow, ATranscriptionThatIsOvertakenDeliversTheRecognisersText) {
    configure();
    model->setAITranscriptionEnabled(true);
    model->setAITranscriptionModel(u"a-listener"_s);
    transcriptionSession.gate.close();
    pressHold();
    audioInput.block(someSound());
    hear(u"our words"_s, true);
    releaseHold();
    ASSERT_TRUE(waitUntil([this] { return !transcriptionSession.requests.empty(); }));
    pressHold();
    EXPECT_EQ(model->lastInsertedText(), u"Our words"_s);
    EXPECT_FALSE(QFile::exists(audioFiles.paths.front()));
    EXPECT_TRUE(model->isRecording());
    EXPECT_FALSE(model->hasErrorMessage());
}

TEST_F(FinishingFlow, GenerateDeliversWhatWasWritten) {
    configureGenerate();
    model->setCaptureDictations(true);
    say(u"Generate: a short note"_s);
    EXPECT_EQ(model->lastInsertedText(), u"A reply."_s);
    EXPECT_EQ(chatSession.userMessage(), u"<instruction>\na short note\n</instruction>"_s);
    EXPECT_EQ(model->history().first().raw, u"a short note"_s);
    EXPECT_EQ(model->aiProcessing(), AIProcessing::generate);
    EXPECT_EQ(model->captureStatus(), u"1 dictation · 1 KB"_s);
    expectEnd(u"Idle"_s, OverlayPhase::done, std::nullopt);
}

TEST_F(FinishingFlow, GenerateTakesTheSelectionForContextAndDoesNotRewriteIt) {
    configureEdit();
    model->setAIGenerateEnabled(true);
    say(u"generate a reply"_s);
    EXPECT_TRUE(chatSession.userMessage().contains(u"<context>\nselected\n</context>"_s));
    EXPECT_FALSE(model->isEditSession());
    EXPECT_TRUE(model->isGenerateSession());
}

TEST_F(FinishingFlow, TheTriggerAloneAsksForMore) {
    configureGenerate();
    model->setAIGenerateTrigger(u"Write please"_s);
    say(u"write"_s);
    EXPECT_TRUE(chatSession.requests.empty());
    expectEnd(u"Generating…"_s, OverlayPhase::error, u"Say what to generate after “Write”."_s);
}

TEST_F(FinishingFlow, GenerateSaysWhyItFailed) {
    configureGenerate();
    chatSession.answer = HttpResponse{401, R"({"error": {"message": "bad key"}})"};
    say(u"generate a note"_s);
    expectEnd(u"Idle"_s, OverlayPhase::error, u"AI request failed: bad key"_s);
    EXPECT_EQ(model->finalizedText(), u"generate a note"_s);
    EXPECT_TRUE(model->history().isEmpty());
}

TEST_F(FinishingFlow, AnAnswerThatIsOvertakenIsKeptButNotInserted) {
    configureGenerate();
    sayAndWait(u"generate a note"_s);
    pressHold();
    chatSession.gate.open();
    ASSERT_TRUE(
        waitUntil([this] { return log.lines().contains(u"ai: discarding stale generate result"_s); }));
    EXPECT_TRUE(model->isRecording());
    EXPECT_EQ(hud.calls.last(), u"show"_s);
    EXPECT_EQ(model->lastInsertedText(), QString());
    EXPECT_EQ(model->history().first().text, u"A reply."_s);
    EXPECT_EQ(model->undeliveredText(), u"A reply."_s);
    EXPECT_EQ(model->errorMessage(),
              u"The answer came after the next dictation had begun, so it was not inserted."_s);
    EXPECT_EQ(model->status(), u"Listening…"_s);
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::listening);
}

TEST_F(FinishingFlow, AKeyThatIsGoneIsNoticedWhenItIsNeeded) {
    configureGenerate();
    model->setAIEndpoint(u"https://ai.example.org/v1"_s);
    model->setAIKeyConfigured(true);
    say(u"generate a note"_s);
    expectEnd(u"Generating…"_s, OverlayPhase::error,
              u"AI isn't configured. Add an endpoint, model and key in Settings."_s);
}

TEST_F(FinishingFlow, EditReplacesTheSelection) {
    configureEdit();
    say(u" make it short "_s);
    EXPECT_EQ(model->lastInsertedText(), u"A reply."_s);
    EXPECT_TRUE(chatSession.userMessage().contains(u"<spoken_instruction>\nmake it short\n"_s));
    EXPECT_EQ(model->history().first().text, u"A reply."_s);
    expectEnd(u"Idle"_s, OverlayPhase::done, std::nullopt);
    EXPECT_TRUE(
        log.lines().contains(u"ai: edit request: app=org.xfce.mousepad selection=8 instruction=13 chars"_s));
}

TEST_F(FinishingFlow, AChangedSelectionKeepsTheResultInHistory) {
    configureEdit();
    selection->stillSelected = false;
    say(u"make it short"_s);
    EXPECT_EQ(model->lastInsertedText(), QString());
    EXPECT_EQ(model->history().first().text, u"A reply."_s);
    EXPECT_EQ(model->cleanedText(), u"A reply."_s);
    expectEnd(u"Rewriting…"_s, OverlayPhase::error,
              u"The selection changed before the rewrite finished — the result is in History."_s);
}

TEST_F(FinishingFlow, AChangedSelectionWithoutHistorySaysNoMore) {
    configureEdit();
    selection->stillSelected = false;
    model->setHistoryEnabled(false);
    say(u"make it short"_s);
    expectEnd(u"Rewriting…"_s, OverlayPhase::error, u"The selection changed before the rewrite finished."_s);
}

TEST_F(FinishingFlow, AnEditWithoutWordsSaysSo) {
    configureEdit();
    say(u" "_s);
    expectEnd(u"Rewriting…"_s, OverlayPhase::error,
              u"No instruction heard. Select text and say what to change."_s);
}

TEST_F(FinishingFlow, ARefusalThatRepeatsWhatItWasAskedIsInNoLogLine) {
    configureGenerate();
    chatSession.answer = HttpResponse{400, R"({"error": {"message": "bad: swordfish"}})"};
    say(u"generate swordfish"_s);
    EXPECT_TRUE(log.lines().contains(u"ai: generate failed: http status=400 chars=14"_s));
    EXPECT_TRUE(log.lines().filter(u"swordfish"_s).isEmpty());
    EXPECT_TRUE(model->errorMessage()->contains(u"swordfish"_s)) << "the user may know";
}

TEST_F(FinishingFlow, ARefusalOfAnyLengthIsShortAndPrintable) {
    configureGenerate();
    chatSession.answer =
        HttpResponse{400, "{\"error\": {\"message\": \"\\u001b[2Jno" + QByteArray(1'000'000, 'x') + "\"}}"};
    say(u"generate a note"_s);
    EXPECT_LE(model->errorMessage()->size(), 230);
    EXPECT_FALSE(model->errorMessage()->contains(QChar(0x1b)));
}

TEST_F(FinishingFlow, AReplyGoesIntoATerminalOnOneLineAndWithoutControls) {
    configureGenerate();
    model->setContextMode(ContextMode::terminal);
    chatSession.answerChat(u"ls\n\u001b[201~rm -r x\r"_s);
    say(u"generate a command"_s);
    EXPECT_EQ(model->lastInsertedText(), u"ls [201~rm -r x"_s);
    EXPECT_EQ(model->history().first().text, u"ls [201~rm -r x"_s);
}

TEST_F(FinishingFlow, ElsewhereAReplyKeepsItsLines) {
    configureGenerate();
    chatSession.answerChat(u"Dear Ada,\r\n\u202egood\u0007bye"_s);
    say(u"generate a letter"_s);
    EXPECT_EQ(model->lastInsertedText(), u"Dear Ada,\ngoodbye"_s);
}

TEST_F(FinishingFlow, AnEditThatFailsSaysWhy) {
    configureEdit();
    chatSession.answer = HttpResponse{500, "<html>"};
    say(u"make it short"_s);
    expectEnd(u"Idle"_s, OverlayPhase::error, u"AI request failed: HTTP 500."_s);
    EXPECT_EQ(model->finalizedText(), u"make it short"_s);
}

TEST_F(FinishingFlow, ARewriteThatIsOvertakenIsKeptButNotInserted) {
    configureEdit();
    sayAndWait(u"make it short"_s);
    pressHold();
    chatSession.gate.open();
    ASSERT_TRUE(waitUntil([this] { return log.lines().contains(u"ai: discarding stale edit result"_s); }));
    EXPECT_EQ(model->lastInsertedText(), QString());
    EXPECT_EQ(model->history().first().text, u"A reply."_s);
    EXPECT_EQ(model->undeliveredText(), u"A reply."_s);
    EXPECT_TRUE(model->isRecording());
}

class ProviderTranscription : public FinishingFlow {
protected:
    ProviderTranscription() {
        configure();
        model->setAITranscriptionEnabled(true);
        model->setAITranscriptionModel(u"a-listener"_s);
        model->setCustomVocabulary({u"Velorin"_s, u"Qt"_s});
        model->setLanguage(Language::german);
        QFile file(path());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("RIFF");
        transcriptionSession.answerTranscription(u"their words"_s);
    }
    QString path() const { return home.filePath(u"recording.wav"_s); }
    FinishingOperations::Transcription transcribe(bool isOvertaken = false) {
        AIService service{chatSession, transcriptionSession, languageModel, userAccount};
        const AISettings settings{*model, secrets};
        MainTasks tasks;
        FinishingFlows flows{*model, {service, settings, languageModel, tasks}};
        const auto dictation = std::make_shared<Dictation>();
        dictation->recording.emplace(path());
        dictation->isOvertaken = isOvertaken;
        auto task = flows.transcribed(dictation, [this](AIProcessing what) { shown = what; });
        EXPECT_TRUE(waitUntil([&] { return task.isReady(); }));
        return awaited(std::move(task));
    }
    std::optional<AIProcessing> shown;
};

TEST_F(ProviderTranscription, GivesTheProvidersWords) {
    const auto theirs = transcribe();
    EXPECT_EQ(theirs.text, u"their words"_s);
    EXPECT_EQ(theirs.problem, std::nullopt);
    EXPECT_EQ(shown, AIProcessing::transcribe);
    const QByteArray body = transcriptionSession.requests.front().body;
    EXPECT_TRUE(body.contains("Velorin, Qt"));
    EXPECT_TRUE(body.contains("\r\n\r\nde\r\n"));
}

TEST_F(ProviderTranscription, SaysWhyThereIsNone) {
    transcriptionSession.answer = HttpResponse{413, R"({"error": "too long"})"};
    const auto theirs = transcribe();
    EXPECT_EQ(theirs.text, std::nullopt);
    EXPECT_EQ(theirs.problem, u"Provider transcription failed; used Apple’s on-device transcript. "
                              "AI request failed: too long"_s);
}

TEST_F(ProviderTranscription, IsNotAskedForAnOvertakenDictation) {
    EXPECT_EQ(transcribe(true).text, std::nullopt);
    EXPECT_TRUE(transcriptionSession.requests.empty());
    EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(FinishingFlow, AProvidersTranscriptReplacesTheRecognisers) {
    configure();
    model->setAITranscriptionEnabled(true);
    model->setAITranscriptionModel(u"a-listener"_s);
    transcriptionSession.answerTranscription(u"their words"_s);
    transcriptionSession.gate.close();
    pressHold();
    audioInput.block(someSound());
    hear(u"our words"_s, true);
    hear(u" more"_s, false);
    releaseHold();
    ASSERT_TRUE(waitUntil([this] { return !transcriptionSession.requests.empty(); }));
    EXPECT_EQ(model->status(), u"Transcribing…"_s);
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::processing);
    transcriptionSession.gate.open();
    ASSERT_TRUE(waitUntilSettled());
    EXPECT_EQ(model->finalizedText(), u"their words"_s);
    EXPECT_EQ(model->volatileText(), QString());
    EXPECT_EQ(model->lastInsertedText(), u"Their words"_s);
    EXPECT_FALSE(QFile::exists(audioFiles.paths.front()));
}

TEST_F(ProviderTranscription, IsNothingForOllama) {
    EXPECT_TRUE(model->providerTranscriptionActive());
    model->setAIProvider(AIProvider::ollama);
    EXPECT_FALSE(model->providerTranscriptionActive());
    EXPECT_FALSE(model->aiReady());
}

TEST_F(FinishingFlow, ATranscriptionThatFailsIsToldWhileTheRecognisersTextIsPolished) {
    configurePolish();
    model->setAITranscriptionEnabled(true);
    model->setAITranscriptionModel(u"a-listener"_s);
    transcriptionSession.answer = tl::unexpected(HttpFailure{u"No network."_s});
    pressHold();
    audioInput.block(someSound());
    hear(u"one two three four"_s, true);
    releaseHold();
    ASSERT_TRUE(waitUntilSettled());
    EXPECT_EQ(transcriptionSession.requests.size(), 1U);
    EXPECT_EQ(model->lastInsertedText(), u"One two, three four."_s);
    expectEnd(u"Idle"_s, OverlayPhase::done,
              u"Provider transcription failed; used Apple’s on-device transcript. No network."_s);
    EXPECT_TRUE(log.lines().contains(u"ai: provider transcription failed: connection chars=11"_s));
    EXPECT_FALSE(QFile::exists(audioFiles.paths.front()));
}

TEST_F(FinishingFlow, AFailureOfTheMachinesOwnModelIsToldInItsWords) {
    configureGenerate();
    model->setAIProvider(AIProvider::apple);
    languageModel.state = LanguageModel::Availability::available;
    languageModel.answer = tl::unexpected(LanguageModelFailure{u"too hot"_s, false});
    say(u"generate a note"_s);
    expectEnd(u"Idle"_s, OverlayPhase::error, u"Apple Intelligence couldn’t complete the request: too hot"_s);
}

TEST_F(FinishingFlow, WithoutTheMachinesOwnModelDictationsArePlain) {
    configureGenerate();
    model->setAIProvider(AIProvider::apple);
    model->setAIPolishEnabled(true);
    say(u"generate one two three four"_s);
    EXPECT_EQ(model->lastInsertedText(), u"Generate one two three four"_s);
    EXPECT_FALSE(model->hasErrorMessage());
}

TEST_F(FinishingFlow, ATriggerWithAColonBehindItAndAWordThatBeginsLikeIt) {
    configureGenerate();
    model->setAIGenerateTrigger(u"Write me something"_s);
    say(u"write: a note."_s);
    EXPECT_EQ(chatSession.userMessage(), u"<instruction>\na note\n</instruction>"_s);
    say(u"writer at work"_s);
    EXPECT_EQ(chatSession.requests.size(), 1U);
    EXPECT_EQ(model->lastInsertedText(), u"Writer at work"_s);
}

TEST_F(FinishingFlow, TheConnectionTestIsALineWhateverHappens) {
    const auto test = [this] { return awaited(model->testAIConnection()); };
    EXPECT_EQ(test(), u"This Mac doesn’t support Apple Intelligence."_s);
    configure();
    chatSession.answerChat(u"OK"_s);
    EXPECT_EQ(test(), u"Connected to some-model: OK"_s);
    chatSession.answer = tl::unexpected(HttpFailure{u"No network."_s});
    EXPECT_EQ(test(), u"No network."_s);
    model->setAIModel(u" "_s);
    EXPECT_EQ(test(), u"Add an endpoint, model, and key first."_s);
}

} // namespace
} // namespace velorin
