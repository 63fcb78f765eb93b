#include "ui/kit/FollowsPortal.h"

#include <QMetaMethod>

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString desktop = QStringLiteral("org.gnome.desktop.interface");

PortalSettings setting(const QString& space, const char* key, const QVariant& value) {
  return {{space, {{QString::fromLatin1(key), value}}}};
}

// As the bus would: the slot is found by its name.
void change(FollowsPortal& follows, const QString& space, const char* key, const QVariant& value) {
  ASSERT_TRUE(QMetaObject::invokeMethod(&follows, "settingChanged", Q_ARG(QString, space),
                                        Q_ARG(QString, QString::fromLatin1(key)),
                                        Q_ARG(QDBusVariant, QDBusVariant(value))));
}

TEST(FollowsPortal, ReadsTheColourScheme) {
  const struct {
    QVariant value;
    std::optional<Appearance> expected;
  } table[] = {{QVariant(0U), std::nullopt},
               {QVariant(1U), Appearance::dark},
               {QVariant(2U), Appearance::light},
               {QVariant(7U), std::nullopt},
               {QVariant(QStringLiteral("prefer-dark")), std::nullopt},
               {QVariant(), std::nullopt}};
  for (const auto& [value, expected] : table)
    EXPECT_EQ(lookOf(setting(appearance, "color-scheme", value)).appearance, expected);
}

TEST(FollowsPortal, ReadsWhetherThingsMayMove) {
  EXPECT_EQ(lookOf(setting(appearance, "reduced-motion", 1U)).reduceMotion, true);
  EXPECT_EQ(lookOf(setting(appearance, "reduced-motion", 0U)).reduceMotion, false);
  EXPECT_EQ(lookOf(setting(desktop, "enable-animations", false)).reduceMotion, true);
  EXPECT_EQ(lookOf(setting(desktop, "enable-animations", true)).reduceMotion, false);
  EXPECT_EQ(lookOf(setting(desktop, "enable-animations", QStringLiteral("no"))).reduceMotion, std::nullopt);
  EXPECT_EQ(lookOf({}).reduceMotion, std::nullopt);
}

TEST(FollowsPortal, AnAccentOfTheWrongTypeSaysNothing) {
  EXPECT_EQ(lookOf(setting(appearance, "accent-color", QStringLiteral("blue"))).accent, std::nullopt);
  EXPECT_EQ(lookOf(setting(appearance, "accent-color", QVariant())).accent, std::nullopt);
}

TEST(FollowsPortal, TheTypesOfAChangeAreKnownByNameAsTheBusLooksThemUp) {
  Theme theme;
  const FollowsPortal follows(theme);
  const QMetaObject& meta = *follows.metaObject();
  const int slot = meta.indexOfSlot("settingChanged(QString,QString,QDBusVariant)");
  ASSERT_GE(slot, 0);
  for (const QByteArray& type : meta.method(slot).parameterTypes())
    EXPECT_TRUE(QMetaType::fromName(type).isValid()) << type.constData();
}

TEST(FollowsPortal, TheThemeFollowsAChangeLive) {
  Theme theme;
  FollowsPortal follows(theme);
  change(follows, appearance, "color-scheme", 1U);
  EXPECT_EQ(theme.appearance(), Appearance::dark);
  change(follows, desktop, "enable-animations", false);
  EXPECT_TRUE(theme.reduceMotion());
  EXPECT_EQ(theme.appearance(), Appearance::dark);
  change(follows, appearance, "color-scheme", 2U);
  EXPECT_EQ(theme.appearance(), Appearance::light);
}

TEST(FollowsPortal, ASettingOfAnotherKindIsNoneOfItsBusiness) {
  Theme theme;
  FollowsPortal follows(theme);
  change(follows, QStringLiteral("org.example.other"), "color-scheme", 1U);
  EXPECT_EQ(theme.appearance(), Appearance::light);
}

} // namespace
} // namespace ventolith::ui
