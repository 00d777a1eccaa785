#include "api/PropertyType.h"
#include "api/TestGroupType.h"
#include "api/TestRequirement.h"

#include <QMetaEnum>
#include <QtTest>

using namespace jobmanager_ui;

namespace {

/// "NAME=value" of each value of the enum that the holder publishes, in order.
QStringList publishedValues(const QMetaObject& holder)
{
    QStringList values;
    const QMetaEnum published = holder.enumerator(holder.indexOfEnumerator("Enum"));
    for (int i = 0; i < published.keyCount(); ++i) {
        values.append(QStringLiteral("%1=%2").arg(QLatin1String(published.key(i))).arg(published.value(i)));
    }
    return values;
}

} // namespace

Q_DECLARE_METATYPE(const QMetaObject*)

class EnumHoldersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesArePublished_data()
    {
        QTest::addColumn<const QMetaObject*>("holder");
        QTest::addColumn<QStringList>("values");
        QTest::newRow("PropertyType") << &PropertyType::staticMetaObject
                                      << QStringList{ QStringLiteral("STRING=0"), QStringLiteral("DOUBLE=1") };
        QTest::newRow("TestRequirement") << &TestRequirement::staticMetaObject
                                         << QStringList{ QStringLiteral("TEST_UNDEFINED=0"),
                                                QStringLiteral("TEST_REQUIRED=1"), QStringLiteral("TEST_OPTIONAL=2"),
                                                QStringLiteral("TEST_ADDED=3") };
        QTest::newRow("TestGroupType") << &TestGroupType::staticMetaObject
                                       << QStringList{ QStringLiteral("NONE=0"), QStringLiteral("DEFAULT_VIEW=1"),
                                              QStringLiteral("GROUPBY_LOCATION=2"),
                                              QStringLiteral("GROUPBY_TEST_NAME=3") };
    }

    void valuesArePublished()
    {
        QFETCH(const QMetaObject*, holder);
        QFETCH(QStringList, values);
        QCOMPARE(publishedValues(*holder), values);
    }

    void holdersLiveInTheNamespace()
    {
        QCOMPARE(PropertyType::staticMetaObject.className(), "jobmanager_ui::PropertyType");
        QCOMPARE(TestRequirement::staticMetaObject.className(), "jobmanager_ui::TestRequirement");
        QCOMPARE(TestGroupType::staticMetaObject.className(), "jobmanager_ui::TestGroupType");
    }

    void kindOfAPropertyTakes32Bits() { QCOMPARE(sizeof(PropertyType::Enum), std::size_t{ 4 }); }
};

QTEST_APPLESS_MAIN(EnumHoldersTest)
#include "EnumHoldersTest.moc"
