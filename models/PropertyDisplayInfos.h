#pragma once

#include "api/PropertyDisplayInfo.h"

#include <QVariantMap>

namespace jobmanager_ui {

/// What QML gets of a display info: the keys "propName", "label", "editable", "visible", "type" (a number),
/// "validValues", "orderIndex", and "regex" (a QRegExp, as it stands, valid or not) only if there is a pattern.
QVariantMap propertyDisplayInfoToVariantMap(const PropertyDisplayInfo& info);

/// A row that every form has beside the optional properties: for show alone.
PropertyDisplayInfo fixedDisplayInfo(const QString& propName, const QString& label = {});

} // namespace jobmanager_ui
