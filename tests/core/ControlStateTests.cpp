// The modes and the state that a controller reports, and their JSON.
#include "core/ControlContract.h"
#include "support/Plans.h"

#include <gtest/gtest.h>

#include <string>

namespace ventolith::core {
namespace {

using Kind = DecodeError::Kind;

struct ModeRow {
  ControlMode mode;
  std::string_view name;
  std::string_view label;
  std::string_view symbol;
};

constexpr ModeRow modes[] = {
    {ControlMode::automatic, "automatic", "Auto", "arrow.uturn.backward"},
    {ControlMode::fullBlast, "fullBlast", "Full Blast", "bolt.fill"},
    {ControlMode::manual, "manual", "Manual", "hand.point.up.left.fill"},
    {ControlMode::curve, "curve", "Curve", "chart.line.uptrend.xyaxis"},
};

ControlMode modeOf(std::string_view text) {
  const JSON document = parseJSON(text);
  return readControlMode(JSONReader(document));
}

DecodeError stateFailure(std::string_view text) {
  try {
    (void)decodeControlState(text);
  } catch (const DecodeError& error) {
    return error;
  }
  return {Kind::dataCorrupted, "none", "decoded"};
}

TEST(ControlMode, HasItsWords) {
  for (const ModeRow& row : modes) {
    EXPECT_EQ(label(row.mode), row.label);
    EXPECT_EQ(symbolName(row.mode), row.symbol);
    EXPECT_EQ(caseName(row.mode), row.name);
  }
}

TEST(ControlMode, JSONIsAnObjectOfItsName) {
  for (const ModeRow& row : modes) {
    const std::string text = "{\"" + std::string(row.name) + "\":{}}";
    EXPECT_EQ(writeJSON(toJSON(row.mode)), text);
    EXPECT_EQ(modeOf(text), row.mode);
  }
}

TEST(ControlMode, OtherThanOneKnownKeyFails) {
  for (const std::string_view text :
       {R"({"automatic":{},"manual":{}})", R"({})", R"({"turbo":{}})", R"({"Manual":{}})"}) {
    SCOPED_TRACE(text);
    try {
      (void)modeOf(text);
      ADD_FAILURE() << "decoded";
    } catch (const DecodeError& error) {
      EXPECT_EQ(error.kind(), Kind::typeMismatch);
      EXPECT_EQ(error.description(), "Invalid number of keys found, expected one.");
    }
  }
}

TEST(ControlMode, OtherThanAnObjectFails) {
  for (const std::string_view text : {R"("manual")", "2", "null", R"({"manual":1})", R"({"manual":null})"}) {
    SCOPED_TRACE(text);
    EXPECT_THROW((void)modeOf(text), DecodeError);
  }
}

TEST(ControlMode, OfAPlansEntryTellsFullBlastByItsPercentage) {
  EXPECT_EQ(controlMode(FanControlModePlan::automatic()), ControlMode::automatic);
  EXPECT_EQ(controlMode(FanControlModePlan::fixedRPM(99999)), ControlMode::manual);
  EXPECT_EQ(controlMode(FanControlModePlan::fixedPercent(99.9)), ControlMode::manual);
  EXPECT_EQ(controlMode(FanControlModePlan::fixedPercent(100)), ControlMode::fullBlast);
  EXPECT_EQ(controlMode(FanControlModePlan::fixedPercent(140)), ControlMode::fullBlast);
  EXPECT_EQ(controlMode(support::percentAsCelsius()), ControlMode::curve);
}

TEST(ControlState, IdleHoldsNothing) {
  EXPECT_TRUE(ControlState::idle.perFanMode.empty());
  EXPECT_TRUE(ControlState::idle.targets.empty());
  EXPECT_FALSE(ControlState::idle.isHolding);
  EXPECT_EQ(ControlState::idle.lastError, std::nullopt);
  EXPECT_EQ(ControlState::idle.stoppedFans, std::nullopt);
}

TEST(ControlState, JSONIsWrittenLetterForLetter) {
  const ControlState state{
      .perFanMode = {{0, ControlMode::manual}}, .targets = {{0, 3800}}, .isHolding = true};
  const std::string text = R"({"perFanMode":{"0":{"manual":{}}},"targets":{"0":3800},"isHolding":true})";
  EXPECT_EQ(encode(state), text);
  EXPECT_EQ(decodeControlState(text), state);
}

TEST(ControlState, EveryFieldRoundTripsInTheOrderOfTheFields) {
  const ControlState state{
      .perFanMode = {{10, ControlMode::curve}, {2, ControlMode::fullBlast}, {-1, ControlMode::automatic}},
      .targets = {{10, 0}, {2, -5}},
      .isHolding = true,
      .lastError = "SMC said \"no\"",
      .stoppedFans = std::vector<FanID>{10}};
  EXPECT_EQ(
      encode(state),
      R"({"perFanMode":{"-1":{"automatic":{}},"2":{"fullBlast":{}},"10":{"curve":{}}},"targets":{"2":-5,"10":0},)"
      R"("isHolding":true,"lastError":"SMC said \"no\"","stoppedFans":[10]})");
  EXPECT_EQ(decodeControlState(encode(state)), state);
}

TEST(ControlState, IdleIsWrittenWithItsRequiredKeys) {
  EXPECT_EQ(encode(ControlState::idle), R"({"perFanMode":{},"targets":{},"isHolding":false})");
  EXPECT_EQ(decodeControlState(encode(ControlState::idle)), ControlState::idle);
}

TEST(ControlState, AbsentAndEmptyStoppedFansDiffer) {
  const ControlState empty{.stoppedFans = std::vector<FanID>{}};
  EXPECT_NE(empty, ControlState::idle);
  EXPECT_EQ(encode(empty), R"({"perFanMode":{},"targets":{},"isHolding":false,"stoppedFans":[]})");
  EXPECT_EQ(decodeControlState(encode(empty)), empty);
}

TEST(ControlState, OptionalKeysMayBeMissing) {
  const ControlState state = decodeControlState(R"({"perFanMode":{},"targets":{"0":3800},"isHolding":true})");
  EXPECT_EQ(state.lastError, std::nullopt);
  EXPECT_EQ(state.stoppedFans, std::nullopt);
  EXPECT_EQ(state, (ControlState{.targets = {{0, 3800}}, .isHolding = true}));
}

TEST(ControlState, OptionalKeysMayBeNullAndUnknownOnesStand) {
  EXPECT_EQ(
      decodeControlState(R"({"isHolding":false,"lastError":null,"x":[1],"targets":{},"stoppedFans":null,)"
                         R"("perFanMode":{}})"),
      ControlState::idle);
}

TEST(ControlState, EachRequiredKeyThatIsMissingFails) {
  for (const std::string key : {"perFanMode", "targets", "isHolding"}) {
    SCOPED_TRACE(key);
    JSON document = toJSON(ControlState::idle);
    document.erase(key);
    const DecodeError failure = stateFailure(writeJSON(document));
    EXPECT_EQ(failure.kind(), Kind::keyNotFound);
    EXPECT_EQ(failure.path(), key);
  }
}

TEST(ControlState, MemberOfAWrongTypeFailsAtItsPath) {
  struct Row {
    std::string key;
    std::string value;
    std::string path;
  };
  const Row rows[] = {
      {"perFanMode", "[]", "perFanMode"},
      {"perFanMode", R"({"3":"manual"})", "perFanMode.3"},
      {"perFanMode", R"({"3":{"manual":1}})", "perFanMode.3.manual"},
      {"targets", "null", "targets"},
      {"targets", R"({"3":"1"})", "targets.3"},
      {"targets", R"({"3":1.5})", "targets.3"},
      {"targets", R"({"3":1e19})", "targets.3"},
      {"isHolding", "0", "isHolding"},
      {"lastError", "5", "lastError"},
      {"stoppedFans", "{}", "stoppedFans"},
      {"stoppedFans", R"([0,"1"])", "stoppedFans[1]"},
      {"stoppedFans", "[0.5]", "stoppedFans[0]"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.key + " " + row.value);
    JSON document = toJSON(ControlState::idle);
    document[row.key] = parseJSON(row.value);
    const DecodeError failure = stateFailure(writeJSON(document));
    EXPECT_EQ(failure.kind(), Kind::typeMismatch);
    EXPECT_EQ(failure.path(), row.path);
  }
}

TEST(ControlState, MapKeyThatIsNoFanIDFails) {
  for (const std::string key : {"", "a", "1a", " 1", "1 ", "1.0", "0x1", "9223372036854775808", "--1"}) {
    SCOPED_TRACE(key);
    JSON document = toJSON(ControlState::idle);
    document["targets"][key] = 1000;
    const DecodeError failure = stateFailure(writeJSON(document));
    EXPECT_EQ(failure.kind(), Kind::typeMismatch);
    EXPECT_EQ(failure.path(), "targets." + key);
  }
}

TEST(ControlState, MapKeysReachBothEndsOf64Bits) {
  const ControlState state{.targets = {{INT64_MIN, INT64_MAX}, {INT64_MAX, INT64_MIN}}};
  EXPECT_EQ(decodeControlState(encode(state)), state);
}

TEST(ControlState, TwoSpellingsOfOneFanFail) {
  const DecodeError failure =
      stateFailure(R"({"perFanMode":{},"targets":{"1":1000,"01":2000},"isHolding":false})");
  EXPECT_EQ(failure.kind(), Kind::dataCorrupted);
  EXPECT_EQ(failure.path(), "targets.01");
}

} // namespace
} // namespace ventolith::core
