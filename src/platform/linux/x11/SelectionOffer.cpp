#include "platform/linux/x11/SelectionOffer.h"

#include "platform/linux/x11/ServerTime.h"

#include <algorithm>

namespace velorin {

namespace {

using namespace std::chrono_literals;

/// What more than this is sent in pieces. Smaller than any server's longest request.
constexpr std::size_t largestPiece = 256 * 1024;
/// A requestor that takes no piece for so long is given up.
constexpr auto transferPatience = 10s;
/// More than ask at a time on any desktop, clipboard managers included.
constexpr std::size_t mostTransfers = 64;
constexpr std::size_t mostRequestors = 64;

bool isMark(const PasteboardEntry& entry) {
    return entry.type == transientType || entry.type == concealedType ||
           entry.type == "x-kde-passwordManagerHint";
}

std::size_t unitsOf(const PasteboardEntry& entry, std::size_t bytes) {
    return bytes / (static_cast<std::size_t>(entry.unitBits) / 8);
}

} // namespace

SelectionOffer::SelectionOffer(XEventLoop& loop, xcb_atom_t selection, Fetched fetched)
    : loop_(loop), connection_(loop.connection().get()), selection_(selection), fetched_(std::move(fetched)),
      window_(loop.makeWindow()),
      pieceBytes_(std::min<std::size_t>(largestPiece, xcb_get_maximum_request_length(connection_) * 2U)),
      listening_(loop.listen([this](const xcb_generic_event_t& event) { handle(event); })) {}

bool SelectionOffer::take(PasteboardContents contents, xcb_timestamp_t time, bool countsFetches) {
    auto offer = std::make_shared<Offer>();
    offer->contents = std::move(contents);
    for (const auto& entry : offer->contents)
        offer->entries.emplace(atom(entry.type), &entry);
    offer->since = time;
    offer->countsFetches = countsFetches;
    xcb_set_selection_owner(connection_, window_, selection_, time);
    const auto owner = loop_.connection().reply<xcb_get_selection_owner_reply_t>(
        xcb_get_selection_owner(connection_, selection_), Deadline(serverDeadline));
    if (!owner || owner->owner != window_)
        return false;
    // Before anything else is handled: requests may be waiting already.
    offer_ = std::move(offer);
    return true;
}

void SelectionOffer::clear(xcb_timestamp_t time) {
    xcb_set_selection_owner(connection_, XCB_WINDOW_NONE, selection_, time);
    offer_.reset();
}

void SelectionOffer::ownerChanged(xcb_window_t owner) {
    if (!offer_)
        return;
    if (owner == window_)
        offer_->isConfirmed = true;
    else if (offer_->isConfirmed)
        offer_.reset();
}

void SelectionOffer::stirRequestors() {
    if (!offer_)
        return;
    xcb_client_message_event_t nothing{};
    nothing.response_type = XCB_CLIENT_MESSAGE;
    nothing.format = 32;
    nothing.type = atom("_VELORIN_STIR");
    for (const auto requestor : offer_->requestors) {
        nothing.window = requestor;
        xcb_send_event(connection_, false, requestor, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&nothing));
    }
    xcb_flush(connection_);
}

const PasteboardContents& SelectionOffer::contents() const {
    static const PasteboardContents nothing;
    return offer_ ? offer_->contents : nothing;
}

void SelectionOffer::handle(const xcb_generic_event_t& event) {
    switch (typeOf(event)) {
    case XCB_SELECTION_REQUEST: {
        const auto& request = eventAs<xcb_selection_request_event_t>(event);
        if (request.owner == window_)
            answer(request);
        break;
    }
    case XCB_PROPERTY_NOTIFY: {
        const auto& notify = eventAs<xcb_property_notify_event_t>(event);
        if (notify.state == XCB_PROPERTY_DELETE)
            sendPiece({notify.window, notify.atom});
        break;
    }
    case XCB_DESTROY_NOTIFY:
        forget(eventAs<xcb_destroy_notify_event_t>(event).window);
        break;
    default:
        break;
    }
}

void SelectionOffer::answer(const xcb_selection_request_event_t& request) {
    // Old clients leave the property out and mean one named like the target.
    const auto property = request.property == XCB_ATOM_NONE ? request.target : request.property;
    const bool isCurrent = offer_ && ServerTime::means(request.time, offer_->since,
                                                       std::chrono::steady_clock::now() - offer_->ownedSince);
    if (isCurrent && offer_->countsFetches && offer_->requestors.size() < mostRequestors)
        offer_->requestors.insert(request.requestor);
    const bool isDone = isCurrent && (request.target == atom("MULTIPLE")
                                          ? convertMultiple(request.requestor, property)
                                          : convert(request.requestor, request.target, property));
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = isDone ? property : xcb_atom_t{XCB_ATOM_NONE};
    xcb_send_event(connection_, false, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&notify));
    xcb_flush(connection_);
}

