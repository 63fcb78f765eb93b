// How all fans respond.
#include "CurvesFixture.h"

namespace ventolith::ui {
namespace {

TEST_F(CurvesTest, TuningIsShownAsThePlanHasIt) {
  begin();
  model->setTuning(
      {.emaAlpha = 0.67, .hysteresisCelsius = 3.5, .maxDeltaRPMPerTick = 1, .minDwellSeconds = 9});
  show();
  EXPECT_EQ(slider("Hysteresis").value(), 3.5);
  EXPECT_EQ(slider("Response").value(), 0.67);
  EXPECT_TRUE(shows(*view, "3.5 °C"));
  EXPECT_EQ(textsIn(*view).count(QStringLiteral("Fast")), 2);
}

TEST_F(CurvesTest, TheWordOfTheResponseFollowsItsSlider) {
  beginAndShow();
  struct Case {
    double alpha;
    const char* word;
  };
  for (const auto& [alpha, word] : {Case{0, "Slow"}, Case{0.339, "Slow"}, Case{0.34, "Medium"},
                                    Case{0.669, "Medium"}, Case{0.67, "Fast"}}) {
    slider("Response").slideTo(alpha);
    EXPECT_EQ(slider("Response").spokenText(), QString::fromUtf8(word)) << alpha;
  }
}

TEST_F(CurvesTest, SlidersSendWhenTheyAreLetGoOf) {
  begin();
  model->setTuning({.minDwellSeconds = 9});
  show();
  const auto sent = sentCount();
  Slider& response = slider("Response");
  Q_EMIT response.pressBegan();
  Q_EMIT response.valueChanged(0.5);
  turn();
  EXPECT_TRUE(shows(*view, "Medium"));
  EXPECT_EQ(sentCount(), sent);
  Q_EMIT response.pressEnded();
  turn();
  const core::ControlTuning& tuning = model->activePlan().tuning;
  EXPECT_EQ(tuning.emaAlpha, 0.5);
  EXPECT_EQ(tuning.maxDeltaRPMPerTick, 600);
  EXPECT_EQ(tuning.minDwellSeconds, 9);
  EXPECT_EQ(sentCount(), sent + 1);
}

TEST_F(CurvesTest, HysteresisMovesInHalfDegrees) {
  beginAndShow();
  Slider& hysteresis = slider("Hysteresis");
  EXPECT_EQ(hysteresis.range(), (SliderRange{.minimum = 0, .maximum = 6, .step = 0.5}));
  hysteresis.slideTo(4.4);
  EXPECT_TRUE(shows(*view, "4.5 °C"));
  EXPECT_EQ(model->activePlan().tuning.hysteresisCelsius, 4.5);
}

} // namespace
} // namespace ventolith::ui
