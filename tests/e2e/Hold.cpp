#include "e2e/Hold.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <stdexcept>

namespace ventolith::e2e {

namespace {

std::string planText(const std::map<int, int>& rpm) {
  nlohmann::json plan = {
      {"fans", nlohmann::json::array()},
      {"rules", nlohmann::json::array()},
      {"tuning",
       {{"emaAlpha", 0.3}, {"hysteresisCelsius", 2}, {"maxDeltaRPMPerTick", 400}, {"minDwellSeconds", 3}}},
  };
  for (const auto& [fan, speed] : rpm)
    plan["fans"].push_back({{"fanID", fan}, {"mode", {{"fixedRPM", {{"_0", speed}}}}}});
  return plan.dump();
}

std::vector<std::string> arguments(const std::filesystem::path& plan,
                                   const std::vector<std::string>& options) {
  std::vector<std::string> arguments = {"hold", "--plan", plan.string()};
  arguments.insert(arguments.end(), options.begin(), options.end());
  return arguments;
}

/// In words or in JSON.
bool saysHolding(const std::string& line) {
  return line.starts_with("holding") || line.find(R"("isHolding":true)") != std::string::npos;
}

} // namespace

Hold::Hold(const Environment& machine, const std::map<int, int>& rpm, const std::vector<std::string>& options,
           const Streams& streams)
    : program_("ventolithctl", arguments(folder_.write("plan.json", planText(rpm)), options), machine,
               streams) {}

void Hold::waitUntilHolding() {
  waitWhileRunning("held fans", [this] { return std::ranges::any_of(lines(), saysHolding); });
}

void Hold::waitUntilSaid(const std::string& text) {
  waitWhileRunning(text, [this, &text] { return hasSaid(text); });
}

bool Hold::hasSaid(const std::string& text) const {
  return program_.out().find(text) != std::string::npos || program_.err().find(text) != std::string::npos;
}

void Hold::waitWhileRunning(const std::string& what, const std::function<bool()>& holds) {
  waitUntil(what, [&] {
    const bool wasRunning = isRunning();
    if (holds()) return true;
    if (!wasRunning)
      throw std::runtime_error("hold ended before: " + what + "\n" + program_.out() + program_.err());
    return false;
  });
}

} // namespace ventolith::e2e
