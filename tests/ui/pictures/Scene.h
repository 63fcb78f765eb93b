// A model in one state, among doubles, and the look it is shown in: what a picture is taken of.
#pragma once

#include "../ViewFixture.h"

#include <QString>

namespace ventolith::ui::pictures {

enum class Situation {
  normal,    ///< Two fans, one on a curve by a preset; eight sensors, rules, presets.
  empty,     ///< Nothing that could be listed.
  inactive,  ///< No helper.
  stale,     ///< A helper of another build; fans by hand and at full blast.
  error,     ///< The machine does not open.
  many,      ///< 6 fans in all modes, 64 sensors, many rules and presets.
  longNames, ///< Of everything that has one.
};
inline constexpr std::array allSituations = {Situation::normal,   Situation::empty, Situation::inactive,
                                             Situation::stale,    Situation::error, Situation::many,
                                             Situation::longNames};
[[nodiscard]] QString nameOf(Situation situation);

class Scene final : public ViewTest {
public:
  Scene(Situation situation, Appearance appearance);
  ~Scene() override { views.clear(); }

  /// For views. They go with the scene; `keep` them in it.
  [[nodiscard]] const ViewContext& given() const { return *context; }
  [[nodiscard]] app::AppModel& itsModel() { return *model; }
  [[nodiscard]] const Theme& look() const { return theme; }
  template <class View>
  View& keep(std::unique_ptr<View> view) {
    views.push_back(std::move(view));
    return static_cast<View&>(*views.back());
  }
  /// Everything that is due has happened and is shown.
  void settleDown() { turn(); }

private:
  void TestBody() override {}
  void set(Situation situation);

  std::vector<std::unique_ptr<QWidget>> views;
};

} // namespace ventolith::ui::pictures
