// Tells the theme what the desktop says of its look, live: light or dark, the accent colour, and whether
// things may move. From the desktop portal's settings; where there is no portal, it never speaks.
#pragma once

#include "ui/kit/Theme.h"

#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <QVariantMap>

namespace ventolith::ui {

/// Settings by namespace and key, as the portal gives them.
using PortalSettings = QMap<QString, QVariantMap>;

/// What these settings say. A value that is unknown, or of the wrong type, says nothing.
[[nodiscard]] SystemLook lookOf(const PortalSettings& settings);

/// One beside the theme, which outlives it. Nothing here waits for the bus.
class FollowsPortal : public QObject {
  Q_OBJECT

public:
  explicit FollowsPortal(Theme& theme, QObject* parent = nullptr);

private Q_SLOTS:
  void settingChanged(const QString& space, const QString& key, const QDBusVariant& value);

private:
  void readAll();

  Theme& theme_;
  PortalSettings settings_;
};

} // namespace ventolith::ui
