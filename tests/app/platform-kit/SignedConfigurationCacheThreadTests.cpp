// That caches of one place of storage take turns, on real threads.
#include "app/platform-kit/SignedConfigurationCache.h"
#include "app/platform-kit/SignedDocuments.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <barrier>
#include <cstddef>
#include <cstdlib>
#include <latch>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace ventolith::app {
namespace {

/// What stands in one place, and whether two ever used it at once. Whoever enters waits until as many as it
/// is for are there.
class Place {
public:
  explicit Place(std::ptrdiff_t users = 1) : users_(users) {}

  void enter() {
    if (isInUse_.exchange(true)) ++overlaps_;
    users_.arrive_and_wait();
    std::this_thread::yield();
  }
  void leave() {
    ++uses_;
    isInUse_ = false;
  }

  [[nodiscard]] int overlaps() const { return overlaps_; }
  [[nodiscard]] int uses() const { return uses_; }

private:
  std::barrier<> users_;
  std::atomic<bool> isInUse_ = false;
  std::atomic<int> overlaps_ = 0;
  std::atomic<int> uses_ = 0;
};

/// A store of that place, which is in use from a load on. An `accept` leaves it with its save.
class StoreOfPlace final : public ConfigurationCacheStoring {
public:
  StoreOfPlace(Place& place, std::string key, SignedEnvelope envelope)
      : place_(place), key_(std::move(key)), record_{.revision = 7, .envelope = std::move(envelope)} {}

  std::optional<ConfigurationCacheRecord> load() override {
    place_.enter();
    return record_;
  }
  void save(const ConfigurationCacheRecord&) override { place_.leave(); }
  [[nodiscard]] std::string coordinationKey() const override { return key_; }

private:
  Place& place_;
  std::string key_;
  ConfigurationCacheRecord record_;
};

/// Leaves the place when it has verified, which is the last that `current` wants from outside.
class LeavingVerifier final : public SignedPayloadVerifying {
public:
  LeavingVerifier(Place& place, const SignedPayloadVerifying& verifier)
      : place_(place), verifier_(verifier) {}

  [[nodiscard]] Bytes verifiedPayload(const SignedEnvelope& envelope,
                                      SignedPayloadPurpose expected) const override {
    auto payload = verifier_.verifiedPayload(envelope, expected);
    place_.leave();
    return payload;
  }

private:
  Place& place_;
  const SignedPayloadVerifying& verifier_;
};

class SignedConfigurationCacheThreads : public testing::Test {
protected:
  static constexpr int rounds = 400;

  /// Accepts again and again, by a cache of its own.
  [[nodiscard]] auto accepting(Place& place, const std::string& coordinationKey) const {
    return [this, &place, coordinationKey](std::latch& start) {
      StoreOfPlace store(place, coordinationKey, envelope_);
      SignedConfigurationCache cache(verifier_, store, "org.example.fans", "1.0.3");
      start.arrive_and_wait();
      for (int round = 0; round < rounds; ++round)
        (void)cache.accept(envelope_, now_);
    };
  }

  /// Reads what is current again and again, by a cache of its own.
  [[nodiscard]] auto reading(Place& place, const std::string& coordinationKey) const {
    return [this, &place, coordinationKey](std::latch& start) {
      StoreOfPlace store(place, coordinationKey, envelope_);
      const LeavingVerifier verifier(place, verifier_);
      const SignedConfigurationCache cache(verifier, store, "org.example.fans", "1.0.3");
      start.arrive_and_wait();
      for (int round = 0; round < rounds; ++round)
        (void)cache.current(now_);
    };
  }

  /// Does both at the same time, on a thread each.
  template <class One, class Other>
  static void race(const One& one, const Other& other) {
    std::latch start(2);
    std::thread thread([&] { one(start); });
    other(start);
    thread.join();
  }

