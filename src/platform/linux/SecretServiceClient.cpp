#include "platform/linux/SecretServiceClient.h"

#include "platform/posix/SessionBusAddress.h"

#include <libsecret/secret.h>
#include <utility>

namespace fernwick::platform {

namespace {

constexpr auto kServiceName = "org.freedesktop.secrets";
constexpr auto kServicePath = "/org/freedesktop/secrets";
constexpr auto kServiceInterface = "org.freedesktop.Secret.Service";
constexpr auto kNoPrompt = "/"; // the path that stands for "nobody has to be asked"

struct Release {
    void operator()(gpointer object) const { g_object_unref(object); }
    void operator()(GHashTable* table) const { g_hash_table_unref(table); }
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(SecretValue* value) const { secret_value_unref(value); }
    void operator()(GMainContext* context) const {
        g_main_context_pop_thread_default(context);
        g_main_context_unref(context);
    }
    void operator()(GList* objects) const { g_list_free_full(objects, g_object_unref); }
};
template <class T>
using Owned = std::unique_ptr<T, Release>;

// Where GLib leaves its reason: `T* made = make(..., error.place())`.
class ErrorPlace {
public:
    ErrorPlace() = default;
    ErrorPlace(const ErrorPlace&) = delete;
    ErrorPlace& operator=(const ErrorPlace&) = delete;
    ~ErrorPlace() { g_clear_error(&error_); }

    [[nodiscard]] GError** place() { return &error_; }
    [[nodiscard]] const GError* get() const { return error_; }

private:
    GError* error_ = nullptr;
};

KeyringFailure failureOf(const ErrorPlace& place) {
    const GError* error = place.get();
    if (error == nullptr) {
        return KeyringFailure::refused;
    }
    if (g_error_matches(error, SECRET_ERROR, SECRET_ERROR_IS_LOCKED) != FALSE) {
        return KeyringFailure::locked;
    }
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT) != FALSE ||
        g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_TIMEOUT) != FALSE) {
        return KeyringFailure::noAnswer;
    }
    const bool refused = error->domain == SECRET_ERROR ||
                         g_error_matches(error, G_IO_ERROR, G_IO_ERROR_DBUS_ERROR) != FALSE ||
                         g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_ACCESS_DENIED) != FALSE;
    return refused ? KeyringFailure::refused : KeyringFailure::unreachable;
}

// The schema's name is kept with an item for other programs to read; the attributes alone identify it.
const SecretSchema* schema() {
    static const SecretSchema kSchema = {"com.fernwick.Fernwick",
                                         SECRET_SCHEMA_DONT_MATCH_NAME,
                                         {{"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                          {"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                          {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
                                         0,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr};
    return &kSchema;
}

Owned<GHashTable> attributesOf(const KeychainQuery& query) {
    return Owned<GHashTable>(secret_attributes_build(schema(), "service", query.service.c_str(), "account",
                                                     query.account.c_str(), nullptr));
}

std::string pathOf(gpointer proxy) {
    return g_dbus_proxy_get_object_path(G_DBUS_PROXY(proxy));
}

// Unlock and CreateCollection answer alike: what was unlocked or made, then the path of the prompt.
std::string promptOf(GVariant* reply) {
    const Owned<GVariant> prompt(g_variant_get_child_value(reply, 1));
    return g_variant_get_string(prompt.get(), nullptr);
}

} // namespace

// All of it belongs to one service; with another service comes another connection.
struct SecretServiceClient::Connection {
    Owned<GMainContext> context; // the thread's own, so that nothing is left to the application's event loop
    Owned<GDBusConnection> bus;
    Owned<SecretService> service;

    Connection() : context(g_main_context_new()) { g_main_context_push_thread_default(context.get()); }

    [[nodiscard]] Owned<GList> search(const KeychainQuery& query, int flags, GCancellable* cancellable,
                                      ErrorPlace& error) const {
        return Owned<GList>(secret_service_search_sync(service.get(), schema(), attributesOf(query).get(),
                                                       static_cast<SecretSearchFlags>(flags), cancellable,
                                                       error.place()));
    }

    // Signals of the service and its objects are of no use, and must not pile up.
    void dropEvents() const {
        while (g_main_context_iteration(context.get(), FALSE) != FALSE) {
        }
    }
};

SecretServiceClient::SecretServiceClient(const Environment& environment, GCancellable* cancellable)
    : environment_(environment), cancellable_(cancellable) {}

SecretServiceClient::~SecretServiceClient() = default;

SecretServiceClient::Result SecretServiceClient::perform(const KeyringRequest& request) {
    const bool knewService = connection_ != nullptr;
    auto result = attempt(request);
    const auto isBroken = [&] {
        return !result &&
               (result.error() == KeyringFailure::unreachable || result.error() == KeyringFailure::refused);
    };
    if (isBroken() && knewService) {
        // Another service may have taken the place of the one that the session was opened with.
        connection_.reset();
        result = attempt(request);
    }
    if (isBroken()) {
        connection_.reset();
    } else if (connection_) {
        connection_->dropEvents();
    }
    return result;
}

SecretServiceClient::Result SecretServiceClient::attempt(const KeyringRequest& request) {
    if (const auto connected = connect(); !connected) {
        return std::unexpected(connected.error());
    }
    switch (request.kind) {
    case KeyringRequest::Kind::copy:
        return copy(request.item.identity);
    case KeyringRequest::Kind::remove:
        return remove(request.item.identity);
    case KeyringRequest::Kind::add:
        return add(request.item, request.value);
    }
    return std::unexpected(KeyringFailure::refused);
}

std::expected<void, KeyringFailure> SecretServiceClient::connect() {
    if (connection_) {
        return {};
    }
    // GLib would start a bus where there is none.
    if (sessionBusAddress(environment_).empty()) {
        return std::unexpected(KeyringFailure::unreachable);
    }
    auto connection = std::make_unique<Connection>();
    ErrorPlace error;
    connection->bus.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable_, error.place()));
    if (!connection->bus) {
        return std::unexpected(failureOf(error));
    }
    // GLib would end the process with the bus.
    g_dbus_connection_set_exit_on_close(connection->bus.get(), FALSE);
    connection->service.reset(secret_service_open_sync(
        SECRET_TYPE_SERVICE, kServiceName, SECRET_SERVICE_OPEN_SESSION, cancellable_, error.place()));
    if (!connection->service) {
        return std::unexpected(failureOf(error));
    }
    connection_ = std::move(connection);
    return {};
}

