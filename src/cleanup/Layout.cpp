#include "cleanup/Passes.h"

#include "cleanup/Letters.h"
#include "cleanup/Tables.h"
#include "text/CaseMapping.h"
#include "text/Characters.h"
#include "text/Graphemes.h"

namespace velorin::RuleCleaner {

namespace {

using Letters::Run;

constexpr WordKey none = 0;

/// The words of a layout command: a first one, then a second, then perhaps a third.
struct Command {
    std::array<WordKey, 2> first;
    WordKey second;
    WordKey optionalThird;
    Lexicon::Concerns concern;
};

/// Row by row the commands of Tables::layoutCommands.
constexpr std::array<Command, 7> commands{{
    {{wordKey(u"new"), wordKey(u"next")},
     wordKey(u"paragraph"),
     wordKey(u"break"),
     Lexicon::paragraphCommands},
    {{wordKey(u"paragraph"), none}, wordKey(u"break"), none, Lexicon::paragraphCommands},
    {{wordKey(u"new"), wordKey(u"next")}, wordKey(u"line"), none, Lexicon::lineCommands},
    {{wordKey(u"newline"), none}, none, none, Lexicon::newlineCommands},
    {{wordKey(u"line"), none}, wordKey(u"break"), none, Lexicon::lineCommands},
    {{wordKey(u"new"), wordKey(u"next")}, wordKey(u"bullet"), wordKey(u"point"), Lexicon::bulletCommands},
    {{wordKey(u"bullet"), none}, wordKey(u"point"), none, Lexicon::bulletCommands},
}};

bool beginsWith(const Command& command, WordKey key) {
    return key != none && (key == command.first[0] || key == command.first[1]);
}

/// The run of this word behind the white space at the position; an empty one if something else stands there.
Run followedBy(QStringView text, qsizetype position, WordKey word) {
    const qsizetype start = Letters::skipSpaces(text, position);
    if (start == position)
        return {};
    const Run run = Letters::runAt(text, start);
    return run.key == word ? run : Run{};
}

/// The end of the command that begins with the run, without punctuation; 0 if it is none.
qsizetype endOfWords(QStringView text, Run run, const Command& command) {
    if (command.second != none) {
        run = followedBy(text, run.end, command.second);
        if (!run)
            return 0;
    }
    if (command.optionalThird != none) {
        const Run third = followedBy(text, run.end, command.optionalThird);
        if (third && Letters::isWordBoundary(text, third.end))
            return third.end;
    }
    return Letters::isWordBoundary(text, run.end) ? run.end : 0;
}

bool isCommandPunctuation(char16_t unit) {
    return unit == u'.' || unit == u',' || unit == u'!' || unit == u'?';
}

bool applyCommand(Draft& draft, const Command& command, QStringView written) {
    const QStringView text = draft.text();
    qsizetype limit = 0;
    for (const Lexicon::Trigger& run : draft.triggers().words) {
        if (!beginsWith(command, run.key) || run.start < limit || !Letters::isWordBoundary(text, run.start))
            continue;
        const qsizetype end = endOfWords(text, run, command);
        if (end == 0)
            continue;
        limit = end < text.size() && isCommandPunctuation(text[end].unicode()) ? end + 1 : end;
        draft.replace(run.start, limit, written);
    }
    return draft.commit();
}

bool isBlank(char16_t unit) { return unit == u' ' || unit == u'\t'; }

/// Spaces around line ends go; a carriage return before the line feed belongs to it.
void dropSpacesAroundLineEnds(Draft& draft) {
    const QStringView text = draft.text();
    qsizetype limit = 0;
    for (qsizetype feed = text.indexOf(u'\n'); feed >= 0; feed = text.indexOf(u'\n', limit)) {
        qsizetype start = feed > limit && text[feed - 1] == u'\r' ? feed - 1 : feed;
        while (start > limit && isBlank(text[start - 1].unicode()))
            --start;
        limit = feed + 1;
        while (limit < text.size() && isBlank(text[limit].unicode()))
            ++limit;
        if (limit - start > 1)
            draft.replace(start, limit, u"\n");
    }
    draft.commit();
}

/// One empty line at most.
void dropEmptyLines(Draft& draft) {
    const QStringView text = draft.text();
    for (qsizetype feed = text.indexOf(u'\n'); feed >= 0;) {
        qsizetype end = feed + 1;
        while (Letters::isAt(text, end, u'\n'))
            ++end;
        if (end - feed > 2)
            draft.replace(feed + 2, end, u"");
        feed = text.indexOf(u'\n', end);
    }
    draft.commit();
}

/// Whether the space is a character of its own: a mark may sit on it.
bool isSpaceCharacter(QStringView line, qsizetype position) {
    return line[position] == u' ' && Graphemes::isBoundary(line, position) &&
           Graphemes::isBoundary(line, position + 1);
}

/// Appends the line without the spaces at its ends, and with single ones within.
void appendSingleSpaced(QString& lines, QStringView line) {
    const qsizetype lineStart = lines.size();
    bool isSpacePending = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        if (isSpaceCharacter(line, i)) {
            isSpacePending = lines.size() > lineStart;
            continue;
        }
        if (std::exchange(isSpacePending, false))
            lines.append(u' ');
        lines.append(line[i]);
    }
}

/// Makes the text of the line that begins here upper case, behind its bullet if it has one.
void capitalizeLine(QString& lines, qsizetype lineStart) {
    constexpr QStringView bullet = u"- ";
    const QStringView line = QStringView(lines).sliced(lineStart);
    const qsizetype start = Graphemes::beginsWith(line, bullet) ? lineStart + bullet.size() : lineStart;
    const QStringView head = Graphemes::first(QStringView(lines).sliced(start));
    if (Characters::startsWithLetter(head) && CaseMapping::isLower(head))
        lines.replace(start, head.size(), CaseMapping::upper(head));
}

/// The next line feed that is a character of its own, not the second half of a carriage return's.
qsizetype nextLineEnd(QStringView text, qsizetype position) {
    qsizetype feed = text.indexOf(u'\n', position);
    while (feed > 0 && text[feed - 1] == u'\r')
        feed = text.indexOf(u'\n', feed + 1);
    return feed < 0 ? text.size() : feed;
}

} // namespace

bool applyLayoutCommands(Draft& draft) {
    bool hasChanged = false;
    for (std::size_t row = 0; row < commands.size(); ++row) {
        if (draft.concerns(commands[row].concern))
            hasChanged |= applyCommand(draft, commands[row], Tables::layoutCommands[row].written);
    }
    return hasChanged;
}

void normalizeLayout(Draft& draft, bool capitalize) {
    dropSpacesAroundLineEnds(draft);
    dropEmptyLines(draft);
    const QStringView text = WhiteSpace::trimmed(draft.text(), WhiteSpace::Set::whitespacesAndNewlines);
    QString lines;
    lines.reserve(text.size());
    for (qsizetype start = 0; start <= text.size();) {
        const qsizetype end = nextLineEnd(text, start);
        const qsizetype lineStart = lines.size();
        appendSingleSpaced(lines, text.sliced(start, end - start));
        if (capitalize)
            capitalizeLine(lines, lineStart);
        if (end < text.size())
            lines.append(u'\n');
        start = end + 1;
    }
    draft.string().swap(lines);
}

} // namespace velorin::RuleCleaner
