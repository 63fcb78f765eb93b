#include "programs/ventolithctl/StateReport.h"

#include "programs/ventolithctl/TextLayout.h"

#include <fmt/format.h>

#include <utility>

namespace ventolith::ctl {

std::string stateText(const core::ControlState& state) {
  std::string text = state.isHolding ? "holding" : "not holding";
  for (const auto& [fan, mode] : state.perFanMode) {
    const auto target = state.targets.find(fan);
    const auto rpm =
        target == state.targets.end() ? std::string("no target yet") : fmt::format("{} RPM", target->second);
    text += fmt::format("; Fan {}: {}, {}", fan, label(mode), rpm);
  }
  if (state.lastError) text += "; " + printable(*state.lastError);
  return text;
}

void StateReport::show(const core::ControlState& state) {
  if (form_ == Form::json) {
    add(core::encode(state));
  } else if (auto text = stateText(state); text != lastText_) {
    add(text);
    lastText_ = std::move(text);
  }
}

void StateReport::say(const std::string& line) {
  if (form_ == Form::words) add(line);
}

void StateReport::finish() {
  while (!pending_.empty())
    writeNext();
}

void StateReport::add(const std::string& line) {
  if (pending_.size() == mostPending) pending_.pop_front();
  pending_.push_back(line + "\n");
  while (!pending_.empty() && out_.isReady())
    writeNext();
}

void StateReport::writeNext() {
  const std::string line = std::move(pending_.front());
  pending_.pop_front();
  out_.write(line);
  out_.flush();
}

} // namespace ventolith::ctl
