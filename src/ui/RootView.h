// The content of the main window: the list of screens, and the one that is chosen under the bar of all.
#pragma once

#include "ui/ModelView.h"
#include "ui/TopBar.h"
#include "ui/kit/SidebarList.h"
#include "ui/state/AppSection.h"

QT_BEGIN_NAMESPACE
class QVBoxLayout;
QT_END_NAMESPACE

namespace ventolith::ui {

/// Begins on the dashboard. A screen is made anew on each visit: what was begun on it and not given to the
/// model is gone.
class RootView final : public QWidget {
  Q_OBJECT

public:
  explicit RootView(const ViewContext& context, QWidget* parent = nullptr);

  [[nodiscard]] AppSection section() const { return section_; }
  void setSection(AppSection section);

Q_SIGNALS:
  void sectionChanged(ventolith::ui::AppSection section);

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  [[nodiscard]] SidebarList* makeSidebar();
  [[nodiscard]] QWidget* makeDetail();
  void showScreen();

  const ViewContext& context_;
  AppSection section_ = AppSection::dashboard;
  SidebarList* sidebar_;
  TopBar* bar_;
  QVBoxLayout* detail_ = nullptr;
  QWidget* screen_ = nullptr;
};

} // namespace ventolith::ui
