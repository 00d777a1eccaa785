#include "api/PropertyDisplayInfo.h"

#include <QtTest>

using namespace jobmanager_ui;

class PropertyDisplayInfoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newRecordDescribesAVisibleEditableString()
    {
        const PropertyDisplayInfo info;
        QCOMPARE(info.propName, QString());
        QCOMPARE(info.label, QString());
        QCOMPARE(info.type, PropertyType::STRING);
        QCOMPARE(info.editable, true);
        QCOMPARE(info.visible, true);
        QCOMPARE(info.regex, QString());
        QCOMPARE(info.validValues, QStringList());
        QCOMPARE(info.orderIndex, 0);
    }

    void fieldsStandInTheOrderOfTheRecord()
    {
        const PropertyDisplayInfo info{ QStringLiteral("location"), QStringLiteral("Location"), PropertyType::DOUBLE,
            false, false, QStringLiteral("[0-9]+"), { QStringLiteral("1") }, 7 };
        QCOMPARE(info.propName, QStringLiteral("location"));
        QCOMPARE(info.label, QStringLiteral("Location"));
        QCOMPARE(info.type, PropertyType::DOUBLE);
        QCOMPARE(info.editable, false);
        QCOMPARE(info.visible, false);
        QCOMPARE(info.regex, QStringLiteral("[0-9]+"));
        QCOMPARE(info.validValues, QStringList{ QStringLiteral("1") });
        QCOMPARE(info.orderIndex, 7);
    }
};

QTEST_APPLESS_MAIN(PropertyDisplayInfoTest)
#include "PropertyDisplayInfoTest.moc"
