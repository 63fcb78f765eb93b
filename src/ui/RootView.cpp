#include "ui/RootView.h"

#include "ui/AboutView.h"
#include "ui/CurvesView.h"
#include "ui/DashboardView.h"
#include "ui/KitValues.h"
#include "ui/PresetsView.h"
#include "ui/RulesView.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/state/RootTexts.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QSplitter>
#include <QSplitterHandle>

namespace ventolith::ui {

namespace {

QWidget* makeScreen(AppSection section, const ViewContext& context) {
  switch (section) {
  case AppSection::dashboard: return new DashboardView(context);
  case AppSection::curves: return new CurvesView(context);
  case AppSection::rules: return new RulesView(context);
  case AppSection::presets: return new PresetsView(context);
  case AppSection::about: break;
  }
  return new AboutView(context);
}

constexpr int edgeWidth = 1;

/// A line between two columns, which can be moved. Qt lets a pixel to either side of it be caught as well.
class ColumnEdge final : public QSplitterHandle {
public:
  ColumnEdge(const Theme& theme, QSplitter* parent) : QSplitterHandle(Qt::Horizontal, parent), theme_(theme) {
    theme.repaints(this);
  }

protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.fillRect(onPixels(painter, contentsRect()), theme_.palette().separator);
  }

private:
  const Theme& theme_;
};

class Columns final : public QSplitter {
public:
  explicit Columns(const Theme& theme) : QSplitter(Qt::Horizontal), theme_(theme) {
    setHandleWidth(edgeWidth);
    setChildrenCollapsible(false);
  }

protected:
  QSplitterHandle* createHandle() override { return new ColumnEdge(theme_, this); }

private:
  const Theme& theme_;
};

} // namespace

RootView::RootView(const ViewContext& context, QWidget* parent)
    : QWidget(parent), context_(context), sidebar_(makeSidebar()), bar_(new TopBar(context)) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  context.theme.repaints(this);
  auto* columns = new Columns(context.theme);
  columns->addWidget(sidebar_);
  columns->addWidget(makeDetail());
  columns->setStretchFactor(1, 1); // The sidebar keeps its width.
  columns->setSizes({metrics::sidebarWidth - edgeWidth, metrics::windowMinimumWidth - metrics::sidebarWidth});
  auto* all = new QHBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(columns);
  showScreen();
}

SidebarList* RootView::makeSidebar() {
  auto* list = new SidebarList(context_.theme);
  std::vector<SidebarRow> rows;
  for (const AppSection section : allAppSections)
    rows.push_back({symbolFor(symbol(section)), title(section)});
  list->setRows(rows);
  list->setAccessibleName(rootTexts().screens);
  connect(list, &SidebarList::currentRowChanged, this,
          [this](int row) { setSection(allAppSections.at(static_cast<std::size_t>(row))); });
  return list;
}

QWidget* RootView::makeDetail() {
  auto* column = new QWidget;
  detail_ = new QVBoxLayout(column);
  detail_->setContentsMargins(0, 0, 0, 0);
  detail_->setSpacing(0);
  detail_->addWidget(bar_);
  return column;
}

void RootView::setSection(AppSection section) {
  if (section == section_) return;
  section_ = section;
  sidebar_->setCurrentRow(static_cast<int>(section));
  showScreen();
  Q_EMIT sectionChanged(section);
}

/// A screen may be left from within itself, so that it goes later; it hides first, and so ends what the user
/// holds on it.
void RootView::showScreen() {
  if (screen_ != nullptr) {
    screen_->hide();
    screen_->deleteLater();
  }
  bar_->setTitle(title(section_));
  screen_ = makeScreen(section_, context_);
  detail_->addWidget(screen_, 1);
}

void RootView::paintEvent(QPaintEvent*) {
  QPainter(this).fillRect(rect(), context_.theme.palette().windowBackground);
}

} // namespace ventolith::ui
