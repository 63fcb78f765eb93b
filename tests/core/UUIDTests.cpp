#include "core/UUID.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <thread>

namespace ventolith::core {
namespace {

constexpr std::string_view upper = "6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A11";

TEST(UUID, TextIsHyphenatedUpperCase) {
  const auto id = uuidFromText("6f1c0e52-8c54-4d0b-9b0e-0e4c2c1b7a11");
  ASSERT_TRUE(id);
  EXPECT_EQ(uuidText(*id), upper);
}

TEST(UUID, EitherCaseReadsAsTheSameIdentifier) {
  EXPECT_EQ(uuidFromText(upper), uuidFromText("6f1c0e52-8c54-4d0b-9b0e-0e4c2c1b7a11"));
  EXPECT_EQ(uuidFromText(upper), uuidFromText("6f1C0e52-8C54-4d0B-9b0e-0e4C2C1b7a11"));
}

TEST(UUID, OtherFormsAreRefused) {
  for (const std::string_view text : {
           std::string_view(""),
           std::string_view("6F1C0E52"),
           std::string_view("6F1C0E528C544D0B9B0E0E4C2C1B7A11"),       // Without hyphens.
           std::string_view("{6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A11}"), // In braces.
           std::string_view("6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A1"),    // A digit short,
           std::string_view("6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A111"),  // and one too many.
           std::string_view("6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A1G"),   // No hexadecimal digit.
           std::string_view("6F1C0E5-28C54-4D0B-9B0E-0E4C2C1B7A11"),   // A hyphen out of place.
           std::string_view("6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A1 "),
           std::string_view(" 6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A1"),
           std::string_view("6F1C0E52_8C54_4D0B_9B0E_0E4C2C1B7A11"),
           std::string_view("6F1C0E52-8C54-4D0B-9B0E-0E4C2C1B7A1\0", 36),
       }) {
    SCOPED_TRACE(text);
    EXPECT_EQ(uuidFromText(text), std::nullopt);
  }
}

TEST(UUID, NewOnesDiffer) {
  std::set<UUID> made;
  for (int count = 0; count < 1000; ++count)
    made.insert(makeUUID());
  EXPECT_EQ(made.size(), 1000U);
}

TEST(UUID, NewOnesOfTwoThreadsDiffer) {
  std::array<std::set<UUID>, 2> made;
  std::array<std::thread, 2> threads;
  for (std::size_t place = 0; place < threads.size(); ++place) {
    threads[place] = std::thread([&ids = made[place]] {
      while (ids.size() < 1000)
        ids.insert(makeUUID());
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  made[0].merge(made[1]);
  EXPECT_EQ(made[0].size(), 2000U);
}

TEST(UUID, NewOneIsRandomOfVersionFour) {
  const std::string text = uuidText(makeUUID());
  EXPECT_EQ(text[14], '4');
  EXPECT_EQ(uuidText(*uuidFromText(text)), text);
}

} // namespace
} // namespace ventolith::core
