// What things lie on: a rounded ground with a thin stroke.
#pragma once

#include "ui/kit/Metrics.h"
#include "ui/kit/Symbol.h"
#include "ui/kit/Theme.h"

#include <QWidget>

QT_BEGIN_NAMESPACE
class QHBoxLayout;
class QVBoxLayout;
QT_END_NAMESPACE

namespace ventolith::ui {

class TextLabel;

struct SurfaceStyle {
  ColorRole fill = nullptr;   ///< None: what lies beneath shows.
  ColorRole stroke = nullptr; ///< None: no stroke.
  double radius = metrics::cardRadius;
  double strokeWidth = metrics::hairline;
  bool dashed = false;
  bool castsShadow = false; ///< A preset's card. The shadow takes `Surface::shadowReach` inside the widget.
};

namespace surfaces {
inline constexpr SurfaceStyle card{&Palette::cardBackground, &Palette::cardStroke, metrics::cardRadius};
inline constexpr SurfaceStyle tile{&Palette::tileBackground, &Palette::tileStroke, metrics::tileRadius};
inline constexpr SurfaceStyle sensorRow{&Palette::sensorRowFill, nullptr, metrics::sensorRowRadius};
inline constexpr SurfaceStyle thumbnail{&Palette::thumbBackground, nullptr, metrics::controlRadius};
inline constexpr SurfaceStyle plate{&Palette::accentFaint, nullptr, metrics::plateRadius};
inline constexpr SurfaceStyle presetCard{
    &Palette::cardBackground, &Palette::cardStroke, metrics::cardRadius, metrics::hairline, false, true};
inline constexpr SurfaceStyle activePresetCard{
    &Palette::cardBackground, &Palette::accent, metrics::cardRadius, metrics::activeCardStroke, false, true};
inline constexpr SurfaceStyle dashedCard{
    nullptr, &Palette::newCardStroke, metrics::cardRadius, metrics::dashedStroke, true, false};
inline constexpr SurfaceStyle neutralBanner{&Palette::neutralFill, &Palette::neutralStroke,
                                            metrics::cardRadius};
inline constexpr SurfaceStyle warningBanner{&Palette::warningFill, &Palette::warningStroke,
                                            metrics::cardRadius};
inline constexpr SurfaceStyle error{&Palette::dangerFill, &Palette::dangerStroke, metrics::errorRadius};
} // namespace surfaces

/// For assistive technology a group of what lies on it, which has a name where the surface is given one.
class Surface : public QWidget {
  Q_OBJECT

public:
  Surface(const Theme& theme, const SurfaceStyle& style, QWidget* parent = nullptr);

  void setStyle(const SurfaceStyle& style);

  /// What a surface that casts a shadow keeps free on each side. AdaptiveGrid::setOutset lets the shadows
  /// fall into the gaps.
  static constexpr int shadowReach = 8;
  /// The ground, without the room for a shadow.
  [[nodiscard]] QRectF ground() const;

protected:
  void paintEvent(QPaintEvent*) override;
  [[nodiscard]] const Theme& theme() const { return theme_; }

private:
  const Theme& theme_;
  SurfaceStyle style_;
};

/// A card of a screen: an optional title row, and content below it.
class Card : public Surface {
  Q_OBJECT

public:
  explicit Card(const Theme& theme, QWidget* parent = nullptr);

  /// The title, which is the card's accessible name as well. Called once at the most.
  void setTitle(const QString& title);
  void setTitle(Symbol symbol, const QString& title);

  /// Further widgets of the title's row stand at its far end. There is one after a `setTitle`.
  [[nodiscard]] QHBoxLayout* titleRow() { return titleRow_; }
  [[nodiscard]] QVBoxLayout* content() { return content_; }

private:
  QVBoxLayout* all_;
  QHBoxLayout* titleRow_ = nullptr;
  QVBoxLayout* content_;
};

} // namespace ventolith::ui
