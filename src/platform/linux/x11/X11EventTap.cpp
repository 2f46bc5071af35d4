#include "platform/linux/x11/X11EventTap.h"

#include "platform/Log.h"
#include "platform/linux/x11/ThreadSetup.h"
#include "platform/linux/x11/X11Session.h"

#include <future>

namespace velorin {

X11EventTap::X11EventTap(SharedKeyState& shared, std::string guard)
    : shared_(shared), guardProgram_(std::move(guard)) {}

X11EventTap::~X11EventTap() { stop(); }

tl::expected<void, EventTapError> X11EventTap::start(Handler handler, std::function<void()> onLost) {
    if (isWaylandSession())
        return tl::unexpected(EventTapError::unsupportedSession);
    auto connections = TapConnections::open();
    if (!connections)
        return tl::unexpected(EventTapError::notPermitted);
    stop();
    orders_.isStopping = false;
    std::promise<void> preparing;
    const auto isPrepared = preparing.get_future();
    thread_ = std::thread([this, preparing = std::move(preparing), connections = std::move(connections),
                           handler = std::move(handler), onLost = std::move(onLost)]() mutable {
        setUpThread("velorin-tap");
        bool isLost = false;
        {
            GuardProcess guard(guardProgram_, shared_, orders_.wakeUp);
            if (!guard.start())
                qCWarning(tapLog) << "the keyboard's guard could not be started";
            TapLoop loop(std::move(connections), shared_, orders_, std::move(handler), guard);
            loop.prepare();
            preparing.set_value();
            isLost = !loop.run();
        }
        if (isLost && onLost)
            onLost();
    });
    // Whoever is told that the tap runs may press at once. A server that is slow to answer is not waited for.
    (void)isPrepared.wait_for(serverDeadline);
    return {};
}

void X11EventTap::stop() {
    if (!thread_.joinable())
        return;
    {
        const std::scoped_lock lock(orders_.mutex);
        orders_.isStopping = true;
    }
    orders_.wakeUp.wake();
    thread_.join();
}

void X11EventTap::setTappedKeys(std::vector<TappedKey> keys) {
    {
        const std::scoped_lock lock(orders_.mutex);
        orders_.keys = std::move(keys);
    }
    orders_.wakeUp.wake();
}

void X11EventTap::setFnStandIn(const QString& name) {
    {
        const std::scoped_lock lock(orders_.mutex);
        orders_.standIn = name.toStdString();
    }
    orders_.wakeUp.wake();
}

} // namespace velorin
