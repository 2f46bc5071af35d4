#include "platform/linux/secrets/LibSecretStore.h"
#include "tests/platform/linux/secrets/KeyRing.h"
#include "tests/support/WaitUntil.h"

#include <QDBusConnection>
#include <QElapsedTimer>

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace velorin {
namespace {

const QString service = u"dev.orrin.velorin.test"_s;
const QString account = u"api-key.custom"_s;

class ALibSecretStore : public testing::Test {
protected:
    /// After the first turn of the event loop a call may take its three seconds.
    std::unique_ptr<LibSecretStore> running() {
        auto store = std::make_unique<LibSecretStore>();
        store->setOnChanged([this] { ++changes; });
        bool hasTurned = false;
        QTimer::singleShot(0, [&hasTurned] { hasTurned = true; });
        EXPECT_TRUE(waitUntil([&] { return hasTurned; }));
        return store;
    }

    KeyRing ring;
    int changes = 0;
};

TEST_F(ALibSecretStore, KeepsReadsReplacesAndRemoves) {
    ASSERT_TRUE(ring.start());
    const auto store = running();
    EXPECT_EQ(store->read(service, account), std::nullopt);
    ASSERT_TRUE(store->add(service, account, "ké\xff y"));
    EXPECT_EQ(store->read(service, account), QByteArray("ké\xff y"));
    EXPECT_EQ(store->read(service, u"api-key.openAI"_s), std::nullopt);
    ASSERT_TRUE(store->add(service, account, "other"));
    EXPECT_EQ(store->read(service, account), QByteArray("other"));
    EXPECT_TRUE(ring.tool({u"lookup"_s, u"service"_s, service, u"account"_s, account}));
    // Deleted behind our back.
    EXPECT_TRUE(ring.tool({u"clear"_s, u"service"_s, service, u"account"_s, account}));
    EXPECT_EQ(store->read(service, account), std::nullopt);
    ASSERT_TRUE(store->add(service, account, "again"));
    store->remove(service, account);
    EXPECT_EQ(store->read(service, account), std::nullopt);
}

TEST_F(ALibSecretStore, IsAwakeOnceTheServiceRunsAndTheQuestionStartsNone) {
    ring.offerToStart();
    const auto store = running();
    EXPECT_FALSE(store->isAwake());
    EXPECT_FALSE(ring.wasStartedForSomebody());
    EXPECT_EQ(store->read(service, account), std::nullopt);
    EXPECT_TRUE(ring.wasStartedForSomebody()) << "as reading does";
    ASSERT_TRUE(ring.start());
    EXPECT_TRUE(store->isAwake());
    ring.endBus();
    EXPECT_FALSE(store->isAwake());
}

TEST_F(ALibSecretStore, TakesOneCallRightAfterTheOther) {
    ASSERT_TRUE(ring.start());
    const auto store = running();
    for (int i = 0; i < 100; ++i) {
        store->remove(service, account);
        ASSERT_TRUE(store->add(service, account, QByteArray::number(i))) << i;
        ASSERT_EQ(store->read(service, account), QByteArray::number(i));
    }
}

TEST_F(ALibSecretStore, OutlivesTheBus) {
    ASSERT_TRUE(ring.start());
    const auto store = running();
    ASSERT_TRUE(store->add(service, account, "key"));
    ring.endBus();
    ASSERT_TRUE(waitUntil([] { return !QDBusConnection::sessionBus().isConnected(); }));
    EXPECT_EQ(store->read(service, account), std::nullopt);
    EXPECT_FALSE(store->add(service, account, "other"));
}

TEST_F(ALibSecretStore, WithoutAServiceThereIsNoItemUntilOneComes) {
    const auto store = running();
    EXPECT_EQ(store->read(service, account), std::nullopt);
    EXPECT_FALSE(store->add(service, account, "key"));
    ASSERT_TRUE(ring.start());
    EXPECT_TRUE(waitUntil([this] { return changes > 0; }));
    // The service is there before its first collection is.
    EXPECT_TRUE(waitUntil([&store] { return store->add(service, account, "key"); }, 20s));
    EXPECT_EQ(store->read(service, account), QByteArray("key"));
}

TEST_F(ALibSecretStore, ALockedCollectionHoldsNothingUntilItIsUnlocked) {
    ASSERT_TRUE(ring.start());
    const auto store = running();
    ASSERT_TRUE(store->add(service, account, "key"));
    ASSERT_TRUE(ring.lock());
    QElapsedTimer watch;
    watch.start();
    EXPECT_EQ(store->read(service, account), std::nullopt);
    EXPECT_FALSE(store->add(service, account, "other"));
    EXPECT_LT(watch.elapsed(), 3000);
    changes = 0;
    ASSERT_TRUE(ring.unlock());
    // The locking was a change as well, and may be told late.
    EXPECT_TRUE(
        waitUntil([&] { return changes > 0 && store->read(service, account) == QByteArray("key"); }, 20s));
}

TEST_F(ALibSecretStore, AServiceThatHangsCostsOneDeadlineAndIsToldWhenItAnswers) {
    ASSERT_TRUE(ring.start());
    const auto store = running();
    ASSERT_TRUE(store->add(service, account, "key"));
    ring.freeze();
    QElapsedTimer watch;
    watch.start();
    EXPECT_EQ(store->read(service, account), std::nullopt);
    EXPECT_GE(watch.elapsed(), 2900);
    EXPECT_LT(watch.restart(), 4500);
    EXPECT_EQ(store->read(service, account), std::nullopt);
    EXPECT_FALSE(store->add(service, account, "other"));
    EXPECT_LT(watch.elapsed(), 500);
    changes = 0;
    ring.thaw();
    // What the service had to tell from before it was stopped is a change as well.
    EXPECT_TRUE(
        waitUntil([&] { return changes > 0 && store->read(service, account) == QByteArray("key"); }, 40s));
}

TEST_F(ALibSecretStore, AllCallsOfTheStartUpShareHalfASecond) {
    ASSERT_TRUE(ring.start());
    ring.freeze();
    LibSecretStore store;
    QElapsedTimer watch;
    watch.start();
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(store.read(service, account), std::nullopt);
    EXPECT_LT(watch.elapsed(), 1500);
    store.setOnChanged([this] { ++changes; });
    ring.thaw();
    EXPECT_TRUE(waitUntil([this] { return changes > 0; }, 40s));
}

} // namespace
} // namespace velorin
