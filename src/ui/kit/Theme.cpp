#include "ui/kit/Theme.h"

#include "ui/kit/SeeThrough.h"
#include "ui/kit/ToolTips.h"

#include <QWidget>

namespace ventolith::ui {
namespace {

// The first that says anything.
template <class Value>
std::optional<Value> firstOf(const std::optional<Value>& one, const std::optional<Value>& two,
                             const std::optional<Value>& three) {
  if (one) return one;
  return two ? two : three;
}

} // namespace

Theme::Theme(std::unique_ptr<SymbolSource> symbols, QObject* parent)
    : QObject(parent), palette_(Palette::of(Appearance::light)), icons_(std::move(symbols)) {
  dressToolTips(palette_);
}

Theme::~Theme() = default;

void Theme::setToolkitLook(SystemLook look) {
  toolkit_ = look;
  settle();
}

void Theme::setDesktopLook(SystemLook look) {
  desktop_ = look;
  settle();
}

void Theme::force(SystemLook look) {
  forced_ = look;
  settle();
}

void Theme::settle() {
  const auto appearance =
      firstOf(forced_.appearance, desktop_.appearance, toolkit_.appearance).value_or(Appearance::light);
  const auto accent = firstOf(forced_.accent, desktop_.accent, toolkit_.accent);
  const bool still =
      firstOf(forced_.reduceMotion, desktop_.reduceMotion, toolkit_.reduceMotion).value_or(false);
  if (appearance == palette_.appearance && accent == accent_ && still == reduceMotion_) return;
  palette_ = Palette::of(appearance, accent);
  accent_ = accent;
  reduceMotion_ = still;
  dressToolTips(palette_);
  Q_EMIT changed();
}

bool Theme::seeThrough() const {
  const auto told = firstOf(forced_.seeThrough, desktop_.seeThrough, toolkit_.seeThrough);
  return told ? *told : screenShowsThroughWindows();
}

void Theme::repaints(QWidget* widget) const {
  connect(this, &Theme::changed, widget, qOverload<>(&QWidget::update));
}

} // namespace ventolith::ui
