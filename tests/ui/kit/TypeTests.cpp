#include "Pictures.h"

#include "ui/kit/Type.h"

#include <QFontMetricsF>
#include <QGuiApplication>

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

TEST(Type, RolesHaveTheSizesOfTheDesign) {
  const struct {
    TextRole role;
    int pixels, line;
    QFont::Weight weight;
  } table[] = {
      {TextRole::screenTitle, 20, 26, QFont::DemiBold},  {TextRole::windowTitle, 15, 20, QFont::DemiBold},
      {TextRole::body, 13, 18, QFont::Normal},           {TextRole::sensorName, 13, 17, QFont::Medium},
      {TextRole::secondary, 12, 16, QFont::Normal},      {TextRole::caption, 11, 15, QFont::Normal},
      {TextRole::badge, 11, 14, QFont::DemiBold},        {TextRole::badgeSmall, 10, 12, QFont::DemiBold},
      {TextRole::rpm, 26, 28, QFont::DemiBold},          {TextRole::reading, 15, 20, QFont::DemiBold},
      {TextRole::panelReading, 20, 24, QFont::DemiBold}, {TextRole::notices, 11, 16, QFont::Normal}};
  for (const auto& [role, pixels, line, weight] : table) {
    EXPECT_EQ(fontOf(role).pixelSize(), pixels);
    EXPECT_EQ(fontOf(role).weight(), weight);
    EXPECT_EQ(TextLine(QString(), role).height(), line);
  }
}

TEST(Type, EqualDigitsMakeEveryNumberOfAsManyDigitsEquallyWide) {
  for (const TextRole role : {TextRole::rpm, TextRole::reading, TextRole::body, TextRole::caption}) {
    const double width = TextLine(QStringLiteral("0000"), role, Digits::equal).width();
    for (const char16_t digit : std::u16string(u"123456789"))
      EXPECT_NEAR(TextLine(QString(4, QChar(digit)), role, Digits::equal).width(), width, 1e-6);
  }
}

TEST(Type, EqualDigitsAreAsWideAsTheWidest) {
  const QFontMetricsF metrics(fontOf(TextRole::reading)); // A font may have equal digits of its own for it.
  double widest = 0;
  for (const char16_t digit : std::u16string(u"0123456789"))
    widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
  EXPECT_NEAR(TextLine(QStringLiteral("1"), TextRole::reading, Digits::equal).width(), widest, 1e-6);
}

TEST(Type, LettersBetweenEqualDigitsKeepTheirWidth) {
  const QFontMetricsF metrics(fontOf(TextRole::reading));
  const double digits = TextLine(QStringLiteral("773"), TextRole::reading).width();
  const double others =
      metrics.horizontalAdvance(QStringLiteral(".")) + metrics.horizontalAdvance(QStringLiteral("°C"));
  EXPECT_NEAR(TextLine(QStringLiteral("77.3°C"), TextRole::reading).width(), digits + others, 1e-6);
}

TEST(Type, NaturalDigitsAreTheFontsOwn) {
  const TextLine line(QStringLiteral("1111"), TextRole::body);
  EXPECT_NEAR(line.width(), QFontMetricsF(fontOf(TextRole::body)).horizontalAdvance(QStringLiteral("1111")),
              1e-6);
}

TEST(Type, AShortenedLineFitsAndSaysThatItIsShort) {
  for (const Digits digits : {Digits::natural, Digits::equal}) {
    const TextLine line(QStringLiteral("Sensor 1111111 of 1111111"), TextRole::body, digits);
    for (double width = 20; width < line.width(); width += 7) {
      const TextLine shorter = line.elided(width);
      EXPECT_LE(shorter.width(), width);
      EXPECT_TRUE(shorter.text().endsWith(QChar(0x2026))) << shorter.text().toStdString();
    }
    EXPECT_EQ(line.elided(line.width() + 0.01).text(), line.text());
  }
}

TEST(Type, WrappedLinesFitAndHoldEveryWord) {
  const QString text =
      QStringLiteral("Rules catch spikes your curve doesn't cover — like a hot SSD during a big copy.");
  for (const double width : {120.0, 240.0, 360.0}) {
    const QStringList lines = wrapped(text, TextRole::body, width);
    EXPECT_GT(lines.size(), 1);
    EXPECT_EQ(lines.join(u' '), text);
    for (const QString& line : lines)
      EXPECT_LE(TextLine(line, TextRole::body).width(), width + 0.5);
  }
}

TEST(Type, LineFeedsBreakLinesAndEmptyLinesStay) {
  EXPECT_EQ(wrapped(QStringLiteral("one\n\n\ntwo\n"), TextRole::notices, 500),
            QStringList({QStringLiteral("one"), QString(), QString(), QStringLiteral("two"), QString()}));
}

TEST(Type, AWordThatIsTooLongIsBroken) {
  const QStringList lines = wrapped(QString(80, u'W'), TextRole::body, 100);
  EXPECT_GT(lines.size(), 4);
  EXPECT_EQ(lines.join(QString()).size(), 80);
}

TEST(Type, ATextIsPaintedWhereItsAlignmentSays) {
  const auto inkOf = [](Qt::Alignment alignment) {
    return inked(painted(200, 20, 1, [&](QPainter& painter) {
      TextLine(QStringLiteral("HH"), TextRole::body)
          .paint(painter, QRectF(0, 0, 200, 20), Qt::black, alignment);
    }));
  };
  EXPECT_LT(inkOf(Qt::AlignLeading).right(), 60);
  EXPECT_GT(inkOf(Qt::AlignRight).left(), 140);
  EXPECT_NEAR(inkOf(Qt::AlignHCenter).center().x(), 100, 2);
}

TEST(Type, TheFontFollowsTheApplications) {
  const QFont before = QGuiApplication::font();
  QFont other = before;
  other.setFamilies({QStringLiteral("DejaVu Sans")});
  QGuiApplication::setFont(other);
  EXPECT_EQ(fontOf(TextRole::body).families(), other.families());
  QGuiApplication::setFont(before);
  EXPECT_EQ(fontOf(TextRole::body).families(), before.families());
}

} // namespace
} // namespace ventolith::ui
