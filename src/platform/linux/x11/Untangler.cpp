#include "platform/linux/x11/Untangler.h"

#include <algorithm>
#include <poll.h>

namespace velorin {

namespace {
/// Both of them come for certain, so both can be asked for at once; every question that is waited for by
/// itself holds up the keyboard by a round trip.
constexpr std::size_t keysOfMarker = 2;
/// After which what should be here is asked for.
constexpr std::chrono::milliseconds soon{5};
} // namespace

Untangler::Untangler(TapConnections& connections, SharedKeyState& shared, std::deque<TapKey>& grabbedKeys,
                     xcb_keycode_t marker, Calls calls)
    : connections_(connections), shared_(shared), grabbedKeys_(grabbedKeys), marker_(marker),
      calls_(std::move(calls)) {
    connections_.forgetHeardAtOnce();
    for (std::size_t key = 0; key < ours_.size(); ++key)
        ours_[key] = shared_->keys[key] != 0;
}

std::vector<TapKey> Untangler::run(const TapKey& waiting) {
    hold();
    note(waiting);
    caught_ = {waiting};
    return repeat();
}

std::vector<TapKey> Untangler::runAfterSwallowing(const TapKey& swallowed, std::optional<TapKey> first) {
    hold();
    takeUpTo(swallowed, first ? first : take());
    if (first)
        noteReleased(swallowed);
    return repeat();
}

std::vector<TapKey> Untangler::swallowInCompany(const TapKey& swallowed, xcb_keycode_t company,
                                                bool isReleased) {
    hold();
    if (!isReleased)
        connections_.post(false, swallowed.key);
    caught_ = {{true, company}, {false, company}};
    takeUpTo(swallowed, take());
    if (!isReleased)
        noteReleased(swallowed);
    return repeat();
}

void Untangler::takeUpTo(const TapKey& swallowed, std::optional<TapKey> key) {
    for (; key && (key->isPress || key->key != swallowed.key); key = take()) {
        note(*key);
        caught_.push_back(*key);
    }
}

void Untangler::noteReleased(const TapKey& swallowed) {
    if (!connections_.isSynthetic(swallowed))
        return; // it is in the ledger by somebody else, if at all
    shared_->keys[swallowed.key] = 0;
    ours_.reset(swallowed.key);
}

std::vector<TapKey> Untangler::repeat() {
    for (bool isFirst = true, isDone = false; !isDone && !connections_.isBroken(); isFirst = false) {
        takeAll(isFirst);
        // The less time between the last look and the repetition, the less falls into it.
        while (!connections_.isBroken() && didUserMore())
            takeAll(false);
        isDone = tryToRepeat();
    }
    shared_->isHolding = 0;
    settle();
    return std::move(caught_);
}

void Untangler::settle() {
    // Only what the server has done needs no undoing any more, should the process end now.
    if (!connections_.grabs().sync(Deadline(serverDeadline)))
        return;
    KeySet down;
    for (const auto& key : caught_)
        down[key.key] = key.isPress;
    for (const auto& [key, change] : done_)
        if (!down[key])
            shared_->keys[key] = 0;
    for (const auto& key : caught_)
        if (!down[key.key])
            shared_->keys[key.key] = 0;
    for (unsigned key = 0; key < 256; ++key)
        if (outlived_[key] && !ours_[key])
            shared_->keys[key] = 0;
    shared_->keys[marker_] = 0;
}

void Untangler::hold() {
    shared_->isHolding = 1;
    connections_.hold();
}

void Untangler::letGo() {
    connections_.letGo();
    connections_.grabs().flush();
    shared_->isHolding = 0;
}

void Untangler::ask(std::size_t keys) {
    if (keys <= asked_)
        return;
    connections_.step(keys - asked_);
    asked_ = keys;
}

void Untangler::countQuestions() {
    (void)connections_.grabs().sync(Deadline(serverDeadline));
    connections_.readGrabbed(grabbedKeys_);
    // Of those that found no key the server kept one for the next, or it came already. With one more there is
    // one in either case.
    asked_ = grabbedKeys_.size();
    ask(asked_ + 1);
}

std::optional<TapKey> Untangler::take() {
    if (asked_ == 0)
        ask(1);
    --asked_;
    return connections_.nextGrabbed(grabbedKeys_);
}

std::optional<TapKey> Untangler::takeBeforeMarkerEnds() {
    for (;;) {
        const auto key = take();
        if (!key || !isMarker(*key))
            return key;
        if (!key->isPress)
            return std::nullopt;
    }
}

bool Untangler::isMarker(const TapKey& key) const {
    return key.key == marker_ && connections_.isSynthetic(key);
}

void Untangler::post(bool isPress, xcb_keycode_t key) {
    if (isPress) {
        // A key that the user let go of is still down on our device, which could not press it again.
        if (ours_[key])
            send(false, key);
        shared_->keys[key] = KeyState::givenBack;
    }
    ours_[key] = isPress;
    send(isPress, key);
}

void Untangler::send(bool isPress, xcb_keycode_t key) {
    connections_.post(isPress, key);
    posted_.push_back({isPress, key});
}

void Untangler::postMarker() {
    posted_.clear();
    shared_->keys[marker_] = KeyState::posted;
    send(true, marker_);
    send(false, marker_);
}

std::optional<std::size_t> Untangler::endOfPosts() const {
    auto heard = heard_;
    for (const auto& post : posted_) {
        const auto isHeard = [&] {
            const auto& key = connections_.heardAtOnce()[heard];
            return key.key == post.key && key.isPress == post.isPress && connections_.isSynthetic(key);
        };
        while (heard < connections_.heardAtOnce().size() && !isHeard())
            ++heard;
        if (heard == connections_.heardAtOnce().size())
            return std::nullopt;
        ++heard;
    }
    return heard;
}

std::size_t Untangler::listenToPosts() {
    // They were sent along with what has come round, so they are here, or will be in a moment.
    const Deadline deadline(soon);
    for (calls_.listen(); !deadline.hasPassed(); calls_.listen()) {
        if (const auto end = endOfPosts())
            return *end;
        pollfd waiting{connections_.raw().fileDescriptor(), POLLIN, 0};
        poll(&waiting, 1, deadline.pollTimeout());
    }
    (void)connections_.raw().sync(Deadline(serverDeadline));
    calls_.listen();
    return endOfPosts().value_or(connections_.heardAtOnce().size());
}

bool Untangler::didUserMore() {
    calls_.listen();
    const auto& heard = connections_.heardAtOnce();
    return std::any_of(heard.begin() + static_cast<std::ptrdiff_t>(heard_), heard.end(),
                       [&](const TapKey& key) { return !connections_.isSynthetic(key); });
}

bool Untangler::catchWhatWasHeard(std::size_t end) {
    const auto known = caught_.size();
    for (; heard_ < end; ++heard_)
        if (const auto& key = connections_.heardAtOnce()[heard_]; !connections_.isSynthetic(key))
            caught_.push_back(key);
    return caught_.size() != known;
}

void Untangler::note(const TapKey& key) {
    auto& change = done_.try_emplace(key.key, Change{!key.isPress}).first->second;
    change.isDown = key.isPress;
    change.isOdd ^= key.isPress;
}

std::size_t Untangler::undo() {
    std::size_t changes = 0;
    for (unsigned code = 0; code < 256; ++code) {
        // What our device still holds though the user has let go of it: nobody notices that here.
        const auto key = static_cast<xcb_keycode_t>(code);
        if (shared_->keys[key] == KeyState::givenBack && ours_[key] && !done_.contains(key) &&
            !connections_.userDownByNow()[key]) {
            send(false, key);
            ours_.reset(key);
            outlived_.set(key);
        }
    }
    for (const auto& [key, change] : done_) {
        const bool isSame = change.isDown == change.wasDown;
        if (isSame && !change.isOdd)
            continue;
        if (isSame)
            post(!change.wasDown, key);
        post(change.wasDown, key);
        changes += isSame ? 2 : 1;
    }
    return changes;
}

void Untangler::takeAll(bool isFirst) {
    // Synthetic keys that are found at first are what was put in again a moment ago; later, what we undid.
    calls_.listen();
    postMarker();
    // More than there are does no harm here: the marker is the last of them, and what the user does next may
    // come as well.
    ask(connections_.waiting() + keysOfMarker);
    while (const auto key = takeBeforeMarkerEnds()) {
        note(*key);
        if (isFirst)
            caught_.push_back(*key);
    }
    countQuestions();
    const auto end = listenToPosts();
    if (isFirst)
        heard_ = end;
    else
        (void)catchWhatWasHeard(end);
}

bool Untangler::tryToRepeat() {
    const auto changes = undo();
    postMarker();
    for (const auto& key : caught_)
        post(key.isPress, key.key);
    // Each change comes, by us or by the user just before us. No more: what follows the marker must not come.
    ask(changes + keysOfMarker);
    while (const auto key = takeBeforeMarkerEnds())
        note(*key);
    if (catchWhatWasHeard(listenToPosts()))
        return false;
    calls_.repeating(caught_);
    letGo();
    return true;
}

} // namespace velorin
