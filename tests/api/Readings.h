#pragma once

#include "api/JobManagerAPIAbstraction.h"

namespace jobmanager_test {

/// The value with its type, since QVariants of different types compare equal where one converts to the other.
inline QString typed(const QVariant& value)
{
    return value.isValid() ? QStringLiteral("%1 %2").arg(QLatin1String(value.typeName()), value.toString())
                           : QStringLiteral("invalid");
}

/// The ids in their order, with a blank between two.
inline QString text(const std::vector<long long>& ids)
{
    QStringList texts;
    for (const long long id : ids) {
        texts.append(QString::number(id));
    }
    return texts.join(QLatin1Char(' '));
}

/// The texts as QtTest prints them.
inline QStringList list(const std::vector<QString>& texts)
{
    return { texts.begin(), texts.end() };
}

/// The jobs in the order of the alphabet, since the interface gives them in none.
inline QStringList sortedJobIDs(jobmanager_ui::JobManagerAPIAbstraction& api)
{
    QStringList ids = list(api.getAllJobIDs());
    ids.sort();
    return ids;
}

} // namespace jobmanager_test
