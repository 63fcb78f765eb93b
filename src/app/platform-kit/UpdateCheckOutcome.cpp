#include "app/platform-kit/UpdateCheckOutcome.h"

#include "core/Visitor.h"

namespace ventolith::app {

using Outcome = UpdateCheckOutcome;

const Outcome Outcome::checking{Plain::checking};
const Outcome Outcome::upToDate{Plain::upToDate};
const Outcome Outcome::cancelled{Plain::cancelled};
const Outcome Outcome::timedOut{Plain::timedOut};

Outcome Outcome::updateAvailable(std::string version) {
  return {UpdateAvailable{std::move(version)}};
}

Outcome Outcome::failed(std::string reason) {
  return {Failed{std::move(reason)}};
}

Outcome Outcome::unavailable(std::string reason) {
  return {Unavailable{std::move(reason)}};
}

namespace {

struct PlainTexts {
  std::string_view message;
  std::string_view shortLabel;
  double displaySeconds;
};

PlainTexts plainTexts(Outcome::Plain outcome) {
  switch (outcome) {
  case Outcome::Plain::checking: return {"Checking for updates…", "Checking…", 0.0};
  case Outcome::Plain::upToDate: return {"You're up to date.", "Up to date", 4.0};
  case Outcome::Plain::cancelled: return {"Update check cancelled.", "Check for Updates", 0.0};
  case Outcome::Plain::timedOut:
    return {"The update service did not respond. Please try again.", "No response", 6.0};
  }
  return {};
}

} // namespace

bool Outcome::isTerminal() const {
  return *this != checking;
}

std::string Outcome::message() const {
  return std::visit(
      core::Visitor{
          [](const UpdateAvailable& update) { return "Update available: " + update.version + "."; },
          [](const Failed& failed) { return "Update check failed: " + failed.reason; },
          [](const Unavailable& unavailable) { return unavailable.reason; },
          [](const Plain& plain) { return std::string(plainTexts(plain).message); },
      },
      value);
}

std::string_view Outcome::shortLabel() const {
  using Text = std::string_view;
  return std::visit(core::Visitor{
                        [](const UpdateAvailable&) -> Text { return "Update available"; },
                        [](const Failed&) -> Text { return "Check failed"; },
                        [](const Unavailable&) -> Text { return "Unavailable"; },
                        [](const Plain& plain) { return plainTexts(plain).shortLabel; },
                    },
                    value);
}

double Outcome::transientDisplayDuration() const {
  return std::visit(core::Visitor{
                        [](const UpdateAvailable&) { return 4.0; },
                        [](const Failed&) { return 6.0; },
                        [](const Unavailable&) { return 6.0; },
                        [](const Plain& plain) { return plainTexts(plain).displaySeconds; },
                    },
                    value);
}

bool Outcome::isCheckButtonDisabled(const std::optional<Outcome>& outcome, bool updatesAvailable) {
  return !updatesAvailable || outcome == checking;
}

std::string_view Outcome::checkButtonLabel(const std::optional<Outcome>& outcome) {
  return outcome ? outcome->shortLabel() : idleButtonLabel;
}

std::string Outcome::detailMessage(const std::optional<Outcome>& displayed, std::string_view idleFallback) {
  return displayed ? displayed->message() : std::string(idleFallback);
}

bool Outcome::shouldClearOutcome(const Outcome& scheduledFor, std::uint64_t scheduledGeneration,
                                 std::uint64_t currentGeneration,
                                 const std::optional<Outcome>& currentOutcome) {
  return scheduledGeneration == currentGeneration && currentOutcome == scheduledFor;
}

} // namespace ventolith::app
