#include "platform/linux/x11/guard/Guard.h"

#include "platform/linux/x11/InputSelection.h"

#include <algorithm>
#include <array>
#include <poll.h>
#include <unistd.h>
#include <utility>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

namespace velorin {

Guard::Guard(XConnection& connection, SharedKeyState& shared, std::int64_t program, int life, int tapWakeUp)
    : connection_(connection), processes_(connection, startPatience), shared_(shared), program_(program),
      life_(life), tapWakeUp_(tapWakeUp) {}

bool Guard::run() {
    if (!listen())
        return false;
    const char ready = 1;
    [[maybe_unused]] const auto written = write(life_, &ready, sizeof ready);
    askAt_ = Deadline(questionDelay); // about what may have been pressed while there was no guard
    for (;;) {
        readKeys();
        lookAtTime();
        if (connection_.isBroken())
            return true;
        std::array<pollfd, 2> waiting{{{connection_.fileDescriptor(), POLLIN, 0}, {life_, POLLIN, 0}}};
        poll(waiting.data(), waiting.size(), pollTimeout());
        if (waiting[1].revents != 0) { // nothing is ever written there: it is the end
            awaitLeave();
            releaseOurKeys();
            return true;
        }
    }
}

void Guard::lookAtTime() {
    if (judgeAt_ && isAnswered())
        judgeAt_.reset(); // the next question need not wait
    if (judgeAt_ && judgeAt_->hasPassed())
        judge();
    if (!judgeAt_ && askAt_ && askAt_->hasPassed())
        ask();
}

void Guard::awaitLeave() {
    // A killed program may have left requests that the server has yet to read, and it may drop the rest of
    // them at any point: what is to be undone is known when the connections are closed.
    const auto isAnyDown = std::ranges::any_of(shared_->keys, [](const auto& key) { return key != 0; });
    const Deadline deadline(leavePatience);
    while (isAnyDown && !deadline.hasPassed() && processes_.hasConnections(program_, deadline))
        poll(nullptr, 0, 1);
}

bool Guard::listen() {
    const auto* input = connection_.extension(xcb_input_id, startPatience);
    if (!input || !connection_.extension(xcb_test_id, startPatience))
        return false;
    inputOpcode_ = input->major_opcode;
    const Deadline deadline(startPatience);
    auto* c = connection_.get();
    const auto version =
        connection_.reply<xcb_input_xi_query_version_reply_t>(xcb_input_xi_query_version(c, 2, 2), deadline);
    selectInput(connection_, XCB_INPUT_DEVICE_ALL_MASTER, XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS);
    return version && connection_.sync(deadline);
}

void Guard::readKeys() {
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
        const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(*event);
        if ((event->response_type & 0x7f) != XCB_GE_GENERIC || generic.extension != inputOpcode_ ||
            generic.event_type != XCB_INPUT_RAW_KEY_PRESS)
            continue;
        const auto key = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(*event).detail;
        if (!concernsTap(key))
            continue;
        // Each press has a question that comes late enough for it.
        (askAt_ ? askAgainAt_ : askAt_) = Deadline(questionDelay);
    }
}

bool Guard::concernsTap(unsigned key) const {
    if (shared_->tapResource == 0 || key > 255)
        return false;
    return shared_->isHolding != 0 || (shared_->grabbed[key / 32] >> (key % 32) & 1) != 0;
}

void Guard::ask() {
    askAt_ = std::exchange(askAgainAt_, std::nullopt);
    ++shared_->asked;
    judgeAt_ = Deadline(patience);
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(tapWakeUp_, &one, sizeof one);
}

bool Guard::isAnswered() const { return shared_->answered == shared_->asked; }

void Guard::judge() {
    judgeAt_.reset();
    // A tap that waits for a server that is slow is no more to blame than we are.
    if (!connection_.sync(Deadline(serverDeadline))) {
        judgeAt_ = Deadline(patience);
        return;
    }
    if (isAnswered())
        return;
    endTap();
    releaseOurKeys();
    askAt_.reset();
    askAgainAt_.reset();
}

void Guard::endTap() {
    const std::uint32_t resource = shared_->tapResource;
    if (resource == 0)
        return;
    // The server gives the ids of a client that left to the next one: it must not be a stranger's by now.
    if (processes_.processOf(resource, Deadline(serverDeadline)) != program_)
        return;
    xcb_kill_client(connection_.get(), resource);
    (void)connection_.sync(Deadline(serverDeadline));
}

void Guard::releaseOurKeys() {
    for (unsigned key = 0; key < shared_->keys.size(); ++key)
        if (shared_->keys[key].exchange(0) != 0)
            xcb_test_fake_input(connection_.get(), XCB_KEY_RELEASE, static_cast<std::uint8_t>(key),
                                XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
    (void)connection_.sync(Deadline(serverDeadline));
}

int Guard::pollTimeout() const {
    if (!judgeAt_)
        return askAt_ ? askAt_->pollTimeout() : -1;
    // A judgement that is settled meanwhile makes room for the next question.
    const bool isNext = askAt_ && !askAt_->hasPassed();
    return isNext ? std::min(askAt_->pollTimeout(), judgeAt_->pollTimeout()) : judgeAt_->pollTimeout();
}

} // namespace velorin
