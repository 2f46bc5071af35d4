/// One global shortcut: the key that fires it and the modifiers that must be held with it.
///
/// A binding of kind `key` fires on an ordinary key, one of kind `modifierKey` on a modifier key itself
/// (holding Fn alone, for example). With exact modifier codes it tells left from right and refuses further
/// modifiers; without them, further modifiers are no obstacle.
///
///     ShortcutBinding{.keyCode = 96, .keyDisplay = u"F5"_s, .kind = ShortcutBindingKind::key}.displayName()
///     // "F5"
///
/// Plain data and pure functions, for any thread.
#pragma once

#include "shortcuts/KeyCodeSet.h"
#include "shortcuts/ShortcutModifiers.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>
#include <vector>

namespace velorin {

enum class ShortcutBindingKind { disabled, key, modifierKey };

/// The ready-made choice that a binding came from; it is remembered and decides nothing.
enum class ShortcutPreset { fnKey, rightOption, f5 };

inline constexpr std::array allShortcutPresets{ShortcutPreset::fnKey, ShortcutPreset::rightOption,
                                               ShortcutPreset::f5};

/// "disabled", "key", "modifierKey".
[[nodiscard]] QString rawString(ShortcutBindingKind kind);
/// "fn", "rightOption", "f5".
[[nodiscard]] QString rawString(ShortcutPreset preset);

/// The keys of one logical modifier, left before right; the one Fn key is both.
struct ModifierKeyCodeMatchSpec {
    ShortcutModifiers logicalModifier;
    quint16 left;
    quint16 right;
};

inline constexpr std::array<ModifierKeyCodeMatchSpec, 5> modifierKeyCodeMatchSpecs{{
    {ShortcutModifiers::command, 55, 54},
    {ShortcutModifiers::control, 59, 62},
    {ShortcutModifiers::option, 58, 61},
    {ShortcutModifiers::shift, 56, 60},
    {ShortcutModifiers::function, 63, 63},
}};

struct ShortcutBinding {
    quint16 keyCode = 0;
    QString keyDisplay{}; ///< The key's label as it was captured.
    ShortcutModifiers modifiers{};
    ShortcutBindingKind kind = ShortcutBindingKind::disabled;
    std::optional<ShortcutPreset> preset{};
    std::optional<KeyCodeSet> exactModifierKeyCodes{};

    /// The modifier keys, ascending. Caps Lock (57) is none of them on purpose.
    static constexpr std::array<quint16, 9> modifierKeyCodes{54, 55, 56, 58, 59, 60, 61, 62, 63};

    [[nodiscard]] static ShortcutBinding disabled();

    /// The union of the logical modifiers of the keys; codes of other keys add nothing.
    [[nodiscard]] static ShortcutModifiers modifiersFor(const KeyCodeSet& codes);

    /// Only the modifier keys of the set; an empty outcome is none.
    [[nodiscard]] static std::optional<KeyCodeSet>
    normalizedExactModifierKeyCodes(const std::optional<KeyCodeSet>& codes);

    /// The modifier keys of the set in the order in which they are shown: family by family, left before
    /// right.
    [[nodiscard]] static std::vector<quint16> orderedExactModifierKeyCodes(const KeyCodeSet& codes);

    /// Whether the keys that are down are the wanted ones, family by family: a family that is not wanted
    /// must be up unless it is permitted, one side of a pair must be down alone, and of a pair that is wanted
    /// whole either key will do. An empty set of wanted keys so wants none but the permitted.
    [[nodiscard]] static bool
    exactModifierKeyCodesMatch(const KeyCodeSet& pressed, const KeyCodeSet& exact,
                               ShortcutModifiers permittedAdditionalExactMatchModifiers);

    /// One label a modifier: side by side where exact codes name sides, the general one otherwise.
    [[nodiscard]] static QStringList
    modifierDisplayNames(ShortcutModifiers modifiers, const std::optional<KeyCodeSet>& exactModifierKeyCodes);

    /// "Right Cmd ⌘" and its like; none for a key that is no modifier.
    [[nodiscard]] static std::optional<QString> exactModifierDisplayLabel(quint16 keyCode);

    /// The exact codes that stand before the key's own name: without the key itself, none if nothing is left.
    [[nodiscard]] std::optional<KeyCodeSet> displayedExactModifierKeyCodes() const;

    /// What the user reads: "Cmd ⌘ + Fn", or "Disabled".
    [[nodiscard]] QString displayName() const;

    /// Tells bindings apart, as "kind:code:modifiers:preset:exact codes".
    [[nodiscard]] QString id() const;

    /// Whether some set of held modifiers would fire both without one being an extension of the other.
    /// Tries every set: for the settings, not for the path of a keystroke.
    [[nodiscard]] bool conflicts(const ShortcutBinding& other) const;

    /// None if anything that must be there is missing, of another type, out of range or unknown. A number
    /// must be whole; fields that are not ours are ignored.
    [[nodiscard]] static std::optional<ShortcutBinding> fromJson(const QJsonValue& json);
    [[nodiscard]] QJsonObject toJson() const;

    bool operator==(const ShortcutBinding&) const = default;
};

[[nodiscard]] size_t qHash(const ShortcutBinding& binding, size_t seed = 0) noexcept;

} // namespace velorin
