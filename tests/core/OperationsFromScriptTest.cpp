#include "tests/core/RecordedManager.h"
#include "tests/models/ScriptedTests.h"

#include <QJSValue>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

/// The operations as a screen calls them: from JavaScript, with what JavaScript hands over. Two jobs, "A" and "B", of
/// which "A" is current and has two tests; the service refuses everything.
class OperationsFromScriptTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_front = std::make_unique<RecordedManager>();
        setTests(*m_front->api, QStringLiteral("A"), testsAt({ QStringLiteral("x"), QStringLiteral("y") }));
        m_front->api->setCurrentID(QStringLiteral("A"));
        m_front->rebuild({ QStringLiteral("A"), QStringLiteral("B") });
        m_engine = std::make_unique<QQmlEngine>();
        m_engine->rootContext()->setContextProperty(QStringLiteral("manager"), &m_front->manager);
        evaluate(QStringLiteral("manager.currentJob.tests.testsCount"));
    }

    void cleanup()
    {
        m_engine.reset();
        m_front.reset();
    }

    void operationTakesWhatAScriptGives_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QVariant>("result");
        QTest::addColumn<QString>("happened");
        const auto row = [](const char* name, const char* script, const QVariant& result, const char* happened) {
            QTest::newRow(name) << QString::fromLatin1(script) << result << QString::fromLatin1(happened);
        };
        const char* const entry =
            "debug: bool jobmanager_ui::JobManager::createNewJob(QString, QString, QString, QString, bool) ";
        const auto created = [&](const char* logged, const char* called) {
            return QByteArray(entry) + logged + "\ncall getChangeCount()\ncall createJob(" + called + ")";
        };
        row("set the current job", "manager.setCurrentJob(manager.data(manager.index(1, 0), 258))", true,
            "emit settingCurrentJobChanged()\nemit setCurrentJobOnBackgroundThread(\"B\")");
        row("set no job", "manager.setCurrentJob(null)", false, "");
        row("give the current job up", "manager.unsetCurrentJob()", true,
            "emit settingCurrentJobChanged()\nemit setCurrentJobOnBackgroundThread(\"\")");
        row("delete", "manager.deleteJob(manager.currentJob)", false, "call deleteJob(\"A\")");
        row("delete no job", "manager.deleteJob(null)", false, "");
        row("create, two arguments", "manager.createNewJob('7', 'T')", false,
            created(R"("7" "T" "" "")", R"("7", "T", "", "", true)"));
        row("create, three arguments", "manager.createNewJob('7', 'T', 'tpl')", false,
            created(R"("7" "T" "tpl" "")", R"("7", "T", "tpl", "", true)"));
        row("create, four arguments", "manager.createNewJob('7', 'T', 'tpl', 'loc')", false,
            created(R"("7" "T" "tpl" "loc")", R"("7", "T", "tpl", "loc", true)"));
        row("create, five arguments", "manager.createNewJob('7', 'T', 'tpl', 'loc', false)", false,
            created(R"("7" "T" "tpl" "loc")", R"("7", "T", "tpl", "loc", false)"));
        row("create, a number", "manager.createNewJob(7, 8)", false,
            created(R"("7" "8" "" "")", R"("7", "8", "", "", true)"));
        row("exists", "manager.doesJobExist('A')", true, "");
        row("exists not", "manager.doesJobExist('C')", false, "");
        row("exists, nothing", "manager.doesJobExist(undefined)", false,
            "debug: Invalid type sent to  bool jobmanager_ui::JobManager::doesJobExist(QVariant)");
        row("technician", "manager.getTechID()", QStringLiteral("T-7"), "call getTechID()");
        row("templates", "manager.fetchJobTemplates().join('+')", QStringLiteral("a+b"), "call fetchJobTemplates()");
        row("label of a template", "manager.getWorkOrderLabelFromTemplate('a')", QStringLiteral("Ticket"),
            "call getWorkOrderLabelFromTemplate(\"a\")");
        row("tests of a template", "manager.getTemplateNumberOfTests('a')", 4, "call getTemplateNumberOfTests(\"a\")");
        row("launch", "manager.launchTest(manager.currentJob.tests.data(manager.currentJob.tests.index(1, 0), 262))",
            QVariant(),
            "emit testAboutToLaunch(<>)\nemit isTestLaunchingChanged()\ncall prepareForLaunchTest(\"A\", 1)\n"
            "emit launchTestSignal(\"A\", 1)");
        row("launch nothing", "manager.launchTest(null)", QVariant(), "debug: Can't launch a NULL test");
        row("sync", "manager.syncWithNimbrel()", QVariant(),
            "emit isSyncInProgressChanged()\nemit syncWithNimbrelSignal()");
    }

    void operationTakesWhatAScriptGives()
    {
        QFETCH(QString, script);
        m_front->api->setAnswer(QStringLiteral("getTechID"), QStringLiteral("T-7"));
        m_front->api->setAnswer(
            QStringLiteral("fetchJobTemplates"), QStringList{ QStringLiteral("a"), QStringLiteral("b") });
        m_front->api->setAnswer(QStringLiteral("getWorkOrderLabelFromTemplate"), QStringLiteral("Ticket"));
        m_front->api->setAnswer(QStringLiteral("getTemplateNumberOfTests"), 4);
        m_front->take();
        QTEST(evaluate(script), "result");
        QTEST(m_front->take(), "happened");
    }

    void handlersOfTheAnnouncementsGetTheirObjects()
    {
        evaluate(QStringLiteral("manager.testAboutToLaunch.connect(function(test) { test.errorMessage = 'told' })"));
        m_front->manager.launchTest(m_front->manager.getJob(QStringLiteral("A"))->getTest(0).get());
        QCOMPARE(m_front->manager.getJob(QStringLiteral("A"))->getTest(0)->errorMessage(), QStringLiteral("told"));
    }

    void pageOpensTheJobThatItsCallHasCreated()
    {
        m_front->api->keepJobListCached();
        m_front->api->setAnswer(QStringLiteral("createJob"), true);
        m_front->api->setAnswer(QStringLiteral("setCurrentJobByID"), true);
        QObject page;
        m_engine->rootContext()->setContextProperty(QStringLiteral("page"), &page);
        evaluate(QStringLiteral("manager.newJobCreated.connect(function(job) { page.objectName = job.jobNumber })"));
        QCOMPARE(evaluate(QStringLiteral("manager.createNewJob('7', 'T')")), QVariant(true));
        m_front->rebuild({ QStringLiteral("A"), QStringLiteral("7") });
        QCOMPARE(page.objectName(), QStringLiteral("7"));
    }

private:
    QVariant evaluate(const QString& script)
    {
        QQmlExpression expression(m_engine->rootContext(), nullptr, script);
        const QVariant result = expression.evaluate();
        if (expression.hasError()) {
            return expression.error().toString();
        }
        return result.userType() == qMetaTypeId<QJSValue>() ? result.value<QJSValue>().toVariant() : result;
    }

    std::unique_ptr<RecordedManager> m_front;
    std::unique_ptr<QQmlEngine> m_engine;
};

QTEST_GUILESS_MAIN(OperationsFromScriptTest)
#include "OperationsFromScriptTest.moc"
