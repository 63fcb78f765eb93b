#include "app/platform-kit/PropertyList.h"

#include "support/VirtualDisk.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using Values = MapBundleInfo::Values;

const std::string head = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
)";

std::string list(const std::string& dictionary) {
  return head + "<plist version=\"1.0\">\n<dict>\n" + dictionary + "\n</dict>\n</plist>\n";
}

std::string failure(const std::string& text) {
  const auto result = parsePropertyList(text);
  return result ? "none" : result.error().description;
}

std::string repeated(const std::string& text, std::size_t times) {
  std::string all;
  for (std::size_t count = 0; count < times; ++count)
    all += text;
  return all;
}

TEST(PropertyList, GivesItsStringsAndBooleans) {
  const auto values = parsePropertyList(
      list("<key>A</key><string>one</string>\n<key>B</key><true/><key>C</key><false></false>"));
  ASSERT_TRUE(values) << values.error().description;
  EXPECT_EQ(*values, (Values{{"A", "one"}, {"B", true}, {"C", false}}));
}

TEST(PropertyList, NeedsNoDeclarationOrDocumentType) {
  EXPECT_EQ(parsePropertyList("<plist><dict/></plist>").value(), Values());
}

TEST(PropertyList, LeavesOutValuesOfOtherTypes) {
  const auto values = parsePropertyList(
      list("<key>I</key><integer>7</integer><key>R</key><real>1.5</real><key>D</key><data>AAEC</data>"
           "<key>T</key><date>2025-01-01T00:00:00Z</date>"
           "<key>L</key><array><string>x</string><dict><key>S</key><string>y</string></dict></array>"
           "<key>N</key><dict><key>S</key><string>z</string><key>S</key><true/></dict>"
           "<key>S</key><string>last</string>"));
  ASSERT_TRUE(values) << values.error().description;
  EXPECT_EQ(*values, (Values{{"S", "last"}}));
}

TEST(PropertyList, KeepsTextAsItStands) {
  const auto values = parsePropertyList(
      list("<key>URL</key><string> https://e.example/?a=1&amp;b=&lt;&#x20AC;<![CDATA[<&>]]> \n</string>"
           "<key>E</key><string></string>"));
  ASSERT_TRUE(values) << values.error().description;
  EXPECT_EQ(*values, (Values{{"URL", " https://e.example/?a=1&b=<€<&> \n"}, {"E", ""}}));
}

TEST(PropertyList, IgnoresCommentsAndInstructions) {
  const auto values =
      parsePropertyList(list("<!-- a --><key>A<!-- b --></key><?c d?><string>o<!---->ne</string>"));
  ASSERT_TRUE(values) << values.error().description;
  EXPECT_EQ(*values, (Values{{"A", "one"}}));
}

struct Refused {
  std::string text;
  std::string description;
};

TEST(PropertyList, RefusesWhatIsNone) {
  const std::vector<Refused> table{
      {"", "line 1: no element found"},
      {"bplist00", "line 1: syntax error"},
      {"<plist><dict><key>A</key>", "line 1: no element found"},
      {"<plist/>", "line 1: no dictionary"},
      {"<dict/>", "line 1: <dict> in the place of <plist>"},
      {"<plist><array/></plist>", "line 1: <array> in the place of <dict>"},
      {"<plist><string/></plist>", "line 1: <string> in the place of <dict>"},
      {"<plist><dict/><dict/></plist>", "line 1: <dict> after the dictionary"},
      {"<plist><dict/></plist><plist/>", "line 1: junk after document element"},
      {"<html><body/></html>", "line 1: <html> is no property list's"},
      {list("<plist/>"), "line 5: <plist> inside another element"},
      {list("<key>A</key>"), "line 6: a key without a value"},
      {list("<key>A</key><key>B</key><true/>"), "line 5: <key> in the place of a value"},
      {list("<string>A</string>"), "line 5: <string> without a key"},
      {list("<key>A</key><string>x</string><true/>"), "line 5: <true> without a key"},
      {list("<key>A</key><true/><key>A</key><true/>"), "line 5: a key stands twice"},
      {list("<key>A</key><integer>1</integer><key>A</key><true/>"), "line 5: a key stands twice"},
      {list("<key>A</key><string>x<true/></string>"), "line 5: <true> inside a single value"},
      {list("<key>A</key><array><key>x</key></array>"), "line 5: <key> inside an array"},
      {list("<key>A</key><true>x</true>"), "line 5: text between elements"},
      {list("x"), "line 5: text between elements"},
      {list("<key>A</key><Key/>"), "line 5: <Key> is no property list's"},
      {list("<key>A</key><string>\xff</string>"), "line 5: not well-formed (invalid token)"},
      {list("<key>A</key><string>&#0;</string>"), "line 5: reference to invalid character number"},
  };
  for (const auto& [text, description] : table)
    EXPECT_EQ(failure(text), description) << text;
}

TEST(PropertyList, FetchesAndDeclaresNothing) {
  const std::string body = "<plist><dict><key>A</key><string>&a;</string></dict></plist>";
  EXPECT_EQ(failure("<!DOCTYPE plist [<!ENTITY a \"x\">]>" + body),
            "line 1: a document type with declarations of its own");
  EXPECT_EQ(failure("<!DOCTYPE plist [<!ENTITY a SYSTEM \"file:///etc/passwd\">]>" + body),
            "line 1: a document type with declarations of its own");
  EXPECT_EQ(failure("<!DOCTYPE plist SYSTEM \"file:///etc/passwd\" [<!ENTITY % b SYSTEM \"c\"> %b;]>" + body),
            "line 1: a document type with declarations of its own");
  EXPECT_EQ(failure(head + body), "line 3: the entity a is not known");
  EXPECT_EQ(failure(body), "line 1: undefined entity");
}

TEST(PropertyList, IsReadUpToItsBounds) {
  const std::size_t arrays = deepestPropertyListElement - 3; // Besides <plist>, <dict> and the text.
  const auto nested = [](std::size_t depth) {
    return list("<key>A</key>" + repeated("<array>", depth) + "<string/>" + repeated("</array>", depth));
  };
  EXPECT_EQ(failure(nested(arrays)), "none");
  EXPECT_EQ(failure(nested(arrays + 1)), "line 5: nested too deeply");

  const auto longText = [](std::size_t bytes) {
    const std::string frame = list("<key>A</key><string></string>");
    return list("<key>A</key><string>" + std::string(bytes - frame.size(), 'x') + "</string>");
  };
  EXPECT_EQ(failure(longText(mostPropertyListBytes)), "none");
  EXPECT_EQ(failure(longText(mostPropertyListBytes + 1)), "too long");
}

TEST(PropertyList, OfAFileIsTheSame) {
  support::VirtualDisk disk;
  disk.put("/share/Info.plist", list("<key>A</key><string>one</string>"));
  EXPECT_EQ(readPropertyList(disk, "/share/Info.plist").value(), (Values{{"A", "one"}}));
}

TEST(PropertyList, OfAFileThatCannotBeReadSaysWhy) {
  support::VirtualDisk disk;
  EXPECT_EQ(readPropertyList(disk, "/none").error().description, "No such file or directory");
  disk.put("/long", std::string(mostPropertyListBytes + 1, ' '));
  EXPECT_EQ(readPropertyList(disk, "/long").error().description, "File too large");
}

} // namespace
} // namespace ventolith::app
