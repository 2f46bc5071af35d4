#include "cleanup/Lexicon.h"

#include "cleanup/Tables.h"

namespace velorin::Lexicon {

namespace {

using Letters::Run;

struct Row {
    QStringView words;
    Concerns concerns;
};

/// For each pass one word of everything that it can find, and the words that it starts from.
constexpr Row rows[] = {
    {u"at", addressAt},
    {u"dot", addressDot},
    {u"dash", longFlags},
    {u"slash underscore dot arrow", separators},
    {u"umm uhh mmm hmm erm euh um uh er ah eh", fillers},
    {u"like know", likeFillers},
    {u"you", beginnings},
    {u"scratch wait meant actually no sorry make mean", corrections},
    {u"i", beginnings},
    {u"paragraph", paragraphCommands},
    {u"line", lineCommands},
    {u"newline", newlineCommands},
    {u"bullet", bulletCommands},
    {u"new next", beginnings},
};

WordMap<Concerns> vocabulary() {
    WordMap<Concerns> map;
    for (const Row& row : rows) {
        for (const QStringView word : row.words.split(u' '))
            map[wordKey(word)] |= row.concerns;
    }
    for (const auto& [phrase, symbol] : Tables::codeSymbols)
        map[wordKey(phrase.split(u' ').front())] |= codeSymbols;
    map[Letters::foreignFiller] |= fillers;
    return map;
}

const WordMap<Concerns>& theVocabulary() {
    static const WordMap<Concerns> map = vocabulary();
    return map;
}

void add(Run run, const WordMap<Concerns>& map, Triggers& triggers) {
    const Concerns* const concerns = map.find(run.key);
    if (!concerns || *concerns == 0)
        return;
    triggers.words.push_back({run, *concerns});
    triggers.concerns |= *concerns;
}

/// Room for one word in four: plain prose needs less.
void reserve(qsizetype size, Triggers& triggers) {
    constexpr qsizetype unitsPerTrigger = 24;
    triggers.words.reserve(static_cast<std::size_t>(size / unitsPerTrigger) + 8);
}

} // namespace

void read(QStringView text, Triggers& triggers) {
    const WordMap<Concerns>& map = theVocabulary();
    triggers.words.clear();
    triggers.concerns = 0;
    reserve(text.size(), triggers);
    for (Run run = Letters::nextRun(text, 0); run; run = Letters::nextRun(text, run.end))
        add(run, map, triggers);
}

QString collapse(QStringView raw, Triggers& triggers) {
    QString collapsed(raw.size(), Qt::Uninitialized);
    QChar* const begin = collapsed.data();
    QChar* end = begin;
    for (qsizetype i = 0; i < raw.size(); ++i) {
        if (!WhiteSpace::isWhitespaceOrNewline(raw[i].unicode()))
            *end++ = raw[i];
        else if (end != begin && end[-1] != u' ')
            *end++ = u' ';
    }
    if (end != begin && end[-1] == u' ')
        --end;
    collapsed.resize(end - begin);
    read(collapsed, triggers);
    return collapsed;
}

} // namespace velorin::Lexicon
