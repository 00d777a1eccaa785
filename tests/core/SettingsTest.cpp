#include "core/JobManager.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/RecordingApi.h"
#include "tests/support/SignalRecorder.h"

#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

class SettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_messages = std::make_unique<MessageCollector>();
        m_journal.take();
        m_api = std::make_shared<RecordingApi>(m_journal);
        m_manager = std::make_unique<JobManager>(m_api);
        m_recorder = std::make_unique<SignalRecorder>(*m_manager, m_journal);
    }

    void cleanup()
    {
        QCOMPARE(m_messages->take(), QStringList());
        m_recorder.reset();
        m_manager.reset();
        m_messages.reset();
    }

    void writtenSettingGoesToTheInterfaceAsUtf8()
    {
        QVERIFY(QMetaObject::invokeMethod(m_manager.get(), "writeSetting", Q_ARG(QString, QStringLiteral("größe")),
            Q_ARG(QString, QStringLiteral("日本"))));
        QCOMPARE(m_journal.take(), QStringList{ QStringLiteral("call writeSetting(\"größe\", \"日本\")") });
    }

    void newGroupTypeIsToldStoredAndSignalled()
    {
        QVERIFY(m_manager->setProperty("groupType", TestGroupType::GROUPBY_LOCATION));
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("call setGroupType(2)"),
                QStringLiteral("call writeSetting(\"groupType\", \"2\")"),
                QStringLiteral("emit groupTypeChanged()") }));
        QCOMPARE(m_manager->groupType(), TestGroupType::GROUPBY_LOCATION);
    }

    void newGroupTypeGroupsTheTestsOfAllJobsBeforeItIsSignalled()
    {
        m_api->setJobIDs({ QStringLiteral("A"), QStringLiteral("B") });
        m_manager->doUpdateDataFromAPI();
        const SignalRecorder first(*m_manager->getJob(QStringLiteral("A"))->tests(), m_journal, QStringLiteral("A: "));
        const SignalRecorder second(*m_manager->getJob(QStringLiteral("B"))->tests(), m_journal, QStringLiteral("B: "));
        m_journal.take();
        m_manager->setGroupType(TestGroupType::GROUPBY_TEST_NAME);
        QCOMPARE(lines(m_journal.take()), QStringLiteral(R"(call setGroupType(3)
call writeSetting("groupType", "3")
emit A: modelAboutToBeReset()
emit A: sectionsChanged()
emit A: sectionsCountChanged()
emit A: modelReset()
emit B: modelAboutToBeReset()
emit B: sectionsChanged()
emit B: sectionsCountChanged()
emit B: modelReset()
emit groupTypeChanged())"));
        m_messages->take();
    }

    void currentGroupTypeIsNeitherWrittenNorSignalled()
    {
        m_manager->setGroupType(TestGroupType::DEFAULT_VIEW);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void storedGroupTypeIsTakenOver_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("taken");
        QTest::newRow("none") << QStringLiteral("0") << 0;
        QTest::newRow("location") << QStringLiteral("2") << 2;
        QTest::newRow("test name") << QStringLiteral("3") << 3;
        QTest::newRow("no number") << QStringLiteral("location") << 0;
        QTest::newRow("empty but there") << QStringLiteral("") << 0;
        QTest::newRow("hexadecimal is no decimal") << QStringLiteral("0x2") << 0;
        QTest::newRow("outside the enum") << QStringLiteral("17") << 17;
        QTest::newRow("negative") << QStringLiteral("-1") << -1;
    }

    void storedGroupTypeIsTakenOver()
    {
        QFETCH(QString, stored);
        QFETCH(int, taken);
        m_api->setSettings({ { QStringLiteral("groupType"), stored } });
        QVERIFY(QMetaObject::invokeMethod(m_manager.get(), "updateSettingsFromDb"));
        QCOMPARE(static_cast<int>(m_manager->groupType()), taken);
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("call getSettingsListInfo()"),
                QStringLiteral("call setGroupType(%1)").arg(taken),
                QStringLiteral("call writeSetting(\"groupType\", \"%1\")").arg(taken),
                QStringLiteral("emit groupTypeChanged()") }));
    }

    void unchangedStoredGroupTypeIsNotWrittenBack()
    {
        m_api->setSettings({ { QStringLiteral("groupType"), QStringLiteral("2") } });
        m_manager->updateSettingsFromDb();
        m_journal.take();
        m_manager->updateSettingsFromDb();
        QCOMPARE(m_journal.take(), QStringList{ QStringLiteral("call getSettingsListInfo()") });
    }

    void absentGroupTypeIsTheDefault()
    {
        m_manager->setGroupType(TestGroupType::GROUPBY_TEST_NAME);
        m_api->setSettings({ { QStringLiteral("other"), QStringLiteral("3") } });
        m_journal.take();
        m_manager->updateSettingsFromDb();
        QCOMPARE(m_manager->groupType(), TestGroupType::DEFAULT_VIEW);
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("call getSettingsListInfo()"), QStringLiteral("call setGroupType(1)"),
                QStringLiteral("call writeSetting(\"groupType\", \"1\")"),
                QStringLiteral("emit groupTypeChanged()") }));
    }

    void groupTypeThatIsNoLongerStoredIsTheDefaultAgain()
    {
        m_api->setSettings({ { QStringLiteral("groupType"), QStringLiteral("2") } });
        m_manager->updateSettingsFromDb();
        m_api->setSettings({});
        m_manager->updateSettingsFromDb();
        QCOMPARE(m_manager->groupType(), TestGroupType::DEFAULT_VIEW);
    }

    void everyUpdateReadsTheSettings()
    {
        m_api->setSettings({ { QStringLiteral("groupType"), QStringLiteral("3") } });
        m_manager->updateDataFromAPI(true);
        QCOMPARE(m_manager->groupType(), TestGroupType::GROUPBY_TEST_NAME);
        m_messages->take();
    }

private:
    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
    std::unique_ptr<JobManager> m_manager;
    std::unique_ptr<SignalRecorder> m_recorder;
};

QTEST_GUILESS_MAIN(SettingsTest)
#include "SettingsTest.moc"
