// Text: the roles of the design, and how a line of a role is set, measured and drawn.
//
// The face is the application's own font (the system's), so that pictures may use another. Heights are the
// design's line heights, not the face's: a row keeps its height whichever face the system has.
#pragma once

#include "ui/kit/Palette.h"

#include <QFont>
#include <QRectF>
#include <QString>
#include <QStringList>

QT_BEGIN_NAMESPACE
class QPainter;
QT_END_NAMESPACE

namespace ventolith::ui {

enum class TextRole {
  screenTitle,
  windowTitle,
  appName,
  presetName,
  cardTitle,
  body,
  bodyStrong,
  sensorName,
  button,
  buttonProminent,
  smallButton,
  secondary, // The status line, help.
  caption,
  badge,
  badgeSmall, // The panel's.
  keyword,    // WHEN, THEN set.
  rpm,
  rpmUnit,
  reading,
  panelReading,
  axisLabel,
  tick,
  stepperLabel,
  stepperLabelSmall,
  notices
};

/// How wide digits are. `equal` wherever a number changes in place: the text does not move with it.
enum class Digits { natural, equal };

struct TextStyle {
  int pixels = 13; ///< Size of the type.
  int line = 18;   ///< Height of a line.
  QFont::Weight weight = QFont::Normal;
  double tracking = 0; ///< Pixels between two characters, beyond the face's own.
  bool fixedPitch = false;
  Digits digits = Digits::natural; ///< What the role asks for by itself.
};

[[nodiscard]] const TextStyle& styleOf(TextRole role);
/// The application's font in that role. Follows a change of the application's font.
[[nodiscard]] QFont fontOf(TextRole role);

/// Makes the family that the environment's VENTOLITH_UI_FONT names the application's font; without the
/// variable the system's stays. Called once, when the application object stands.
void applyRequestedFont();

/// A text in one role, measured and drawn the same way everywhere. A value: cheap to make and to throw away.
class TextLine {
public:
  TextLine(QString text, TextRole role);
  TextLine(QString text, TextRole role, Digits digits);

  [[nodiscard]] double width() const;
  [[nodiscard]] int height() const { return styleOf(role_).line; }
  /// From the top of the line, as high as the role says, to the baseline.
  [[nodiscard]] double baseline() const;
  /// The same, shortened with "…" until it is at most `width` wide.
  [[nodiscard]] TextLine elided(double width) const;
  [[nodiscard]] const QString& text() const { return text_; }

  /// On one line, in the middle of the height of `rect`, aligned as `alignment`'s horizontal part says
  /// (leading without one). Not clipped, not shortened.
  void paint(QPainter& painter, const QRectF& rect, const QColor& color,
             Qt::Alignment alignment = Qt::AlignLeading) const;

private:
  QString text_;
  TextRole role_;
  Digits digits_;
};

/// The lines that `text` takes at `width`, broken between words, and at its own line feeds.
[[nodiscard]] QStringList wrapped(const QString& text, TextRole role, double width);

} // namespace ventolith::ui
