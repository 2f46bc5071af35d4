// Two dictations, the second of which begins before the first has been delivered.
#include "tests/core/ModelFixture.h"

#include <QFile>
#include <QThreadPool>

#include <sanitizer/lsan_interface.h>

using namespace Qt::Literals::StringLiterals;
using testing::Combine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Values;

namespace velorin {
namespace {

enum class Trigger { hold, toggle, menu };
/// When the second press comes, in the life of the first dictation.
enum class Moment { closingMicrophone, recognising, endingPending, delivered };
enum class Second { tap, speech };
enum class Kind { plain, polish, edit, generate, transcription };

const QString firstReply = u"A reply to one."_s;

/// The model's own flows over a slow provider and a slow recogniser.
class Overlap : public ModelFixture {
protected:
    void prepare(Kind kind) {
        AppModel& made = startWithFlows();
        keyboard.canType = true;
        made.setAIProvider(AIProvider::custom);
        made.setAIEndpoint(u"http://localhost:1234/v1"_s);
        made.setAIModel(u"some-model"_s);
        made.setContextMode(ContextMode::generic);
        made.setAITranscriptionEnabled(kind == Kind::transcription);
        made.setAITranscriptionModel(u"a-listener"_s);
        made.setAIPolishEnabled(kind == Kind::polish);
        made.setAIGenerateEnabled(kind == Kind::generate);
        made.setAIEnabled(kind == Kind::edit);
        if (kind == Kind::edit)
            selection->answer = SelectionSnapshot{.text = u"selected"_s, .appPID = 42};
        chatSession.isSlow = true;
        transcriptionSession.isSlow = true;
        recognition.isSlow = true;
    }

    void begin(Trigger trigger) { use(trigger, true); }
    void end(Trigger trigger) { use(trigger, false); }
    void use(Trigger trigger, bool isBegin) {
        if (trigger == Trigger::toggle)
            tapToggle();
        else if (trigger == Trigger::menu)
            chooseMenuItem();
        else
            edge(isBegin ? ShortcutEvent::holdActivated : ShortcutEvent::holdDeactivated);
    }

