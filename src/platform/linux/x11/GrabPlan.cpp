#include "platform/linux/x11/GrabPlan.h"

#include <algorithm>
#include <array>

namespace velorin {

namespace {

/// The keys that set each flag.
struct Family {
    std::uint64_t flag;
    std::array<std::uint16_t, 2> codes;
};
constexpr Family families[] = {{0x100000, {54, 55}},
                               {0x40000, {59, 62}},
                               {0x80000, {58, 61}},
                               {0x20000, {56, 60}},
                               {0x800000, {KeyCodes::function, KeyCodes::function}}};

using States = std::set<std::uint32_t>;

States united(const States& some, const States& others) {
    States result;
    for (const auto one : some)
        for (const auto other : others)
            result.insert(one | other);
    return result;
}

bool isTapped(const std::vector<TappedKey>& tappedKeys, std::uint16_t code) {
    return std::ranges::any_of(tappedKeys, [&](const TappedKey& key) { return key.keyCode == code; });
}

/// What the server may see when at least one key of the family is held.
States statesOf(const Family& family, const std::vector<TappedKey>& tappedKeys, const TapKeys& keys,
                const KeyboardMap& map, const KeySet& unseen) {
    States ofKeys;
    for (const auto code : family.codes) {
        const auto key = keys.keyOf(code);
        if (!key)
            continue;
        if (isTapped(tappedKeys, code) || unseen[*key])
            ofKeys.insert(0);
        if (!isTapped(tappedKeys, code)) // it may be seen the next time, before we are told
            ofKeys.insert(map.modifiersOf(*key));
    }
    return united(ofKeys, ofKeys); // one of them, or both
}

} // namespace

GrabPlan planGrabs(const std::vector<TappedKey>& tappedKeys, const TapKeys& keys, const KeyboardMap& map,
                   const KeySet& unseen) {
    GrabPlan plan;
    for (const auto& tapped : tappedKeys) {
        const auto key = keys.keyOf(tapped.keyCode);
        if (!key)
            continue;
        for (const auto flags : tapped.modifierFlags) {
            States states{0};
            for (const auto& family : families)
                if ((flags & family.flag) != 0)
                    states = united(states, statesOf(family, tappedKeys, keys, map, unseen));
            for (const auto lock : map.locks())
                states.merge(united(states, {lock}));
            plan[*key].merge(states);
        }
    }
    return plan;
}

} // namespace velorin
