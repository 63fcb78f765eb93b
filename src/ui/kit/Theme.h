// The look that is in force now: colours, icons, whether things may move. The toolkit's tool tips have it,
// too.
//
// One a process, made by main() beside the application object; it outlives every widget. Widgets are handed
// it, read it whenever they paint, and repaint on `changed()` (`repaints` connects that). On the main thread.
#pragma once

#include "ui/kit/Icons.h"
#include "ui/kit/Palette.h"

#include <QObject>

#include <memory>
#include <optional>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace ventolith::ui {

/// What a system says about its look. What it does not say stays with whoever else speaks.
struct SystemLook {
  std::optional<Appearance> appearance;
  std::optional<QColor> accent;
  std::optional<bool> reduceMotion;
  /// Windows may leave out parts of themselves, for what lies behind. Unless it is told, the screen is asked.
  std::optional<bool> seeThrough;

  bool operator==(const SystemLook&) const = default;
};

class Theme : public QObject {
  Q_OBJECT

public:
  /// Light, with the house's accent, until it is told otherwise.
  explicit Theme(std::unique_ptr<SymbolSource> symbols = std::make_unique<SVGSymbols>(),
                 QObject* parent = nullptr);
  ~Theme() override;

  [[nodiscard]] const Palette& palette() const { return palette_; }
  [[nodiscard]] QColor color(ColorRole role) const { return palette_.*role; }
  [[nodiscard]] Appearance appearance() const { return palette_.appearance; }
  /// Every change of the look is to be instant.
  [[nodiscard]] bool reduceMotion() const { return reduceMotion_; }
  /// A window that opens now may cast a shadow. It asks once each time that it opens.
  [[nodiscard]] bool seeThrough() const;
  [[nodiscard]] const Icons& icons() const { return icons_; }

  /// `duration` (milliseconds), or none when nothing is to move.
  [[nodiscard]] int motion(int duration) const { return reduceMotion_ ? 0 : duration; }

  /// What the toolkit knows of the system (FollowsQt), and what the desktop says itself (FollowsPortal):
  /// where both speak, the desktop holds.
  void setToolkitLook(SystemLook look);
  void setDesktopLook(SystemLook look);
  /// Holds over both: for tests and pictures.
  void force(SystemLook look);

  /// The widget repaints whenever the look changes.
  void repaints(QWidget* widget) const;

Q_SIGNALS:
  /// Colours or the accent differ now, or whether things may move.
  void changed();

private:
  void settle();

  SystemLook toolkit_;
  SystemLook desktop_;
  SystemLook forced_;
  Palette palette_;
  std::optional<QColor> accent_;
  bool reduceMotion_ = false;
  Icons icons_;
};

} // namespace ventolith::ui
