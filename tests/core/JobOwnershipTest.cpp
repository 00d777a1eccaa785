#include "core/JobManager.h"
#include "models/PartialModel.h"
#include "tests/models/ScriptedTests.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/QmlObject.h"

#include <algorithm>
#include <memory>
#include <QPointer>
#include <QQmlContext>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

/// A model with an object that nothing protects: what the collector does to it shows that the collector runs.
class UnprotectedModel : public QAbstractListModel
{
public:
    int rowCount(const QModelIndex& parent = QModelIndex()) const override { return parent.isValid() ? 0 : 1; }
    QVariant data(const QModelIndex& /*index*/, int /*role*/) const override
    {
        return QVariant::fromValue(m_object.data());
    }

    QPointer<QObject> m_object = new QObject; // taken over by the collector
};

} // namespace

/// JavaScript gets jobs and tests in every way there is, lets go of them, and its collector runs: nobody may die.
class JobOwnershipTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_messages = std::make_unique<MessageCollector>();
        m_api = std::make_shared<RecordingApi>();
        m_api->keepJobListCached();
        m_api->setJobIDs({ QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C") });
        m_api->setCurrentID(QStringLiteral("C"));
        m_api->setAnswer(QStringLiteral("isJobInCache"), true);
        setTests(*m_api, QStringLiteral("C"), testsAt({ QStringLiteral("x"), QStringLiteral("y") }));
        m_manager = std::make_unique<JobManager>(m_api);
        m_manager->initialize();
        m_engine = std::make_unique<QQmlEngine>();
        m_engine->rootContext()->setContextProperty(QStringLiteral("manager"), m_manager.get());
        for (int row = 0; row < m_manager->rowCount(); ++row) {
            m_jobs.append(m_manager->index(row, 0).data(JobManager::JobRole).value<Job*>());
        }
        m_list = m_manager->currentJob()->tests();
        m_slice = std::make_unique<PartialModel>();
        m_slice->setModel(m_list);
        m_slice->setTestsCount(2);
        m_engine->rootContext()->setContextProperty(QStringLiteral("slice"), m_slice.get());
        m_tests = { m_manager->currentJob()->getTest(0).get(), m_manager->currentJob()->getTest(1).get() };
    }

    void cleanup()
    {
        m_engine.reset();
        m_slice.reset();
        m_manager.reset();
        m_api.reset();
        m_jobs.clear();
        m_tests.clear();
        QStringList messages = m_messages->take();
        m_messages.reset();
        messages.erase(std::remove_if(messages.begin(), messages.end(),
                           [](const QString& message) { return message.startsWith(QLatin1String("debug: ")); }),
            messages.end());
        QCOMPARE(messages, QStringList());
    }

    void collectorTakesWhatNothingProtects()
    {
        UnprotectedModel model;
        m_engine->rootContext()->setContextProperty(QStringLiteral("unprotected"), &model);
        run(QStringLiteral("seen = String(unprotected.data(unprotected.index(0, 0), 258))"));
        collect();
        QVERIFY(model.m_object.isNull());
    }

    void jobsAndTestsOutliveTheCollector_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("seen");
        QTest::newRow("a property") << QStringLiteral("seen = manager.currentJob.jobNumber") << QStringLiteral("C");
        QTest::newRow("the manager's data()")
            << QStringLiteral("for (var i = 0; i < manager.rowCount(); ++i) "
                              "seen += manager.data(manager.index(i, 0), 258).jobNumber")
            << QStringLiteral("ABC");
        QTest::newRow("a view's data()") << QStringLiteral(
            "var view = manager.requiredJobs; for (var i = 0; i < view.rowCount(); ++i) "
            "seen += view.data(view.index(i, 0), 258).jobNumber")
                                         << QStringLiteral("AB");
        QTest::newRow("a signal's argument")
            << QStringLiteral("manager.newJobCreated.connect(function(job) { seen += job.jobNumber }); "
                              "manager.newJobCreated(manager.currentJob)")
            << QStringLiteral("C");
        QTest::newRow("the argument of the job's own signal") << QStringLiteral(
            "var job = manager.currentJob; "
            "job.isArchivedChanged.connect(function(sender) { seen += sender.jobNumber }); "
            "job.updateDataFromAPI()") << QStringLiteral("C");
        QTest::newRow("the tests as a property")
            << QStringLiteral("seen = '' + manager.currentJob.tests.testsCount") << QStringLiteral("2");
        QTest::newRow("data() of the tests")
            << QStringLiteral("var tests = manager.currentJob.tests; for (var i = 0; i < tests.rowCount(); ++i) "
                              "seen += tests.data(tests.index(i, 0), 262).location")
            << QStringLiteral("xy");
        QTest::newRow("data() of a slice of the tests")
            << QStringLiteral("for (var i = 0; i < slice.rowCount(); ++i) "
                              "seen += slice.data(slice.index(i, 0), 262).location")
            << QStringLiteral("xy");
        QTest::newRow("the tests as the model of a slice")
            << QStringLiteral("seen = '' + slice.model.testsCount + slice.sourceModel.testsCount")
            << QStringLiteral("22");
        QTest::newRow("the model of an index of the tests")
            << QStringLiteral("var tests = manager.currentJob.tests; seen = '' + tests.index(0, 0).model.testsCount")
            << QStringLiteral("2");
        QTest::newRow("a test as a signal's argument")
            << QStringLiteral("manager.testAboutToLaunch.connect(function(test) { seen += test.location }); "
                              "var tests = manager.currentJob.tests; "
                              "manager.testAboutToLaunch(tests.data(tests.index(1, 0), 262))")
            << QStringLiteral("y");
    }

    void jobsAndTestsOutliveTheCollector()
    {
        QFETCH(QString, script);
        QFETCH(QString, seen);
        QCOMPARE(run(script), seen);
        collect();
        verifyEverybodyLives();
    }

    void jobsOutliveTheDelegatesThatShowThem()
    {
        std::unique_ptr<QObject> list = qmlObject(*m_engine,
            "Instantiator { model: manager; property string seen: ''; "
            "delegate: QtObject { property var shown: model.job; "
            "Component.onCompleted: seen += model.job.jobNumber } }");
        QTRY_COMPARE(list->property("seen").toString(), QStringLiteral("ABC"));
        list.reset();
        collect();
        verifyEverybodyLives();
    }

    void testsOutliveTheDelegatesThatShowThem_data()
    {
        QTest::addColumn<QByteArray>("model");
        QTest::newRow("of the list") << QByteArray("manager.currentJob.tests");
        QTest::newRow("of a slice") << QByteArray("slice");
    }

    void testsOutliveTheDelegatesThatShowThem()
    {
        QFETCH(QByteArray, model);
        std::unique_ptr<QObject> list = qmlObject(*m_engine,
            "Instantiator { model: " + model
                + "; property string seen: ''; "
                  "delegate: QtObject { property var shown: model.test; "
                  "Component.onCompleted: seen += model.test.location } }");
        QTRY_COMPARE(list->property("seen").toString(), QStringLiteral("xy"));
        list.reset();
        collect();
        verifyEverybodyLives();
    }

    void testHeldInAPropertyOutlivesTheCollector()
    {
        std::unique_ptr<QObject> holder = qmlObject(*m_engine,
            "QtObject { property var tests: manager.currentJob.tests; "
            "property QtObject shown: tests.data(tests.index(0, 0), 262); "
            "property string seen: shown.location }");
        QCOMPARE(holder->property("seen").toString(), QStringLiteral("x"));
        collect();
        verifyEverybodyLives();
        holder.reset();
        collect();
        verifyEverybodyLives();
    }

    void testOfASignalFromCppOutlivesTheCollector()
    {
        std::unique_ptr<QObject> receiver = qmlObject(*m_engine,
            "Connections { property string seen; target: manager; "
            "function onTestAboutToLaunch(test) { seen = test.location } }");
        Q_EMIT m_manager->testAboutToLaunch(m_tests.first());
        QCOMPARE(receiver->property("seen").toString(), QStringLiteral("x"));
        receiver.reset();
        collect();
        verifyEverybodyLives();
    }

    void jobOfASignalFromCppOutlivesTheCollector()
    {
        std::unique_ptr<QObject> receiver = qmlObject(*m_engine,
            "Connections { property string seen; target: manager; "
            "function onNewJobCreated(job) { seen = job.jobNumber } }");
        Q_EMIT m_manager->newJobCreated(m_jobs.first());
        QCOMPARE(receiver->property("seen").toString(), QStringLiteral("A"));
        receiver.reset();
        collect();
        verifyEverybodyLives();
    }

    void managerAndViewsOutliveTheCollector()
    {
        const QPointer<QSortFilterProxyModel> view = m_manager->requiredJobs();
        QCOMPARE(
            run(QStringLiteral("seen = '' + (manager.requiredJobs.sourceModel === manager)")), QStringLiteral("true"));
        collect();
        QVERIFY(!view.isNull());
        QCOMPARE(m_manager->rowCount(), 3);
    }

