// The screen "Rules": the active plan's rules as sentences, in the order in which they are tried.
#pragma once

#include "ui/ModelView.h"

namespace ventolith::ui {

class Button;
class EmptyState;
class RulesList;
class ScrollArea;

class RulesView final : public ModelView {
  Q_OBJECT

public:
  explicit RulesView(const ViewContext& context, QWidget* parent = nullptr);

  [[nodiscard]] Button& newRuleButton() { return *newRuleButton_; }
  [[nodiscard]] Button& createFirstRuleButton() { return *createFirstRuleButton_; }
  [[nodiscard]] QWidget& emptyState();
  [[nodiscard]] RulesList& rulesList() { return *rulesList_; }

protected:
  void refresh(Fields changed) override;

private:
  [[nodiscard]] QWidget* header();
  void makeEmptyState();
  void makeList();
  void addRule() const;
  void bringIntoView(const QRect& part);

  // Children.
  Button* newRuleButton_;
  EmptyState* emptyState_;
  Button* createFirstRuleButton_;
  ScrollArea* scroll_;
  RulesList* rulesList_;
};

} // namespace ventolith::ui
