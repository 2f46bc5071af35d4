#include "platform/linux/x11/X11EventTap.h"

#include "platform/Log.h"
#include "platform/linux/x11/ThreadSetup.h"
#include "platform/linux/x11/X11Session.h"

namespace velorin {

namespace {
constexpr std::chrono::seconds startPatience{1};
}

X11EventTap::X11EventTap(SharedKeyState& shared, std::string guard)
    : shared_(shared), guardProgram_(std::move(guard)) {}

X11EventTap::~X11EventTap() { stop(); }

tl::expected<void, EventTapError> X11EventTap::start(Handler handler, TapListener listener) {
    if (isWaylandSession())
        return tl::unexpected(EventTapError::unsupportedSession);
    stop();
    orders_.isStopping = false;
    isStartAwaited_ = true;
    Started promise;
    auto started = promise.get_future();
    thread_ = std::thread(
        [this, promise = std::move(promise), handler = std::move(handler),
         listener = std::move(listener)]() mutable { run(std::move(handler), listener, promise); });
    // Whoever is told that the tap runs may press at once. A server that is slow to answer is not waited for.
    if (started.wait_for(startPatience) != std::future_status::ready && isStartAwaited_.exchange(false))
        return {};
    auto result = started.get();
    if (!result)
        thread_.join();
    return result;
}

void X11EventTap::run(Handler handler, const TapListener& listener, Started& started) {
    setUpThread("velorin-tap");
    if (listener.onSuspended)
        listener.onSuspended(TapTrouble::serverIsLate); // until it is seen not to be
    if (serve(std::move(handler), listener, started))
        return;
    if (isStartAwaited_.exchange(false))
        started.set_value(tl::unexpected(EventTapError::notPermitted));
    else if (listener.onLost)
        listener.onLost();
}

bool X11EventTap::serve(Handler handler, const TapListener& listener, Started& started) {
    auto connections = TapConnector(orders_.wakeUp, [this] { return orders_.isWanted(); }).connect(1, {});
    if (!connections)
        return connections.error() == TapRefusal::unwanted;
    LogThread log;
    GuardProcess guard(guardProgram_, shared_, orders_.wakeUp);
    if (!guard.start() || !guard.awaitReady())
        log.write([] { qCWarning(tapLog) << "the keyboard's guard could not be started"; });
    TapLoop loop(std::move(*connections), shared_, orders_, std::move(handler), listener, guard, log);
    loop.prepare();
    if (isStartAwaited_.exchange(false))
        started.set_value({});
    return loop.run();
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
