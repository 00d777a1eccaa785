#include "tests/end_to_end/Bounds.h"
#include "tests/end_to_end/EndToEndMain.h"
#include "tests/end_to_end/FrontEnd.h"
#include "tests/end_to_end/JobServiceClient.h"
#include "tests/support/ServiceProcess.h"

#include <QSignalSpy>
#include <QtTest>

using jobmanager_test::ServiceProcess;

namespace {

/// What "shows within a second" means here and now.
int oneSecond()
{
    return stretched(1000);
}

/// For waits whose length is of no matter.
int aWhile()
{
    return stretched(10000);
}

} // namespace

/// The real module in a real QML engine, the real client, the real service as a process of its own.
class LiveJobsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void firstRowsAreTheJobsOfTheService();
    void viewsShowRequiredAndArchivedJobsNewestFirst();
    void changeOverHttpShowsWithinASecondOnTheSameObject();
    void archivedJobMovesToTheOtherView();
    void createdJobAppearsAndOtherObjectsStay();
    void deletedJobDisappearsAndOtherObjectsStay();
    void activeJobIsTheCurrentOneAndInNeitherView();
    void archivingFromTheScreenReachesTheService();
    void groupTypeIsStoredAtTheService();
    void groupTypeOfAnotherClientIsTakenOverWithTheNextUpdate();
    void anotherPortShowsTheJobsOfTheServiceThere();
    void secondEngineAfterTheFirstShowsTheJobs();
    void twoEnginesAtOnceBothFollowTheService();

private:
    void waitForRows(const FrontEnd& frontEnd);

    std::unique_ptr<ServiceProcess> m_service;
    JobServiceClient m_client{ modulePort };
};

void LiveJobsTest::initTestCase()
{
    if (!networkRefusal().empty())
        QSKIP(("no network of its own, in which port 8082 is free: " + networkRefusal()).c_str());
}

void LiveJobsTest::init()
{
    m_service = std::make_unique<ServiceProcess>(std::vector<std::string>{ "--load", JOBMANAGER_SAMPLES });
    m_service->setPort(modulePort);
    QVERIFY2(m_service->start(), m_service->log().c_str());
}

void LiveJobsTest::cleanup()
{
    m_service.reset();
}

void LiveJobsTest::waitForRows(const FrontEnd& frontEnd)
{
    QVERIFY(frontEnd.manager());
    QTRY_COMPARE_WITH_TIMEOUT(FrontEnd::ids(frontEnd.jobs()), m_client.jobIds(), aWhile());
    QVERIFY(frontEnd.jobs()->rowCount() > 10);
}

void LiveJobsTest::firstRowsAreTheJobsOfTheService()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);

    const QString id = m_client.jobIds().constFirst();
    const QJsonObject summary = m_client.summary(id);
    const QObject* job = frontEnd.job(id);
    QCOMPARE(job->property("jobNumber").toString(), id);
    QCOMPARE(job->property("customerName").toString(), summary.value(QLatin1String("customerName")).toString());
    QCOMPARE(job->property("workOrderLabel").toString(), summary.value(QLatin1String("workOrderLabel")).toString());
    QCOMPARE(job->property("typeName").toString(), summary.value(QLatin1String("workflowTypeName")).toString());
    QCOMPARE(job->property("managedBy").toString(), summary.value(QLatin1String("managedByInfo")).toString());
    QCOMPARE(job->property("state").toString(), summary.value(QLatin1String("managementState")).toString());
    QCOMPARE(job->property("totalNumberOfRequiredTests").toInt(),
        summary.value(QLatin1String("totalNumberOfRequiredTests")).toInt());
}

void LiveJobsTest::viewsShowRequiredAndArchivedJobsNewestFirst()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);

    QStringList shown;
    for (const char* property : { "requiredJobs", "archivedJobs" }) {
        QString newer = QStringLiteral("9999");
        const QStringList ids = FrontEnd::ids(frontEnd.view(property));
        for (const QString& id : ids) {
            const QJsonObject summary = m_client.summary(id);
            QCOMPARE(summary.value(QLatin1String("archived")).toBool(), qstrcmp(property, "archivedJobs") == 0);
            const QString modifiedOn = summary.value(QLatin1String("modifiedOn")).toString();
            QVERIFY2(modifiedOn <= newer, qPrintable(id));
            newer = modifiedOn;
        }
        QVERIFY(!ids.isEmpty());
        shown += ids;
    }
    QCOMPARE(shown.size(), frontEnd.jobs()->rowCount());
}

void LiveJobsTest::changeOverHttpShowsWithinASecondOnTheSameObject()
{
    m_client.createJob(QStringLiteral("LIVE-1"));
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    QString id;
    for (const QString& candidate : m_client.jobIds()) {
        const QJsonObject summary = m_client.summary(candidate);
        const int total = summary.value(QLatin1String("totalNumberOfRequiredTests")).toInt();
        const int completed = summary.value(QLatin1String("numberOfCompletedRequiredTests")).toInt();
        if (completed < total && total < 20)
            id = candidate;
    }
    QVERIFY(!id.isEmpty());
    const QPointer<QObject> job = frontEnd.job(id);

    m_client.completeJob(id);

    QTRY_COMPARE_WITH_TIMEOUT(job->property("numberOfCompletedRequiredTests").toInt(),
        job->property("totalNumberOfRequiredTests").toInt(), oneSecond());
    QCOMPARE(frontEnd.job(id), job.data());
    QCOMPARE(FrontEnd::ids(frontEnd.view("requiredJobs")).constFirst(), id);
}

