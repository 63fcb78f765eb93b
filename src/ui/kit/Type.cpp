#include "ui/kit/Type.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QStyle>
#include <QTextBoundaryFinder>
#include <QTextLayout>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

namespace ventolith::ui {
namespace {

constexpr std::size_t roleCount = static_cast<std::size_t>(TextRole::notices) + 1;

// In the order of the roles.
constexpr std::array<TextStyle, roleCount> styles{{
    {20, 26, QFont::DemiBold, -0.3, false, Digits::natural}, // screenTitle
    {15, 20, QFont::DemiBold, 0, false, Digits::natural},    // windowTitle
    {22, 28, QFont::DemiBold, 0, false, Digits::natural},    // appName
    {14, 20, QFont::DemiBold, 0, false, Digits::natural},    // presetName
    {13, 18, QFont::DemiBold, 0, false, Digits::natural},    // cardTitle
    {13, 18, QFont::Normal, 0, false, Digits::natural},      // body
    {13, 18, QFont::DemiBold, 0, false, Digits::natural},    // bodyStrong
    {13, 17, QFont::Medium, 0, false, Digits::natural},      // sensorName
    {13, 18, QFont::Medium, 0, false, Digits::natural},      // button
    {13, 18, QFont::DemiBold, 0, false, Digits::natural},    // buttonProminent
    {12, 16, QFont::Medium, 0, false, Digits::natural},      // smallButton
    {12, 16, QFont::Normal, 0, false, Digits::natural},      // secondary
    {11, 15, QFont::Normal, 0, false, Digits::natural},      // caption
    {11, 14, QFont::DemiBold, 0, false, Digits::natural},    // badge
    {10, 12, QFont::DemiBold, 0, false, Digits::natural},    // badgeSmall
    {11, 16, QFont::DemiBold, 0.3, false, Digits::natural},  // keyword
    {26, 28, QFont::DemiBold, -0.5, false, Digits::equal},   // rpm
    {13, 18, QFont::Medium, 0, false, Digits::natural},      // rpmUnit
    {15, 20, QFont::DemiBold, 0, false, Digits::equal},      // reading
    {20, 24, QFont::DemiBold, 0, false, Digits::equal},      // panelReading
    {11, 15, QFont::Medium, 0, false, Digits::natural},      // axisLabel
    {11, 15, QFont::Normal, 0, false, Digits::equal},        // tick
    {13, 18, QFont::Medium, 0, true, Digits::natural},       // stepperLabel
    {11, 15, QFont::Normal, 0, true, Digits::natural},       // stepperLabelSmall
    {11, 16, QFont::Normal, 0, true, Digits::natural},       // notices
}};

// A font with what measuring it over and over would cost.
struct Face {
  QFont font;
  QFontMetricsF metrics;
  std::array<double, 10> digits{};
  double cell = 0; // The width that every digit takes; 0 when the font's digits are equal by themselves.
};

Face makeFace(const TextStyle& style, Digits digits) {
  QFont font =
      style.fixedPitch ? QFontDatabase::systemFont(QFontDatabase::FixedFont) : QGuiApplication::font();
  font.setPixelSize(style.pixels);
  font.setWeight(style.weight);
  font.setStyleName({});                                   // A style by name would win over the weight.
  font.setHintingPreference(QFont::PreferVerticalHinting); // Letters stand where their widths put them.
  if (style.tracking != 0) font.setLetterSpacing(QFont::AbsoluteSpacing, style.tracking);
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
  if (digits == Digits::equal) font.setFeature(QFont::Tag("tnum"), 1);
#endif
  Face face{font, QFontMetricsF(font)};
  if (digits == Digits::natural) return face;
  for (std::size_t digit = 0; digit < face.digits.size(); ++digit)
    face.digits[digit] = face.metrics.horizontalAdvance(QChar(static_cast<char16_t>(u'0' + digit)));
  const auto [narrowest, widest] = std::minmax_element(face.digits.begin(), face.digits.end());
  if (*widest - *narrowest > 0.01) face.cell = *widest;
  return face;
}

// Kept for the whole process, as the application's font is, and made anew when that font changes. Main
// thread.
const Face& faceOf(TextRole role, Digits digits) {
  static QFont madeFor;
  static std::array<std::array<std::optional<Face>, 2>, roleCount> faces;
  if (const QFont now = QGuiApplication::font(); now != madeFor) {
    faces = {};
    madeFor = now;
  }
  auto& face = faces[static_cast<std::size_t>(role)][digits == Digits::equal ? 1 : 0];
  if (!face) face = makeFace(styleOf(role), digits);
  return *face;
}

bool isDigit(QChar character) {
  return character >= u'0' && character <= u'9';
}

// Calls `run(part, offset, width)` for each part that is drawn at one go: every digit in its cell, and what
// stands between them. Returns the width of all.
template <class Run>
double eachRun(const Face& face, const QString& text, Run run) {
  if (face.cell == 0) {
    const double width = face.metrics.horizontalAdvance(text);
    run(text, 0.0, width);
    return width;
  }
  double at = 0;
  for (qsizetype from = 0; from < text.size();) {
    if (isDigit(text[from])) {
      const double own = face.digits[static_cast<std::size_t>(text[from].unicode() - u'0')];
      run(text.mid(from, 1), at + (face.cell - own) / 2, own);
      at += face.cell;
      ++from;
      continue;
    }
    qsizetype to = from;
    while (to < text.size() && !isDigit(text[to]))
      ++to;
    const QString part = text.mid(from, to - from);
    const double width = face.metrics.horizontalAdvance(part);
    run(part, at, width);
    at += width;
    from = to;
  }
  return at;
}

} // namespace

const TextStyle& styleOf(TextRole role) {
  return styles[static_cast<std::size_t>(role)];
}

QFont fontOf(TextRole role) {
  return faceOf(role, styleOf(role).digits).font;
}

void applyRequestedFont() {
  const QString family = qEnvironmentVariable("VENTOLITH_UI_FONT");
  if (family.isEmpty()) return;
  QFont font = QGuiApplication::font();
  font.setFamilies({family});
  QGuiApplication::setFont(font);
}

TextLine::TextLine(QString text, TextRole role) : TextLine(std::move(text), role, styleOf(role).digits) {}

TextLine::TextLine(QString text, TextRole role, Digits digits)
    : text_(std::move(text)), role_(role), digits_(digits) {}

double TextLine::width() const {
  return eachRun(faceOf(role_, digits_), text_, [](const QString&, double, double) {});
}

double TextLine::baseline() const {
  const QFontMetricsF& metrics = faceOf(role_, digits_).metrics;
  return (height() - (metrics.ascent() + metrics.descent())) / 2 + metrics.ascent();
}

TextLine TextLine::elided(double width) const {
  if (this->width() <= width) return *this;
  const Face& face = faceOf(role_, digits_);
  TextLine shorter(face.metrics.elidedText(text_, Qt::ElideRight, width), role_, digits_);
  if (shorter.width() <= width) return shorter;
  // Digits in cells are wider than the font knows.
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text_);
  finder.setPosition(text_.size());
  while (finder.toPreviousBoundary() > 0) {
    shorter = TextLine(text_.left(finder.position()) + QChar(0x2026), role_, digits_);
    if (shorter.width() <= width) return shorter;
  }
  return TextLine(QString(QChar(0x2026)), role_, digits_);
}

