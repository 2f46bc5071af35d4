/// The event tap of an X session: a thread of its own, `velorin-tap`, with two connections to the server.
///
/// Few PC keyboards have an Fn key that programs can see, so another key stands in for it; which one is the
/// user's choice (`setFnStandIn`, by default the right Ctrl key).
#pragma once

#include "platform/EventTap.h"
#include "platform/linux/x11/SharedKeyState.h"
#include "platform/linux/x11/TapLoop.h"

#include <atomic>
#include <future>
#include <thread>

namespace velorin {

class X11EventTap final : public EventTap {
public:
    /// The state is shared with those who post keys; it outlives the tap. `guard` is the program that gives
    /// the keyboard back when this process is stopped; an empty one means none.
    explicit X11EventTap(SharedKeyState& shared, std::string guard = guardProgram());
    ~X11EventTap() override;

    [[nodiscard]] tl::expected<void, EventTapError> start(Handler handler, TapListener listener) override;
    void stop() override;
    void setTappedKeys(std::vector<TappedKey> keys) override;

    /// "fn", "menu", "rightControl", "rightAlt", "capsLock", "scrollLock" or "pause"; anything else is
    /// "rightControl". Takes effect at once. Main thread.
    void setFnStandIn(const QString& name);

private:
    using Started = std::promise<tl::expected<void, EventTapError>>;

    void run(Handler handler, const TapListener& listener, Started& started);
    /// False when the server is gone.
    [[nodiscard]] bool serve(Handler handler, const TapListener& listener, Started& started);

    SharedKeyState& shared_;
    TapOrders orders_;
    std::string guardProgram_;
    std::atomic<bool> isStartAwaited_ = false; ///< Whoever sets it back decides what becomes of the start.
    std::thread thread_;
};

} // namespace velorin
