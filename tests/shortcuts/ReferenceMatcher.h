/// The matcher once more, slow and obvious: ordered sets, one small rule a function, and nothing shared with
/// the code that it judges but the configuration's own fields.
#pragma once

#include "platform/EventTap.h"
#include "shortcuts/ShortcutConfiguration.h"
#include "shortcuts/ShortcutEvent.h"

#include <set>
#include <vector>

namespace velorin {

class ReferenceMatcher final {
public:
    explicit ReferenceMatcher(ShortcutConfiguration configuration)
        : configuration_(std::move(configuration)) {}

    /// Whether the event is swallowed; appends its edges.
    bool swallows(const KeyEvent& event, std::vector<ShortcutEvent>& edges);

    void update(const ShortcutConfiguration& configuration);

    std::set<int> keys;
    std::set<int> modifiers;
    std::set<int> swallowed; ///< Of both kinds of key.
    std::vector<bool> levels{false, false, false};

private:
    [[nodiscard]] std::vector<ShortcutBinding> bindings() const;
    [[nodiscard]] bool isHeld(const ShortcutBinding& binding) const;
    [[nodiscard]] bool hasModifiers(const ShortcutBinding& binding) const;
    [[nodiscard]] bool matchesExactly(const std::set<int>& exact) const;
    void findEdges(std::vector<ShortcutEvent>& edges);
    bool press(int key, std::set<int>& held, std::vector<ShortcutEvent>& edges);
    bool release(int key, std::set<int>& held, std::vector<ShortcutEvent>& edges);

    ShortcutConfiguration configuration_;
};

} // namespace velorin
