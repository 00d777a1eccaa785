#include "tests/end_to_end/Bounds.h"
#include "tests/end_to_end/EndToEndMain.h"
#include "tests/end_to_end/FrontEnd.h"
#include "tests/end_to_end/JobServiceClient.h"
#include "tests/support/ServiceProcess.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using jobmanager_test::BareDevices;
using jobmanager_test::EmptyMount;
using jobmanager_test::ServiceProcess;

namespace {

const QString job = QStringLiteral("WO-2026-004400");

const QByteArray pageText = R"(
import QtQml 2.15
import JobManagerUi 1.0
QtObject {
    property QtObject job
    function exportTo(folder) { return JobManager.exportJobData(job, folder) }
    function importFrom(path) { return JobManager.importJobs(path) }
    function showsImport(folder) { return JobManager.showImportJobButton(folder) }
    function showsExchange(unused) { return JobManager.showExchangeJobSelection() }
    function exchange(unused) { return JobManager.exchangeCurrentJob() }
})";

int aWhile()
{
    return stretched(20000);
}

QJsonObject documentIn(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

void write(const QString& path, const QJsonObject& document)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QJsonDocument(document).toJson());
}

} // namespace

/// Jobs on their way to media and devices, from the screen to the files: at the fixed places /media and /dev, over
/// which this process and its services see empty folders of their own.
class LiveTransferTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!networkRefusal().empty() || !mountRefusal().empty())
            QSKIP(("no network and file system of its own: " + networkRefusal() + mountRefusal()).c_str());
        m_devices = std::make_unique<BareDevices>();
        QVERIFY2(m_devices->failure().empty(), m_devices->failure().c_str());
    }

    void init()
    {
        m_media = std::make_unique<EmptyMount>("/media");
        QVERIFY2(m_media->failure().empty(), m_media->failure().c_str());
        QVERIFY(QDir().mkpath(m_medium));
        m_service = std::make_unique<ServiceProcess>(std::vector<std::string>{ "--load", JOBMANAGER_SAMPLES });
        m_service->setPort(modulePort);
        QVERIFY2(m_service->start(), m_service->log().c_str());
        m_frontEnd = std::make_unique<FrontEnd>();
        QVERIFY(m_frontEnd->manager());
        QTRY_COMPARE_WITH_TIMEOUT(FrontEnd::ids(m_frontEnd->jobs()), m_client.jobIds(), aWhile());
        m_page = m_frontEnd->page(pageText, { { QStringLiteral("job"), QVariant::fromValue(m_frontEnd->job(job)) } });
        QVERIFY(m_page != nullptr);
    }

    void cleanup()
    {
        m_page.reset();
        m_frontEnd.reset();
        m_service.reset();
        m_media.reset();
    }

    void exportedJobIsOnTheMedium()
    {
        exportTo(QStringLiteral("/media"));
        const QString path = m_medium + QLatin1Char('/') + job + QStringLiteral(".job.json");
        QCOMPARE(manager()->property("exportJobDataOutputPath").toString(), path);
        QCOMPARE(documentIn(path), m_client.document(job));
    }

    void exportOutsideOfMediaFails()
    {
        const QTemporaryDir elsewhere;
        exportTo(elsewhere.path());
        QCOMPARE(manager()->property("exportJobDataOutputPath").toString(), QString());
        QVERIFY(QDir(elsewhere.path()).isEmpty());
    }

    void exportedJobComesBackAsItWas()
    {
        exportTo(m_medium);
        const QJsonObject before = m_client.document(job);
        m_client.deleteJob(job);
        QTRY_VERIFY_WITH_TIMEOUT(m_frontEnd->job(job) == nullptr, aWhile());
        QCOMPARE(importFrom(m_medium), 1);
        QTRY_VERIFY_WITH_TIMEOUT(m_frontEnd->job(job) != nullptr, aWhile());
        QCOMPARE(m_client.document(job), before);
    }

    void importSkipsWhatIsNoJob()
    {
        exportTo(m_medium);
        m_client.deleteJob(job);
        QFile bad(m_medium + QStringLiteral("/bad.job.json"));
        QVERIFY(bad.open(QIODevice::WriteOnly) && bad.write("{") == 1);
        bad.close();
        QCOMPARE(importFrom(m_medium), 1);
        QVERIFY(m_service->log().find("bad.job.json") != std::string::npos);
    }

    void importButtonShowsWhatTheServiceTakes()
    {
        QVERIFY(!call("showsImport", QStringLiteral("/media")).toBool());
        exportTo(m_medium);
        QVERIFY(call("showsImport", QStringLiteral("/media")).toBool());
    }

    void exchangeBringsTheResultsOfTheOtherSide()
    {
        const QTemporaryDir versions;
        m_client.setActiveJob(job);
        QJsonObject other = m_client.document(job);
        QJsonArray tests = other.value(QLatin1String("tests")).toArray();
        QJsonObject first = tests[0].toObject();
        const QJsonObject result{ { QStringLiteral("status"), QStringLiteral("marginal") },
            { QStringLiteral("time"), QStringLiteral("2099-01-01T00:00:00Z") } };
        first.insert(QStringLiteral("results"), result);
        tests[0] = first;
        other.insert(QStringLiteral("tests"), tests);
        const QString file = versions.filePath(job + QStringLiteral(".job.json"));
        write(file, other);

        QProcess peer;
        startPeer(peer, versions.path());
        QVERIFY(exchange());
        QVERIFY(manager()->property("jobExchangeStatus").toBool());
        QVERIFY(peer.waitForFinished(aWhile()));
        QCOMPARE(peer.exitCode(), 0);

        const QJsonObject merged = m_client.document(job).value(QLatin1String("tests")).toArray()[0].toObject();
        QCOMPARE(merged.value(QLatin1String("results")).toObject().value(QLatin1String("status")).toString(),
            QStringLiteral("marginal"));
        QCOMPARE(documentIn(file).value(QLatin1String("tests")).toArray()[0].toObject().value(QLatin1String("results")),
            QJsonValue(result));
    }

    void exchangeWithoutADeviceIsNotOffered()
    {
        QVERIFY(!call("showsExchange").toBool());
        QVERIFY(!call("exchange").toBool());
    }

    void failedExchangeIsToldAndChangesNothing()
    {
        m_client.setActiveJob(job);
        const QJsonObject before = m_client.document(job);
        QVERIFY(QDir().mkpath(QStringLiteral("/dev/folder")));
        QVERIFY(QFile::link(QStringLiteral("/dev/folder"), QStringLiteral("/dev/qzx")));
        QVERIFY(exchange());
        QVERIFY(!manager()->property("jobExchangeStatus").toBool());
        QCOMPARE(m_client.document(job), before);
        QVERIFY(QFile::remove(QStringLiteral("/dev/qzx")));
    }

