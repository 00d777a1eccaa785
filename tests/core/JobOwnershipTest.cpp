#include "core/JobManager.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/RecordingApi.h"

#include <algorithm>
#include <memory>
#include <QPointer>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
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

/// JavaScript gets jobs in every way there is, lets go of them, and its collector runs: nobody may die.
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
        m_manager = std::make_unique<JobManager>(m_api);
        m_manager->initialize();
        m_engine = std::make_unique<QQmlEngine>();
        m_engine->rootContext()->setContextProperty(QStringLiteral("manager"), m_manager.get());
        for (int row = 0; row < m_manager->rowCount(); ++row) {
            m_jobs.append(m_manager->index(row, 0).data(JobManager::JobRole).value<Job*>());
        }
    }

    void cleanup()
    {
        m_engine.reset();
        m_manager.reset();
        m_api.reset();
        m_jobs.clear();
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

    void jobsOutliveTheCollector_data()
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
    }

    void jobsOutliveTheCollector()
    {
        QFETCH(QString, script);
        QFETCH(QString, seen);
        QCOMPARE(run(script), seen);
        collect();
        QCOMPARE(livingJobs(), 3);
    }

    void jobsOutliveTheDelegatesThatShowThem()
    {
        QQmlComponent component(m_engine.get());
        component.setData("import QtQml 2.15\n"
                          "Instantiator { model: manager; property string seen: ''; "
                          "delegate: QtObject { property var shown: model.job; "
                          "Component.onCompleted: seen += model.job.jobNumber } }",
            QUrl());
        std::unique_ptr<QObject> list(component.create());
        QVERIFY2(list != nullptr, qPrintable(component.errorString()));
        QTRY_COMPARE(list->property("seen").toString(), QStringLiteral("ABC"));
        list.reset();
        collect();
        QCOMPARE(livingJobs(), 3);
    }

    void jobOfASignalFromCppOutlivesTheCollector()
    {
        QQmlComponent component(m_engine.get());
        component.setData("import QtQml 2.15\n"
                          "Connections { property string seen; target: manager; "
                          "function onNewJobCreated(job) { seen = job.jobNumber } }",
            QUrl());
        std::unique_ptr<QObject> receiver(component.create());
        QVERIFY2(receiver != nullptr, qPrintable(component.errorString()));
        Q_EMIT m_manager->newJobCreated(m_jobs.first());
        QCOMPARE(receiver->property("seen").toString(), QStringLiteral("A"));
        receiver.reset();
        collect();
        QCOMPARE(livingJobs(), 3);
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
        QQmlComponent component(m_engine.get());
        component.setData(QStringLiteral("import QtQml 2.15\nQtObject { property string seen: ''; "
                                         "Component.onCompleted: { %1 } }")
                              .arg(script)
                              .toUtf8(),
            QUrl());
        const std::unique_ptr<QObject> root(component.create());
        return root == nullptr ? component.errorString() : root->property("seen").toString();
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

    int livingJobs() const
    {
        return static_cast<int>(
            std::count_if(m_jobs.begin(), m_jobs.end(), [](const QPointer<Job>& job) { return !job.isNull(); }));
    }

    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
    std::unique_ptr<JobManager> m_manager;
    std::unique_ptr<QQmlEngine> m_engine;
    QList<QPointer<Job>> m_jobs;
};

QTEST_GUILESS_MAIN(JobOwnershipTest)
#include "JobOwnershipTest.moc"
