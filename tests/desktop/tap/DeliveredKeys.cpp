#include "DeliveredKeys.h"

#include <cstring>
#include <stdexcept>
#include <xcb/record.h>

namespace velorin::tap {

namespace {

constexpr auto patience = std::chrono::seconds(10);
constexpr std::uint8_t fromServer = 0;
constexpr std::uint8_t endOfData = 5;
constexpr std::size_t eventBytes = 32;

xcb_record_range_t delivered(int first, int last) {
    xcb_record_range_t range{};
    range.delivered_events.first = static_cast<std::uint8_t>(first);
    range.delivered_events.last = static_cast<std::uint8_t>(last);
    return range;
}

} // namespace

DeliveredKeys::DeliveredKeys(xcb_window_t resource)
    : control_(XConnection::open()), data_(XConnection::open()) {
    if (!control_ || !data_ || !control_->extension(xcb_record_id))
        throw std::runtime_error("no server with RECORD");
    context_ = xcb_generate_id(control_->get());
    const auto range = delivered(XCB_KEY_PRESS, XCB_KEY_RELEASE);
    const xcb_record_client_spec_t client = resource;
    xcb_record_create_context(control_->get(), context_, 0, 1, 1, &client, &range);
    control_->sync(Deadline(patience));
    thread_ = std::thread([this] { run(); });
    // It records from the moment at which the context is enabled, which the other connection asks for.
    const Deadline deadline(patience);
    for (;;) {
        const auto state = control_->reply<xcb_record_get_context_reply_t>(
            xcb_record_get_context(control_->get(), context_), deadline);
        if (!state || deadline.hasPassed())
            throw std::runtime_error("the server does not record");
        if (state->enabled != 0)
            return;
        std::this_thread::yield();
    }
}

DeliveredKeys::~DeliveredKeys() {
    xcb_record_disable_context(control_->get(), context_);
    control_->sync(Deadline(patience));
    thread_.join();
}

void DeliveredKeys::run() {
    const auto cookie = xcb_record_enable_context(data_->get(), context_);
    for (;;) {
        const XcbPtr<xcb_record_enable_context_reply_t> reply{
            xcb_record_enable_context_reply(data_->get(), cookie, nullptr)};
        if (!reply || reply->category == endOfData)
            return;
        if (reply->category != fromServer)
            continue;
        const auto* bytes = xcb_record_enable_context_data(reply.get());
        const auto size = static_cast<std::size_t>(xcb_record_enable_context_data_length(reply.get()));
        for (std::size_t at = 0; at + eventBytes <= size; at += eventBytes)
            take(bytes + at);
    }
}

void DeliveredKeys::take(const std::uint8_t* event) {
    xcb_key_press_event_t core{};
    std::memcpy(&core, event, sizeof core);
    const int type = core.response_type & 0x7f;
    if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE)
        return;
    const std::scoped_lock lock(mutex_);
    keys_.push_back({type == XCB_KEY_PRESS, core.detail, core.state, core.time});
    changed_.notify_all();
}

std::vector<TestWindow::Key> DeliveredKeys::through(int key) {
    std::vector<TestWindow::Key> taken;
    std::unique_lock lock(mutex_);
    for (;;) {
        if (!changed_.wait_for(lock, patience, [&] { return !keys_.empty(); }))
            return taken;
        taken.push_back(keys_.front());
        keys_.pop_front();
        if (taken.back().key == key && !taken.back().isPress)
            return taken;
    }
}

} // namespace velorin::tap