private:
    /// Runs the script and gives what it has put into `seen`. Nothing of it lives on.
    QString run(const QString& script)
    {
        const QString text = QStringLiteral("QtObject { property string seen: ''; Component.onCompleted: { %1 } }");
        return qmlObject(*m_engine, text.arg(script).toUtf8())->property("seen").toString();
    }

    void collect()
    {
        // Once more, for what the first run has let go of.
        for (int round = 0; round < 2; ++round) {
            m_engine->collectGarbage();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QCoreApplication::processEvents();
        }
    }

    template <typename Object> static int living(const QList<QPointer<Object>>& objects)
    {
        return static_cast<int>(std::count_if(
            objects.begin(), objects.end(), [](const QPointer<Object>& object) { return !object.isNull(); }));
    }

    void verifyEverybodyLives() const
    {
        QCOMPARE(living(m_jobs), 3);
        QCOMPARE(living(m_tests), 2);
        QVERIFY(!m_list.isNull());
    }

    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
    std::unique_ptr<JobManager> m_manager;
    std::unique_ptr<PartialModel> m_slice;
    std::unique_ptr<QQmlEngine> m_engine;
    QList<QPointer<Job>> m_jobs;
    QPointer<QAbstractListModel> m_list;
    QList<QPointer<Test>> m_tests;
};

QTEST_GUILESS_MAIN(JobOwnershipTest)
#include "JobOwnershipTest.moc"
