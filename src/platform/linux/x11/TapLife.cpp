// The tap's loop without its keys: how it begins, waits, asks again for what it lacks, and comes back.
#include "platform/linux/x11/TapLoop.h"

#include "platform/Log.h"

#include <array>
#include <initializer_list>
#include <poll.h>

namespace velorin {

namespace {

/// Nobody presses a key again at the very end of it.
constexpr std::chrono::milliseconds typingPause{100};

/// For all that the tap has to know before it grabs a key.
constexpr std::chrono::milliseconds setUpPatience{1000};

// In tries of growing pauses. Who has a key of ours may be about to leave, like the program that was started
// before us; that takes seconds. Who comes to the front or goes has done so a moment later.
constexpr int triesWhenRefused = 12;
constexpr int triesWhenOthersChange = 3;

/// A server that was there may turn us away for a moment, when it has too many clients.
constexpr int refusalsOfAServer = 5;

constexpr int never = -1; ///< For poll().

int earliest(std::initializer_list<int> timeouts) {
    int least = never;
    for (const int timeout : timeouts)
        if (timeout != never && (least == never || timeout < least))
            least = timeout;
    return least;
}

} // namespace

TapLoop::TapLoop(std::unique_ptr<TapConnections> connections, SharedKeyState& shared, TapOrders& orders,
                 EventTap::Handler handler, TapListener listener, GuardProcess& guard, LogThread& log)
    : connections_(std::move(connections)), shared_(shared), orders_(orders), handler_(std::move(handler)),
      listener_(std::move(listener)), guard_(guard), log_(log),
      grabs_(std::make_unique<TapGrabs>(*connections_, shared_, log_)) {}

TapLoop::~TapLoop() {
    shared_->isWatched = 0;
    shared_->tapResource = 0;
    if (!connections_)
        return;
    for (unsigned key = 0; key < 256; ++key) // nobody will see the user let go of them
        if (shared_->keys[key].exchange(0) == KeyState::givenBack)
            connections_->post(false, static_cast<xcb_keycode_t>(key));
    (void)connections_->grabs().sync(Deadline(serverDeadline));
}

void TapLoop::prepare() {
    (void)obey();
    setUp();
    (void)connections_->grabs().sync(Deadline(serverDeadline));
    if (map_)
        tell(grabs_->trouble());
}

bool TapLoop::run() {
    while (obey()) {
        if (connections_->isBroken()) {
            if (!comeBack())
                return !orders_.isWanted();
        } else if (!map_) {
            awaitServer();
        } else {
            process();
            if (!connections_->isBroken())
                wait();
        }
    }
    return true;
}

bool TapLoop::obey() {
    std::vector<TappedKey> keys;
    std::string standIn;
    {
        const std::scoped_lock lock(orders_.mutex);
        if (orders_.isStopping)
            return false;
        keys = orders_.keys;
        standIn = orders_.standIn;
    }
    const TapKeys wanted(standIn);
    if (keys != tappedKeys_ || wanted != keys_) {
        if (keys != tappedKeys_)
            held_.forgetTwins(); // with other shortcuts the handler begins anew
        tappedKeys_ = std::move(keys);
        keys_ = wanted;
        regrab();
        grabModifiersAsNeeded();
    }
    return true;
}

void TapLoop::setUp() {
    const auto& grabs = connections_->grabs();
    if (shared_->tapResource == 0) {
        const auto resource = xcb_generate_id(grabs.get());
        xcb_create_pixmap(grabs.get(), 1, resource, grabs.root(), 1, 1);
        shared_->tapResource = resource;
    }
    // Nothing is grabbed before all is known: until then no key waits for us, however late the server is.
    const Deadline deadline(setUpPatience);
    const auto held = keysHeldByUser(grabs, deadline);
    auto map = held ? KeyboardMap::read(grabs, deadline) : std::nullopt;
    if (!map) {
        overdue_.begin(Retries::endless);
        return;
    }
    overdue_.end();
    map_ = std::move(map);
    regrab();
    reconcile(*held);
    shared_->isWatched = 1;
}

void TapLoop::reconcile(const KeySet& heldByUser) {
    // A device that we released a key on tells of it as up; whether the user let go of it was heard.
    userDown_ = heldByUser | (released_ & userDown_);
    connections_->assumeUserDown(userDown_);
    bool isOutOfStep = false;
    const auto believed = held_.down();
    for (const auto& [key, code] : believed) {
        if (!userDown_[key]) {
            tellRelease(key);
            isOutOfStep = true;
        }
    }
    const auto modifiers = keys_.modifiers();
    for (unsigned code = 0; code < 256; ++code) {
        const auto key = static_cast<xcb_keycode_t>(code);
        if (userDown_[key] && modifiers[key] && !grabs_->isBound(key) && !held_.isDown(key)) {
            held_.press(key, keys_.virtualOf(key).value());
            isOutOfStep = true;
        }
    }
    if (isOutOfStep) {
        (void)handler_({KeyEvent::flagsChanged, 0, held_.flags()});
        held_.assumeTwins(keys_);
        regrab();
    }
    grabModifiersAsNeeded();
}

void TapLoop::awaitServer() {
    pollfd waiting{orders_.wakeUp.fileDescriptor(), POLLIN, 0};
    if (poll(&waiting, 1, overdue_.pollTimeout()) != 0)
        orders_.wakeUp.clear();
    if (!overdue_.isDue())
        return;
    overdue_.next();
    setUp();
}

void TapLoop::tell(std::optional<TapTrouble> trouble) {
    if (std::exchange(told_, trouble) == trouble)
        return;
    if (trouble && listener_.onSuspended)
        listener_.onSuspended(*trouble);
    if (!trouble && listener_.onResumed)
        listener_.onResumed();
}

void TapLoop::lookAtRefusals() {
    const bool isAny = grabs_->isAnyRefused();
    const bool isNew = grabs_->isNewlyRefused();
    connections_->watchOthers(isAny);
    const bool isChanged = connections_->haveOthersChanged();
    if (!isAny)
        refusals_.end();
    else if (isNew || isChanged)
        refusals_.begin(isNew ? triesWhenRefused : triesWhenOthersChange);
}

void TapLoop::readMap() {
    isMapOld_ = false;
    const bool hasDevices = connections_->readDevicesAgain();
    auto map = KeyboardMap::read(connections_->grabs(), Deadline(serverDeadline));
    if (!map || !hasDevices) {
        overdue_.begin(Retries::endless);
        return;
    }
    overdue_.end();
    map_ = std::move(map);
    regrab();
    refusals_.begin(triesWhenOthersChange); // who has the key may have let go of it with the old map
}

void TapLoop::askAgain() {
    if (overdue_.isDue()) {
        overdue_.next();
        readMap();
    }
    if (refusals_.isDue()) {
        refusals_.next();
        grabs_->askForRefused();
    }
}

void TapLoop::wait() {
    lookAtRefusals();
    tell(grabs_->trouble());
    connections_->grabs().flush();
    connections_->raw().flush();
    std::array<pollfd, 4> waiting{{{connections_->grabs().fileDescriptor(), POLLIN, 0},
                                   {connections_->raw().fileDescriptor(), POLLIN, 0},
                                   {orders_.wakeUp.fileDescriptor(), POLLIN, 0},
                                   {guard_.fileDescriptor(), POLLIN, 0}}};
    // What the user has let go of is up for everybody, though our device still holds it. To release that at
    // once could end the next press of it, while somebody types.
    const int undoTimeout = outlivedRepetitions().any() ? static_cast<int>(typingPause.count()) : never;
    const int timeout = earliest({undoTimeout, overdue_.pollTimeout(), refusals_.pollTimeout()});
    if (poll(waiting.data(), waiting.size(), timeout) == 0 && timeout == undoTimeout)
        undoOutlivedRepetitions();
    if (waiting[2].revents != 0)
        orders_.wakeUp.clear();
    if (waiting[3].revents != 0)
        lookAtGuard();
    askAgain();
}

void TapLoop::lookAtGuard() {
    if (!guard_.lives() && !guard_.startAgain())
        log_.write([] { qCWarning(tapLog) << "the keyboard's guard does not stay; going on without it"; });
}

bool TapLoop::comeBack() {
    tell(TapTrouble::serverIsLate);
    shared_->tapResource = 0;
    const auto& raw = connections_->raw();
    const auto hear = [&] {
        process();
        return !raw.isBroken();
    };
    auto fresh = TapConnector(orders_.wakeUp, [this] {
                     return orders_.isWanted();
                 }).connect(refusalsOfAServer, {raw.isBroken() ? -1 : raw.fileDescriptor(), hear});
    process(); // what was heard until there is somebody else to hear
    if (!fresh) {
        if (fresh.error() != TapRefusal::unwanted)
            log_.write([] { qCWarning(tapLog) << "the connection to the X server was lost"; });
        return false;
    }
    log_.write([] { qCWarning(tapLog) << "the tap's connection was ended; it has a new one"; });
    if (raw.isBroken())
        released_.reset();
    begin(std::move(*fresh));
    guard_.startIfNone();
    return true;
}

void TapLoop::begin(std::unique_ptr<TapConnections> connections) {
    grabs_.reset();
    connections_ = std::move(connections);
    grabs_ = std::make_unique<TapGrabs>(*connections_, shared_, log_);
    grabbedKeys_.clear();
    heardKeys_.clear();
    reposted_.clear();
    map_.reset();
    isMapOld_ = false;
    overdue_.end();
    refusals_.end();
    setUp();
}

} // namespace velorin
