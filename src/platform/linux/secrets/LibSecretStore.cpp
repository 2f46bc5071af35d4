#include "platform/linux/secrets/LibSecretStore.h"

#include "platform/linux/secrets/SecretCalls.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QTimer>

#include <condition_variable>
#include <future>
#include <mutex>
#include <thread>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr std::chrono::milliseconds deadlineOfACall{3000};
constexpr std::chrono::milliseconds deadlineOfTheStartUp{500};
constexpr std::chrono::milliseconds breath{50}; ///< Several signals are told as one change.

const QString busName = u"org.freedesktop.secrets"_s;

} // namespace

/// The thread that speaks to the service: one call at a time.
class LibSecretStore::Worker final {
public:
    using Job = std::function<void(GCancellable*)>;

    explicit Worker(std::function<void()> onAnsweringAgain)
        : onAnsweringAgain_(std::move(onAnsweringAgain)), thread_([this] { serve(); }) {}
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker() {
        {
            const std::lock_guard lock(mutex_);
            isEnding_ = true;
            SecretCalls::cancel(current_.get());
        }
        wakeUp_.notify_one();
        thread_.join();
    }

    /// False while the service owes an answer. One call follows the other at once: that the thread has not
    /// yet come back from the last one's answer is no reason to refuse.
    bool begin(Job job) {
        const std::lock_guard lock(mutex_);
        if (isMissed_)
            return false;
        current_ = SecretCalls::newCancellable();
        job_ = std::move(job);
        wakeUp_.notify_one();
        return true;
    }

    /// Nobody waits for the call any more; from here on the service is watched until it answers.
    void giveUp() {
        const std::lock_guard lock(mutex_);
        isMissed_ = true;
        SecretCalls::cancel(current_.get());
        wakeUp_.notify_one();
    }

private:
    void serve() {
        std::unique_lock lock(mutex_);
        while (true) {
            wakeUp_.wait(lock, [this] { return isEnding_ || job_ || isMissed_; });
            if (isEnding_)
                return;
            const Job job = std::exchange(job_, nullptr);
            if (job)
                run(lock, job);
            while (isMissed_ && !isEnding_)
                waitForTheService(lock);
        }
    }

    void run(std::unique_lock<std::mutex>& lock, const Job& job) {
        GCancellable* const cancellable = current_.get();
        lock.unlock();
        job(cancellable);
        lock.lock();
    }

    void waitForTheService(std::unique_lock<std::mutex>& lock) {
        current_ = SecretCalls::newCancellable();
        auto presence = SecretCalls::Presence::silent;
        run(lock, [&presence](GCancellable* cancellable) { presence = SecretCalls::look(cancellable); });
        // One that is absent is told by the bus when it comes.
        isMissed_ = presence == SecretCalls::Presence::silent;
        if (presence == SecretCalls::Presence::answers && !isEnding_)
            onAnsweringAgain_();
    }

    std::function<void()> onAnsweringAgain_;
    std::mutex mutex_;
    std::condition_variable wakeUp_;
    SecretCalls::Cancellable current_ = SecretCalls::newCancellable();
    Job job_;
    bool isMissed_ = false;
    bool isEnding_ = false;
    std::thread thread_; ///< Last: it uses the others.
};

LibSecretStore::LibSecretStore()
    : startUpLeft_(deadlineOfTheStartUp), worker_(std::make_unique<Worker>([this] {
          QMetaObject::invokeMethod(this, &LibSecretStore::changed, Qt::QueuedConnection);
      })) {
    QTimer::singleShot(0, this, [this] { isStartingUp_ = false; });
    watchTheBus();
}

LibSecretStore::~LibSecretStore() { worker_.reset(); }

void LibSecretStore::watchTheBus() {
    auto bus = QDBusConnection::sessionBus();
    auto* const watcher =
        std::make_unique<QDBusServiceWatcher>(busName, bus, QDBusServiceWatcher::WatchForRegistration, this)
            .release(); // Our child.
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, &LibSecretStore::changed);
    for (const auto& signal : {u"CollectionCreated"_s, u"CollectionChanged"_s})
        bus.connect(busName, QString(), u"org.freedesktop.Secret.Service"_s, signal, this, SLOT(changed()));
    bus.connect(busName, QString(), u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s, this,
                SLOT(changed()));
}

void LibSecretStore::changed() {
    if (std::exchange(isChangeDue_, true))
        return;
    QTimer::singleShot(breath, this, [this] {
        isChangeDue_ = false;
        if (onChanged_)
            onChanged_();
    });
}

std::chrono::milliseconds LibSecretStore::patience() const {
    return isStartingUp_ ? startUpLeft_ : deadlineOfACall;
}

template <typename Value, typename Work>
std::optional<Value> LibSecretStore::ask(Work work) {
    const auto answer = std::make_shared<std::promise<Value>>();
    auto coming = answer->get_future();
    const auto asked = std::chrono::steady_clock::now();
    if (!worker_->begin([answer, work](GCancellable* cancellable) { answer->set_value(work(cancellable)); }))
        return std::nullopt;
    const bool isThere = coming.wait_for(patience()) == std::future_status::ready;
    if (isStartingUp_)
        startUpLeft_ -=
            std::min(startUpLeft_,
                     std::chrono::ceil<std::chrono::milliseconds>(std::chrono::steady_clock::now() - asked));
    if (isThere)
        return coming.get();
    worker_->giveUp();
    return std::nullopt;
}

bool LibSecretStore::isAwake() {
    return ask<bool>([](GCancellable* cancellable) { return SecretCalls::isRunning(cancellable); })
        .value_or(false);
}

std::optional<QByteArray> LibSecretStore::read(const QString& service, const QString& account) {
    return ask<std::optional<QByteArray>>(
               [=](GCancellable* cancellable) { return SecretCalls::read(service, account, cancellable); })
        .value_or(std::nullopt);
}

bool LibSecretStore::add(const QString& service, const QString& account, const QByteArray& secret) {
    return ask<bool>([=](GCancellable* cancellable) {
               return SecretCalls::add(service, account, secret, cancellable);
           })
        .value_or(false);
}

void LibSecretStore::remove(const QString& service, const QString& account) {
    ask<bool>([=](GCancellable* cancellable) { return SecretCalls::remove(service, account, cancellable); });
}

} // namespace velorin
