#include "platform/linux/atspi/AtspiAccessibility.h"

#include "platform/Log.h"
#include "platform/linux/atspi/AtspiLoop.h"
#include "platform/linux/x11/ThreadSetup.h"

#include <QByteArray>

#include <algorithm>
#include <array>
#include <poll.h>

namespace velorin {

namespace {

using namespace std::chrono_literals;

/// How long to leave a bus alone that was not there.
constexpr auto retryInterval = 2000;
/// A session's bus may be slow to start the accessibility bus on our behalf.
constexpr auto connectDeadline = 3s;
/// What the thread leaves of a budget for its answer to reach the caller, who waits no longer than that.
constexpr auto handing = 20ms;
constexpr std::size_t longestAddress = 4096;

std::shared_ptr<AtspiOperation> operationWithin(std::chrono::milliseconds budget) {
    return std::make_shared<AtspiOperation>(budget - handing);
}

std::string sessionAddress() {
    const auto address = qgetenv("DBUS_SESSION_BUS_ADDRESS").toStdString();
    const auto folder = qgetenv("XDG_RUNTIME_DIR").toStdString();
    return address.empty() && !folder.empty() ? "unix:path=" + folder + "/bus" : address;
}

/// There are addresses that have a program started, or that lead to other machines.
bool isOfASocket(const std::string& address) {
    const auto entries = QByteArray::fromStdString(address).split(';');
    return std::ranges::all_of(entries, [](const auto& entry) { return entry.startsWith("unix:"); });
}

void switchOn(BusConnection& session, Deadline deadline) {
    const auto status = BusObject::ours("org.a11y.Bus", "/org/a11y/bus");
    const std::string interface = "org.a11y.Status";
    const auto reply = session.call(
        {status, DBUS_INTERFACE_PROPERTIES, "Get", {interface, std::string("IsEnabled")}}, deadline);
    auto held = reply ? BusReader(*reply).variant() : std::nullopt;
    if (held && held->boolean() == false)
        (void)session.call(
            {status, DBUS_INTERFACE_PROPERTIES, "Set", {interface, std::string("IsEnabled"), true}},
            deadline);
}

std::unique_ptr<BusConnection> openAccessibilityBus() {
    const Deadline deadline(connectDeadline);
    const auto address = sessionAddress();
    const auto session = address.empty() ? nullptr : BusConnection::open(address, deadline);
    if (!session)
        return nullptr;
    switchOn(*session, deadline);
    const auto reply = session->call(
        {BusObject::ours("org.a11y.Bus", "/org/a11y/bus"), "org.a11y.Bus", "GetAddress", {}}, deadline);
    const auto found = reply ? BusReader(*reply).string(longestAddress) : std::nullopt;
    return found && isOfASocket(*found) ? BusConnection::open(*found, deadline) : nullptr;
}

} // namespace

class AtspiElement final : public AccessibleElement {
public:
    AtspiElement(AtspiAccessibility& owner, BusObject object, std::shared_ptr<AtspiOperation> operation)
        : owner_(owner), object_(std::move(object)), operation_(std::move(operation)) {}

    std::optional<QString> role() override { return ask<std::optional<QString>>(&AtspiLoop::role); }
    std::optional<QString> value() override { return ask<std::optional<QString>>(&AtspiLoop::value); }
    std::optional<QString> selectedText() override {
        return ask<std::optional<QString>>(&AtspiLoop::selectedText);
    }
    std::optional<TextRange> selectedTextRange() override {
        return ask<std::optional<TextRange>>(&AtspiLoop::selectedRange);
    }
    bool isSelectedTextSettable() override { return ask<bool>(&AtspiLoop::isSettable); }

