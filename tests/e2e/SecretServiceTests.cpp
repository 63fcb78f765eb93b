// The stores of the newest configuration, with a real keeper of secrets on a bus of the tests' own.
#include "app/platform-kit/RemoteConfigurationValidator.h"
#include "app/platform-kit/SignedConfigurationCache.h"
#include "app/platform-kit/SignedDocuments.h"
#include "e2e/EnvironmentVariable.h"
#include "e2e/PrivateBus.h"
#include "platform/system/desktop/ConfigurationCacheStores.h"
#include "platform/system/desktop/SecretServiceStore.h"

#include <gtest/gtest.h>
#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace ventolith::e2e {
namespace {

using namespace std::chrono_literals;
using app::ConfigurationCacheError;
using app::ConfigurationCacheRecord;
using platform::SecretServiceStatus;
using platform::SecretServiceStore;

constexpr const char* serviceName = "org.freedesktop.secrets";
constexpr const char* loginCollection = "/org/freedesktop/secrets/collection/login";

ConfigurationCacheRecord record(std::int64_t revision) {
  return {.revision = revision,
          .envelope = {.kid = "k", .algorithm = "Ed25519", .payload = "e30", .signature = "AA"}};
}

template <class Action>
std::optional<ConfigurationCacheError::Case> failure(Action action) {
  try {
    action();
  } catch (const ConfigurationCacheError& error) {
    return error.value();
  }
  return std::nullopt;
}

ConfigurationCacheError::Case status(SecretServiceStatus value) {
  return ConfigurationCacheError::Keychain{static_cast<std::int64_t>(value)};
}

/// A user with a session bus and secrets of his own.
class Secrets : public testing::Test {
protected:
  void startKeeper() { start({"--unlock"}); }
  void startLockedKeeper() { start({}); }

  void endKeeper() {
    keeper_.reset();
    waitUntil("the keeper is off the bus", [this] { return !isOwned(); });
  }

  [[nodiscard]] const Program& keeper() const { return *keeper_; }
  [[nodiscard]] PrivateBus& bus() { return bus_; }
  [[nodiscard]] std::filesystem::path folder() const { return folder_.path(); }

  void lock() const {
    std::vector<sdbus::ObjectPath> locked;
    sdbus::ObjectPath prompt;
    proxy(serviceName, "/org/freedesktop/secrets")
        ->callMethod("Lock")
        .onInterface("org.freedesktop.Secret.Service")
        .withArguments(std::vector<sdbus::ObjectPath>{loginCollection})
        .storeResultsTo(locked, prompt);
    ASSERT_EQ(locked.size(), 1U);
  }

  /// What another program of the same user puts in the place of the record.
  void storeAsAnotherProgram(const std::string& text) const {
    const auto connection =
        sdbus::createSessionBusConnectionWithAddress(bus_.address()); // Holds the session.
    sdbus::Variant nothing;
    sdbus::ObjectPath session;
    sdbus::createProxy(*connection, serviceName, "/org/freedesktop/secrets")
        ->callMethod("OpenSession")
        .onInterface("org.freedesktop.Secret.Service")
        .withArguments(std::string("plain"), sdbus::Variant(std::string()))
        .storeResultsTo(nothing, session);

    using Bytes = std::vector<std::uint8_t>;
    const sdbus::Struct<sdbus::ObjectPath, Bytes, Bytes, std::string> secret{
        session, Bytes(), Bytes(text.begin(), text.end()), "text/plain"};
    const std::map<std::string, std::string> attributes{{"xdg:schema", "com.ventolith.ConfigurationCache"},
                                                        {"service", "com.ventolith.app.platform"},
                                                        {"account", "platform-configuration-v1"}};
    sdbus::ObjectPath item;
    sdbus::ObjectPath prompt;
    sdbus::createProxy(*connection, serviceName, loginCollection)
        ->callMethod("CreateItem")
        .onInterface("org.freedesktop.Secret.Collection")
        .withArguments(
            std::map<std::string, sdbus::Variant>{{"org.freedesktop.Secret.Item.Attributes", attributes}},
            secret, true)
        .storeResultsTo(item, prompt);
    ASSERT_NE(item, "/");
  }

  SecretServiceStore store{SecretServiceStore::itemOf("com.ventolith.app")};

private:
  [[nodiscard]] std::unique_ptr<sdbus::IProxy> proxy(const char* name, const char* path) const {
    return sdbus::createProxy(sdbus::createSessionBusConnectionWithAddress(bus_.address()), name, path);
  }

  [[nodiscard]] bool isOwned() const {
    bool answer = false;
    proxy("org.freedesktop.DBus", "/org/freedesktop/DBus")
        ->callMethod("NameHasOwner")
        .onInterface("org.freedesktop.DBus")
        .withArguments(std::string(serviceName))
        .storeResultsTo(answer);
    return answer;
  }

