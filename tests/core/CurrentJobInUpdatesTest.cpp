#include "tests/core/ManagerFixture.h"

#include <QPointer>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

/// What a rebuild of the rows makes of the current job.
class CurrentJobInUpdatesTest : public ManagerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void currentJobThatAppearsIsSignalledTwice()
    {
        m_api->setCurrentID(idA);
        watchCurrentJob();
        rebuild({ idA });
        QCOMPARE(m_seenCurrent, (QStringList{ QString(), idA }));
    }

    void currentJobThatStaysIsNotSignalled()
    {
        m_api->setCurrentID(idA);
        rebuild({ idA });
        Job* const current = m_manager->currentJob();
        watchCurrentJob();
        rebuild({ idB, idA });
        QCOMPARE(m_seenCurrent, QStringList());
        QCOMPARE(m_manager->currentJob(), current);
        QVERIFY(current != nullptr);
    }

    void currentJobThatChangesIsSignalledEmptyFirst()
    {
        m_api->setCurrentID(idA);
        rebuild({ idA, idB });
        m_api->setCurrentID(idB);
        watchCurrentJob();
        rebuild({ idA, idB });
        QCOMPARE(m_seenCurrent, (QStringList{ QString(), idB }));
    }

    void currentJobThatGoesIsSignalledTwice()
    {
        m_api->setCurrentID(idA);
        rebuild({ idA });
        m_api->setCurrentID(QString());
        watchCurrentJob();
        rebuild({ idA });
        QCOMPARE(m_seenCurrent, (QStringList{ QString(), QString() }));
        QCOMPARE(m_manager->currentJob(), nullptr);
    }

    void everyRebuildWithoutACurrentJobSignalsIt()
    {
        watchCurrentJob();
        rebuild({ idA });
        rebuild({ idA });
        QCOMPARE(m_seenCurrent, (QStringList{ QString(), QString() }));
    }

    void currentIdOutsideTheListLeavesNoCurrentJob()
    {
        m_api->setCurrentID(idC);
        watchCurrentJob();
        rebuild({ idA });
        QCOMPARE(m_seenCurrent, QStringList{ QString() });
        QCOMPARE(m_manager->currentJob(), nullptr);
    }

    void currentJobThatGoesWithItsRowIsReleased()
    {
        m_api->setCurrentID(idB);
        rebuild({ idA, idB });
        const QPointer<Job> gone = m_manager->currentJob();
        m_api->setCurrentID(QString());
        m_journal.take();
        rebuild({ idA });
        QVERIFY(gone.isNull());
        QCOMPARE(m_manager->currentJob(), nullptr);
        QCOMPARE(m_journal.take().filter(QStringLiteral("emit dataChanged")), QStringList());
    }

    void currentJobOutsideTheListStaysWhileTheServiceNamesIt()
    {
        m_api->setCurrentID(idB);
        rebuild({ idA, idB });
        const QPointer<Job> current = m_manager->currentJob();
        watchCurrentJob();
        rebuild({ idA });
        QVERIFY(!current.isNull());
        QCOMPARE(m_manager->currentJob(), current.data());
        QCOMPARE(m_seenCurrent, QStringList());
        rebuild({ idA, idB });
        QCOMPARE(m_manager->currentJob(), m_manager->getJob(idB));
        QCOMPARE(m_seenCurrent, QStringList{ idB });
        QVERIFY(current.isNull());
    }

    void currentJobIsSignalledInsideTheReset()
    {
        m_api->setCurrentID(idA);
        m_journal.take();
        rebuild({ idA });
        const QStringList entries = m_journal.take();
        QVERIFY(entries.indexOf(QStringLiteral("emit currentJobChanged()"))
            > entries.indexOf(QStringLiteral("emit modelAboutToBeReset()")));
        QVERIFY(entries.lastIndexOf(QStringLiteral("emit currentJobChanged()"))
            < entries.indexOf(QStringLiteral("emit modelReset()")));
    }

    void rowOfADroppedCurrentJobIsRefiltered()
    {
        m_api->setCurrentID(idB);
        rebuild({ idA, idB });
        m_api->setAnswer(QStringLiteral("hasCurrentJob"), false);
        m_journal.take();
        rebuild({ idA, idB });
        const QStringList entries = m_journal.take();
        const int asked = entries.indexOf(QStringLiteral("call hasCurrentJob()"));
        QCOMPARE(lines(entries.mid(asked + 1)), QStringLiteral(R"(emit dataChanged(row 1, row 1, [260])
emit currentJobChanged()
emit modelReset())"));
        QCOMPARE(m_manager->currentJob(), nullptr);
    }

    void droppedCurrentJobThatHasLeftTheListHasNoRow()
    {
        m_api->setCurrentID(idB);
        rebuild({ idA, idB });
        m_api->setAnswer(QStringLiteral("hasCurrentJob"), false);
        m_journal.take();
        rebuild({ idA });
        QVERIFY(m_journal.contains(QStringLiteral("emit dataChanged(row -1, row -1, [260])")));
        QCOMPARE(m_manager->currentJob(), nullptr);
    }

    void viewsStandADroppedCurrentJob()
    {
        m_api->keepJobListCached();
        m_api->setJobIDs({ idA, idB });
        m_api->setCurrentID(idB);
        m_manager->initialize();
        QCOMPARE(m_manager->requiredJobs()->rowCount(), 1);
        m_api->setAnswer(QStringLiteral("hasCurrentJob"), false);
        m_api->setJobIDs({ idC, QStringLiteral("D"), idA, idB });
        m_manager->updateDataFromAPI(false);
        QCOMPARE(m_manager->requiredJobs()->rowCount(), 4);
    }

private:
    /// Notes the current job's id, empty for none, at each signal.
    void watchCurrentJob()
    {
        m_seenCurrent.clear();
        connect(m_manager, &JobManager::currentJobChanged, this, [this] {
            const Job* const current = m_manager->currentJob();
            m_seenCurrent.append(current == nullptr ? QString() : current->concreteTypeJobID());
        });
    }

    QStringList m_seenCurrent;
};

QTEST_GUILESS_MAIN(CurrentJobInUpdatesTest)
#include "CurrentJobInUpdatesTest.moc"
