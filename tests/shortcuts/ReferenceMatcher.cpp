#include "ReferenceMatcher.h"

#include <map>

namespace velorin {
namespace {

struct ModifierKey {
    quint64 flag;
    qint64 bit;
};

const std::map<int, ModifierKey> modifierKeys{{54, {0x100000, 1}}, {55, {0x100000, 1}}, {56, {0x20000, 8}},
                                              {58, {0x80000, 4}},  {59, {0x40000, 2}},  {60, {0x20000, 8}},
                                              {61, {0x80000, 4}},  {62, {0x40000, 2}},  {63, {0x800000, 16}}};

std::set<int> intersection(const std::set<int>& a, const std::set<int>& b) {
    std::set<int> both;
    for (const int element : a) {
        if (b.contains(element))
            both.insert(element);
    }
    return both;
}

} // namespace

std::vector<ShortcutBinding> ReferenceMatcher::bindings() const {
    return {configuration_.hold, configuration_.toggle, configuration_.copyAgain};
}

bool ReferenceMatcher::matchesExactly(const std::set<int>& exact) const {
    for (const qint64 bit : {1, 2, 4, 8, 16}) {
        std::set<int> family;
        for (const auto& [key, modifier] : modifierKeys) {
            if (modifier.bit == bit)
                family.insert(key);
        }
        const auto wanted = intersection(family, exact);
        const auto held = intersection(family, modifiers);
        const bool isPermitted = (configuration_.permittedAdditionalExactMatchModifiers.rawValue & bit) != 0;
        if (wanted.empty() && !held.empty() && !isPermitted)
            return false;
        if (!wanted.empty() && wanted != family && held != wanted)
            return false;
        if (wanted == family && held.empty())
            return false;
    }
    return true;
}

bool ReferenceMatcher::hasModifiers(const ShortcutBinding& binding) const {
    qint64 active = 0;
    for (const int key : modifiers)
        active |= modifierKeys.at(key).bit;
    if ((active & binding.modifiers.rawValue) != binding.modifiers.rawValue)
        return false;
    if (!binding.exactModifierKeyCodes)
        return true;
    return matchesExactly({binding.exactModifierKeyCodes->begin(), binding.exactModifierKeyCodes->end()});
}

bool ReferenceMatcher::isHeld(const ShortcutBinding& binding) const {
    if (binding.kind == ShortcutBindingKind::disabled)
        return false;
    const auto& held = binding.kind == ShortcutBindingKind::key ? keys : modifiers;
    return held.contains(binding.keyCode) && hasModifiers(binding);
}

void ReferenceMatcher::findEdges(std::vector<ShortcutEvent>& edges) {
    using enum ShortcutEvent;
    const std::vector<std::vector<ShortcutEvent>> rising{
        {holdActivated}, {toggleActivated}, {copyAgainTriggered}};
    const std::vector<std::vector<ShortcutEvent>> falling{{holdDeactivated}, {toggleDeactivated}, {}};
    std::vector<bool> now;
    for (const auto& binding : bindings())
        now.push_back(isHeld(binding));
    for (std::size_t role = 0; role < 3; ++role) {
        if (now[role] == levels[role])
            continue;
        const auto& found = now[role] ? rising[role] : falling[role];
        edges.insert(edges.end(), found.begin(), found.end());
    }
    levels = now;
}

bool ReferenceMatcher::press(int key, std::set<int>& held, std::vector<ShortcutEvent>& edges) {
    held.insert(key);
    findEdges(edges);
    const bool isModifier = modifierKeys.contains(key);
    bool swallows = isModifier && (levels[0] || levels[1] || levels[2]);
    for (const auto& binding : bindings()) {
        if (binding.keyCode != key)
            continue;
        if (isModifier && binding.kind == ShortcutBindingKind::modifierKey)
            swallows = true;
        if (!isModifier && binding.kind == ShortcutBindingKind::key && hasModifiers(binding))
            swallows = true;
    }
    if (swallows)
        swallowed.insert(key);
    return swallows;
}

bool ReferenceMatcher::release(int key, std::set<int>& held, std::vector<ShortcutEvent>& edges) {
    held.erase(key);
    findEdges(edges);
    return swallowed.erase(key) > 0;
}

bool ReferenceMatcher::swallows(const KeyEvent& event, std::vector<ShortcutEvent>& edges) {
    const bool isModifier = modifierKeys.contains(event.keyCode);
    if (event.type == 10 && !isModifier)
        return press(event.keyCode, keys, edges);
    if (event.type == 11 && !isModifier)
        return release(event.keyCode, keys, edges);
    if (event.type == 12 && isModifier) {
        const bool isDown = (event.flags & modifierKeys.at(event.keyCode).flag) != 0;
        return isDown ? press(event.keyCode, modifiers, edges) : release(event.keyCode, modifiers, edges);
    }
    if (event.type == 12 && event.keyCode == 0) {
        modifiers.clear();
        for (const auto& [key, modifier] : modifierKeys) {
            if ((event.flags & modifier.flag) != 0)
                modifiers.insert(key);
        }
        findEdges(edges);
    }
    return false;
}

void ReferenceMatcher::update(const ShortcutConfiguration& configuration) {
    if (configuration.toJson() != configuration_.toJson())
        *this = ReferenceMatcher(configuration);
}

} // namespace velorin
