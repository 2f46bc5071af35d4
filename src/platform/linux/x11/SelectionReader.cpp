#include "platform/linux/x11/SelectionReader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <set>

namespace velorin {

namespace {

constexpr char transferProperty[] = "_VELORIN_SELECTION";

/// Forms that are no content.
constexpr std::array<std::string_view, 14> skippedTypes{"TARGETS",         "MULTIPLE",
                                                        "TIMESTAMP",       "SAVE_TARGETS",
                                                        "DELETE",          "INSERT_SELECTION",
                                                        "INSERT_PROPERTY", "DRAWABLE",
                                                        "BITMAP",          "PIXMAP",
                                                        "COLORMAP",        "PIXEL",
                                                        "_QT_SELECTION",   "application/x-qt-image"};

bool isContent(const std::string& type) {
    return !type.empty() && std::ranges::find(skippedTypes, type) == skippedTypes.end();
}

} // namespace

SelectionReader::SelectionReader(XEventLoop& loop, xcb_atom_t selection, Deadline deadline,
                                 std::function<bool()> isStale)
    : loop_(loop), connection_(loop.connection().get()), selection_(selection), deadline_(deadline),
      isStale_(std::move(isStale)), window_(loop.makeWindow()),
      listening_(loop.listen([this](const xcb_generic_event_t& event) { handle(event); })) {
    time_ = loop.serverTime(deadline).value_or(XCB_CURRENT_TIME);
}

SelectionReader::~SelectionReader() {
    if (isOwnerBusy_) {
        loop_.retire(window_);
        return;
    }
    xcb_destroy_window(connection_, window_);
    xcb_flush(connection_);
}

bool SelectionReader::await(const std::function<bool()>& isDone) {
    bool isFound = false;
    loop_.waitFor([&] { return (isFound = isDone()) || isStale_(); }, deadline_);
    return isFound;
}

void SelectionReader::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) == XCB_SELECTION_NOTIFY) {
        const auto& notify = eventAs<xcb_selection_notify_event_t>(event);
        if (notify.requestor == window_)
            notify_ = notify;
    } else if (typeOf(event) == XCB_PROPERTY_NOTIFY) {
        const auto& notify = eventAs<xcb_property_notify_event_t>(event);
        if (notify.window == window_ && notify.state == XCB_PROPERTY_NEW_VALUE)
            ++newPieces_;
    }
}

std::optional<PasteboardContents> SelectionReader::readAll() {
    PasteboardEntry list;
    const auto outcome = convert(loop_.connection().atom("TARGETS"), list, mostForms * sizeof(xcb_atom_t));
    if (outcome == Outcome::failed)
        return std::nullopt;
    // An owner from before there were lists gives text when it is asked for text.
    const auto targets = outcome == Outcome::given ? targetsIn(list)
                                                   : std::vector{loop_.connection().atom("UTF8_STRING"),
                                                                 xcb_atom_t{XCB_ATOM_STRING}};
    const auto names = loop_.connection().atomNames(targets, deadline_);
    total_ = 0;
    PasteboardContents contents;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        if (!isContent(names[i]))
            continue;
        PasteboardEntry entry;
        switch (convert(targets[i], entry)) {
        case Outcome::failed:
            return std::nullopt;
        case Outcome::given:
            entry.type = QByteArray::fromStdString(names[i]);
            contents.push_back(std::move(entry));
            break;
        case Outcome::refused:
            break;
        }
    }
    if (deadline_.hasPassed())
        return std::nullopt;
    return contents;
}

std::optional<PasteboardEntry> SelectionReader::readFirst(const std::vector<QByteArray>& types) {
    for (const auto& type : types) {
        PasteboardEntry entry;
        const auto atom = loop_.connection().atom({type.constData(), static_cast<std::size_t>(type.size())});
        const auto outcome = convert(atom, entry);
        if (outcome == Outcome::failed)
            return std::nullopt;
        if (outcome == Outcome::given) {
            entry.type = type;
            return entry;
        }
    }
    return std::nullopt;
}

SelectionReader::Outcome SelectionReader::convert(xcb_atom_t target, PasteboardEntry& entry,
                                                  std::size_t most) {
    const auto property = loop_.connection().atom(transferProperty);
    notify_.reset();
    xcb_convert_selection(connection_, window_, selection_, target, property, time_);
    isOwnerBusy_ = true;
    const auto isAnswered = [&] { return notify_ && notify_->target == target; };
    if (!await(isAnswered))
        return Outcome::failed;
    isOwnerBusy_ = false;
    if (notify_->property == XCB_ATOM_NONE)
        return Outcome::refused;
    newPieces_ = 0; // what the property's own arrival counted
    const auto value = takeProperty(property, most);
    if (!value)
        return Outcome::failed;
    if (value->type == XCB_ATOM_NONE)
        return Outcome::refused;
    if (value->type == loop_.connection().atom("INCR"))
        return receivePieces(property, entry, most);
    return append(*value, entry, most) ? Outcome::given : Outcome::failed;
}

XcbPtr<xcb_get_property_reply_t> SelectionReader::takeProperty(xcb_atom_t property, std::size_t most) {
    // Read and deleted in one; the owner of pieces takes the deletion as a call for the next one.
    return loop_.connection().reply<xcb_get_property_reply_t>(
        xcb_get_property(connection_, true, window_, property, XCB_ATOM_ANY, 0,
                         static_cast<std::uint32_t>(most / 4)),
        deadline_);
}

SelectionReader::Outcome SelectionReader::receivePieces(xcb_atom_t property, PasteboardEntry& entry,
                                                        std::size_t most) {
    isOwnerBusy_ = true;
    for (;;) {
        // The next piece may be there already, time and again: the deadline is looked at all the same.
        if (deadline_.hasPassed() || !await([this] { return newPieces_ > 0; }))
            return Outcome::failed;
        newPieces_ = 0;
        const auto piece = takeProperty(property, most);
        if (!piece)
            return Outcome::failed;
        if (piece->type == XCB_ATOM_NONE)
            continue; // told twice of the same piece
        if (!append(*piece, entry, most))
            return Outcome::failed;
        if (xcb_get_property_value_length(piece.get()) == 0) {
            isOwnerBusy_ = false;
            return Outcome::given;
        }
    }
}

bool SelectionReader::append(const xcb_get_property_reply_t& piece, PasteboardEntry& entry,
                             std::size_t most) {
    const auto bytes = static_cast<std::size_t>(xcb_get_property_value_length(&piece));
    total_ += bytes;
    if (piece.bytes_after > 0 || total_ > most)
        return false;
    if (entry.valueType.isEmpty())
        entry.valueType = QByteArray::fromStdString(loop_.connection().atomName(piece.type, deadline_));
    entry.unitBits = piece.format == 0 ? 8 : piece.format;
    entry.data.append(static_cast<const char*>(xcb_get_property_value(&piece)),
                      static_cast<qsizetype>(bytes));
    return true;
}

std::vector<xcb_atom_t> SelectionReader::targetsIn(const PasteboardEntry& list) const {
    if (list.unitBits != 32)
        return {};
    std::vector<xcb_atom_t> targets(static_cast<std::size_t>(list.data.size()) / sizeof(xcb_atom_t));
    if (!targets.empty())
        std::memcpy(targets.data(), list.data.constData(), targets.size() * sizeof(xcb_atom_t));
    std::set<xcb_atom_t> seen{XCB_ATOM_NONE};
    std::erase_if(targets, [&](xcb_atom_t target) { return !seen.insert(target).second; });
    return targets;
}

} // namespace velorin
