#include "Vocabulary.h"

#include <array>

namespace velorin::agreement {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::array words{
    // Layout.
    u"new",
    u"next",
    u"paragraph",
    u"break",
    u"newline",
    u"line",
    u"bullet",
    u"point",
    // Fillers.
    u"umm",
    u"uhh",
    u"mmm",
    u"hmm",
    u"erm",
    u"euh",
    u"um",
    u"uh",
    u"er",
    u"ah",
    u"eh",
    u"उम",
    u"えーと",
    u"えっと",
    u"like",
    u"you",
    u"know",
    // Cues of corrections.
    u"scratch",
    u"that",
    u"wait",
    u"i",
    u"mean",
    u"meant",
    u"no",
    u"actually",
    u"sorry",
    u"make",
    // What corrections look at: a determiner, prepositions, a unit, verbs that end a clause, numbers.
    u"the",
    u"to",
    u"at",
    u"pm",
    u"did",
    u"6",
    u"Bob",
    // Symbols and separators.
    u"triple",
    u"double",
    u"not",
    u"fat",
    u"open",
    u"close",
    u"left",
    u"right",
    u"curly",
    u"square",
    u"equals",
    u"ampersand",
    u"pipe",
    u"arrow",
    u"brace",
    u"bracket",
    u"parenthesis",
    u"paren",
    u"semicolon",
    u"quote",
    u"single",
    u"exclamation",
    u"mark",
    u"question",
    u"dollar",
    u"sign",
    u"percent",
    u"backslash",
    u"forward",
    u"slash",
    u"backtick",
    u"asterisk",
    u"caret",
    u"tilde",
    u"colon",
    u"hyphen",
    u"comma",
    u"hash",
    u"pound",
    u"bang",
    u"underscore",
    u"dot",
    u"dash",
    // Commands, other capitals, letters that fold to plain ones.
    u"Git",
    u"IS",
    u"ſlaſh",
    u"\u212Anow",
    u"a\uFB06erisk",
    u"ΑΣ",
    u"ßx",
};

constexpr std::array others{
    u",",      u".",      u"!",      u"?",  u"…",  u"。", u"、",    u";",        u":",      u"-",
    u" –",     u" —",     u"_",      u"/",  u"'",  u"(",  u" )",    u"==",       u" && ",   u" ",
    u"\n",     u"\u00A0", u"\t- ",   u"um", u"5",  u" é", u" 🙂", u"👩\u200D👧", u"\u0301", u"\u0903",
    u"\u0345", u"\u200D", u"\u0600", u"🇩",  u"$1", u"\\", u"\r",
};

std::vector<QString> made() {
    std::vector<QString> pieces;
    for (const char16_t* word : words)
        pieces.push_back(QString(u' ').append(QStringView(word)));
    for (const char16_t* other : others)
        pieces.push_back(QStringView(other).toString());
    pieces.push_back(QString(QChar(u'\0')));
    pieces.push_back(QString(QChar(u'\uE000')));
    pieces.push_back(QString(QChar(char16_t{0xD83D})));
    pieces.push_back(QString(QChar(char16_t{0xDE42})));
    return pieces;
}

} // namespace

const std::vector<QString>& vocabulary() {
    static const std::vector<QString> pieces = made();
    return pieces;
}

} // namespace velorin::agreement