bool SelectionOffer::convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
    if (target == atom("TARGETS")) {
        const auto list = targets();
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_ATOM, 32,
                            static_cast<std::uint32_t>(list.size()), list.data());
        return true;
    }
    if (target == atom("TIMESTAMP")) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_INTEGER, 32, 1,
                            &offer_->since);
        return true;
    }
    const auto entry = offer_->entries.find(target);
    if (entry == offer_->entries.end())
        return false;
    sendEntry(requestor, property, *entry->second);
    return true;
}

bool SelectionOffer::convertMultiple(xcb_window_t requestor, xcb_atom_t property) {
    const auto pairType = atom("ATOM_PAIR");
    auto list = loop_.connection().reply<xcb_get_property_reply_t>(
        xcb_get_property(connection_, false, requestor, property, XCB_ATOM_ANY, 0, 1024),
        Deadline(serverDeadline));
    if (!list || list->format != 32)
        return false;
    auto* atoms = static_cast<xcb_atom_t*>(xcb_get_property_value(list.get()));
    const auto count = static_cast<std::uint32_t>(xcb_get_property_value_length(list.get())) / 4;
    for (std::uint32_t i = 0; i + 1 < count; i += 2)
        if (!offer_ || !convert(requestor, atoms[i], atoms[i + 1]))
            atoms[i + 1] = XCB_ATOM_NONE;
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property, pairType, 32, count, atoms);
    return true;
}

void SelectionOffer::sendEntry(xcb_window_t requestor, xcb_atom_t property, const PasteboardEntry& entry) {
    const auto valueType = atom(entry.valueType);
    const auto bytes = static_cast<std::size_t>(entry.data.size());
    if (bytes > pieceBytes_) {
        beginTransfer(requestor, property, entry, valueType);
        return;
    }
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property, valueType,
                        static_cast<std::uint8_t>(entry.unitBits),
                        static_cast<std::uint32_t>(unitsOf(entry, bytes)), entry.data.constData());
    delivered(requestor, *offer_, entry);
}

void SelectionOffer::beginTransfer(xcb_window_t requestor, xcb_atom_t property, const PasteboardEntry& entry,
                                   xcb_atom_t valueType) {
    dropStalled();
    if (transfers_.size() >= mostTransfers)
        transfers_.erase(longestIdle());
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_, requestor, XCB_CW_EVENT_MASK, &events);
    const auto size = static_cast<std::uint32_t>(entry.data.size());
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property, atom("INCR"), 32, 1, &size);
    transfers_.insert_or_assign(TransferKey{requestor, property},
                                Transfer{offer_, &entry, valueType, 0, Deadline(transferPatience)});
}

void SelectionOffer::sendPiece(const TransferKey& key) {
    const auto found = transfers_.find(key);
    if (found == transfers_.end())
        return;
    auto& transfer = found->second;
    const auto left = static_cast<std::size_t>(transfer.entry->data.size()) - transfer.sent;
    const auto bytes = std::min(left, pieceBytes_ & ~std::size_t{3});
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, key.first, key.second, transfer.valueType,
                        static_cast<std::uint8_t>(transfer.entry->unitBits),
                        static_cast<std::uint32_t>(unitsOf(*transfer.entry, bytes)),
                        transfer.entry->data.constData() + transfer.sent);
    transfer.sent += bytes;
    transfer.idle = Deadline(transferPatience);
    if (bytes > 0)
        return;
    const auto done = transfers_.extract(found); // the empty piece ends it
    const auto& ended = done.mapped();
    const bool isLast =
        std::ranges::none_of(transfers_, [&](const auto& other) { return other.first.first == key.first; });
    if (isLast && loop_.connection().clientOf(key.first) != loop_.connection().clientOf(window_)) {
        const std::uint32_t none = XCB_EVENT_MASK_NO_EVENT;
        xcb_change_window_attributes(connection_, key.first, XCB_CW_EVENT_MASK, &none);
    }
    delivered(key.first, *ended.offer, *ended.entry);
}

void SelectionOffer::forget(xcb_window_t requestor) {
    std::erase_if(transfers_, [&](const auto& transfer) { return transfer.first.first == requestor; });
}

void SelectionOffer::dropStalled() {
    std::erase_if(transfers_, [](const auto& transfer) { return transfer.second.idle.hasPassed(); });
}

SelectionOffer::Transfers::iterator SelectionOffer::longestIdle() {
    return std::ranges::min_element(transfers_, {},
                                    [](const auto& transfer) { return transfer.second.idle.time(); });
}

void SelectionOffer::delivered(xcb_window_t requestor, const Offer& offer, const PasteboardEntry& entry) {
    const bool isSuperseded = offer_ && offer_.get() != &offer;
    if (offer.countsFetches && !isSuperseded && !isMark(entry))
        fetched_(requestor);
}

std::vector<xcb_atom_t> SelectionOffer::targets() {
    std::vector<xcb_atom_t> list{atom("TARGETS"), atom("MULTIPLE"), atom("TIMESTAMP")};
    for (const auto& entry : offer_->contents)
        list.push_back(atom(entry.type));
    return list;
}

xcb_atom_t SelectionOffer::atom(const QByteArray& name) {
    return loop_.connection().atom({name.constData(), static_cast<std::size_t>(name.size())});
}

} // namespace velorin
