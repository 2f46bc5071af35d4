#include "platform/linux/atspi/AtspiAccessibility.h"

#include "platform/Log.h"
#include "platform/linux/atspi/AtspiLoop.h"
#include "platform/linux/x11/ThreadSetup.h"

#include <QByteArray>

#include <array>
#include <poll.h>

namespace velorin {

namespace {

using namespace std::chrono_literals;

/// How long to leave a bus alone that was not there.
constexpr auto retryInterval = 2000;
/// A session's bus may be slow to start the accessibility bus on our behalf.
constexpr auto connectDeadline = 3s;
/// What a caller waits beyond the budget: the thread keeps the budget by itself.
constexpr auto slack = 20ms;

std::string sessionAddress() {
    const auto address = qgetenv("DBUS_SESSION_BUS_ADDRESS").toStdString();
    const auto folder = qgetenv("XDG_RUNTIME_DIR").toStdString();
    return address.empty() && !folder.empty() ? "unix:path=" + folder + "/bus" : address;
}

void switchOn(BusConnection& session, Deadline deadline) {
    const BusObject status{"org.a11y.Bus", "/org/a11y/bus"};
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
    const auto reply =
        session->call({{"org.a11y.Bus", "/org/a11y/bus"}, "org.a11y.Bus", "GetAddress", {}}, deadline);
    const auto found = reply ? BusReader(*reply).string() : std::nullopt;
    return found && !found->empty() ? BusConnection::open(*found, deadline) : nullptr;
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
            std::atomic<bool> wasSent = false;
        };
        const auto outcome = std::make_shared<Outcome>();
        const bool isDone =
            owner_.perform(operation_->end.time() + slack, [outcome, text, object = object_,
                                                            operation = operation_](AtspiLoop& loop) {
                outcome->answer = loop.replaceSelection(object, text, *operation, outcome->wasSent);
            });
        if (!isDone && outcome->wasSent)
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
        return std::make_shared<AtspiElement>(owner_, object_, std::make_shared<AtspiOperation>(budget));
    }

private:
    template <typename T>
    [[nodiscard]] T ask(T (AtspiLoop::*question)(const BusObject&, AtspiOperation&)) {
        const auto answer = std::make_shared<T>();
        const bool isDone =
            owner_.perform(operation_->end.time() + slack,
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
    {
        const std::scoped_lock lock(mutex_);
        isStopping_ = true;
    }
    wakeUp_.wake();
    thread_.join();
}

std::shared_ptr<AccessibleElement> AtspiAccessibility::focusedElement(qint64 process,
                                                                      std::chrono::milliseconds budget) {
    const auto operation = std::make_shared<AtspiOperation>(budget);
    const auto found = std::make_shared<std::optional<BusObject>>();
    const bool isDone = perform(operation->end.time() + slack,
                                [=](AtspiLoop& loop) { *found = loop.focused(process, *operation); });
    if (!isDone || !*found)
        return nullptr;
    return std::make_shared<AtspiElement>(*this, **found, operation);
}

bool AtspiAccessibility::perform(std::chrono::steady_clock::time_point deadline,
                                 std::function<void(AtspiLoop&)> work) {
    const auto job = std::make_shared<Job>();
    job->work = std::move(work);
    std::unique_lock lock(mutex_);
    if (!isConnected_)
        return false;
    jobs_.push_back(job);
    wakeUp_.wake();
    changed_.wait_until(lock, deadline, [&] { return job->state == Job::State::done || !isConnected_; });
    if (job->state == Job::State::waiting)
        job->state = Job::State::abandoned;
    return job->state == Job::State::done;
}

void AtspiAccessibility::run() {
    setUpThread("velorin-atspi");
    while (!isStopping()) {
        if (const auto bus = openAccessibilityBus())
            serve(*bus);
        if (!isStopping())
            wait(-1, retryInterval);
    }
}

void AtspiAccessibility::serve(BusConnection& bus) {
    AtspiLoop loop(bus, [this] { return hasJobs(); });
    {
        const std::scoped_lock lock(mutex_);
        isConnected_ = true;
    }
    while (!isStopping() && !bus.isBroken()) {
        runJobs(loop);
        loop.serve();
        if (!hasJobs() && !bus.isBroken())
            wait(bus.fileDescriptor(), loop.pollTimeout());
    }
    const std::scoped_lock lock(mutex_);
    isConnected_ = false;
    jobs_.clear();
    changed_.notify_all();
    if (!isStopping_)
        qCInfo(insertLog) << "accessibility: the bus is gone";
}

void AtspiAccessibility::runJobs(AtspiLoop& loop) {
    for (;;) {
        std::shared_ptr<Job> job;
        {
            const std::scoped_lock lock(mutex_);
            if (jobs_.empty())
                return;
            job = std::move(jobs_.front());
            jobs_.pop_front();
            if (job->state != Job::State::waiting)
                continue;
            job->state = Job::State::running;
        }
        job->work(loop);
        const std::scoped_lock lock(mutex_);
        job->state = Job::State::done;
        changed_.notify_all();
    }
}

void AtspiAccessibility::wait(int descriptor, int timeout) {
    std::array<pollfd, 2> waiting{{{wakeUp_.fileDescriptor(), POLLIN, 0}, {descriptor, POLLIN, 0}}};
    poll(waiting.data(), waiting.size(), timeout);
    if (waiting[0].revents != 0)
        wakeUp_.clear();
}

bool AtspiAccessibility::isStopping() {
    const std::scoped_lock lock(mutex_);
    return isStopping_;
}

bool AtspiAccessibility::hasJobs() {
    const std::scoped_lock lock(mutex_);
    return !jobs_.empty() || isStopping_;
}

} // namespace velorin
