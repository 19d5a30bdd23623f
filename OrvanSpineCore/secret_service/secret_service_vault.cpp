#include "OrvanSpineCore/secret_service/secret_service_vault.h"

#include <libsecret/secret.h>
#include <openssl/crypto.h>

#include <memory>
#include <utility>

#include "OrvanPlatform/error.h"

namespace orvan {
namespace {

struct Unreference {
  void operator()(gpointer object) const noexcept { g_object_unref(object); }
};
template <typename Object>
using Reference = std::unique_ptr<Object, Unreference>;

struct FreeAttributes {
  void operator()(GHashTable* attributes) const noexcept { g_hash_table_unref(attributes); }
};
using Attributes = std::unique_ptr<GHashTable, FreeAttributes>;

struct FreeItems {
  void operator()(GList* items) const noexcept { g_list_free_full(items, g_object_unref); }
};
using Items = std::unique_ptr<GList, FreeItems>;

/// Clears the bytes with the last reference.
struct FreeSecret {
  void operator()(SecretValue* value) const noexcept { secret_value_unref(value); }
};
using Secret = std::unique_ptr<SecretValue, FreeSecret>;

constexpr const char* reading = "reading the store key from the keyring";
constexpr const char* storing = "storing the store key in the keyring";
constexpr const char* removing = "removing a store key from the keyring";
constexpr const char* adviceLocked = "; unlock the login keyring and try again";
constexpr const char* adviceUnavailable = "; start a keyring service in this session, or use a key file";

[[noreturn]] void fail(CredentialVaultError error, std::string attempt) {
  if (error == CredentialVaultError::vaultLocked) {
    attempt += adviceLocked;
  } else if (error == CredentialVaultError::vaultUnavailable) {
    attempt += adviceUnavailable;
  }
  throw Error(error, attempt);
}

/// An error slot for one call of the library.
class Failure {
 public:
  Failure() = default;
  ~Failure() { g_clear_error(&error_); }
  Failure(const Failure&) = delete;
  Failure& operator=(const Failure&) = delete;

  GError** slot() noexcept { return &error_; }

  /// The service's own text is dropped: it may quote names that the user chose.
  void check(const char* attempt) const {
    if (error_ != nullptr) {
      fail(kind(), attempt);
    }
  }

 private:
  CredentialVaultError kind() const noexcept {
    if (error_->domain == SECRET_ERROR && error_->code == SECRET_ERROR_IS_LOCKED) {
      return CredentialVaultError::vaultLocked;
    }
    return isAbsence() ? CredentialVaultError::vaultUnavailable : CredentialVaultError::accessFailed;
  }

  bool isAbsence() const noexcept {
    if (error_->domain != G_DBUS_ERROR) {
      return error_->domain == G_IO_ERROR && error_->code == G_IO_ERROR_CLOSED;
    }
    switch (error_->code) {
      case G_DBUS_ERROR_SERVICE_UNKNOWN:
      case G_DBUS_ERROR_NAME_HAS_NO_OWNER:
      case G_DBUS_ERROR_NO_SERVER:
      case G_DBUS_ERROR_DISCONNECTED:
      case G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND:
      case G_DBUS_ERROR_SPAWN_EXEC_FAILED:
      case G_DBUS_ERROR_SPAWN_CHILD_EXITED:
      case G_DBUS_ERROR_SPAWN_FAILED:
        return true;
      default:
        return false;
    }
  }

  GError* error_ = nullptr;
};

const SecretSchema& schema() {
  static const SecretSchema schema = [] {
    SecretSchema made{};
    made.name = "org.orvan.LocalStoreKey";
    made.flags = SECRET_SCHEMA_NONE;
    made.attributes[0] = {"application", SECRET_SCHEMA_ATTRIBUTE_STRING};
    made.attributes[1] = {"store", SECRET_SCHEMA_ATTRIBUTE_STRING};
    return made;
  }();
  return schema;
}

Attributes attributesOf(const std::string& storeIdentifier) {
  return Attributes{
      secret_attributes_build(&schema(), "application", "orvan", "store", storeIdentifier.c_str(), nullptr)};
}

/// Talks to the service for one operation. Nothing is kept for the next, so that a session bus or a keyring that was
/// started again in between is found.
class KeyringSession {
 public:
  explicit KeyringSession(const char* attempt) : attempt_(attempt), bus_(connect(attempt)) {
    Failure failure;
    service_.reset(
        secret_service_open_sync(SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_OPEN_SESSION, nullptr, failure.slot()));
    failure.check(attempt_);
  }

