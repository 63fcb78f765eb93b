#include "ui/kit/Badge.h"
#include "ui/kit/IconView.h"
#include "ui/kit/Notices.h"
#include "ui/kit/TextLabel.h"

#include <QAccessible>
#include <QApplication>
#include <QBoxLayout>
#include <QHelpEvent>
#include <QPushButton>
#include <QTextDocument>
#include <QToolTip>

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

const QString longText = QStringLiteral(
    "Ventolith's background helper isn't answering a version check — it may still be running older code.");

// Counts what a widget is asked to lay out anew.
struct LayoutRequests final : QObject {
  explicit LayoutRequests(QWidget& widget) { widget.installEventFilter(this); }
  bool eventFilter(QObject*, QEvent* event) override {
    count += event->type() == QEvent::LayoutRequest ? 1 : 0;
    return false;
  }
  int count = 0;
};

QAccessibleInterface* accessible(QWidget& widget) {
  return QAccessible::queryAccessibleInterface(&widget);
}

TEST(TextLabel, ALineIsAsHighAsItsRoleSaysWhateverItsText) {
  const Theme theme;
  TextLabel label(theme, TextRole::reading, &Palette::primaryText);
  for (const QString& text : {QString(), QStringLiteral("77.3°C"), QStringLiteral("Ågjpq")}) {
    label.setText(text);
    EXPECT_EQ(label.sizeHint().height(), 20);
  }
}

TEST(TextLabel, AReadingKeepsItsWidthWhileItChanges) {
  const Theme theme;
  TextLabel label(theme, TextRole::reading, &Palette::primaryText);
  label.setText(QStringLiteral("77.3°C"));
  const QSize before = label.sizeHint();
  label.setText(QStringLiteral("11.1°C"));
  EXPECT_EQ(label.sizeHint(), before);
}

TEST(TextLabel, AReadingOfTheSameWidthAsksForNoNewLayout) {
  const Theme theme;
  QWidget parent;
  auto* row = new QHBoxLayout(&parent);
  auto* label = new TextLabel(theme, TextRole::reading, &Palette::primaryText);
  label->setText(QStringLiteral("77.3°C"));
  row->addWidget(label);
  parent.resize(parent.sizeHint());
  parent.show();
  QApplication::processEvents();
  LayoutRequests requests(parent);
  label->setText(QStringLiteral("11.1°C"));
  QApplication::processEvents();
  EXPECT_EQ(requests.count, 0);
  label->setText(QStringLiteral("111.1°C"));
  QApplication::processEvents();
  EXPECT_EQ(requests.count, 1);
  EXPECT_EQ(label->width(), label->sizeHint().width());
}

TEST(TextLabel, AWidthThatWasSetFromOutsideStays) {
  const Theme theme;
  TextLabel label(theme, TextRole::secondary, &Palette::secondaryText);
  label.setFixedWidth(66);
  label.setText(QStringLiteral("WHEN"));
  EXPECT_EQ(label.minimumWidth(), 66);
  EXPECT_EQ(label.maximumWidth(), 66);
}

TEST(TextLabel, ATextThatIsNoLongerWholeCanShrinkAgain) {
  const Theme theme;
  TextLabel label(theme, TextRole::body, &Palette::primaryText);
  label.setText(longText);
  label.setFit(Fit::elided);
  label.resize(50, 18);
  EXPECT_EQ(label.width(), 50);
}

TEST(TextLabel, AWholeTextNeverShrinksAnElidedOneDoes) {
  const Theme theme;
  TextLabel label(theme, TextRole::sensorName, &Palette::primaryText);
  label.setText(longText);
  EXPECT_EQ(label.minimumSizeHint().width(), label.sizeHint().width());
  label.setFit(Fit::elided);
  EXPECT_LT(label.minimumSizeHint().width(), 40);
  EXPECT_EQ(label.minimumSizeHint().height(), 17);
}

TEST(TextLabel, AShortenedTextIsTheToolTipLetterForLetter) {
  const Theme theme;
  TextLabel label(theme, TextRole::body, &Palette::primaryText);
  label.setFit(Fit::elided);
  label.resize(40, 18);
  const auto tipOf = [&](const QString& text) {
    label.setText(text);
    QHelpEvent event(QEvent::ToolTip, QPoint(2, 2), QPoint(2, 2));
    QApplication::sendEvent(&label, &event);
    QTextDocument shown;
    const QString tip = QToolTip::text();
    Qt::mightBeRichText(tip) ? shown.setHtml(tip) : shown.setPlainText(tip);
    QToolTip::hideText();
    return shown.toPlainText();
  };
  EXPECT_EQ(tipOf(longText), longText);
  const QString markup = QStringLiteral("<b>The fan</b> at the far left & behind");
  EXPECT_EQ(tipOf(markup), markup);
}

