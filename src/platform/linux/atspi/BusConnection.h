/// A connection to a message bus, for one thread, on which nothing waits longer than its deadline.
///
///     auto bus = BusConnection::open(address, deadline);
///     if (!bus) …                                       // nobody there, or nobody who answers
///     auto reply = bus->call(BusCall{…}, deadline);
///     if (!reply) …                                     // an error, no answer in time, or the bus is gone
///
/// Signals that arrive meanwhile are kept for `takeSignal`.
#pragma once

#include "platform/linux/x11/Deadline.h"

#include <dbus/dbus.h>

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace velorin {

struct MessageDeleter {
    void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
using BusMessage = std::unique_ptr<DBusMessage, MessageDeleter>;

/// Somebody's object.
struct BusObject {
    std::string owner;
    std::string path;

    bool operator==(const BusObject&) const = default;
};

struct BusCall {
    using Argument = std::variant<std::string, std::int32_t, bool>;

    BusObject object;
    std::string interface;
    std::string method;
    std::vector<Argument> arguments;
};

class BusConnection final {
public:
    /// Null without a bus there that takes us in within the deadline.
    [[nodiscard]] static std::unique_ptr<BusConnection> open(const std::string& address, Deadline deadline);

    [[nodiscard]] bool isBroken() const { return !dbus_connection_get_is_connected(connection_.get()); }
    [[nodiscard]] int fileDescriptor() const;

    /// Null on an error, which the owner may have answered with, or without an answer by the deadline.
    [[nodiscard]] BusMessage call(const BusCall& call, Deadline deadline);
    /// Sends now and waits later: what is sent first arrives first. 0 when it cannot be sent.
    [[nodiscard]] std::uint32_t send(const BusCall& call);
    [[nodiscard]] BusMessage await(std::uint32_t serial, Deadline deadline);
    /// Whether the call before this failed for want of time.
    [[nodiscard]] bool hasTimedOut() const { return hasTimedOut_; }

    void addMatch(const std::string& rule);
    /// The next signal that has arrived; null when there is none.
    [[nodiscard]] BusMessage takeSignal();

    /// The process behind a name; 0 when that cannot be told.
    [[nodiscard]] std::int64_t processOf(const std::string& owner, Deadline deadline);
    [[nodiscard]] const std::string& name() const { return name_; }

private:
    struct Close {
        void operator()(DBusConnection* connection) const {
            dbus_connection_close(connection);
            dbus_connection_unref(connection);
        }
    };

    explicit BusConnection(DBusConnection* connection) : connection_(connection) {}
    void readAll();

    std::unique_ptr<DBusConnection, Close> connection_;
    std::string name_;
    std::deque<BusMessage> signals_;
    std::deque<BusMessage> replies_;
    bool hasTimedOut_ = false;
};

/// Takes the values of a message one after the other, and nothing from one of another kind than was asked
/// for.
///
///     BusReader reader(*message);
///     auto text = reader.string();
class BusReader final {
public:
    explicit BusReader(DBusMessage& message) { dbus_message_iter_init(&message, &iterator_); }

    [[nodiscard]] std::optional<std::string> string();
    [[nodiscard]] std::optional<std::int32_t> int32();
    [[nodiscard]] std::optional<std::uint32_t> uint32();
    [[nodiscard]] std::optional<bool> boolean();
    [[nodiscard]] std::optional<std::vector<std::uint32_t>> uint32s();
    [[nodiscard]] std::optional<std::vector<std::string>> strings();
    [[nodiscard]] std::optional<std::vector<BusObject>> objects();
    /// What a variant holds.
    [[nodiscard]] std::optional<BusReader> variant();

private:
    BusReader() = default;
    [[nodiscard]] bool is(int type);
    template <typename T>
    [[nodiscard]] std::optional<T> basic(int type);
    [[nodiscard]] std::optional<BusReader> inner(int type);

    DBusMessageIter iterator_{};
};

} // namespace velorin
