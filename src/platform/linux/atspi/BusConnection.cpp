#include "platform/linux/atspi/BusConnection.h"

#include <algorithm>

namespace velorin {

namespace {

/// Nothing that we ask for is longer; who sends more is not listened to.
constexpr long longestMessage = 32L * 1024 * 1024;
/// Signals that nobody has asked for in so long are of no interest any more.
constexpr std::size_t mostSignals = 256;
/// Answers that came after their deadline.
constexpr std::size_t mostLateReplies = 16;

const BusObject busItself{DBUS_SERVICE_DBUS, DBUS_PATH_DBUS};

void append(DBusMessage& message, const BusCall::Argument& argument) {
    if (const auto* text = std::get_if<std::string>(&argument)) {
        const char* characters = text->c_str();
        dbus_message_append_args(&message, DBUS_TYPE_STRING, &characters, DBUS_TYPE_INVALID);
    } else if (const auto* number = std::get_if<std::int32_t>(&argument)) {
        dbus_message_append_args(&message, DBUS_TYPE_INT32, number, DBUS_TYPE_INVALID);
    } else {
        // The one place where a truth is sent takes it in a variant: the setting of a property.
        dbus_bool_t truth = std::get<bool>(argument) ? 1 : 0;
        DBusMessageIter iterator;
        DBusMessageIter inside;
        dbus_message_iter_init_append(&message, &iterator);
        dbus_message_iter_open_container(&iterator, DBUS_TYPE_VARIANT, DBUS_TYPE_BOOLEAN_AS_STRING, &inside);
        dbus_message_iter_append_basic(&inside, DBUS_TYPE_BOOLEAN, &truth);
        dbus_message_iter_close_container(&iterator, &inside);
    }
}

} // namespace

std::unique_ptr<BusConnection> BusConnection::open(const std::string& address, Deadline deadline) {
    dbus_threads_init_default();
    DBusError error = DBUS_ERROR_INIT;
    auto* const raw = dbus_connection_open_private(address.c_str(), &error);
    dbus_error_free(&error);
    if (!raw)
        return nullptr;
    std::unique_ptr<BusConnection> connection(new BusConnection(raw)); // its constructor is private
    dbus_connection_set_exit_on_disconnect(raw, false);
    dbus_connection_set_max_message_size(raw, longestMessage);
    const auto hello = connection->call({busItself, DBUS_INTERFACE_DBUS, "Hello", {}}, deadline);
    if (!hello)
        return nullptr;
    connection->name_ = BusReader(*hello).string().value_or("");
    return connection;
}

int BusConnection::fileDescriptor() const {
    int descriptor = -1;
    dbus_connection_get_unix_fd(connection_.get(), &descriptor);
    return descriptor;
}

BusMessage BusConnection::call(const BusCall& call, Deadline deadline) {
    const auto serial = send(call);
    return serial != 0 ? await(serial, deadline) : nullptr;
}

std::uint32_t BusConnection::send(const BusCall& call) {
    hasTimedOut_ = false;
    const BusMessage message(dbus_message_new_method_call(call.object.owner.c_str(), call.object.path.c_str(),
                                                          call.interface.c_str(), call.method.c_str()));
    if (!message)
        return 0;
    for (const auto& argument : call.arguments)
        append(*message, argument);
    dbus_uint32_t serial = 0;
    return dbus_connection_send(connection_.get(), message.get(), &serial) ? serial : 0;
}

BusMessage BusConnection::await(std::uint32_t serial, Deadline deadline) {
    for (;;) {
        const auto found = std::ranges::find_if(replies_, [&](const BusMessage& reply) {
            return dbus_message_get_reply_serial(reply.get()) == serial;
        });
        if (found != replies_.end()) {
            auto reply = std::move(*found);
            replies_.erase(found);
            const bool isError = dbus_message_get_type(reply.get()) == DBUS_MESSAGE_TYPE_ERROR;
            return isError ? nullptr : std::move(reply);
        }
        hasTimedOut_ = deadline.hasPassed();
        if (hasTimedOut_ || !dbus_connection_read_write(connection_.get(), deadline.pollTimeout()))
            return nullptr;
        readAll();
    }
}

void BusConnection::readAll() {
    while (BusMessage message{dbus_connection_pop_message(connection_.get())}) {
        switch (dbus_message_get_type(message.get())) {
        case DBUS_MESSAGE_TYPE_METHOD_RETURN:
        case DBUS_MESSAGE_TYPE_ERROR:
            replies_.push_back(std::move(message));
            if (replies_.size() > mostLateReplies)
                replies_.pop_front();
            break;
        case DBUS_MESSAGE_TYPE_SIGNAL:
            signals_.push_back(std::move(message));
            if (signals_.size() > mostSignals)
                signals_.pop_front();
            break;
        default: // nobody has anything to ask of us
            break;
        }
    }
}

void BusConnection::addMatch(const std::string& rule) {
    (void)send({busItself, DBUS_INTERFACE_DBUS, "AddMatch", {rule}});
}

BusMessage BusConnection::takeSignal() {
    if (signals_.empty()) {
        dbus_connection_read_write(connection_.get(), 0);
        readAll();
    }
    if (signals_.empty())
        return nullptr;
    auto signal = std::move(signals_.front());
    signals_.pop_front();
    return signal;
}

std::int64_t BusConnection::processOf(const std::string& owner, Deadline deadline) {
    const auto reply =
        call({busItself, DBUS_INTERFACE_DBUS, "GetConnectionUnixProcessID", {owner}}, deadline);
    return reply ? BusReader(*reply).uint32().value_or(0) : 0;
}

bool BusReader::is(int type) { return dbus_message_iter_get_arg_type(&iterator_) == type; }

template <typename T>
std::optional<T> BusReader::basic(int type) {
    if (!is(type))
        return std::nullopt;
    T value{};
    dbus_message_iter_get_basic(&iterator_, &value);
    dbus_message_iter_next(&iterator_);
    return value;
}

std::optional<std::string> BusReader::string() {
    const auto text = is(DBUS_TYPE_OBJECT_PATH) ? basic<const char*>(DBUS_TYPE_OBJECT_PATH)
                                                : basic<const char*>(DBUS_TYPE_STRING);
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::optional<std::int32_t> BusReader::int32() { return basic<std::int32_t>(DBUS_TYPE_INT32); }
std::optional<std::uint32_t> BusReader::uint32() { return basic<std::uint32_t>(DBUS_TYPE_UINT32); }

std::optional<bool> BusReader::boolean() {
    const auto truth = basic<dbus_bool_t>(DBUS_TYPE_BOOLEAN);
    return truth ? std::optional(*truth != 0) : std::nullopt;
}

std::optional<BusReader> BusReader::inner(int type) {
    if (!is(type))
        return std::nullopt;
    BusReader inside;
    dbus_message_iter_recurse(&iterator_, &inside.iterator_);
    dbus_message_iter_next(&iterator_);
    return inside;
}

std::optional<BusReader> BusReader::variant() { return inner(DBUS_TYPE_VARIANT); }

std::optional<std::vector<std::uint32_t>> BusReader::uint32s() {
    auto list = inner(DBUS_TYPE_ARRAY);
    if (!list)
        return std::nullopt;
    std::vector<std::uint32_t> numbers;
    while (const auto number = list->uint32())
        numbers.push_back(*number);
    return numbers;
}

std::optional<std::vector<std::string>> BusReader::strings() {
    auto list = inner(DBUS_TYPE_ARRAY);
    if (!list)
        return std::nullopt;
    std::vector<std::string> texts;
    while (auto text = list->string())
        texts.push_back(std::move(*text));
    return texts;
}

std::optional<std::vector<BusObject>> BusReader::objects() {
    auto list = inner(DBUS_TYPE_ARRAY);
    if (!list)
        return std::nullopt;
    std::vector<BusObject> objects;
    while (auto pair = list->inner(DBUS_TYPE_STRUCT)) {
        auto owner = pair->string();
        auto path = pair->string();
        if (owner && path)
            objects.push_back({std::move(*owner), std::move(*path)});
    }
    return objects;
}

} // namespace velorin
