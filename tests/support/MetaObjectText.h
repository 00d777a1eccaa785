#pragma once

#include <QMetaObject>
#include <QString>

namespace jobmanager_test {

/// The properties that the class itself declares, in order, a line each: type, name, then the notify signal or
/// "constant", then "writable" if it is.
QString propertyLines(const QMetaObject& meta);
/// The signals, slots and other methods that the class itself declares, in order, a line each: kind, "private" if it
/// is, signature.
QString methodLines(const QMetaObject& meta);

} // namespace jobmanager_test
