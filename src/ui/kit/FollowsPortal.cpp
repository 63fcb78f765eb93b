#include "ui/kit/FollowsPortal.h"

#include "ui/kit/FollowsDesktop.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace ventolith::ui {
namespace {

constexpr QLatin1String service("org.freedesktop.portal.Desktop");
constexpr QLatin1String path("/org/freedesktop/portal/desktop");
constexpr QLatin1String interface("org.freedesktop.portal.Settings");
constexpr QLatin1String appearance("org.freedesktop.appearance");
constexpr QLatin1String desktop("org.gnome.desktop.interface"); // Where some say that nothing is to move.

QVariant valueOf(const PortalSettings& settings, const QString& space, const char* key) {
  return settings.value(space).value(QString::fromLatin1(key));
}

std::optional<Appearance> appearanceOf(const QVariant& scheme) {
  constexpr uint dark = 1, light = 2; // 0: no preference.
  if (scheme.typeId() != QMetaType::UInt) return std::nullopt;
  if (scheme.toUInt() == dark) return Appearance::dark;
  if (scheme.toUInt() == light) return Appearance::light;
  return std::nullopt;
}

// Three doubles of 0 to 1; what lies outside means that there is no accent.
std::optional<QColor> accentOf(const QVariant& value) {
  if (value.userType() != qMetaTypeId<QDBusArgument>()) return std::nullopt;
  const auto argument = value.value<QDBusArgument>();
  if (argument.currentSignature() != QLatin1String("(ddd)")) return std::nullopt;
  double red = -1, green = -1, blue = -1;
  argument.beginStructure();
  argument >> red >> green >> blue;
  argument.endStructure();
  const auto part = [](double channel) { return channel >= 0 && channel <= 1; };
  if (!part(red) || !part(green) || !part(blue)) return std::nullopt;
  return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue));
}

std::optional<bool> reduceMotionOf(const PortalSettings& settings) {
  const QVariant reduced = valueOf(settings, appearance, "reduced-motion");
  if (reduced.typeId() == QMetaType::UInt) return reduced.toUInt() == 1;
  const QVariant animated = valueOf(settings, desktop, "enable-animations");
  if (animated.typeId() == QMetaType::Bool) return !animated.toBool();
  return std::nullopt;
}

} // namespace

SystemLook lookOf(const PortalSettings& settings) {
  return {.appearance = appearanceOf(valueOf(settings, appearance, "color-scheme")),
          .accent = accentOf(valueOf(settings, appearance, "accent-color")),
          .reduceMotion = reduceMotionOf(settings)};
}

FollowsPortal::FollowsPortal(Theme& theme, QObject* parent) : QObject(parent), theme_(theme) {
  qDBusRegisterMetaType<PortalSettings>();
  qRegisterMetaType<QDBusVariant>(); // Before the first message Qt does not know it by name, and connects no
                                     // slot.
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  bus.connect(service, path, interface, QStringLiteral("SettingChanged"), this,
              SLOT(settingChanged(QString, QString, QDBusVariant)));
  readAll();
}

void FollowsPortal::readAll() {
  QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ReadAll"));
  call << QStringList{appearance, desktop};
  auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
    finished->deleteLater();
    const QDBusPendingReply<PortalSettings> reply = *finished;
    if (reply.isError()) return; // No portal: others speak.
    // A change that came before the answer is newer than it.
    PortalSettings all = reply.value();
    for (auto space = settings_.cbegin(); space != settings_.cend(); ++space)
      all[space.key()].insert(space.value());
    settings_ = std::move(all);
    theme_.setDesktopLook(lookOf(settings_));
  });
}

void FollowsPortal::settingChanged(const QString& space, const QString& key, const QDBusVariant& value) {
  if (space != appearance && space != desktop) return;
  settings_[space].insert(key, value.variant());
  theme_.setDesktopLook(lookOf(settings_));
}

std::unique_ptr<QObject> followDesktop(Theme& theme) {
  return std::make_unique<FollowsPortal>(theme);
}

} // namespace ventolith::ui
