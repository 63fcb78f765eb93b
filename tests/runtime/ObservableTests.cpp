#include "runtime/Observable.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace ventolith::runtime {
namespace {

enum class Field { speed, name, isHeld };
using Fields = FieldSet<Field>;

class Fan : public Observable<Field> {
public:
  int speed = 0;
  std::string name = "left";

  void setSpeed(int value) { assign(Field::speed, speed, value); }
  void setName(std::string value) { assign(Field::name, name, std::move(value)); }
  void setBoth(int newSpeed, std::string newName) {
    willChange({Field::speed, Field::name});
    speed = newSpeed;
    name = std::move(newName);
  }
  void announce(Fields fields) { willChange(fields); }
};

/// Counts how often it was told, and remembers what last.
struct Told {
  int times = 0;
  Fields last;

  [[nodiscard]] auto observer() {
    return [this](Fields changing) {
      ++times;
      last = changing;
    };
  }
};

TEST(FieldSetTest, HoldsTheFieldsItWasMadeOf) {
  constexpr Fields fields{Field::speed, Field::isHeld};
  EXPECT_TRUE(fields.contains(Field::speed));
  EXPECT_FALSE(fields.contains(Field::name));
  EXPECT_TRUE(fields.contains(Field::isHeld));
}

TEST(FieldSetTest, SetsAreJoined) {
  EXPECT_EQ((Fields{Field::speed} | Fields{Field::name}), (Fields{Field::name, Field::speed}));
}

TEST(FieldSetTest, SetsAreCut) {
  EXPECT_EQ((Fields{Field::speed, Field::name} & Fields{Field::name, Field::isHeld}), Fields{Field::name});
  EXPECT_TRUE((Fields{Field::speed} & Fields{Field::name}).isEmpty());
}

TEST(FieldSetTest, IsEmptyWithoutFields) {
  EXPECT_TRUE(Fields().isEmpty());
  EXPECT_FALSE(Fields{Field::speed}.isEmpty()); // The field of number zero is one, too.
}

TEST(FieldSetTest, HoldsSixtyFourFields) {
  enum class Many { first = 0, last = 63 };
  EXPECT_TRUE(FieldSet<Many>{Many::last}.contains(Many::last));
  EXPECT_FALSE(FieldSet<Many>{Many::last}.contains(Many::first));
}

TEST(ObservableTest, ObserversAreToldBeforeTheFieldChanges) {
  Fan fan;
  std::optional<int> seen;
  const auto observation = fan.observe([&](Fields) { seen = fan.speed; });
  fan.setSpeed(3000);
  EXPECT_EQ(seen, 0);
  EXPECT_EQ(fan.speed, 3000);
}

TEST(ObservableTest, FieldsThatChangeTogetherAreToldOnce) {
  Fan fan;
  Told told;
  const auto observation = fan.observe(told.observer());
  fan.setBoth(3000, "right");
  EXPECT_EQ(told.times, 1);
  EXPECT_EQ(told.last, (Fields{Field::speed, Field::name}));
}

TEST(ObservableTest, TheValueThatItHasAlreadyIsNoChange) {
  Fan fan;
  Told told;
  const auto observation = fan.observe(told.observer());
  fan.setName("left");
  EXPECT_EQ(told.times, 0);
}

TEST(ObservableTest, NoFieldsAreNoChange) {
  Fan fan;
  Told told;
  const auto observation = fan.observe(told.observer());
  fan.announce({});
  EXPECT_EQ(told.times, 0);
}

TEST(ObservableTest, AnObservationEndsWithItsHandle) {
  Fan fan;
  Told told;
  {
    const auto observation = fan.observe(told.observer());
    fan.setSpeed(1);
  }
  fan.setSpeed(2);
  EXPECT_EQ(told.times, 1);
}

TEST(ObservableTest, AMovedHandleKeepsTheObservation) {
  Fan fan;
  Told told;
  Observation kept;
  {
    auto observation = fan.observe(told.observer());
    kept = std::move(observation);
  }
  fan.setSpeed(1);
  EXPECT_EQ(told.times, 1);
}

TEST(ObservableTest, AHandleThatTakesAnotherObservationEndsItsOwn) {
  Fan fan;
  Told first;
  Told second;
  auto observation = fan.observe(first.observer());
  observation = fan.observe(second.observer());
  fan.setSpeed(1);
  EXPECT_EQ(first.times, 0);
  EXPECT_EQ(second.times, 1);
}

TEST(ObservableTest, AHandleMayOutliveWhatItObserves) {
  Told told;
  auto fan = std::make_unique<Fan>();
  auto observation = fan->observe(told.observer());
  fan->setSpeed(1);
  fan.reset();
  observation.end();
  EXPECT_EQ(told.times, 1);
}

TEST(ObservableTest, AnObserverMayEndItsOwnObservation) {
  Fan fan;
  int times = 0;
  Observation observation;
  observation = fan.observe([&, marker = std::make_shared<int>(7)](Fields) {
    observation.end();
    times += *marker; // What the observer holds lives until it returns.
  });
  fan.setSpeed(1);
  fan.setSpeed(2);
  EXPECT_EQ(times, 7);
}

TEST(ObservableTest, AnObserverThatIsEndedByAnEarlierOneIsNotTold) {
  Fan fan;
  Told told;
  Observation later;
  const auto earlier = fan.observe([&](Fields) { later.end(); });
  later = fan.observe(told.observer());
  fan.setSpeed(1);
  EXPECT_EQ(told.times, 0);
}

TEST(ObservableTest, AnObserverMayEndAnEarlierOne) {
  Fan fan;
  Told told;
  Told last;
  auto earlier = fan.observe(told.observer());
  const auto ending = fan.observe([&](Fields) { earlier.end(); });
  const auto after = fan.observe(last.observer());
  fan.setSpeed(1);
  fan.setSpeed(2);
  EXPECT_EQ(told.times, 1);
  EXPECT_EQ(last.times, 2); // Nobody is skipped.
}

TEST(ObservableTest, AnObserverThatBeginsWhileOthersAreToldIsToldOfTheNextChange) {
  Fan fan;
  Told told;
  Observation added;
  bool isAdded = false;
  const auto observation = fan.observe([&](Fields) {
    if (!std::exchange(isAdded, true)) added = fan.observe(told.observer());
  });
  fan.setSpeed(1);
  EXPECT_EQ(told.times, 0);
  fan.setSpeed(2);
  EXPECT_EQ(told.times, 1);
}

TEST(ObservableTest, AnObserverMayTakeThePlaceOfAnEarlierOneWhileOthersAreTold) {
  Fan fan;
  Told told;
  Told last;
  auto earlier = fan.observe(told.observer());
  const auto replacing = fan.observe([&](Fields) {
    earlier.end();
    earlier = fan.observe(told.observer());
  });
  const auto after = fan.observe(last.observer());
  fan.setSpeed(1);
  EXPECT_EQ(last.times, 1); // Nobody is skipped.
}

TEST(ObservableTest, ManyObserversMayBeginWhileOthersAreTold) {
  Fan fan;
  Told told;
  std::vector<Observation> added;
  const auto first = fan.observe([&](Fields) {
    for (int count = 0; count < 100; ++count)
      added.push_back(fan.observe(told.observer()));
  });
  Told last;
  const auto second = fan.observe(last.observer());
  fan.setSpeed(1);
  EXPECT_EQ(last.times, 1);
  EXPECT_EQ(told.times, 0);
}

TEST(ObservableTest, AnObserverMayChangeAnotherField) {
  Fan fan;
  std::vector<Fields> told;
  const auto changing = fan.observe([&](Fields fields) {
    told.push_back(fields);
    if (fields.contains(Field::speed)) fan.setName("fast");
  });
  fan.setSpeed(1);
  EXPECT_EQ(told, (std::vector{Fields{Field::speed}, Fields{Field::name}}));
  EXPECT_EQ(fan.name, "fast");
  EXPECT_EQ(fan.speed, 1);
}

TEST(ObservableTest, AnObserverMayLetTheObservedObjectGo) {
  auto fan = std::make_unique<Fan>();
  Told told;
  const auto ending = fan->observe([&](Fields) { fan.reset(); });
  const auto after = fan->observe(told.observer());
  fan->setSpeed(1);
  EXPECT_EQ(fan, nullptr);
  EXPECT_EQ(told.times, 1);
}

} // namespace
} // namespace ventolith::runtime
