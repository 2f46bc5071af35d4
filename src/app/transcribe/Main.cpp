/// velorin-transcribe [--fast] FILE.wav…: each file through the whole recognition path, in real time or as
/// fast as it goes. A row a file, its columns parted by tabs: name, seconds, milliseconds from the end of the
/// sound to the final text, the text.
#include "app/transcribe/FileAudioInput.h"
#include "platform/Gate.h"
#include "platform/linux/desktop/SystemClock.h"
#include "platform/linux/desktop/XdgFolders.h"
#include "platform/linux/recognition/SherpaRecognition.h"
#include "platform/linux/sound/SndfileWriter.h"
#include "platform/linux/sound/SoxrConverter.h"
#include "speech/SpeechEngine.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <cstdio>

namespace velorin {

namespace {

using namespace Qt::Literals::StringLiterals;

struct Options {
    QStringList files;
    bool isFast = false;
    QString locale;
    QStringList context;
};

struct Ports {
    SystemClock clock;
    XdgFolders folders;
    SoxrConverterFactory converters;
    SndfileFactory files;
    LatencyMarks marks;
    SherpaRecognition recognition{clock, ModelStore::programFolders(), folders.dataFolder() + u"/models"_s};
};

struct Transcript {
    QString text;
    double seconds = 0;
    double milliseconds = 0;
};

using Outcome = tl::expected<Transcript, QString>;

QCoro::Task<Outcome> transcribe(Ports* ports, QString file, Options options) {
    Gate hasPlayed(false);
    FileAudioInput input(file, !options.isFast, [&hasPlayed] { hasPlayed.open(); });
    Transcript transcript;
    QString error;
    SpeechEngine engine(input, ports->recognition, ports->converters, ports->files, ports->folders,
                        ports->marks);
    engine.contextualStrings = options.context;
    engine.onResult = [&transcript](const QString& text, bool isFinal) {
        if (isFinal)
            transcript.text += text;
    };
    engine.onError = [&error](const SpeechEngineError& failure) { error = failure.description(); };
    const auto started = co_await engine.start(options.locale);
    if (!started)
        co_return tl::unexpected(started.error().description());
    co_await hasPlayed.opened();
    co_await engine.stop();
    const std::chrono::duration<double, std::milli> wait = std::chrono::steady_clock::now() - input.end();
    if (!error.isEmpty())
        co_return tl::unexpected(error);
    transcript.seconds = input.seconds();
    transcript.milliseconds = wait.count();
    co_return transcript;
}

QCoro::Task<int> transcribeAll(Options options) {
    Ports ports;
    int exitCode = 0;
    for (const QString& file : options.files) {
        const Outcome outcome = co_await transcribe(&ports, file, options);
        if (outcome) {
            std::printf("%s\t%.2f\t%.0f\t%s\n", qUtf8Printable(QFileInfo(file).fileName()), outcome->seconds,
                        outcome->milliseconds, qUtf8Printable(outcome->text));
        } else {
            std::fprintf(stderr, "%s: %s\n", qUtf8Printable(file), qUtf8Printable(outcome.error()));
            exitCode = 1;
        }
        std::fflush(stdout);
    }
    co_return exitCode;
}

Options readOptions() {
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Writes down what is said in sound files."_s);
    parser.addHelpOption();
    const QCommandLineOption fast(u"fast"_s, u"As fast as it goes, not in real time."_s);
    const QCommandLineOption locale(u"locale"_s, u"The language, as in en-US."_s, u"identifier"_s,
                                    u"en-US"_s);
    const QCommandLineOption context(u"context"_s, u"A word that is likely to be used; can be repeated."_s,
                                     u"word"_s);
    parser.addOptions({fast, locale, context});
    parser.addPositionalArgument(u"files"_s, u"Sound files."_s, u"FILE.wav…"_s);
    parser.process(*QCoreApplication::instance());
    if (parser.positionalArguments().isEmpty())
        parser.showHelp(2);
    return {parser.positionalArguments(), parser.isSet(fast), parser.value(locale), parser.values(context)};
}

} // namespace

} // namespace velorin

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    return QCoro::waitFor(velorin::transcribeAll(velorin::readOptions()));
}
