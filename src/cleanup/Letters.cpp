#include "cleanup/Letters.h"

#include "text/Characters.h"

#include <unicode/uchar.h>
#include <unicode/uniset.h>

#include <array>

namespace velorin::Letters {

namespace {

enum : std::uint8_t { isWordBit = 1, isLetterOrNumberBit = 2 };

constexpr std::array<std::uint8_t, 128> asciiTable = [] {
    std::array<std::uint8_t, 128> table{};
    for (unsigned i = 0; i < 26; ++i) {
        const auto kind = static_cast<std::uint8_t>(isWordBit | isLetterOrNumberBit);
        table['a' + i] = kind;
        table['A' + i] = kind;
    }
    for (unsigned c = '0'; c <= '9'; ++c)
        table[c] = isWordBit | isLetterOrNumberBit;
    table['_'] = isWordBit;
    return table;
}();

constexpr char16_t ligatureLongST = 0xFB05;
constexpr char16_t ligatureST = 0xFB06;

bool isLigatureOfST(char16_t unit) { return unit == ligatureLongST || unit == ligatureST; }

icu::UnicodeSet frozenSet(const char16_t* pattern, int32_t closure) {
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeSet set(icu::UnicodeString(pattern), status);
    if (closure != 0)
        set.closeOver(closure);
    set.freeze();
    return set;
}

bool isWordCharacter(char32_t c) {
    if (c < 0x80)
        return (asciiTable[c] & isWordBit) != 0;
    static const icu::UnicodeSet set = frozenSet(u"[\\p{Alphabetic}\\p{M}\\p{Nd}\\p{Pc}\\u200c\\u200d]", 0);
    return set.contains(static_cast<UChar32>(c));
}

bool isLetterOrNumber(char32_t c) {
    if (c < 0x80)
        return (asciiTable[c] & isLetterOrNumberBit) != 0;
    // Patterns that disregard case take in what folds to a letter, U+0345 for one.
    static const icu::UnicodeSet set = frozenSet(u"[\\p{L}\\p{N}]", USET_CASE_INSENSITIVE);
    return set.contains(static_cast<UChar32>(c));
}

/// Marks and format characters belong to the character before them: no word begins or ends there.
bool isAttached(char32_t c) {
    return c >= 0x80 && (u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_GRAPHEME_EXTEND) ||
                         u_charType(static_cast<UChar32>(c)) == U_FORMAT_CHAR);
}

bool endsInWord(QStringView text, qsizetype position) {
    while (position > 0) {
        const char32_t c = Characters::codePointBefore(text, position);
        if (!isAttached(c))
            return isWordCharacter(c);
        position -= Characters::length(c);
    }
    return false;
}

bool mayBeginForeignFiller(char16_t unit) { return unit == u'उ' || unit == u'え'; }

/// A filler in a script without case, as far as the scan knows: whole words are told later.
qsizetype foreignFillerAt(QStringView text, qsizetype position) {
    for (const QStringView filler : {QStringView(u"उम"), QStringView(u"えーと"), QStringView(u"えっと")}) {
        if (text.sliced(position).startsWith(filler))
            return filler.size();
    }
    return 0;
}

} // namespace

Run runAt(QStringView text, qsizetype position) {
    const char16_t* const begin = text.utf16();
    const char16_t* const end = begin + text.size();
    const char16_t* unit = begin + position;
    WordKey key = 0;
    for (; unit < end; ++unit) {
        if (const unsigned letter = plainLetter(*unit))
            key = extended(key, letter);
        else if (isLigatureOfST(*unit))
            key = extended(extended(key, plainLetter(u's')), plainLetter(u't'));
        else
            break;
    }
    // The first letter of a word that is too long has been pushed out of the key, or will be in its way.
    const bool isKeyed = unit - begin - position <= longestKeyedWord && key < WordKey{1}
                                                                                  << 5 * longestKeyedWord;
    return {position, unit - begin, isKeyed ? key : 0};
}

Run runBefore(QStringView text, qsizetype position, qsizetype limit) {
    qsizetype start = position;
    while (start > limit &&
           (isPlainLetter(text[start - 1].unicode()) || isLigatureOfST(text[start - 1].unicode())))
        --start;
    return runAt(text.first(position), start);
}

Run nextRun(QStringView text, qsizetype position) {
    const char16_t* const units = text.utf16();
    for (const qsizetype size = text.size(); position < size; ++position) {
        const char16_t unit = units[position];
        if (isPlainLetter(unit) || (unit >= 0x80 && isLigatureOfST(unit)))
            return runAt(text, position);
        if (mayBeginForeignFiller(unit)) {
            if (const qsizetype filler = foreignFillerAt(text, position))
                return {position, position + filler, foreignFiller};
        }
    }
    return {position, position, 0};
}

bool isWordBoundary(QStringView text, qsizetype position) {
    bool isInWord = false;
    if (position < text.size()) {
        const char32_t c = Characters::codePointAt(text, position);
        if (isAttached(c))
            return false;
        isInWord = isWordCharacter(c);
    }
    return isInWord != endsInWord(text, position);
}

bool isFreeBefore(QStringView text, qsizetype position) {
    return position == 0 || !isLetterOrNumber(Characters::codePointBefore(text, position));
}

bool isFreeBehind(QStringView text, qsizetype position) {
    return position == text.size() || !isLetterOrNumber(Characters::codePointAt(text, position));
}

} // namespace velorin::Letters
