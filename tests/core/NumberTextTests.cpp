#include "core/NumberText.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace ventolith::core {
namespace {

TEST(NumberText, FractionOrExponentIsAlwaysShown) {
  struct Row {
    double value;
    const char* text;
  };
  const Row rows[] = {
      {0, "0.0"},
      {15, "15.0"},
      {50, "50.0"},
      {100, "100.0"},
      {0.3, "0.3"},
      {99.9, "99.9"},
      {-5, "-5.0"},
      {-0.5, "-0.5"},
      {12.25, "12.25"},
      {3800, "3800.0"},
      {1e15, "1000000000000000.0"},
      {1e16, "1e+16"},
      {-2.5e-7, "-2.5e-07"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(fractionText(row.value), row.text);
  }
}

TEST(NumberText, TextReadsBackToTheSameValue) {
  for (const double value : {0.1, 0.1 + 0.2, 1.0 / 3, 1e300, 5e-324, 123456.789, -2.5e-7}) {
    EXPECT_EQ(std::strtod(fractionText(value).c_str(), nullptr), value);
  }
}

} // namespace
} // namespace ventolith::core
