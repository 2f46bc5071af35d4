#include "cleanup/Letters.h"

#include "text/Characters.h"

#include <unicode/uchar.h>
#include <unicode/uniset.h>

#include <array>

namespace velorin::Letters {

namespace {

enum : std::uint8_t { letterBits = 0x1F, isWordBit = 0x20, isLetterOrNumberBit = 0x40 };

constexpr std::array<std::uint8_t, 128> asciiTable = [] {
    std::array<std::uint8_t, 128> table{};
    for (unsigned i = 0; i < 26; ++i) {
        const auto kind = static_cast<std::uint8_t>((i + 1) | isWordBit | isLetterOrNumberBit);
        table['a' + i] = kind;
        table['A' + i] = kind;
    }
    for (unsigned c = '0'; c <= '9'; ++c)
        table[c] = isWordBit | isLetterOrNumberBit;
    table['_'] = isWordBit;
    return table;
}();

constexpr unsigned letterNumber(char letter) { return static_cast<unsigned>(letter - 'a') + 1; }

constexpr char16_t longS = 0x17F;
constexpr char16_t kelvinSign = 0x212A;
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

/// A filler in a script without case, as far as the scan knows: whole words are told later.
qsizetype foreignFillerAt(QStringView text, qsizetype position) {
    for (const QStringView filler : {QStringView(u"उम"), QStringView(u"えーと"), QStringView(u"えっと")}) {
        if (text.sliced(position).startsWith(filler))
            return filler.size();
    }
    return 0;
}

} // namespace

unsigned plainLetter(char16_t unit) {
    if (unit < 0x80)
        return asciiTable[unit] & letterBits;
    if (unit == longS)
        return letterNumber('s');
    return unit == kelvinSign ? letterNumber('k') : 0;
}

Run runAt(QStringView text, qsizetype position) {
    const char16_t* const units = text.utf16();
    WordKey key = 0;
    int letters = 0;
    qsizetype end = position;
    for (; end < text.size(); ++end) {
        if (const unsigned letter = plainLetter(units[end])) {
            key = extended(key, letter);
            ++letters;
        } else if (isLigatureOfST(units[end])) {
            key = extended(extended(key, letterNumber('s')), letterNumber('t'));
            letters += 2;
        } else {
            break;
        }
    }
    return {position, end, letters <= longestKeyedWord ? key : 0};
}

Run nextRun(QStringView text, qsizetype position) {
    const char16_t* const units = text.utf16();
    for (; position < text.size(); ++position) {
        const char16_t unit = units[position];
        if (unit < 0x80 ? (asciiTable[unit] & letterBits) != 0 : isPlainLetter(unit) || isLigatureOfST(unit))
            return runAt(text, position);
        if (mayBeginForeignFiller(unit)) {
            if (const qsizetype size = foreignFillerAt(text, position))
                return {position, position + size, foreignFiller};
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
