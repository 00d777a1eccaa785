#include "tests/end_to_end/Bounds.h"
#include "tests/end_to_end/EndToEndMain.h"
#include "tests/support/ServiceProcess.h"

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

using jobmanager_test::ServiceProcess;

namespace {

struct Ended
{
    int exitCode = -1;
    QByteArray errors;
};

/// Runs the demo to its end.
Ended runDemo(const QStringList& arguments)
{
    QProcess demo;
    demo.start(
        QStringLiteral(DEMO_BINARY), QStringList{ QStringLiteral("-I"), QStringLiteral(DEMO_IMPORT_PATH) } + arguments);
    if (!demo.waitForFinished(stretched(120000))) {
        demo.kill();
        demo.waitForFinished();
        return {};
    }
    return { demo.exitStatus() == QProcess::NormalExit ? demo.exitCode() : -1, demo.readAllStandardError() };
}

int colours(const QImage& picture)
{
    QSet<QRgb> seen;
    for (int y = 0; y < picture.height(); y += 4) {
        for (int x = 0; x < picture.width(); x += 4) {
            seen.insert(picture.pixel(x, y));
        }
    }
    return seen.size();
}

} // namespace

/// The demo as a program of its own: its command line, and its way through its screens.
class DemoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void drivesItselfThroughItsScreensAndLeavesAPictureOfEach();
    void drivesItselfOnTheGivenPort();
    void missingServiceFailsTheDriveWithWhatDidNotAppear();
    void wrongPortIsRefused_data();
    void wrongPortIsRefused();

private:
    QTemporaryDir m_pictures;
};

void DemoTest::initTestCase()
{
    if (!networkRefusal().empty()) {
        QSKIP(("no network of its own, in which port 8082 is free: " + networkRefusal()).c_str());
    }
    QVERIFY(m_pictures.isValid());
}

void DemoTest::drivesItselfThroughItsScreensAndLeavesAPictureOfEach()
{
    ServiceProcess service(
        { "--load", JOBMANAGER_SAMPLES, "--attribute-rules", JOBMANAGER_SAMPLES "/attribute-rules.json" });
    service.setPort(modulePort);
    QVERIFY2(service.start(), service.log().c_str());

    const Ended ended = runDemo({ QStringLiteral("--screenshots"), m_pictures.filePath(QStringLiteral("all")) });
    QVERIFY2(ended.exitCode == 0, ended.errors.constData());

    const QDir folder(m_pictures.filePath(QStringLiteral("all")));
    const QStringList names = folder.entryList(QDir::Files, QDir::Name);
    const QStringList expected{ QStringLiteral("01-required.png"), QStringLiteral("02-scrolled.png"),
        QStringLiteral("03-changed.png"), QStringLiteral("04-changed-on-top.png"), QStringLiteral("05-job.png"),
        QStringLiteral("06-job-details.png"), QStringLiteral("07-job-archived.png"), QStringLiteral("08-archived.png"),
        QStringLiteral("09-archived-job.png"), QStringLiteral("10-tests-loading.png"), QStringLiteral("11-tests.png"),
        QStringLiteral("12-tests-scrolled.png"), QStringLiteral("13-tests-new-result.png"),
        QStringLiteral("14-tests-folded.png"), QStringLiteral("15-tests-completed.png"),
        QStringLiteral("16-tests-open.png"), QStringLiteral("17-tests-search.png"), QStringLiteral("18-tests-none.png"),
        QStringLiteral("19-tests-by-location.png"), QStringLiteral("20-tests-by-type.png"),
        QStringLiteral("21-test.png"), QStringLiteral("22-test-new-result.png"), QStringLiteral("23-manual-test.png"),
        QStringLiteral("24-properties.png"), QStringLiteral("25-property-written.png"),
        QStringLiteral("26-property-wrong.png"), QStringLiteral("27-property-refused.png"),
        QStringLiteral("28-property-altered.png"), QStringLiteral("29-new-job.png"),
        QStringLiteral("30-new-job-template.png"), QStringLiteral("31-new-job-taken.png"),
        QStringLiteral("32-new-job-created.png"), QStringLiteral("33-prompt.png"),
        QStringLiteral("34-prompt-answered.png"), QStringLiteral("35-launch.png"),
        QStringLiteral("36-launch-starting.png"), QStringLiteral("37-launch-running.png"),
        QStringLiteral("38-launch-finished.png"), QStringLiteral("39-delete-question.png"),
        QStringLiteral("40-deleted.png"), QStringLiteral("41-job-current.png"), QStringLiteral("42-launch-refused.png"),
        QStringLiteral("43-sync.png"), QStringLiteral("44-settings.png"), QStringLiteral("45-end.png") };
    QCOMPARE(names, expected);
    for (const QString& name : names) {
        const QImage picture(folder.filePath(name));
        QCOMPARE(picture.size(), QSize(800, 480));
        QVERIFY2(colours(picture) > 20, qPrintable(name));
    }
}

void DemoTest::drivesItselfOnTheGivenPort()
{
    ServiceProcess service(
        { "--load", JOBMANAGER_SAMPLES, "--attribute-rules", JOBMANAGER_SAMPLES "/attribute-rules.json" });
    service.setPort(modulePort + 1);
    QVERIFY2(service.start(), service.log().c_str());

    const Ended ended = runDemo({ QStringLiteral("--port"), QString::number(modulePort + 1),
        QStringLiteral("--screenshots"), m_pictures.filePath(QStringLiteral("port")) });
    QVERIFY2(ended.exitCode == 0, ended.errors.constData());
}

void DemoTest::missingServiceFailsTheDriveWithWhatDidNotAppear()
{
    const Ended ended = runDemo({ QStringLiteral("--screenshots"), m_pictures.filePath(QStringLiteral("none")) });
    QCOMPARE(ended.exitCode, 1);
    QVERIFY2(ended.errors.contains("demo: did not appear in time: the required jobs"), ended.errors.constData());
}

void DemoTest::wrongPortIsRefused_data()
{
    QTest::addColumn<QString>("port");
    QTest::newRow("no number") << QStringLiteral("http");
    QTest::newRow("zero") << QStringLiteral("0");
    QTest::newRow("too large") << QStringLiteral("65536");
}

void DemoTest::wrongPortIsRefused()
{
    QFETCH(QString, port);
    const Ended ended = runDemo({ QStringLiteral("--port"), port });
    QCOMPARE(ended.exitCode, 2);
    QVERIFY2(ended.errors.contains("--port takes a number from 1 to 65535"), ended.errors.constData());
}

END_TO_END_MAIN(DemoTest)

#include "DemoTest.moc"
