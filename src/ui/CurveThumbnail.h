// The small picture on a preset's card.
#pragma once

#include "ui/state/PresetAppearance.h"

#include <QLabel>

namespace ventolith::ui {

class Theme;

/// A plate of 120 by 44 with the curve of a preset's first fan, or with a word where that has none. It is
/// spoken of as that word.
class CurveThumbnail final : public QLabel {
  Q_OBJECT

public:
  explicit CurveThumbnail(const Theme& theme, QWidget* parent = nullptr);

  void setContent(const PresetThumbnail& content);
  [[nodiscard]] const PresetThumbnail& content() const { return content_; }

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  void paintCurve(QPainter& painter) const;
  void paintWord(QPainter& painter) const;

  const Theme& theme_;
  PresetThumbnail content_;
};

} // namespace ventolith::ui
