// The journal, to the letter.
#include "platform/simulated/Bench.h"

#include <gtest/gtest.h>

namespace ventolith::simulated {
namespace {

struct SimulatedJournal : testing::Test {
  SimulatedJournal() {
    bench.mac->setJournal([this](const JournalEntry& entry) { lines.push_back(journalLine(entry)); });
  }

  MiniBench bench;
  std::vector<std::string> lines;
};

using Lines = std::vector<std::string>;

TEST_F(SimulatedJournal, TellsEveryCallOfAReadAndAWrite) {
  bench.read("F0Mn");
  bench.pass(1.5);
  bench.writeByte("F0md", 1);
  bench.writeSpeed("F0Tg", 1600);
  EXPECT_EQ(lines, (Lines{
                       R"({"t":0,"client":1,"op":"info","key":"F0Mn","bytes":"","result":0})",
                       R"({"t":0,"client":1,"op":"read","key":"F0Mn","bytes":"0080d444","result":0})",
                       R"({"t":1.5,"client":1,"op":"write","key":"F0md","bytes":"01","result":0})",
                       R"({"t":1.5,"client":1,"op":"write","key":"F0Tg","bytes":"0000c844","result":0})",
                   }));
}

TEST_F(SimulatedJournal, TellsRefusalsWithWhatWasWritten) {
  bench.mac->refuseWrites("F0md", 130);
  bench.writeByte("F0md", 1);
  bench.read("F0Md");
  EXPECT_EQ(lines, (Lines{
                       R"({"t":0,"client":1,"op":"write","key":"F0md","bytes":"01","result":130})",
                       R"({"t":0,"client":1,"op":"info","key":"F0Md","bytes":"","result":132})",
                   }));
}

TEST_F(SimulatedJournal, TellsTheKeyThatAnIndexFound) {
  auto input = block(SMCParamStruct::Selector::getKeyByIndex, "none");
  input.data32 = 1;
  bench.call(input);
  input.data32 = 100000;
  bench.call(input);
  EXPECT_EQ(lines, (Lines{
                       R"({"t":0,"client":1,"op":"index","key":"F0Mn","bytes":"","result":0})",
                       R"({"t":0,"client":1,"op":"index","key":"","bytes":"","result":184})",
                   }));
}

TEST_F(SimulatedJournal, TellsDriverFailuresAsSuch) {
  bench.mac->failDriver("F0md", DriverFailure::all);
  bench.writeByte("F0md", 1);
  SMCParamStruct output;
  static_cast<void>(bench.client->call(9, block(SMCParamStruct::Selector::readKey, "F0Ac", 4), output));
  EXPECT_EQ(
      lines,
      (Lines{
          R"({"t":0,"client":1,"op":"write","key":"F0md","bytes":"01","result":-536870212,"driver":true})",
          R"({"t":0,"client":9,"op":"read","key":"F0Ac","bytes":"","result":-536870195,"driver":true})",
      }));
}

TEST_F(SimulatedJournal, TellsClientsApart) {
  const auto other = smcClient(bench.mac);
  const auto connection = *other->open();
  SMCParamStruct output;
  static_cast<void>(other->call(connection, block(SMCParamStruct::Selector::getKeyInfo, "FNum"), output));
  EXPECT_EQ(lines, (Lines{R"({"t":0,"client":2,"op":"info","key":"FNum","bytes":"","result":0})"}));
}

TEST_F(SimulatedJournal, TellsSelectorsThatAreNone) {
  auto input = block(SMCParamStruct::Selector::readKey, "FNum", 1);
  input.data8 = 77;
  bench.call(input);
  EXPECT_EQ(lines, (Lines{R"({"t":0,"client":1,"op":"unknown","key":"FNum","bytes":"","result":137})"}));
}

TEST_F(SimulatedJournal, SizeBeyondTheBlockIsNotFollowed) {
  bench.call(block(SMCParamStruct::Selector::writeKey, "F0md", 0xFFFFFFFF));
  EXPECT_EQ(lines, (Lines{R"({"t":0,"client":1,"op":"write","key":"F0md","bytes":")" + std::string(64, '0') +
                          R"(","result":135})"}));
}

TEST_F(SimulatedJournal, TimeIsWrittenInItsShortestForm) {
  for (const double seconds : {0.1, 0.2, 1.0}) {
    bench.pass(seconds);
    bench.writeByte("F0md", 0);
  }
  EXPECT_EQ(lines[0].substr(0, 9), R"({"t":0.1,)");
  EXPECT_EQ(lines[1].substr(0, 9), R"({"t":0.3,)");
  EXPECT_EQ(lines[2].substr(0, 9), R"({"t":1.3,)");
}

} // namespace
} // namespace ventolith::simulated
