#include "models/PropertyDisplayInfos.h"

#include <QRegExp>
#include <QtTest>

using namespace jobmanager_ui;

class PropertyDisplayInfosTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mapHoldsEachFieldInItsType_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QVariant>("value");
        QTest::newRow("propName") << int(QMetaType::QString) << QVariant(QStringLiteral("attributes/length"));
        QTest::newRow("label") << int(QMetaType::QString) << QVariant(QStringLiteral("Länge"));
        QTest::newRow("editable") << int(QMetaType::Bool) << QVariant(false);
        QTest::newRow("visible") << int(QMetaType::Bool) << QVariant(false);
        QTest::newRow("type") << int(QMetaType::Int) << QVariant(1);
        QTest::newRow("validValues") << int(QMetaType::QStringList)
                                     << QVariant(QStringList{ QStringLiteral("1"), QStringLiteral("2") });
        QTest::newRow("orderIndex") << int(QMetaType::Int) << QVariant(-3);
        QTest::newRow("regex") << int(QMetaType::QRegExp) << QVariant(QRegExp(QStringLiteral("[0-9]+")));
    }

    void mapHoldsEachFieldInItsType()
    {
        QFETCH(int, type);
        const QVariant value = propertyDisplayInfoToVariantMap(full()).value(QLatin1String(QTest::currentDataTag()));
        QCOMPARE(value.userType(), type);
        QTEST(value, "value");
    }

    void mapHoldsNothingElse()
    {
        QCOMPARE(propertyDisplayInfoToVariantMap(full()).keys(),
            (QStringList{ QStringLiteral("editable"), QStringLiteral("label"), QStringLiteral("orderIndex"),
                QStringLiteral("propName"), QStringLiteral("regex"), QStringLiteral("type"),
                QStringLiteral("validValues"), QStringLiteral("visible") }));
    }

    void defaultsAreAVisibleEditableString()
    {
        const QVariantMap map = propertyDisplayInfoToVariantMap({});
        QCOMPARE(map.value(QStringLiteral("editable")), QVariant(true));
        QCOMPARE(map.value(QStringLiteral("visible")), QVariant(true));
        QCOMPARE(map.value(QStringLiteral("type")), QVariant(0));
        QCOMPARE(map.value(QStringLiteral("propName")), QVariant(QString()));
        QCOMPARE(map.value(QStringLiteral("validValues")), QVariant(QStringList()));
        QCOMPARE(map.value(QStringLiteral("orderIndex")), QVariant(0));
    }

    void noPatternIsNoKey()
    {
        PropertyDisplayInfo info = full();
        info.regex = QString();
        QVERIFY(!propertyDisplayInfoToVariantMap(info).contains(QStringLiteral("regex")));
    }

    void patternMatchesCaseAndIsNoWildcard()
    {
        PropertyDisplayInfo info;
        info.regex = QStringLiteral("ab*");
        const QRegExp regex = propertyDisplayInfoToVariantMap(info).value(QStringLiteral("regex")).toRegExp();
        QCOMPARE(regex.patternSyntax(), QRegExp::RegExp);
        QVERIFY(regex.exactMatch(QStringLiteral("abbb")));
        QVERIFY(!regex.exactMatch(QStringLiteral("AB")));
        QVERIFY(!regex.exactMatch(QStringLiteral("abc")));
    }

    void patternThatDoesNotCompileTravelsAllTheSame()
    {
        PropertyDisplayInfo info;
        info.regex = QStringLiteral("[0-9");
        const QRegExp regex = propertyDisplayInfoToVariantMap(info).value(QStringLiteral("regex")).toRegExp();
        QCOMPARE(regex.pattern(), QStringLiteral("[0-9"));
        QVERIFY(!regex.isValid());
    }

    void fixedRowIsAVisibleTextForShow()
    {
        const PropertyDisplayInfo info = fixedDisplayInfo(QStringLiteral("name"), QStringLiteral("Label"));
        QCOMPARE(info.propName, QStringLiteral("name"));
        QCOMPARE(info.label, QStringLiteral("Label"));
        QCOMPARE(info.type, PropertyType::STRING);
        QVERIFY(!info.editable);
        QVERIFY(info.visible);
        QCOMPARE(info.regex, QString());
        QCOMPARE(info.validValues, QStringList());
        QCOMPARE(info.orderIndex, 0);
    }

private:
    static PropertyDisplayInfo full()
    {
        return { QStringLiteral("attributes/length"), QStringLiteral("Länge"), PropertyType::DOUBLE, false, false,
            QStringLiteral("[0-9]+"), { QStringLiteral("1"), QStringLiteral("2") }, -3 };
    }
};

QTEST_APPLESS_MAIN(PropertyDisplayInfosTest)
#include "PropertyDisplayInfosTest.moc"
