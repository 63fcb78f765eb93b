// What the popover of "Save as Preset…" holds: a name, and the choice to save or not.
#pragma once

#include <QWidget>

namespace ventolith::ui {

class TextField;
class Theme;

class SavePresetForm final : public QWidget {
  Q_OBJECT

public:
  explicit SavePresetForm(const Theme& theme, QWidget* parent = nullptr);

  /// The whole name is marked, to be written over.
  void begin(const QString& name);
  [[nodiscard]] TextField* field() const { return field_; }

Q_SIGNALS:
  void nameEdited(const QString& name);
  void submitted();
  void cancelled();

private:
  TextField* field_;
};

} // namespace ventolith::ui
