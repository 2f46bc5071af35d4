/// velorin-transcribe [--fast] FILE.wav…: each file through the whole recognition path, in real time or as
/// fast as it goes. A row a file, its columns parted by tabs: name, seconds, milliseconds from the end of the
/// sound to the final text, the text. With --watch another row, on standard error: name, number of results,
/// the longest time without one in milliseconds.
#include "app/transcribe/FileAudioInput.h"
#include "platform/Gate.h"
#include "platform/UsersMask.h"
#include "platform/linux/desktop/SystemClock.h"
#include "platform/linux/desktop/XdgFolders.h"
#include "platform/linux/recognition/SherpaRecognition.h"
#include "platform/linux/sound/SndfileWriter.h"
#include "platform/linux/sound/SoxrConverter.h"
#include "speech/SpeechEngine.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>

namespace velorin {

namespace {

using namespace Qt::Literals::StringLiterals;

struct Options {
    QStringList files;
    double speed = FileAudioInput::inRealTime;
    bool isWatched = false;
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
    int results = 0;
    double longestGap = 0; ///< In milliseconds, from one result to the next.
};

using Milliseconds = std::chrono::duration<double, std::milli>;

using Outcome = tl::expected<Transcript, QString>;

QCoro::Task<Outcome> transcribe(Ports* ports, QString file, Options options) {
    Gate hasPlayed(false);
    FileAudioInput input(file, options.speed, [&hasPlayed] { hasPlayed.open(); });
    Transcript transcript;
    QString error;
    SpeechEngine engine(input, ports->recognition, ports->converters, ports->files, ports->folders,
                        ports->marks);
    engine.contextualStrings = options.context;
    std::optional<std::chrono::steady_clock::time_point> last;
    engine.onResult = [&transcript, &last](const QString& text, bool isFinal) {
        const auto now = std::chrono::steady_clock::now();
        ++transcript.results;
        transcript.longestGap =
            std::max(transcript.longestGap, Milliseconds(now - last.value_or(now)).count());
        last = now;
        if (isFinal)
            transcript.text += text;
    };
    engine.onError = [&error](const SpeechEngineError& failure) { error = failure.description(); };
    const auto started = co_await engine.start(options.locale);
    if (!started)
        co_return tl::unexpected(started.error().description());
    co_await hasPlayed.opened();
    co_await engine.stop();
    const Milliseconds wait = std::chrono::steady_clock::now() - input.end();
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
            if (options.isWatched)
                std::fprintf(stderr, "%s\t%d\t%.0f\n", qUtf8Printable(QFileInfo(file).fileName()),
                             outcome->results, outcome->longestGap);
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
    const QCommandLineOption speed(u"speed"_s, u"So many times as fast as in real time."_s, u"number"_s,
                                   u"1"_s);
    const QCommandLineOption watch(u"watch"_s, u"Tell of the results on standard error."_s);
    parser.addOptions({fast, locale, context, speed, watch});
    parser.addPositionalArgument(u"files"_s, u"Sound files."_s, u"FILE.wav…"_s);
    parser.process(*QCoreApplication::instance());
    if (parser.positionalArguments().isEmpty())
        parser.showHelp(2);
    const double pace = parser.isSet(fast) ? FileAudioInput::asFastAsItGoes : parser.value(speed).toDouble();
    return {parser.positionalArguments(), pace, parser.isSet(watch), parser.value(locale),
            parser.values(context)};
}

} // namespace

} // namespace velorin

int main(int argc, char* argv[]) {
    velorin::UsersMask::setAside();
    const QCoreApplication application(argc, argv);
    return QCoro::waitFor(velorin::transcribeAll(velorin::readOptions()));
}
