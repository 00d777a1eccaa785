#pragma once

#include "api/PropertyType.h"

#include <QString>
#include <QStringList>

namespace jobmanager_ui {

/// How one optional property is shown and edited. A plain value; a new one describes a visible, editable string.
struct PropertyDisplayInfo
{
    /// Key of the property.
    QString propName;
    /// Text to show for it; may be empty.
    QString label;
    /// Kind of its value.
    PropertyType::Enum type = PropertyType::STRING;
    /// The user may change it.
    bool editable = true;
    /// It is shown at all.
    bool visible = true;
    /// Pattern of a valid value; empty: no pattern.
    QString regex;
    /// The values to choose from; empty: no such list.
    QStringList validValues;
    /// Position among the job's optional properties.
    int orderIndex = 0;
};

} // namespace jobmanager_ui
