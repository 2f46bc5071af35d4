#include "tests/platform/linux/x11/support/TestOwner.h"

#include <array>
#include <poll.h>
#include <stdexcept>

namespace velorin {

namespace {
std::string_view view(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}
} // namespace

TestOwner::TestOwner(const char* selection, PasteboardContents contents, TestOwnerHabits habits)
    : connection_(XConnection::open()), contents_(std::move(contents)), habits_(habits) {
    if (!connection_)
        throw std::runtime_error("no X server");
    auto* c = connection_->get();
    selection_ = connection_->atom(selection);
    window_ = xcb_generate_id(c);
    xcb_create_window(c, 0, window_, connection_->root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(c, window_, selection_, XCB_CURRENT_TIME);
    isOwner_ = connection_->sync(Deadline(std::chrono::seconds(5)));
    thread_ = std::thread([this] { run(); });
}

TestOwner::~TestOwner() {
    isStopping_ = true;
    wakeUp_.wake();
    thread_.join();
}

void TestOwner::run() {
    while (!isStopping_ && connection_ && !connection_->isBroken()) {
        while (connection_) {
            const XcbPtr<xcb_generic_event_t> event(xcb_poll_for_event(connection_->get()));
            if (!event)
                break;
            handle(*event);
        }
        if (!connection_)
            return;
        answers_ = requests_;
        if (isPushing_) {
            pushPieces();
            continue;
        }
        connection_->flush();
        std::array<pollfd, 2> waiting{
            {{connection_->fileDescriptor(), POLLIN, 0}, {wakeUp_.fileDescriptor(), POLLIN, 0}}};
        poll(waiting.data(), waiting.size(), -1);
    }
}

void TestOwner::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
    case 0:
        ++errors_;
        break;
    case XCB_SELECTION_CLEAR:
        isOwner_ = false;
        break;
    case XCB_PROPERTY_NOTIFY:
        sendPiece(reinterpret_cast<const xcb_property_notify_event_t&>(event));
        break;
    case XCB_SELECTION_REQUEST: {
        if (habits_.hangs)
            break;
        if (requests_++ == habits_.diesAtRequest) {
            connection_.reset();
            break;
        }
        std::this_thread::sleep_for(habits_.delay); // the habit itself, not a wait for anything
        const auto& request = reinterpret_cast<const xcb_selection_request_event_t&>(event);
        xcb_selection_notify_event_t notify{};
        notify.response_type = XCB_SELECTION_NOTIFY;
        notify.time = request.time;
        notify.requestor = request.requestor;
        notify.selection = request.selection;
        notify.target = request.target;
        notify.property = convert(request) ? request.property : xcb_atom_t{XCB_ATOM_NONE};
        xcb_send_event(connection_->get(), 0, request.requestor, 0, reinterpret_cast<const char*>(&notify));
        connection_->sync(Deadline(std::chrono::seconds(5))); // what the server refuses is known then
        break;
    }
    default:
        break;
    }
}

bool TestOwner::convert(const xcb_selection_request_event_t& request) {
    auto* c = connection_->get();
    if (request.target == connection_->atom("TARGETS")) {
        std::vector<xcb_atom_t> atoms{connection_->atom("TARGETS"), connection_->atom("TIMESTAMP"),
                                      connection_->atom("DELETE"), connection_->atom("SAVE_TARGETS")};
        for (const auto& entry : contents_)
            atoms.push_back(connection_->atom(view(entry.type)));
        for (std::uint32_t i = 0; i < habits_.invented; ++i)
            atoms.push_back(1 + i);
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, request.requestor, request.property, XCB_ATOM_ATOM, 32,
                            static_cast<std::uint32_t>(atoms.size()), atoms.data());
        return true;
    }
    for (const auto& entry : contents_) {
        if (request.target != connection_->atom(view(entry.type)))
            continue;
        const auto bytes = static_cast<std::size_t>(entry.data.size());
        if (bytes <= habits_.pieceBytes && !habits_.isEndless && !habits_.pushes) {
            xcb_change_property(
                c, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                connection_->atom(view(entry.valueType)), static_cast<std::uint8_t>(entry.unitBits),
                static_cast<std::uint32_t>(bytes / (static_cast<unsigned>(entry.unitBits) / 8)),
                entry.data.constData());
            return true;
        }
        const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(c, request.requestor, XCB_CW_EVENT_MASK, &mask);
        const auto size = static_cast<std::uint32_t>(bytes);
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                            connection_->atom("INCR"), 32, 1, &size);
        transfers_.push_back({request.requestor, request.property, &entry, 0});
        return true;
    }
    return false;
}

void TestOwner::pushPieces() {
    const auto& transfer = transfers_.front();
    for (int i = 0; i < 20; ++i)
        xcb_change_property(connection_->get(), XCB_PROP_MODE_REPLACE, transfer.requestor, transfer.property,
                            connection_->atom(view(transfer.entry->valueType)), 8, 4, "abcd");
    connection_->sync(Deadline(std::chrono::seconds(5)));
}

void TestOwner::sendPiece(const xcb_property_notify_event_t& notify) {
    if (notify.state != XCB_PROPERTY_DELETE)
        return;
    for (auto it = transfers_.begin(); it != transfers_.end(); ++it) {
        if (it->requestor != notify.window || it->property != notify.atom)
            continue;
        const auto left = static_cast<std::size_t>(it->entry->data.size()) - it->sent;
        const auto bytes = std::min(left, habits_.pieceBytes);
        xcb_change_property(connection_->get(), XCB_PROP_MODE_REPLACE, it->requestor, it->property,
                            connection_->atom(view(it->entry->valueType)), 8,
                            static_cast<std::uint32_t>(bytes), it->entry->data.constData() + it->sent);
        isPushing_ = habits_.pushes;
        if (!habits_.isEndless)
            it->sent += bytes;
        if (bytes == 0)
            transfers_.erase(it);
        return;
    }
}

} // namespace velorin
