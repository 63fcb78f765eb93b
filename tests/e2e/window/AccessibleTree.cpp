#include "e2e/window/AccessibleTree.h"

#include "e2e/Patience.h"

#include <stdexcept>

namespace ventolith::e2e {

using nlohmann::json;

namespace {

std::vector<std::string> strings(const json& list) {
  return list.get<std::vector<std::string>>();
}

std::optional<AccessibleValue> valueOf(const json& value) {
  if (value.is_null()) return std::nullopt;
  return AccessibleValue{.now = value.at("now").get<double>(),
                         .least = value.at("least").get<double>(),
                         .most = value.at("most").get<double>(),
                         .step = value.at("step").get<double>()};
}

Accessible elementOf(const json& element) {
  const auto box = element.at("box").get<std::vector<int>>();
  Accessible accessible{.id = element.at("id").get<int>(),
                        .role = element.at("role").get<std::string>(),
                        .name = element.at("name").get<std::string>(),
                        .description = element.at("description").get<std::string>(),
                        .states = strings(element.at("states")),
                        .box = {box.at(0), box.at(1), box.at(2), box.at(3)},
                        .value = valueOf(element.at("value")),
                        .text = std::nullopt,
                        .actions = strings(element.at("actions"))};
  if (element.at("text").is_string()) accessible.text = element.at("text").get<std::string>();
  return accessible;
}

std::vector<Accessible> elementsOf(const json& list) {
  std::vector<Accessible> elements;
  for (const json& element : list)
    elements.push_back(elementOf(element));
  return elements;
}

json requestFor(const std::string& what, const Wanted& wanted) {
  json request = {{"do", what}, {"wanted", {{"states", wanted.states}}}};
  json& says = request["wanted"];
  if (!wanted.role.empty()) says["role"] = wanted.role;
  if (wanted.name) says["name"] = *wanted.name;
  if (wanted.begins) says["begins"] = *wanted.begins;
  if (wanted.description) says["description"] = *wanted.description;
  if (wanted.within) request["within"] = *wanted.within;
  return request;
}

} // namespace

AccessibleTree::AccessibleTree(const Desktop& desktop)
    : requests_(folder_.path() / "requests"),
      peer_(std::make_unique<Program>("/usr/bin/python3",
                                      std::vector<std::string>{VENTOLITH_WINDOW_TESTS "/accessible-tree.py"},
                                      desktop.environment(), Streams{.in = requests_.file()})) {
  static_cast<void>(nextAnswer());
}

Accessible AccessibleTree::find(const Wanted& wanted) {
  return elementOf(ask(requestFor("find", wanted)));
}

void AccessibleTree::waitUntilGone(const Wanted& wanted) {
  static_cast<void>(ask(requestFor("miss", wanted)));
}

std::vector<Accessible> AccessibleTree::all(const Wanted& wanted) {
  return elementsOf(ask(requestFor("find all", wanted)));
}

Accessible AccessibleTree::focused() {
  return elementOf(ask({{"do", "focused"}}));
}

Accessible AccessibleTree::look(const Accessible& element) {
  return elementOf(ask({{"do", "look"}, {"id", element.id}}));
}

std::vector<Accessible> AccessibleTree::children(const Accessible& element) {
  return elementsOf(ask({{"do", "children"}, {"id", element.id}}));
}

void AccessibleTree::act(const Accessible& element, const std::string& action) {
  static_cast<void>(ask({{"do", "act"}, {"id", element.id}, {"action", action}}));
}

void AccessibleTree::setValue(const Accessible& element, double value) {
  static_cast<void>(ask({{"do", "set value"}, {"id", element.id}, {"value", value}}));
}

void AccessibleTree::setText(const Accessible& element, const std::string& text) {
  static_cast<void>(ask({{"do", "set text"}, {"id", element.id}, {"text", text}}));
}

json AccessibleTree::ask(json request) {
  request["seconds"] = (patience / 2).count(); // Less than that of whoever waits for the answer.
  requests_.write(request.dump());
  json answer = nextAnswer();
  if (!answer.contains("ok")) throw std::runtime_error(answer.dump());
  return answer["ok"];
}

json AccessibleTree::nextAnswer() {
  std::vector<std::string> lines;
  waitUntil("an answer of assistive technology", [&] {
    if (!peer_->isRunning()) {
      throw std::runtime_error(
          "python3-pyatspi, which this test needs, does not run (scripts/install-packages test "
          "installs it): " +
          peer_->err());
    }
    lines = peer_->outLines();
    return lines.size() > answered_;
  });
  return json::parse(lines.at(answered_++));
}

} // namespace ventolith::e2e
