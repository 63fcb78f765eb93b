#include "app/platform-kit/ISO8601.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using core::DecodeError;

DocumentDate at(std::int64_t seconds, std::int64_t microseconds = 0) {
  return DocumentDate(std::chrono::seconds(seconds) + std::chrono::microseconds(microseconds));
}

TEST(ISO8601, DatesAreRead) {
  struct Row {
    std::string_view text;
    DocumentDate date;
  };
  const Row rows[] = {
      {"1970-01-01T00:00:00Z", at(0)},
      {"1969-12-31T23:59:59Z", at(-1)},
      {"2026-03-01T09:30:00Z", at(1772357400)},
      {"2024-02-29T23:59:59Z", at(1709251199)},
      {"0000-01-01T00:00:00Z", at(-62167219200)},
      {"9999-12-31T23:59:59Z", at(253402300799)},
      {"1900-03-01T00:00:00Z", at(-2203891200)},
  };
  for (const Row& row : rows)
    EXPECT_EQ(dateFromISO8601(row.text), row.date) << row.text;
}

TEST(ISO8601, AFractionCountsToTheMicrosecond) {
  EXPECT_EQ(dateFromISO8601("1970-01-01T00:00:01.5Z"), at(1, 500'000));
  EXPECT_EQ(dateFromISO8601("1970-01-01T00:00:01.250Z"), at(1, 250'000));
  EXPECT_EQ(dateFromISO8601("1970-01-01T00:00:01.000001Z"), at(1, 1));
  EXPECT_EQ(dateFromISO8601("1970-01-01T00:00:01.00000199999999999999Z"), at(1, 1));
  EXPECT_EQ(dateFromISO8601("1969-12-31T23:59:59.750Z"), at(-1, 750'000));
}

TEST(ISO8601, AnOffsetIsTakenOff) {
  EXPECT_EQ(dateFromISO8601("2026-03-01T10:30:00+01:00"), at(1772357400));
  EXPECT_EQ(dateFromISO8601("2026-02-28T21:15:00.000-12:15"), at(1772357400));
  EXPECT_EQ(dateFromISO8601("2026-03-01T09:30:00-00:00"), at(1772357400));
  EXPECT_EQ(dateFromISO8601("1970-01-01T00:00:00+23:59"), at(-86340));
}

TEST(ISO8601, DaysThatTheCalendarDoesNotHaveAreRefused) {
  for (const std::string_view text :
       {"2026-02-29T00:00:00Z", "1900-02-29T00:00:00Z", "2026-04-31T00:00:00Z", "2026-00-10T00:00:00Z",
        "2026-13-10T00:00:00Z", "2026-01-00T00:00:00Z", "2026-01-32T00:00:00Z"})
    EXPECT_EQ(dateFromISO8601(text), std::nullopt) << text;
}

TEST(ISO8601, TimesThatADayDoesNotHaveAreRefused) {
  for (const std::string_view text : {"2026-01-01T24:00:00Z", "2026-01-01T00:60:00Z", "2026-01-01T23:59:60Z",
                                      "2026-01-01T00:00:00+24:00", "2026-01-01T00:00:00+00:60"})
    EXPECT_EQ(dateFromISO8601(text), std::nullopt) << text;
}

TEST(ISO8601, OtherFormsAreRefused) {
  for (const std::string_view text : {"",
                                      "2026-01-01",
                                      "2026-01-01T00:00Z",
                                      "2026-01-01T00:00:00",
                                      "2026-01-01 00:00:00Z",
                                      "2026-01-01t00:00:00Z",
                                      "2026-01-01T00:00:00z",
                                      "20260101T000000Z",
                                      "2026-1-01T00:00:00Z",
                                      "2026-01-01T0:00:00Z",
                                      "26-01-01T00:00:00Z",
                                      "12026-01-01T00:00:00Z",
                                      "+2026-01-01T00:00:00Z",
                                      "-2026-01-01T00:00:00Z",
                                      "2026-01-01T00:00:00.Z",
                                      "2026-01-01T00:00:00,5Z",
                                      "2026-01-01T00:00:00.5",
                                      "2026-01-01T00:00:00.-5Z",
                                      "2026-01-01T00:00:00+0100",
                                      "2026-01-01T00:00:00+01",
                                      "2026-01-01T00:00:00+1:00",
                                      "2026-01-01T00:00:00+01:00Z",
                                      "2026-01-01T00:00:00ZZ",
                                      "2026-01-01T00:00:00Z ",
                                      " 2026-01-01T00:00:00Z",
                                      "2026-01-01T00:00:00Z\n",
                                      "2026-01-01T00:00:0 Z",
                                      "2026-W01-1T00:00:00Z",
                                      "2026-001T00:00:00Z",
                                      "1772357400",
                                      "2026-01-01T00:00:00 Z",
                                      "2026-01-01T+1:00:00Z"})
    EXPECT_EQ(dateFromISO8601(text), std::nullopt) << text;
}

TEST(ISO8601, TheMicrosecondOfATimeOfTheDayIsTheOneThatItLiesIn) {
  const runtime::WallTime epoch;
  EXPECT_EQ(documentDate(epoch + std::chrono::microseconds(7)), at(0, 7));
  EXPECT_EQ(documentDate(epoch - std::chrono::microseconds(1)), at(-1, 999'999));
}

TEST(ISO8601, ADocumentsDateIsAString) {
  const core::JSON document = {{"at", "1970-01-01T00:00:01Z"}, {"number", 1}};
  const core::JSONReader json(document);
  EXPECT_EQ(readDate(json.at("at")), at(1));
  EXPECT_THROW((void)readDate(json.at("number")), DecodeError);
}

TEST(ISO8601, AFailureSaysWhatWasExpectedAndWhere) {
  const core::JSON document = {{"at", "yesterday"}};
  const core::JSONReader json(document);
  try {
    (void)readDate(json.at("at"));
    FAIL() << "read as a date";
  } catch (const DecodeError& error) {
    EXPECT_EQ(error.kind(), DecodeError::Kind::dataCorrupted);
    EXPECT_EQ(error.path(), "at");
    EXPECT_EQ(error.description(), "Expected an ISO 8601 date-time");
  }
}

} // namespace
} // namespace ventolith::app
