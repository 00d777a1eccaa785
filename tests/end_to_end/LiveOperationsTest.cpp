#include "tests/end_to_end/LiveManager.h"

#include <functional>
#include <QJsonArray>
#include <QPointer>
#include <QSignalSpy>
#include <QtTest>
#include <QUrl>

using namespace jobmanager_ui;

namespace {

using Step = std::function<void(LiveManager& front)>;
using Truth = std::function<bool(LiveManager& front)>;

const QString newID = QStringLiteral("WO / größer #1");

std::string jobRoute(const std::string& method, const QString& id, const std::string& rest = {})
{
    return method + " /api/v1/jobs/" + QUrl::toPercentEncoding(id).toStdString() + rest;
}

} // namespace

Q_DECLARE_METATYPE(Step)
Q_DECLARE_METATYPE(Truth)

/// What the front end asks the service to do with jobs, over the real client and the real service: the round trips, and
/// writes whose answers are lost on the way.
class LiveOperationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        QCOMPARE(m_front->endWithWarnings(), QStringList());
        m_front.reset();
    }

    void currentJobIsUpToDateWhenTheRequestHasEnded()
    {
        m_front = liveManager();
        QString currentAtTheEnd;
        connect(m_front->manager.get(), &JobManager::settingCurrentJobChanged, this,
            [&] { currentAtTheEnd = m_front->currentID(); });

        QVERIFY(m_front->manager->setCurrentJob(m_front->job(testedID)));

        QCOMPARE(m_front->manager->settingCurrentJob(), true);
        QTRY_VERIFY_WITH_TIMEOUT(!m_front->manager->settingCurrentJob(), aWhile());
        QCOMPARE(currentAtTheEnd, testedID);
        QCOMPARE(m_front->client.activeJob(), testedID);
        QCOMPARE(m_front->manager->requiredJobs()->rowCount() + m_front->manager->archivedJobs()->rowCount(), 1);
    }

    void currentJobIsGivenUp()
    {
        m_front = liveManager();
        m_front->makeCurrent(testedID);

        QVERIFY(m_front->manager->unsetCurrentJob());

        QTRY_VERIFY_WITH_TIMEOUT(!m_front->manager->settingCurrentJob(), aWhile());
        QCOMPARE(m_front->manager->currentJob(), nullptr);
        QCOMPARE(m_front->client.activeJob(), QString());
    }

    void currentJobThatTheServiceDoesNotKnowStaysAsItWas()
    {
        m_front = liveManager();
        m_front->makeCurrent(testedID);
        m_front->manager->setPauseAutomaticUpdates(true);
        m_front->client.deleteJob(otherID);
        const int count = m_front->client.changeCount();

        QVERIFY(m_front->manager->setCurrentJob(m_front->job(otherID)));

        QTRY_VERIFY_WITH_TIMEOUT(!m_front->manager->settingCurrentJob(), aWhile());
        QCOMPARE(m_front->currentID(), testedID);
        QCOMPARE(m_front->client.activeJob(), testedID);
        QCOMPARE(m_front->client.changeCount(), count);
    }

    void createdJobIsCurrentAtOnceAndAnnouncedWhenItHasARow()
    {
        m_front = liveManager();
        QStringList announced;
        connect(m_front->manager.get(), &JobManager::newJobCreated, this, [&](Job* created) {
            announced.append(created->concreteTypeJobID());
            QVERIFY(m_front->manager->isCurrentJob(created));
        });

        QVERIFY(m_front->manager->createNewJob(newID, QStringLiteral("T-7")));

        QCOMPARE(m_front->client.activeJob(), newID);
        QTRY_COMPARE_WITH_TIMEOUT(announced, QStringList{ newID }, aWhile());
        QCOMPARE(m_front->manager->currentJob(), m_front->job(newID));
        QCOMPARE(m_front->manager->rowCount(), 3);
    }

    void createdJobKeepsItsTechnicianAndWhetherItIsSynced()
    {
        m_front = liveManager();

        QVERIFY(m_front->manager->createNewJob(newID, QStringLiteral("T-7"), QString(), QString(), false));
        QVERIFY(m_front->manager->createNewJob(QStringLiteral("synced"), QStringLiteral("T-8")));

        const QJsonObject details = m_front->client.document(newID).value(QLatin1String("details")).toObject();
        QCOMPARE(details.value(QLatin1String("techInfo")).toObject().value(QLatin1String("techId")).toString(),
            QStringLiteral("T-7"));
        QCOMPARE(details.value(QLatin1String("syncToNimbrel")), QJsonValue(false));
        const QJsonObject synced =
            m_front->client.document(QStringLiteral("synced")).value(QLatin1String("details")).toObject();
        QCOMPARE(synced.value(QLatin1String("syncToNimbrel")), QJsonValue(true));
    }

    void jobFromATemplateHasItsTestsAtTheLocationsOfItsList()
    {
        m_front = liveManager();
        JobManager& manager = *m_front->manager;
        const QString bare = QStringLiteral("Ethernet activation");
        const QString located = QStringLiteral("Fibre acceptance");
        QVERIFY(manager.fetchJobTemplates().contains(bare));
        QVERIFY(manager.fetchJobTemplates().contains(located));

        QVERIFY(manager.createNewJob(newID, QStringLiteral("T-7"), bare));
        // A job that comes while the list is fetched shows with the next change.
        QTRY_VERIFY_WITH_TIMEOUT(m_front->job(newID), aWhile());
        QVERIFY(manager.createNewJob(
            QStringLiteral("located"), QStringLiteral("T-7"), located, QStringLiteral("fibres-1-12.txt")));
        QTRY_VERIFY_WITH_TIMEOUT(m_front->job(QStringLiteral("located")), aWhile());

        m_front->openTests(newID);
        m_front->openTests(QStringLiteral("located"));
        QCOMPARE(m_front->job(newID)->workOrderLabel(), manager.getWorkOrderLabelFromTemplate(bare));
        const QJsonArray tests = m_front->client.document(newID).value(QLatin1String("tests")).toArray();
        QCOMPARE(manager.getTemplateNumberOfTests(bare), tests.size());
        QCOMPARE(m_front->testAt(0, QStringLiteral("located"))->numberOfTestLocations(), 12);
    }

    void jobThatTheServiceRefusesIsNotAnnounced_data()
    {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("templateName");
        QTest::newRow("number in use, which no update has seen") << newID << QString();
        QTest::newRow("no such template") << QStringLiteral("other") << QStringLiteral("no such template");
        QTest::newRow("number with a line end") << QStringLiteral("a\nb") << QString();
        QTest::newRow("number of 10,000 characters") << QString(10000, QLatin1Char('x')) << QString();
    }

    void jobThatTheServiceRefusesIsNotAnnounced()
    {
        QFETCH(QString, number);
        QFETCH(QString, templateName);
        m_front = liveManager();
        const QSignalSpy announced(m_front->manager.get(), &JobManager::newJobCreated);
        m_front->manager->setPauseAutomaticUpdates(true);
        m_front->client.createJob(newID);

        QCOMPARE(m_front->manager->createNewJob(number, QStringLiteral("T-7"), templateName), false);

        m_front->manager->setPauseAutomaticUpdates(false);
        QTRY_COMPARE_WITH_TIMEOUT(m_front->manager->rowCount(), 3, aWhile());
        QCOMPARE(announced.count(), 0);
        QCOMPARE(m_front->manager->currentJob(), nullptr);
    }

    void deletedJobIsGoneAndNoLongerCurrent()
    {
        m_front = liveManager();
        m_front->makeCurrent(testedID);
        const QPointer<Job> gone = m_front->job(testedID);

        QVERIFY(m_front->manager->deleteJob(gone));

        QCOMPARE(m_front->client.jobIds(), QStringList{ otherID });
        QTRY_VERIFY_WITH_TIMEOUT(gone.isNull(), aWhile());
        QCOMPARE(m_front->manager->currentJob(), nullptr);
        QCOMPARE(m_front->manager->rowCount(), 1);
    }

    void jobThatAnotherClientHasDeletedIsNotDeletedAgain()
    {
        m_front = liveManager();
        m_front->manager->setPauseAutomaticUpdates(true);
        m_front->client.deleteJob(testedID);

        QCOMPARE(m_front->manager->deleteJob(m_front->job(testedID)), false);
    }

    void archivedCurrentJobIsCurrentNoMoreAndComesBack()
    {
        m_front = liveManager();
        m_front->makeCurrent(testedID);

        m_front->job(testedID)->setIsArchived(true);

        QCOMPARE(m_front->client.activeJob(), QString());
        QTRY_COMPARE_WITH_TIMEOUT(m_front->manager->archivedJobs()->rowCount(), 1, aWhile());
        QCOMPARE(m_front->manager->currentJob(), nullptr);

        m_front->job(testedID)->setIsArchived(false);

        QTRY_COMPARE_WITH_TIMEOUT(m_front->manager->requiredJobs()->rowCount(), 2, aWhile());
        QCOMPARE(m_front->client.summary(testedID).value(QLatin1String("archived")), QJsonValue(false));
    }

    void lostAnswerIsNeitherRepeatedNorBelieved_data()
    {
        QTest::addColumn<QString>("route");
        QTest::addColumn<Step>("before");
        QTest::addColumn<Step>("write");
        QTest::addColumn<Truth>("shows");
        const auto row = [](const char* name, const std::string& route, const Step& before, const Step& write,
                             const Truth& shows) {
            QTest::newRow(name) << QString::fromStdString(route) << before << write << shows;
        };
        const auto nothing = [](LiveManager& /*front*/) {};
        const auto current = [](LiveManager& front) { front.makeCurrent(testedID); };
        const auto archived = [](const LiveManager& front) { return front.job(testedID)->isArchived(); };
        row(
            "create", "POST /api/v1/jobs", nothing,
            [](LiveManager& front) { QCOMPARE(front.manager->createNewJob(newID, QStringLiteral("T-7")), false); },
            [](LiveManager& front) { return front.manager->doesJobExist(newID); });
        row(
            "delete", jobRoute("DELETE", testedID), nothing,
            [](LiveManager& front) { QCOMPARE(front.manager->deleteJob(front.job(testedID)), false); },
            [](LiveManager& front) { return !front.manager->doesJobExist(testedID); });
        row(
            "archive", jobRoute("POST", testedID, "/archive"), nothing,
            [](LiveManager& front) { front.job(testedID)->setIsArchived(true); }, archived);
        row(
            "restore", jobRoute("POST", testedID, "/restore"),
            [archived](LiveManager& front) {
                front.client.archiveJob(testedID);
                QTRY_VERIFY_WITH_TIMEOUT(archived(front), aWhile());
            },
            [](LiveManager& front) { front.job(testedID)->setIsArchived(false); },
            [archived](LiveManager& front) { return !archived(front); });
        row(
            "make current", "PUT /api/v1/active-job", nothing,
            [](LiveManager& front) { QCOMPARE(front.manager->setCurrentJob(front.job(testedID)), true); },
            [](LiveManager& front) { return front.currentID() == testedID; });
        row(
            "give up the current job", "PUT /api/v1/active-job", current,
            [](LiveManager& front) { QCOMPARE(front.manager->unsetCurrentJob(), true); },
            [](LiveManager& front) { return front.currentID().isEmpty(); });
        row(
            "answer a manual step", "POST /api/v1/manual-responses", current,
            [](LiveManager& front) { front.testAt(manualStep)->setManualStepUserResponse(QStringLiteral("no")); },
            [](LiveManager& front) {
                return front.job(testedID)->tests() != nullptr
                    && front.testAt(manualStep)->manualStepUserResponse() == QLatin1String("no");
            });
    }

    void lostAnswerIsNeitherRepeatedNorBelieved()
    {
        QFETCH(QString, route);
        QFETCH(Step, before);
        QFETCH(Step, write);
        QFETCH(Truth, shows);
        m_front = liveManagerOverRelay();
        before(*m_front);
        const QSignalSpy announced(m_front->manager.get(), &JobManager::newJobCreated);
        m_front->relay->loseAnswers(route.toStdString());
        const int count = m_front->client.changeCount();

        write(*m_front);

        QVERIFY(!shows(*m_front));
        QTRY_VERIFY_WITH_TIMEOUT(shows(*m_front), aWhile());
        QCOMPARE(m_front->relay->count(route.toStdString()), 1);
        QCOMPARE(m_front->client.changeCount(), count + 1);
        QCOMPARE(announced.count(), 0);
    }

    void activationWithoutAnAnswerAnnouncesNothing()
    {
        m_front = liveManagerOverRelay();
        const QSignalSpy announced(m_front->manager.get(), &JobManager::newJobCreated);
        m_front->relay->loseAnswers("PUT /api/v1/active-job");

        QCOMPARE(m_front->manager->createNewJob(newID, QStringLiteral("T-7")), false);

        QTRY_COMPARE_WITH_TIMEOUT(m_front->currentID(), newID, aWhile());
        QCOMPARE(announced.count(), 0);
        QCOMPARE(m_front->relay->count("POST /api/v1/jobs"), 1);
        QCOMPARE(m_front->relay->count("PUT /api/v1/active-job"), 1);
    }

private:
    std::unique_ptr<LiveManager> m_front;
};

QTEST_GUILESS_MAIN(LiveOperationsTest)
#include "LiveOperationsTest.moc"
