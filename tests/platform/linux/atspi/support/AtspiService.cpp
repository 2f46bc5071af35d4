#include "tests/platform/linux/atspi/support/AtspiService.h"

#include <array>
#include <stdexcept>

#include <unistd.h>

namespace velorin {

namespace {

constexpr char fieldPath[] = "/field";
constexpr char rootPath[] = "/org/a11y/atspi/accessible/root";

bool countsUnits(const AtspiService::State& state) { return state.toolkit == "Qt"; }

template <typename... Values>
void append(DBusMessage& message, Values... values) {
    dbus_message_append_args(&message, values..., DBUS_TYPE_INVALID);
}

void appendText(DBusMessage& message, const QString& text) {
    const auto bytes = text.toUtf8();
    const char* characters = bytes.constData();
    append(message, DBUS_TYPE_STRING, &characters);
}

void appendTruth(DBusMessage& message, bool truth) {
    const dbus_bool_t value = truth ? 1 : 0;
    append(message, DBUS_TYPE_BOOLEAN, &value);
}

void appendVariant(DBusMessage& message, int type, const void* value) {
    const std::array<char, 2> signature{static_cast<char>(type), 0};
    DBusMessageIter outer;
    DBusMessageIter inner;
    dbus_message_iter_init_append(&message, &outer);
    dbus_message_iter_open_container(&outer, DBUS_TYPE_VARIANT, signature.data(), &inner);
    dbus_message_iter_append_basic(&inner, type, value);
    dbus_message_iter_close_container(&outer, &inner);
}

void appendReferences(DBusMessage& message,
                      const std::vector<std::pair<std::string, std::string>>& references) {
    DBusMessageIter outer;
    DBusMessageIter list;
    dbus_message_iter_init_append(&message, &outer);
    dbus_message_iter_open_container(&outer, DBUS_TYPE_ARRAY, "(ss)", &list);
    for (const auto& [name, path] : references) {
        DBusMessageIter pair;
        dbus_message_iter_open_container(&list, DBUS_TYPE_STRUCT, nullptr, &pair);
        for (const auto* text : {name.c_str(), path.c_str()})
            dbus_message_iter_append_basic(&pair, DBUS_TYPE_STRING, &text);
        dbus_message_iter_close_container(&list, &pair);
    }
    dbus_message_iter_close_container(&outer, &list);
}

void appendObjects(DBusMessage& message, const char* owner, const std::vector<std::string>& paths) {
    DBusMessageIter outer;
    DBusMessageIter list;
    dbus_message_iter_init_append(&message, &outer);
    dbus_message_iter_open_container(&outer, DBUS_TYPE_ARRAY, "(so)", &list);
    for (const auto& each : paths) {
        const auto* path = each.c_str();
        DBusMessageIter pair;
        dbus_message_iter_open_container(&list, DBUS_TYPE_STRUCT, nullptr, &pair);
        dbus_message_iter_append_basic(&pair, DBUS_TYPE_STRING, &owner);
        dbus_message_iter_append_basic(&pair, DBUS_TYPE_OBJECT_PATH, &path);
        dbus_message_iter_close_container(&list, &pair);
    }
    dbus_message_iter_close_container(&outer, &list);
}

} // namespace

AtspiService::AtspiService(const std::string& address)
    : connection_(dbus_connection_open_private(address.c_str(), nullptr)) {
    if (!connection_ || !dbus_bus_register(connection_, nullptr))
        throw std::runtime_error("no bus");
    dbus_connection_set_exit_on_disconnect(connection_, false);
    for (const auto* name : {"org.a11y.Bus", "org.a11y.atspi.Registry"})
        dbus_bus_request_name(connection_, name, 0, nullptr);
    state_.toolkit = "gtk";
    thread_ = std::thread([this] { run(); });
}

AtspiService::~AtspiService() {
    {
        const std::scoped_lock lock(mutex_);
        isStopping_ = true;
    }
    thread_.join();
    dbus_connection_close(connection_);
    dbus_connection_unref(connection_);
}

void AtspiService::change(const std::function<void(State&)>& change) {
    const std::scoped_lock lock(mutex_);
    change(state_);
}

AtspiService::State AtspiService::state() {
    const std::scoped_lock lock(mutex_);
    return state_;
}

void AtspiService::tellFocus(bool isThere) {
    const std::scoped_lock lock(mutex_);
    state_.isFocused = isThere;
    auto* const signal = dbus_message_new_signal(fieldPath, "org.a11y.atspi.Event.Object", "StateChanged");
    const char* what = "focused";
    const dbus_int32_t detail = isThere ? 1 : 0;
    append(*signal, DBUS_TYPE_STRING, &what, DBUS_TYPE_INT32, &detail);
    dbus_connection_send(connection_, signal, nullptr);
    dbus_connection_flush(connection_);
    dbus_message_unref(signal);
}

void AtspiService::sendSignal(const char* interface, const char* name,
                              const std::vector<std::string>& words) {
    auto* const signal = dbus_message_new_signal(fieldPath, interface, name);
    for (const auto& word : words) {
        const auto* text = word.c_str();
        append(*signal, DBUS_TYPE_STRING, &text);
    }
    dbus_connection_send(connection_, signal, nullptr);
    dbus_message_unref(signal);
}

void AtspiService::tellDeath() {
    const std::scoped_lock lock(mutex_);
    const std::string name = dbus_bus_get_unique_name(connection_);
    sendSignal(DBUS_INTERFACE_DBUS, "NameOwnerChanged", {name, name, ""});
    dbus_connection_flush(connection_);
}

void AtspiService::flood() {
    for (int i = 0; i < 500; ++i)
        sendSignal("org.a11y.atspi.Event.Object", "StateChanged", {"focused", std::string(1000, 'x')});
}

void AtspiService::run() {
    for (;;) {
        {
            const std::scoped_lock lock(mutex_);
            if (isStopping_)
                return;
            if (state_.floods && !dbus_connection_has_messages_to_send(connection_))
                flood();
        }
        if (!dbus_connection_read_write(connection_, 5))
            return;
        while (auto* message = dbus_connection_pop_message(connection_)) {
            if (dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_METHOD_CALL)
                answer(*message);
            dbus_message_unref(message);
        }
    }
}

void AtspiService::answer(DBusMessage& call) {
    std::this_thread::sleep_for(state().delay);
    const std::scoped_lock lock(mutex_);
    const std::string method = dbus_message_get_member(&call);
    state_.calls.append(QString::fromStdString(method));
    if (state_.silent.contains(method))
        return;
    auto* const reply = dbus_message_new_method_return(&call);
    if (state_.strange.contains(method))
        return answerStrangely(*reply, call, method);
    if (state_.garbled.contains(method))
        return answerGarbled(*reply);
    if (state_.nonsense.contains(method)) {
        const double number = 0.5;
        append(*reply, DBUS_TYPE_DOUBLE, &number);
    } else if (!fill(*reply, call, method)) {
        dbus_message_set_error_name(reply, nullptr);
    }
    dbus_connection_send(connection_, reply, nullptr);
    dbus_message_unref(reply);
}

void AtspiService::answerStrangely(DBusMessage& reply, DBusMessage& call, const std::string& method) {
    ++state_.strangers[method];
    // What it was asked to write it writes: then the answer is all that is strange.
    auto* const proper = dbus_message_copy(&reply);
    (void)fill(*proper, call, method);
    dbus_message_unref(proper);
    const bool isSilent = nonsense_.below(4000) == 0;
    if (!isSilent) {
        nonsense_.fill(reply);
        dbus_connection_send(connection_, &reply, nullptr);
    }
    dbus_message_unref(&reply);
}

void AtspiService::answerGarbled(DBusMessage& reply) {
    // The library refuses to send such a text, so the bytes of a good one are changed behind its back.
    const char* text = "good";
    append(reply, DBUS_TYPE_STRING, &text);
    dbus_message_set_serial(&reply, 1U << 30);
    char* bytes = nullptr;
    int length = 0;
    dbus_message_marshal(&reply, &bytes, &length);
    dbus_message_unref(&reply);
    QByteArray message(bytes, length);
    dbus_free(bytes);
    message.replace("good", "\xff\xfe\xc3(");
    dbus_connection_flush(connection_);
    int socket = -1;
    dbus_connection_get_socket(connection_, &socket);
    if (::write(socket, message.constData(), static_cast<std::size_t>(message.size())) != message.size())
        throw std::runtime_error("the bus does not take it");
}

bool AtspiService::fill(DBusMessage& reply, DBusMessage& call, const std::string& method) {
    const std::string path = dbus_message_get_path(&call);
    const char* owner = dbus_bus_get_unique_name(connection_);
    if (method == "GetAddress") {
        appendText(reply, qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"));
    } else if (method == "GetChildren" && path != rootPath && !state_.references.empty()) {
        auto references = state_.references;
        if (path == "/window")
            references.emplace_back(owner, fieldPath);
        appendReferences(reply, references);
    } else if (method == "GetChildren") {
        const bool asksRegistry =
            path == rootPath && std::string(dbus_message_get_destination(&call)) == "org.a11y.atspi.Registry";
        if (asksRegistry)
            appendObjects(reply, owner, {rootPath});
        else if (path == rootPath)
            appendObjects(reply, owner, {state_.isWindow ? fieldPath : "/window"});
        else if (path == fieldPath && state_.isWindow)
            appendObjects(reply, owner, {"/part"});
        else if (path == "/window")
            appendObjects(reply, owner, {"/menu", fieldPath});
        else if (path == "/menu")
            appendObjects(reply, owner,
                          std::vector<std::string>(static_cast<std::size_t>(state_.closedItems), "/item"));
        else
            appendObjects(reply, owner, {});
    } else if (method == "GetState") {
        const dbus_uint32_t active = path == (state_.isWindow ? fieldPath : "/window") ? 1U << 1 : 0U;
        const bool isField = path == fieldPath || path == "/part";
        const dbus_uint32_t focused = isField && state_.isFocused ? 1U << 12 : 0U;
        const dbus_uint32_t showing = path == "/window" ? 1U << 25 : 0U; // some tell it of windows alone
        const dbus_uint32_t editable = state_.isEditable ? 1U << 7 : 0U;
        const std::array<dbus_uint32_t, 2> bits{active | focused | showing | editable, 0};
        const auto* data = bits.data();
        append(reply, DBUS_TYPE_ARRAY, DBUS_TYPE_UINT32, &data, 2);
    } else if (method == "GetInterfaces") {
        std::array<const char*, 2> names{"org.a11y.atspi.Text", "org.a11y.atspi.EditableText"};
        const char** data = names.data();
        append(reply, DBUS_TYPE_ARRAY, DBUS_TYPE_STRING, &data, path == fieldPath && state_.hasText ? 2 : 0);
    } else if (method == "GetRole") {
        const dbus_uint32_t role = path == "/menu" ? 33 : state_.role;
        append(reply, DBUS_TYPE_UINT32, &role);
    } else if (method == "GetRoleName") {
        appendText(reply, QStringLiteral("text"));
    } else if (method == "Get") {
        property(reply, call);
    } else if (method == "Set") {
        state_.isEnabled = true;
    } else if (method == "GetNSelections") {
        const dbus_int32_t selections = state_.start != state_.end ? 1 : 0;
        append(reply, DBUS_TYPE_INT32, &selections);
    } else if (method == "GetSelection") {
        append(reply, DBUS_TYPE_INT32, &state_.start, DBUS_TYPE_INT32, &state_.end);
    } else if (method == "GetText") {
        dbus_int32_t start = 0;
        dbus_int32_t end = 0;
        dbus_message_get_args(&call, nullptr, DBUS_TYPE_INT32, &start, DBUS_TYPE_INT32, &end,
                              DBUS_TYPE_INVALID);
        appendText(reply, state_.boast > 0 ? QString(state_.boast, u'x') : between(start, end));
    } else {
        appendTruth(reply, write(call, method));
    }
    return true;
}

void AtspiService::property(DBusMessage& reply, DBusMessage& call) {
    const char* interface = nullptr;
    const char* wanted = nullptr;
    dbus_message_get_args(&call, nullptr, DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING, &wanted,
                          DBUS_TYPE_INVALID);
    const std::string name = wanted;
    if (name == "ToolkitName") {
        const char* toolkit = state_.toolkit.c_str();
        appendVariant(reply, DBUS_TYPE_STRING, &toolkit);
    } else if (name == "IsEnabled") {
        const dbus_bool_t isEnabled = state_.isEnabled ? 1 : 0;
        appendVariant(reply, DBUS_TYPE_BOOLEAN, &isEnabled);
    } else {
        const dbus_int32_t number = name == "CaretOffset" ? state_.caret : count();
        appendVariant(reply, DBUS_TYPE_INT32, &number);
    }
}

bool AtspiService::write(DBusMessage& call, const std::string& method) {
    if (state_.refuses.contains(method))
        return false;
    if (state_.lies.contains(method))
        return true;
    dbus_int32_t first = 0;
    dbus_int32_t second = 0;
    const char* text = nullptr;
    if (method == "DeleteText") {
        dbus_message_get_args(&call, nullptr, DBUS_TYPE_INT32, &first, DBUS_TYPE_INT32, &second,
                              DBUS_TYPE_INVALID);
        state_.text = between(0, first) + between(second, count());
        state_.caret = state_.start = state_.end = first;
    } else if (method == "InsertText") {
        dbus_message_get_args(&call, nullptr, DBUS_TYPE_INT32, &first, DBUS_TYPE_STRING, &text,
                              DBUS_TYPE_INT32, &second, DBUS_TYPE_INVALID);
        const QString taken = countsUnits(state_) ? QString::fromUtf8(text).left(second)
                                                  : QString::fromUtf8(QByteArray(text).left(second));
        state_.text = between(0, first) + taken + between(first, count());
    } else if (method == "SetCaretOffset") {
        dbus_message_get_args(&call, nullptr, DBUS_TYPE_INT32, &state_.caret, DBUS_TYPE_INVALID);
    }
    return true;
}

int AtspiService::count() const {
    return static_cast<int>(countsUnits(state_) ? state_.text.size() : state_.text.toUcs4().size());
}

QString AtspiService::between(int start, int end) const {
    if (countsUnits(state_))
        return state_.text.sliced(start, end - start);
    const auto codePoints = state_.text.toStdU32String();
    return QString::fromStdU32String(
        codePoints.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)));
}

} // namespace velorin
