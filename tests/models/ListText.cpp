#include "tests/models/ListText.h"

#include <QStringList>

using jobmanager_ui::TestList;

namespace jobmanager_test {

QString orderText(const QAbstractItemModel& tests)
{
    QStringList ids;
    for (int row = 0; row < tests.rowCount(); ++row) {
        ids.append(QString::number(tests.index(row, 0).data(TestList::TestID).toLongLong()));
    }
    return ids.join(QLatin1Char(' '));
}

QString sectionsText(const TestList& tests)
{
    QStringList texts;
    const QVariantList sections = tests.sections();
    for (const QVariant& entry : sections) {
        const QVariantMap section = entry.toMap();
        texts.append(QStringLiteral("\"%1\", %2, %3")
                         .arg(section.value(QStringLiteral("section")).toString(),
                             section.value(QStringLiteral("startIndex")).toString(),
                             section.value(QStringLiteral("testsCount")).toString()));
    }
    return texts.join(QStringLiteral("; "));
}

} // namespace jobmanager_test