SecretServiceClient::Result SecretServiceClient::copy(const KeychainQuery& query) {
    ErrorPlace error;
    const auto found = connection_->search(query, SECRET_SEARCH_LOAD_SECRETS, cancellable_, error);
    if (error.get() != nullptr) {
        return std::unexpected(failureOf(error));
    }
    if (!found) {
        return std::unexpected(KeyringFailure::notFound);
    }
    auto* item = static_cast<SecretItem*>(found->data);
    if (secret_item_get_locked(item) != FALSE) {
        lockedPath_ = pathOf(item);
        return std::unexpected(KeyringFailure::locked);
    }
    // libsecret keeps the value in memory that is never paged out, and wipes it.
    const Owned<SecretValue> value(secret_item_get_secret(item));
    if (!value) {
        return std::unexpected(KeyringFailure::refused);
    }
    gsize size = 0;
    const char* bytes = secret_value_get(value.get(), &size);
    return support::Secret(std::string_view(bytes, size));
}

SecretServiceClient::Result SecretServiceClient::remove(const KeychainQuery& query) {
    ErrorPlace error;
    const auto found = connection_->search(query, SECRET_SEARCH_ALL, cancellable_, error);
    if (error.get() != nullptr) {
        return std::unexpected(failureOf(error));
    }
    if (!found) {
        return std::unexpected(KeyringFailure::notFound);
    }
    bool anyLocked = false;
    for (const GList* each = found.get(); each != nullptr; each = each->next) {
        auto* item = static_cast<SecretItem*>(each->data);
        if (secret_item_get_locked(item) != FALSE) {
            lockedPath_ = pathOf(item);
            anyLocked = true;
        } else if (secret_item_delete_sync(item, cancellable_, error.place()) == FALSE) {
            return std::unexpected(failureOf(error));
        }
    }
    return anyLocked ? Result(std::unexpected(KeyringFailure::locked)) : Result();
}

SecretServiceClient::Result SecretServiceClient::add(const KeychainItem& item, const support::Secret& value) {
    ErrorPlace error;
    const Owned<SecretCollection> collection(
        secret_collection_for_alias_sync(connection_->service.get(), SECRET_COLLECTION_DEFAULT,
                                         SECRET_COLLECTION_NONE, cancellable_, error.place()));
    if (error.get() != nullptr) {
        return std::unexpected(failureOf(error));
    }
    if (!collection) {
        lockedPath_.clear();
        return std::unexpected(KeyringFailure::noCollection);
    }
    if (secret_collection_get_locked(collection.get()) != FALSE) {
        lockedPath_ = pathOf(collection.get());
        return std::unexpected(KeyringFailure::locked);
    }
    const auto text = value.text();
    const Owned<SecretValue> kept(
        secret_value_new(text.empty() ? "" : text.data(), static_cast<gssize>(text.size()), "text/plain"));
    const Owned<SecretItem> made(secret_item_create_sync(
        collection.get(), schema(), attributesOf(item.identity).get(), item.label.c_str(), kept.get(),
        SECRET_ITEM_CREATE_REPLACE, cancellable_, error.place()));
    return made ? Result() : Result(std::unexpected(failureOf(error)));
}

void SecretServiceClient::askPerson() {
    if (!connection_) {
        return;
    }
    const char* method = "Unlock";
    GVariant* arguments = nullptr;
    if (lockedPath_.empty()) {
        GVariantBuilder properties;
        g_variant_builder_init(&properties, G_VARIANT_TYPE("a{sv}"));
        g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Collection.Label",
                              g_variant_new_string("Default keyring"));
        method = "CreateCollection";
        arguments = g_variant_new("(a{sv}s)", &properties, SECRET_COLLECTION_DEFAULT);
    } else {
        const char* path = lockedPath_.c_str();
        arguments = g_variant_new("(@ao)", g_variant_new_objv(&path, 1));
    }
    auto* bus = connection_->bus.get();
    const Owned<GVariant> reply(g_dbus_connection_call_sync(bus, kServiceName, kServicePath, kServiceInterface,
                                                            method, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE,
                                                            -1, cancellable_, nullptr));
    // Where the service does not want to ask, everything stays locked; whoever saves next is told so again.
    const auto prompt = reply ? promptOf(reply.get()) : std::string(kNoPrompt);
    if (prompt != kNoPrompt) {
        g_dbus_connection_call(bus, kServiceName, prompt.c_str(), "org.freedesktop.Secret.Prompt", "Prompt",
                               g_variant_new("(s)", ""), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr,
                               nullptr);
    }
}

} // namespace fernwick::platform
