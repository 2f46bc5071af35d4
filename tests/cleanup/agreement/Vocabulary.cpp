#include "Vocabulary.h"

#include <algorithm>
#include <initializer_list>

namespace velorin::agreement {

using namespace Qt::Literals::StringLiterals;

namespace {

using Words = std::initializer_list<const char16_t*>;

/// Words with a space before them, then other pieces as they are.
Pieces made(Words words, Words others) {
    Pieces pieces;
    for (const char16_t* word : words)
        pieces.push_back(QString(u' ').append(QStringView(word)));
    for (const char16_t* other : others)
        pieces.push_back(QStringView(other).toString());
    return pieces;
}

Pieces layout() {
    return made({u"new", u"next", u"paragraph", u"break", u"newline", u"line", u"bullet", u"point", u"a"},
                {u".", u",", u"!", u"s", u"\u0301", u" - ", u" ", u"\n", u"\t", u"\r"});
}

Pieces fillers() {
    return made({u"umm", u"uhh", u"mmm", u"hmm", u"erm", u"euh", u"um", u"uh", u"er", u"ah", u"eh", u"उम",
                 u"えーと", u"えっと", u"like", u"you", u"know"},
                {u",", u" ,", u"、", u" ", u".", u"um", u"\u0301", u"\u0903", u"like", u"n"});
}

Pieces corrections() {
    return made({u"scratch", u"that", u"wait", u"i",   u"mean", u"meant", u"no",  u"actually",
                 u"sorry",   u"make", u"the",  u"a",   u"this", u"to",    u"at",  u"into",
                 u"pm",      u"did",  u"kar",  u"6",   u"it",   u"we",    u"Bob", u"big",
                 u"ΑΣ",      u"ας",   u"red",  u"Red", u"dog",  u"état",  u"née"},
                {u",", u".", u"!", u"?", u"、", u"。", u", no", u", actually", u" ", u"'", u"-", u"\u0301",
                 u"\u0600", u"é"});
}

Pieces symbols() {
    return made({u"triple",    u"double",   u"not",      u"fat",         u"open",        u"close",
                 u"left",      u"right",    u"curly",    u"square",      u"equals",      u"ampersand",
                 u"pipe",      u"arrow",    u"brace",    u"bracket",     u"parenthesis", u"paren",
                 u"semicolon", u"quote",    u"single",   u"exclamation", u"mark",        u"question",
                 u"dollar",    u"sign",     u"percent",  u"at",          u"backslash",   u"forward",
                 u"slash",     u"backtick", u"asterisk", u"caret",       u"tilde",       u"colon",
                 u"hyphen",    u"comma",    u"hash",     u"pound",       u"bang",        u"a\uFB06erisk"},
                {u"x", u" ", u".", u"\u0301", u"\u0345", u"\u0600", u"5"});
}

Pieces operators() {
    return made({u"equals", u"double", u"x", u"Git", u"NPM"},
                {u"=", u"==", u"!", u"=>", u"&&", u" | ", u"||", u"(", u" ( ", u")",     u" )",
                 u"[", u" ]", u" ", u".",  u"-",  u" –",  u" —", u"–", u" - ", u"\u00A0"});
}

Pieces separators() {
    return made({u"slash", u"underscore", u"dot", u"arrow", u"dash", u"double", u"hyphen", u"at", u"jo",
                 u"me", u"the", u"IS", u"a1", u"com", u"ſlaſh"},
                {u"_", u".", u"/", u"-", u"+", u"\u0301", u"é", u" ", u"ſ"});
}

Pieces unicode() {
    Pieces pieces = made({u"\u212Anow", u"ßx", u"s", u"f", u"İ", u"é", u"🙂", u"ǆ", u"ΟΔΟΣ"},
                         {u"…", u";",        u":",      u"ß",      u"ﬁ",      u"ﬀ",      u"i",
                          u"s", u"👩\u200D👧", u"\u0301", u"\u0903", u"\u0345", u"\u200D", u"\u0600",
                          u"🇩", u"$1",       u"\\",     u"Σ",      u"\u0307", u"ⓐ",      u"\u2028"});
    pieces.push_back(QString(QChar(u'\0')));
    pieces.push_back(QString(QChar(u'\uE000')));
    pieces.push_back(QString(QChar(char16_t{0xD83D})));
    pieces.push_back(QString(QChar(char16_t{0xDE42})));
    return pieces;
}

Pieces allOnce() {
    Pieces all;
    for (const Pieces& theme : themes())
        all.insert(all.end(), theme.begin(), theme.end());
    std::ranges::sort(all);
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

} // namespace

const std::vector<Pieces>& themes() {
    static const std::vector<Pieces> all{layout(),    fillers(),    corrections(), symbols(),
                                         operators(), separators(), unicode()};
    return all;
}

const Pieces& vocabulary() {
    static const Pieces pieces = allOnce();
    return pieces;
}

} // namespace velorin::agreement