    /// The transcriber of the dictation that listens now.
    std::shared_ptr<FakeTranscriber> speak(const QString& text) {
        const auto transcriber = recognition.transcribers.back();
        transcriber->finalResults = {{text, true}};
        if (audioInput.block)
            audioInput.block(someSound());
        settle();
        return transcriber;
    }
    void recognise(const std::shared_ptr<FakeTranscriber>& transcriber) {
        transcriber->isRecognised.open();
        settle();
    }
    QStringList delivered() const {
        QStringList texts;
        for (const auto& characters : keyboard.typed)
            texts.append(characters.join(QString()));
        return texts;
    }
    QStringList inHistory() const {
        QStringList texts;
        for (const auto& record : model->history())
            texts.prepend(record.text);
        return texts;
    }
    void answerAll() {
        for (auto* session : {&chatSession, &transcriptionSession})
            while (!session->pending.empty())
                session->answerPending(0, session == &chatSession
                                              ? FakeHttpSession::chatAnswer(replyTo(*session))
                                              : HttpResponse{200, R"({"text": "their words"})"});
        letRepliesBeRead();
    }
    static void letRepliesBeRead() {
        for (int round = 0; round < 4; ++round) { // read, then judged, each on another thread
            QThreadPool::globalInstance()->waitForDone();
            settle();
        }
    }
    QString replyTo(const FakeHttpSession& session) const {
        const auto message = session.userMessage(session.pending.front()->request);
        return message.contains("instruction>"_L1) ? firstReply : u"One two, three four."_s;
    }
    /// Nothing is recorded, shown or expected any more.
    void expectRest() {
        EXPECT_FALSE(model->isRecording());
        EXPECT_FALSE(audioInput.isOpen());
        EXPECT_EQ(hud.calls.isEmpty() ? u"hide"_s : hud.calls.last(), u"hide"_s);
        EXPECT_TRUE(model->isSettled());
        for (const auto& path : audioFiles.paths)
            EXPECT_FALSE(QFile::exists(path));
    }
};

class EachOverlap : public Overlap,
                    public testing::WithParamInterface<std::tuple<Trigger, Moment, Second, Kind>> {
protected:
    Trigger trigger = std::get<0>(GetParam());
    Moment moment = std::get<1>(GetParam());
    Second second = std::get<2>(GetParam());
    Kind kind = std::get<3>(GetParam());

    QString firstWords() const {
        return kind == Kind::generate ? u"generate one two three four"_s : u"one two three four"_s;
    }
    bool isInstruction() const { return kind == Kind::edit || kind == Kind::generate; }
    bool isEndingPending() const {
        return !chatSession.pending.empty() || !transcriptionSession.pending.empty();
    }
    /// What the first dictation leaves: a text in its place, or, for an answer that came too late, in the
    /// history alone.
    QString expectedFirst() const {
        if (isInstruction())
            return firstReply;
        if (moment != Moment::delivered)
            return u"One two three four"_s;
        if (kind == Kind::polish)
            return u"One two, three four."_s;
        return kind == Kind::transcription ? u"Their words"_s : u"One two three four"_s;
    }
};

TEST_P(EachOverlap, DeliversEachTextOnceInItsOrder) {
    prepare(kind);
    begin(trigger);
    const auto first = speak(firstWords());
    if (moment == Moment::closingMicrophone)
        audioInput.stopGate.close();
    end(trigger);
    EXPECT_FALSE(model->isRecording());
    if (moment == Moment::endingPending || moment == Moment::delivered)
        recognise(first);
    if (moment == Moment::endingPending && kind != Kind::plain) {
        ASSERT_TRUE(waitUntil([this] { return isEndingPending(); }));
    }
    if (moment == Moment::delivered) {
        if (kind != Kind::plain) {
            ASSERT_TRUE(waitUntil([this] { return isEndingPending(); }));
        }
        answerAll();
    }
    begin(trigger);
    audioInput.stopGate.open();
    settle();
    ASSERT_TRUE(model->isRecording()) << "it listens at once";
    std::shared_ptr<FakeTranscriber> last = recognition.transcribers.back();
    if (second == Second::speech)
        last = speak(u"five six"_s);
    end(trigger);
    recognise(first);
    answerAll();
    recognise(last);
    answerAll();
    ASSERT_TRUE(waitUntil([this] {
        answerAll();
        return model->isSettled();
    }));

    QStringList expected{expectedFirst()};
    const bool isSetAside = isInstruction() && moment != Moment::delivered;
    if (second == Second::speech) {
        const bool isRewritten = kind == Kind::edit; // the same text is selected still
        const bool isTheirs = kind == Kind::transcription;
        expected.append(isRewritten ? firstReply : isTheirs ? u"Their words"_s : u"Five six"_s);
    }
    QStringList kept = inHistory();
    if (isSetAside)
        kept.sort(); // an answer takes the time that it takes
    QStringList expectedKept = expected;
    if (isSetAside) {
        expectedKept.sort();
        expected.removeFirst();
        EXPECT_TRUE(log.lines().filter(u"discarding stale"_s).size() == 1);
    }
    EXPECT_EQ(delivered(), expected);
    EXPECT_EQ(kept, expectedKept);
    expectRest();
}

INSTANTIATE_TEST_SUITE_P(
    Grid, EachOverlap,
    Combine(Values(Trigger::hold, Trigger::toggle, Trigger::menu),
            Values(Moment::closingMicrophone, Moment::recognising, Moment::endingPending, Moment::delivered),
            Values(Second::tap, Second::speech),
            Values(Kind::plain, Kind::polish, Kind::edit, Kind::generate, Kind::transcription)));

TEST_F(Overlap, EachDictationGoesToItsOwnTarget) {
    prepare(Kind::plain);
    begin(Trigger::hold);
    const auto first = speak(u"for the editor"_s);
    end(Trigger::hold);
    workspace.frontmost->processIdentifier = 99;
    workspace.frontmost->localizedName = u"Terminal"_s;
    begin(Trigger::hold);
    const auto second = speak(u"for the terminal"_s);
    recognise(first);
    ASSERT_THAT(delivered(), ElementsAre(u"For the editor"_s));
    EXPECT_EQ(workspace.activated.back().processIdentifier, 42);
    end(Trigger::hold);
    recognise(second);
    EXPECT_EQ(model->history().at(0).appName, u"Terminal"_s);
    EXPECT_EQ(model->history().at(1).appName, u"Mousepad"_s);
    expectRest();
}

TEST_F(Overlap, ALaterOneThatIsRecognisedFirstWaitsForItsTurn) {
    prepare(Kind::plain);
    begin(Trigger::hold);
    const auto first = speak(u"one"_s);
    end(Trigger::hold);
    begin(Trigger::hold);
    const auto second = speak(u"two"_s);
    end(Trigger::hold);
    begin(Trigger::hold);
    const auto third = speak(u"three"_s);
    end(Trigger::hold);
    recognise(third);
    recognise(second);
    EXPECT_THAT(delivered(), IsEmpty());
    recognise(first);
    EXPECT_THAT(delivered(), ElementsAre(u"One"_s, u"Two"_s, u"Three"_s));
    EXPECT_EQ(model->status(), u"Idle"_s);
    expectRest();
}

TEST_F(Overlap, ASecondStopWhileTheLastWordsAreRecognisedDoesNothing) {
    prepare(Kind::plain);
    begin(Trigger::hold);
    const auto first = speak(u"one"_s);
    end(Trigger::hold);
    log.clear();
    model->stop();
    EXPECT_THAT(log.lines(), ElementsAre(u"shortcut: stop ignored: already finishing"_s));
    recognise(first);
    EXPECT_THAT(delivered(), ElementsAre(u"One"_s));
}

TEST_F(Overlap, WhileADictationListensItsOwnWordsAreShown) {
    prepare(Kind::plain);
    begin(Trigger::hold);
    const auto first = speak(u"old"_s);
    end(Trigger::hold);
    begin(Trigger::hold);
    hear(u"new"_s, false);
    recognise(first);
    EXPECT_EQ(model->cleanedText(), u"New"_s);
    EXPECT_EQ(model->status(), u"Listening…"_s);
    EXPECT_EQ(hud.calls.last(), u"show"_s);
}

TEST_F(Overlap, AFailedStartTakesNothingFromTheDictationBeforeIt) {
    prepare(Kind::edit);
    begin(Trigger::hold);
    const auto first = speak(u"make it short"_s);
    end(Trigger::hold);
    audioInput.startError = u"busy"_s;
    begin(Trigger::hold);
    end(Trigger::hold);
    EXPECT_EQ(model->errorMessage(), u"Audio engine failed: busy"_s);
    recognise(first);
    ASSERT_TRUE(waitUntil([this] { return !chatSession.pending.empty(); }));
    EXPECT_TRUE(chatSession.userMessage().contains(u"selected"_s)) << "its selection is its own";
    answerAll();
    EXPECT_THAT(inHistory(), ElementsAre(firstReply));
    expectRest();
}

TEST_F(Overlap, AFailedStartTakesNothingFromTheDictationAfterIt) {
    prepare(Kind::edit);
    audioInput.startGate.close();
    audioInput.startError = u"busy"_s;
    begin(Trigger::hold);
    end(Trigger::hold);
    begin(Trigger::hold);
    audioInput.startGate.open();
    settle();
    EXPECT_FALSE(model->isRecording());
    audioInput.startError.reset();
    end(Trigger::hold);
    begin(Trigger::hold);
    ASSERT_TRUE(model->isRecording());
    EXPECT_TRUE(model->isEditSession());
    EXPECT_TRUE(model->pendingSelection().has_value());
}

TEST_F(Overlap, APressDuringTheLaunchOfATapIsADictationOfItsOwn) {
    prepare(Kind::plain);
    audioInput.startGate.close();
    begin(Trigger::hold);
    end(Trigger::hold);
    begin(Trigger::hold);
    audioInput.startGate.open();
    settle();
    ASSERT_TRUE(model->isRecording());
    EXPECT_EQ(model->shortcutSession().activeMode, RecordingTriggerMode::hold);
    const auto second = speak(u"heard"_s);
    end(Trigger::hold);
    for (const auto& transcriber : recognition.transcribers)
        recognise(transcriber);
    EXPECT_THAT(delivered(), ElementsAre(u"Heard"_s));
    expectRest();
}

TEST_F(Overlap, OfManyTapsDuringALaunchOnlyTheFirstOpensTheMicrophone) {
    prepare(Kind::plain);
    audioInput.startGate.close();
    for (int i = 0; i < 5; ++i) {
        begin(Trigger::hold);
        end(Trigger::hold);
    }
    audioInput.startGate.open();
    settle();
    for (const auto& transcriber : recognition.transcribers)
        recognise(transcriber);
    EXPECT_EQ(audioInput.starts.size(), 1U) << "the others were over before";
    EXPECT_EQ(model->status(), u"Idle"_s);
    expectRest();
}

TEST_F(Overlap, TwoClicksBeforeItListensAreOneDictation) {
    prepare(Kind::plain);
    audioInput.startGate.close();
    begin(Trigger::menu);
    begin(Trigger::menu);
    audioInput.startGate.open();
    settle();
    ASSERT_TRUE(model->isRecording());
    const auto only = speak(u"once"_s);
    end(Trigger::menu);
    recognise(only);
    EXPECT_THAT(delivered(), ElementsAre(u"Once"_s));
    expectRest();
}

TEST_F(Overlap, TheMicrophoneOpensBeforeTheSelectionIsReadWhileAnotherIsFinished) {
    prepare(Kind::edit);
    begin(Trigger::hold);
    speak(u"make it short"_s);
    end(Trigger::hold);
    selection->gate.close();
    begin(Trigger::hold);
    EXPECT_EQ(audioInput.starts.size(), 2U) << "what is said first is heard";
    EXPECT_FALSE(model->isRecording());
    selection->gate.open();
    settle();
    EXPECT_TRUE(model->isRecording());
    EXPECT_TRUE(model->isEditSession());
}

TEST_F(Overlap, APreviewOfTheOverlayEndsWhenADictationBegins) {
    prepare(Kind::plain);
    model->previewOverlay();
    ASSERT_TRUE(model->hasPreviewText());
    begin(Trigger::hold);
    EXPECT_FALSE(model->hasPreviewText());
    clock.advance(std::chrono::seconds(5));
    EXPECT_EQ(hud.calls.last(), u"show"_s) << "and takes its overlay with it no more";
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::listening);
    EXPECT_TRUE(model->recordingStartedAt().has_value());
}

TEST_F(Overlap, NoPreviewBeginsUntilTheLastTextIsDelivered) {
    prepare(Kind::plain);
    begin(Trigger::hold);
    const auto first = speak(u"one"_s);
    end(Trigger::hold);
    model->previewOverlay();
    EXPECT_FALSE(model->hasPreviewText());
    recognise(first);
    model->previewOverlay();
    EXPECT_TRUE(model->hasPreviewText());
}

TEST_F(Overlap, ALockedScreenEndsADictationAndGetsNothingOfIt) {
    prepare(Kind::plain);
    begin(Trigger::toggle);
    const auto first = speak(u"for nobody else"_s);
    sessionWatch.set(true);
    settle();
    EXPECT_FALSE(audioInput.isOpen()) << "nobody listens to an empty room";
    recognise(first);
    sessionWatch.set(false);
    EXPECT_THAT(delivered(), IsEmpty());
    EXPECT_THAT(inHistory(), ElementsAre(u"For nobody else"_s));
    EXPECT_EQ(model->undeliveredText(), u"For nobody else"_s);
    EXPECT_EQ(model->errorMessage(), u"The screen was locked, so the text was not inserted."_s);
    edge(ShortcutEvent::copyAgainTriggered);
    EXPECT_THAT(delivered(), ElementsAre(u"For nobody else"_s)) << "on the user's word";
    expectRest();
}

TEST_F(Overlap, WhatIsStillBeingFinishedWhenTheScreenIsLockedIsNotDeliveredAfterwards) {
    prepare(Kind::polish);
    begin(Trigger::hold);
    const auto first = speak(u"one two three four"_s);
    end(Trigger::hold);
    recognise(first);
    ASSERT_TRUE(waitUntil([this] { return !chatSession.pending.empty(); }));
    sessionWatch.set(true);
    sessionWatch.set(false);
    answerAll();
    ASSERT_TRUE(waitUntilSettled());
    EXPECT_THAT(delivered(), IsEmpty());
    EXPECT_EQ(model->undeliveredText(), u"One two, three four."_s);
}

TEST_F(Overlap, NothingStartsAndNothingIsCopiedAgainWhileTheScreenIsLocked) {
    prepare(Kind::plain);
    begin(Trigger::hold);
    const auto first = speak(u"before"_s);
    end(Trigger::hold);
    recognise(first);
    sessionWatch.set(true);
    begin(Trigger::hold);
    end(Trigger::hold);
    edge(ShortcutEvent::copyAgainTriggered);
    EXPECT_EQ(audioInput.starts.size(), 1U);
    EXPECT_EQ(delivered().size(), 1);
    sessionWatch.set(false);
    begin(Trigger::hold);
    EXPECT_TRUE(model->isRecording());
}

TEST_F(Overlap, ADictationThatGoesOnForTooLongEndsAsIfStoppedAndIsDelivered) {
    prepare(Kind::plain);
    model->setLongestDictationMinutes(2);
    begin(Trigger::toggle);
    const auto first = speak(u"endless"_s);
    clock.advance(std::chrono::seconds(119));
    EXPECT_TRUE(model->isRecording());
    clock.advance(std::chrono::seconds(1));
    settle();
    EXPECT_FALSE(model->isRecording());
    EXPECT_EQ(model->shortcutSession().activeMode, std::nullopt);
    recognise(first);
    EXPECT_THAT(delivered(), ElementsAre(u"Endless"_s));
    expectRest();
}

TEST_F(Overlap, ARecordingThatIsNotWholeIsNotSent) {
    prepare(Kind::transcription);
    begin(Trigger::hold);
    const auto first = speak(u"one"_s);
    audioFiles.writeSucceeds = false;
    audioInput.block(someSound());
    end(Trigger::hold);
    recognise(first);
    EXPECT_TRUE(transcriptionSession.requests.empty());
    EXPECT_THAT(delivered(), ElementsAre(u"One"_s));
    EXPECT_EQ(model->errorMessage(),
              u"The recording is not whole, so it was not sent; this computer's own transcript was used."_s);
    expectRest();
}

TEST_F(Overlap, RecordingsGoWhenTheProgramEndsInTheMidst) {
    const __lsan::ScopedDisabler whatWaitsAtTheEndIsNeverResumed;
    prepare(Kind::transcription);
    begin(Trigger::hold);
    const auto first = speak(u"one"_s);
    end(Trigger::hold);
    recognise(first);
    ASSERT_TRUE(waitUntil([this] { return !transcriptionSession.pending.empty(); }));
    ASSERT_TRUE(QFile::exists(audioFiles.paths.front()));
    model.reset();
    EXPECT_FALSE(QFile::exists(audioFiles.paths.front()));
}

} // namespace
} // namespace velorin
