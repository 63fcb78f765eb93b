// That caches of one place of storage take turns, on real threads.
#include "app/platform-kit/SignedConfigurationCache.h"
#include "app/platform-kit/SignedDocuments.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <set>
#include <thread>

namespace ventolith::app {
namespace {

/// What stands in one place, and whether two were ever between its load and its save.
struct Place {
  std::atomic<bool> isInUse = false;
  std::atomic<int> overlaps = 0;
  std::atomic<int> uses = 0;
};

/// A store of that place: every one that is loaded is saved, since `accept` succeeds each time.
class StoreOfPlace final : public ConfigurationCacheStoring {
public:
  StoreOfPlace(Place& place, std::string key, SignedEnvelope envelope)
      : place_(place), key_(std::move(key)), record_{.revision = 7, .envelope = std::move(envelope)} {}

  std::optional<ConfigurationCacheRecord> load() override {
    if (place_.isInUse.exchange(true)) ++place_.overlaps;
    std::this_thread::yield();
    return record_;
  }

  void save(const ConfigurationCacheRecord&) override {
    ++place_.uses;
    place_.isInUse = false;
  }

  [[nodiscard]] std::string coordinationKey() const override { return key_; }

private:
  Place& place_;
  std::string key_;
  ConfigurationCacheRecord record_;
};

class SignedConfigurationCacheThreads : public testing::Test {
protected:
  static constexpr int rounds = 400;

  /// Two caches, each with a store of its own for `place`, accept at the same time on a thread each.
  void race(Place& place, const std::array<std::string, 2>& coordinationKeys) const {
    const runtime::WallTime now(std::chrono::hours(24) * 20522); // 2026-03-10.
    std::atomic<int> ready = 0;
    const auto run = [&](const std::string& key) {
      StoreOfPlace store(place, key, envelope_);
      SignedConfigurationCache cache(verifier_, store, "org.example.fans", "1.0.3");
      ++ready;
      while (ready < 2)
        std::this_thread::yield();
      for (int round = 0; round < rounds; ++round)
        (void)cache.accept(envelope_, now);
    };
    std::thread one(run, coordinationKeys[0]);
    std::thread other(run, coordinationKeys[1]);
    one.join();
    other.join();
  }

  support::Publisher publisher_;
  SignedEnvelope envelope_ = publisher_.publish(support::configurationJSON(7));
  StaticSigningPublicKeyProvider keys_{support::keysOf(publisher_)};
  Ed25519SignedPayloadVerifier verifier_{keys_};
};

TEST_F(SignedConfigurationCacheThreads, CachesOfOnePlaceTakeTurns) {
  Place place;
  race(place, {"one place", "one place"});
  EXPECT_EQ(place.uses, 2 * rounds);
  EXPECT_EQ(place.overlaps, 0);
}

TEST_F(SignedConfigurationCacheThreads, CachesOfTwoPlacesDoNotWaitForEachOther) {
  Place place; // Used under two names, which nobody should: the race shows that it can be lost.
  race(place, {"a name", "another name"});
  EXPECT_EQ(place.uses, 2 * rounds);
  EXPECT_GT(place.overlaps, 0);
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

} // namespace
} // namespace ventolith::app
