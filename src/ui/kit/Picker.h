// One of several, chosen from a menu.
#pragma once

#include "ui/kit/MenuButton.h"

#include <QStringList>

#include <optional>
#include <utility>
#include <vector>

namespace ventolith::ui {

/// Shows the chosen entry's title, or none. By position; ChoicePicker is the one with identifiers.
class Picker : public MenuButton {
  Q_OBJECT

public:
  explicit Picker(const Theme& theme, QWidget* parent = nullptr);

  /// What it is about ("Fan"): the spoken name, as the value is the chosen title.
  void setLabel(const QString& label) { setAccessibleName(label); }
  /// As wide as this, or as its widest title needs, up to its maximum width.
  void setPreferredWidth(int width);

  void setTitles(const QStringList& titles);
  [[nodiscard]] const QStringList& titles() const { return titles_; }
  /// No signal. None is an empty picker; so is a position that no title has.
  void setCurrent(std::optional<int> position);
  [[nodiscard]] std::optional<int> current() const { return current_; }

  [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
  /// The user chose it; it is shown already. Said for another choice only.
  void picked(int position);

protected:
  [[nodiscard]] int currentRow() const override { return current_.value_or(-1); }

private:
  [[nodiscard]] std::vector<MenuRow> makeRows();
  void pick(int position);

  QStringList titles_;
  std::optional<int> current_;
  int preferredWidth_ = 0;
};

/// A picker of values that are told apart by an identifier, such as an optional sensor's.
template <class ID>
class ChoicePicker final : public Picker {
public:
  struct Choice {
    ID id;
    QString title;

    bool operator==(const Choice&) const = default;
  };

  using Picker::Picker;

  /// The chosen identifier stays chosen, wherever its entry stands now. No signal.
  void setChoices(std::vector<Choice> choices) {
    if (choices == choices_) return;
    choices_ = std::move(choices);
    QStringList titles;
    for (const Choice& choice : choices_)
      titles.append(choice.title);
    setTitles(titles);
    settle();
  }
  /// One that no entry has shows as none, until an entry has it. No signal.
  void setChosen(std::optional<ID> id) {
    chosen_ = std::move(id);
    settle();
  }
  [[nodiscard]] const std::optional<ID>& chosen() const { return chosen_; }
  /// `heard` is called with what the user chooses, `receiver` permitting.
  template <class Heard>
  void onChosen(const QObject* receiver, Heard heard) {
    connect(this, &Picker::picked, receiver, [this, heard = std::move(heard)](int position) {
      chosen_ = choices_[static_cast<std::size_t>(position)].id;
      const ID id = *chosen_;
      heard(id);
    });
  }

private:
  void settle() {
    std::optional<int> position;
    for (std::size_t at = 0; at < choices_.size() && !position; ++at) {
      if (chosen_ && choices_[at].id == *chosen_) position = static_cast<int>(at);
    }
    setCurrent(position);
  }

  std::vector<Choice> choices_;
  std::optional<ID> chosen_;
};

} // namespace ventolith::ui
