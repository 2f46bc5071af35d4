#include "platform/linux/recognition/SherpaRecognition.h"

#include "platform/Gate.h"
#include "platform/linux/recognition/ContextWords.h"
#include "platform/linux/recognition/ModelInstallation.h"
#include "platform/linux/recognition/Recognizer.h"
#include "platform/linux/recognition/SileroVoiceActivity.h"

#include <QCoreApplication>
#include <QFile>
#include <QMetaObject>
#include <QPointer>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr AudioFormat modelFormat{16000, 1, AudioFormat::Samples::float32};

RecognitionError modelMissing() {
    return {QCoreApplication::translate(
        "SherpaRecognition",
        "The speech recognition model is missing or damaged. Please install Velorin again.")};
}

class Transcriber final : public SpeechTranscriber {
public:
    explicit Transcriber(QString localeIdentifier) : locale(std::move(localeIdentifier)) {}

    RecognitionTask<std::optional<TranscriptionResult>> nextResult() override {
        while (results_.empty() && !hasEnded_) {
            hasNews_.close();
            co_await hasNews_.opened();
        }
        std::optional<TranscriptionResult> next;
        if (!results_.empty()) {
            next = std::move(results_.front());
            results_.pop_front();
        }
        co_return next;
    }

    void give(TranscriptionResult result) {
        results_.push_back(std::move(result));
        hasNews_.open();
    }

    void end() {
        hasEnded_ = true;
        hasNews_.open();
    }

    const QString locale;

private:
    std::deque<TranscriptionResult> results_;
    bool hasEnded_ = false;
    Gate hasNews_{false};
};

const QString& localeOf(const std::shared_ptr<SpeechTranscriber>& transcriber) {
    return std::static_pointer_cast<Transcriber>(transcriber)->locale;
}

struct Input final : AnalyzerInput {
    std::shared_ptr<SampleStream> stream = std::make_shared<SampleStream>();

    void yield(AudioBuffer buffer) override {
        if (auto* samples = std::get_if<std::vector<float>>(&buffer.samples))
            stream->write(std::move(*samples));
    }
    void finish() override { stream->finish(); }
};

/// Runs on the worker's thread.
LoadedModel load(const ModelStore& store, const Model& model, const QString& locale) {
    LoadedModel loaded;
    const Model& voiceActivity = ModelCatalog::voiceActivity();
    if (const auto folder = store.verified(voiceActivity))
        loaded.voiceActivity = SileroVoiceActivity::load(
            QFile::encodeName(*folder + u'/' + voiceActivity.files.front().name).toStdString());
    if (const auto folder = store.verified(model))
        loaded.decoder = Recognizer::load(model, *folder, locale);
    return loaded;
}

/// Reads the lists of words with the first text, on the worker's thread.
std::function<std::string(const std::string&)> correction(const std::vector<std::string>& entries) {
    if (entries.empty())
        return nullptr;
    return [entries, words = std::shared_ptr<ContextWords>()](const std::string& text) mutable {
        if (!words)
            words = std::make_shared<ContextWords>(entries, OrdinaryWords::ofThisSystem());
        return words->correct(text);
    };
}

} // namespace

class SherpaRecognition::Analyzer final : public SpeechAnalyzer {
public:
    Analyzer(SherpaRecognition& recognition, std::shared_ptr<Transcriber> transcriber, const Model& model)
        : recognition_(&recognition.mainThread_), owner_(recognition), transcriber_(std::move(transcriber)),
          loadModel_([store = recognition.store_, &model, locale = transcriber_->locale] {
              return load(*store, model, locale);
          }),
          name_(QString(model.id + u' ' + transcriber_->locale).toStdString()) {
        // While the microphone is being opened.
        recognition.keepModelForAWhile();
        recognition.worker_.prepare(name_, loadModel_);
    }

    RecognitionTask<void> setContext(QStringList contextualStrings) override {
        // Spelling and sound are those of English.
        if (ModelCatalog::languageOf(transcriber_->locale) != u"en")
            co_return tl::unexpected(RecognitionError{});
        context_.clear();
        for (const QString& string : contextualStrings)
            context_.push_back(string.toStdString());
        co_return tl::expected<void, RecognitionError>{};
    }

    RecognitionTask<void> start(std::shared_ptr<AnalyzerInput> input) override {
        if (!recognition_)
            co_return tl::unexpected(modelMissing());
        owner_.hasBegun();
        owner_.worker_.begin(job(std::static_pointer_cast<Input>(input)->stream));
        const auto state = state_;
        co_await state->isOver.opened();
        if (state->outcome == RecognitionWorker::Outcome::modelFailed)
            co_return tl::unexpected(modelMissing());
        co_return tl::expected<void, RecognitionError>{};
    }

