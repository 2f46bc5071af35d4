// The part of ShortcutBinding that knows the modifier keys.
#include "shortcuts/ShortcutBinding.h"

#include "shortcuts/ModifierKeyEventState.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

namespace velorin {
namespace {

/// In the order of the families; the left key alone has the same.
constexpr const char* genericLabels[] = {
    QT_TRANSLATE_NOOP("ShortcutBinding", "Cmd ⌘"),    QT_TRANSLATE_NOOP("ShortcutBinding", "Ctrl ⌃"),
    QT_TRANSLATE_NOOP("ShortcutBinding", "Option ⌥"), QT_TRANSLATE_NOOP("ShortcutBinding", "Shift ⇧"),
    QT_TRANSLATE_NOOP("ShortcutBinding", "Fn 🌐"),
};
static_assert(std::size(genericLabels) == modifierKeyCodeMatchSpecs.size());

struct KeyLabel {
    quint16 keyCode;
    const char* label;
};

/// Fn has no globe here, unlike the modifier.
constexpr KeyLabel keyLabels[] = {
    {54, QT_TRANSLATE_NOOP("ShortcutBinding", "Right Cmd ⌘")},
    {55, QT_TRANSLATE_NOOP("ShortcutBinding", "Cmd ⌘")},
    {56, QT_TRANSLATE_NOOP("ShortcutBinding", "Shift ⇧")},
    {58, QT_TRANSLATE_NOOP("ShortcutBinding", "Option ⌥")},
    {59, QT_TRANSLATE_NOOP("ShortcutBinding", "Ctrl ⌃")},
    {60, QT_TRANSLATE_NOOP("ShortcutBinding", "Right Shift ⇧")},
    {61, QT_TRANSLATE_NOOP("ShortcutBinding", "Right Option ⌥")},
    {62, QT_TRANSLATE_NOOP("ShortcutBinding", "Right Ctrl ⌃")},
    {63, QT_TRANSLATE_NOOP("ShortcutBinding", "Fn")},
};

QString translated(const char* label) { return QCoreApplication::translate("ShortcutBinding", label); }

QStringList familyNames(std::size_t row, bool isLogical, const KeyCodeSet& exact) {
    const auto& family = modifierKeyCodeMatchSpecs[row];
    const bool left = exact.contains(family.left);
    const bool right = exact.contains(family.right);
    if ((left && right) || (!left && !right && isLogical))
        return {translated(genericLabels[row])};
    if (left || right)
        return {*ShortcutBinding::exactModifierDisplayLabel(left ? family.left : family.right)};
    return {};
}

} // namespace

ShortcutModifiers ShortcutBinding::modifiersFor(const KeyCodeSet& codes) {
    ShortcutModifiers modifiers;
    for (const auto& family : modifierKeyCodeMatchSpecs) {
        if (codes.contains(family.left) || codes.contains(family.right))
            modifiers |= family.logicalModifier;
    }
    return modifiers;
}

std::optional<KeyCodeSet>
ShortcutBinding::normalizedExactModifierKeyCodes(const std::optional<KeyCodeSet>& codes) {
    if (!codes)
        return {};
    KeyCodeSet kept;
    for (const auto code : *codes) {
        if (ModifierKeyEventState::isModifierKeyCode(code))
            kept.insert(code);
    }
    return kept.isEmpty() ? std::nullopt : std::optional(kept);
}

std::vector<quint16> ShortcutBinding::orderedExactModifierKeyCodes(const KeyCodeSet& codes) {
    std::vector<quint16> ordered;
    for (const auto& family : modifierKeyCodeMatchSpecs) {
        if (codes.contains(family.left))
            ordered.push_back(family.left);
        if (family.right != family.left && codes.contains(family.right))
            ordered.push_back(family.right);
    }
    return ordered;
}

bool ShortcutBinding::exactModifierKeyCodesMatch(const KeyCodeSet& pressed, const KeyCodeSet& exact,
                                                 ShortcutModifiers permittedAdditionalExactMatchModifiers) {
    return std::ranges::all_of(modifierKeyCodeMatchSpecs, [&](const ModifierKeyCodeMatchSpec& family) {
        const auto wanted = std::pair(exact.contains(family.left), exact.contains(family.right));
        const auto held = std::pair(pressed.contains(family.left), pressed.contains(family.right));
        const bool isHeld = held.first || held.second;
        if (!wanted.first && !wanted.second)
            return !isHeld || permittedAdditionalExactMatchModifiers.contains(family.logicalModifier);
        return wanted.first && wanted.second ? isHeld : held == wanted;
    });
}

QStringList ShortcutBinding::modifierDisplayNames(ShortcutModifiers modifiers,
                                                  const std::optional<KeyCodeSet>& exactModifierKeyCodes) {
    const auto exact = normalizedExactModifierKeyCodes(exactModifierKeyCodes).value_or(KeyCodeSet());
    QStringList names;
    for (std::size_t row = 0; row < modifierKeyCodeMatchSpecs.size(); ++row)
        names += familyNames(row, modifiers.contains(modifierKeyCodeMatchSpecs[row].logicalModifier), exact);
    return names;
}

std::optional<QString> ShortcutBinding::exactModifierDisplayLabel(quint16 keyCode) {
    const auto row = std::ranges::find(keyLabels, keyCode, &KeyLabel::keyCode);
    return row == std::end(keyLabels) ? std::nullopt : std::optional(translated(row->label));
}

} // namespace velorin
