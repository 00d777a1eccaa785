#include "core/JobManager.h"
#include "core/UsbMedia.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/RecordingApi.h"
#include "tests/support/SignalRecorder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <sys/stat.h>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

/// Why this process has no mounts of its own; empty if it has.
std::string mountRefusal;

#define SKIP_WITHOUT_MOUNTS()                                                                                          \
    if (!mountRefusal.empty())                                                                                         \
    QSKIP(("This machine permits no file system of one's own: " + mountRefusal).c_str())

void makeDirectories(const QStringList& paths)
{
    for (const QString& path : paths) {
        QVERIFY2(QDir().mkpath(path), qPrintable(path));
    }
}

void makeFile(const QString& path)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

} // namespace

/// Export, import and exchange as JobManager asks for them. What is fixed to /media and /dev is tried at those very
/// paths, over which an empty file system of this process's own is mounted.
class JobTransferTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_messages = std::make_unique<MessageCollector>();
        m_api = std::make_shared<RecordingApi>(m_journal);
        m_api->setJobIDs({ QStringLiteral("WO 7") });
        m_manager = std::make_unique<JobManager>(m_api);
        m_manager->doUpdateDataFromAPI();
        m_job = m_manager->getJob(QStringLiteral("WO 7"));
        QVERIFY(m_folder.isValid());
        m_messages->take();
        m_journal.take();
        m_recorder = std::make_unique<SignalRecorder>(*m_manager, m_journal);
    }

    void cleanup()
    {
        m_recorder.reset();
        m_manager.reset();
        m_api.reset();
        m_messages.reset();
        QVERIFY(QDir(m_folder.path()).removeRecursively());
        QVERIFY(QDir().mkpath(m_folder.path()));
    }

    // Export.

    void exportOfNoJobSaysThatTheFolderIsEmpty()
    {
        QCOMPARE(m_manager->exportJobData(nullptr, m_folder.path()), QString());
        QCOMPARE(m_messages->take(), QStringList{ QStringLiteral("debug: exportJobData usbRootFolder is empty") });
        QCOMPARE(m_journal.take(), QStringList());
        QVERIFY(!m_manager->exportingJobData());
    }

    void exportToNoFolderIsRefused()
    {
        QCOMPARE(m_manager->exportJobData(m_job, QString()), QString());
        QCOMPARE(m_messages->take(), QStringList{ QStringLiteral("debug: exportJobData usbRootFolder is empty") });
        QCOMPARE(m_journal.take(), QStringList());
        QVERIFY(!m_manager->exportingJobData());
    }

    void exportToAFolderThatIsNotThereIsRefused()
    {
        const QString folder = m_folder.filePath(QStringLiteral("gone"));
        QCOMPARE(m_manager->exportJobData(m_job, folder), QString());
        QCOMPARE(m_messages->take(),
            QStringList{ QStringLiteral("debug: exportJobData usbRootFolder does not exist:  \"%1\"").arg(folder) });
        QCOMPARE(m_journal.take(), QStringList());
        QVERIFY(!m_manager->exportingJobData());
    }

    void exportToAFileIsRefused()
    {
        const QString file = m_folder.filePath(QStringLiteral("file"));
        makeFile(file);
        QCOMPARE(m_manager->exportJobData(m_job, file), QString());
        QCOMPARE(m_journal.take(), QStringList());
        m_messages->take();
    }

    void exportRaisesItsFlagAndGoesToTheWorker()
    {
        QCOMPARE(m_manager->exportJobData(m_job, m_folder.path()), QString());
        QVERIFY(m_manager->exportingJobData());
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("emit exportingJobDataChanged()"),
                QStringLiteral("emit exportJobDataOnBackgroundThread(\"WO 7\", \"%1\")").arg(m_folder.path()) }));
        QCOMPARE(m_messages->take(), QStringList());
    }

    void exportedPathIsThereBeforeTheFlagFalls()
    {
        m_manager->exportJobData(m_job, m_folder.path());
        m_journal.take();
        connect(m_manager.get(), &JobManager::exportJobDataOutputPathChanged, this,
            [this] { m_journal.add(QStringLiteral("path %1").arg(m_manager->exportJobDataOutputPath())); });
        m_manager->onExportJobDataFinished(QStringLiteral("/media/usb/7.job.json"));
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("emit exportJobDataOutputPathChanged()"),
                QStringLiteral("path /media/usb/7.job.json"), QStringLiteral("emit exportingJobDataChanged()") }));
        QVERIFY(!m_manager->exportingJobData());
    }

    void failedExportShowsAsAnEmptyPath()
    {
        m_manager->onExportJobDataFinished(QStringLiteral("/media/usb/7.job.json"));
        m_manager->onExportJobDataFinished(QString());
        QCOMPARE(m_manager->exportJobDataOutputPath(), QString());
    }

    void exportRunsOnTheWorkerAndComesBack()
    {
        m_api->setAnswer(QStringLiteral("exportJobData"), QStringLiteral("/media/usb/7.job.json"));
        m_manager->initialize();
        m_manager->exportJobData(m_manager->getJob(QStringLiteral("WO 7")), m_folder.path());
        QTRY_VERIFY(!m_manager->exportingJobData());
        QCOMPARE(m_manager->exportJobDataOutputPath(), QStringLiteral("/media/usb/7.job.json"));
        QVERIFY(
            m_journal.contains(QStringLiteral("call exportJobData(\"WO 7\", \"%1\") on worker").arg(m_folder.path())));
    }

    void exportIsOfferedWhereTheDirectoryExists()
    {
        makeFile(m_folder.filePath(QStringLiteral("file")));
        QVERIFY(m_manager->showExportJobSelection(m_folder.path()));
        QVERIFY(!m_manager->showExportJobSelection(m_folder.filePath(QStringLiteral("file"))));
        QVERIFY(!m_manager->showExportJobSelection(m_folder.filePath(QStringLiteral("gone"))));
        QVERIFY(!m_manager->showExportJobSelection(QString()));
    }

    void mediaStandsForTheFirstUsbMedium_data()
    {
        QTest::addColumn<QStringList>("mounted");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("taken");
        const QString media = QStringLiteral("/media");
        QTest::newRow("none") << QStringList{ QStringLiteral("/media/disk") } << media << media;
        QTest::newRow("in capitals, within the name")
            << QStringList{ QStringLiteral("/media/myUSBstick") } << media << QStringLiteral("/media/myUSBstick");
        QTest::newRow("the first by name, whatever the letter case") << QStringList{ QStringLiteral("/media/usb-b"),
            QStringLiteral("/media/USB-A"), QStringLiteral("/media/zusb") }
                                                                     << media << QStringLiteral("/media/USB-A");
        QTest::newRow("a slash behind it is no longer the text")
            << QStringList{ QStringLiteral("/media/usb1") } << QStringLiteral("/media/") << QStringLiteral("/media/");
        QTest::newRow("a folder below is taken as it is")
            << QStringList{ QStringLiteral("/media/disk"), QStringLiteral("/media/usb1") }
            << QStringLiteral("/media/disk") << QStringLiteral("/media/disk");
    }

    void mediaStandsForTheFirstUsbMedium()
    {
        QFETCH(QStringList, mounted);
        QFETCH(QString, folder);
        QFETCH(QString, taken);
        SKIP_WITHOUT_MOUNTS();
        const EmptyMount media("/media");
        QVERIFY2(media.failure().empty(), media.failure().c_str());
        makeDirectories(mounted);
        m_manager->exportJobData(m_job, folder);
        QCOMPARE(m_journal.take().last(),
            QStringLiteral("emit exportJobDataOnBackgroundThread(\"WO 7\", \"%1\")").arg(taken));
    }

    // The USB media of a directory.

    void fileWithUsbInItsNameIsNoMedium()
    {
        makeFile(m_folder.filePath(QStringLiteral("usb.txt")));
        QCOMPARE(findFirstUsbDirectory(m_folder.path()), QString());
    }

    void directoryThatIsNotThereHasNoMedium()
    {
        QCOMPARE(findFirstUsbDirectory(m_folder.filePath(QStringLiteral("gone"))), QString());
    }

    void mediumIsNamedByItsAbsolutePath()
    {
        makeDirectories({ m_folder.filePath(QStringLiteral("a/usb")) });
        QVERIFY(QDir::setCurrent(m_folder.path()));
        QCOMPARE(
            findFirstUsbDirectory(QStringLiteral("a")), QDir(QDir::currentPath()).filePath(QStringLiteral("a/usb")));
        QVERIFY(QDir::setCurrent(QDir::rootPath()));
    }

    // Import.

    void importFromNowhereIsRefusedWithBothSignals()
    {
        QCOMPARE(m_manager->importJobs(m_folder.filePath(QStringLiteral("gone"))), -1);
        QCOMPARE(m_journal.take(),
            (QStringList{
                QStringLiteral("emit importJobsNumberJobsChanged()"), QStringLiteral("emit importingJobsChanged()") }));
        QCOMPARE(m_manager->importJobsNumberJobs(), -1);
        QVERIFY(!m_manager->importingJobs());
        QCOMPARE(m_messages->take(), QStringList());
    }

    void importRaisesItsFlagAndGoesToTheWorker()
    {
        QCOMPARE(m_manager->importJobs(m_folder.path()), 0);
        QVERIFY(m_manager->importingJobs());
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("emit importingJobsChanged()"),
                QStringLiteral("emit importJobsOnBackgroundThread(\"%1\")").arg(m_folder.path()) }));
    }

    void importTakesAFileToo()
    {
        const QString file = m_folder.filePath(QStringLiteral("7.job.json"));
        makeFile(file);
        QCOMPARE(m_manager->importJobs(file), 0);
        QCOMPARE(m_journal.take().last(), QStringLiteral("emit importJobsOnBackgroundThread(\"%1\")").arg(file));
    }

    void numberOfImportedJobsIsThereBeforeTheFlagFalls()
    {
        m_manager->importJobs(m_folder.path());
        m_journal.take();
        connect(m_manager.get(), &JobManager::importJobsNumberJobsChanged, this,
            [this] { m_journal.add(QStringLiteral("number %1").arg(m_manager->importJobsNumberJobs())); });
        m_manager->onImportJobsFinished(3);
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("emit importJobsNumberJobsChanged()"), QStringLiteral("number 3"),
                QStringLiteral("emit importingJobsChanged()") }));
        QVERIFY(!m_manager->importingJobs());
    }

    void importRunsOnTheWorkerAndComesBack()
    {
        m_api->setAnswer(QStringLiteral("importJobs"), 5);
        m_manager->initialize();
        m_manager->importJobs(m_folder.path());
        QTRY_VERIFY(!m_manager->importingJobs());
        QCOMPARE(m_manager->importJobsNumberJobs(), 5);
        QVERIFY(m_journal.contains(QStringLiteral("call importJobs(\"%1\") on worker").arg(m_folder.path())));
    }

    void importIsOfferedForAJobOrATemplate_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("offered");
        QTest::newRow("a job") << QStringLiteral("7.job.json") << true;
        QTest::newRow("a template three directories deep") << QStringLiteral("a/b/c/fiber.tpl.json") << true;
        QTest::newRow("letter case does not matter") << QStringLiteral("7.JOB.JSON") << true;
        QTest::newRow("another file") << QStringLiteral("7.json") << false;
        QTest::newRow("a hidden file") << QStringLiteral(".7.job.json") << false;
        QTest::newRow("in a hidden directory") << QStringLiteral(".hidden/7.job.json") << false;
        QTest::newRow("the name goes on") << QStringLiteral("7.job.json.bak") << false;
    }

    void importIsOfferedForAJobOrATemplate()
    {
        QFETCH(QString, file);
        QFETCH(bool, offered);
        makeFile(m_folder.filePath(file));
        QCOMPARE(m_manager->showImportJobButton(m_folder.path()), offered);
    }

    void directoryNamedLikeAJobIsNone()
    {
        makeDirectories({ m_folder.filePath(QStringLiteral("7.job.json")) });
        QVERIFY(!m_manager->showImportJobButton(m_folder.path()));
    }

    void pipeNamedLikeAJobIsNone()
    {
        QCOMPARE(mkfifo(qPrintable(m_folder.filePath(QStringLiteral("7.job.json"))), 0600), 0);
        QVERIFY(!m_manager->showImportJobButton(m_folder.path()));
    }

    void importIsNotOfferedForWhatALinkLeadsTo()
    {
        makeFile(m_folder.filePath(QStringLiteral("elsewhere/7.job.json")));
        makeDirectories({ m_folder.filePath(QStringLiteral("medium")) });
        QVERIFY(QFile::link(
            m_folder.filePath(QStringLiteral("elsewhere")), m_folder.filePath(QStringLiteral("medium/link"))));
        QVERIFY(!m_manager->showImportJobButton(m_folder.filePath(QStringLiteral("medium"))));
    }

    void importIsNotOfferedWithoutAFolder()
    {
        QVERIFY(!m_manager->showImportJobButton(m_folder.filePath(QStringLiteral("gone"))));
        QVERIFY(!m_manager->showImportJobButton(QString()));
    }

    // Exchange.

    void deviceIsALinkOfItsName_data()
    {
        QTest::addColumn<QString>("link");
        QTest::addColumn<bool>("found");
        QTest::newRow("the name") << QStringLiteral("/dev/qzx") << true;
        QTest::newRow("merely begins with it") << QStringLiteral("/dev/qzx0") << false;
        QTest::newRow("merely ends with it") << QStringLiteral("/dev/aqzx") << false;
        QTest::newRow("below") << QStringLiteral("/dev/bus/qzx") << false;
    }

    void deviceIsALinkOfItsName()
    {
        QFETCH(QString, link);
        QFETCH(bool, found);
        SKIP_WITHOUT_MOUNTS();
        const EmptyMount devices("/dev");
        QVERIFY2(devices.failure().empty(), devices.failure().c_str());
        makeFile(QStringLiteral("/dev/peer"));
        makeDirectories({ QFileInfo(link).path() });
        QVERIFY(QFile::link(QStringLiteral("/dev/peer"), link));
        QCOMPARE(m_manager->showExchangeJobSelection(), found);
    }

    void exchangeRaisesItsFlagAndGoesToTheWorker()
    {
        SKIP_WITHOUT_MOUNTS();
        const EmptyMount devices("/dev");
        QVERIFY2(devices.failure().empty(), devices.failure().c_str());
        makeFile(QStringLiteral("/dev/qzx"));
        QVERIFY(m_manager->exchangeCurrentJob());
        QVERIFY(m_manager->exchangingJob());
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("emit exchangingJobChanged()"),
                QStringLiteral("emit exchangeJobOnBackgroundThread(\"/dev/qzx\")") }));
    }

    void exchangeWithoutADeviceIsRefusedInSilence()
    {
        SKIP_WITHOUT_MOUNTS();
        const EmptyMount devices("/dev");
        QVERIFY2(devices.failure().empty(), devices.failure().c_str());
        QVERIFY(!m_manager->exchangeCurrentJob());
        QVERIFY(!m_manager->exchangingJob());
        QCOMPARE(m_journal.take(), QStringList());
        QCOMPARE(m_messages->take(), QStringList());
    }

    void exchangeWithoutADeviceDirectoryIsRefusedWithASignal()
    {
        SKIP_WITHOUT_MOUNTS();
        bool offered = true;
        bool sent = true;
        {
            const EmptyRoot root;
            QVERIFY2(root.failure().empty(), root.failure().c_str());
            offered = m_manager->showExchangeJobSelection();
            sent = m_manager->exchangeCurrentJob();
        }
        QVERIFY(!offered);
        QVERIFY(!sent);
        QVERIFY(!m_manager->exchangingJob());
        QCOMPARE(m_journal.take(), QStringList{ QStringLiteral("emit exchangingJobChanged()") });
    }

    void exchangeStatusIsThereBeforeTheFlagFalls()
    {
        connect(m_manager.get(), &JobManager::jobExchangeStatusChanged, this,
            [this] { m_journal.add(QStringLiteral("status %1").arg(m_manager->jobExchangeStatus())); });
        m_manager->onExchangeJobFinished(true);
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("emit jobExchangeStatusChanged()"), QStringLiteral("status 1"),
                QStringLiteral("emit exchangingJobChanged()") }));
        m_manager->onExchangeJobFinished(false);
        QVERIFY(!m_manager->jobExchangeStatus());
    }

    void exchangeRunsOnTheWorkerAndComesBack()
    {
        SKIP_WITHOUT_MOUNTS();
        const EmptyMount devices("/dev");
        QVERIFY2(devices.failure().empty(), devices.failure().c_str());
        makeFile(QStringLiteral("/dev/qzx"));
        m_api->setAnswer(QStringLiteral("exchangeCurrentJob"), true);
        m_manager->initialize();
        QVERIFY(m_manager->exchangeCurrentJob());
        QTRY_VERIFY(!m_manager->exchangingJob());
        QVERIFY(m_manager->jobExchangeStatus());
        QVERIFY(m_journal.contains(QStringLiteral("call exchangeCurrentJob(\"/dev/qzx\") on worker")));
    }

    // All three.

    void secondRequestQueuesAndTheFirstFinishLowersTheFlag()
    {
        m_api->hold(QStringLiteral("importJobs"));
        m_api->setAnswer(QStringLiteral("importJobs"), 1);
        m_manager->initialize();
        QCOMPARE(m_manager->importJobs(m_folder.path()), 0);
        QVERIFY(m_api->waitUntilHeld(QStringLiteral("importJobs")));
        QCOMPARE(m_manager->importJobs(m_folder.path()), 0);
        bool fellAtTheFirst = false;
        connect(m_manager.get(), &JobManager::importingJobsChanged, this,
            [this, &fellAtTheFirst] { fellAtTheFirst = fellAtTheFirst || !m_manager->importingJobs(); });
        m_api->release(QStringLiteral("importJobs"));
        QTRY_VERIFY(fellAtTheFirst);
        QTRY_COMPARE(m_api->count(QStringLiteral("importJobs")), 2);
    }

    void transferDoesNotTouchTheJobList()
    {
        m_manager->onExportJobDataFinished(QStringLiteral("x"));
        m_manager->onImportJobsFinished(1);
        m_manager->onExchangeJobFinished(true);
        QCOMPARE(m_api->calls(), QStringList());
    }

private:
    Journal m_journal;
    QTemporaryDir m_folder;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
    std::unique_ptr<JobManager> m_manager;
    std::unique_ptr<SignalRecorder> m_recorder;
    Job* m_job = nullptr;
};

int main(int argc, char* argv[])
{
    mountRefusal = enterPrivateMounts();
    QCoreApplication application(argc, argv);
    JobTransferTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "JobTransferTest.moc"