void LiveJobsTest::archivedJobMovesToTheOtherView()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    const QString id = FrontEnd::ids(frontEnd.view("requiredJobs")).constLast();

    m_client.archiveJob(id);

    QTRY_VERIFY_WITH_TIMEOUT(FrontEnd::ids(frontEnd.view("archivedJobs")).contains(id), oneSecond());
    QVERIFY(!FrontEnd::ids(frontEnd.view("requiredJobs")).contains(id));
}

void LiveJobsTest::createdJobAppearsAndOtherObjectsStay()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    const QString other = m_client.jobIds().constLast();
    QObject* const job = frontEnd.job(other);

    m_client.createJob(QString::fromUtf8("Zürich / 東京 #1"));

    QTRY_VERIFY_WITH_TIMEOUT(frontEnd.job(QString::fromUtf8("Zürich / 東京 #1")), oneSecond());
    QCOMPARE(frontEnd.job(other), job);
}

void LiveJobsTest::deletedJobDisappearsAndOtherObjectsStay()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    const QStringList ids = m_client.jobIds();
    const QPointer<QObject> dropped = frontEnd.job(ids.constFirst());
    const QPointer<QObject> kept = frontEnd.job(ids.constLast());

    m_client.deleteJob(ids.constFirst());

    QTRY_VERIFY_WITH_TIMEOUT(!frontEnd.job(ids.constFirst()), oneSecond());
    QVERIFY(!dropped);
    QCOMPARE(frontEnd.job(ids.constLast()), kept.data());
}

void LiveJobsTest::activeJobIsTheCurrentOneAndInNeitherView()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    const QString id = FrontEnd::ids(frontEnd.view("requiredJobs")).constFirst();

    m_client.setActiveJob(id);

    QTRY_COMPARE_WITH_TIMEOUT(
        frontEnd.manager()->property("currentJob").value<QObject*>(), frontEnd.job(id), oneSecond());
    QVERIFY(!FrontEnd::ids(frontEnd.view("requiredJobs")).contains(id));
    QVERIFY(!FrontEnd::ids(frontEnd.view("archivedJobs")).contains(id));
}

void LiveJobsTest::archivingFromTheScreenReachesTheService()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    const QString id = FrontEnd::ids(frontEnd.view("requiredJobs")).constFirst();

    QVERIFY(frontEnd.job(id)->setProperty("isArchived", true));

    QVERIFY(m_client.summary(id).value(QLatin1String("archived")).toBool());
    QTRY_VERIFY_WITH_TIMEOUT(FrontEnd::ids(frontEnd.view("archivedJobs")).contains(id), oneSecond());
}

void LiveJobsTest::groupTypeIsStoredAtTheService()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);

    frontEnd.manager()->setProperty("groupType", 2);

    QCOMPARE(m_client.settings().value(QLatin1String("groupType")).toString(), QStringLiteral("2"));
}

void LiveJobsTest::groupTypeOfAnotherClientIsTakenOverWithTheNextUpdate()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    QCOMPARE(frontEnd.manager()->property("groupType").toInt(), 1);

    m_client.writeSetting(QStringLiteral("groupType"), QStringLiteral("3"));
    m_client.createJob(QStringLiteral("LIVE-2"));

    QTRY_COMPARE_WITH_TIMEOUT(frontEnd.manager()->property("groupType").toInt(), 3, oneSecond());
}

void LiveJobsTest::anotherPortShowsTheJobsOfTheServiceThere()
{
    const FrontEnd frontEnd;
    waitForRows(frontEnd);
    ServiceProcess other({ "--generate", "jobs=5,tests=2" });
    QVERIFY2(other.start(), other.log().c_str());

    frontEnd.manager()->setProperty("restApiPort", other.port());

    QTRY_COMPARE_WITH_TIMEOUT(FrontEnd::ids(frontEnd.jobs()), JobServiceClient(other.port()).jobIds(), aWhile());
}

void LiveJobsTest::secondEngineAfterTheFirstShowsTheJobs()
{
    {
        const FrontEnd first;
        waitForRows(first);
    }
    const FrontEnd second;
    waitForRows(second);
}

void LiveJobsTest::twoEnginesAtOnceBothFollowTheService()
{
    const FrontEnd first;
    const FrontEnd second;
    waitForRows(first);
    waitForRows(second);
    QVERIFY(first.manager() != second.manager());

    m_client.createJob(QStringLiteral("LIVE-3"));

    QTRY_VERIFY_WITH_TIMEOUT(first.job(QStringLiteral("LIVE-3")), oneSecond());
    QTRY_VERIFY_WITH_TIMEOUT(second.job(QStringLiteral("LIVE-3")), oneSecond());
}

END_TO_END_MAIN(LiveJobsTest)

#include "LiveJobsTest.moc"
