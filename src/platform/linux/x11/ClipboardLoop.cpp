#include "platform/linux/x11/ClipboardLoop.h"

#include "platform/linux/x11/SelectionReader.h"

#include <algorithm>
#include <xcb/xfixes.h>

namespace velorin {

namespace {

bool isLatin1(const QString& text) {
    return std::ranges::all_of(text, [](QChar unit) { return unit.unicode() < 0x100; });
}

/// The forms in which programs ask for text.
PasteboardContents plainContentsOf(const QString& text) {
    const auto utf8 = text.toUtf8();
    PasteboardContents contents{{"UTF8_STRING", "UTF8_STRING", 8, utf8},
                                {"text/plain;charset=utf-8", "text/plain;charset=utf-8", 8, utf8},
                                {"text/plain", "text/plain", 8, utf8},
                                {"TEXT", "UTF8_STRING", 8, utf8}};
    if (isLatin1(text))
        contents.push_back({"STRING", "STRING", 8, text.toLatin1()});
    return contents;
}

/// … and the marks that tell managers to look away.
PasteboardContents passingContentsOf(const QString& text) {
    auto contents = plainContentsOf(text);
    contents.push_back({transientType, "STRING", 8, {}});
    contents.push_back({concealedType, "STRING", 8, {}});
    contents.push_back({passwordHintType, passwordHintType, 8, "secret"});
    return contents;
}

QString textOf(const PasteboardEntry& entry) {
    return entry.type == "STRING" ? QString::fromLatin1(entry.data) : QString::fromUtf8(entry.data);
}

} // namespace

ClipboardLoop::ClipboardLoop(XConnection& connection, Fetched fetched)
    : loop_(connection), processes_(connection), fetched_(std::move(fetched)) {
    const auto* xfixes = connection.extension(xcb_xfixes_id);
    if (!xfixes || !connection.reply<xcb_xfixes_query_version_reply_t>(
                       xcb_xfixes_query_version(connection.get(), 5, 0), Deadline(serverDeadline)))
        return;
    xfixesEvent_ = xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY;
    states_[0].atom = connection.atom("CLIPBOARD");
    states_[1].atom = XCB_ATOM_PRIMARY;
    for (const auto selection : {PasteboardSelection::clipboard, PasteboardSelection::primary}) {
        auto& state = stateOf(selection);
        xcb_xfixes_select_selection_input(connection.get(), loop_.window(), state.atom,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        state.offer =
            std::make_unique<SelectionOffer>(loop_, state.atom, [this, selection](xcb_window_t requestor) {
                this->fetched(selection, requestor);
            });
    }
    listening_ = loop_.listen([this](const xcb_generic_event_t& event) { handle(event); });
    connection.flush();
}

ClipboardLoop::State& ClipboardLoop::stateOf(PasteboardSelection selection) {
    return states_[selection == PasteboardSelection::clipboard ? 0 : 1];
}

void ClipboardLoop::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) != xfixesEvent_)
        return;
    const auto& notify = eventAs<xcb_xfixes_selection_notify_event_t>(event);
    for (auto& state : states_) {
        if (state.atom != notify.selection)
            continue;
        ++state.changes;
        state.offer->ownerChanged(notify.owner);
        if (notify.owner == state.offer->window())
            state.ours = state.changes;
    }
}

void ClipboardLoop::fetched(PasteboardSelection selection, xcb_window_t requestor) {
    const Deadline deadline(serverDeadline);
    const auto process = processes_.processOf(requestor, deadline);
    fetched_(selection, {process, processes_.isClipboardManager(requestor, process, deadline)});
}

xcb_window_t ClipboardLoop::ownerOf(xcb_atom_t selection) const {
    const auto owner = loop_.connection().reply<xcb_get_selection_owner_reply_t>(
        xcb_get_selection_owner(loop_.connection().get(), selection), Deadline(serverDeadline));
    return owner ? owner->owner : xcb_window_t{XCB_WINDOW_NONE};
}

std::optional<PasteboardContents> ClipboardLoop::save(PasteboardSelection selection, Deadline deadline) {
    auto& state = stateOf(selection);
    // Once more from the start when the owner changes meanwhile: nobody wants half of each.
    while (loop_.catchUp(deadline)) {
        if (state.offer->isOwner())
            return state.offer->contents();
        const auto changes = state.changes;
        if (ownerOf(state.atom) == XCB_WINDOW_NONE)
            return PasteboardContents{};
        auto contents =
            SelectionReader(loop_, state.atom, deadline, [&] { return state.changes != changes; }).readAll();
        if (!loop_.catchUp(deadline))
            break;
        if (state.changes == changes)
            return contents;
    }
    return std::nullopt;
}

