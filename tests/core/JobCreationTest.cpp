#include "tests/core/RecordedManager.h"

#include <QPointer>
#include <QtTest>
#include <utility>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString idA = QStringLiteral("A");
const QString idB = QStringLiteral("B");
const QString idNew = QStringLiteral("WO-1");

QString entryLine(const QString& arguments)
{
    return QStringLiteral(
               "debug: bool jobmanager_ui::JobManager::createNewJob(QString, QString, QString, QString, bool) ")
        + arguments;
}

/// Takes each write, as a service does: the job is in the list, is current, is gone, and the count has moved.
class WillingApi : public RecordingApi
{
public:
    bool createJob(QString WorkOrderNo, QString TechID, QString templateName, QString locationsFilename,
        bool syncJobToNimbrel) override
    {
        absentTexts = { templateName.isNull(), locationsFilename.isNull() };
        if (!RecordingApi::createJob(WorkOrderNo, TechID, templateName, locationsFilename, syncJobToNimbrel)) {
            return false;
        }
        setJob(WorkOrderNo);
        moveCount();
        return true;
    }

    bool setCurrentJobByID(QString jobID) override
    {
        if (!RecordingApi::setCurrentJobByID(jobID)) {
            return false;
        }
        setCurrentID(jobID);
        if (activationCounts) {
            moveCount();
        }
        return true;
    }

    bool deleteJob(QString jobID) override
    {
        if (!RecordingApi::deleteJob(jobID)) {
            return false;
        }
        removeJob(jobID);
        moveCount();
        return true;
    }

    /// The service has done something; the count shows it unless `countLags`.
    void moveCount()
    {
        ++m_count;
        if (!countLags) {
            setChangeCount(m_count);
        }
    }

    bool countLags = false;
    /// Whether a change of the current job moves the count.
    bool activationCounts = true;
    /// Which of the template and the file of locations came as a null text.
    QList<bool> absentTexts;

private:
    int m_count = 0;
};

} // namespace

