// Random walks over the session: presses, releases, clicks, replies and errors in any order, with a slow
// recogniser and a slow provider. Whatever happens, each utterance is delivered exactly once, in order, or
// the user is told; and at rest nothing listens, shows or waits.
//
// VELORIN_WALK_STEPS and VELORIN_WALK_SEED make a longer walk, or another one.
#include "tests/core/ModelFixture.h"

#include <QRegularExpression>

#include <map>
#include <random>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

int number(const char* variable, int otherwise) {
    bool isNumber = false;
    const int given = qEnvironmentVariableIntValue(variable, &isNumber);
    return isNumber ? given : otherwise;
}

/// The number of the utterance that a text speaks of; 0 for none.
int utteranceIn(const QString& text) {
    static const QRegularExpression pattern(u"number(\\d+)x"_s, QRegularExpression::CaseInsensitiveOption);
    const auto match = pattern.match(text);
    return match.hasMatch() ? match.captured(1).toInt() : 0;
}

class Walk : public ModelDesk {
public:
    explicit Walk(unsigned seed) : random_(seed) {
        AppModel& made = startWithFlows();
        keyboard.canType = true;
        made.setAIProvider(AIProvider::custom);
        made.setAIEndpoint(u"http://localhost:1234/v1"_s);
        made.setAIModel(u"some-model"_s);
        made.setAITranscriptionModel(u"a-listener"_s);
        made.setContextMode(ContextMode::generic);
        chatSession.isSlow = transcriptionSession.isSlow = recognition.isSlow = true;
        for (const auto signal : {&AppState::errorMessageChanged, &AppState::undeliveredTextChanged})
            QObject::connect(&made, signal, &made, [this] {
                if (model->hasErrorMessage())
                    told_ << model->errorMessageText() << model->undeliveredText();
            });
    }

    void step() {
        switch (pick(20)) {
        case 0:
        case 1:
        case 2:
            edgeOfHold();
            break;
        case 3:
            tapToggle();
            break;
        case 4:
            edge(ShortcutEvent::toggleActivated);
            break;
        case 5:
            chooseMenuItem();
            break;
        case 6:
        case 7:
        case 8:
            utter();
            break;
        case 9:
        case 10:
            recogniseSome();
            break;
        case 11:
            answerSome();
            break;
        case 12:
            flip(audioInput.startGate);
            break;
        case 13:
            flip(audioInput.stopGate);
            break;
        case 14:
            flip(selection->gate);
            break;
        case 15:
            changeSettings();
            break;
        case 16:
            changeFront();
            break;
        case 17:
            disturb();
            break;
        case 18:
            copyAgain();
            break;
        default:
            clock.advance(std::chrono::milliseconds(pick(2000)));
            break;
        }
        settle();
        collect();
    }

    /// Everything is let run to its end, as when the user goes for a coffee.
    void rest() {
        audioInput.startError.reset();
        for (Gate* gate : {&audioInput.startGate, &audioInput.stopGate, &selection->gate})
            gate->open();
        settle();
        if (isHeld_)
            edgeOfHold();
        settle();
        if (model->shortcutSession().activeMode)
            tapToggle();
        if (model->isRecording())
            chooseMenuItem();
        const bool isOver = waitUntil([this] {
            for (const auto& transcriber : recognition.transcribers)
                transcriber->isRecognised.open();
            answerAll();
            settle();
            return model->isSettled();
        });
        clock.advance(std::chrono::seconds(3)); // a preview of the overlay has ended
        collect();
        ASSERT_TRUE(isOver) << "something waits for ever";
        EXPECT_FALSE(model->isRecording());
        EXPECT_FALSE(audioInput.isOpen());
        EXPECT_TRUE(hud.calls.isEmpty() || hud.calls.last() == u"hide"_s);
        checkUtterances();
    }

    std::size_t utterances() const { return spoken_.size(); }

private:
    int pick(int below) { return std::uniform_int_distribution(0, below - 1)(random_); }

    void flip(Gate& gate) {
        if (gate.isOpen() && pick(4) == 0)
            gate.close();
        else
            gate.open();
    }

    void edgeOfHold() {
        isHeld_ = !isHeld_;
        edge(isHeld_ ? ShortcutEvent::holdActivated : ShortcutEvent::holdDeactivated);
    }

    /// The user speaks: into the microphone, if it is open.
    void utter() {
        if (!model->isRecording() || lastSpokenInto_ == recognition.transcribers.back())
            return;
        lastSpokenInto_ = recognition.transcribers.back();
        const int id = static_cast<int>(spoken_.size()) + 1;
        spoken_[id] = pick(4) == 0 ? u"generate number%1x one two three"_s.arg(id)
                                   : u"number%1x one two three"_s.arg(id);
        lastSpokenInto_->finalResults = {{spoken_[id], true}};
        if (pick(2) == 0)
            recognition.deliver(u"number"_s, false);
        if (audioInput.block)
            audioInput.block(someSound());
    }

