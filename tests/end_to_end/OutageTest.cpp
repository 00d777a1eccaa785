#include "tests/end_to_end/Bounds.h"
#include "tests/end_to_end/EndToEndMain.h"
#include "tests/end_to_end/EventLoopWatch.h"
#include "tests/end_to_end/FrontEnd.h"
#include "tests/end_to_end/JobServiceClient.h"
#include "tests/support/ServiceProcess.h"

#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

using jobmanager_test::ServiceProcess;

namespace {

/// What an outage may cost the main thread in all, polling and refreshing together.
int heldBound()
{
    return stretched(200);
}

/// When the screen has to be right again after the service is.
int recoveryBound()
{
    return stretched(3000);
}

/// Long enough for a handful of polls.
const int someSeconds = 3000;

} // namespace

/// The service dies, hangs and comes back under the running front: the real module, client and service.
class OutageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void killedServiceLeavesRowsAndObjects();
    void killedServiceLosesNoAcknowledgedChange();
    void refusedConnectionsHoldNoScreen();
    void hungServiceHoldsTheMainThreadBriefly();
    void updateAskedForDuringAHangHoldsTheMainThreadBriefly();
    void hungServiceLeavesRowsSettingsAndObjects();
    void changeAfterAHangShowsInTime();
    void outageCountsAsAChangeThoughTheServiceSawNone();
    void firstFrameComesThoughTheServiceHangsAtStart();
    void rowsComeWhenAServiceHungAtStartGoesOn();
    void rowsComeWhenTheServiceStartsLater();
    void engineEndsWhileTheServiceHangs();

private:
    void waitForRows(const FrontEnd& frontEnd);

    std::unique_ptr<ServiceProcess> m_service;
    JobServiceClient m_client{ modulePort };
};

void OutageTest::initTestCase()
{
    if (!networkRefusal().empty())
        QSKIP(("no network of its own, in which port 8082 is free: " + networkRefusal()).c_str());
}

void OutageTest::init()
{
    m_service = std::make_unique<ServiceProcess>(std::vector<std::string>{ "--load", JOBMANAGER_SAMPLES });
    m_service->setPort(modulePort);
    QVERIFY2(m_service->start(), m_service->log().c_str());
}

void OutageTest::cleanup()
{
    m_service.reset();
}

void OutageTest::waitForRows(const FrontEnd& frontEnd)
{
    QVERIFY(frontEnd.manager());
    QTRY_COMPARE_WITH_TIMEOUT(FrontEnd::ids(frontEnd.jobs()), m_client.jobIds(), stretched(10000));
}

void OutageTest::killedServiceLeavesRowsAndObjects()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    const QStringList ids = FrontEnd::ids(frontEnd.jobs());
    const QPointer<QObject> job = frontEnd.job(ids.constFirst());
    QSignalSpy resets(frontEnd.jobs(), &QAbstractItemModel::modelReset);

    m_service->kill();
    QTest::qWait(someSeconds);
    QCOMPARE(FrontEnd::ids(frontEnd.jobs()), ids);
    QCOMPARE(resets.count(), 0);

    QVERIFY2(m_service->start(), m_service->log().c_str());
    QVERIFY(resets.wait(recoveryBound()));
    QCOMPARE(FrontEnd::ids(frontEnd.jobs()), ids);
    QCOMPARE(frontEnd.job(ids.constFirst()), job.data());
}

void OutageTest::killedServiceLosesNoAcknowledgedChange()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);

    m_client.createJob(QStringLiteral("ACKNOWLEDGED"));
    QVERIFY2(m_service->restart(), m_service->log().c_str());

    QVERIFY(m_client.jobIds().contains(QStringLiteral("ACKNOWLEDGED")));
    QTRY_VERIFY_WITH_TIMEOUT(frontEnd.job(QStringLiteral("ACKNOWLEDGED")), recoveryBound());
}

void OutageTest::refusedConnectionsHoldNoScreen()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    EventLoopWatch watch;

    m_service->kill();
    watch.restart();
    QTest::qWait(someSeconds);

    QVERIFY2(watch.held() <= heldBound(), qPrintable(QString::number(watch.held())));
}

void OutageTest::hungServiceHoldsTheMainThreadBriefly()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    EventLoopWatch watch;

    m_service->stop();
    watch.restart();
    QTest::qWait(someSeconds);

    QVERIFY2(watch.held() <= heldBound(), qPrintable(QString::number(watch.held())));
}