/// Creating and deleting jobs, and what the front end asks about jobs to be created: two jobs, "A" and "B", and a
/// service that takes everything unless a test says otherwise.
class JobCreationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_api = std::make_shared<WillingApi>();
        for (const char* const operation : { "createJob", "setCurrentJobByID", "deleteJob" }) {
            m_api->setAnswer(QString::fromLatin1(operation), true);
        }
        m_front = std::make_unique<RecordedManager>(m_api);
        m_front->rebuild({ idA, idB });
        m_announced.clear();
        connect(&m_front->manager, &JobManager::newJobCreated, this,
            [this](const Job* job) { m_announced.append(job->concreteTypeJobID()); });
        m_front->take();
    }

    void cleanup()
    {
        m_front.reset();
        m_api.reset();
    }

    // Creating.

    void jobIsCreatedAndMadeCurrentInOrder()
    {
        QCOMPARE(m_front->manager.createNewJob(
                     idNew, QStringLiteral("T-1"), QStringLiteral("Fibre"), QStringLiteral("places.txt"), false),
            true);
        QCOMPARE(m_front->take(),
            entryLine(QStringLiteral("\"WO-1\" \"T-1\" \"Fibre\" \"places.txt\"\n"))
                + QStringLiteral(
                    R"(call getChangeCount()
call createJob("WO-1", "T-1", "Fibre", "places.txt", false)
call setCurrentJobByID("WO-1")
call getChangeCount()
debug: Change count changed! Old change count:  0 , new change count:  2
call clearCache()
call isJobListInCache()
debug: Starting fething job list on separate thread
emit fetchingJobListChanged()
emit fetchJobList()
call getSettingsListInfo())"));
    }

    void restOfTheArgumentsIsAbsentAndTheJobIsSynced()
    {
        QCOMPARE(m_front->manager.createNewJob(idNew, QStringLiteral("T-1")), true);
        QVERIFY(
            m_front->api->journal().contains(QStringLiteral("call createJob(\"WO-1\", \"T-1\", \"\", \"\", true)")));
        QCOMPARE(m_api->absentTexts, (QList<bool>{ true, true }));
    }

    void noNumberAsksNobody_data()
    {
        QTest::addColumn<QString>("number");
        QTest::newRow("null") << QString();
        QTest::newRow("empty") << QStringLiteral("");
    }

    void noNumberAsksNobody()
    {
        QFETCH(QString, number);
        QCOMPARE(m_front->manager.createNewJob(number, QStringLiteral("T-1")), false);
        QCOMPARE(m_front->take(), entryLine(QStringLiteral("\"\" \"T-1\" \"\" \"\"")));
    }

    void numberInUseIsRefusedWithoutAWord()
    {
        QCOMPARE(m_front->manager.createNewJob(idB, QString()), false);
        QCOMPARE(m_front->take(), entryLine(QStringLiteral("\"B\" \"\" \"\" \"\"\ncall getChangeCount()")));
    }

    void numberOfAJobThatHasJustComeIsInUse()
    {
        m_api->keepJobListCached();
        m_api->setJob(idNew);
        m_api->moveCount();
        QCOMPARE(m_front->manager.createNewJob(idNew, QString()), false);
        QCOMPARE(m_api->count(QStringLiteral("clearCache")), 1);
        QCOMPARE(m_api->count(QStringLiteral("createJob")), 0);
        QCOMPARE(m_front->ids(), (QStringList{ idA, idB, idNew }));
    }

    void refusedCreationEndsThere()
    {
        m_api->setAnswer(QStringLiteral("createJob"), false);
        QCOMPARE(m_front->manager.createNewJob(idNew, QString()), false);
        QCOMPARE(m_front->take(),
            entryLine(QStringLiteral("\"WO-1\" \"\" \"\" \"\"\ncall getChangeCount()\n"
                                     "call createJob(\"WO-1\", \"\", \"\", \"\", true)")));
        m_front->rebuild({ idA, idB, idNew });
        QCOMPARE(m_announced, QStringList());
    }

    void jobThatCannotBeMadeCurrentIsNotAnnounced()
    {
        m_api->setAnswer(QStringLiteral("setCurrentJobByID"), false);
        QCOMPARE(m_front->manager.createNewJob(idNew, QString()), false);
        QCOMPARE(m_front->take(),
            entryLine(QStringLiteral("\"WO-1\" \"\" \"\" \"\"\ncall getChangeCount()\n"
                                     "call createJob(\"WO-1\", \"\", \"\", \"\", true)\n"
                                     "call setCurrentJobByID(\"WO-1\")")));
        m_front->poll();
        m_front->manager.onFetchJobListFinished();
        QVERIFY(m_front->manager.getJob(idNew) != nullptr);
        QCOMPARE(m_announced, QStringList());
    }

    void oneStepIsAFullUpdateToo()
    {
        m_api->keepJobListCached();
        m_api->countLags = true;
        m_api->setChangeCount(1);
        QCOMPARE(m_front->manager.createNewJob(idNew, QString()), true);
        QCOMPARE(m_api->count(QStringLiteral("clearCache")), 1);
        m_api->setChangeCount(2);
        m_api->setAnswer(QStringLiteral("createJob"), false);
        QCOMPARE(m_front->manager.createNewJob(QStringLiteral("WO-2"), QString()), false);
        QCOMPARE(m_api->count(QStringLiteral("clearCache")), 2);
    }

    void oneStepAfterTheCreationIsAFullUpdateToo()
    {
        m_api->keepJobListCached();
        m_api->activationCounts = false;
        QCOMPARE(m_front->manager.createNewJob(idNew, QString()), true);
        QCOMPARE(m_api->count(QStringLiteral("clearCache")), 1);
        QCOMPARE(m_announced, QStringList{ idNew });
    }

    // The announcement.

    void newJobIsAnnouncedInsideTheResetWhenItIsCurrent()
    {
        m_api->keepJobListCached();
        QString current;
        connect(&m_front->manager, &JobManager::newJobCreated, this,
            [&](Job* job) { current = m_front->manager.isCurrentJob(job) ? idNew : QString(); });
        QCOMPARE(m_front->manager.createNewJob(idNew, QString()), true);
        QCOMPARE(current, idNew);
        const QStringList entries = m_front->api->journal().take();
        QCOMPARE(lines(entries.mid(entries.lastIndexOf(QStringLiteral("call hasCurrentJob()")))),
            QStringLiteral(R"(call hasCurrentJob()
emit currentJobChanged()
emit newJobCreated(<WO-1>)
emit modelReset()
emit fetchingJobListChanged()
call getSettingsListInfo())"));
    }

    void newJobIsAnnouncedOnce()
    {
        m_api->keepJobListCached();
        m_front->manager.createNewJob(idNew, QString());
        m_front->manager.updateDataFromAPI(true);
        m_front->manager.updateDataFromAPI(false);
        QCOMPARE(m_announced, QStringList{ idNew });
    }

    void announcementComesAfterTheCallWhereTheListIsFetched()
    {
        m_front->start();
        QCOMPARE(m_front->manager.createNewJob(idNew, QString()), true);
        QCOMPARE(m_announced, QStringList());
        QCOMPARE(m_front->manager.doesJobExist(idNew), false);
        QTRY_COMPARE(m_announced, QStringList{ idNew });
        QCOMPARE(m_front->manager.currentJob(), m_front->manager.getJob(idNew));
    }

    void countThatLagsLeavesTheAnnouncementToTheNextUpdate()
    {
        m_api->keepJobListCached();
        m_api->countLags = true;
        QCOMPARE(m_front->manager.createNewJob(idNew, QString()), true);
        QCOMPARE(m_announced, QStringList());
        QCOMPARE(m_api->count(QStringLiteral("getAllJobIDs")), 0);
        m_front->manager.updateDataFromAPI(false);
        QCOMPARE(m_announced, QStringList{ idNew });
    }

    void jobThatIsNotInTheNextListIsNeverAnnounced()
    {
        m_api->countLags = true;
        QCOMPARE(m_front->manager.createNewJob(idNew, QString()), true);
        m_front->rebuild({ idA, idB });
        m_front->rebuild({ idA, idB, idNew });
        QVERIFY(m_front->manager.getJob(idNew) != nullptr);
        QCOMPARE(m_announced, QStringList());
    }

    void jobCreatedAtAnAnnouncementIsAnnouncedToo()
    {
        const QString second = QStringLiteral("WO-2");
        m_api->keepJobListCached();
        connect(&m_front->manager, &JobManager::newJobCreated, this, [&](const Job* job) {
            if (job->concreteTypeJobID() == idNew) {
                m_front->manager.createNewJob(second, QString());
            }
        });
        m_front->manager.createNewJob(idNew, QString());
        QCOMPARE(m_announced, (QStringList{ idNew, second }));
        QCOMPARE(m_front->manager.currentJob(), m_front->manager.getJob(second));
    }

    void creationDuringAChangeOfTheCurrentJobGoesOn()
    {
        m_front->start();
        m_api->hold(QStringLiteral("fetchJobList"));
        m_front->manager.updateDataFromAPI(true);
        QVERIFY(m_api->waitUntilHeld(QStringLiteral("fetchJobList")));
        m_front->manager.setCurrentJob(m_front->manager.getJob(idA));
        QCOMPARE(m_front->manager.createNewJob(idNew, QString()), true);
        m_api->release(QStringLiteral("fetchJobList"));
        QTRY_VERIFY(!m_front->manager.settingCurrentJob());
        // The older request came to its turn last, and the service has the last word.
        QTRY_COMPARE(m_front->manager.currentJob(), m_front->manager.getJob(idA));
        QVERIFY(m_front->manager.currentJob() != nullptr);
    }

    // Deleting.

    void jobIsDeletedAtOnceAndItsRowGoesInAFullUpdate()
    {
        m_api->keepJobListCached();
        QCOMPARE(m_front->manager.deleteJob(job(idA)), true);
        const QStringList entries = m_front->api->journal().take();
        QCOMPARE(lines(entries.mid(0, 4)), QStringLiteral(R"(call deleteJob("A")
call getChangeCount()
debug: Change count changed! Old change count:  0 , new change count:  1
call clearCache())"));
        QCOMPARE(m_front->ids(), QStringList{ idB });
    }

    void noJobIsNotDeleted()
    {
        QCOMPARE(m_front->manager.deleteJob(nullptr), false);
        QCOMPARE(m_front->take(), QString());
    }

    void refusedDeletionUpdatesNothing()
    {
        m_api->setAnswer(QStringLiteral("deleteJob"), false);
        QCOMPARE(m_front->manager.deleteJob(job(idA)), false);
        QCOMPARE(m_front->take(), QStringLiteral("call deleteJob(\"A\")"));
        QCOMPARE(m_front->ids(), (QStringList{ idA, idB }));
    }

    void deletedJobIsReadableUntilItsRowHasGone()
    {
        m_front->start();
        const QPointer<Job> held = job(idA);
        QCOMPARE(m_front->manager.deleteJob(held), true);
        QVERIFY(!held.isNull());
        QCOMPARE(held->jobNumber(), idA);
        QTRY_VERIFY(held.isNull());
        QCOMPARE(m_front->ids(), QStringList{ idB });
    }

    void deletedCurrentJobIsCurrentNoMore()
    {
        m_api->keepJobListCached();
        m_api->setCurrentID(idA);
        m_front->rebuild({ idA, idB });
        QVERIFY(m_front->manager.currentJob() != nullptr);
        m_api->setCurrentID(QString());
        QCOMPARE(m_front->manager.deleteJob(job(idA)), true);
        QCOMPARE(m_front->manager.currentJob(), nullptr);
    }

    // Asking.

    void jobExistsOnceARebuildHasSeenIt()
    {
        QCOMPARE(m_front->manager.doesJobExist(idA), true);
        m_api->setJob(idNew);
        QCOMPARE(m_front->manager.doesJobExist(idNew), false);
        QCOMPARE(m_front->take(), QString());
        m_front->rebuild({ idA, idNew });
        QCOMPARE(m_front->manager.doesJobExist(idNew), true);
        QCOMPARE(m_front->manager.doesJobExist(idB), false);
    }

    void numberReadsAsAnId()
    {
        m_front->rebuild({ QStringLiteral("7") });
        QCOMPARE(m_front->manager.doesJobExist(7), true);
        QCOMPARE(m_front->manager.doesJobExist(QString()), false);
    }

    void valueThatIsNoTextIsNoId_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("list") << QVariant(QVariantList{ idA });
        QTest::newRow("map") << QVariant(QVariantMap{ { idA, idA } });
        QTest::newRow("nothing") << QVariant();
    }

    void valueThatIsNoTextIsNoId()
    {
        QFETCH(QVariant, value);
        QCOMPARE(m_front->manager.doesJobExist(value), false);
        QCOMPARE(m_front->take(),
            QStringLiteral("debug: Invalid type sent to  bool jobmanager_ui::JobManager::doesJobExist(QVariant)"));
    }

    void answersComeFromTheInterfaceAsTheyAre()
    {
        m_api->setAnswer(QStringLiteral("getTechID"), QStringLiteral("T-7"));
        m_api->setAnswer(
            QStringLiteral("fetchJobTemplates"), QStringList{ QStringLiteral("b"), QStringLiteral("a"), QString() });
        m_api->setAnswer(QStringLiteral("getWorkOrderLabelFromTemplate"), QStringLiteral("Ticket"));
        m_api->setAnswer(QStringLiteral("getTemplateNumberOfTests"), -3);
        QCOMPARE(m_front->manager.getTechID(), QStringLiteral("T-7"));
        QCOMPARE(
            m_front->manager.fetchJobTemplates(), (QStringList{ QStringLiteral("b"), QStringLiteral("a"), QString() }));
        QCOMPARE(m_front->manager.getWorkOrderLabelFromTemplate(QStringLiteral("Größe/1")), QStringLiteral("Ticket"));
        QCOMPARE(m_front->manager.getTemplateNumberOfTests(QString()), -3);
        QCOMPARE(m_front->take(), QStringLiteral(R"(call getTechID()
call fetchJobTemplates()
call getWorkOrderLabelFromTemplate("Größe/1")
call getTemplateNumberOfTests(""))"));
    }

private:
    Job* job(const QString& jobID) const { return m_front->manager.getJob(jobID); }

    std::shared_ptr<WillingApi> m_api;
    std::unique_ptr<RecordedManager> m_front;
    QStringList m_announced;
};

QTEST_GUILESS_MAIN(JobCreationTest)
#include "JobCreationTest.moc"