    void recogniseSome() {
        std::vector<std::shared_ptr<FakeTranscriber>> waiting;
        for (const auto& transcriber : recognition.transcribers)
            if (!transcriber->isRecognised.isOpen())
                waiting.push_back(transcriber);
        if (!waiting.empty())
            waiting[static_cast<std::size_t>(pick(static_cast<int>(waiting.size())))]->isRecognised.open();
    }

    HttpResult anyAnswer(const FakeHttpSession& session, std::size_t request) {
        if (&session == &transcriptionSession)
            return HttpResponse{200, R"({"text": ""})"}; // a failure: the words stay the recogniser's
        const int id = utteranceIn(session.userMessage(request));
        if (pick(4) == 0)
            return tl::unexpected(HttpFailure{u"No network for number%1x."_s.arg(id)});
        return FakeHttpSession::chatAnswer(u"Number%1x one, two three."_s.arg(id));
    }
    void answer(FakeHttpSession& session, std::size_t index) {
        session.answerPending(index, anyAnswer(session, session.pending.at(index)->request));
    }
    void answerSome() {
        for (auto* session : {&chatSession, &transcriptionSession})
            if (!session->pending.empty())
                answer(*session, static_cast<std::size_t>(pick(static_cast<int>(session->pending.size()))));
        QThreadPool::globalInstance()->waitForDone();
    }
    void answerAll() {
        for (auto* session : {&chatSession, &transcriptionSession})
            while (!session->pending.empty())
                answer(*session, 0);
    }

    void changeSettings() {
        model->setAIPolishEnabled(pick(2) == 0);
        model->setAIGenerateEnabled(pick(2) == 0);
        model->setAIEnabled(pick(3) == 0);
        model->setAITranscriptionEnabled(pick(3) == 0);
        selection->answer.reset();
        if (pick(2) == 0)
            selection->answer = SelectionSnapshot{.text = u"selected"_s, .appPID = 42};
        selection->stillSelected = pick(4) != 0;
    }

    void changeFront() { workspace.frontmost->processIdentifier = 40 + pick(3); }

    void disturb() {
        switch (pick(5)) {
        case 0:
        case 1:
            audioInput.startError.reset();
            if (pick(4) == 0)
                audioInput.startError = u"busy"_s;
            break;
        case 2:
            if (model->isRecording() && audioInput.failure)
                std::exchange(audioInput.failure, nullptr)(u"unplugged"_s);
            break;
        case 3:
            model->previewOverlay();
            break;
        default:
            trust.processTrusted = pick(4) != 0;
            break;
        }
    }

    /// What copy again inserts was delivered, or told, before.
    void copyAgain() {
        const auto before = keyboard.typed.size();
        edge(ShortcutEvent::copyAgainTriggered);
        for (auto i = before; i < keyboard.typed.size(); ++i)
            again_.insert(i);
    }

    void collect() {
        for (; seen_ < keyboard.typed.size(); ++seen_)
            if (!again_.contains(seen_))
                delivered_.push_back(utteranceIn(keyboard.typed[seen_].join(QString())));
    }

    void checkUtterances() {
        int last = 0;
        for (const auto& [id, words] : spoken_) {
            const auto times = std::ranges::count(delivered_, id);
            const bool isTold = std::ranges::any_of(
                told_, [id = id](const QString& line) { return utteranceIn(line) == id; });
            EXPECT_LE(times, 1) << words.toStdString();
            EXPECT_TRUE(times == 1 || isTold)
                << words.toStdString() << "\ntold: " << told_.join(u" | "_s).toStdString();
        }
        for (const int id : delivered_) {
            EXPECT_GT(id, last) << "out of order";
            last = id;
        }
    }

    std::mt19937 random_;
    bool isHeld_ = false;
    std::shared_ptr<FakeTranscriber> lastSpokenInto_;
    std::map<int, QString> spoken_;
    std::set<std::size_t> again_;
    std::size_t seen_ = 0;
    std::vector<int> delivered_;
    QStringList told_;
};

TEST(DictationWalk, DeliversEachUtteranceOnceInOrderOrTells) {
    const LogCapture log;
    const int steps = number("VELORIN_WALK_STEPS", 6000);
    const auto firstSeed = static_cast<unsigned>(number("VELORIN_WALK_SEED", 1));
    constexpr int stepsOfAWalk = 120;
    std::size_t utterances = 0;
    for (unsigned walk = 0; walk < static_cast<unsigned>(steps / stepsOfAWalk); ++walk) {
        SCOPED_TRACE("seed " + std::to_string(firstSeed + walk));
        Walk desk(firstSeed + walk);
        for (int i = 0; i < stepsOfAWalk; ++i)
            desk.step();
        desk.rest();
        utterances += desk.utterances();
        if (testing::Test::HasFailure()) {
            std::fputs(log.lines().join(u'\n').toUtf8().constData(), stderr);
            return;
        }
    }
    RecordProperty("utterances", static_cast<int>(utterances));
    std::printf("%zu utterances in %d steps, seeds from %u\n", utterances, steps, firstSeed);
}

} // namespace
} // namespace velorin
