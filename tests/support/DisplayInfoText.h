#pragma once

#include "api/PropertyDisplayInfo.h"

#include <QLatin1Char>
#include <QString>

namespace jobmanager_test {

/// All fields of the record in one line, so that a difference shows as a whole.
inline QString displayInfoText(const jobmanager_ui::PropertyDisplayInfo& info)
{
    return QStringLiteral("%1 | %2 | type %3 | editable %4 | visible %5 | %6 | %7 | %8")
        .arg(info.propName, info.label)
        .arg(info.type)
        .arg(info.editable)
        .arg(info.visible)
        .arg(info.regex, info.validValues.join(QLatin1Char(',')))
        .arg(info.orderIndex);
}

} // namespace jobmanager_test
