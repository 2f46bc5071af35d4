/// A connection to a message bus, for one thread, on which nothing waits longer than its deadline.
///
///     auto bus = BusConnection::open(address, deadline);
///     if (!bus) …                                       // nobody there, or nobody who answers
///     auto reply = bus->call(BusCall{…}, deadline);
///     if (!reply) …                                     // an error, no answer in time, or the bus is gone
///
/// Signals that arrive meanwhile are kept for `takeSignal`. Nothing that others send can end the process, nor
/// make us keep more than a little of it: what nobody waits for is not kept.
#pragma once

#include "platform/linux/atspi/BusObject.h"
#include "platform/linux/x11/Deadline.h"

#include <dbus/dbus.h>

#include <array>
#include <deque>
#include <map>
#include <memory>
#include <variant>
#include <vector>

namespace velorin {

struct MessageDeleter {
    void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
using BusMessage = std::unique_ptr<DBusMessage, MessageDeleter>;

struct BusCall {
    using Argument = std::variant<std::string, std::int32_t, bool>;

    BusObject object;
    std::string interface;
    std::string method;
    std::vector<Argument> arguments;
};

/// A signal as far as anybody here reads it: the words with which it begins, and the number behind them.
struct BusSignal {
    BusObject source;
    std::string interface;
    std::string name;
    std::array<std::string, 3> words;
    std::int32_t number = 0;
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
    /// To be called for each: until then the answer is kept.
    [[nodiscard]] BusMessage await(std::uint32_t serial, Deadline deadline);
    /// Asks for no answer.
    void tell(const BusCall& call);
    /// Whether the call before this failed for want of time.
    [[nodiscard]] bool hasTimedOut() const { return hasTimedOut_; }

    void addMatch(const std::string& rule);
    /// The next signal that has arrived.
    [[nodiscard]] std::optional<BusSignal> takeSignal();

    /// The process behind a name; 0 when that cannot be told.
    [[nodiscard]] std::int64_t processOf(const BusName& owner, Deadline deadline);
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
    void keepSignal(DBusMessage& message);
    void keepReply(BusMessage message);

    std::unique_ptr<DBusConnection, Close> connection_;
    std::string name_;
    std::deque<BusSignal> signals_;
    std::map<std::uint32_t, BusMessage>
        owed_; ///< By the serials that are waited for; null until it is there.
    bool hasTimedOut_ = false;
};

/// Takes the values of a message one after the other, and nothing from one of another kind than was asked
/// for, nor more of it than anybody has a use for.
///
///     BusReader reader(*message);
///     auto text = reader.string();
class BusReader final {
public:
    /// Longer than any name on a bus, of an interface or of a toolkit. In bytes.
    static constexpr std::size_t longestName = 255;
    /// Of lists, no more is read.
    static constexpr std::size_t longestList = 1000;

    explicit BusReader(DBusMessage& message) { dbus_message_iter_init(&message, &iterator_); }

    /// Nothing from one that is longer, in bytes.
    [[nodiscard]] std::optional<std::string> string(std::size_t longest = longestName);
    [[nodiscard]] std::optional<std::int32_t> int32();
    [[nodiscard]] std::optional<std::uint32_t> uint32();
    [[nodiscard]] std::optional<bool> boolean();
    [[nodiscard]] std::optional<std::vector<std::uint32_t>> uint32s();
    [[nodiscard]] std::optional<std::vector<std::string>> strings();
    /// Those that are somebody's.
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
