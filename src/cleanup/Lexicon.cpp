#include "cleanup/Lexicon.h"

#include "cleanup/Tables.h"

namespace velorin::Lexicon {

namespace {

struct Row {
    QStringView words;
    Concerns concerns;
};

/// For each pass one word of everything that it can find.
constexpr Row rows[] = {
    {u"at", addressAt},
    {u"dot", addressDot},
    {u"dash", longFlags},
    {u"slash underscore dot arrow", separators},
    {u"umm uhh mmm hmm erm euh um uh er ah eh", fillers},
    {u"like know", likeFillers},
    {u"scratch wait meant actually no sorry make mean", corrections},
    {u"paragraph", paragraphCommands},
    {u"line", lineCommands},
    {u"newline", newlineCommands},
    {u"bullet", bulletCommands},
};

WordMap<Concerns> vocabulary() {
    WordMap<Concerns> map;
    for (const Row& row : rows) {
        for (const QStringView word : row.words.split(u' '))
            map[wordKey(word)] |= row.concerns;
    }
    for (const auto& [phrase, symbol] : Tables::codeSymbols)
        map[wordKey(phrase.split(u' ').back())] |= codeSymbols;
    map[Letters::foreignFiller] |= fillers;
    return map;
}

} // namespace

Concerns concernsOf(WordKey key) {
    static const WordMap<Concerns> map = vocabulary();
    const Concerns* const concerns = map.find(key);
    return concerns ? *concerns : 0;
}

Concerns concernsOf(QStringView text) {
    Concerns concerns = 0;
    for (auto run = Letters::nextRun(text, 0); run; run = Letters::nextRun(text, run.end))
        concerns |= concernsOf(run.key);
    return concerns;
}

} // namespace velorin::Lexicon
