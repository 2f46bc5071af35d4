#include "platform/linux/atspi/AtspiLoop.h"

#include <algorithm>
#include <array>

namespace velorin {

namespace {

constexpr char registry[] = "org.a11y.atspi.Registry";
constexpr char rootPath[] = "/org/a11y/atspi/accessible/root";
constexpr char accessibleInterface[] = "org.a11y.atspi.Accessible";
constexpr char textInterface[] = "org.a11y.atspi.Text";
constexpr char objectEvents[] = "org.a11y.atspi.Event.Object";
constexpr char windowEvents[] = "org.a11y.atspi.Event.Window";

constexpr unsigned activeState = 1;
constexpr unsigned focusedState = 12;
constexpr unsigned showingState = 25;

/// Of one application.
constexpr std::ptrdiff_t mostFocused = 16;
constexpr int mostSearched = 1000;

/// Of menus and the kinds of items in them.
constexpr std::array<std::uint32_t, 4> menuRoles{8, 33, 35, 45};

bool isSet(const std::vector<std::uint32_t>& bits, unsigned state) {
    return state / 32 < bits.size() && (bits[state / 32] >> (state % 32) & 1U) != 0;
}

Deadline earlier(Deadline a, Deadline b) { return a.time() < b.time() ? a : b; }

std::string eventRule(const std::string& interface, const std::string& rest) {
    return "type='signal',interface='" + interface + "'," + rest;
}

} // namespace

AtspiLoop::AtspiLoop(BusConnection& bus, std::function<bool()> isWanted)
    : bus_(bus), isWanted_(std::move(isWanted)) {
    bus_.addMatch(eventRule(objectEvents, "member='StateChanged',arg0='focused'"));
    bus_.addMatch(eventRule(windowEvents, "member='Activate'"));
    bus_.addMatch(eventRule(DBUS_INTERFACE_DBUS, "member='NameOwnerChanged',sender='" DBUS_SERVICE_DBUS "'"));
    subscribe();
    // What had the keyboard before we came tells nobody of it any more.
    AtspiOperation operation(callDeadline);
    for (const auto& application : applications(operation))
        searches_.emplace(application.owner(), Deadline(std::chrono::milliseconds(0)));
}

void AtspiLoop::subscribe() {
    for (const auto* event : {"object:state-changed:focused", "window:activate"})
        bus_.tell(
            {BusObject::ours(registry, "/org/a11y/atspi/registry"), registry, "RegisterEvent", {event}});
}

void AtspiLoop::takeSignals() {
    const Deadline deadline(listeningPatience);
    for (auto signal = bus_.takeSignal(); signal; signal = bus_.takeSignal()) {
        take(*signal);
        if (deadline.hasPassed())
            return;
    }
}

void AtspiLoop::serve() {
    takeSignals();
    const auto due = std::ranges::find_if(searches_, [](const auto& s) { return s.second.hasPassed(); });
    if (due == searches_.end())
        return;
    const auto application = BusObject::of(due->first, rootPath);
    searches_.erase(due);
    AtspiOperation operation(callDeadline);
    operation.givesWay = true;
    (void)searchIn(application, operation);
}

int AtspiLoop::pollTimeout() const {
    int timeout = -1;
    for (const auto& [owner, deadline] : searches_)
        timeout = timeout < 0 ? deadline.pollTimeout() : std::min(timeout, deadline.pollTimeout());
    return timeout;
}

void AtspiLoop::take(const BusSignal& signal) {
    if (signal.interface == objectEvents && signal.name == "StateChanged") {
        if (signal.words[0] == "focused")
            focusMoved(signal.source, signal.number != 0);
    } else if (signal.interface == windowEvents && signal.name == "Activate") {
        searches_.emplace(signal.source.owner(), Deadline(focusPatience));
    } else if (signal.interface == DBUS_INTERFACE_DBUS && signal.name == "NameOwnerChanged") {
        // Anybody may send something of that name.
        if (signal.source.owner().text() == DBUS_SERVICE_DBUS)
            ownerChanged(signal.words[0], !signal.words[2].empty());
    }
}

void AtspiLoop::ownerChanged(const std::string& name, bool isThere) {
    const auto changed = BusName::from(name);
    if (changed && !isThere)
        forget(*changed);
    else if (isThere && name == registry)
        subscribe(); // a new registry knows of nobody's wishes
}

void AtspiLoop::focusMoved(const BusObject& element, bool isThere) {
    std::erase(focused_, element);
    if (!isThere)
        return;
    searches_.erase(element.owner());
    focused_.push_back(element);
    // Nobody's events push those of others out.
    const auto isOfTheSame = [&](const BusObject& other) { return other.owner() == element.owner(); };
    if (std::ranges::count_if(focused_, isOfTheSame) > mostFocused)
        focused_.erase(std::ranges::find_if(focused_, isOfTheSame));
}

void AtspiLoop::forget(const BusName& owner) {
    std::erase_if(focused_, [&](const BusObject& element) { return element.owner() == owner; });
    processes_.erase(owner);
    toolkits_.erase(owner);
    searches_.erase(owner);
}

std::optional<BusObject> AtspiLoop::focused(std::int64_t process, AtspiOperation& operation) {
    takeSignals(); // and no more: what else is due can wait
    const auto isAskedFor = [&](const BusObject& element) {
        return process == 0 || processOf(element.owner(), operation) == process;
    };
    std::optional<BusObject> withoutText;
    const auto known = focused_;
    for (auto element = known.rbegin(); element != known.rend(); ++element) {
        if (!isAskedFor(*element) || !isInState(*element, focusedState, operation))
            continue;
        // Of several that are told of, some are only the frames of others.
        if (has(*element, textInterface, operation))
            return *element;
        if (!withoutText)
            withoutText = *element;
    }
    if (withoutText || process == 0)
        return withoutText;
    // Not told of yet, or told before we listened.
    std::optional<BusObject> found;
    for (const auto& application : applications(operation))
        if (!found && isAskedFor(application))
            found = searchIn(application, operation);
    return found;
}

std::vector<BusObject> AtspiLoop::applications(AtspiOperation& operation) {
    return children(BusObject::ours(registry, rootPath), operation);
}

std::optional<BusObject> AtspiLoop::searchIn(const BusObject& application, AtspiOperation& operation) {
    for (const auto& window : children(BusObject::of(application.owner(), rootPath), operation)) {
        if (!isInState(window, activeState, operation))
            continue;
        int budget = mostSearched;
        const auto element = focusIn(window, budget, operation);
        if (!element)
            continue;
        focusMoved(*element, true);
        return element;
    }
    return std::nullopt;
}

std::optional<BusObject> AtspiLoop::focusIn(const BusObject& element, int& budget,
                                            AtspiOperation& operation) {
    if (--budget <= 0 || operation.end.hasPassed() || isWanted_())
        return std::nullopt;
    const auto states = statesOf(element, operation);
    const bool isFocused = isSet(states, focusedState);
    // A field may share the focus with a part of it that knows nothing of the text.
    if (isFocused && has(element, textInterface, operation))
        return element;
    if (!isFocused && !isSet(states, showingState) && isMenu(element, operation))
        return std::nullopt; // closed menus hold more than all the rest
    for (const auto& child : children(element, operation))
        if (auto found = focusIn(child, budget, operation))
            return found;
    return isFocused ? std::optional(element) : std::nullopt;
}

BusMessage AtspiLoop::ask(const BusCall& call, AtspiOperation& operation) {
    const auto& owner = call.object.owner();
    if (operation.end.hasPassed() || operation.silent.contains(owner))
        return nullptr;
    const auto serial = bus_.send(call);
    auto reply =
        serial != 0 ? await(serial, earlier(Deadline(callDeadline), operation.end), operation) : nullptr;
    if (!reply && bus_.hasTimedOut())
        operation.silent.insert(owner);
    return reply;
}

BusMessage AtspiLoop::await(std::uint32_t serial, Deadline deadline, const AtspiOperation& operation) {
    if (!operation.givesWay)
        return bus_.await(serial, deadline);
    for (;;) {
        auto reply = bus_.await(serial, earlier(Deadline(givingWayStep), deadline));
        if (reply || !bus_.hasTimedOut() || deadline.hasPassed() || isWanted_())
            return reply;
    }
}

std::vector<BusObject> AtspiLoop::children(const BusObject& element, AtspiOperation& operation) {
    const auto reply = ask({element, accessibleInterface, "GetChildren", {}}, operation);
    return reply ? BusReader(*reply).objects().value_or(std::vector<BusObject>{}) : std::vector<BusObject>{};
}

bool AtspiLoop::has(const BusObject& element, const char* interface, AtspiOperation& operation) {
    const auto reply = ask({element, accessibleInterface, "GetInterfaces", {}}, operation);
    const auto interfaces = reply ? BusReader(*reply).strings() : std::nullopt;
    return interfaces && std::ranges::find(*interfaces, interface) != interfaces->end();
}

std::vector<std::uint32_t> AtspiLoop::statesOf(const BusObject& element, AtspiOperation& operation) {
    const auto reply = ask({element, accessibleInterface, "GetState", {}}, operation);
    return reply ? BusReader(*reply).uint32s().value_or(std::vector<std::uint32_t>{})
                 : std::vector<std::uint32_t>{};
}

bool AtspiLoop::isInState(const BusObject& element, unsigned state, AtspiOperation& operation) {
    return isSet(statesOf(element, operation), state);
}

bool AtspiLoop::isMenu(const BusObject& element, AtspiOperation& operation) {
    const auto reply = ask({element, accessibleInterface, "GetRole", {}}, operation);
    const auto role = reply ? BusReader(*reply).uint32() : std::nullopt;
    return role && std::ranges::find(menuRoles, *role) != menuRoles.end();
}

std::int64_t AtspiLoop::processOf(const BusName& owner, AtspiOperation& operation) {
    const auto known = processes_.find(owner);
    if (known != processes_.end())
        return known->second;
    const auto process = bus_.processOf(owner, operation.end);
    if (process != 0)
        processes_.emplace(owner, process);
    return process;
}

std::string AtspiLoop::toolkitOf(const BusName& owner, AtspiOperation& operation) {
    const auto known = toolkits_.find(owner);
    if (known != toolkits_.end())
        return known->second;
    const auto reply = ask({BusObject::of(owner, rootPath),
                            DBUS_INTERFACE_PROPERTIES,
                            "Get",
                            {std::string("org.a11y.atspi.Application"), std::string("ToolkitName")}},
                           operation);
    auto held = reply ? BusReader(*reply).variant() : std::nullopt;
    const auto name = held ? held->string() : std::nullopt;
    if (name)
        toolkits_.emplace(owner, *name);
    return name.value_or("");
}

} // namespace velorin
