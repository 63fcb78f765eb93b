#include "platform/linux/desktop/SecretServiceStore.h"

#include "platform/linux/desktop/GLibCalls.h"

#include <libsecret/secret.h>

#include <cstring>
#include <utility>

namespace ventolith::platform {

using app::ConfigurationCacheError;

namespace {

using Status = SecretServiceStatus;

constexpr const char* serviceName = "org.freedesktop.secrets";

const SecretSchema schema = {
    "com.ventolith.ConfigurationCache",
    SECRET_SCHEMA_NONE,
    {{"service", SECRET_SCHEMA_ATTRIBUTE_STRING}, {"account", SECRET_SCHEMA_ATTRIBUTE_STRING}}};

[[noreturn]] void fail(Status status) {
  throw ConfigurationCacheError(ConfigurationCacheError::Keychain{static_cast<std::int64_t>(status)});
}

Status statusOfBus(int code) {
  switch (code) {
  case G_DBUS_ERROR_TIMEOUT:
  case G_DBUS_ERROR_TIMED_OUT: return Status::timedOut;
  case G_DBUS_ERROR_SERVICE_UNKNOWN:
  case G_DBUS_ERROR_NAME_HAS_NO_OWNER:
  case G_DBUS_ERROR_NO_REPLY: // It went away.
  case G_DBUS_ERROR_DISCONNECTED:
  case G_DBUS_ERROR_SPAWN_EXEC_FAILED:
  case G_DBUS_ERROR_SPAWN_FORK_FAILED:
  case G_DBUS_ERROR_SPAWN_CHILD_EXITED:
  case G_DBUS_ERROR_SPAWN_CHILD_SIGNALED:
  case G_DBUS_ERROR_SPAWN_FAILED:
  case G_DBUS_ERROR_SPAWN_SERVICE_INVALID:
  case G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND: return Status::noService;
  default: return Status::otherFailure;
  }
}

Status statusOf(const GError& error) {
  if (error.domain == G_IO_ERROR) {
    if (error.code == G_IO_ERROR_CANCELLED || error.code == G_IO_ERROR_TIMED_OUT) return Status::timedOut;
    return error.code == G_IO_ERROR_CLOSED ? Status::noService : Status::otherFailure;
  }
  if (error.domain == G_DBUS_ERROR) return statusOfBus(error.code);
  if (error.domain != SECRET_ERROR) return Status::otherFailure;
  switch (error.code) {
  case SECRET_ERROR_PROTOCOL: return Status::protocol;
  case SECRET_ERROR_IS_LOCKED: return Status::locked;
  case SECRET_ERROR_NO_SUCH_OBJECT: return Status::noCollection;
  default: return Status::otherFailure;
  }
}

/// What `finish` makes of a call's result; none only where that is an answer.
template <class Finish>
auto finished(GAsyncResult* result, Finish finish) {
  GError* error = nullptr;
  auto* const value = finish(result, &error);
  const Failure failure(error);
  if (failure) fail(statusOf(*failure));
  return value;
}

/// The session's bus, for as long as this lives. GLib shares it among all who ask, so that whatever is
/// opened in the meantime uses it too.
Reference<GDBusConnection> openBus(GLibCalls& calls) {
  const auto result = calls.result([](auto* cancellable, auto callback, auto data) {
    g_bus_get(G_BUS_TYPE_SESSION, cancellable, callback, data);
  });
  GError* error = nullptr;
  Reference<GDBusConnection> bus(g_bus_get_finish(result.get(), &error));
  const Failure failure(error);
  if (failure) fail(statusOf(*failure) == Status::timedOut ? Status::timedOut : Status::noService);
  g_dbus_connection_set_exit_on_close(bus.get(), FALSE); // Or a lost bus would end this process.
  return bus;
}

/// The user's default collection; none if he has none. Fails when it is locked.
Reference<SecretCollection> openCollection(GLibCalls& calls, SecretService* service) {
  const auto result = calls.result([&](auto* cancellable, auto callback, auto data) {
    secret_collection_for_alias(service, SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, cancellable,
                                callback, data);
  });
  Reference<SecretCollection> collection(finished(result.get(), secret_collection_for_alias_finish));
  if (collection && secret_collection_get_locked(collection.get()) != FALSE) fail(Status::locked);
  return collection;
}

struct FreeItems {
  void operator()(GList* items) const { g_list_free_full(items, g_object_unref); }
};
struct FreeAttributes {
  void operator()(GHashTable* attributes) const { g_hash_table_unref(attributes); }
};
struct FreeValue {
  void operator()(gpointer value) const { secret_value_unref(value); }
};
using Value = std::unique_ptr<SecretValue, FreeValue>;
using Attributes = std::unique_ptr<GHashTable, FreeAttributes>;

Attributes attributesOf(const SecretServiceStore::Item& item) {
  return Attributes(secret_attributes_build(&schema, "service", item.service.c_str(), "account",
                                            item.account.c_str(), nullptr));
}

/// A session with the service. The bus is there before it, and goes after it.
class Session {
public:
  explicit Session(std::chrono::milliseconds patience) : calls_(patience), bus_(openBus(calls_)) {
    const auto result = calls_.result([](auto* cancellable, auto callback, auto data) {
      secret_service_open(SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_OPEN_SESSION, cancellable, callback,
                          data);
    });
    service_.reset(finished(result.get(), secret_service_open_finish));
    collection_ = openCollection(calls_, service_.get());
  }

