#pragma once

#include <QString>
#include <QVariant>

namespace jobmanager_test {

/// A value as the journals show it: texts in quotes, lists in brackets, a job by its number, an invalid value as
/// "invalid".
QString valueText(const QVariant& value);
/// A call or a signal as the journals show it: `name("text", 1, true)`.
QString callText(const QString& name, const QVariantList& arguments);

} // namespace jobmanager_test
