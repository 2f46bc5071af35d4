// clean/<text>/<words>/<fast|reference>: the cleanup that ships beside the plain one with the same answer.
#include "Texts.h"
#include "cleanup/RuleCleaner.h"
#include "tests/cleanup/agreement/HostileTexts.h"
#include "tests/cleanup/reference/Reference.h"

#include <benchmark/benchmark.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin::bench {
namespace {

struct Subject {
    QString name;
    QString text;
    ContextProfile profile = ContextProfile::generic;
    QList<WordReplacement> replacements = {};
    /// The plain way takes hours for some.
    bool hasReference = true;
};

void add(const Subject& subject) {
    const auto run = [subject](benchmark::State& state, auto clean) {
        // Patterns and tables that are made on first use are made now.
        benchmark::DoNotOptimize(clean(subject.text, subject.replacements, subject.profile));
        for (auto _ : state)
            benchmark::DoNotOptimize(clean(subject.text, subject.replacements, subject.profile));
        state.counters["characters"] = static_cast<double>(subject.text.size());
    };
    const std::string name = subject.name.toStdString();
    benchmark::RegisterBenchmark((name + "/fast").c_str(), [run](benchmark::State& state) {
        run(state, &RuleCleaner::clean);
    })->Unit(benchmark::kMicrosecond);
    if (!subject.hasReference)
        return;
    benchmark::RegisterBenchmark((name + "/reference").c_str(), [run](benchmark::State& state) {
        run(state, &Reference::clean);
    })->Unit(benchmark::kMicrosecond);
}

QList<WordReplacement> fiftyReplacements() {
    QList<WordReplacement> list;
    for (int i = 0; i < 50; ++i)
        list.append({QUuid(), u"%1 word %2"_s.arg(QChar(char16_t(u'a' + i % 26))).arg(i), u"written"_s});
    list[0].heard = u"harbour"_s;
    list[1].heard = u"the old house"_s;
    return list;
}

void addAll() {
    const auto sized = [](QStringView kind, qsizetype words) {
        return u"clean/%1/%2"_s.arg(kind).arg(words);
    };
    for (const qsizetype words : {5, 25, 60, 500, 2'000, 20'000}) {
        add({sized(u"plain", words), plainProse(words)});
        add({sized(u"dense", words), denseProse(words)});
        add({sized(u"code", words), codeDictation(words), ContextProfile::code});
    }
    for (const qsizetype words : {25, 2'000})
        add({sized(u"replacements", words), plainProse(words), ContextProfile::generic, fiftyReplacements()});
    constexpr qsizetype wordsIn100kB = 18'000;
    add({sized(u"plain-100kB", wordsIn100kB), plainProse(wordsIn100kB).first(100'000)});
    for (const agreement::HostileText& hostile : agreement::hostileTexts(100'000)) {
        for (const ContextProfile profile : {ContextProfile::generic, ContextProfile::code}) {
            const QString name = u"clean/hostile-%1-%2/100kB"_s.arg(hostile.name, rawString(profile));
            add({name, hostile.text, profile, {}, false});
        }
    }
}

[[maybe_unused]] const bool areAdded = (addAll(), true);

} // namespace
} // namespace velorin::bench
