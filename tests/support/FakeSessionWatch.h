/// A session that is left when the test says so.
#pragma once

#include "platform/Listeners.h"
#include "platform/SessionWatch.h"

namespace velorin {

class FakeSessionWatch final : public SessionWatch {
public:
    bool away = false;
    Listeners listeners;

    void set(bool value) {
        away = value;
        listeners.tell();
    }
    bool isAway() const override { return away; }
    Subscription onChange(std::function<void()> action) override { return listeners.add(std::move(action)); }
};

} // namespace velorin
