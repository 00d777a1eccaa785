#include "tests/core/MockFrontFixture.h"

#include <QQmlPropertyMap>
#include <QSignalSpy>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString idEmptyJob = QStringLiteral("JOB_EMPTY_3");
const QString onlyLetters = QStringLiteral("onlyLetters");
const QString numberProperty = QStringLiteral("numberProperty");

} // namespace

/// The optional properties of jobs and tests over the mock: what a form of the fixed jobs shows and edits.
class PropertiesOverMockTest : public MockFrontFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        setUp();
        m_manager->initialize();
    }

    void cleanup() { tearDown(); }

    // Jobs.

    void jobShowsItsPropertiesInOrderAndCountsThoseToFillIn_data()
    {
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("toFillIn");
        QTest::newRow("JOB1") << "jobNumber customerName typeName otherJobProperty numberJobProperty onlyLetters" << 3;
        QTest::newRow("JOB2") << "jobNumber customerName numberJobProperty onlyLetters" << 2;
        QTest::newRow("JOB_EMPTY_3") << "jobNumber otherJobProperty numberJobProperty onlyLetters" << 3;
    }

    void jobShowsItsPropertiesInOrderAndCountsThoseToFillIn()
    {
        Job& shown = job(QString::fromLatin1(QTest::currentDataTag()));
        QTEST(shown.allDisplayableJobProperties().join(QLatin1Char(' ')), "shown");
        QTEST(shown.getTotalNumberOfRequiredAttributes(), "toFillIn");
        QCOMPARE(shown.getNumberOfIncompleteRequiredAttributes(), 0);
    }

    void jobTellsHowItsPropertiesAreShown()
    {
        const QVariantMap infos = job(idJob1).jobPropertyDisplayInfos();
        const auto info = [&](const char* name, const char* field) {
            return infos.value(QString::fromLatin1(name)).toMap().value(QString::fromLatin1(field));
        };
        QCOMPARE(info("jobNumber", "label"), QVariant(QStringLiteral("Ticket")));
        QCOMPARE(info("jobNumber", "editable"), QVariant(false));
        QCOMPARE(info("otherJobProperty", "label"), QVariant(QStringLiteral("API Label")));
        QCOMPARE(info("otherJobProperty", "editable"), QVariant(true));
        QCOMPARE(info("numberJobProperty", "type"), QVariant(int{ PropertyType::DOUBLE }));
        QCOMPARE(info("onlyLetters", "regex").toRegExp().pattern(), QStringLiteral("[a-zA-Z]+"));
    }

    void jobHoldsTheValues()
    {
        const QQmlPropertyMap& properties = *job(idJob1).optionalProperties();
        QCOMPARE(properties.value(QStringLiteral("otherJobProperty")), QVariant(QStringLiteral("OtherJobProperty1")));
        QCOMPARE(properties.value(QStringLiteral("numberJobProperty")), QVariant(1.1));
        QCOMPARE(properties.value(onlyLetters), QVariant(QStringLiteral("a")));
        QVERIFY(!job(idJob2).optionalProperties()->contains(QStringLiteral("otherJobProperty")));
        QVERIFY(!job(idEmptyJob).optionalProperties()->contains(QStringLiteral("customer")));
    }

    void editOfAJobIsStoredAndTakenAsSeen()
    {
        const QSignalSpy outcome(&job(idJob1), &Job::optionalPropertyValueChanged);
        edit(*job(idJob1).optionalProperties(), onlyLetters, QStringLiteral("abc"));
        QCOMPARE(outcome.count(), 1);
        QCOMPARE(outcome.first().first(), QVariant(true));
        QCOMPARE(m_api->getOptionalJobProperty(idJob1, onlyLetters), QVariant(QStringLiteral("abc")));
        QCOMPARE(m_api->getChangeCount(), 1);
        QVERIFY(!m_manager->checkChangeCount(false));
    }

    void emptiedPropertyCountsFromTheNextUpdateOn()
    {
        edit(*job(idJob1).optionalProperties(), onlyLetters, QString());
        QCOMPARE(job(idJob1).getNumberOfIncompleteRequiredAttributes(), 0);
        m_manager->updateDataFromAPI(true);
        QCOMPARE(job(idJob1).getNumberOfIncompleteRequiredAttributes(), 1);
        QCOMPARE(job(idJob1).getTotalNumberOfRequiredAttributes(), 3);
    }

    void valueWrittenElsewhereArrives()
    {
        job(idJob1).optionalProperties();
        m_api->setOptionalJobProperty(idJob1, onlyLetters, QStringLiteral("z"));
        QVERIFY(m_manager->checkChangeCount(true));
        QCOMPARE(job(idJob1).optionalProperties()->value(onlyLetters), QVariant(QStringLiteral("z")));
    }

    // Tests.

    void jobListsThePropertiesOfItsTests()
    {
        QStringList names = job(idJob2).allDisplayableTestProperties();
        names.sort();
        QCOMPARE(names.join(QLatin1Char(' ')),
            QStringLiteral("configuration location numberProperty otherTestInfo1 otherTestInfo2"));
        QCOMPARE(job(idEmptyJob).allDisplayableTestProperties(), QStringList{ QStringLiteral("configuration") });
        QCOMPARE(job(idJob2).testPropertyDisplayInfos().keys(), names);
    }

    void testHoldsTheValues()
    {
        const QQmlPropertyMap& measured = *job(idJob1).getTest(1)->optionalProperties();
        QCOMPARE(measured.value(QStringLiteral("location")), QVariant(QStringLiteral("MyLocation2")));
        QCOMPARE(measured.value(QStringLiteral("otherTestInfo1")), QVariant(QStringLiteral("Other Test Info1")));
        QCOMPARE(measured.value(numberProperty), QVariant(1.1111));
        const QQmlPropertyMap& manual = *job(idJob2).getTest(2)->optionalProperties();
        QCOMPARE(manual.keys().size(), 4);
        QVERIFY(!manual.value(QStringLiteral("location")).isValid());
    }

    void editOfATestIsStored()
    {
        edit(*job(idJob1).getTest(1)->optionalProperties(), numberProperty, 7.5);
        QCOMPARE(m_api->getOptionalTestProperty(idJob1, 1, numberProperty), QVariant(7.5));
        QCOMPARE(m_api->getChangeCount(), 1);
    }

    void editOfATestWithoutThePropertyIsTakenBack()
    {
        QQmlPropertyMap& properties = *job(idJob2).getTest(2)->optionalProperties();
        edit(properties, numberProperty, 7.5);
        QVERIFY(!properties.value(numberProperty).isValid());
        QCOMPARE(m_api->getChangeCount(), 0);
    }

private:
    /// What a form does when a value was typed.
    static void edit(QQmlPropertyMap& properties, const QString& name, const QVariant& value)
    {
        QVERIFY(properties.setProperty(name.toUtf8().constData(), value));
    }
};

QTEST_GUILESS_MAIN(PropertiesOverMockTest)
#include "PropertiesOverMockTest.moc"
