// A full history of long dictations: read at the start, and written anew with each dictation.
#include "core/History.h"
#include "tests/core/ModelDesk.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr int records = 200;
constexpr qsizetype characters = 4000;

/// The model waits in an event loop, which needs one.
struct Application {
    int argc = 1;
    char name[1] = {};
    char* argv[1] = {name};
    std::unique_ptr<QCoreApplication> application =
        QCoreApplication::instance() ? nullptr : std::make_unique<QCoreApplication>(argc, argv);
};

struct Desk : Application, ModelDesk {
    Desk() {
        start();
        for (int i = 0; i < records; ++i)
            model->recordHistory(text, text);
    }
    QString text = u"words and more "_s.repeated(characters / 15);
};

void readsHistory(benchmark::State& state) {
    Desk desk;
    History history(*desk.model, desk.folders, desk.clock);
    for (auto _ : state) {
        desk.model->setHistory({});
        history.load();
    }
    if (desk.model->history().size() != records)
        state.SkipWithError("the history is not whole");
}
BENCHMARK(readsHistory)->Name("history/read 200 of 4 kB")->Unit(benchmark::kMillisecond)->UseRealTime();

void recordsOne(benchmark::State& state) {
    Desk desk;
    for (auto _ : state)
        desk.model->recordHistory(desk.text, desk.text);
}
BENCHMARK(recordsOne)->Name("history/record one of 4 kB")->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace velorin
