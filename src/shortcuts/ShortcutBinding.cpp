#include "shortcuts/ShortcutBinding.h"

#include <QCoreApplication>
#include <QHash>

#include <cstddef>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

/// Whether the binding fires while exactly these modifier keys are down.
bool triggers(const ShortcutBinding& binding, const KeyCodeSet& held) {
    return ShortcutBinding::modifiersFor(held).contains(binding.modifiers) &&
           (!binding.exactModifierKeyCodes ||
            ShortcutBinding::exactModifierKeyCodesMatch(held, *binding.exactModifierKeyCodes, {})) &&
           (binding.kind != ShortcutBindingKind::modifierKey || held.contains(binding.keyCode));
}

KeyCodeSet modifierKeysOfMask(unsigned mask) {
    KeyCodeSet keys;
    for (std::size_t bit = 0; bit < ShortcutBinding::modifierKeyCodes.size(); ++bit) {
        if ((mask >> bit & 1U) != 0)
            keys.insert(ShortcutBinding::modifierKeyCodes[bit]);
    }
    return keys;
}

qsizetype nameCount(const ShortcutBinding& binding) {
    return ShortcutBinding::modifierDisplayNames(binding.modifiers, binding.displayedExactModifierKeyCodes())
        .size();
}

} // namespace

QString rawString(ShortcutBindingKind kind) {
    switch (kind) {
    case ShortcutBindingKind::disabled:
        return u"disabled"_s;
    case ShortcutBindingKind::key:
        return u"key"_s;
    case ShortcutBindingKind::modifierKey:
        return u"modifierKey"_s;
    }
    Q_UNREACHABLE();
}

QString rawString(ShortcutPreset preset) {
    switch (preset) {
    case ShortcutPreset::fnKey:
        return u"fn"_s;
    case ShortcutPreset::rightOption:
        return u"rightOption"_s;
    case ShortcutPreset::f5:
        return u"f5"_s;
    }
    Q_UNREACHABLE();
}

ShortcutBinding ShortcutBinding::disabled() {
    // Stored and compared with the rest, so this word is never translated.
    return {.keyDisplay = u"Disabled"_s};
}

std::optional<KeyCodeSet> ShortcutBinding::displayedExactModifierKeyCodes() const {
    auto displayed = exactModifierKeyCodes;
    if (displayed && kind == ShortcutBindingKind::modifierKey)
        displayed->remove(keyCode);
    return normalizedExactModifierKeyCodes(displayed);
}

QString ShortcutBinding::displayName() const {
    if (kind == ShortcutBindingKind::disabled)
        return QCoreApplication::translate("ShortcutBinding", "Disabled");
    auto names = modifierDisplayNames(modifiers, displayedExactModifierKeyCodes());
    names += kind == ShortcutBindingKind::modifierKey
                 ? exactModifierDisplayLabel(keyCode).value_or(keyDisplay)
                 : keyDisplay;
    return names.join(u" + "_s);
}

QString ShortcutBinding::id() const {
    QStringList codes;
    for (const auto code : orderedExactModifierKeyCodes(exactModifierKeyCodes.value_or(KeyCodeSet())))
        codes += QString::number(code);
    return QStringList{rawString(kind), QString::number(keyCode), QString::number(modifiers.rawValue),
                       preset ? rawString(*preset) : u"custom"_s, codes.join(u',')}
        .join(u':');
}

bool ShortcutBinding::conflicts(const ShortcutBinding& other) const {
    if (kind == ShortcutBindingKind::disabled || kind != other.kind || keyCode != other.keyCode)
        return false;
    // With one modifier more, a shortcut extends another: that is no conflict.
    if (nameCount(*this) != nameCount(other))
        return false;
    for (unsigned mask = 0; mask < 1U << modifierKeyCodes.size(); ++mask) {
        const auto held = modifierKeysOfMask(mask);
        if (triggers(*this, held) && triggers(other, held))
            return true;
    }
    return false;
}

size_t qHash(const ShortcutBinding& binding, size_t seed) noexcept {
    const auto& exact = binding.exactModifierKeyCodes;
    seed = qHashMulti(seed, binding.keyCode, binding.keyDisplay, binding.modifiers.rawValue,
                      static_cast<int>(binding.kind), binding.preset ? static_cast<int>(*binding.preset) : -1,
                      exact.has_value());
    return exact ? qHashRange(exact->begin(), exact->end(), seed) : seed;
}

} // namespace velorin