    RecognitionTask<void> finalizeAndFinishThroughEndOfInput() override {
        const auto state = state_;
        co_await state->isOver.opened();
        co_return tl::expected<void, RecognitionError>{};
    }

private:
    struct State {
        Gate isOver{false};
        RecognitionWorker::Outcome outcome = RecognitionWorker::Outcome::done;
    };

    RecognitionWorker::Job job(std::shared_ptr<SampleStream> stream) {
        StreamingRules rules;
        rules.isSpaced = ModelCatalog::isSpaced(transcriber_->locale);
        QObject* const mainThread = &owner_.mainThread_;
        const auto onResult = [mainThread, transcriber = transcriber_](const std::string& text,
                                                                       bool isFinal) {
            const auto give = [transcriber, text = QString::fromStdString(text), isFinal] {
                transcriber->give({text, isFinal});
            };
            QMetaObject::invokeMethod(mainThread, give, Qt::QueuedConnection);
        };
        const auto onEnd = [mainThread, &owner = owner_, transcriber = transcriber_,
                            state = state_](RecognitionWorker::Outcome outcome) {
            const auto end = [&owner, transcriber, state, outcome] {
                owner.hasEnded();
                transcriber->end();
                state->outcome = outcome;
                state->isOver.open();
            };
            QMetaObject::invokeMethod(mainThread, end, Qt::QueuedConnection);
        };
        return {name_, loadModel_, std::move(stream), rules, correction(context_), onResult, onEnd};
    }

    QPointer<QObject> recognition_; ///< Null once `owner_` is gone.
    SherpaRecognition& owner_;
    std::shared_ptr<Transcriber> transcriber_;
    RecognitionWorker::Load loadModel_;
    std::vector<std::string> context_;
    std::string name_;
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

SherpaRecognition::SherpaRecognition(Clock& clock, QStringList programFolders, QString userFolder)
    : clock_(clock), store_(std::make_shared<ModelStore>(std::move(programFolders), std::move(userFolder))) {}

SherpaRecognition::~SherpaRecognition() = default;

QCoro::Task<std::optional<QString>> SherpaRecognition::supportedLocale(QString equivalentToIdentifier) {
    std::optional<QString> supported;
    if (ModelCatalog::modelFor(equivalentToIdentifier))
        supported = equivalentToIdentifier;
    co_return supported;
}

std::shared_ptr<SpeechTranscriber> SherpaRecognition::makeTranscriber(QString localeIdentifier) {
    return std::make_shared<Transcriber>(std::move(localeIdentifier));
}

QCoro::Task<std::optional<AudioFormat>>
SherpaRecognition::bestAvailableAudioFormat(std::shared_ptr<SpeechTranscriber> /*transcriber*/) {
    co_return modelFormat;
}

std::shared_ptr<SpeechAnalyzer>
SherpaRecognition::makeAnalyzer(std::shared_ptr<SpeechTranscriber> transcriber) {
    const Model* const model = ModelCatalog::modelFor(localeOf(transcriber));
    Q_ASSERT(model);
    return std::make_shared<Analyzer>(*this, std::static_pointer_cast<Transcriber>(transcriber), *model);
}

std::shared_ptr<AnalyzerInput> SherpaRecognition::makeInput() { return std::make_shared<Input>(); }

QCoro::Task<AssetStatus> SherpaRecognition::status(std::shared_ptr<SpeechTranscriber> transcriber) {
    const Model* const model = ModelCatalog::modelFor(localeOf(transcriber));
    if (!model)
        co_return AssetStatus::unsupported;
    const bool isHere = store_->installed(*model) && store_->installed(ModelCatalog::voiceActivity());
    co_return isHere ? AssetStatus::installed : AssetStatus::supported;
}

RecognitionTask<std::shared_ptr<AssetInstallationRequest>>
SherpaRecognition::assetInstallationRequest(std::shared_ptr<SpeechTranscriber> transcriber) {
    const Model* const model = ModelCatalog::modelFor(localeOf(transcriber));
    std::shared_ptr<AssetInstallationRequest> request;
    // Voice activity comes with the program or not at all.
    if (!model || !model->canBeDownloaded() || !store_->installed(ModelCatalog::voiceActivity()))
        co_return tl::unexpected(modelMissing());
    if (!store_->installed(*model))
        request = std::make_shared<ModelInstallation>(network(), store_, *model);
    co_return request;
}

QNetworkAccessManager& SherpaRecognition::network() {
    if (!network_)
        network_ = std::make_unique<QNetworkAccessManager>();
    return *network_;
}

void SherpaRecognition::hasBegun() {
    ++dictations_;
    release_ = {};
}

void SherpaRecognition::hasEnded() {
    --dictations_;
    keepModelForAWhile();
}

void SherpaRecognition::keepModelForAWhile() {
    if (dictations_ == 0)
        release_ = clock_.after(keepsModelFor, [this] { worker_.release(); });
}

} // namespace velorin