TEST(TextLabel, AWrappedTextTakesTheLinesThatItNeeds) {
  const Theme theme;
  TextLabel label(theme, TextRole::secondary, &Palette::secondaryText);
  label.setFit(Fit::wrapped);
  label.setText(longText);
  EXPECT_EQ(label.heightForWidth(2000), 16);
  EXPECT_EQ(label.heightForWidth(200) % 16, 0);
  EXPECT_GT(label.heightForWidth(200), 16);
  label.setText(QStringLiteral("Short"));
  EXPECT_EQ(label.heightForWidth(200), 16);
}

TEST(TextLabel, AWrappedTextIsNeverWiderThanItMayBe) {
  const Theme theme;
  TextLabel label(theme, TextRole::body, &Palette::secondaryText);
  label.setFit(Fit::wrapped);
  label.setMaximumWidth(360);
  label.setText(longText);
  EXPECT_EQ(label.sizeHint().width(), 360);
  EXPECT_EQ(label.heightForWidth(2000), label.heightForWidth(360));
}

TEST(TextLabel, AssistiveTechnologyReadsItAsText) {
  const Theme theme;
  TextLabel label(theme, TextRole::body, &Palette::primaryText);
  label.setText(longText);
  EXPECT_EQ(accessible(label)->role(), QAccessible::StaticText);
  EXPECT_EQ(accessible(label)->text(QAccessible::Name), longText);
}

TEST(TextLabel, AColourOfNoRoleHoldsUntilARoleIsSet) {
  const Theme theme;
  TextLabel label(theme, TextRole::rpm, &Palette::primaryText);
  label.setText(QStringLiteral("■"));
  const auto darkest = [&] {
    const QImage picture = label.grab().toImage();
    QColor found = Qt::white;
    for (int y = 0; y < picture.height(); ++y)
      for (int x = 0; x < picture.width(); ++x)
        if (picture.pixelColor(x, y).lightness() < found.lightness()) found = picture.pixelColor(x, y);
    return found;
  };
  label.setColor(QColor::fromRgb(0x102030));
  EXPECT_EQ(darkest(), QColor::fromRgb(0x102030));
  label.setColor(&Palette::primaryText);
  EXPECT_EQ(darkest(), theme.palette().primaryText);
}

TEST(Badge, HasTheHeightsOfTheDesignAndSaysItsWord) {
  const Theme theme;
  Badge normal(theme);
  Badge small(theme, BadgeSize::small);
  for (Badge* badge : {&normal, &small})
    badge->setContent(Symbol::chart, QStringLiteral("Curve"), BadgeStyle::strong);
  EXPECT_EQ(normal.sizeHint().height(), 22);
  EXPECT_EQ(small.sizeHint().height(), 18);
  EXPECT_LT(small.sizeHint().width(), normal.sizeHint().width());
  EXPECT_EQ(accessible(normal)->text(QAccessible::Name), QStringLiteral("Curve"));
}

TEST(Badge, TheOneThatSaysActiveHasALargerMarkAndMoreRoom) {
  const Theme theme;
  Badge badge(theme);
  badge.setContent(Symbol::checkmark, QStringLiteral("Active"), BadgeStyle::strong);
  const QSize strong = badge.sizeHint();
  badge.setContent(Symbol::checkmark, QStringLiteral("Active"), BadgeStyle::active);
  EXPECT_EQ(badge.sizeHint(), strong + QSize(2, 0));
}

