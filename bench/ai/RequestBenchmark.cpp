// What a request to a provider costs by itself: from the call to the text, with a server on this machine that
// answers at once.
#include "ai/AIService.h"
#include "platform/linux/desktop/SystemClock.h"
#include "platform/linux/network/QtHttpSession.h"
#include "tests/support/FakeLanguageModel.h"
#include "tests/support/FakeUserAccount.h"
#include "tests/support/provider/TestProvider.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QLoggingCategory>

#include <benchmark/benchmark.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

struct Desk {
    explicit Desk(const QString& kind)
        : configuration{AIProvider::custom, provider.endpoint(u"ok"_s, kind), u"m"_s, u"k"_s} {
        QLoggingCategory::setFilterRules(u"dev.orrin.velorin.*=false"_s);
    }

    std::unique_ptr<QtHttpSession> session() {
        return std::make_unique<QtHttpSession>(clock, QtHttpSession::chat, provider.trust());
    }

    /// Whether the provider answered.
    bool ask(QtHttpSession& over) {
        AIService service(over, over, languageModel, account);
        bool isThere = false;
        QEventLoop loop;
        const auto asking = keep(service.test(configuration), &loop, &isThere);
        if (!asking.isReady())
            loop.exec();
        return isThere;
    }

    static QCoro::Task<> keep(QCoro::Task<AIResult> task, QEventLoop* loop, bool* isThere) {
        *isThere = (co_await task).has_value();
        loop->quit();
    }

    int argc = 1;
    char name[1] = {};
    char* argv[1] = {name};
    std::unique_ptr<QCoreApplication> application =
        QCoreApplication::instance() ? nullptr : std::make_unique<QCoreApplication>(argc, argv);
    TestProvider provider;
    SystemClock clock;
    FakeLanguageModel languageModel;
    FakeUserAccount account;
    AIConfiguration configuration;
};

void overKeptConnection(benchmark::State& state) {
    Desk desk(u"good"_s);
    const auto session = desk.session();
    bool isFine = desk.ask(*session);
    for (auto _ : state)
        isFine = desk.ask(*session) && isFine;
    if (!isFine)
        state.SkipWithError("the provider did not answer");
}
BENCHMARK(overKeptConnection)->Name("request/kept")->Unit(benchmark::kMillisecond)->UseRealTime();

void overNewConnection(benchmark::State& state) {
    Desk desk(u"good"_s);
    bool isFine = desk.ask(*desk.session()); // Libraries and the system's certificates are loaded.
    for (auto _ : state) {
        state.PauseTiming();
        auto session = desk.session();
        state.ResumeTiming();
        isFine = desk.ask(*session) && isFine;
        state.PauseTiming();
        session.reset();
        state.ResumeTiming();
    }
    if (!isFine)
        state.SkipWithError("the provider did not answer");
}
BENCHMARK(overNewConnection)->Name("request/new with TLS")->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace velorin
