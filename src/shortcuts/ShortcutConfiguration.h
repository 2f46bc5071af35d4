/// The three shortcuts of the application, and which further modifiers an exact match lets pass.
///
///     ShortcutConfiguration::defaultConfiguration().summary()  // "Hold Fn · Tap Cmd ⌘ + Fn"
#pragma once

#include "shortcuts/ShortcutBinding.h"

#include <QByteArray>

#include <utility>

namespace velorin {

enum class ShortcutRole { hold, toggle, copyAgain };

inline constexpr std::array allShortcutRoles{ShortcutRole::hold, ShortcutRole::toggle,
                                             ShortcutRole::copyAgain};

/// "hold", "toggle", "copyAgain".
[[nodiscard]] QString rawString(ShortcutRole role);

struct ShortcutConfiguration {
    ShortcutBinding hold = ShortcutBinding::disabled();
    ShortcutBinding toggle = ShortcutBinding::disabled();
    ShortcutBinding copyAgain = ShortcutBinding::disabled();
    ShortcutModifiers permittedAdditionalExactMatchModifiers{};

    [[nodiscard]] static ShortcutConfiguration disabled();

    /// Hold is Fn, toggle is command with Fn, copying again has no shortcut.
    [[nodiscard]] static ShortcutConfiguration defaultConfiguration();

    [[nodiscard]] const ShortcutBinding& binding(ShortcutRole role) const;

    /// A copy in which one role has another binding.
    [[nodiscard]] ShortcutConfiguration replacing(ShortcutRole role, const ShortcutBinding& binding) const;

    /// The shortcuts that are set, in one line; "Disabled" without any.
    [[nodiscard]] QString summary() const;

    /// Whether no shortcut is set.
    [[nodiscard]] bool isDisabled() const;

    /// The pairs that conflict, in the order of the roles.
    [[nodiscard]] std::vector<std::pair<ShortcutRole, ShortcutRole>> conflictingRoles() const;

    /// The stored form. All four fields must be there; see `ShortcutBinding::fromJson`.
    [[nodiscard]] static std::optional<ShortcutConfiguration> fromJson(const QJsonValue& json);
    [[nodiscard]] static std::optional<ShortcutConfiguration> fromJson(const QByteArray& json);
    [[nodiscard]] QJsonObject toJson() const;
    [[nodiscard]] QByteArray encoded() const;

    bool operator==(const ShortcutConfiguration&) const = default;
};

} // namespace velorin