  const runtime::WallTime now_{std::chrono::hours(24) * 20522}; // 2026-03-10.
  support::Publisher publisher_;
  SignedEnvelope envelope_ = publisher_.publish(support::configurationJSON(7));
  StaticSigningPublicKeyProvider keys_{support::keysOf(publisher_)};
  Ed25519SignedPayloadVerifier verifier_{keys_};
};

TEST_F(SignedConfigurationCacheThreads, CachesOfOnePlaceTakeTurnsToAccept) {
  Place place;
  race(accepting(place, "one place"), accepting(place, "one place"));
  EXPECT_EQ(place.uses(), 2 * rounds);
  EXPECT_EQ(place.overlaps(), 0);
}

TEST_F(SignedConfigurationCacheThreads, ReadingWhatIsCurrentTakesItsTurnToo) {
  Place place;
  race(accepting(place, "one place"), reading(place, "one place"));
  EXPECT_EQ(place.uses(), 2 * rounds);
  EXPECT_EQ(place.overlaps(), 0);
}

// One place under two names, which nobody should use: only who does not wait for the other meets it there.

TEST_F(SignedConfigurationCacheThreads, CachesOfTwoPlacesDoNotWaitForEachOtherToAccept) {
  Place place(2);
  race(accepting(place, "a name"), accepting(place, "another name"));
  EXPECT_EQ(place.uses(), 2 * rounds);
  EXPECT_GT(place.overlaps(), 0);
}

TEST_F(SignedConfigurationCacheThreads, CachesOfTwoPlacesDoNotWaitForEachOtherToRead) {
  Place place(2);
  race(accepting(place, "a name"), reading(place, "another name"));
  EXPECT_EQ(place.uses(), 2 * rounds);
  EXPECT_GT(place.overlaps(), 0);
}

TEST(ConfigurationCacheCoordinator, IsTheSameForTheSameKey) {
  EXPECT_EQ(&ConfigurationCacheCoordinator::forKey("a"), &ConfigurationCacheCoordinator::forKey("a"));
  EXPECT_NE(&ConfigurationCacheCoordinator::forKey("a"), &ConfigurationCacheCoordinator::forKey("b"));
}

TEST(ConfigurationCacheCoordinator, StaysWhereItIsWhileOthersAreMade) {
  const auto* const first = &ConfigurationCacheCoordinator::forKey("stays");
  for (int number = 0; number < 1000; ++number)
    (void)ConfigurationCacheCoordinator::forKey("stays " + std::to_string(number));
  EXPECT_EQ(&ConfigurationCacheCoordinator::forKey("stays"), first);
}

TEST(ConfigurationCacheCoordinator, IsMadeOnceHoweverManyThreadsAskForIt) {
  constexpr int keys = 500;
  std::array<std::vector<ConfigurationCacheCoordinator*>, 2> found;
  std::array<std::thread, 2> threads;
  for (std::size_t place = 0; place < threads.size(); ++place) {
    threads[place] = std::thread([&mine = found[place]] {
      for (int number = 0; number < keys; ++number)
        mine.push_back(&ConfigurationCacheCoordinator::forKey("shared " + std::to_string(number)));
    });
  }
  for (auto& thread : threads)
    thread.join();
  EXPECT_EQ(found[0], found[1]);
}

/// An object with static storage that was there before the first coordinator is destroyed after whatever was
/// made for it. A sanitizer sees what is used then and is gone.
TEST(ConfigurationCacheCoordinatorDeathTest, IsStillThereWhileTheProcessEnds) {
  GTEST_FLAG_SET(death_test_style, "threadsafe"); // In a process in which nobody has asked for one yet.
  const auto useAtTheEnd = [] {
    const std::lock_guard guard(ConfigurationCacheCoordinator::forKey("used until the end").lock);
  };
  EXPECT_EXIT(
      {
        (void)std::atexit(useAtTheEnd);
        useAtTheEnd();
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace ventolith::app
