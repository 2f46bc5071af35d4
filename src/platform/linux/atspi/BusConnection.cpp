#include "platform/linux/atspi/BusConnection.h"

#include <algorithm>
#include <cstring>

namespace velorin {

namespace {

/// Nothing that we ask for is longer; who sends more is not listened to.
constexpr long longestMessage = 32L * 1024 * 1024;
/// Signals that nobody has asked for in so long are of no interest any more.
constexpr std::size_t mostSignals = 256;

BusObject busItself() { return BusObject::ours(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS); }

std::string textOf(const char* text) { return text ? text : ""; }

/// The library ends the process over a text that is no UTF-8.
bool canBeSent(const BusCall::Argument& argument) {
    const auto* text = std::get_if<std::string>(&argument);
    return !text || dbus_validate_utf8(text->c_str(), nullptr);
}

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

BusMessage messageOf(const BusCall& call) {
    if (!std::ranges::all_of(call.arguments, canBeSent))
        return nullptr;
    BusMessage message(dbus_message_new_method_call(call.object.owner().text().c_str(),
                                                    call.object.path().c_str(), call.interface.c_str(),
                                                    call.method.c_str()));
    for (const auto& argument : call.arguments)
        append(*message, argument);
    return message;
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
    const auto hello = connection->call({busItself(), DBUS_INTERFACE_DBUS, "Hello", {}}, deadline);
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
    const auto message = messageOf(call);
    dbus_uint32_t serial = 0;
    if (!message || !dbus_connection_send(connection_.get(), message.get(), &serial))
        return 0;
    owed_.try_emplace(serial);
    return serial;
}

void BusConnection::tell(const BusCall& call) {
    const auto message = messageOf(call);
    if (!message)
        return;
    dbus_message_set_no_reply(message.get(), true);
    dbus_connection_send(connection_.get(), message.get(), nullptr);
}

BusMessage BusConnection::await(std::uint32_t serial, Deadline deadline) {
    hasTimedOut_ = false;
    while (!owed_[serial] && !hasTimedOut_ &&
           dbus_connection_read_write(connection_.get(), deadline.pollTimeout())) {
        readAll();
        hasTimedOut_ = !owed_[serial] && deadline.hasPassed();
    }
    auto reply = std::move(owed_.extract(serial).mapped());
    const bool isError = reply && dbus_message_get_type(reply.get()) == DBUS_MESSAGE_TYPE_ERROR;
    return isError ? nullptr : std::move(reply);
}

void BusConnection::readAll() {
    while (BusMessage message{dbus_connection_pop_message(connection_.get())}) {
        switch (dbus_message_get_type(message.get())) {
        case DBUS_MESSAGE_TYPE_METHOD_RETURN:
        case DBUS_MESSAGE_TYPE_ERROR:
            keepReply(std::move(message));
            break;
        case DBUS_MESSAGE_TYPE_SIGNAL:
            keepSignal(*message);
            break;
        default: // nobody has anything to ask of us
            break;
        }
    }
}

void BusConnection::keepReply(BusMessage message) {
    const auto owed = owed_.find(dbus_message_get_reply_serial(message.get()));
    if (owed != owed_.end())
        owed->second = std::move(message);
}

void BusConnection::keepSignal(DBusMessage& message) {
    // Read at once: what a signal may have besides, megabytes perhaps, is not kept.
    const auto source =
        BusObject::from(textOf(dbus_message_get_sender(&message)), textOf(dbus_message_get_path(&message)));
    if (!source)
        return;
    BusSignal signal{*source,
                     textOf(dbus_message_get_interface(&message)),
                     textOf(dbus_message_get_member(&message)),
                     {},
                     0};
    BusReader reader(message);
    for (auto& word : signal.words) {
        auto next = reader.string();
        if (!next)
            break;
        word = *std::move(next);
    }
    signal.number = reader.int32().value_or(0);
    signals_.push_back(std::move(signal));
    if (signals_.size() > mostSignals)
        signals_.pop_front();
}

void BusConnection::addMatch(const std::string& rule) {
    tell({busItself(), DBUS_INTERFACE_DBUS, "AddMatch", {rule}});
}

std::optional<BusSignal> BusConnection::takeSignal() {
    if (signals_.empty()) {
        dbus_connection_read_write(connection_.get(), 0);
        readAll();
    }
    if (signals_.empty())
        return std::nullopt;
    auto signal = std::move(signals_.front());
    signals_.pop_front();
    return signal;
}

std::int64_t BusConnection::processOf(const BusName& owner, Deadline deadline) {
    const auto reply =
        call({busItself(), DBUS_INTERFACE_DBUS, "GetConnectionUnixProcessID", {owner.text()}}, deadline);
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

std::optional<std::string> BusReader::string(std::size_t longest) {
    const auto text = is(DBUS_TYPE_OBJECT_PATH) ? basic<const char*>(DBUS_TYPE_OBJECT_PATH)
                                                : basic<const char*>(DBUS_TYPE_STRING);
    if (!text || strnlen(*text, longest + 1) > longest)
        return std::nullopt;
    return *text;
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
    for (auto number = list->uint32(); number && numbers.size() < longestList; number = list->uint32())
        numbers.push_back(*number);
    return numbers;
}

std::optional<std::vector<std::string>> BusReader::strings() {
    auto list = inner(DBUS_TYPE_ARRAY);
    if (!list)
        return std::nullopt;
    std::vector<std::string> texts;
    for (auto text = list->string(); text && texts.size() < longestList; text = list->string())
        texts.push_back(*std::move(text));
    return texts;
}

std::optional<std::vector<BusObject>> BusReader::objects() {
    auto list = inner(DBUS_TYPE_ARRAY);
    if (!list)
        return std::nullopt;
    std::vector<BusObject> objects;
    for (auto pair = list->inner(DBUS_TYPE_STRUCT); pair && objects.size() < longestList;
         pair = list->inner(DBUS_TYPE_STRUCT)) {
        const auto owner = pair->string();
        const auto path = pair->string(BusObject::longestPath);
        if (auto object = owner && path ? BusObject::from(*owner, *path) : std::nullopt)
            objects.push_back(*std::move(object));
    }
    return objects;
}

} // namespace velorin