    tl::expected<void, AccessibilityError> replaceSelection(const QString& text) override {
        struct Outcome {
            tl::expected<void, AccessibilityError> answer = tl::unexpected(AccessibilityError::unanswered);
            std::atomic<bool> isDecided = false;
        };
        const auto outcome = std::make_shared<Outcome>();
        const bool isDone =
            owner_.perform(operation_->end.time() + handing, [outcome, text, object = object_,
                                                              operation = operation_](AtspiLoop& loop) {
                outcome->answer = loop.replaceSelection(object, text, *operation, outcome->isDecided);
            });
        // Sent too late to be waited for is handed over; not sent by now it never is. In between the same
        // text would go two roads.
        if (!isDone && outcome->isDecided.exchange(true))
            return {};
        return isDone ? outcome->answer : tl::unexpected(AccessibilityError::unanswered);
    }

    std::vector<std::shared_ptr<AccessibleElement>> children() override {
        std::vector<std::shared_ptr<AccessibleElement>> elements;
        for (auto& child : ask<std::vector<BusObject>>(&AtspiLoop::children))
            elements.push_back(std::make_shared<AtspiElement>(owner_, std::move(child), operation_));
        return elements;
    }

    bool isSameAs(const AccessibleElement& other) const override {
        const auto* element = dynamic_cast<const AtspiElement*>(&other);
        return element && element->object_ == object_;
    }
    std::shared_ptr<AccessibleElement> renewed(std::chrono::milliseconds budget) const override {
        return std::make_shared<AtspiElement>(owner_, object_, operationWithin(budget));
    }

private:
    template <typename T>
    [[nodiscard]] T ask(T (AtspiLoop::*question)(const BusObject&, AtspiOperation&)) {
        const auto answer = std::make_shared<T>();
        const bool isDone =
            owner_.perform(operation_->end.time() + handing,
                           [answer, question, object = object_, operation = operation_](AtspiLoop& loop) {
                               *answer = (loop.*question)(object, *operation);
                           });
        return isDone ? std::move(*answer) : T{};
    }

    AtspiAccessibility& owner_;
    BusObject object_;
    std::shared_ptr<AtspiOperation> operation_;
};

AtspiAccessibility::AtspiAccessibility() : thread_([this] { run(); }) {}

AtspiAccessibility::~AtspiAccessibility() {
    jobs_.stop();
    thread_.join();
}

std::shared_ptr<AccessibleElement> AtspiAccessibility::focusedElement(qint64 process,
                                                                      std::chrono::milliseconds budget) {
    const auto operation = operationWithin(budget);
    const auto found = std::make_shared<std::optional<BusObject>>();
    const bool isDone = perform(operation->end.time() + handing,
                                [=](AtspiLoop& loop) { *found = loop.focused(process, *operation); });
    if (!isDone || !*found)
        return nullptr;
    return std::make_shared<AtspiElement>(*this, **found, operation);
}

bool AtspiAccessibility::perform(std::chrono::steady_clock::time_point deadline,
                                 std::function<void(AtspiLoop&)> work) {
    return jobs_.perform(deadline, std::move(work));
}

void AtspiAccessibility::run() {
    setUpThread("velorin-atspi");
    while (!jobs_.isStopping()) {
        if (const auto bus = openAccessibilityBus())
            serve(*bus);
        if (!jobs_.isStopping())
            wait(-1, retryInterval);
    }
}

void AtspiAccessibility::serve(BusConnection& bus) {
    AtspiLoop loop(bus, [this] { return jobs_.isAnyWaiting(); });
    jobs_.open();
    while (!jobs_.isStopping() && !bus.isBroken()) {
        jobs_.run(loop);
        loop.serve();
        if (!jobs_.isAnyWaiting() && !bus.isBroken())
            wait(bus.fileDescriptor(), loop.pollTimeout());
    }
    jobs_.close();
    if (!jobs_.isStopping())
        qCInfo(insertLog) << "accessibility: the bus is gone";
}

void AtspiAccessibility::wait(int descriptor, int timeout) {
    std::array<pollfd, 2> waiting{{{jobs_.fileDescriptor(), POLLIN, 0}, {descriptor, POLLIN, 0}}};
    poll(waiting.data(), waiting.size(), timeout);
    if (waiting[0].revents != 0)
        jobs_.clearWakeUp();
}

} // namespace velorin