private:
    QObject* manager() const { return m_frontEnd->manager(); }

    /// Calls a function of the page.
    QVariant call(const char* method, const QVariant& argument = {})
    {
        QVariant result;
        const bool called =
            QMetaObject::invokeMethod(m_page.get(), method, Q_RETURN_ARG(QVariant, result), Q_ARG(QVariant, argument));
        return called ? result : QVariant();
    }

    void exportTo(const QString& folder)
    {
        call("exportTo", folder);
        QVERIFY(manager()->property("exportingJobData").toBool());
        QTRY_VERIFY_WITH_TIMEOUT(!manager()->property("exportingJobData").toBool(), aWhile());
    }

    int importFrom(const QString& folder)
    {
        if (call("importFrom", folder).toInt() != 0)
            return -1;
        const bool ended = QTest::qWaitFor([this] { return !manager()->property("importingJobs").toBool(); }, aWhile());
        return ended ? manager()->property("importJobsNumberJobs").toInt() : -2;
    }

    bool exchange()
    {
        return call("exchange").toBool()
            && QTest::qWaitFor([this] { return !manager()->property("exchangingJob").toBool(); }, aWhile());
    }

    void startPeer(QProcess& peer, const QString& folder)
    {
        peer.start(QStringLiteral(JOBMANAGER_EXCHANGE_PEER),
            { QStringLiteral("--once"), QStringLiteral("--link"), QStringLiteral("/dev/qzx"), QStringLiteral("--jobs"),
                folder });
        QVERIFY(peer.waitForReadyRead(aWhile()));
    }

    const QString m_medium = QStringLiteral("/media/usb1");
    std::unique_ptr<BareDevices> m_devices;
    std::unique_ptr<EmptyMount> m_media;
    std::unique_ptr<ServiceProcess> m_service;
    std::unique_ptr<FrontEnd> m_frontEnd;
    std::unique_ptr<QObject> m_page;
    JobServiceClient m_client{ modulePort };
};

END_TO_END_MAIN_WITH_MOUNTS(LiveTransferTest)
#include "LiveTransferTest.moc"
