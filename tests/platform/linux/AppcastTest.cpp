// What is read from an update feed, and which of its items is an update.
#include "platform/linux/desktop/Appcast.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>

namespace ventolith::platform {

// For the messages of failed tests.
void PrintTo(const AppcastItem& item, std::ostream* out) {
  *out << fmt::format("{} \"{}\" channel {} page {}", item.buildNumber, item.displayVersion,
                      item.channel.value_or("-"), item.page.value_or("-"));
}

namespace {

std::string feedOf(const std::string& channelContent) {
  return R"(<?xml version="1.0" encoding="utf-8"?>)"
         R"(<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle"><channel>)" +
         channelContent + "</channel></rss>";
}

std::string itemOf(const std::string& content) {
  return feedOf("<item>" + content + "</item>");
}

Appcast parsed(const std::string& text) {
  const auto appcast = parseAppcast(text);
  if (appcast) return *appcast;
  ADD_FAILURE() << appcast.error().reason;
  return {};
}

std::string repeated(const std::string& text, std::size_t count) {
  std::string all;
  for (std::size_t time = 0; time < count; ++time)
    all += text;
  return all;
}

struct ReadItem {
  const char* what;
  std::string content;
  AppcastItem expected;
};

TEST(Appcast, ReadsAnItem) {
  const std::string six = "<sparkle:version>6</sparkle:version>";
  const ReadItem cases[] = {
      {"everything",
       "<title>2.0</title><link>https://example.com/2.0</link><sparkle:version>7</sparkle:version>"
       "<sparkle:shortVersionString>2.0</sparkle:shortVersionString><sparkle:channel>beta</sparkle:channel>"
       "<sparkle:minimumSystemVersion>99.0</sparkle:minimumSystemVersion>",
       {"7", "2.0", "beta", "https://example.com/2.0"}},
      {"the build number shown for want of another version", six, {"6", "6", {}, {}}},
      {"an empty short version",
       six + "<sparkle:shortVersionString> </sparkle:shortVersionString>",
       {"6", "6", {}, {}}},
      {"the enclosure's attributes",
       R"(<enclosure url="https://example.com/a.zip" sparkle:version="8" sparkle:shortVersionString="2.1"/>)",
       {"8", "2.1", {}, {}}},
      {"an element before an attribute",
       R"(<enclosure sparkle:version="8" sparkle:shortVersionString="2.1"/>)" + six,
       {"6", "2.1", {}, {}}},
      {"the first of two", six + "<sparkle:version>9</sparkle:version>", {"6", "6", {}, {}}},
      {"blanks around a text", "<sparkle:version>\n  6\t</sparkle:version>", {"6", "6", {}, {}}},
      {"a text in pieces",
       "<sparkle:version>1<!-- . -->2<![CDATA[3]]>&#52;</sparkle:version>",
       {"1234", "1234", {}, {}}},
      {"dots", "<sparkle:version>1.0.12</sparkle:version>", {"1.0.12", "1.0.12", {}, {}}},
      {"a link within blanks",
       six + "<link>\n https://example.com/ \n</link>",
       {"6", "6", {}, "https://example.com/"}},
      {"a plain link", six + "<link>http://example.com</link>", {"6", "6", {}, "http://example.com"}},
      {"a link to a program", six + "<link>file:///bin/sh</link>", {"6", "6", {}, {}}},
      {"a link to a script", six + "<link>javascript:alert(1)</link>", {"6", "6", {}, {}}},
      {"a link without a host", six + "<link>https:///x</link>", {"6", "6", {}, {}}},
      {"an option for a link", six + "<link>--help</link>", {"6", "6", {}, {}}},
      {"a link of another namespace",
       six + R"(<link xmlns="http://www.w3.org/2005/Atom">https://a.b</link>)",
       {"6", "6", {}, {}}},
      {"an empty channel, which is not the default one", six + "<sparkle:channel/>", {"6", "6", "", {}}},
      {"what is below an element, which is not its text",
       "<sparkle:version>6<b>7<sparkle:version>8</sparkle:version></b></sparkle:version>",
       {"6", "6", {}, {}}},
      {"enclosures of other things",
       six + R"(<sparkle:deltas><enclosure sparkle:shortVersionString="9"/></sparkle:deltas>)",
       {"6", "6", {}, {}}},
  };
  for (const auto& [what, content, expected] : cases) {
    const Appcast appcast = parsed(itemOf(content));
    ASSERT_EQ(appcast.items.size(), 1U) << what;
    EXPECT_EQ(appcast.items.front(), expected) << what;
  }
}

TEST(Appcast, LeavesAnItemOutWhoseVersionIsNoNumber) {
  for (const std::string content :
       {"", "<sparkle:shortVersionString>2.0</sparkle:shortVersionString>", "<version>6</version>",
        "<sparkle:version></sparkle:version>", "<sparkle:version>1.</sparkle:version>",
        "<sparkle:version>.1</sparkle:version>", "<sparkle:version>1..2</sparkle:version>",
        "<sparkle:version>-1</sparkle:version>", "<sparkle:version>1 2</sparkle:version>",
        "<sparkle:version>2b</sparkle:version>", "<sparkle:version>\xD9\xA1</sparkle:version>",
        R"(<enclosure version="6"/>)",
        R"(<x xmlns:sparkle="urn:other"><sparkle:version>6</sparkle:version></x>)"})
    EXPECT_TRUE(parsed(itemOf(content)).items.empty()) << content;
}

TEST(Appcast, KeepsTheOrderOfItsItemsAndThePageOfAll) {
  const Appcast appcast = parsed(feedOf("<link>https://example.com/all</link>"
                                        "<item><sparkle:version>2</sparkle:version></item><item/>"
                                        "<item><sparkle:version>1</sparkle:version></item>"
                                        "<link>https://example.com/later</link>"));
  EXPECT_EQ(appcast.page, "https://example.com/all");
  EXPECT_EQ(appcast.items, (std::vector<AppcastItem>{{"2", "2", {}, {}}, {"1", "1", {}, {}}}));
}

TEST(Appcast, ReadsNoItemOutsideTheChannel) {
  const std::string item =
      R"(<item><s:version xmlns:s="http://www.andymatuschak.org/xml-namespaces/sparkle">6</s:version></item>)";
  EXPECT_TRUE(parsed("<rss>" + item + "</rss>").items.empty());
  EXPECT_TRUE(parsed("<rss><x><channel>" + item + "</channel></x></rss>").items.empty());
  EXPECT_TRUE(parsed("<rss><channel><x>" + item + "</x></channel></rss>").items.empty());
  EXPECT_EQ(parsed("<rss><channel>" + item + "</channel></rss>").items.size(), 1U);
}

TEST(Appcast, IsReadInOtherEncodingsOfUnicode) {
  const std::string text = "<rss><channel><link>https://example.com/</link></channel></rss>";
  std::string wide = "\xFF\xFE";
  for (const char character : text)
    wide += {character, '\0'};
  EXPECT_EQ(parsed(wide).page, "https://example.com/");
}

TEST(Appcast, RefusesWhatIsNoFeed) {
  const std::string whole = itemOf("<sparkle:version>6</sparkle:version>");
  const std::string declaration = R"(<!DOCTYPE rss [<!ENTITY a "6">]>)";
  const std::pair<const char*, std::string> cases[] = {
      {"nothing", ""},
      {"no XML", "404"},
      {"another document", "<html><body/></html>"},
      {"another namespace's RSS", R"(<rss xmlns="urn:x"/>)"},
      {"one half", whole.substr(0, whole.size() / 2)},
      {"all but the end", whole.substr(0, whole.size() - 1)},
      {"more behind it", whole + "x"},
      {"two of it", whole + whole},
      {"crossed elements", "<rss><channel></rss></channel>"},
      {"a prefix that nobody declared", "<rss><x:y/></rss>"},
      {"an entity that nobody declared", "<rss>&nbsp;</rss>"},
      {"broken UTF-8", "<rss>\xC3</rss>"},
      {"a zero byte", std::string("<rss>\0</rss>", 12)},
      {"an encoding that is none", R"(<?xml version="1.0" encoding="x-none"?><rss/>)"},
      {"a document type", "<!DOCTYPE rss><rss/>"},
      {"a document type elsewhere", R"(<!DOCTYPE rss SYSTEM "file:///etc/passwd"><rss/>)"},
      {"entities", declaration + "<rss><channel>&a;</channel></rss>"},
  };
  for (const auto& [what, text] : cases)
    EXPECT_TRUE(parseAppcast(text).has_error()) << what;
}

TEST(Appcast, SaysWhereAndWhy) {
  EXPECT_EQ(parseAppcast("<rss>\n\n<!x").error().reason, "line 3: not well-formed (invalid token)");
  EXPECT_EQ(parseAppcast("<!DOCTYPE a>").error().reason, "line 1: it declares a document type");
}

TEST(Appcast, HasLimits) {
  using namespace AppcastLimits;
  const auto nested = [](std::size_t count) {
    return "<rss>" + repeated("<a>", count - 1) + repeated("</a>", count - 1) + "</rss>";
  };
  const auto many = [](std::size_t count) { return feedOf(repeated("<item/>", count)); };
  const auto version = [](std::size_t count) {
    return itemOf("<sparkle:version>" + std::string(count, '1') + "</sparkle:version>");
  };
  const auto attribute = [](std::size_t count) {
    return itemOf("<enclosure sparkle:version='" + std::string(count, '1') + "'/>");
  };
  const auto ignored = [](std::size_t count) {
    return itemOf("<description>" + std::string(count, 'x') + "</description>");
  };
  const std::tuple<const char*, std::string, bool> cases[] = {
      {"depth", nested(depth), true},
      {"too deep", nested(depth + 1), false},
      {"items", many(items), true},
      {"too many items", many(items + 1), false},
      {"a text", version(characters), true},
      {"too long a text", version(characters + 1), false},
      {"an attribute", attribute(characters), true},
      {"too long an attribute", attribute(characters + 1), false},
      {"a text that nobody keeps", ignored(500'000), true},
  };
  for (const auto& [what, text, isRead] : cases)
    EXPECT_EQ(parseAppcast(text).has_value(), isRead) << what;
}

TEST(BuildNumber, IsComparedNumberByNumber) {
  const std::string huge(500, '9');
  const std::pair<std::string, std::string> risingPairs[] = {
      {"6", "7"},        {"9", "10"},    {"6", "6.1"},
      {"6.9", "6.10"},   {"6.9.9", "7"}, {"0", "1"},
      {"1.9", "2"},      {"009", "10"},  {"18446744073709551615", "18446744073709551616"},
      {huge, "1" + huge}};
  for (const auto& [older, newer] : risingPairs) {
    EXPECT_TRUE(isNewerBuild(newer, older)) << newer << " " << older;
    EXPECT_FALSE(isNewerBuild(older, newer)) << older << " " << newer;
  }
  const std::pair<std::string, std::string> equalPairs[] = {
      {"6", "6"}, {"6", "06"}, {"6", "6.0"}, {"6.0.0", "6.0"}, {"0", "0.00"}};
  for (const auto& [left, right] : equalPairs) {
    EXPECT_FALSE(isNewerBuild(left, right)) << left << " " << right;
    EXPECT_FALSE(isNewerBuild(right, left)) << right << " " << left;
  }
}

TEST(NewestUpdate, IsTheNewestThatTheBuildMayTake) {
  const AppcastItem stable7{"7", "1.1", {}, "https://example.com/7"};
  const AppcastItem stable8{"8", "1.2", {}, "https://example.com/8"};
  const AppcastItem beta9{"9", "2.0-beta", "beta", "https://example.com/9"};
  const AppcastItem nightly10{"10", "3.0", "nightly", {}};
  struct Case {
    std::vector<AppcastItem> items;
    std::set<std::string> channels;
    const char* running;
    std::optional<std::string> expected;
  };
  const Case cases[] = {
      {{}, {}, "6", {}},
      {{stable7}, {}, "6", "1.1"},
      {{stable7}, {}, "7", {}},
      {{stable7}, {}, "8", {}},
      {{stable7, stable8}, {}, "6", "1.2"},
      {{stable8, stable7}, {}, "6", "1.2"},
      {{stable7, beta9}, {}, "6", "1.1"},
      {{stable7, beta9}, {"beta"}, "6", "2.0-beta"},
      {{beta9}, {}, "6", {}},
      {{beta9, stable8}, {"beta"}, "9", {}},
      {{nightly10, beta9}, {"beta"}, "6", "2.0-beta"},
      {{{"9", "first", {}, {}}, {"9.0", "second", {}, {}}}, {}, "6", "first"},
      {{{"9", "x", "", {}}}, {"beta"}, "6", {}},
  };
  for (std::size_t index = 0; index < std::size(cases); ++index) {
    const Case& the = cases[index];
    const auto update = newestUpdate({.items = the.items}, the.channels, the.running);
    EXPECT_EQ(update ? std::optional(update->displayVersion) : std::nullopt, the.expected) << index;
  }
}

TEST(NewestUpdate, HasItsOwnPageBeforeThatOfTheFeed) {
  const AppcastItem with{"7", "1.1", {}, "https://example.com/7"};
  const AppcastItem without{"7", "1.1", {}, {}};
  const auto page = [](const Appcast& appcast) { return newestUpdate(appcast, {}, "6")->page; };
  EXPECT_EQ(page({"https://example.com/", {with}}), "https://example.com/7");
  EXPECT_EQ(page({"https://example.com/", {without}}), "https://example.com/");
  EXPECT_EQ(page({{}, {without}}), std::nullopt);
}

} // namespace
} // namespace ventolith::platform
