#include "platform/linux/x11/TapLoop.h"

#include <algorithm>
#include <array>

namespace velorin {

namespace {

constexpr std::array<std::uint16_t, 2> superCodes{54, 55};

std::uint32_t superState(const TapKeys& keys, const KeyboardMap& map) {
    std::uint32_t state = 0;
    for (const auto code : superCodes)
        if (const auto key = keys.keyOf(code))
            state |= map.modifiersOf(*key);
    return state;
}

} // namespace

void TapLoop::regrab() {
    plannedUnseen_ = unseenByNextPress();
    if (map_)
        grabs_->apply(planGrabs(tappedKeys_, keys_, *map_, plannedUnseen_), keys_);
}

void TapLoop::regrabAsNeeded() {
    if (unseenByNextPress() != plannedUnseen_)
        regrab();
}

KeySet TapLoop::unseenByNextPress() const {
    // It may follow the release of one of two twins before we hear of that.
    return held_.unseen() | held_.twins() | repeatedModifiers_;
}

void TapLoop::process() {
    for (;;) {
        // A sign of life is given only where no press waits: else the guard would take a tap for alive that
        // is stopped with the keyboard in its hands.
        const auto question = shared_->asked.load();
        read();
        if (grabbedKeys_.empty())
            shared_->answered = question;
        if (!heardKeys_.empty()) {
            const auto heard = heardKeys_.front();
            heardKeys_.pop_front();
            hear(heard);
        } else if (!grabbedKeys_.empty()) {
            // Whatever was grabbed has been heard as well, at the latest now.
            (void)connections_->raw().sync(Deadline(serverDeadline));
            read();
            if (heardKeys_.empty() && !grabbedKeys_.empty()) {
                const auto press = grabbedKeys_.front();
                grabbedKeys_.pop_front();
                decide(press);
            }
        } else if (isMapOld_) {
            readMap();
        } else {
            connections_->nothingIsToCome();
            repeatedModifiers_.reset();
            regrabAsNeeded();
            return;
        }
    }
}

void TapLoop::readAll() { isMapOld_ = connections_->read(grabbedKeys_, heardKeys_) || isMapOld_; }

void TapLoop::read() {
    // Each change from the user's keys to ours and back is told as a change of the map: no key waits for
    // that.
    readAll();
    grabs_->takeAnswers();
    // The end of a grab whose press was passed on or swallowed: nobody waits for it.
    while (!grabbedKeys_.empty() && !grabbedKeys_.front().isPress)
        grabbedKeys_.pop_front();
}

void TapLoop::hear(const TapKey& heard) {
    const bool isUsers = !connections_->isSynthetic(heard);
    if (isUsers) {
        userDown_[heard.key] = heard.isPress;
        released_.reset(heard.key);
    }
    if (!heard.isPress) {
        // Ours counts where we had to repeat what the user had long done.
        if (isUsers || !userDown_[heard.key])
            hearRelease(heard.key);
        return;
    }
    if (grabs_->isGrabbed(heard.key)) {
        if (const auto press = takeGrabbed(heard)) {
            decide(*press);
            return;
        }
    }
    if (isUsers && reposted_.contains(heard.key)) {
        // It is on its way once more, and is looked at here, where the user did it: what the user has done
        // since is heard already.
        if (const auto press = takeGrabbedAgain(heard.key)) {
            decide(*press);
            return;
        }
        noteReposted(heard.key);
    }
    const auto code = keys_.virtualOf(heard.key);
    if (isUsers && code && isModifier(heard.key) && !grabs_->isBound(heard.key))
        (void)tellPress(heard.key, *code); // it has gone to the application already
}

std::optional<TapKey> TapLoop::takeGrabbed(const TapKey& heard) {
    // We may have pressed it within the same millisecond.
    return takeGrabbedIf([&](const TapKey& key) {
        return key.key == heard.key && key.time == heard.time && key.source == heard.source;
    });
}

std::optional<TapKey> TapLoop::takeGrabbedAgain(xcb_keycode_t key) {
    return takeGrabbedIf(
        [&](const TapKey& other) { return other.key == key && connections_->isSynthetic(other); });
}

std::optional<TapKey> TapLoop::takeGrabbedIf(const std::function<bool(const TapKey&)>& isWanted) {
    const auto isThere = [&] { return !grabbedKeys_.empty() && isWanted(grabbedKeys_.front()); };
    if (!isThere()) {
        (void)connections_->grabs().sync(Deadline(serverDeadline));
        read();
    }
    if (!isThere())
        return std::nullopt;
    const auto press = grabbedKeys_.front();
    grabbedKeys_.pop_front();
    return press;
}

bool TapLoop::noteReposted(xcb_keycode_t key) {
    const auto again = reposted_.find(key);
    if (again == reposted_.end())
        return false;
    if (--again->second == 0)
        reposted_.erase(again);
    return true;
}

void TapLoop::hearRelease(xcb_keycode_t key) {
    // A gift may be younger than what is only heard now: then it is for a press that is still to be heard.
    if (shared_->keys[key] == KeyState::givenBack && !repeated_[key] && !isPressedAgain(key))
        undoGift(key);
    if (held_.isDown(key))
        tellRelease(key);
}

bool TapLoop::isPressedAgain(xcb_keycode_t key) {
    return isToCome(true, key) || std::ranges::any_of(heardKeys_, [&](const TapKey& later) {
               return later.key == key && later.isPress && !connections_->isSynthetic(later);
           });
}

bool TapLoop::isToCome(bool isPress, xcb_keycode_t key) {
    (void)connections_->raw().sync(Deadline(serverDeadline)); // it may be on its way
    read();
    return connections_->isToCome(isPress, key);
}

void TapLoop::undoGift(xcb_keycode_t key) {
    connections_->post(false, key);
    if (connections_->grabs().sync(Deadline(serverDeadline)))
        shared_->keys[key] = 0;
}

void TapLoop::decide(const TapKey& press) {
    const auto question = shared_->asked.load();
    answer(press);
    shared_->answered = question;
}

void TapLoop::answer(const TapKey& press) {
    const bool isRepeated = noteReposted(press.key);
    const bool isUsers = isRepeated || !connections_->isSynthetic(press);
    const auto code = keys_.virtualOf(press.key);
    if (isUsers && code && isWanted(press, *code) && tellPress(press.key, *code) == TapAnswer::swallow) {
        swallow(press);
        return;
    }
    if (isUsers && isModifier(press.key) && !grabs_->isBound(press.key)) {
        passModifier(press);
        return;
    }
    if (isBoundKeyDown()) // what is let go of now may make its shortcut active
        grabs_->grabModifiers(keys_.modifiers());
    connections_->replay();
    connections_->grabs().flush();
}

bool TapLoop::isWanted(const TapKey& press, std::uint16_t code) const {
    if (KeyCodes::flagOf(code) != 0 || !map_)
        return true;
    const auto held = held_.flags();
    const auto isTapped = [&](const TappedKey& key) {
        return key.keyCode == code && std::ranges::find(key.modifierFlags, held) != key.modifierFlags.end();
    };
    const auto plan = planGrabs(tappedKeys_, keys_, *map_, held_.unseen());
    const auto states = plan.find(press.key);
    return (states != plan.end() && states->second.contains(press.modifiers)) ||
           std::ranges::any_of(tappedKeys_, isTapped);
}

void TapLoop::passModifier(const TapKey& press) {
    // Replayed, it would arrive as if it had been held already when it was pressed.
    grabs_->releaseModifier(press.key);
    auto untangler = untanglerFor(press);
    expectAgain(untangler.run(press));
    if (isBoundKeyDown()) // the next press of it may be hidden again
        grabs_->grabModifiers(keys_.modifiers());
    connections_->grabs().flush();
}

bool TapLoop::isBoundKeyDown() const {
    const auto held = held_.all();
    for (unsigned key = 0; key < held.size(); ++key)
        if (held[key] && grabs_->isBound(static_cast<xcb_keycode_t>(key)))
            return true;
    return false;
}

void TapLoop::grabModifiersAsNeeded() {
    if (isBoundKeyDown())
        grabs_->grabModifiers(keys_.modifiers());
    else
        grabs_->releaseModifiers();
}

void TapLoop::swallow(const TapKey& press) {
    if (grabs_->isBound(press.key)) {
        grabs_->grabModifiers(keys_.modifiers());
    } else if (isModifier(press.key)) {
        held_.hide(press.key);
        regrab(); // what is bound with it comes without it
    }
    if (map_ && (map_->modifiersOf(press.key) & XCB_MOD_MASK_LOCK) != 0)
        connections_->lock(XCB_MOD_MASK_LOCK, press.locked);
    auto untangler = untanglerFor(press);
    // Where it is released already, a release of ours would end another press behind it.
    const bool isReleased = isToCome(false, press.key);
    // Desktops open their launcher when Super comes up and nothing else was pressed meanwhile.
    const bool isSuperDown = map_ && (press.modifiers & superState(keys_, *map_)) != 0;
    if (const auto company = isSuperDown ? map_->neutralKey() : std::nullopt) {
        expectAgain(untangler.swallowInCompany(press, *company, isReleased));
        return;
    }
    if (isReleased) {
        expectAgain(untangler.runAfterSwallowing(press, std::nullopt));
        return;
    }
    connections_->step();
    connections_->postRelease(press, markerKey(press.key));
    released_.set(press.key, !connections_->isSynthetic(press));
    connections_->grabs().flush();
    // Mostly that release is all that comes, and it has ended the grab.
    const auto first = connections_->nextGrabbed(grabbedKeys_);
    if (first && (first->isPress || first->key != press.key))
        expectAgain(untangler.runAfterSwallowing(press, *first));
    else if (first && connections_->isSynthetic(press)) // it was posted in the user's stead
        shared_->keys[press.key] = 0;
}

Untangler TapLoop::untanglerFor(const TapKey& press) {
    return {*connections_,
            shared_,
            grabbedKeys_,
            markerKey(press.key),
            {[this] { readAll(); }, [this](const auto& keys) { grabForRepetition(keys); }}};
}

void TapLoop::grabForRepetition(const std::vector<TapKey>& keys) {
    // They come in one go: a press that the release before it makes a shortcut would not be grabbed in time.
    const auto isBoundPress = [&](const TapKey& key) { return key.isPress && grabs_->isBound(key.key); };
    if (std::ranges::none_of(keys, isBoundPress))
        return;
    const auto modifiers = keys_.modifiers();
    for (const auto& key : keys)
        repeatedModifiers_[key.key] = repeatedModifiers_[key.key] || modifiers[key.key];
    regrabAsNeeded();
}

xcb_keycode_t TapLoop::markerKey(xcb_keycode_t otherwise) const {
    // Another one than that which keeps Super company.
    const auto company = map_ ? map_->neutralKey() : std::nullopt;
    return company ? map_->neutralKey(*company - 1U).value_or(otherwise) : otherwise;
}

void TapLoop::expectAgain(const std::vector<TapKey>& keys) {
    for (const auto& key : keys) {
        repeated_.set(key.key, key.isPress);
        if (key.isPress && grabs_->isGrabbed(key.key))
            ++reposted_[key.key];
    }
}

KeySet TapLoop::outlivedRepetitions() const {
    KeySet keys;
    for (unsigned key = 0; key < 256; ++key)
        keys[key] = repeated_[key] && shared_->keys[key] == KeyState::givenBack &&
                    !connections_->userDownByNow()[key];
    return keys;
}

void TapLoop::undoOutlivedRepetitions() {
    const auto keys = outlivedRepetitions();
    for (unsigned code = 0; code < 256; ++code)
        if (const auto key = static_cast<xcb_keycode_t>(code); keys[key] && !isPressedAgain(key))
            undoGift(key);
}

TapAnswer TapLoop::tellPress(xcb_keycode_t key, std::uint16_t code) {
    held_.press(key, code);
    regrabAsNeeded();
    const bool isModifierCode = KeyCodes::flagOf(code) != 0;
    return handler_({isModifierCode ? KeyEvent::flagsChanged : KeyEvent::keyDown, code, held_.flags()});
}

void TapLoop::tellRelease(xcb_keycode_t key) {
    const auto code = held_.release(key);
    regrabAsNeeded();
    if (!isBoundKeyDown()) {
        grabs_->releaseModifiers();
        connections_->grabs().flush();
    }
    const bool isModifierCode = KeyCodes::flagOf(code) != 0;
    (void)handler_({isModifierCode ? KeyEvent::flagsChanged : KeyEvent::keyUp, code, held_.flags()});
}

bool TapLoop::isModifier(xcb_keycode_t key) const { return keys_.modifiers()[key]; }

} // namespace velorin
