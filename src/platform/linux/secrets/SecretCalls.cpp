#include "platform/linux/secrets/SecretCalls.h"

// The library's headers use names that are macros of Qt.
#undef signals
#include <libsecret/secret.h>

namespace velorin::SecretCalls {
namespace {

constexpr int deadlineOfTheBus = 250; // milliseconds

template <typename Object>
using Ref = std::unique_ptr<Object, Unref>;

struct ItemsEnd {
    void operator()(GList* items) const { g_list_free_full(items, g_object_unref); }
};
struct ErrorEnd {
    void operator()(GError* error) const { g_error_free(error); }
};
struct ValueEnd {
    void operator()(SecretValue* value) const { secret_value_unref(value); }
};
struct AttributesEnd {
    void operator()(GHashTable* table) const { g_hash_table_unref(table); }
};
struct AnswerEnd {
    void operator()(GVariant* answer) const { g_variant_unref(answer); }
};
using Answer = std::unique_ptr<GVariant, AnswerEnd>;
using Error = std::unique_ptr<GError, ErrorEnd>;
using Value = std::unique_ptr<SecretValue, ValueEnd>;
using Attributes = std::unique_ptr<GHashTable, AttributesEnd>;

const SecretSchema* schema() {
    static const SecretSchema described = [] {
        SecretSchema fresh{};
        fresh.name = "dev.orrin.velorin.Key";
        fresh.flags = SECRET_SCHEMA_DONT_MATCH_NAME;
        fresh.attributes[0] = {"service", SECRET_SCHEMA_ATTRIBUTE_STRING};
        fresh.attributes[1] = {"account", SECRET_SCHEMA_ATTRIBUTE_STRING};
        return fresh;
    }();
    return &described;
}

Attributes attributes(const QString& service, const QString& account) {
    return Attributes(secret_attributes_build(schema(), "service", service.toUtf8().constData(), "account",
                                              account.toUtf8().constData(), nullptr));
}

/// A service that was restarted knows nothing of the session that the library keeps.
Error forgetSession(GError* error) {
    if (error != nullptr)
        secret_service_disconnect();
    return Error(error);
}

/// The connection that the library will take, for as long as this one is kept: without our word to it, it
/// would end the whole process when the bus goes away.
Ref<GDBusConnection> busToOutlive(GCancellable* cancellable) {
    Ref<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable, nullptr));
    if (bus)
        g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    return bus;
}

Ref<SecretService> connect(GCancellable* cancellable, Error* failure = nullptr) {
    const auto bus = busToOutlive(cancellable);
    GError* error = nullptr;
    Ref<SecretService> service(secret_service_get_sync(SECRET_SERVICE_OPEN_SESSION, cancellable, &error));
    Error kept = forgetSession(error);
    if (failure != nullptr)
        *failure = std::move(kept);
    return service;
}

bool isDefaultCollectionOpen(SecretService* service, GCancellable* cancellable) {
    GError* error = nullptr;
    const Ref<SecretCollection> collection(secret_collection_for_alias_sync(
        service, SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, cancellable, &error));
    const Error kept = forgetSession(error);
    return collection && secret_collection_get_locked(collection.get()) == FALSE;
}

} // namespace

void Unref::operator()(void* object) const { g_object_unref(object); }

Cancellable newCancellable() { return Cancellable(g_cancellable_new()); }
void cancel(GCancellable* cancellable) { g_cancellable_cancel(cancellable); }

std::optional<QByteArray> read(const QString& service, const QString& account, GCancellable* cancellable) {
    const auto store = connect(cancellable);
    if (!store)
        return std::nullopt;
    GError* error = nullptr;
    const std::unique_ptr<GList, ItemsEnd> items(
        secret_service_search_sync(store.get(), schema(), attributes(service, account).get(),
                                   SECRET_SEARCH_LOAD_SECRETS, cancellable, &error));
    const Error kept = forgetSession(error);
    if (kept || !items)
        return std::nullopt;
    const Value value(secret_item_get_secret(static_cast<SecretItem*>(items->data)));
    if (!value)
        return std::nullopt;
    gsize length = 0;
    const char* bytes = secret_value_get(value.get(), &length);
    return QByteArray(bytes, static_cast<qsizetype>(length));
}

bool add(const QString& service, const QString& account, const QByteArray& secret,
         GCancellable* cancellable) {
    const auto store = connect(cancellable);
    // Storing into a locked collection would show a question that nobody waits for.
    if (!store || !isDefaultCollectionOpen(store.get(), cancellable))
        return false;
    const Value value(secret_value_new(secret.constData(), secret.size(), "text/plain"));
    const QByteArray label = "Velorin: " + account.toUtf8();
    GError* error = nullptr;
    const bool isStored = secret_service_store_sync(store.get(), schema(), attributes(service, account).get(),
                                                    SECRET_COLLECTION_DEFAULT, label.constData(), value.get(),
                                                    cancellable, &error);
    const Error kept = forgetSession(error);
    return isStored && !kept;
}

bool remove(const QString& service, const QString& account, GCancellable* cancellable) {
    const auto store = connect(cancellable);
    if (!store)
        return false;
    GError* error = nullptr;
    const bool isRemoved = secret_service_clear_sync(store.get(), schema(),
                                                     attributes(service, account).get(), cancellable, &error);
    const Error kept = forgetSession(error);
    return isRemoved && !kept;
}

bool isRunning(GCancellable* cancellable) {
    const auto bus = busToOutlive(cancellable);
    if (!bus)
        return false;
    // The bus itself is asked: whatever goes to the service would start it.
    const Answer answer(g_dbus_connection_call_sync(
        bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
        g_variant_new("(s)", "org.freedesktop.secrets"), G_VARIANT_TYPE("(b)"), G_DBUS_CALL_FLAGS_NONE,
        deadlineOfTheBus, cancellable, nullptr));
    gboolean hasOwner = FALSE;
    if (answer)
        g_variant_get(answer.get(), "(b)", &hasOwner);
    return hasOwner != FALSE;
}

Presence look(GCancellable* cancellable) {
    Error error;
    if (connect(cancellable, &error))
        return Presence::answers;
    const bool isSlow = error && (g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_TIMED_OUT) ||
                                  g_error_matches(error.get(), G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY) ||
                                  g_error_matches(error.get(), G_DBUS_ERROR, G_DBUS_ERROR_TIMEOUT));
    return isSlow ? Presence::silent : Presence::absent;
}

} // namespace velorin::SecretCalls
