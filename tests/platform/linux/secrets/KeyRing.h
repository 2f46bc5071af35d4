/// A private bus with a real key ring of its own, and a home that is thrown away.
///
/// The program's session bus is this one from here on: make it before anything asks for that.
#pragma once

#include <QProcess>
#include <QTemporaryDir>

namespace velorin {

class KeyRing final {
public:
    KeyRing();
    KeyRing(const KeyRing&) = delete;
    KeyRing& operator=(const KeyRing&) = delete;
    ~KeyRing();

    /// Starts the service, unlocked; false when it does not come up.
    bool start();
    void stop();
    /// From here on the bus starts a service when somebody asks for it: one that notes it, and ends.
    void offerToStart();
    [[nodiscard]] bool wasStartedForSomebody() const;
    /// Stops it from running, or lets it go on.
    void freeze();
    void thaw();
    /// The bus goes, and with it everything on it.
    void endBus();
    /// Locks the collection, or unlocks it as a login does.
    bool lock();
    bool unlock();
    /// Runs secret-tool; true when it succeeded.
    bool tool(const QStringList& arguments, const QByteArray& input = {});

private:
    bool isOnTheBus() const;
    QString noteOfStart() const { return home_.filePath(QStringLiteral("started")); }

    QTemporaryDir home_{QStringLiteral("/tmp/velorin-XXXXXX")};
    QProcess bus_;
    QProcess service_;
};

} // namespace velorin
