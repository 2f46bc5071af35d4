#include "shortcuts/ShortcutKeyNames.h"

#include "shortcuts/ShortcutBinding.h"

#include <QCoreApplication>

#include <algorithm>

namespace velorin::ShortcutKeyNames {
namespace {

struct Row {
    quint16 keyCode;
    const char* name;
};

constexpr Row table[] = {
    {49, QT_TRANSLATE_NOOP("ShortcutKeyNames", "Space")},
    {36, QT_TRANSLATE_NOOP("ShortcutKeyNames", "Return")},
    {48, QT_TRANSLATE_NOOP("ShortcutKeyNames", "Tab")},
    {53, QT_TRANSLATE_NOOP("ShortcutKeyNames", "Esc")},
    {51, QT_TRANSLATE_NOOP("ShortcutKeyNames", "Delete")},
    {123, QT_TRANSLATE_NOOP("ShortcutKeyNames", "Left")},
    {124, QT_TRANSLATE_NOOP("ShortcutKeyNames", "Right")},
    {125, QT_TRANSLATE_NOOP("ShortcutKeyNames", "Down")},
    {126, QT_TRANSLATE_NOOP("ShortcutKeyNames", "Up")},
    {96, "F5"},
    {97, "F6"},
    {98, "F7"},
    {100, "F8"},
    {101, "F9"},
    {109, "F10"},
    {103, "F11"},
    {111, "F12"},
    {0, "A"},
    {11, "B"},
    {8, "C"},
    {2, "D"},
    {14, "E"},
    {3, "F"},
    {5, "G"},
    {4, "H"},
    {34, "I"},
    {38, "J"},
    {40, "K"},
    {37, "L"},
    {46, "M"},
    {45, "N"},
    {31, "O"},
    {35, "P"},
    {12, "Q"},
    {15, "R"},
    {1, "S"},
    {17, "T"},
    {32, "U"},
    {9, "V"},
    {13, "W"},
    {7, "X"},
    {16, "Y"},
    {6, "Z"},
};

} // namespace

QString name(quint16 keyCode) {
    if (const auto modifier = ShortcutBinding::exactModifierDisplayLabel(keyCode))
        return *modifier;
    const auto row = std::ranges::find(table, keyCode, &Row::keyCode);
    if (row != std::end(table))
        return QCoreApplication::translate("ShortcutKeyNames", row->name);
    return QCoreApplication::translate("ShortcutKeyNames", "Key %1").arg(keyCode);
}

} // namespace velorin::ShortcutKeyNames
