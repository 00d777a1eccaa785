#pragma once

#include <QObject>

namespace jobmanager_ui {

/// Publishes to QML what kind of value an optional property holds. Never instantiated.
class PropertyType : public QObject
{
    Q_OBJECT

public:
    /// Kind of a property's value.
    enum Enum : int {
        STRING = 0, ///< text
        DOUBLE = 1 ///< number
    };
    Q_ENUM(Enum)
};

} // namespace jobmanager_ui
