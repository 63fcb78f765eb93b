// What assistive technology sees of the programs on a desktop, and does to them.
#pragma once

#include "e2e/CommandPipe.h"
#include "e2e/Program.h"
#include "e2e/window/Desktop.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ventolith::e2e {

struct Box {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  [[nodiscard]] Point centre() const { return {x + width / 2, y + height / 2}; }
  bool operator==(const Box&) const = default;
};

struct AccessibleValue {
  double now = 0;
  double least = 0;
  double most = 0;
  double step = 0;
};

/// As it was when it was looked at.
struct Accessible {
  int id = 0; // The same for the same element.
  std::string role;
  std::string name;
  std::string description;
  std::vector<std::string> states;
  Box box; // On the display.
  std::optional<AccessibleValue> value;
  std::optional<std::string> text;
  std::vector<std::string> actions;

  [[nodiscard]] bool is(const std::string& state) const {
    return std::ranges::find(states, state) != states.end();
  }
  [[nodiscard]] bool canDo(const std::string& action) const {
    return std::ranges::find(actions, action) != actions.end();
  }
};

/// An element that is shown; what is not said is of no matter.
struct Wanted {
  std::string role;
  std::optional<std::string> name = std::nullopt;
  std::optional<std::string> begins = std::nullopt; // Its name does.
  std::optional<std::string> description = std::nullopt;
  std::vector<std::string> states = {}; // It has all of them.
  std::optional<int> within = std::nullopt;
};

class AccessibleTree {
public:
  explicit AccessibleTree(const Desktop& desktop);

  /// Waits for it, as all that follows does for what it asks of.
  [[nodiscard]] Accessible find(const Wanted& wanted);
  void waitUntilGone(const Wanted& wanted);
  /// Those that are there now, each before what it contains.
  [[nodiscard]] std::vector<Accessible> all(const Wanted& wanted);
  /// The innermost element that has the keyboard.
  [[nodiscard]] Accessible focused();

  [[nodiscard]] Accessible look(const Accessible& element);
  [[nodiscard]] std::vector<Accessible> children(const Accessible& element);

  void act(const Accessible& element, const std::string& action);
  void setValue(const Accessible& element, double value);
  void setText(const Accessible& element, const std::string& text);

private:
  [[nodiscard]] nlohmann::json ask(nlohmann::json request);
  [[nodiscard]] nlohmann::json nextAnswer();

  TemporaryFolder folder_;
  CommandPipe requests_;
  std::size_t answered_ = 0;
  std::unique_ptr<Program> peer_;
};

} // namespace ventolith::e2e
