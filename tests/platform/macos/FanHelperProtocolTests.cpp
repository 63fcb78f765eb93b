// What the compiler has written down of the ten messages, which is what crosses the line.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

/// Assembler text: labels, and below each what is stored there.
class Metadata {
public:
  explicit Metadata(const std::string& file) {
    std::ifstream text(file);
    std::string label;
    for (std::string word; text >> word;) {
      if (word == ".asciz") {
        std::getline(text >> std::ws, strings_[label]);
      } else if (word == ".quad") {
        text >> word;
        tables_[label].push_back(word);
      } else if (word.ends_with(':')) {
        label = word.substr(0, word.size() - 1);
      }
    }
  }

  /// The texts that a table refers to, in its order, as the assembler writes them.
  [[nodiscard]] Texts textsOf(const std::string& table) const {
    Texts texts;
    const auto entries = tables_.find(table);
    if (entries == tables_.end()) return texts;
    for (const auto& entry : entries->second) {
      const auto string = strings_.find(entry);
      if (string != strings_.end()) texts.push_back(string->second);
    }
    return texts;
  }

private:
  std::map<std::string, std::string> strings_;
  std::map<std::string, Texts> tables_;
};

TEST(FanHelperProtocol, IsTheTenMessagesInTheirOrderWithTheirTypes) {
  // The types are those that XPC reads, with what is within a block: its result, itself ("@?"), its
  // arguments.
  const std::vector<std::pair<std::string, std::string>> messages = {
      {"helperVersionWithReply:", R"(v24@0:8@?<v@?@\"NSString\">16)"},
      {"shutdownForUpgradeWithReply:", "v24@0:8@?<v@?>16"},
      {"setManualRPMWithFan:rpm:withReply:", "v40@0:8q16q24@?<v@?q>32"},
      {"setPercentWithFan:percent:withReply:", "v40@0:8q16d24@?<v@?q>32"},
      {"fullBlastWithReply:", "v24@0:8@?<v@?q>16"},
      {"automaticWithReply:", "v24@0:8@?<v@?q>16"},
      {"applyConfig:withReply:", R"(v32@0:8@\"NSData\"16@?<v@?q>24)"},
      {"restoreAutoWithReply:", "v24@0:8@?<v@?>16"},
      {"heartbeat", "v16@0:8"},
      {"readStateWithReply:", R"(v24@0:8@?<v@?@\"NSData\">16)"},
  };
  Texts selectors;
  Texts types;
  for (const auto& [selector, type] : messages) {
    selectors.push_back('"' + selector + '"');
    types.push_back('"' + type + '"');
  }

  const Metadata metadata(VENTOLITH_PROTOCOL_METADATA);
  Texts methods = metadata.textsOf("__OBJC_$_PROTOCOL_INSTANCE_METHODS_FanHelperProtocol");
  std::erase_if(methods,
                [](const std::string& text) { return text.starts_with("\"v"); }); // Types without blocks'.
  EXPECT_EQ(methods, selectors);
  EXPECT_EQ(metadata.textsOf("__OBJC_$_PROTOCOL_METHOD_TYPES_FanHelperProtocol"), types);
}

} // namespace
