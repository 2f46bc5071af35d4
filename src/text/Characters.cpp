#include "text/Characters.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace velorin::Characters {

namespace {

bool isOfCategory(char32_t codePoint, uint32_t mask) {
    return (U_GET_GC_MASK(static_cast<UChar32>(codePoint)) & mask) != 0;
}

} // namespace

bool isAlphanumeric(char32_t codePoint) {
    return isOfCategory(codePoint, U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK);
}

bool isLetter(char32_t codePoint) { return isOfCategory(codePoint, U_GC_L_MASK); }

bool isNumber(char32_t codePoint) { return isOfCategory(codePoint, U_GC_N_MASK); }

bool isPunctuation(char32_t codePoint) { return isOfCategory(codePoint, U_GC_P_MASK); }

char32_t codePointAt(QStringView text, qsizetype position) {
    UChar32 c = 0;
    U16_GET(text.utf16(), 0, position, text.size(), c);
    return static_cast<char32_t>(c);
}

char32_t codePointBefore(QStringView text, qsizetype position) {
    UChar32 c = 0;
    U16_PREV(text.utf16(), 0, position, c);
    return static_cast<char32_t>(c);
}

bool startsWithLetter(QStringView character) {
    return !character.isEmpty() && isLetter(codePointAt(character, 0));
}

bool startsWithNumber(QStringView character) {
    return !character.isEmpty() && isNumber(codePointAt(character, 0));
}

} // namespace velorin::Characters
