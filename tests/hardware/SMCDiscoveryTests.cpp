#include "hardware/SMCConnectionFixture.h"

#include <limits>

namespace ventolith::hardware {
namespace {

using doubles::blockOf;
using doubles::driverFailure;
using doubles::info;
using doubles::keyNamed;
using doubles::result;
using doubles::value;

using Keys = std::vector<std::string>;

class SMCDiscoveryTest : public SMCConnectionTest {
protected:
  /// Discovers with `replies` after the answers that say "there are `count` keys".
  Keys discover(std::uint8_t count, std::deque<doubles::Reply> replies) {
    replies.push_front(value({count}));
    replies.push_front(info(1, "ui8 "));
    answer(std::move(replies));
    auto keys = run(connection_.discoverTempKeys());
    EXPECT_EQ(client_.replies.size(), 0U) << "answers left over";
    return keys;
  }
};

TEST_F(SMCDiscoveryTest, AnUnreadableCountGivesNothingAndAsksForNoIndex) {
  for (const doubles::Reply& refusal : {result(132), result(1), driverFailure(5)}) {
    client_.inputs.clear();
    answer({refusal});
    EXPECT_EQ(run(connection_.discoverTempKeys()), Keys());
    EXPECT_EQ(client_.inputs, std::vector{infoBlock({0x59, 0x45, 0x4B, 0x23})});
  }
}

TEST_F(SMCDiscoveryTest, ACountWithoutANumberGivesNothingAndAsksForNoIndex) {
  answer({info(4, "ch8*"), value({1, 2, 3, 4})});
  EXPECT_EQ(run(connection_.discoverTempKeys()), Keys());
  EXPECT_EQ(client_.inputs.size(), 2U);
}

TEST_F(SMCDiscoveryTest, ACountOfZeroGivesNothing) {
  EXPECT_EQ(discover(0, {}), Keys());
  EXPECT_EQ(client_.inputs.size(), 2U);
}

TEST_F(SMCDiscoveryTest, ACountThatIsNotANumberOrNegativeGivesNothing) {
  for (const double count : {std::numeric_limits<double>::quiet_NaN(), -2.0}) {
    const SMCBytes bytes = encodeFloat(count);
    answer({info(4, "flt "), value({bytes.begin(), bytes.end()})});
    EXPECT_EQ(run(connection_.discoverTempKeys()), Keys()) << count;
  }
}

TEST_F(SMCDiscoveryTest, ACountIsTruncated) {
  const SMCBytes bytes = encodeFloat(1.9);
  answer({info(4, "flt "), value({bytes.begin(), bytes.end()}), keyNamed(packKey("FNum"))});
  EXPECT_EQ(run(connection_.discoverTempKeys()), Keys());
  EXPECT_EQ(client_.inputs.size(), 3U);
}

TEST_F(SMCDiscoveryTest, ACountThatNoMachineHasIsNotFollowedToItsEnd) {
  std::deque<doubles::Reply> replies(70'000, result(132));
  replies.push_front(value({0xFF, 0xFF, 0xFF, 0xFF}));
  replies.push_front(info(4, "ui32"));
  answer(std::move(replies));
  EXPECT_EQ(run(connection_.discoverTempKeys()), Keys());
  EXPECT_EQ(client_.inputs.size(), 2U + 65'536U);
}

TEST_F(SMCDiscoveryTest, AsksForEachIndexWithABlockThatIsZeroButForIt) {
  discover(2, {keyNamed(packKey("FNum")), keyNamed(packKey("Ftst"))});
  EXPECT_EQ(client_.inputs.at(2), blockOf({{42, {8}}}));
  EXPECT_EQ(client_.inputs.at(3), blockOf({{42, {8}}, {44, {1, 0, 0, 0}}}));
}

TEST_F(SMCDiscoveryTest, KeepsNumbersOfEachFormInTheOrderOfTheirIndices) {
  const Keys keys = discover(4, {
                                    keyNamed(packKey("TZ0a")),
                                    info(4, "flt "),
                                    value({0, 0, 0, 0}),
                                    keyNamed(packKey("TCHP")),
                                    info(2, "sp78"),
                                    value({40, 0}),
                                    keyNamed(packKey("TB0T")),
                                    info(1, "ui8 "),
                                    value({0}),
                                    keyNamed(packKey("TAAA")),
                                    info(2, "fpe2"),
                                    value({1, 0}),
                                });
  EXPECT_EQ(keys, (Keys{"TZ0a", "TCHP", "TB0T", "TAAA"}));
}

TEST_F(SMCDiscoveryTest, DropsKeysThatAreRawOrUnreadable) {
  const Keys keys = discover(5, {
                                    keyNamed(packKey("TRaw")),
                                    info(4, "ch8*"),
                                    value({1, 2, 3, 4}),
                                    keyNamed(packKey("TSho")),
                                    info(1, "ui16"),
                                    value({1, 2}),
                                    keyNamed(packKey("TGon")),
                                    result(132),
                                    keyNamed(packKey("TRef")),
                                    info(4, "flt "),
                                    result(0x85),
                                    keyNamed(packKey("TKep")),
                                    info(4, "flt "),
                                    value({0, 0, 0, 0}),
                                });
  EXPECT_EQ(keys, Keys{"TKep"});
}

TEST_F(SMCDiscoveryTest, ReadsOnlyKeysThatBeginWithACapitalT) {
  EXPECT_EQ(discover(3, {keyNamed(packKey("tCHP")), keyNamed(packKey("FTTT")), keyNamed(packKey("#KEY"))}),
            Keys());
}

TEST_F(SMCDiscoveryTest, AKeyThatIsNotASCIIIsDropped) {
  EXPECT_EQ(discover(1, {keyNamed(0x54FF4142)}), Keys()); // "T" and what is not ASCII.
}

TEST_F(SMCDiscoveryTest, SkipsAnIndexThatFailsAndGoesOn) {
  const Keys keys = discover(4, {
                                    driverFailure(0xE00002BCU),
                                    driverFailure(0xE00002C1U),
                                    result(132),
                                    keyNamed(packKey("TCHP")),
                                    info(2, "sp78"),
                                    value({40, 0}),
                                });
  EXPECT_EQ(keys, Keys{"TCHP"});
}

TEST_F(SMCDiscoveryTest, ARefusedIndexIsSkippedThoughItsBlockNamesAKey) {
  auto refused = keyNamed(packKey("TCHP"));
  refused.output.result = 1;
  EXPECT_EQ(discover(1, {refused}), Keys());
}

} // namespace
} // namespace ventolith::hardware
