#include "shortcuts/ShortcutConfiguration.h"

#include <QCoreApplication>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

QString summaryPart(ShortcutRole role) {
    switch (role) {
    case ShortcutRole::hold:
        return QCoreApplication::translate("ShortcutConfiguration", "Hold %1");
    case ShortcutRole::toggle:
        return QCoreApplication::translate("ShortcutConfiguration", "Tap %1");
    case ShortcutRole::copyAgain:
        return QCoreApplication::translate("ShortcutConfiguration", "Again %1");
    }
    Q_UNREACHABLE();
}

ShortcutBinding fnBinding(ShortcutModifiers modifiers) {
    return {.keyCode = 63,
            .keyDisplay = u"Fn"_s,
            .modifiers = modifiers,
            .kind = ShortcutBindingKind::modifierKey,
            .preset = ShortcutPreset::fnKey};
}

} // namespace

QString rawString(ShortcutRole role) {
    switch (role) {
    case ShortcutRole::hold:
        return u"hold"_s;
    case ShortcutRole::toggle:
        return u"toggle"_s;
    case ShortcutRole::copyAgain:
        return u"copyAgain"_s;
    }
    Q_UNREACHABLE();
}

ShortcutConfiguration ShortcutConfiguration::disabled() { return {}; }

ShortcutConfiguration ShortcutConfiguration::defaultConfiguration() {
    return {.hold = fnBinding({}), .toggle = fnBinding(ShortcutModifiers::command)};
}

const ShortcutBinding& ShortcutConfiguration::binding(ShortcutRole role) const {
    switch (role) {
    case ShortcutRole::hold:
        return hold;
    case ShortcutRole::toggle:
        return toggle;
    case ShortcutRole::copyAgain:
        return copyAgain;
    }
    Q_UNREACHABLE();
}

ShortcutConfiguration ShortcutConfiguration::replacing(ShortcutRole role,
                                                       const ShortcutBinding& binding) const {
    auto copy = *this;
    switch (role) {
    case ShortcutRole::hold:
        copy.hold = binding;
        break;
    case ShortcutRole::toggle:
        copy.toggle = binding;
        break;
    case ShortcutRole::copyAgain:
        copy.copyAgain = binding;
        break;
    }
    return copy;
}

QString ShortcutConfiguration::summary() const {
    if (isDisabled())
        return QCoreApplication::translate("ShortcutConfiguration", "Disabled");
    QStringList parts;
    for (const auto role : allShortcutRoles) {
        if (binding(role).kind != ShortcutBindingKind::disabled)
            parts += summaryPart(role).arg(binding(role).displayName());
    }
    return parts.join(u" · "_s);
}

bool ShortcutConfiguration::isDisabled() const {
    return std::ranges::all_of(allShortcutRoles, [this](ShortcutRole role) {
        return binding(role).kind == ShortcutBindingKind::disabled;
    });
}

std::vector<std::pair<ShortcutRole, ShortcutRole>> ShortcutConfiguration::conflictingRoles() const {
    constexpr std::pair<ShortcutRole, ShortcutRole> pairs[] = {
        {ShortcutRole::hold, ShortcutRole::toggle},
        {ShortcutRole::hold, ShortcutRole::copyAgain},
        {ShortcutRole::toggle, ShortcutRole::copyAgain}};
    std::vector<std::pair<ShortcutRole, ShortcutRole>> conflicting;
    for (const auto& pair : pairs) {
        if (binding(pair.first).conflicts(binding(pair.second)))
            conflicting.push_back(pair);
    }
    return conflicting;
}

} // namespace velorin
