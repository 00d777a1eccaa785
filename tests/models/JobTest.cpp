#include "models/Job.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/MetaObjectText.h"
#include "tests/support/RecordingApi.h"
#include "tests/support/SignalRecorder.h"

#include <QQmlEngine>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString id = QStringLiteral("WO-1");

JobSummary fullSummary()
{
    JobSummary summary;
    summary.workOrderLabel = QStringLiteral("Order");
    summary.customerName = QStringLiteral("Müller & Søn");
    summary.typeName = QStringLiteral("Fibre");
    summary.archived = true;
    summary.modifiedOn = QStringLiteral("2024-05-01T10:00:00Z");
    summary.requiredTests = 7;
    summary.completedTests = 3;
    summary.managedBy = QStringLiteral("Office");
    summary.state = QStringLiteral("ASSIGNED");
    summary.team = QStringList{ QStringLiteral("t1"), QStringLiteral("t2") };
    return summary;
}

/// Everything that an update of `id` asks, in order.
QStringList updateReads()
{
    QStringList reads;
    const char* const operations[] = { "getJobNumber", "getWorkOrderLabel", "getCustomerName", "getWorkflowTypeName",
        "isJobArchived", "getJobModifiedOn", "getTotalNumberOfRequiredTests", "getNumberOfCompletedRequiredTests",
        "getJobManagedByInfo", "getJobManagementState", "getTeamTechIds", "isJobInCache" };
    for (const char* operation : operations) {
        reads.append(QStringLiteral("call %1(\"WO-1\")").arg(QLatin1String(operation)));
    }
    return reads;
}

/// Everything that an update emits, in order.
QStringList updateSignals()
{
    QStringList expected;
    const char* const names[] = { "jobNumberChanged()", "customerNameChanged()", "workOrderLabelChanged()",
        "typeNameChanged()", "isArchivedChanged(<WO-1>)", "totalNumberOfRequiredTestsChanged()",
        "numberOfCompletedRequiredTestsChanged()", "managedByChanged()", "stateChanged()", "teamTechIdsChanged()",
        "testsChanged()", "optionalPropertiesChanged()", "allDisplayableJobPropertiesChanged()",
        "jobPropertyDisplayInfosChanged()", "allDisplayableTestPropertiesChanged()",
        "testPropertyDisplayInfosChanged()", "managedByChanged()", "stateChanged()" };
    for (const char* name : names) {
        expected.append(QStringLiteral("emit ") + QLatin1String(name));
    }
    return expected;
}

} // namespace

class JobTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal.take();
        m_messages = std::make_unique<MessageCollector>();
        m_api = std::make_shared<RecordingApi>(m_journal);
        m_api->setJob(id, fullSummary());
        m_api->setAnswer(QStringLiteral("getJobNumber(\"WO-1\")"), QStringLiteral("WO-1"));
    }

    void cleanup()
    {
        m_api.reset();
        m_messages.reset();
    }

    void constructorReadsInOrder()
    {
        const Job job(m_api, id);
        QCOMPARE(m_journal.take(), updateReads());
    }

    void propertiesGiveTheSummary_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("jobNumber") << QVariant(id);
        QTest::newRow("workOrderLabel") << QVariant(QStringLiteral("Order"));
        QTest::newRow("customerName") << QVariant(QStringLiteral("Müller & Søn"));
        QTest::newRow("typeName") << QVariant(QStringLiteral("Fibre"));
        QTest::newRow("isArchived") << QVariant(true);
        QTest::newRow("totalNumberOfRequiredTests") << QVariant(7);
        QTest::newRow("numberOfCompletedRequiredTests") << QVariant(3);
        QTest::newRow("managedBy") << QVariant(QStringLiteral("Office"));
        QTest::newRow("state") << QVariant(QStringLiteral("ASSIGNED"));
        QTest::newRow("teamTechIds") << QVariant(QStringList{ QStringLiteral("t1"), QStringLiteral("t2") });
    }

    void propertiesGiveTheSummary()
    {
        QFETCH(QVariant, value);
        const Job job(m_api, id);
        m_journal.take();
        QCOMPARE(job.property(QTest::currentDataTag()), value);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void idAndModifiedOnAreThereForTheManager()
    {
        const Job job(m_api, id);
        m_journal.take();
        QCOMPARE(job.concreteTypeJobID(), id);
        QCOMPARE(job.getModifiedOn(), QStringLiteral("2024-05-01T10:00:00Z"));
        QCOMPARE(m_journal.take(), QStringList());
    }

    void propertiesStandInOrder()
    {
        QCOMPARE(propertyLines(Job::staticMetaObject), QStringLiteral(R"(QString jobNumber jobNumberChanged
QString workOrderLabel workOrderLabelChanged
QString customerName customerNameChanged
QString typeName typeNameChanged
bool isArchived isArchivedChanged writable
int totalNumberOfRequiredTests totalNumberOfRequiredTestsChanged
int numberOfCompletedRequiredTests numberOfCompletedRequiredTestsChanged
QAbstractListModel* tests testsChanged
QQmlPropertyMap* optionalProperties optionalPropertiesChanged
QString managedBy managedByChanged
QString state stateChanged
int totalNumberOfRequiredAttributes totalNumberOfRequiredAttributesChanged
int numberOfIncompleteRequiredAttributes numberOfIncompleteRequiredAttributesChanged
bool fetchInProgress fetchInProgressChanged
QStringList teamTechIds teamTechIdsChanged
QStringList allDisplayableJobProperties allDisplayableJobPropertiesChanged
QVariantMap jobPropertyDisplayInfos jobPropertyDisplayInfosChanged
QStringList allDisplayableTestProperties allDisplayableTestPropertiesChanged
QVariantMap testPropertyDisplayInfos testPropertyDisplayInfosChanged)"));
    }

    void signalsAndInvokablesStandInOrder()
    {
        QCOMPARE(methodLines(Job::staticMetaObject), QStringLiteral(R"(signal jobNumberChanged()
signal customerNameChanged()
signal typeNameChanged()
signal workOrderLabelChanged()
signal isArchivedChanged(Job*)
signal totalNumberOfRequiredTestsChanged()
signal numberOfCompletedRequiredTestsChanged()
signal totalNumberOfRequiredAttributesChanged()
signal numberOfIncompleteRequiredAttributesChanged()
signal testsChanged()
signal optionalPropertiesChanged()
signal allDisplayableJobPropertiesChanged()
signal jobPropertyDisplayInfosChanged()
signal allDisplayableTestPropertiesChanged()
signal testPropertyDisplayInfosChanged()
signal managedByChanged()
signal stateChanged()
signal fetchInProgressChanged()
signal teamTechIdsChanged()
signal newTestResultsReceived()
signal optionalPropertyValueChanged(bool)
signal fetchJob(QString)
method updateDataFromAPI()
method getTestNamebyTestIndex(int)
method getTestDescriptionByTestIndex(int)
method getTestSiteByTestIndex(int)
method getTestTypeByTestIndex(int)
method testLocationsNumberByIndex(int)
method countTestsByDisplayName(QString)
method testLocationsNumberByDisplayName(QString)
method resetTestFilter()
method resetTestLocationSearch())"));
    }

    void updateReadsFirstAndThenEmitsInOrder()
    {
        Job job(m_api, id);
        const SignalRecorder recorder(job, m_journal);
        m_journal.take();
        job.updateDataFromAPI();
        QCOMPARE(m_journal.take(), updateReads() + updateSignals());
    }

    void unchangedValuesAreSignalledToo()
    {
        Job job(m_api, id);
        const SignalRecorder recorder(job, m_journal);
        job.updateDataFromAPI();
        m_journal.take();
        job.updateDataFromAPI();
        const QStringList entries = m_journal.take();
        QCOMPARE(entries.count(QStringLiteral("emit stateChanged()")), 2);
        QCOMPARE(entries.count(QStringLiteral("emit managedByChanged()")), 2);
        QCOMPARE(entries.count(QStringLiteral("emit jobNumberChanged()")), 1);
    }

    void updateTakesOverNewValues()
    {
        Job job(m_api, id);
        JobSummary changed = fullSummary();
        changed.customerName = QStringLiteral("Somebody else");
        changed.completedTests = 4;
        changed.modifiedOn = QStringLiteral("2024-05-02T10:00:00Z");
        m_api->setJob(id, changed);
        QCOMPARE(job.customerName(), QStringLiteral("Müller & Søn"));
        QVERIFY(QMetaObject::invokeMethod(&job, "updateDataFromAPI"));
        QCOMPARE(job.customerName(), QStringLiteral("Somebody else"));
        QCOMPARE(job.numberOfCompletedRequiredTests(), 4);
        QCOMPARE(job.getModifiedOn(), QStringLiteral("2024-05-02T10:00:00Z"));
    }

    void updateIsLogged()
    {
        const Job job(m_api, id);
        QCOMPARE(m_messages->take(),
            QStringList{
                QStringLiteral("debug: void jobmanager_ui::Job::updateDataFromAPI() : updating job:  \"WO-1\"") });
    }

    void destructionIsLoggedWithTheNumber()
    {
        {
            m_api->setAnswer(QStringLiteral("getJobNumber(\"WO-1\")"), QStringLiteral("4711"));
            const Job job(m_api, id);
            m_messages->take();
        }
        QCOMPARE(m_messages->take(), QStringList{ QStringLiteral("debug: Job  \"4711\" deallocated") });
    }

    void unknownJobTakesWhatTheInterfaceAnswers()
    {
        m_api->setAnswer(QStringLiteral("isJobArchived"), true);
        const Job job(m_api, QStringLiteral("?"));
        QCOMPARE(job.jobNumber(), QStringLiteral("?"));
        QCOMPARE(job.customerName(), QString());
        QCOMPARE(job.isArchived(), true);
        QCOMPARE(job.totalNumberOfRequiredTests(), 0);
        QCOMPARE(job.teamTechIds(), QStringList());
    }

    void settingTheSameArchivedStateAsksNobody()
    {
        Job job(m_api, id);
        const SignalRecorder recorder(job, m_journal);
        m_journal.take();
        job.setIsArchived(true);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void acceptedArchivingIsStoredAndSignalled()
    {
        Job job(m_api, id);
        const SignalRecorder recorder(job, m_journal);
        m_journal.take();
        QVERIFY(job.setProperty("isArchived", false));
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("call setIsJobArchived(\"WO-1\", false)"),
                QStringLiteral("emit isArchivedChanged(<WO-1>)") }));
        QCOMPARE(job.isArchived(), false);
    }

    void archivedSignalCarriesTheJobItself()
    {
        Job job(m_api, id);
        Job* carried = nullptr;
        bool stored = true;
        connect(&job, &Job::isArchivedChanged, this, [&](Job* sender) {
            carried = sender;
            stored = job.isArchived();
        });
        job.setIsArchived(false);
        QCOMPARE(carried, &job);
        QCOMPARE(stored, false);
    }

    void refusedArchivingChangesNothing()
    {
        m_api->setAnswer(QStringLiteral("setIsJobArchived"), false);
        Job job(m_api, id);
        const SignalRecorder recorder(job, m_journal);
        m_journal.take();
        m_messages->take();
        job.setIsArchived(false);
        QCOMPARE(m_journal.take(), QStringList{ QStringLiteral("call setIsJobArchived(\"WO-1\", false)") });
        QCOMPARE(job.isArchived(), true);
        QCOMPARE(m_messages->take(), QStringList());
    }

    void jobBelongsToCppWithoutAParent()
    {
        const Job job(m_api, id);
        QCOMPARE(job.parent(), nullptr);
        QCOMPARE(QQmlEngine::objectOwnership(const_cast<Job*>(&job)), QQmlEngine::CppOwnership);
    }

    void debugLinesCanBeHidden()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        {
            const Job job(m_api, id);
        }
        QLoggingCategory::setFilterRules(QString());
        QCOMPARE(m_messages->take(), QStringList());
    }

private:
    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
};

QTEST_GUILESS_MAIN(JobTest)
#include "JobTest.moc"