  /// A locked keyring answers a search with "nothing found", so this must come first.
  void requireUnlocked() const {
    Failure failure;
    const Reference<SecretCollection> keyring{secret_collection_for_alias_sync(
        service_.get(), SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, nullptr, failure.slot())};
    failure.check(attempt_);
    if (keyring != nullptr && secret_collection_get_locked(keyring.get()) != FALSE) {
      fail(CredentialVaultError::vaultLocked, attempt_);
    }
  }

  /// The first key that can be read; null when there is no key.
  Secret find(const std::string& storeIdentifier) const {
    Failure failure;
    // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): a C library's way of combining flags.
    constexpr auto flags = static_cast<SecretSearchFlags>(SECRET_SEARCH_ALL | SECRET_SEARCH_LOAD_SECRETS);
    const Items items{secret_service_search_sync(service_.get(), &schema(), attributesOf(storeIdentifier).get(), flags,
                                                 nullptr, failure.slot())};
    failure.check(attempt_);
    for (const GList* item = items.get(); item != nullptr; item = item->next) {
      if (Secret secret{secret_item_get_secret(static_cast<SecretItem*>(item->data))}) {
        return secret;
      }
    }
    if (items != nullptr) {
      fail(CredentialVaultError::vaultLocked, attempt_); // It lies in another keyring than the default one.
    }
    return nullptr;
  }

  void store(const std::string& storeIdentifier, SecretValue* value) const {
    Failure failure;
    secret_service_store_sync(service_.get(), &schema(), attributesOf(storeIdentifier).get(), SECRET_COLLECTION_DEFAULT,
                              "Orvan store key", value, nullptr, failure.slot());
    failure.check(attempt_);
  }

  void remove(const std::string& storeIdentifier) const {
    Failure failure;
    secret_service_clear_sync(service_.get(), &schema(), attributesOf(storeIdentifier).get(), nullptr, failure.slot());
    failure.check(attempt_);
  }

 private:
  static Reference<GDBusConnection> connect(const char* attempt) {
    Reference<GDBusConnection> bus{g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr)};
    if (bus == nullptr || g_dbus_connection_is_closed(bus.get()) != FALSE) {
      fail(CredentialVaultError::vaultUnavailable, attempt);
    }
    // Otherwise the end of the session bus would end this process, whatever it is writing.
    g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    return bus;
  }

  const char* attempt_;
  Reference<GDBusConnection> bus_;
  Reference<SecretService> service_;
};

SecretBytes bytesOf(SecretValue* value) {
  gsize length = 0;
  const gchar* bytes = secret_value_get(value, &length);
  return SecretBytes{std::span{reinterpret_cast<const unsigned char*>(bytes), length}};
}

bool holds(SecretValue* value, std::span<const unsigned char> key) {
  const auto bytes = bytesOf(value);
  return bytes.size() == key.size() && CRYPTO_memcmp(bytes.bytes().data(), key.data(), key.size()) == 0;
}

} // namespace

SecretServiceVault::SecretServiceVault(std::string storeIdentifier) : storeIdentifier_(std::move(storeIdentifier)) {}

std::optional<SecretBytes> SecretServiceVault::loadLocalStoreKey() const {
  const KeyringSession session{reading};
  session.requireUnlocked();
  const auto secret = session.find(storeIdentifier_);
  return secret == nullptr ? std::nullopt : std::optional{bytesOf(secret.get())};
}

void SecretServiceVault::storeLocalStoreKey(std::span<const unsigned char, keyLength> key) const {
  const KeyringSession session{storing};
  session.requireUnlocked();
  if (session.find(storeIdentifier_) != nullptr) {
    fail(CredentialVaultError::keyExists, storing);
  }
  const Secret value{secret_value_new(reinterpret_cast<const gchar*>(key.data()), static_cast<gssize>(key.size()),
                                      "application/octet-stream")};
  session.store(storeIdentifier_, value.get());
  const auto kept = session.find(storeIdentifier_);
  if (kept == nullptr || !holds(kept.get(), key)) {
    fail(CredentialVaultError::accessFailed, "reading back the store key from the keyring");
  }
}

void SecretServiceVault::removeLocalStoreKey() const {
  const KeyringSession session{removing};
  session.requireUnlocked();
  session.remove(storeIdentifier_);
}

} // namespace orvan