void OutageTest::updateAskedForDuringAHangHoldsTheMainThreadBriefly()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    const QStringList ids = FrontEnd::ids(frontEnd.jobs());
    QSignalSpy resets(frontEnd.jobs(), &QAbstractItemModel::modelReset);
    EventLoopWatch watch;

    m_service->stop();
    watch.restart();
    QElapsedTimer asking;
    asking.start();
    QMetaObject::invokeMethod(frontEnd.manager(), "updateDataFromAPI", Q_ARG(bool, true));
    QVERIFY(resets.wait(stretched(10000)));

    QVERIFY2(watch.held() <= heldBound(), qPrintable(QString::number(watch.held())));
    QCOMPARE(FrontEnd::ids(frontEnd.jobs()), ids);
}

void OutageTest::hungServiceLeavesRowsSettingsAndObjects()
{
    m_client.writeSetting(QStringLiteral("groupType"), QStringLiteral("2"));
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    QCOMPARE(frontEnd.manager()->property("groupType").toInt(), 2);
    const QStringList ids = FrontEnd::ids(frontEnd.jobs());
    const QPointer<QObject> job = frontEnd.job(ids.constFirst());
    QSignalSpy resets(frontEnd.jobs(), &QAbstractItemModel::modelReset);

    m_service->stop();
    QMetaObject::invokeMethod(frontEnd.manager(), "updateDataFromAPI", Q_ARG(bool, true));
    QVERIFY(resets.wait(stretched(10000)));
    QCOMPARE(FrontEnd::ids(frontEnd.jobs()), ids);
    QCOMPARE(frontEnd.job(ids.constFirst()), job.data());
    QCOMPARE(frontEnd.manager()->property("groupType").toInt(), 2);

    m_service->resume();
    QVERIFY(resets.wait(recoveryBound()));
    QCOMPARE(m_client.settings().value(QLatin1String("groupType")).toString(), QStringLiteral("2"));
    QCOMPARE(frontEnd.job(ids.constFirst()), job.data());
}

void OutageTest::changeAfterAHangShowsInTime()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    m_service->stop();
    QTest::qWait(someSeconds);

    m_service->resume();
    m_client.createJob(QStringLiteral("AFTER-THE-HANG"));

    QTRY_VERIFY_WITH_TIMEOUT(frontEnd.job(QStringLiteral("AFTER-THE-HANG")), recoveryBound());
}

void OutageTest::outageCountsAsAChangeThoughTheServiceSawNone()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    const int before = m_client.changeCount();
    m_service->stop();
    QTest::qWait(someSeconds);
    m_service->resume();

    // The service moved by nothing, or by one: an outage is a change of its own all the same.
    QSignalSpy updated(frontEnd.manager(), SIGNAL(jobManagerUpdated()));
    QVERIFY(updated.wait(recoveryBound()));
    QCOMPARE(m_client.changeCount(), before);
}

void OutageTest::firstFrameComesThoughTheServiceHangsAtStart()
{
    m_service->stop();

    QElapsedTimer start;
    start.start();
    const FrontEnd frontEnd;
    bool frame = false;
    QTimer::singleShot(0, [&frame] { frame = true; });
    QTRY_VERIFY(frame);

    QVERIFY2(start.elapsed() <= stretched(1000), qPrintable(QString::number(start.elapsed())));
    m_service->resume();
}

void OutageTest::rowsComeWhenAServiceHungAtStartGoesOn()
{
    const QStringList ids = m_client.jobIds();
    m_service->stop();
    const FrontEnd frontEnd;
    QTest::qWait(someSeconds);
    QCOMPARE(frontEnd.jobs()->rowCount(), 0);

    m_service->resume();

    QTRY_COMPARE_WITH_TIMEOUT(FrontEnd::ids(frontEnd.jobs()), ids, recoveryBound() + stretched(5000));
}

void OutageTest::rowsComeWhenTheServiceStartsLater()
{
    const QStringList ids = m_client.jobIds();
    m_service->kill();
    const FrontEnd frontEnd;
    QTest::qWait(someSeconds);

    QVERIFY2(m_service->start(), m_service->log().c_str());

    QTRY_COMPARE_WITH_TIMEOUT(FrontEnd::ids(frontEnd.jobs()), ids, recoveryBound());
}

void OutageTest::engineEndsWhileTheServiceHangs()
{
    auto frontEnd = std::make_unique<FrontEnd>();
    waitForRows(*frontEnd);
    m_service->stop();
    QMetaObject::invokeMethod(frontEnd->manager(), "updateDataFromAPI", Q_ARG(bool, true));

    QElapsedTimer end;
    end.start();
    frontEnd.reset();

    // The call in flight, a fetch of the list, has a deadline of five seconds.
    QVERIFY2(end.elapsed() <= stretched(6000), qPrintable(QString::number(end.elapsed())));
    m_service->resume();
}

END_TO_END_MAIN(OutageTest)

#include "OutageTest.moc"
