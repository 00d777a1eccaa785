#include "tests/api/Readings.h"
#include "tests/support/ConcreteMockApi.h"
#include "tests/support/MessageCollector.h"

#include <functional>
#include <memory>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

using Write = std::function<bool(MockJobManagerAPI&)>;

Q_DECLARE_METATYPE(Write)

class MockJobWritesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_messages = std::make_unique<MessageCollector>();
        m_api = std::make_unique<ConcreteMockApi>();
    }

    void cleanup()
    {
        m_api.reset();
        m_messages.reset();
    }

    void acceptedWriteMovesTheChangeCountByOne_data()
    {
        QTest::addColumn<Write>("write");
        addWrite(
            "make a job current", [](MockJobManagerAPI& api) { return api.setCurrentJobByID(QStringLiteral("JOB1")); });
        addWrite("make an unknown job current",
            [](MockJobManagerAPI& api) { return api.setCurrentJobByID(QStringLiteral("unknown")); });
        addWrite("clear the current job", [](MockJobManagerAPI& api) { return api.setCurrentJobByID(QString()); });
        addWrite("archive", [](MockJobManagerAPI& api) { return api.setIsJobArchived(QStringLiteral("JOB1"), true); });
        addWrite("archive what is archived",
            [](MockJobManagerAPI& api) { return api.setIsJobArchived(QStringLiteral("JOB3"), true); });
        addWrite("job property", [](MockJobManagerAPI& api) {
            return api.setOptionalJobProperty(QStringLiteral("JOB1"), QStringLiteral("onlyLetters"), 7);
        });
        addWrite("hidden job property", [](MockJobManagerAPI& api) {
            return api.setOptionalJobProperty(QStringLiteral("JOB2"), QStringLiteral("otherJobProperty"), 7);
        });
        addWrite("customer of an empty job", [](MockJobManagerAPI& api) {
            return api.setOptionalJobProperty(QStringLiteral("JOB_EMPTY_3"), QStringLiteral("customer"), 7);
        });
        addWrite("test property", [](MockJobManagerAPI& api) {
            return api.setOptionalTestProperty(QStringLiteral("JOB1"), 0, QStringLiteral("location"), 7);
        });
        addWrite("answer", [](MockJobManagerAPI& api) {
            return api.setManualTestResult(QStringLiteral("JOB2"), 2, QStringLiteral("yes"), QString());
        });
        addWrite("answer of a measurement", [](MockJobManagerAPI& api) {
            return api.setManualTestResult(QStringLiteral("JOB1"), 0, QStringLiteral("yes"), QString());
        });
        addWrite(
            "create", [](MockJobManagerAPI& api) { return api.createJob(QStringLiteral("NEW"), {}, {}, {}, true); });
        addWrite("delete", [](MockJobManagerAPI& api) { return api.deleteJob(QStringLiteral("JOB1")); });
    }

    void acceptedWriteMovesTheChangeCountByOne()
    {
        QFETCH(Write, write);
        QVERIFY(write(*m_api));
        QCOMPARE(m_api->getChangeCount(), 1);
    }

    void refusedWriteLeavesTheChangeCount_data()
    {
        QTest::addColumn<Write>("write");
        addWrite("archive an unknown job",
            [](MockJobManagerAPI& api) { return api.setIsJobArchived(QStringLiteral("unknown"), true); });
        addWrite("property of an unknown job", [](MockJobManagerAPI& api) {
            return api.setOptionalJobProperty(QStringLiteral("unknown"), QStringLiteral("onlyLetters"), 7);
        });
        addWrite("customer of a job without one", [](MockJobManagerAPI& api) {
            return api.setOptionalJobProperty(QStringLiteral("JOB1"), QStringLiteral("customer"), 7);
        });
        addWrite("property of an unknown test", [](MockJobManagerAPI& api) {
            return api.setOptionalTestProperty(QStringLiteral("JOB1"), 15, QStringLiteral("location"), 7);
        });
        addWrite("unknown property of a test", [](MockJobManagerAPI& api) {
            return api.setOptionalTestProperty(QStringLiteral("JOB1"), 0, QStringLiteral("onlyLetters"), 7);
        });
        for (const char* name : { "location", "otherTestInfo1", "otherTestInfo2", "numberProperty" }) {
            for (const int test : { 2, 3 }) {
                QTest::addRow("%s of manual test %d", name, test) << Write([name, test](MockJobManagerAPI& api) {
                    return api.setOptionalTestProperty(QStringLiteral("JOB2"), test, QString::fromLatin1(name), 7);
                });
            }
        }
        addWrite("answer of an unknown test", [](MockJobManagerAPI& api) {
            return api.setManualTestResult(QStringLiteral("JOB2"), 4, QStringLiteral("yes"), QString());
        });
        addWrite("create what there is",
            [](MockJobManagerAPI& api) { return api.createJob(QStringLiteral("JOB1"), {}, {}, {}, true); });
        addWrite(
            "delete an unknown job", [](MockJobManagerAPI& api) { return api.deleteJob(QStringLiteral("unknown")); });
    }

    void refusedWriteLeavesTheChangeCount()
    {
        QFETCH(Write, write);
        QVERIFY(!write(*m_api));
        QCOMPARE(m_api->getChangeCount(), 0);
    }

    void refusedPropertyIsNotAdded()
    {
        QVERIFY(
            !m_api->setOptionalJobProperty(QStringLiteral("JOB1"), QStringLiteral("customer"), QStringLiteral("x")));
        QVERIFY(!m_api->getOptionalJobProperty(QStringLiteral("JOB1"), QStringLiteral("customer")).isValid());
        QVERIFY(!m_api->setOptionalTestProperty(
            QStringLiteral("JOB2"), 2, QStringLiteral("location"), QStringLiteral("x")));
        QVERIFY(!m_api->getOptionalTestProperty(QStringLiteral("JOB2"), 2, QStringLiteral("location")).isValid());
    }

    void unknownJobCanBeCurrent()
    {
        QVERIFY(m_api->setCurrentJobByID(QStringLiteral("unknown")));
        QVERIFY(m_api->hasCurrentJob());
        QCOMPARE(m_api->getCurrentJobID(), QStringLiteral("unknown"));
    }

    void emptyIDClearsTheCurrentJob()
    {
        m_api->setCurrentJobByID(QStringLiteral("JOB1"));
        QVERIFY(m_api->setCurrentJobByID(QString()));
        QVERIFY(!m_api->hasCurrentJob());
        QCOMPARE(m_api->getCurrentJobID(), QString());
        QCOMPARE(m_api->getChangeCount(), 2);
    }

    void jobIsArchivedAndRestored()
    {
        QVERIFY(m_api->setIsJobArchived(QStringLiteral("JOB1"), true));
        QVERIFY(m_api->isJobArchived(QStringLiteral("JOB1")));
        QVERIFY(m_api->setIsJobArchived(QStringLiteral("JOB1"), false));
        QVERIFY(!m_api->isJobArchived(QStringLiteral("JOB1")));
    }

    void jobPropertyTakesAnyValue_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("stored");
        QTest::newRow("text for a number") << "numberJobProperty" << QVariant(QStringLiteral("text")) << "QString text";
        QTest::newRow("digits for letters") << "onlyLetters" << QVariant(QStringLiteral("12")) << "QString 12";
        QTest::newRow("a whole number") << "otherJobProperty" << QVariant(5) << "int 5";
        QTest::newRow("no value") << "otherJobProperty" << QVariant() << "invalid";
    }

    void jobPropertyTakesAnyValue()
    {
        QFETCH(QString, name);
        QFETCH(QVariant, value);
        QVERIFY(m_api->setOptionalJobProperty(QStringLiteral("JOB1"), name, value));
        QTEST(typed(m_api->getOptionalJobProperty(QStringLiteral("JOB1"), name)), "stored");
    }

    void jobPropertyWithoutAValueCanBeWrittenAgain()
    {
        QVERIFY(m_api->setOptionalJobProperty(QStringLiteral("JOB1"), QStringLiteral("onlyLetters"), QVariant()));
        QVERIFY(m_api->setOptionalJobProperty(QStringLiteral("JOB1"), QStringLiteral("onlyLetters"), 1));
    }

    void writtenJobPropertyIsLogged()
    {
        m_api->setOptionalJobProperty(
            QStringLiteral("JOB1"), QStringLiteral("numberJobProperty"), QStringLiteral("text"));
        QCOMPARE(m_messages->take(),
            QStringList{ QStringLiteral("debug: Setting  \"numberJobProperty\"  to  QVariant(QString, \"text\")") });
    }

    void otherWritesLogNothing()
    {
        m_api->setOptionalJobProperty(QStringLiteral("JOB1"), QStringLiteral("customer"), 7);
        m_api->setOptionalTestProperty(QStringLiteral("JOB1"), 0, QStringLiteral("location"), 7);
        m_api->setManualTestResult(QStringLiteral("JOB2"), 2, QStringLiteral("yes"), QString());
        m_api->setCurrentJobByID(QStringLiteral("JOB1"));
        m_api->createJob(QStringLiteral("NEW"), {}, {}, {}, true);
        m_api->deleteJob(QStringLiteral("NEW"));
        QCOMPARE(m_messages->take(), QStringList());
    }

    void testPropertyTakesAnyValue()
    {
        QVERIFY(m_api->setOptionalTestProperty(
            QStringLiteral("JOB1"), 0, QStringLiteral("numberProperty"), QStringLiteral("text")));
        QCOMPARE(typed(m_api->getOptionalTestProperty(QStringLiteral("JOB1"), 0, QStringLiteral("numberProperty"))),
            QStringLiteral("QString text"));
    }

    void answerIsStoredAndTheStatusStays()
    {
        QVERIFY(
            m_api->setManualTestResult(QStringLiteral("JOB2"), 3, QStringLiteral("yes"), QStringLiteral("ignored")));
        QCOMPARE(m_api->getTestResponse(QStringLiteral("JOB2"), 3), QStringLiteral("yes"));
        QCOMPARE(m_api->getTestStatus(QStringLiteral("JOB2"), 3), QStringLiteral("skipped"));
        QVERIFY(m_api->getTestTime(QStringLiteral("JOB2"), 3).isNull());
    }

    void createdJobHasItsNumberAndFourProperties()
    {
        const QString job = QStringLiteral("WO-7");
        QVERIFY(m_api->createJob(
            job, QStringLiteral("tech"), QStringLiteral("MockTemplate1"), QStringLiteral("locations.csv"), true));
        QCOMPARE(m_api->getAllJobIDs().size(), std::size_t{ 21 });
        QCOMPARE(m_api->getJobNumber(job), job);
        QCOMPARE(m_api->isJobArchived(job), false);
        const auto property = [&](const char* name) {
            return typed(m_api->getOptionalJobProperty(job, QString::fromLatin1(name)));
        };
        QCOMPARE(property("customer"), QStringLiteral("QString "));
        QCOMPARE(property("otherJobProperty"), QStringLiteral("QString OtherJobProperty1"));
        QCOMPARE(property("numberJobProperty"), QStringLiteral("double 0"));
        QCOMPARE(property("onlyLetters"), QStringLiteral("QString abc"));
    }

    void createdJobHasNothingElse()
    {
        const QString job = QStringLiteral("WO-7");
        m_api->createJob(
            job, QStringLiteral("tech"), QStringLiteral("MockTemplate1"), QStringLiteral("locations.csv"), true);
        QCOMPARE(m_api->getWorkOrderLabel(job), QString());
        QCOMPARE(m_api->getCustomerName(job), QString());
        QCOMPARE(m_api->getWorkflowTypeName(job), QString());
        QCOMPARE(m_api->getJobManagedByInfo(job), QString());
        QCOMPARE(m_api->getJobManagementState(job), QString());
        QCOMPARE(m_api->getTotalNumberOfRequiredTests(job), 0);
        QCOMPARE(text(m_api->getAllTestIDs(job)), QString());
        QCOMPARE(text(m_api->getRequiredTestIDs(job)), QString());
        QCOMPARE(text(m_api->getOptionalTestIDs(job)), QString());
    }

    void createdJobDoesNotChangeTheTechnician()
    {
        m_api->createJob(QStringLiteral("WO-7"), QStringLiteral("tech"), {}, {}, true);
        QCOMPARE(m_api->getTechID(), QString());
        QCOMPARE(m_api->getTeamTechIds(QStringLiteral("WO-7")), QStringList());
    }

    void secondCreationLeavesTheFirstJob()
    {
        m_api->createJob(QStringLiteral("WO-7"), {}, {}, {}, true);
        m_api->setOptionalJobProperty(QStringLiteral("WO-7"), QStringLiteral("customer"), QStringLiteral("kept"));
        QVERIFY(!m_api->createJob(QStringLiteral("WO-7"), QStringLiteral("tech"), {}, {}, false));
        QCOMPARE(typed(m_api->getOptionalJobProperty(QStringLiteral("WO-7"), QStringLiteral("customer"))),
            QStringLiteral("QString kept"));
        QCOMPARE(m_api->getChangeCount(), 2);
    }

    void deletedJobIsGone()
    {
        QVERIFY(m_api->deleteJob(QStringLiteral("JOB1")));
        QVERIFY(!sortedJobIDs(*m_api).contains(QStringLiteral("JOB1")));
        QCOMPARE(m_api->getAllJobIDs().size(), std::size_t{ 19 });
        QCOMPARE(m_api->getTestStatus(QStringLiteral("JOB1"), 0), QString());
    }

    void deletedNumberCanBeUsedAgain()
    {
        m_api->deleteJob(QStringLiteral("JOB1"));
        QVERIFY(m_api->createJob(QStringLiteral("JOB1"), {}, {}, {}, true));
        QCOMPARE(m_api->getCustomerName(QStringLiteral("JOB1")), QString());
        QCOMPARE(text(m_api->getAllTestIDs(QStringLiteral("JOB1"))), QString());
    }

    void deletingTheCurrentJobClearsItInOneStep()
    {
        m_api->setCurrentJobByID(QStringLiteral("JOB1"));
        const int before = m_api->getChangeCount();
        QVERIFY(m_api->deleteJob(QStringLiteral("JOB1")));
        QVERIFY(!m_api->hasCurrentJob());
        QCOMPARE(m_api->getChangeCount(), before + 1);
    }

    void refusedDeletionLeavesACurrentJobThatDoesNotExist()
    {
        m_api->setCurrentJobByID(QStringLiteral("unknown"));
        QVERIFY(!m_api->deleteJob(QStringLiteral("unknown")));
        QCOMPARE(m_api->getCurrentJobID(), QStringLiteral("unknown"));
        QCOMPARE(m_api->getChangeCount(), 1);
    }

    void deletingAnotherJobLeavesTheCurrentOne()
    {
        m_api->setCurrentJobByID(QStringLiteral("JOB1"));
        QVERIFY(m_api->deleteJob(QStringLiteral("JOB2")));
        QCOMPARE(m_api->getCurrentJobID(), QStringLiteral("JOB1"));
    }

private:
    static void addWrite(const char* name, const Write& write) { QTest::newRow(name) << write; }

    std::unique_ptr<MessageCollector> m_messages;
    std::unique_ptr<ConcreteMockApi> m_api;
};

QTEST_APPLESS_MAIN(MockJobWritesTest)
#include "MockJobWritesTest.moc"
