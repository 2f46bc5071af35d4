#include "Agreement.h"

#include "../reference/Reference.h"
#include "Vocabulary.h"
#include "cleanup/PolishGuard.h"
#include "cleanup/RuleCleaner.h"
#include "cleanup/Stages.h"

namespace velorin::agreement {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Plain ASCII as it is, everything else as \uXXXX, so that nothing of it gets lost on the way to a person.
QString printable(QStringView text) {
    QString result;
    for (const QChar unit : text) {
        if (unit >= u' ' && unit <= u'~')
            result.append(unit);
        else
            result.append(u"\\u%1"_s.arg(int{unit.unicode()}, 4, 16, QChar(u'0')));
    }
    return result;
}

QString described(const Input& input) {
    QString text = u"\"%1\" in profile %2"_s.arg(printable(input.text), rawString(input.profile));
    for (const WordReplacement& each : input.replacements)
        text += u", \"%1\" for \"%2\""_s.arg(printable(each.replacement), printable(each.heard));
    return text;
}

std::optional<QString> difference(QStringView stage, const Input& input, QStringView expected,
                                  QStringView got) {
    if (expected == got)
        return std::nullopt;
    return u"%1 of %2: expected \"%3\", got \"%4\""_s.arg(stage, described(input), printable(expected),
                                                          printable(got));
}

const QString& randomPiece(std::mt19937_64& random, const Pieces& pieces) {
    return pieces[random() % pieces.size()];
}

/// Mostly of one theme, so that what belongs together meets.
QString randomText(std::mt19937_64& random, std::size_t mostPieces) {
    const Pieces& theme = themes()[random() % themes().size()];
    QString text;
    for (std::size_t count = 1 + random() % mostPieces; count > 0; --count)
        text += randomPiece(random, random() % 8 == 0 ? vocabulary() : theme);
    return text;
}

/// Now and then a new list, mostly one of some hundred: the reference takes its time over a new one.
QList<WordReplacement> randomReplacements(std::mt19937_64& random) {
    constexpr std::size_t kept = 256;
    std::mt19937_64 choice(random() % 1000 == 0 ? random() : random() % kept);
    QList<WordReplacement> list;
    for (auto count = choice() % 5; count > 0; --count)
        list.append({QUuid(), randomText(choice, 3), randomText(choice, 3)});
    return list;
}

} // namespace

std::optional<QString> differenceInClean(const Input& input) {
    return difference(u"clean", input, Reference::clean(input.text, input.replacements, input.profile),
                      RuleCleaner::clean(input.text, input.replacements, input.profile));
}

std::optional<QString> differenceInStages(const Input& input) {
    const auto& [text, profile, replacements] = input;
    const bool flag = text.size() % 2 == 0;
    if (auto found = difference(u"spokenPunctuation", input, Reference::spokenPunctuation(text, profile),
                                RuleCleaner::spokenPunctuation(text, profile)))
        return found;
    if (auto found = difference(u"commandFlags", input, Reference::commandFlags(text),
                                RuleCleaner::commandFlags(text)))
        return found;
    if (auto found = difference(u"applyCodeSymbols", input, Reference::applyCodeSymbols(text),
                                RuleCleaner::applyCodeSymbols(text)))
        return found;
    if (auto found = difference(u"stripFillers", input, Reference::stripFillers(text),
                                RuleCleaner::stripFillers(text)))
        return found;
    if (auto found = difference(u"applyCorrections", input, Reference::applyCorrections(text),
                                RuleCleaner::applyCorrections(text)))
        return found;
    if (auto found = difference(u"applyReplacements", input, Reference::applyReplacements(text, replacements),
                                RuleCleaner::applyReplacements(text, replacements)))
        return found;
    if (auto found = difference(u"tidy", input, Reference::tidy(text, flag, profile),
                                RuleCleaner::tidy(text, flag, profile)))
        return found;
    if (auto found = difference(u"applyLayoutCommands", input, Reference::applyLayoutCommands(text).text,
                                RuleCleaner::applyLayoutCommands(text).text))
        return found;
    if (Reference::applyLayoutCommands(text).hasChanged != RuleCleaner::applyLayoutCommands(text).hasChanged)
        return u"applyLayoutCommands of %1: only one says that it changed something"_s.arg(described(input));
    if (auto found = difference(u"normalizeLayout", input, Reference::normalizeLayout(text, flag),
                                RuleCleaner::normalizeLayout(text, flag)))
        return found;
    return difference(u"words", input, Reference::words(text).join(u'|'),
                      PolishGuard::words(text).join(u'|'));
}

Input randomInput(std::mt19937_64& random) {
    Input input;
    input.text = randomText(random, 24);
    input.profile = allContextProfiles[random() % allContextProfiles.size()];
    if (random() % 4 == 0)
        input.replacements = randomReplacements(random);
    return input;
}

} // namespace velorin::agreement
