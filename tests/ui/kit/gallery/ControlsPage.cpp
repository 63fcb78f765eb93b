#include "Gallery.h"

#include "ui/kit/CheckBox.h"
#include "ui/kit/MenuButton.h"
#include "ui/kit/Picker.h"
#include "ui/kit/Popover.h"
#include "ui/kit/SidebarList.h"
#include "ui/kit/Slider.h"
#include "ui/kit/Stepper.h"
#include "ui/kit/Switch.h"
#include "ui/kit/TextField.h"

#include <QApplication>
#include <QEnterEvent>
#include <QGridLayout>
#include <QMouseEvent>
#include <QPainter>

namespace ventolith::ui::gallery {
namespace {

enum class State { normal, hovered, pressed, focused, disabled };
constexpr State states[] = {State::normal, State::hovered, State::pressed, State::focused, State::disabled};

/// Shows what otherwise opens in a window of its own.
class Shot final : public QWidget {
public:
  explicit Shot(QWidget* shown) : shown_(shown) {
    shown->setParent(this);
    shown->setAttribute(Qt::WA_DontShowOnScreen);
    setFixedSize(shown->size());
  }

protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    shown_->render(&painter, QPoint(), QRegion(), DrawChildren);
  }

private:
  QWidget* shown_;
};

void send(QWidget& control, QEvent::Type type, QPoint place) {
  QMouseEvent event(type, place, control.mapToGlobal(place), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&control, &event);
}

QWidget* inState(QWidget* control, State state, QPoint pressAt) {
  control->resize(control->sizeHint());
  QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
  switch (state) {
  case State::normal: break;
  case State::hovered: QApplication::sendEvent(control, &enter); break;
  case State::pressed:
    QApplication::sendEvent(control, &enter);
    send(*control, QEvent::MouseButtonPress, pressAt);
    break;
  case State::focused: control->setProperty("ringed", true); break;
  case State::disabled: control->setEnabled(false); break;
  }
  return control;
}

QWidget* button(const Theme& theme, ButtonKind kind, ButtonSize size, ButtonRole role, const char* title,
                std::optional<Symbol> symbol) {
  auto* made = new Button(theme, kind, size);
  made->setRole(role);
  made->setTitle(QString::fromUtf8(title));
  made->setSymbol(symbol);
  return made;
}

std::function<QWidget*()> buttons(const Theme& theme, ButtonKind kind, ButtonSize size, ButtonRole role,
                                  const char* title, std::optional<Symbol> symbol) {
  return [=, &theme] { return button(theme, kind, size, role, title, symbol); };
}

QWidget* menuButton(const Theme& theme, MenuButtonKind kind, const char* title,
                    std::optional<Symbol> symbol) {
  auto* made = new MenuButton(theme, kind);
  made->setTitle(QString::fromUtf8(title));
  made->setSymbol(symbol);
  return made;
}

QWidget* picker(const Theme& theme, const char* title, int width) {
  auto* made = new Picker(theme);
  made->setPreferredWidth(width);
  made->setTitles({QString::fromUtf8(title)});
  made->setCurrent(0);
  return made;
}

QWidget* slider(const Theme& theme, double value, double step) {
  auto* made = new Slider(theme);
  made->setRange({0, 6, step});
  made->setValue(value);
  made->setFixedWidth(150);
  return made;
}

QWidget* stepper(const Theme& theme, StepperSize size, const char* label) {
  auto* made = new Stepper(theme, size);
  made->setValue(80, QString::fromUtf8(label));
  if (size == StepperSize::small) made->setLabelColor(&Palette::secondaryText);
  return made;
}

template <class Box>
QWidget* box(const Theme& theme, bool isOn) {
  auto* made = new Box(theme);
  made->setChecked(isOn);
  if constexpr (std::is_same_v<Box, CheckBox>) made->setTitle(QStringLiteral("Link fans"));
  return made;
}

QWidget* field(const Theme& theme, const char* text) {
  auto* made = new TextField(theme);
  made->setFixedWidth(150);
  made->setPlaceholderText(QStringLiteral("Name"));
  made->setText(QString::fromUtf8(text));
  return made;
}

QWidget* menuShot(const Theme& theme, std::vector<MenuRow> rows, int chosen, int width) {
  auto* menu = new MenuPanel(theme);
  menu->setMinimumPanelWidth(width);
  menu->setRows(std::move(rows));
  menu->resize(menu->sizeHint());
  menu->setActiveAction(menu->actionOf(chosen));
  return new Shot(menu);
}

QWidget* presetsMenu(const Theme& theme) {
  return menuShot(
      theme,
      {{.title = QStringLiteral("Automatic"), .symbol = Symbol::uturn},
       {.title = QStringLiteral("Full Blast"), .symbol = Symbol::bolt},
       MenuRow::divider(),
       {.title = QStringLiteral("Quiet"), .symbol = Symbol::sliders},
       {.title = QStringLiteral("Balanced"), .symbol = Symbol::sliders, .mark = MenuMark::prefixed},
       {.title = QStringLiteral("Max"), .symbol = Symbol::sliders, .isEnabled = false},
       {.title = QStringLiteral("Studio Session"), .symbol = Symbol::sliders}},
      3, 190);
}

QWidget* cardMenu(const Theme& theme) {
  return menuShot(theme,
                  {{.title = QStringLiteral("Duplicate")},
                   {.title = QStringLiteral("Rename")},
                   {.title = QStringLiteral("Delete"), .role = MenuRole::destructive}},
                  -1, 0);
}

QWidget* pickerMenu(const Theme& theme) {
  return menuShot(theme,
                  {{.title = QStringLiteral("Hottest"), .mark = MenuMark::column},
                   {.title = QStringLiteral("CPU (cluster)")},
                   {.title = QStringLiteral("SSD/Board")}},
                  1, 180);
}

QWidget* popoverShot(const Theme& theme) {
  auto* popover = new Popover(theme, nullptr);
  auto* content = new QWidget;
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(8);
  column->addWidget(field(theme, "Custom"));
  auto* row = new QHBoxLayout;
  row->setSpacing(8);
  row->addStretch();
  row->addWidget(button(theme, ButtonKind::bordered, ButtonSize::normal, ButtonRole::normal, "Cancel", {}));
  row->addWidget(button(theme, ButtonKind::prominent, ButtonSize::normal, ButtonRole::normal, "Save", {}));
  column->addLayout(row);
  popover->setContent(content);
  popover->adjustSize();
  return new Shot(popover);
}

QWidget* sidebar(const Theme& theme) {
  auto* made = new SidebarList(theme);
  made->setRows({{Symbol::gauge, QStringLiteral("Dashboard")},
                 {Symbol::chart, QStringLiteral("Fan Curves")},
                 {Symbol::grid, QStringLiteral("Rules")},
                 {Symbol::stack, QStringLiteral("Presets")},
                 {Symbol::info, QStringLiteral("About")}});
  made->setFixedWidth(200);
  return made;
}

RingShape ringOf(const QWidget& control) {
  if (const auto* its = qobject_cast<const Slider*>(&control))
    return {its->geometryOf().knob(its->value()), 8};
  if (const auto* its = qobject_cast<const Stepper*>(&control)) {
    return {QRectF(its->arrow(1) | its->arrow(-1)), 5};
  }
  if (qobject_cast<const Switch*>(&control) != nullptr) return {QRectF(control.rect()), 9};
  if (qobject_cast<const CheckBox*>(&control) != nullptr) return {QRectF(0, 1, 16, 16), 4.5};
  return {QRectF(control.rect()), control.height() < 28 ? 6.0 : 7.0};
}

/// A page whose focused controls have their rings once the layout has placed them.
class ControlsGround final : public QWidget {
public:
  explicit ControlsGround(const Theme& theme) : theme_(theme) {}

protected:
  void paintEvent(QPaintEvent*) override {
    QPainter(this).fillRect(rect(), theme_.color(&Palette::windowBackground));
  }
  void showEvent(QShowEvent* event) override {
    QWidget::showEvent(event);
    for (QWidget* control : findChildren<QWidget*>()) {
      if (control->property("ringed").toBool()) {
        rings_.push_back(std::make_unique<FocusRing>(theme_, *control, ringOf(*control)));
      }
    }
  }

private:
  const Theme& theme_;
  std::vector<std::unique_ptr<FocusRing>> rings_;
};

std::unique_ptr<QWidget> make(const Theme& theme) {
  using enum ButtonRole;
  const std::function<QWidget*()> rows[] = {
      buttons(theme, ButtonKind::bordered, ButtonSize::normal, normal, "Restore Auto", Symbol::uturnCircle),
      buttons(theme, ButtonKind::bordered, ButtonSize::normal, destructive, "Delete Point",
              Symbol::minusCircle),
      buttons(theme, ButtonKind::prominent, ButtonSize::normal, normal, "Save as Preset…", Symbol::save),
      buttons(theme, ButtonKind::bordered, ButtonSize::small, normal, "Full Blast", Symbol::bolt),
      buttons(theme, ButtonKind::bordered, ButtonSize::small, normal, "Activate", {}),
      buttons(theme, ButtonKind::borderless, ButtonSize::normal, normal, "Open Ventolith", Symbol::window),
      buttons(theme, ButtonKind::borderless, ButtonSize::normal, normal, "", Symbol::bolt),
      buttons(theme, ButtonKind::borderless, ButtonSize::normal, destructive, "", Symbol::trash),
      [&theme] { return menuButton(theme, MenuButtonKind::pullDown, "Balanced", Symbol::sliders); },
      [&theme] { return menuButton(theme, MenuButtonKind::inLine, "Hottest", {}); },
      [&theme] { return menuButton(theme, MenuButtonKind::symbol, "", Symbol::ellipsisCircle); },
      [&theme] { return picker(theme, "Fan 1", 150); },
      [&theme] { return box<CheckBox>(theme, false); },
      [&theme] { return box<CheckBox>(theme, true); },
      [&theme] { return box<Switch>(theme, false); },
      [&theme] { return box<Switch>(theme, true); },
      [&theme] { return slider(theme, 2, 0); },
      [&theme] { return slider(theme, 2, 0.5); },
      [&theme] { return stepper(theme, StepperSize::normal, "85°C"); },
      [&theme] { return stepper(theme, StepperSize::small, "release below 80°C"); },
      [&theme] { return field(theme, ""); },
      [&theme] { return field(theme, "Custom"); },
  };
  auto ground = std::make_unique<ControlsGround>(theme);
  auto* all = new QHBoxLayout(ground.get());
  all->setContentsMargins(0, 0, 20, 0);
  all->setSpacing(20);
  all->addWidget(sidebar(theme));
  auto* grid = new QGridLayout;
  grid->setSpacing(14);
  grid->setContentsMargins(0, 20, 0, 20);
  for (int row = 0; row < static_cast<int>(std::size(rows)); ++row) {
    for (int column = 0; column < static_cast<int>(std::size(states)); ++column) {
      // A press on a button with a menu opens it: only its other states are shown.
      QWidget* control = rows[row]();
      const bool hasMenu = qobject_cast<MenuButton*>(control) != nullptr;
      const State state = hasMenu && states[column] == State::pressed ? State::normal : states[column];
      const QPoint at = qobject_cast<Stepper*>(control) != nullptr
                            ? QPoint(control->sizeHint().width() - 8, 4)
                            : QPoint(control->sizeHint().width() / 2, 8);
      grid->addWidget(inState(control, state, at), row, column, Qt::AlignLeft | Qt::AlignVCenter);
    }
  }
  all->addLayout(grid);
  auto* floating = new QVBoxLayout;
  floating->setSpacing(0);
  for (QWidget* shot : {presetsMenu(theme), pickerMenu(theme), cardMenu(theme), popoverShot(theme)})
    floating->addWidget(shot, 0, Qt::AlignLeft);
  floating->addStretch();
  all->addLayout(floating);
  return ground;
}

} // namespace

Page controlsPage() {
  return {QStringLiteral("controls"), QSize(1420, 960), make};
}

} // namespace ventolith::ui::gallery