std::optional<QString> ClipboardLoop::read(PasteboardSelection selection, Deadline deadline) {
    auto& state = stateOf(selection);
    if (!loop_.catchUp(deadline))
        return std::nullopt;
    std::optional<PasteboardEntry> entry;
    if (!state.offer->isOwner()) {
        entry = SelectionReader(loop_, state.atom, deadline)
                    .readFirst({"UTF8_STRING", "text/plain;charset=utf-8", "STRING"});
    } else {
        for (const auto& offered : state.offer->contents())
            if (!entry && offered.type == "UTF8_STRING")
                entry = offered;
    }
    return entry ? std::optional(textOf(*entry)) : std::nullopt;
}

std::optional<quint64> ClipboardLoop::write(PasteboardSelection selection, const QString& text) {
    auto& state = stateOf(selection);
    const auto time = loop_.serverTime(Deadline(serverDeadline));
    if (!time || !state.offer->take(passingContentsOf(text), *time, true))
        return std::nullopt;
    loop_.catchUp(Deadline(serverDeadline));
    return state.ours;
}

bool ClipboardLoop::copy(PasteboardSelection selection, const QString& text) {
    const auto time = loop_.serverTime(Deadline(serverDeadline));
    const bool isTaken = time && stateOf(selection).offer->take(plainContentsOf(text), *time, false);
    loop_.catchUp(Deadline(serverDeadline));
    return isTaken;
}

bool ClipboardLoop::restore(PasteboardSelection selection, const PasteboardContents& contents,
                            quint64 expected) {
    auto& state = stateOf(selection);
    // The time is taken before the count is looked at: whoever becomes owner in between was later, and the
    // server then refuses us.
    const auto time = loop_.serverTime(Deadline(serverDeadline));
    if (!time || state.changes != expected)
        return false;
    bool isDone = true;
    if (contents.empty()) {
        state.offer->clear(*time);
    } else {
        auto marked = contents;
        const auto isTransient = [](const PasteboardEntry& entry) { return entry.type == transientType; };
        if (std::ranges::none_of(marked, isTransient))
            marked.push_back({transientType, "STRING", 8, {}});
        isDone = state.offer->take(std::move(marked), *time, false);
    }
    loop_.catchUp(Deadline(serverDeadline));
    return isDone;
}

quint64 ClipboardLoop::changeCount(PasteboardSelection selection) {
    loop_.catchUp(Deadline(serverDeadline));
    return stateOf(selection).changes;
}

void ClipboardLoop::handOver() {
    auto& connection = loop_.connection();
    auto& state = stateOf(PasteboardSelection::clipboard);
    const auto manager = connection.atom("CLIPBOARD_MANAGER");
    if (!loop_.catchUp(Deadline(serverDeadline)) || !state.offer->isOwner() ||
        ownerOf(manager) == XCB_WINDOW_NONE || isSecret(state.offer->contents()))
        return;
    const auto time = loop_.serverTime(Deadline(serverDeadline)).value_or(XCB_CURRENT_TIME);
    const auto saveTargets = connection.atom("SAVE_TARGETS");
    bool isAnswered = false;
    const auto listening = loop_.listen([&](const xcb_generic_event_t& event) {
        const auto& notify = eventAs<xcb_selection_notify_event_t>(event);
        if (typeOf(event) == XCB_SELECTION_NOTIFY && notify.selection == manager)
            isAnswered = true;
    });
    // A property that lists nothing asks the manager to keep every form; ours is the window that owns them.
    const auto property = connection.atom("_VELORIN_SAVE");
    std::vector<xcb_atom_t> targets;
    for (const auto& entry : state.offer->contents())
        targets.push_back(
            connection.atom({entry.type.constData(), static_cast<std::size_t>(entry.type.size())}));
    xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, state.offer->window(), property,
                        XCB_ATOM_ATOM, 32, static_cast<std::uint32_t>(targets.size()), targets.data());
    xcb_convert_selection(connection.get(), state.offer->window(), manager, saveTargets, property, time);
    loop_.waitFor([&] { return isAnswered; }, Deadline(handOverDeadline));
}

} // namespace velorin
