// What a partial result costs the main thread: the whole transcript through the cleanup, and the news of it
// to whoever watches the model.
#include "tests/core/ModelDesk.h"

#include <benchmark/benchmark.h>

namespace {

QString prose(qint64 words) {
    const QStringList vocabulary{QStringLiteral("the"),    QStringLiteral("river"), QStringLiteral("was"),
                                 QStringLiteral("quiet"),  QStringLiteral("and"),   QStringLiteral("we"),
                                 QStringLiteral("walked"), QStringLiteral("home."), QStringLiteral("Then")};
    QStringList text;
    for (qint64 i = 0; i < words; ++i)
        text.append(vocabulary[i % vocabulary.size()]);
    return text.join(QLatin1Char(' '));
}

void refreshCleaned(benchmark::State& state) {
    velorin::ModelDesk desk;
    desk.start();
    desk.model->setFinalizedText(prose(state.range(0)));
    for (auto _ : state) {
        desk.model->refreshCleaned();
        benchmark::DoNotOptimize(desk.model->cleanedText());
    }
}

BENCHMARK(refreshCleaned)->Name("refreshCleaned")->Arg(25)->Arg(2000)->Unit(benchmark::kMicrosecond);

} // namespace
