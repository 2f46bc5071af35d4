/// The words, phrases and patterns of the cleanup, as data: each table in the order in which it applies.
///
/// Words are lower case and looked up by exact match against lower-cased text; patterns are in ICU's dialect
/// and apply without regard to case.
#pragma once

#include <QStringView>

#include <algorithm>
#include <array>

namespace velorin::Tables {

struct Substitution {
    QStringView spoken;
    QStringView written;
};

template <std::size_t size>
[[nodiscard]] bool contains(const std::array<QStringView, size>& words, QStringView word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// The characters that finish a text.
inline constexpr std::array<QStringView, 6> finishedEndings{u".", u",", u"!", u"?", u"…", u"。"};

/// Spoken commands, as patterns, and the line ends and bullets that they stand for.
inline constexpr std::array<Substitution, 7> layoutCommands{{
    {u"\\b(?:new|next)\\s+paragraph(?:\\s+break)?\\b[.,!?]?", u"\n\n"},
    {u"\\bparagraph\\s+break\\b[.,!?]?", u"\n\n"},
    {u"\\b(?:new|next)\\s+line\\b[.,!?]?", u"\n"},
    {u"\\bnewline\\b[.,!?]?", u"\n"},
    {u"\\bline\\s+break\\b[.,!?]?", u"\n"},
    {u"\\b(?:new|next)\\s+bullet(?:\\s+point)?\\b[.,!?]?", u"\n- "},
    {u"\\bbullet\\s+point\\b[.,!?]?", u"\n- "},
}};

/// Commands of a shell that a recogniser capitalises at the head of a sentence.
inline constexpr std::array<QStringView, 17> commandNames{
    u"npm",  u"npx",    u"pnpm",    u"yarn",  u"bun",   u"git",  u"brew", u"pip", u"python",
    u"node", u"docker", u"kubectl", u"cargo", u"swift", u"make", u"cd",   u"ls",
};

/// After one of these a spoken separator is prose: "the dot com bubble".
inline constexpr std::array<QStringView, 51> functionWords{
    u"the",   u"a",     u"an",  u"of",   u"is",  u"are",  u"was",  u"were", u"be",   u"been", u"in",
    u"on",    u"at",    u"to",  u"for",  u"and", u"or",   u"but",  u"with", u"this", u"that", u"these",
    u"those", u"it",    u"its", u"as",   u"by",  u"has",  u"have", u"had",  u"do",   u"does", u"did",
    u"we",    u"i",     u"you", u"they", u"he",  u"she",  u"not",  u"no",   u"all",  u"any",  u"our",
    u"your",  u"their", u"my",  u"his",  u"her", u"from", u"into",
};

/// What joins the words on both sides of it.
inline constexpr std::array<Substitution, 4> spokenSeparators{{
    {u"slash", u"/"},
    {u"underscore", u"_"},
    {u"dot", u"."},
    {u"arrow", u"->"},
}};

/// Symbols by their spoken names, for code. They apply from the longest name to the shortest.
inline constexpr std::array<Substitution, 47> codeSymbols{{
    {u"triple equals", u"==="},
    {u"double equals", u"=="},
    {u"not equals", u"!="},
    {u"double ampersand", u"&&"},
    {u"double pipe", u"||"},
    {u"fat arrow", u"=>"},
    {u"open curly brace", u"{"},
    {u"close curly brace", u"}"},
    {u"open square bracket", u"["},
    {u"close square bracket", u"]"},
    {u"open parenthesis", u"("},
    {u"close parenthesis", u")"},
    {u"left brace", u"{"},
    {u"right brace", u"}"},
    {u"left bracket", u"["},
    {u"right bracket", u"]"},
    {u"left paren", u"("},
    {u"right paren", u")"},
    {u"open brace", u"{"},
    {u"close brace", u"}"},
    {u"open bracket", u"["},
    {u"close bracket", u"]"},
    {u"open paren", u"("},
    {u"close paren", u")"},
    {u"semicolon", u";"},
    {u"double quote", u"\""},
    {u"single quote", u"'"},
    {u"exclamation mark", u"!"},
    {u"question mark", u"?"},
    {u"dollar sign", u"$"},
    {u"percent sign", u"%"},
    {u"at sign", u"@"},
    {u"backslash", u"\\"},
    {u"forward slash", u"/"},
    {u"backtick", u"`"},
    {u"ampersand", u"&"},
    {u"asterisk", u"*"},
    {u"caret", u"^"},
    {u"tilde", u"~"},
    {u"colon", u":"},
    {u"equals", u"="},
    {u"hyphen", u"-"},
    {u"comma", u","},
    {u"pipe", u"|"},
    {u"hash sign", u"#"},
    {u"pound sign", u"#"},
    {u"bang", u"!"},
}};

/// Words that begin a sentence anew. Those with an apostrophe never match words, which split there.
inline constexpr std::array<QStringView, 12> pronouns{
    u"it's", u"its", u"it", u"i'll", u"i", u"let's", u"lets", u"we", u"you", u"they", u"he", u"she",
};

inline constexpr std::array<QStringView, 13> determiners{
    u"the", u"a",    u"an",  u"this",  u"that", u"these", u"those",
    u"my",  u"your", u"our", u"their", u"his",  u"her",
};

inline constexpr std::array<QStringView, 8> units{
    u"pm", u"am", u"hours", u"hrs", u"minutes", u"seconds", u"baje", u"bje",
};

/// English and romanised Hindi verbs that end a clause.
inline constexpr std::array<QStringView, 27> auxiliaries{
    u"do",    u"does",  u"did",  u"done", u"kar",  u"karo",  u"karna", u"kare",  u"kiya",
    u"hai",   u"hain",  u"tha",  u"thi",  u"hoga", u"hogi",  u"likho", u"likha", u"bhej",
    u"bhejo", u"rakho", u"rakh", u"raha", u"rahi", u"karte", u"karta", u"karti", u"jao",
};

inline constexpr std::array<QStringView, 17> prepositions{
    u"to",    u"at",   u"on",    u"in",   u"for",   u"with",   u"from",    u"into",    u"by",
    u"about", u"over", u"under", u"near", u"after", u"before", u"between", u"through",
};

/// What announces a self-correction; the longer cues before their parts.
inline constexpr QStringView correctionCues =
    u"\\b(?:scratch that|wait,?\\s+i mean|i meant|no wait|actually no|no actually|sorry no|"
    u"no,?\\s+scratch that|make that|i mean|actually|sorry|wait|no)\\b";

/// The determiners where they stand as whole words.
inline constexpr QStringView determinerWords =
    u"\\b(?:the|a|an|this|that|these|those|my|your|our|their|his|her)\\b";

/// A spoken e-mail address; the words that it must not begin with are those of ordinary sentences.
inline constexpr QStringView spokenAddress =
    u"(?<![\\p{L}\\p{N}._%+-])(?!(?:me|it|him|her|them|us|you|this|that|there|here|email|mail|send|write|to|"
    u"look|stay|be|is|was|were|are)\\b)([A-Za-z0-9._%+-]+)\\s+at\\s+([A-Za-z0-9-]+)\\s+dot\\s+"
    u"([A-Za-z]{2,})(?![\\p{L}\\p{N}])";
inline constexpr QStringView writtenAddress = u"$1@$2.$3";

inline constexpr QStringView spokenLongFlag =
    u"\\b(?:dash|double|hyphen)[ -]dash\\s+([A-Za-z0-9][A-Za-z0-9_-]*)";
inline constexpr QStringView writtenLongFlag = u"--$1";

/// Two words and a spoken separator between them.
inline constexpr QStringView spokenSeparator =
    u"([A-Za-z0-9_][A-Za-z0-9_./-]*)\\s+(slash|underscore|dot|arrow)\\s+([A-Za-z0-9_][A-Za-z0-9_./-]*)";
/// Each pass joins neighbouring pairs, so this many reach chains of some hundred links.
inline constexpr int separatorPasses = 8;

/// Dashes as a recogniser typesets them before a letter, and the flags that were meant.
inline constexpr std::array<Substitution, 3> typesetFlags{{
    {u"(^|\\s)[-–—]\\s*[-–—]\\s*([A-Za-z])", u"$1--$2"},
    {u"(^|\\s)—\\s*([A-Za-z])", u"$1--$2"},
    {u"(^|\\s)–\\s*([A-Za-z])", u"$1-$2"},
}};

inline constexpr std::array<Substitution, 2> fillers{{
    {u"[,]?\\s*\\b(?:umm|uhh|mmm|hmm|erm|euh|um|uh|er|ah|eh|उम|えーと|えっと)\\b\\s*[,、]?\\s*", u" "},
    {u",\\s*(?:like|you know)\\s*,", u""},
}};

/// Spaces around punctuation, separators without a word between them, and those at the start.
inline constexpr std::array<Substitution, 5> punctuationSpacing{{
    {u"\\s+([,.;:!?])", u"$1"},
    {u"([、。])\\s+", u"$1"},
    {u",\\s*,", u","},
    {u"^[,;:\\s]+", u""},
    {u"\\s+$", u""},
}};

/// Brackets close up, operators get one space on each side.
inline constexpr std::array<Substitution, 6> codeSpacing{{
    {u"\\(\\s+", u"("},
    {u"\\s+\\)", u")"},
    {u"\\[\\s+", u"["},
    {u"\\s+\\]", u"]"},
    {u"[ \\t]*(===|!==|==|!=|=>|&&|\\|\\|)[ \\t]*", u" $1 "},
    {u"[ \\t]{2,}", u" "},
}};

/// One period at the very end, which is no part of code.
inline constexpr Substitution finalPeriod{u"\\s*\\.$", u""};

/// Spaces around line ends, and more than one empty line.
inline constexpr std::array<Substitution, 2> lineSpacing{{
    {u"[ \\t]*\\r?\\n[ \\t]*", u"\n"},
    {u"\\n{3,}", u"\n\n"},
}};

} // namespace velorin::Tables
