#include "platform/linux/x11/Untangler.h"

namespace velorin {

std::vector<TapKey> Untangler::run(const TapKey& waiting) {
    if (!hold()) {
        connections_.replay();
        connections_.grabs().flush();
        return {};
    }
    done_ = caught_ = {waiting};
    return repeat();
}

std::vector<TapKey> Untangler::runAfterSwallowing(xcb_keycode_t swallowed, std::optional<TapKey> first) {
    if (!hold()) {
        letGo();
        return {};
    }
    takeUpTo(swallowed, first ? first : step());
    return repeat();
}

std::vector<TapKey> Untangler::swallowInCompany(xcb_keycode_t swallowed, xcb_keycode_t company) {
    if (!hold()) {
        connections_.post(false, swallowed);
        letGo();
        return {};
    }
    connections_.post(false, swallowed);
    caught_ = {{true, company}, {false, company}};
    takeUpTo(swallowed, step());
    return repeat();
}

void Untangler::takeUpTo(xcb_keycode_t swallowed, std::optional<TapKey> key) {
    for (; key && (key->isPress || key->key != swallowed); key = step()) {
        done_.push_back(*key);
        caught_.push_back(*key);
    }
}

std::vector<TapKey> Untangler::repeat() {
    takeAll(true);
    while (!connections_.isBroken() && !tryToRepeat())
        takeAll(false);
    shared_->isHolding = 0;
    return std::move(caught_);
}

bool Untangler::hold() {
    shared_->isHolding = 1;
    return connections_.hold();
}

void Untangler::letGo() {
    connections_.letGo();
    connections_.grabs().flush();
    shared_->isHolding = 0;
}

std::optional<TapKey> Untangler::step() {
    connections_.step();
    return connections_.nextGrabbed(grabbedKeys_);
}

bool Untangler::isMarker(const TapKey& key) const {
    return key.key == marker_ && connections_.isSynthetic(key);
}

void Untangler::postMarker() {
    connections_.post(true, marker_);
    connections_.post(false, marker_);
}

void Untangler::takeAll(bool isFirst) {
    // Synthetic keys that are found at first are what was put in again a moment ago; later, what we undid.
    postMarker();
    for (auto key = step(); key && (!isMarker(*key) || key->isPress); key = step()) {
        if (isMarker(*key))
            continue;
        done_.push_back(*key);
        if (isFirst || !connections_.isSynthetic(*key))
            caught_.push_back(*key);
    }
}

bool Untangler::tryToRepeat() {
    for (auto key = done_.rbegin(); key != done_.rend(); ++key)
        connections_.post(!key->isPress, key->key);
    postMarker();
    for (const auto& key : caught_) {
        shared_->keys[key.key] = key.isPress ? KeyState::givenBack : std::uint8_t{0};
        connections_.post(key.isPress, key.key);
    }
    bool isQuiet = true;
    for (auto key = step(); key && (!isMarker(*key) || key->isPress); key = step()) {
        if (isMarker(*key))
            continue;
        done_.push_back(*key);
        if (!connections_.isSynthetic(*key)) {
            caught_.push_back(*key);
            isQuiet = false;
        }
    }
    if (isQuiet)
        letGo();
    return isQuiet;
}

} // namespace velorin
