#include "core/JobManagerWorker.h"
#include "core/JobManager.h"
#include "tests/support/Deadline.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/MetaObjectText.h"
#include "tests/support/RecordingApi.h"
#include "tests/support/SignalRecorder.h"

#include <atomic>
#include <csignal>
#include <functional>
#include <memory>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>
#include <QtTest>
#include <thread>
#include <unistd.h>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

using Request = std::function<void(JobManagerWorker&)>;
using ManagerRequest = std::function<void(JobManager&)>;

void ignoreSignal(int /*number*/)
{
}

/// Whether the kernel has put the thread of this process to sleep, as it does with one that waits for another.
bool isAsleep(pid_t thread)
{
    QFile status(QStringLiteral("/proc/self/task/%1/stat").arg(thread));
    if (!status.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray text = status.readAll();
    return text.mid(text.lastIndexOf(')') + 2, 1) == "S";
}

} // namespace

Q_DECLARE_METATYPE(Request)
Q_DECLARE_METATYPE(ManagerRequest)

class JobManagerWorkerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal.take();
        m_messages = std::make_unique<MessageCollector>();
        m_api = std::make_shared<RecordingApi>(m_journal);
    }

    void cleanup()
    {
        m_api.reset();
        m_messages.reset();
    }

    // The class.

    void signalsAndSlotsStandInOrder()
    {
        const QMetaObject& meta = JobManagerWorker::staticMetaObject;
        QCOMPARE(methodLines(meta), QStringLiteral(R"(signal backgroundRequestInProgressChanged()
signal testLaunchFinished(QVariant,QVariant,QString)
signal syncFinished()
signal fetchJobListFinished()
signal fetchJobFinished(QString)
signal setCurrentJobFinished()
signal exportJobDataFinished(QString)
signal importJobsFinished(int)
signal exchangeJobFinished(bool)
slot onLaunchTest(QVariant,QVariant)
slot onSyncWithNimbrel()
slot onFetchJobList()
slot onFetchJob(QString)
slot onSetCurrentJob(QString)
slot onExportJobData(QString,QString)
slot onImportJobs(QString)
slot onExchangeJob(QString))"));
        QCOMPARE(meta.propertyCount(), QObject::staticMetaObject.propertyCount());
    }

    void newWorkerIsAtRestAndWithoutAParent()
    {
        const JobManagerWorker worker(m_api);
        QCOMPARE(worker.isBackgroundRequestInProgress(), false);
        QCOMPARE(worker.parent(), nullptr);
        QCOMPARE(m_journal.take(), QStringList());
    }

    // The requests.

    void requestRaisesTheFlagWorksLowersItAndThenTells_data()
    {
        QTest::addColumn<Request>("request");
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("finish");
        const QString text = QStringLiteral("x");
        QTest::newRow("fetchJobList") << Request([](JobManagerWorker& worker) { worker.onFetchJobList(); })
                                      << "fetchJobList()"
                                      << "fetchJobListFinished()";
        QTest::newRow("fetchJob") << Request([](JobManagerWorker& worker) { worker.onFetchJob(QStringLiteral("7")); })
                                  << "fetchJob(\"7\")"
                                  << "fetchJobFinished(\"7\")";
        QTest::newRow("setCurrentJob") << Request([](JobManagerWorker& worker) {
            worker.onSetCurrentJob(QStringLiteral("7"));
        }) << "setCurrentJobByID(\"7\")"
                                       << "setCurrentJobFinished()";
        QTest::newRow("setCurrentJob to none")
            << Request([](JobManagerWorker& worker) { worker.onSetCurrentJob(QString()); }) << "setCurrentJobByID(\"\")"
            << "setCurrentJobFinished()";
        QTest::newRow("exportJobData") << Request([](JobManagerWorker& worker) {
            worker.onExportJobData(QStringLiteral("7"), QStringLiteral("/media/usb"));
        }) << "exportJobData(\"7\", \"/media/usb\")"
                                       << "exportJobDataFinished(\"/media/usb/out\")";
        QTest::newRow("importJobs") << Request([](JobManagerWorker& worker) {
            worker.onImportJobs(QStringLiteral("/media/usb"));
        }) << "importJobs(\"/media/usb\")"
                                    << "importJobsFinished(3)";
        QTest::newRow("exchangeJob") << Request([](JobManagerWorker& worker) {
            worker.onExchangeJob(QStringLiteral("/dev/qzx"));
        }) << "exchangeCurrentJob(\"/dev/qzx\")"
                                     << "exchangeJobFinished(true)";
        QTest::newRow("launchTest") << Request([](JobManagerWorker& worker) {
            worker.onLaunchTest(QStringLiteral("7"), 4294967295LL);
        }) << "launchTest(\"7\", 4294967295)"
                                    << "testLaunchFinished(\"7\", 4294967295, \"E1^x\")";
    }

    void requestRaisesTheFlagWorksLowersItAndThenTells()
    {
        QFETCH(Request, request);
        QFETCH(QString, call);
        QFETCH(QString, finish);
        scriptAnswers();
        JobManagerWorker worker(m_api);
        connect(&worker, &JobManagerWorker::backgroundRequestInProgressChanged, this, [&] {
            m_journal.add(
                worker.isBackgroundRequestInProgress() ? QStringLiteral("flag up") : QStringLiteral("flag down"));
        });
        const SignalRecorder recorder(worker, m_journal);
        request(worker);
        QCOMPARE(lines(m_journal.take()),
            lines({ QStringLiteral("flag up"), QStringLiteral("emit backgroundRequestInProgressChanged()"),
                QStringLiteral("call ") + call, QStringLiteral("flag down"),
                QStringLiteral("emit backgroundRequestInProgressChanged()"), QStringLiteral("emit ") + finish }));
        QCOMPARE(m_messages->take(), QStringList());
    }

    void failureTravelsAsAValue_data()
    {
        QTest::addColumn<Request>("request");
        QTest::addColumn<QString>("finish");
        QTest::newRow("export") << Request([](JobManagerWorker& worker) {
            worker.onExportJobData(QStringLiteral("7"), QString());
        }) << "emit exportJobDataFinished(\"\")";
        QTest::newRow("import") << Request([](JobManagerWorker& worker) { worker.onImportJobs(QString()); })
                                << "emit importJobsFinished(0)";
        QTest::newRow("exchange") << Request([](JobManagerWorker& worker) { worker.onExchangeJob(QString()); })
                                  << "emit exchangeJobFinished(false)";
        QTest::newRow("set current job") << Request([](JobManagerWorker& worker) {
            worker.onSetCurrentJob(QStringLiteral("?"));
        }) << "emit setCurrentJobFinished()";
    }

    void failureTravelsAsAValue()
    {
        QFETCH(Request, request);
        QFETCH(QString, finish);
        JobManagerWorker worker(m_api);
        const SignalRecorder recorder(worker, m_journal);
        request(worker);
        QCOMPARE(m_journal.entries().last(), finish);
    }

    void launchConvertsItsIdsAndGivesThemBackAsTheyCame_data()
    {
        QTest::addColumn<QVariant>("jobID");
        QTest::addColumn<QVariant>("testID");
        QTest::addColumn<QString>("call");
        const QVariantList list{ 1, 2 };
        QTest::newRow("as they are") << QVariant(QStringLiteral("7")) << QVariant(12LL) << "launchTest(\"7\", 12)";
        QTest::newRow("numbers as texts")
            << QVariant(QStringLiteral("7")) << QVariant(QStringLiteral("12")) << "launchTest(\"7\", 12)";
        QTest::newRow("a text that is no number")
            << QVariant(QStringLiteral("7")) << QVariant(QStringLiteral("x")) << "launchTest(\"7\", 0)";
        QTest::newRow("lists") << QVariant(list) << QVariant(list) << "launchTest(\"\", 0)";
        QTest::newRow("nothing") << QVariant() << QVariant() << "launchTest(\"\", 0)";
        QTest::newRow("a number as the job") << QVariant(7) << QVariant(12) << "launchTest(\"7\", 12)";
    }

    void launchConvertsItsIdsAndGivesThemBackAsTheyCame()
    {
        QFETCH(QVariant, jobID);
        QFETCH(QVariant, testID);
        QFETCH(QString, call);
        JobManagerWorker worker(m_api);
        QVariantList back;
        connect(&worker, &JobManagerWorker::testLaunchFinished, this, [&](const QVariant& job, const QVariant& test) {
            back = { job, test };
        });
        worker.onLaunchTest(jobID, testID);
        QCOMPARE(m_journal.take(), QStringList{ QStringLiteral("call ") + call });
        QCOMPARE(back, (QVariantList{ jobID, testID }));
        QCOMPARE(back.first().userType(), jobID.userType());
        QCOMPARE(back.last().userType(), testID.userType());
    }

    void syncOnlyHoldsTheFlagUpForTwoSeconds()
    {
        JobManagerWorker worker(m_api);
        const SignalRecorder recorder(worker, m_journal);
        QElapsedTimer time;
        time.start();
        worker.onSyncWithNimbrel();
        QVERIFY(time.elapsed() >= 2000);
        QVERIFY(time.elapsed() < stretched(std::chrono::milliseconds(3000)).count());
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("emit backgroundRequestInProgressChanged()"),
                QStringLiteral("emit backgroundRequestInProgressChanged()"), QStringLiteral("emit syncFinished()") }));
    }

    void syncGoesOnAfterAnInterruption()
    {
        struct sigaction action = {};
        struct sigaction previous = {};
        action.sa_handler = &ignoreSignal;
        QCOMPARE(sigaction(SIGUSR1, &action, &previous), 0);
        const pthread_t sleeper = pthread_self();
        std::atomic<bool> done{ false };
        std::thread interrupter([&] {
            while (!done) {
                pthread_kill(sleeper, SIGUSR1);
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
            }
        });
        JobManagerWorker worker(m_api);
        QElapsedTimer time;
        time.start();
        worker.onSyncWithNimbrel();
        const qint64 elapsed = time.elapsed();
        done = true;
        interrupter.join();
        QCOMPARE(sigaction(SIGUSR1, &previous, nullptr), 0);
        QVERIFY(elapsed >= 2000);
    }

    // The flag.

    void sameValueAgainIsWarnedOfAndStillSignalled()
    {
        JobManagerWorker worker(m_api);
        const SignalRecorder recorder(worker, m_journal);
        worker.setBackgroundRequestInProgress(false);
        QCOMPARE(m_messages->take(),
            QStringList{ QStringLiteral("warning: WARNING: Setting the same value for "
                                        "m_backgroundRequestInProgress. Something is not right") });
        QCOMPARE(m_journal.take(), QStringList{ QStringLiteral("emit backgroundRequestInProgressChanged()") });
        QCOMPARE(worker.isBackgroundRequestInProgress(), false);
    }

    void newValueIsStoredAndSignalledWithoutAMessage()
    {
        JobManagerWorker worker(m_api);
        worker.setBackgroundRequestInProgress(true);
        QCOMPARE(worker.isBackgroundRequestInProgress(), true);
        QCOMPARE(m_messages->take(), QStringList());
    }

    void otherThreadIsWarnedAndItsValueStillStored()
    {
        QThread home;
        auto* const worker = new JobManagerWorker(m_api);
        worker->moveToThread(&home);
        worker->setBackgroundRequestInProgress(true);
        QCOMPARE(m_messages->take(),
            QStringList{
                QStringLiteral("warning: WARNING: This method should only be called from the worker thread") });
        QCOMPARE(worker->isBackgroundRequestInProgress(), true);
        delete worker;
    }

    void bothFaultsAreWarnedOfInOrder()
    {
        QThread home;
        auto* const worker = new JobManagerWorker(m_api);
        worker->moveToThread(&home);
        worker->setBackgroundRequestInProgress(false);
        QCOMPARE(m_messages->take(),
            (QStringList{ QStringLiteral("warning: WARNING: Setting the same value for "
                                         "m_backgroundRequestInProgress. Something is not right"),
                QStringLiteral("warning: WARNING: This method should only be called from the worker thread") }));
        delete worker;
    }

    // Under the manager.

    void managersRequestsReachTheWorkersThread_data()
    {
        QTest::addColumn<ManagerRequest>("request");
        QTest::addColumn<QString>("call");
        QTest::newRow("launch") << ManagerRequest([](JobManager& manager) {
            Q_EMIT manager.launchTestSignal(QStringLiteral("7"), 1LL);
        }) << "call launchTest(\"7\", 1) on worker";
        QTest::newRow("set current job") << ManagerRequest([](JobManager& manager) {
            Q_EMIT manager.setCurrentJobOnBackgroundThread(QStringLiteral("7"));
        }) << "call setCurrentJobByID(\"7\") on worker";
        QTest::newRow("export") << ManagerRequest([](JobManager& manager) {
            Q_EMIT manager.exportJobDataOnBackgroundThread(QStringLiteral("7"), QStringLiteral("/m"));
        }) << "call exportJobData(\"7\", \"/m\") on worker";
        QTest::newRow("import") << ManagerRequest([](JobManager& manager) {
            Q_EMIT manager.importJobsOnBackgroundThread(QStringLiteral("/m"));
        }) << "call importJobs(\"/m\") on worker";
        QTest::newRow("exchange") << ManagerRequest([](JobManager& manager) {
            Q_EMIT manager.exchangeJobOnBackgroundThread(QStringLiteral("/dev/qzx"));
        }) << "call exchangeCurrentJob(\"/dev/qzx\") on worker";
        QTest::newRow("fetch") << ManagerRequest([](JobManager& manager) { Q_EMIT manager.fetchJobList(); })
                               << "call fetchJobList() on worker";
    }

    void managersRequestsReachTheWorkersThread()
    {
        QFETCH(ManagerRequest, request);
        QFETCH(QString, call);
        JobManager manager(m_api);
        manager.initialize();
        QTRY_VERIFY(!manager.fetchingJobList());
        m_journal.take();
        request(manager);
        QVERIFY(m_journal.waitFor(call));
    }

    void syncRequestRaisesTheManagersBusyTest()
    {
        JobManager manager(m_api);
        manager.initialize();
        QTRY_VERIFY(!manager.fetchingJobList());
        Q_EMIT manager.syncWithNimbrelSignal();
        QTRY_VERIFY(manager.isBackgroundRequestInProgress());
        QTRY_VERIFY(!manager.isBackgroundRequestInProgress());
    }

    void requestsRunOneAtATimeInTheirOrder()
    {
        m_api->hold(QStringLiteral("fetchJobList"));
        JobManager manager(m_api);
        manager.initialize();
        QVERIFY(m_api->waitUntilHeld(QStringLiteral("fetchJobList")));
        Q_EMIT manager.launchTestSignal(QStringLiteral("7"), 1LL);
        Q_EMIT manager.importJobsOnBackgroundThread(QStringLiteral("/m"));
        m_journal.take();
        QVERIFY(manager.isBackgroundRequestInProgress());
        QCOMPARE(m_journal.take(), QStringList());
        m_api->release(QStringLiteral("fetchJobList"));
        QVERIFY(m_journal.waitFor(QStringLiteral("call importJobs(\"/m\") on worker")));
        const QStringList entries = m_journal.take();
        QCOMPARE(entries.filter(QStringLiteral("on worker")),
            (QStringList{ QStringLiteral("call launchTest(\"7\", 1) on worker"),
                QStringLiteral("call importJobs(\"/m\") on worker") }));
    }

    void mainThreadIsFreeDuringARequest()
    {
        m_api->hold(QStringLiteral("fetchJobList"));
        JobManager manager(m_api);
        manager.initialize();
        QVERIFY(m_api->waitUntilHeld(QStringLiteral("fetchJobList")));
        QCOMPARE(manager.fetchingJobList(), true);
        QCOMPARE(m_api->getChangeCount(), 0);
        m_api->release(QStringLiteral("fetchJobList"));
        QTRY_VERIFY(!manager.fetchingJobList());
    }

    void requestOfAFirstUpdateWaitsForTheThreadToStart()
    {
        JobManager manager(m_api);
        manager.initialize();
        QVERIFY(m_journal.waitFor(QStringLiteral("call fetchJobList() on worker")));
        QCOMPARE(m_journal.entries().count(QStringLiteral("call fetchJobList() on worker")), 1);
    }

    // The end.

    void endWaitsForTheRunningRequestAndDropsTheWaitingOnes()
    {
        m_api->hold(QStringLiteral("fetchJobList"));
        m_api->hold(QStringLiteral("launchTest"));
        auto manager = std::make_unique<JobManager>(m_api);
        manager->initialize();
        QVERIFY(m_api->waitUntilHeld(QStringLiteral("fetchJobList")));
        // Queued together, the thread takes them up together: told to quit, it would by itself still run all three.
        Q_EMIT manager->launchTestSignal(QStringLiteral("7"), 1LL);
        Q_EMIT manager->importJobsOnBackgroundThread(QStringLiteral("/m"));
        Q_EMIT manager->exchangeJobOnBackgroundThread(QStringLiteral("/dev/qzx"));
        m_api->release(QStringLiteral("fetchJobList"));
        QVERIFY(m_api->waitUntilHeld(QStringLiteral("launchTest")));
        m_journal.take();
        std::atomic<bool> ending{ false };
        std::thread releaser([&, mainThread = gettid()] {
            while (!ending || !isAsleep(mainThread)) {
                std::this_thread::yield();
            }
            m_journal.add(QStringLiteral("the main thread waits"));
            m_api->release(QStringLiteral("launchTest"));
        });
        ending = true;
        manager.reset();
        m_journal.add(QStringLiteral("the manager has ended"));
        releaser.join();
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("the main thread waits"), QStringLiteral("the manager has ended") }));
    }

    void workerIsDeletedOnItsOwnThreadAndReleasesTheInterface()
    {
        auto manager = std::make_unique<JobManager>(m_api);
        manager->initialize();
        QTRY_VERIFY(!manager->fetchingJobList());
        manager.reset();
        QCOMPARE(m_api.use_count(), 1L);
    }

    void managerEndsWellBeforeItsThreadHasBegun_data()
    {
        QTest::addColumn<int>("round");
        for (int round = 0; round < 20; ++round) {
            QTest::addRow("round %d", round) << round;
        }
    }

    void managerEndsWellBeforeItsThreadHasBegun()
    {
        {
            JobManager manager(m_api);
            manager.initialize();
        }
        QCOMPARE(m_api.use_count(), 1L);
        const QStringList messages = m_messages->take();
        QCOMPARE(messages.filter(QStringLiteral("warning")), QStringList());
    }

    void endDuringASyncWaitsForIt()
    {
        auto manager = std::make_unique<JobManager>(m_api);
        manager->initialize();
        QTRY_VERIFY(!manager->fetchingJobList());
        QElapsedTimer time;
        time.start();
        Q_EMIT manager->syncWithNimbrelSignal();
        while (!manager->isBackgroundRequestInProgress()) {
            std::this_thread::yield();
        }
        manager.reset();
        QVERIFY(time.elapsed() >= 2000);
    }

private:
    void scriptAnswers()
    {
        m_api->setAnswer(QStringLiteral("exportJobData"), QStringLiteral("/media/usb/out"));
        m_api->setAnswer(QStringLiteral("importJobs"), 3);
        m_api->setAnswer(QStringLiteral("exchangeCurrentJob"), true);
        m_api->setAnswer(QStringLiteral("launchTest"), QStringLiteral("E1^x"));
    }

    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
};

QTEST_GUILESS_MAIN(JobManagerWorkerTest)
#include "JobManagerWorkerTest.moc"