TEST(Badge, OnlyTheQuietOneIsNotInTheAccent) {
  const Theme theme;
  Badge badge(theme);
  const auto inkOf = [&](BadgeStyle style) {
    badge.setContent(Symbol::bolt, QStringLiteral("Full Blast"), style);
    badge.resize(badge.sizeHint());
    constexpr int scale = 4;
    QImage picture(badge.size() * scale, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(scale);
    badge.render(&picture);
    return picture.pixelColor(scale * 13 + 2, scale * 11 - 2); // The middle of the bolt.
  };
  EXPECT_EQ(inkOf(BadgeStyle::strong), theme.palette().accent);
  EXPECT_EQ(inkOf(BadgeStyle::active), theme.palette().accent);
  EXPECT_EQ(inkOf(BadgeStyle::quiet), theme.palette().secondaryText);
}

TEST(Card, ItsTitleIsItsName) {
  const Theme theme;
  Card card(theme);
  card.setTitle(Symbol::fan, QStringLiteral("Fans"));
  EXPECT_EQ(accessible(card)->text(QAccessible::Name), QStringLiteral("Fans"));
}

TEST(Surface, IsAGroupForAssistiveTechnologyAndAnErrorIsAnAlert) {
  const Theme theme;
  Surface tile(theme, surfaces::tile);
  Card card(theme);
  ErrorStrip strip(theme);
  EXPECT_EQ(accessible(tile)->role(), QAccessible::Grouping);
  EXPECT_EQ(accessible(card)->role(), QAccessible::Grouping);
  EXPECT_EQ(accessible(strip)->role(), QAccessible::AlertMessage);
}

TEST(Card, ContentStandsBelowTheTitleInsideThePadding) {
  const Theme theme;
  Card card(theme);
  card.setTitle(Symbol::fan, QStringLiteral("Fans"));
  auto* content = new QWidget;
  content->setMinimumHeight(30);
  card.content()->addWidget(content);
  card.resize(300, card.sizeHint().height());
  card.layout()->activate();
  EXPECT_EQ(card.sizeHint().height(), 16 + 18 + 12 + 30 + 16);
  EXPECT_EQ(content->geometry(), QRect(16, 46, 268, 30));
}

TEST(ErrorStrip, IsThereOnlyWhileThereIsSomethingToSay) {
  const Theme theme;
  QWidget parent;
  ErrorStrip strip(theme, &parent);
  EXPECT_TRUE(strip.isHidden());
  strip.setText(QStringLiteral("The helper refused."));
  EXPECT_FALSE(strip.isHidden());
  EXPECT_EQ(accessible(strip)->text(QAccessible::Name), QStringLiteral("The helper refused."));
  strip.setText(QString());
  EXPECT_TRUE(strip.isHidden());
}

TEST(Banner, SaysItsTitleAndTextToAssistiveTechnology) {
  const Theme theme;
  Banner banner(theme, Banner::Kind::neutral, Symbol::boltSlash);
  banner.setText(QStringLiteral("Fan control isn't active yet"), longText);
  EXPECT_EQ(accessible(banner)->text(QAccessible::Name), QStringLiteral("Fan control isn't active yet"));
  EXPECT_EQ(accessible(banner)->text(QAccessible::Description), longText);
}

TEST(Banner, ALongTextWrapsBesideAButtonThatNeverShrinks) {
  const Theme theme;
  Banner banner(theme, Banner::Kind::neutral, Symbol::boltSlash);
  banner.setText(QStringLiteral("Title"), longText);
  auto* button = new QPushButton;
  button->setFixedSize(90, 28);
  banner.setButton(button, Banner::ButtonPlace::beside);
  const int wide = banner.layout()->heightForWidth(1200);
  const int narrow = banner.layout()->heightForWidth(400);
  EXPECT_GT(narrow, wide);
  banner.resize(400, narrow);
  banner.layout()->activate();
  EXPECT_EQ(button->geometry().right() + 1, 400 - 16);
  EXPECT_EQ(button->size(), QSize(90, 28));
  EXPECT_NEAR(button->geometry().center().y(), narrow / 2, 1);
}

TEST(EmptyState, EverythingStandsInTheMiddle) {
  const Theme theme;
  EmptyState empty(theme, Symbol::boltClock);
  empty.setText(QStringLiteral("No rules yet"), longText);
  auto* button = new QPushButton;
  button->setFixedSize(150, 28);
  empty.setButton(button);
  empty.resize(760, 500);
  empty.layout()->activate();
  EXPECT_NEAR(button->geometry().center().x(), 380, 1);
  const auto labels = empty.findChildren<TextLabel*>();
  ASSERT_EQ(labels.size(), 2);
  EXPECT_LE(labels[1]->width(), 360);
  EXPECT_EQ(labels[1]->height(), labels[1]->heightForWidth(labels[1]->width()));
  EXPECT_EQ(button->y(), labels[1]->geometry().bottom() + 1 + 16);
}

TEST(Divider, IsOnePixelOfTheSeparatorsColour) {
  const Theme theme;
  Divider divider(theme, Qt::Horizontal);
  divider.resize(30, 1);
  EXPECT_EQ(divider.height(), 1);
  EXPECT_EQ(divider.grab().toImage().pixelColor(15, 0), theme.palette().separator);
}

} // namespace
} // namespace ventolith::ui
