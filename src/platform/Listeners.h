/// Who wants to be told of something, kept as long as their subscriptions. One thread.
///
///     Listeners listeners;
///     const Subscription told = listeners.add([] { … });
///     listeners.tell();
#pragma once

#include "platform/Subscription.h"

#include <map>
#include <memory>

namespace velorin {

class Listeners final {
public:
    Subscription add(std::function<void()> action) {
        const int id = nextId_++;
        actions_->emplace(id, std::move(action));
        return Subscription([actions = std::weak_ptr(actions_), id] {
            if (const auto alive = actions.lock())
                alive->erase(id);
        });
    }

    /// Who is told may end subscriptions, its own included.
    void tell() const {
        const auto copy = *actions_;
        for (const auto& [id, action] : copy)
            if (actions_->contains(id))
                action();
    }

private:
    using Actions = std::map<int, std::function<void()>>;
    std::shared_ptr<Actions> actions_ = std::make_shared<Actions>();
    int nextId_ = 0;
};

} // namespace velorin
