#include "platform/macos/service/LaunchAgentPropertyList.h"

#include <fmt/format.h>

namespace ventolith::platform {

namespace {

/// Text between tags. Control characters, which XML has no way to write, are left out.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char letter : text) {
    const bool isControl = static_cast<unsigned char>(letter) < 0x20 && letter != '\t' && letter != '\n';
    switch (letter) {
    case '&': result += "&amp;"; break;
    case '<': result += "&lt;"; break;
    case '>': result += "&gt;"; break;
    default:
      if (!isControl) result += letter;
    }
  }
  return result;
}

std::string keyed(const std::string& key, const std::string& element) {
  return fmt::format("<key>{}</key>{}\n", escaped(key), element);
}

std::string string(const std::string& text) {
  return fmt::format("<string>{}</string>", escaped(text));
}

std::string array(const std::vector<std::string>& texts) {
  std::string elements;
  for (const auto& text : texts)
    elements += string(text) + '\n';
  return "<array>\n" + elements + "</array>";
}

std::string dictionary(const std::map<std::string, std::string>& texts) {
  std::string entries;
  for (const auto& [key, text] : texts)
    entries += keyed(key, string(text));
  return "<dict>\n" + entries + "</dict>";
}

} // namespace

std::string propertyListOf(const LaunchAgent& agent) {
  return R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
)" + keyed("Label", string(agent.name)) +
         keyed("ProgramArguments", array(agent.arguments)) +
         keyed("MachServices", "<dict>\n" + keyed(agent.name, "<true/>") + "</dict>") +
         keyed("EnvironmentVariables", dictionary(agent.environment)) +
         keyed("StandardOutPath", string(agent.output)) + keyed("StandardErrorPath", string(agent.output)) +
         keyed("RunAtLoad", "<true/>") +
         keyed("KeepAlive", "<dict>\n" + keyed("SuccessfulExit", "<false/>") + "</dict>") +
         keyed("ThrottleInterval", "<integer>1</integer>") + "</dict>\n</plist>\n";
}

} // namespace ventolith::platform