  void start(std::vector<std::string> arguments) {
    const std::string home = folder_.path().string();
    for (const std::string& argument : {std::string("--foreground"), std::string("--components=secrets"),
                                        "--control-directory=" + home + "/control"})
      arguments.push_back(argument);
    std::filesystem::create_directory(folder_.path() / "control");
    keeper_ = std::make_unique<Program>("/usr/bin/gnome-keyring-daemon", std::move(arguments),
                                        Environment{{"HOME", home},
                                                    {"XDG_DATA_HOME", home + "/data"},
                                                    {"XDG_RUNTIME_DIR", home},
                                                    {"DBUS_SESSION_BUS_ADDRESS", bus_.address()}},
                                        Streams{.in = folder_.write("password", "open sesame")});
    waitUntil("a keeper of secrets", [this] {
      if (!keeper_->isRunning()) throw std::runtime_error("it does not run: " + keeper_->err());
      return isOwned();
    });
  }

  TemporaryFolder folder_;
  PrivateBus bus_;
  EnvironmentVariable address_{"DBUS_SESSION_BUS_ADDRESS", bus_.address()};
  std::unique_ptr<Program> keeper_;
};

TEST_F(Secrets, HoldNothingAtFirst) {
  startKeeper();
  EXPECT_EQ(store.load(), std::nullopt);
}

TEST_F(Secrets, GiveBackTheLatestThatWasSaved) {
  startKeeper();
  store.save(record(1));
  store.save(record(2));
  EXPECT_EQ(store.load(), record(2));
}

TEST_F(Secrets, OutliveTheirKeeper) {
  startKeeper();
  store.save(record(1));
  endKeeper();
  startKeeper();
  EXPECT_EQ(store.load(), record(1));
}

TEST_F(Secrets, AreFoundByServiceAndAccount) {
  startKeeper();
  store.save(record(1));
  SecretServiceStore otherApplication(SecretServiceStore::itemOf("com.example.app"));
  EXPECT_EQ(otherApplication.load(), std::nullopt);
  auto otherItem = SecretServiceStore::itemOf("com.ventolith.app");
  otherItem.account = "another";
  EXPECT_EQ(SecretServiceStore(otherItem).load(), std::nullopt);
  EXPECT_EQ(store.coordinationKey(), "secret-service:com.ventolith.app.platform:platform-configuration-v1");
}

TEST_F(Secrets, LeaveNoConnectionBehind) {
  startKeeper();
  const auto connections = [this] {
    std::vector<std::string> names;
    sdbus::createProxy(sdbus::createSessionBusConnectionWithAddress(bus().address()), "org.freedesktop.DBus",
                       "/org/freedesktop/DBus")
        ->callMethod("ListNames")
        .onInterface("org.freedesktop.DBus")
        .storeResultsTo(names);
    return names.size();
  };
  const std::size_t before = connections();
  store.save(record(1));
  EXPECT_EQ(store.load(), record(1));
  waitUntil("as many connections as before", [&] { return connections() == before; });
}

TEST_F(Secrets, OfAnotherKindAreACorruptRecord) {
  startKeeper();
  for (const std::string text : {"", "{}", "\"revision\""}) {
    storeAsAnotherProgram(text);
    EXPECT_EQ(failure([&] { (void)store.load(); }),
              ConfigurationCacheError::Case(ConfigurationCacheError::Plain::corruptRecord))
        << text;
  }
  store.save(record(3));
  EXPECT_EQ(store.load(), record(3));
}

TEST_F(Secrets, ThatAreLockedAreAFailureAndAskNobody) {
  startKeeper();
  store.save(record(1));
  lock();
  EXPECT_EQ(failure([&] { (void)store.load(); }), status(SecretServiceStatus::locked));
  EXPECT_EQ(failure([&] { store.save(record(2)); }), status(SecretServiceStatus::locked));
}

TEST_F(Secrets, OfAUserWhoHasNoneYetAreNotMadeForHim) {
  startLockedKeeper();
  EXPECT_EQ(store.load(), std::nullopt);
  EXPECT_EQ(failure([&] { store.save(record(1)); }), status(SecretServiceStatus::noCollection));
}

TEST_F(Secrets, WithoutAKeeperAreAFailure) {
  EXPECT_EQ(failure([&] { (void)store.load(); }), status(SecretServiceStatus::noService));
  EXPECT_EQ(failure([&] { store.save(record(1)); }), status(SecretServiceStatus::noService));
}

TEST_F(Secrets, WithoutABusAreAFailure) {
  bus().kill();
  EXPECT_EQ(failure([&] { (void)store.load(); }), status(SecretServiceStatus::noService));
}

TEST_F(Secrets, WithoutASessionAreAFailure) {
  const EnvironmentVariable noAddress("DBUS_SESSION_BUS_ADDRESS", std::nullopt);
  const EnvironmentVariable noBus("XDG_RUNTIME_DIR", folder().string());
  EXPECT_EQ(failure([&] { (void)store.load(); }), status(SecretServiceStatus::noService));
}

TEST_F(Secrets, AreWaitedForNoLongerThanAllowed) {
  startKeeper();
  store.save(record(1));
  SecretServiceStore impatient(SecretServiceStore::itemOf("com.ventolith.app"), 300ms);
  keeper().signal(SIGSTOP);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(failure([&] { (void)impatient.load(); }), status(SecretServiceStatus::timedOut));
  EXPECT_EQ(failure([&] { impatient.save(record(2)); }), status(SecretServiceStatus::timedOut));
  const auto elapsed = std::chrono::steady_clock::now() - start;
  EXPECT_GE(elapsed, 600ms);
  EXPECT_LT(elapsed, 10s); // The bus itself would wait for 25.
  keeper().signal(SIGCONT);
  EXPECT_EQ(store.load(), record(1));
}

TEST_F(Secrets, OverABusThatStandsStillAreWaitedForNoLongerThanAllowed) {
  startKeeper();
  SecretServiceStore impatient(SecretServiceStore::itemOf("com.ventolith.app"), 300ms);
  bus().signal(SIGSTOP);
  EXPECT_EQ(failure([&] { (void)impatient.load(); }), status(SecretServiceStatus::timedOut));
  EXPECT_FALSE(SecretServiceStore::isOffered(300ms));
  bus().signal(SIGCONT);
}

TEST_F(Secrets, WhoseBusIsLostInBetweenAreAFailureAndNoEndOfTheProcess) {
  startKeeper();
  keeper().signal(SIGSTOP);
  std::thread end([this] {
    std::this_thread::sleep_for(200ms);
    bus().kill();
  });
  EXPECT_EQ(failure([&] { (void)store.load(); }), status(SecretServiceStatus::noService));
  end.join();
}

TEST_F(Secrets, ArePreferredWhereSomebodyKeepsThem) {
  startKeeper();
  const auto chosen = platform::configurationCacheStore("com.ventolith.app", folder());
  EXPECT_EQ(chosen->coordinationKey(), "secret-service:com.ventolith.app.platform:platform-configuration-v1");
  chosen->save(record(1));
  EXPECT_EQ(store.load(), record(1));
}

TEST_F(Secrets, ArePreferredWhereTheBusWouldStartTheirKeeper) {
  bus().addService(serviceName, "/usr/bin/gnome-keyring-daemon --start --foreground --components=secrets");
  EXPECT_EQ(platform::configurationCacheStore("com.ventolith.app", folder())->coordinationKey(),
            "secret-service:com.ventolith.app.platform:platform-configuration-v1");
}

TEST_F(Secrets, AreInAFileWhereNobodyKeepsThem) {
  const auto chosen = platform::configurationCacheStore("com.ventolith.app", folder() / "Ventolith");
  const auto file = folder() / "Ventolith" / "platform-configuration-v1.json";
  EXPECT_EQ(chosen->coordinationKey(), "file:" + file.string());
  chosen->save(record(1));
  EXPECT_EQ(readText(file), encode(record(1)));
  EXPECT_EQ(chosen->load(), record(1));
}

TEST_F(Secrets, AreInAFileWhereThereIsNoBus) {
  bus().kill();
  EXPECT_EQ(platform::configurationCacheStore("com.ventolith.app", "/home/user/x")->coordinationKey(),
            "file:/home/user/x/platform-configuration-v1.json");
}

TEST_F(Secrets, KeepASignedConfigurationThatCannotBeRolledBack) {
  startKeeper();
  const app::support::Publisher publisher;
  const app::StaticSigningPublicKeyProvider keys(app::support::keysOf(publisher));
  const app::Ed25519SignedPayloadVerifier verifier(keys);
  const auto now = runtime::WallTime(std::chrono::duration_cast<runtime::WallTime::duration>(
      app::support::date("2026-03-02T00:00:00Z").time_since_epoch()));
  const auto envelope = [&](std::int64_t revision) {
    return publisher.publish(app::support::configurationJSON(revision));
  };
  app::SignedConfigurationCache cache(verifier, store, "org.example.fans", "1.0.0");
  EXPECT_EQ(cache.current(now), std::nullopt);
  EXPECT_EQ(cache.accept(envelope(7), now).revision, 7);
  endKeeper();
  startKeeper();
  EXPECT_EQ(cache.current(now).value().revision, 7);
  EXPECT_THROW((void)cache.accept(envelope(6), now), app::ConfigurationValidationError);
  EXPECT_EQ(store.load().value().revision, 7);
}

} // namespace
} // namespace ventolith::e2e

/// GLib's locks are made of the system's lowest calls, which ThreadSanitizer does not know for locks.
extern "C" const char* __tsan_default_suppressions() { // NOLINT: the name is the sanitizer's.
  return "called_from_lib:libglib-2.0.so\ncalled_from_lib:libgio-2.0.so\n"
         "called_from_lib:libgobject-2.0.so\ncalled_from_lib:libsecret-1.so\n";
}
