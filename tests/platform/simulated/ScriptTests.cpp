// Scripts: what they do, when, and how a bad one is refused.
#include "platform/simulated/Bench.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace ventolith::simulated {
namespace {

template <class Work>
std::string failureOf(Work work) {
  try {
    work();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

TEST(SimulatedScript, LinesHappenAtTheirTimes) {
  MiniBench bench;
  bench.mac->runScript(R"({"at":2,"refuse":{"F0md":5}}
{"at":5.5,"refuse":{"F0md":null}}
)");
  bench.pass(1.999);
  EXPECT_EQ(bench.writeByte("F0md", 0), 0);
  bench.pass(0.001);
  EXPECT_EQ(bench.writeByte("F0md", 0), 5);
  bench.pass(3.5);
  EXPECT_EQ(bench.writeByte("F0md", 0), 0);
}

TEST(SimulatedScript, LinesNeedNotBeInTheOrderOfTheirTimes) {
  MiniBench bench;
  bench.mac->runScript("{\"at\":9,\"refuse\":{\"F0md\":9}}\n\n{\"at\":1,\"refuse\":{\"F0md\":1}}");
  bench.pass(1);
  EXPECT_EQ(bench.writeByte("F0md", 0), 1);
  bench.pass(8);
  EXPECT_EQ(bench.writeByte("F0md", 0), 9);
}

TEST(SimulatedScript, HeatIsOfTheTimeThoughNobodyLooked) {
  const auto celsius = [](bool isLookedAt) {
    MiniBench bench;
    bench.mac->runScript(
        "{\"at\":10,\"load\":1}\n{\"at\":40,\"load\":0}\n{\"at\":40.5,\"sensors\":\"frozen\"}");
    for (int second = 0; second < 60; ++second) {
      bench.pass(1);
      if (isLookedAt) static_cast<void>(bench.mac->fans());
    }
    return *bench.read("TCHP");
  };
  EXPECT_EQ(celsius(false), celsius(true));
  EXPECT_GT(celsius(false), 60);
}

TEST(SimulatedScript, EveryMemberDoesItsWork) {
  Bench bench("macbook-pro");
  bench.mac->runLine(R"({"load":1,"temps":{"TCHP":96.5,"NAND CH0 temp":70},"refuse":{"Ftst":7},)"
                     R"("driverFailure":{"F0Md":true,"F0Tg":"write"},"reclaim":[1],)"
                     R"("removeKeys":["F0Mn"],"keyTypes":{"F0Mx":"zzzz"}})");
  EXPECT_EQ(bench.read("TCHP"), 96.5);
  EXPECT_EQ(bench.writeByte("Ftst", 1), 7);
  EXPECT_EQ(bench.read("F0Md"), std::nullopt);
  EXPECT_EQ(bench.read("F1Md"), 3);
  EXPECT_EQ(bench.read("F0Mn"), std::nullopt);
  EXPECT_EQ(bench.read("F0Mx"), std::nullopt);
  EXPECT_TRUE(bench.read("F0Tg").has_value());
  const double before = *bench.mac->sampleHub(0);
  bench.pass(60);
  EXPECT_GT(*bench.mac->sampleHub(0), before + 10);
  bench.mac->runLine(R"({"temps":{"TCHP":null},"refuse":{"Ftst":null},"driverFailure":{"F0Md":false},)"
                     R"("restoreKeys":["F0Mn"],"keyTypes":{"F0Mx":null},"sensors":"gone"})");
  EXPECT_EQ(bench.read("TCHP"), std::nullopt);
  EXPECT_EQ(bench.writeByte("Ftst", 1), 0);
  EXPECT_EQ(bench.read("F0Md"), 0);
  EXPECT_EQ(bench.read("F0Mn"), 1250);
  EXPECT_EQ(bench.read("F0Mx"), 6336);
  bench.mac->runLine(R"({"sensors":"back"})");
  EXPECT_TRUE(bench.read("TCHP").has_value());
}

TEST(SimulatedScript, ReclaimCanInsist) {
  MiniBench bench;
  bench.mac->runLine(R"({"reclaim":{"0":2}})");
  bench.writeByte("F0md", 1);
  EXPECT_EQ(bench.read("F0md"), 3);
}

TEST(SimulatedScript, LiveLineWithATimeWaitsForIt) {
  MiniBench bench;
  bench.mac->runLine(R"({"at":3,"refuse":{"F0md":5}})");
  EXPECT_EQ(bench.writeByte("F0md", 0), 0);
  bench.pass(3);
  EXPECT_EQ(bench.writeByte("F0md", 0), 5);
}

TEST(SimulatedScript, BadLineIsNamedWithItsNumberAndItsPath) {
  struct Case {
    const char* line;
    const char* failure;
  };
  const Case cases[] = {
      {R"({"load":1})", "line 2: at: required key not found"},
      {R"({"at":1,"load":1.5})", "line 2: load: expected a number from 0 to 1"},
      {R"({"at":-1})", "line 2: at: expected a number from 0 to 1000000000"},
      {R"({"at":"soon"})", "line 2: at: expected a number, found a string"},
      {R"({"at":1,"fire":true})", "line 2: fire: no such member is known"},
      {R"({"at":1,"refuse":{"F0md":0}})", "line 2: refuse.F0md: expected a result from 1 to 255, or null"},
      {R"({"at":1,"refuse":{"F0md":256}})", "line 2: refuse.F0md: expected a result from 1 to 255, or null"},
      {R"({"at":1,"refuse":{"F7md":5}})", "line 2: this machine has no key \"F7md\""},
      {R"({"at":1,"driverFailure":{"F0md":1}})",
       "line 2: driverFailure.F0md: expected true, false or \"write\""},
      {R"({"at":1,"reclaim":[10]})", "line 2: reclaim[0]: expected a fan from 0 to 9"},
      {R"({"at":1,"reclaim":[1]})", "line 2: this machine has no fan 1"},
      {R"({"at":1,"reclaim":{"x":1}})", "line 2: reclaim.x: expected a fan from 0 to 9"},
      {R"({"at":1,"reclaim":0})", "line 2: reclaim: expected a list of fans, or an object of spans"},
      {R"({"at":1,"sensors":"away"})", "line 2: sensors: expected \"gone\", \"frozen\" or \"back\""},
      {R"({"at":1,"temps":{"TZZZ":50}})", "line 2: this machine has no sensor \"TZZZ\""},
      {R"({"at":1,"temps":{"F0Ac":50}})", "line 2: this machine has no sensor \"F0Ac\""},
      {R"({"at":1,"removeKeys":["F0Md"]})", "line 2: this machine has no key \"F0Md\""},
      {R"({"at":1,"keyTypes":{"F0md":"x"}})", "line 2: keyTypes.F0md: expected four characters, or null"},
      {R"([1])", "line 2: expected an object, found a list"},
  };
  for (const Case& bad : cases) {
    MiniBench bench;
    const std::string script = std::string("{\"at\":0,\"refuse\":{\"F0md\":5}}\n") + bad.line + "\n";
    EXPECT_EQ(failureOf([&] { bench.mac->runScript(script); }), bad.failure);
    EXPECT_EQ(bench.writeByte("F0md", 0), 0) << "nothing of a refused script happens: " << bad.line;
  }
}

TEST(SimulatedScript, LineThatIsNoJSONIsNamedWithItsNumber) {
  MiniBench bench;
  const auto failure = failureOf([&] { bench.mac->runScript("\n{\"at\":1}\n{\"at\":"); });
  EXPECT_EQ(failure.substr(0, 22), "line 3: not valid JSON");
}

TEST(SimulatedScript, BadLiveLineChangesNothing) {
  MiniBench bench;
  EXPECT_EQ(failureOf([&] { bench.mac->runLine(R"({"refuse":{"F0md":5},"reclaim":[4]})"); }),
            "this machine has no fan 4");
  EXPECT_EQ(bench.writeByte("F0md", 0), 0);
}

} // namespace
} // namespace ventolith::simulated