  [[nodiscard]] bool hasCollection() const { return collection_ != nullptr; }

  /// None if there is no such item.
  [[nodiscard]] std::optional<std::string> read(const SecretServiceStore::Item& item) {
    const auto attributes = attributesOf(item);
    const auto result = calls_.result([&](auto* cancellable, auto callback, auto data) {
      secret_collection_search(collection_.get(), &schema, attributes.get(), SECRET_SEARCH_LOAD_SECRETS,
                               cancellable, callback, data);
    });
    const std::unique_ptr<GList, FreeItems> items(finished(result.get(), [&](auto* outcome, auto** error) {
      return secret_collection_search_finish(collection_.get(), outcome, error);
    }));
    if (!items) return std::nullopt;
    auto* const first = static_cast<SecretItem*>(items->data);
    if (secret_item_get_locked(first) != FALSE) fail(Status::locked);
    const Value value(secret_item_get_secret(first));
    if (!value) throw app::ConfigurationCacheError(app::ConfigurationCacheError::Plain::corruptRecord);
    gsize length = 0;
    const gchar* const text = secret_value_get(value.get(), &length);
    return std::string(text, length);
  }

  void write(const SecretServiceStore::Item& item, const std::string& text) {
    const auto attributes = attributesOf(item);
    const Value value(secret_value_new(text.data(), static_cast<gssize>(text.size()), "text/plain"));
    const auto result = calls_.result([&](auto* cancellable, auto callback, auto data) {
      secret_service_store(service_.get(), &schema, attributes.get(), SECRET_COLLECTION_DEFAULT,
                           item.label.c_str(), value.get(), cancellable, callback, data);
    });
    GError* error = nullptr;
    secret_service_store_finish(service_.get(), result.get(), &error);
    const Failure failure(error);
    if (failure) fail(statusOf(*failure));
  }

private:
  GLibCalls calls_;
  Reference<GDBusConnection> bus_;
  Reference<SecretService> service_;
  Reference<SecretCollection> collection_;
};

/// A call of the bus itself; none when it fails.
std::shared_ptr<GVariant> ask(GLibCalls& calls, GDBusConnection* bus, const char* method,
                              GVariant* arguments) {
  const auto result = calls.result([&](auto* cancellable, auto callback, auto data) {
    constexpr int noLimitOfItsOwn = G_MAXINT;
    g_dbus_connection_call(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                           method, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, noLimitOfItsOwn, cancellable,
                           callback, data);
  });
  return {finished(result.get(),
                   [&](auto* outcome, auto** error) {
                     return g_dbus_connection_call_finish(bus, outcome, error);
                   }),
          g_variant_unref};
}

bool hasOwner(GLibCalls& calls, GDBusConnection* bus) {
  const auto reply = ask(calls, bus, "NameHasOwner", g_variant_new("(s)", serviceName));
  gboolean answer = FALSE;
  if (g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(b)")) != FALSE)
    g_variant_get(reply.get(), "(b)", &answer);
  return answer != FALSE;
}

bool isActivatable(GLibCalls& calls, GDBusConnection* bus) {
  const auto reply = ask(calls, bus, "ListActivatableNames", nullptr);
  if (g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(as)")) == FALSE) return false;
  const std::unique_ptr<GVariant, decltype(&g_variant_unref)> names(g_variant_get_child_value(reply.get(), 0),
                                                                    g_variant_unref);
  const std::unique_ptr<const gchar*, decltype(&g_free)> list(g_variant_get_strv(names.get(), nullptr),
                                                              g_free);
  return g_strv_contains(list.get(), serviceName) != FALSE;
}

} // namespace

SecretServiceStore::SecretServiceStore(Item item, std::chrono::milliseconds patience)
    : item_(std::move(item)), patience_(patience) {}

SecretServiceStore::Item SecretServiceStore::itemOf(const std::string& bundleIdentifier) {
  return {.service = bundleIdentifier + ".platform", .label = "Ventolith: the latest configuration"};
}

bool SecretServiceStore::isOffered(std::chrono::milliseconds patience) {
  try {
    GLibCalls calls(patience);
    const auto bus = openBus(calls);
    return hasOwner(calls, bus.get()) || isActivatable(calls, bus.get());
  } catch (const ConfigurationCacheError&) {
    return false;
  }
}

std::optional<app::ConfigurationCacheRecord> SecretServiceStore::load() {
  Session session(patience_);
  if (!session.hasCollection()) return std::nullopt;
  const auto text = session.read(item_);
  return text ? std::optional(app::decodeConfigurationCacheRecord(*text)) : std::nullopt;
}

void SecretServiceStore::save(const app::ConfigurationCacheRecord& record) {
  Session session(patience_);
  if (!session.hasCollection()) fail(Status::noCollection);
  session.write(item_, encode(record));
}

std::string SecretServiceStore::coordinationKey() const {
  return "secret-service:" + item_.service + ":" + item_.account;
}

} // namespace ventolith::platform
