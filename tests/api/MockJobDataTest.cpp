#include "api/MockJobData.h"
#include "tests/api/Readings.h"
#include "tests/support/ConcreteMockApi.h"

#include <memory>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

class MockJobDataTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_api = std::make_unique<ConcreteMockApi>(); }
    void cleanup() { m_api.reset(); }

    void newObjectHoldsTwentyJobsAndNoCurrentOne()
    {
        QCOMPARE(sortedJobIDs(*m_api).join(QLatin1Char(' ')),
            QStringLiteral("JOB1 JOB2 JOB3 JOB_EMPTY_10 JOB_EMPTY_11 JOB_EMPTY_12 JOB_EMPTY_13 JOB_EMPTY_14 "
                           "JOB_EMPTY_15 JOB_EMPTY_16 JOB_EMPTY_17 JOB_EMPTY_18 JOB_EMPTY_19 JOB_EMPTY_3 "
                           "JOB_EMPTY_4 JOB_EMPTY_5 JOB_EMPTY_6 JOB_EMPTY_7 JOB_EMPTY_8 JOB_EMPTY_9"));
        QCOMPARE(m_api->getChangeCount(), 0);
        QCOMPARE(m_api->getCurrentJobID(), QString());
        QVERIFY(!m_api->hasCurrentJob());
        QCOMPARE(m_api->getTechID(), QString());
    }

    void jobHasItsSummary_data()
    {
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("customer");
        QTest::addColumn<QString>("workflow");
        QTest::addColumn<QString>("managedBy");
        QTest::addColumn<QString>("state");
        QTest::addColumn<bool>("archived");
        QTest::addColumn<int>("required");
        QTest::addColumn<int>("completed");

        const auto row = [](const char* job, const char* label, const char* customer, const char* workflow,
                             const char* managedBy, const char* state, bool archived, int required, int completed) {
            QTest::newRow(job) << label << customer << workflow << managedBy << state << archived << required
                               << completed;
        };
        row("JOB1", "Ticket", "Customer 1", "test typeName", "inst", "conflict", false, 13, 12);
        row("JOB2", "", "Customer 2 With Large Name", "", "ss", "", false, 4, 4);
        row("JOB3", "", "Customer 3 With Large Name", "", "", "", true, 2, 2);
        for (int number = 3; number <= 19; ++number) {
            row(qPrintable(QStringLiteral("JOB_EMPTY_%1").arg(number)), "", "", "", "", "", false, 0, 0);
        }
    }

    void jobHasItsSummary()
    {
        const QString job = QString::fromLatin1(QTest::currentDataTag());
        QCOMPARE(m_api->getJobNumber(job), job);
        QTEST(m_api->getWorkOrderLabel(job), "label");
        QTEST(m_api->getCustomerName(job), "customer");
        QTEST(m_api->getWorkflowTypeName(job), "workflow");
        QTEST(m_api->getJobManagedByInfo(job), "managedBy");
        QTEST(m_api->getJobManagementState(job), "state");
        QTEST(m_api->isJobArchived(job), "archived");
        QTEST(m_api->getTotalNumberOfRequiredTests(job), "required");
        QTEST(m_api->getNumberOfCompletedRequiredTests(job), "completed");
        QCOMPARE(m_api->getTeamTechIds(job), QStringList());
        QCOMPARE(m_api->getJobModifiedOn(job), QString());
    }

    void jobStoresItsProperties_data()
    {
        QTest::addColumn<QString>("other");
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("letters");
        QTest::addColumn<QString>("customer");

        const auto row = [](const QString& job, const char* other, const QString& number, const char* customer) {
            QTest::newRow(qPrintable(job)) << other << number << "QString a" << customer;
        };
        row(QStringLiteral("JOB1"), "QString OtherJobProperty1", QStringLiteral("double 1.1"), "invalid");
        row(QStringLiteral("JOB2"), "QString OtherJobProperty2", QStringLiteral("double 2.2"), "invalid");
        row(QStringLiteral("JOB3"), "QString OtherJobProperty3", QStringLiteral("double 3.3"), "invalid");
        for (int number = 3; number <= 19; ++number) {
            row(QStringLiteral("JOB_EMPTY_%1").arg(number), "QString OtherJobProperty3",
                QStringLiteral("double %1").arg(number), "QString ");
        }
    }

    void jobStoresItsProperties()
    {
        const QString job = QString::fromLatin1(QTest::currentDataTag());
        QTEST(typed(m_api->getOptionalJobProperty(job, QStringLiteral("otherJobProperty"))), "other");
        QTEST(typed(m_api->getOptionalJobProperty(job, QStringLiteral("numberJobProperty"))), "number");
        QTEST(typed(m_api->getOptionalJobProperty(job, QStringLiteral("onlyLetters"))), "letters");
        QTEST(typed(m_api->getOptionalJobProperty(job, QStringLiteral("customer"))), "customer");
    }

    void jobListsItsTests_data()
    {
        QTest::addColumn<QString>("all");
        QTest::addColumn<QString>("required");
        QTest::addColumn<QString>("optional");

        const auto row = [](const char* job, const char* all, const char* required, const char* optional) {
            QTest::newRow(job) << all << required << optional;
        };
        row("JOB1", "0 1 2 3 4 5 6 7 8 9 10 11 12 13 14", "0 1 2 5 6 7 8 9 10 11 12 13 14", "3 4");
        row("JOB2", "0 1 2 3", "0 1 2 3", "");
        // The ids that these tests carry are crossed.
        row("JOB3", "0 1", "1 0", "");
        row("JOB_EMPTY_3", "", "", "");
        row("JOB_EMPTY_19", "", "", "");
        row("unknown", "", "", "");
    }

    void jobListsItsTests()
    {
        const QString job = QString::fromLatin1(QTest::currentDataTag());
        QTEST(text(m_api->getAllTestIDs(job)), "all");
        QTEST(text(m_api->getRequiredTestIDs(job)), "required");
        QTEST(text(m_api->getOptionalTestIDs(job)), "optional");
    }

    void testHasItsFields_data()
    {
        QTest::addColumn<QString>("job");
        QTest::addColumn<int>("test");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("status");
        QTest::addColumn<int>("required");
        QTest::addColumn<QString>("response");
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("site");
        QTest::addColumn<QStringList>("configuration");

        const auto row = [](const char* job, int test, const char* type, const char* status, int required,
                             const QStringList& configuration, const char* response = "", const char* description = "",
                             const char* site = "") {
            QTest::addRow("%s %d", job, test)
                << job << test << type << status << required << response << description << site << configuration;
        };
        const auto lines = [](const char* text) { return QString::fromLatin1(text).split(QLatin1Char('|')); };
        const QStringList none;

        row("JOB1", 0, "OTDR", "pass", 1, lines("myconfig : myconfig1.json|Ref0 : r0|Ref12 : r12 |r1 : r11"));
        row("JOB1", 1, "Kwikprobe Ethernet", "none", 1,
            lines("myconfig : myconfig1.json|Ref0 : r0|Ref12 : r12|r1 : r11"));
        row("JOB1", 2, "Kwikprobe", "pass", 1, lines("myconfig : myconfig1.json|Ref0 : r0|Ref12 : r12|r1 : r11"));
        row("JOB1", 3, "Kwikprobe", "none", 2, none);
        row("JOB1", 4, "Kwikprobe", "none", 3, lines("myconfig : myconfig4.json|Ref0 : r0|Ref12 : r12|r1 : r11"));
        for (int test = 5; test <= 14; ++test) {
            row("JOB1", test, "OTDR", "pass", 1, lines("myconfig : myconfig21.json|Ref20 : r10|Ref12 : r12|r11 : r11"));
        }
        row("JOB2", 0, "OTDR", "fail", 1, none, "", "Dummy description", "Dummy site");
        row("JOB2", 1, "ZQ300", "skipped", 1, lines("myconfig : myconfig1.json|Ref10 : r0|Ref12 : r12|r1 : r11"));
        row("JOB2", 2, "manual", "", 1, lines("\"prompt\" : \"Reminder\",|\"type\" : \"yesNo\""), "no",
            "Inspect before you connect. Connected?", "Site2");
        row("JOB2", 3, "manual", "skipped", 1, lines("prompt : Reminder|type : info"), "fdsfsdsd",
            "Inspect before you connect");
        row("JOB3", 0, "OTDR", "pass", 1, lines("myconfig : myconfig11.json|Ref0 : r0|Ref112 : r12|r11 : r11"));
        row("JOB3", 1, "ZQ300", "pass", 1, lines("myconfig : myconfig12.json|Ref1 : r0|Ref12 : r12|r1 : r11"));
        // No test is found.
        row("JOB1", 15, "", "", 0, none);
        row("JOB2", -1, "", "", 0, none);
        row("JOB2", 4, "", "", 0, none);
        row("JOB_EMPTY_3", 0, "", "", 0, none);
        row("unknown", 0, "", "", 0, none);
    }

    void testHasItsFields()
    {
        QFETCH(QString, job);
        QFETCH(int, test);
        QTEST(m_api->getTestType(job, test), "type");
        QTEST(m_api->getTestTypeDisplayName(job, test), "type");
        QTEST(m_api->getTestStatus(job, test), "status");
        QTEST(static_cast<int>(m_api->getTestRequired(job, test)), "required");
        QTEST(m_api->getTestResponse(job, test), "response");
        QTEST(m_api->getTestDescription(job, test), "description");
        QTEST(m_api->getTestSite(job, test), "site");
        QTEST(m_api->getTestConfiguration(job, test), "configuration");
    }

    void testStoresItsProperties_data()
    {
        QTest::addColumn<QString>("job");
        QTest::addColumn<int>("test");
        QTest::addColumn<QString>("location");
        QTest::addColumn<QString>("info1");
        QTest::addColumn<QString>("info2");
        QTest::addColumn<QString>("number");

        const auto row = [](const char* job, int test, const char* location, const char* number) {
            QTest::addRow("%s %d", job, test)
                << QString::fromLatin1(job) << test << QString::fromLatin1(location) << "QString Other Test Info1"
                << "QString Other Test Info2" << QString::fromLatin1(number);
        };
        const auto bare = [](const char* job, int test) {
            QTest::addRow("%s %d", job, test) << QString::fromLatin1(job) << test << "invalid"
                                              << "invalid"
                                              << "invalid"
                                              << "invalid";
        };
        row("JOB1", 0, "QString Loc1", "double 1");
        row("JOB1", 1, "QString MyLocation2", "double 1.1111");
        row("JOB1", 2, "QString MyLocation3", "double 1.2");
        row("JOB1", 3, "QString MyLocation5", "double 1.2");
        row("JOB1", 4, "QString MyLocation4", "double 1.2");
        for (int test = 5; test <= 14; ++test) {
            row("JOB1", test, "QString Loc1", "double 1");
        }
        row("JOB2", 0, "QString MyLocation3", "double 2");
        row("JOB2", 1, "QString MyLocation4", "double 2.11");
        bare("JOB2", 2);
        bare("JOB2", 3);
        row("JOB3", 0, "QString MyLocation3", "double 3");
        row("JOB3", 1, "QString MyLocation4", "double 3.111");
        bare("JOB3", 2);
        bare("JOB3", -1);
        bare("unknown", 0);
    }

    void testStoresItsProperties()
    {
        QFETCH(QString, job);
        QFETCH(int, test);
        QTEST(typed(m_api->getOptionalTestProperty(job, test, QStringLiteral("location"))), "location");
        QTEST(typed(m_api->getOptionalTestProperty(job, test, QStringLiteral("otherTestInfo1"))), "info1");
        QTEST(typed(m_api->getOptionalTestProperty(job, test, QStringLiteral("otherTestInfo2"))), "info2");
        QTEST(typed(m_api->getOptionalTestProperty(job, test, QStringLiteral("numberProperty"))), "number");
        QCOMPARE(
            typed(m_api->getOptionalTestProperty(job, test, QStringLiteral("onlyLetters"))), QStringLiteral("invalid"));
    }

    void oneTestAloneHasATime()
    {
        QStringList times;
        const QStringList jobs = sortedJobIDs(*m_api);
        for (const QString& job : jobs) {
            for (const long long test : m_api->getAllTestIDs(job)) {
                const QDateTime time = m_api->getTestTime(job, test);
                if (!time.isNull()) {
                    times.append(QStringLiteral("%1 %2 %3").arg(job).arg(test).arg(time.toString(Qt::ISODate)));
                }
            }
        }
        QCOMPARE(times, QStringList{ QStringLiteral("JOB1 2 2022-08-30T11:28:07+03:00") });
    }

    void unknownTestHasNoTime()
    {
        QVERIFY(m_api->getTestTime(QStringLiteral("JOB1"), 15).isNull());
        QVERIFY(m_api->getTestTime(QStringLiteral("JOB1"), -1).isNull());
        QVERIFY(m_api->getTestTime(QStringLiteral("unknown"), 2).isNull());
    }

    void unknownJobReadsEmpty()
    {
        const QString job = QStringLiteral("unknown");
        QCOMPARE(m_api->getJobNumber(job), QString());
        QCOMPARE(m_api->getCustomerName(job), QString());
        QCOMPARE(m_api->getWorkflowTypeName(job), QString());
        QCOMPARE(m_api->getWorkOrderLabel(job), QString());
        QCOMPARE(m_api->getJobManagedByInfo(job), QString());
        QCOMPARE(m_api->getJobManagementState(job), QString());
        QCOMPARE(m_api->getJobModifiedOn(job), QString());
        QCOMPARE(m_api->getTeamTechIds(job), QStringList());
        QCOMPARE(m_api->isJobArchived(job), false);
        QCOMPARE(m_api->getTotalNumberOfRequiredTests(job), 0);
        QCOMPARE(m_api->getNumberOfCompletedRequiredTests(job), 0);
    }

    void jobIDsAreCaseSensitive() { QCOMPARE(m_api->getJobNumber(QStringLiteral("job1")), QString()); }

    void crossedIDReadsTheTestAtItsPosition()
    {
        const std::vector<long long> ids = m_api->getRequiredTestIDs(QStringLiteral("JOB3"));
        QCOMPARE(m_api->getTestType(QStringLiteral("JOB3"), ids.at(0)), QStringLiteral("ZQ300"));
        QCOMPARE(m_api->getTestType(QStringLiteral("JOB3"), ids.at(1)), QStringLiteral("OTDR"));
    }

    void onlyTheStatusNoneIsNotDone_data()
    {
        QTest::addColumn<int>("test");
        QTest::addColumn<QString>("status");
        QTest::newRow("fail") << 0 << "fail";
        QTest::newRow("skipped") << 1 << "skipped";
        QTest::newRow("empty") << 2 << "";
    }

    void onlyTheStatusNoneIsNotDone()
    {
        QFETCH(int, test);
        QTEST(m_api->getTestStatus(QStringLiteral("JOB2"), test), "status");
        QCOMPARE(m_api->getNumberOfCompletedRequiredTests(QStringLiteral("JOB2")), 4);
    }

    // The records behind it.

    void testInAListIsTheOneAmongAllTests()
    {
        const QHash<QString, MockJobManagerAPI::MockJobInfo> jobs = mockJobs();
        const MockJobManagerAPI::MockJobInfo job = jobs.value(QStringLiteral("JOB1"));
        QCOMPARE(job.requiredTests.at(0).get(), job.tests.at(0).get());
        QCOMPARE(job.requiredTests.at(12).get(), job.tests.at(14).get());
        QCOMPARE(job.optionalTests.at(0).get(), job.tests.at(3).get());
        QCOMPARE(job.optionalTests.at(1).get(), job.tests.at(4).get());
    }

    void objectsShareNoTests()
    {
        ConcreteMockApi other;
        QVERIFY(m_api->setManualTestResult(QStringLiteral("JOB2"), 2, QStringLiteral("yes"), QString()));
        QCOMPARE(other.getTestResponse(QStringLiteral("JOB2"), 2), QStringLiteral("no"));
    }

    void newRecordsHaveTheirDefaults()
    {
        const MockJobManagerAPI::MockTest test;
        QCOMPARE(test.id, 0LL);
        QCOMPARE(test.required, TestRequirement::TEST_UNDEFINED);
        QVERIFY(test.manualConfiguration.isEmpty());
        QVERIFY(test.extraText.isEmpty());
        const MockJobManagerAPI::MockJobInfo job;
        QCOMPARE(job.isArchived, false);
        QVERIFY(job.tests.empty());
    }

private:
    std::unique_ptr<ConcreteMockApi> m_api;
};

QTEST_APPLESS_MAIN(MockJobDataTest)
#include "MockJobDataTest.moc"
