#include "text/CaseMapping.h"

#include "text/Characters.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <algorithm>

namespace velorin::CaseMapping {

namespace {

bool isAscii(QStringView text) {
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

template <typename Map>
QString mapped(QStringView text, Map map) {
    QString result(text.size(), Qt::Uninitialized);
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        const auto length =
            map(reinterpret_cast<char16_t*>(result.data()), static_cast<int32_t>(result.size()), text.utf16(),
                static_cast<int32_t>(text.size()), &status);
        const bool fits = length <= result.size();
        result.resize(length);
        if (fits)
            return result;
    }
}

bool isCaseIgnorable(char32_t codePoint) {
    return u_hasBinaryProperty(static_cast<UChar32>(codePoint), UCHAR_CASE_IGNORABLE);
}

/// Back to the first code point that counts when the case of its neighbour is asked for.
QStringView contextBefore(QStringView text, qsizetype position) {
    qsizetype start = position;
    while (start > 0) {
        const char32_t c = Characters::codePointBefore(text, start);
        start -= Characters::length(c);
        if (!isCaseIgnorable(c))
            break;
    }
    return text.sliced(start, position - start);
}

QStringView contextBehind(QStringView text, qsizetype position) {
    qsizetype end = position;
    while (end < text.size()) {
        const char32_t c = Characters::codePointAt(text, end);
        end += Characters::length(c);
        if (!isCaseIgnorable(c))
            break;
    }
    return text.sliced(position, end - position);
}

bool isSingleCodePoint(QStringView character) {
    return !character.isEmpty() &&
           Characters::length(Characters::codePointAt(character, 0)) == character.size();
}

bool hasProperty(QStringView character, UProperty property) {
    return u_hasBinaryProperty(static_cast<UChar32>(Characters::codePointAt(character, 0)), property);
}

} // namespace

QString lower(QStringView text) {
    return mapped(text, [](char16_t* out, int32_t room, const char16_t* in, int32_t size,
                           UErrorCode* status) { return u_strToLower(out, room, in, size, "", status); });
}

QString lowerPart(QStringView text, qsizetype start, qsizetype end) {
    const QStringView part = text.sliced(start, end - start);
    if (!part.contains(QChar(u'\u03A3')))
        return lower(part);
    const QStringView before = contextBefore(text, start);
    const QStringView behind = contextBehind(text, end);
    const QString whole = lower(QStringView(before.begin(), behind.end()));
    const qsizetype first = lower(before).size();
    return whole.sliced(first, whole.size() - lower(behind).size() - first);
}

QString upper(QStringView text) {
    return mapped(text, [](char16_t* out, int32_t room, const char16_t* in, int32_t size,
                           UErrorCode* status) { return u_strToUpper(out, room, in, size, "", status); });
}

QString folded(QStringView text) {
    return mapped(text,
                  [](char16_t* out, int32_t room, const char16_t* in, int32_t size, UErrorCode* status) {
                      return u_strFoldCase(out, room, in, size, U_FOLD_CASE_DEFAULT, status);
                  });
}

bool equalIgnoringCase(QStringView a, QStringView b) { return folded(a) == folded(b); }

bool isLower(QStringView character) {
    if (character.isEmpty())
        return false;
    if (isSingleCodePoint(character) && hasProperty(character, UCHAR_LOWERCASE))
        return true;
    return !isAscii(character) && lower(character) == character && upper(character) != character;
}

bool isUpper(QStringView character) {
    if (character.isEmpty())
        return false;
    if (isSingleCodePoint(character) && hasProperty(character, UCHAR_UPPERCASE))
        return true;
    return !isAscii(character) && upper(character) == character && lower(character) != character;
}

} // namespace velorin::CaseMapping