void TextLine::paint(QPainter& painter, const QRectF& rect, const QColor& color,
                     Qt::Alignment alignment) const {
  const Face& face = faceOf(role_, digits_);
  const Qt::Alignment visual = QStyle::visualAlignment(QGuiApplication::layoutDirection(), alignment);
  double left = rect.left();
  if (visual & (Qt::AlignRight | Qt::AlignHCenter)) {
    const double room = rect.width() - width();
    left += visual & Qt::AlignRight ? room : room / 2;
  }
  // The baseline on a whole pixel keeps the feet of the letters sharp.
  const double scale = std::max(1.0, std::abs(painter.deviceTransform().m22()));
  const double down = rect.top() + (rect.height() - height()) / 2 + baseline();
  const double line = std::round(down * scale) / scale;
  painter.setFont(face.font);
  painter.setPen(color);
  eachRun(face, text_, [&](const QString& part, double offset, double) {
    painter.drawText(QPointF(left + offset, line), part);
  });
}

QStringList wrapped(const QString& text, TextRole role, double width) {
  QStringList lines;
  for (const QString& paragraph : text.split(u'\n')) {
    QTextLayout layout(paragraph, fontOf(role));
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    qsizetype taken = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
      line.setLineWidth(std::max(width, 1.0));
      lines.append(paragraph.mid(line.textStart(), line.textLength()).trimmed());
      taken = line.textStart() + line.textLength();
    }
    layout.endLayout();
    if (taken == 0 && paragraph.isEmpty() && (lines.isEmpty() || !lines.last().isEmpty()))
      lines.append(QString());
  }
  return lines;
}

} // namespace ventolith::ui
