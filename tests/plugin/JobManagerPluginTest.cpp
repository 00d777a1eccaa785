#include "tests/support/ManagerValues.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/PrivateNetwork.h"

#include <QAbstractItemModel>
#include <QJsonObject>
#include <QPluginLoader>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlExtensionInterface>
#include <QTimer>
#include <QtTest>

using namespace jobmanager_test;

namespace {

/// An engine that finds the module in the build folder.
class Engine : public QQmlEngine
{
public:
    Engine() { addImportPath(QStringLiteral(JOBMANAGER_QML_DIR)); }
};

QString document(const QString& body)
{
    return QStringLiteral("import QtQml 2.15\nimport JobManagerUi 1.0\n") + body;
}

/// The root object of a document, null with its errors in `errors`.
std::unique_ptr<QObject> load(QQmlEngine& engine, const QString& text, QString* errors = nullptr)
{
    QQmlComponent component(&engine);
    component.setData(text.toUtf8(), QUrl());
    if (errors != nullptr) {
        *errors = component.errorString();
    }
    return std::unique_ptr<QObject>(component.isReady() ? component.create() : nullptr);
}

/// What a JavaScript expression gives in a document that imports the module.
QVariant evaluate(QQmlEngine& engine, const QString& expression)
{
    QString errors;
    const std::unique_ptr<QObject> root =
        load(engine, document(QStringLiteral("QtObject { property var value: %1 }").arg(expression)), &errors);
    return root == nullptr ? QVariant(errors) : root->property("value");
}

QObject* manager(QQmlEngine& engine)
{
    return evaluate(engine, QStringLiteral("JobManager")).value<QObject*>();
}

QStringList warnings(const QStringList& messages)
{
    QStringList result;
    for (const QString& message : messages) {
        if (!message.startsWith(QLatin1String("debug: "))) {
            result.append(message);
        }
    }
    return result;
}

} // namespace

/// The real module in a real engine. No service listens: all ports are this process's own.
class JobManagerPluginTest : public QObject
{
    Q_OBJECT

public:
    /// `refusal` tells why there is no network of our own, empty if there is one.
    explicit JobManagerPluginTest(const std::string& refusal) : m_refusal(refusal) { }

private Q_SLOTS:
    void initTestCase()
    {
        if (!m_refusal.empty()) {
            QSKIP(("No network of its own for this test: " + m_refusal).c_str());
        }
    }

    void init() { m_messages = std::make_unique<MessageCollector>(); }

    void cleanup()
    {
        const QStringList unexpected = warnings(m_messages->take());
        m_messages.reset();
        QCOMPARE(unexpected, QStringList());
    }

    void pluginTellsItsInterfaceAndClassAndNoUri()
    {
        const QJsonObject metaData = QPluginLoader(QStringLiteral(JOBMANAGER_PLUGIN_FILE)).metaData();
        QCOMPARE(metaData.value(QStringLiteral("IID")).toString(),
            QStringLiteral("org.qt-project.Qt.QQmlExtensionInterface/1.0"));
        QCOMPARE(metaData.value(QStringLiteral("className")).toString(), QStringLiteral("JobManagerPlugin"));
        QVERIFY(!metaData.contains(QStringLiteral("uri")));
    }

    void moduleLoadsAndItsManagerTalksToTheDefaultPort()
    {
        Engine engine;
        QCOMPARE(evaluate(engine, QStringLiteral("JobManager.restApiPort")), QVariant(8082));
    }

    void propertiesAreReadableFromQml_data()
    {
        addValuesOfAnUnusedManager();
        QTest::newRow("currentJob") << QVariant::fromValue<QObject*>(nullptr);
        QTest::newRow("fetchingJobList") << QVariant(true);
    }

    void propertiesAreReadableFromQml()
    {
        QFETCH(QVariant, value);
        Engine engine;
        const QVariant read =
            evaluate(engine, QStringLiteral("JobManager.%1").arg(QLatin1String(QTest::currentDataTag())));
        if (value.userType() == QMetaType::QObjectStar) {
            QCOMPARE(read.value<QObject*>(), nullptr);
        } else {
            QCOMPARE(read, value);
        }
    }

    void viewsAreModelsForQml_data()
    {
        QTest::addColumn<QString>("view");
        QTest::newRow("required") << QStringLiteral("JobManager.requiredJobs");
        QTest::newRow("archived") << QStringLiteral("JobManager.archivedJobs");
        QTest::newRow("all") << QStringLiteral("JobManager");
    }

    void viewsAreModelsForQml()
    {
        QFETCH(QString, view);
        Engine engine;
        const auto* const model = qobject_cast<QAbstractItemModel*>(evaluate(engine, view).value<QObject*>());
        QVERIFY(model != nullptr);
        QCOMPARE(model->roleNames().value(258), QByteArray("job"));
        QCOMPARE(evaluate(engine, view + QStringLiteral(".rowCount()")), QVariant(0));
    }

    void writablePropertiesAreWritableFromQml()
    {
        Engine engine;
        QCOMPARE(evaluate(engine,
                     QStringLiteral("{ JobManager.groupType = TestGroupType.GROUPBY_LOCATION; "
                                    "JobManager.pauseAutomaticUpdates = true; JobManager.restApiPort = 9; "
                                    "value = [JobManager.groupType, JobManager.pauseAutomaticUpdates, "
                                    "JobManager.restApiPort] }"))
                     .toList(),
            (QVariantList{ 2, true, 9 }));
    }

    void enumNamesAreUsable_data()
    {
        QTest::addColumn<int>("value");
        QTest::newRow("PropertyType.STRING") << 0;
        QTest::newRow("PropertyType.DOUBLE") << 1;
        QTest::newRow("TestRequirement.TEST_UNDEFINED") << 0;
        QTest::newRow("TestRequirement.TEST_REQUIRED") << 1;
        QTest::newRow("TestRequirement.TEST_OPTIONAL") << 2;
        QTest::newRow("TestRequirement.TEST_ADDED") << 3;
        QTest::newRow("TestGroupType.NONE") << 0;
        QTest::newRow("TestGroupType.DEFAULT_VIEW") << 1;
        QTest::newRow("TestGroupType.GROUPBY_LOCATION") << 2;
        QTest::newRow("TestGroupType.GROUPBY_TEST_NAME") << 3;
        QTest::newRow("TestList.TESTFILTER_ALL") << 0;
        QTest::newRow("TestList.TESTFILTER_COMPLETED") << 1;
        QTest::newRow("TestList.TESTFILTER_INCOMPLETE") << 2;
        QTest::newRow("TestList.JobID") << 257;
        QTest::newRow("TestList.Test") << 262;
    }

    void enumNamesAreUsable()
    {
        QFETCH(int, value);
        Engine engine;
        QCOMPARE(evaluate(engine, QString::fromLatin1(QTest::currentDataTag())), QVariant(value));
    }

    void typesCannotBeCreated_data()
    {
        QTest::addColumn<QString>("type");
        QTest::newRow("Job") << QStringLiteral("Job");
        QTest::newRow("Test") << QStringLiteral("Test");
        QTest::newRow("TestList") << QStringLiteral("TestList");
        QTest::newRow("PropertyType") << QStringLiteral("PropertyType");
        QTest::newRow("TestRequirement") << QStringLiteral("TestRequirement");
        QTest::newRow("TestGroupType") << QStringLiteral("TestGroupType");
        QTest::newRow("JobManager") << QStringLiteral("JobManager");
    }

    void typesCannotBeCreated()
    {
        QFETCH(QString, type);
        Engine engine;
        QString errors;
        QCOMPARE(load(engine, document(type + QStringLiteral(" {}")), &errors), nullptr);
        // The engine's own words: the registration gives no reason.
        QCOMPARE(errors, QStringLiteral(":3 Element is not creatable.\n"));
    }

    void typesCanBeNamed_data()
    {
        QTest::addColumn<QString>("type");
        QTest::newRow("Job") << QStringLiteral("Job");
        QTest::newRow("Test") << QStringLiteral("Test");
        QTest::newRow("TestList") << QStringLiteral("TestList");
        QTest::newRow("PartialModel") << QStringLiteral("PartialModel");
    }

    void typesCanBeNamed()
    {
        QFETCH(QString, type);
        Engine engine;
        QString errors;
        const std::unique_ptr<QObject> root =
            load(engine, document(QStringLiteral("QtObject { property %1 object }").arg(type)), &errors);
        QVERIFY2(root != nullptr, qPrintable(errors));
        QCOMPARE(root->property("object").value<QObject*>(), nullptr);
    }

    void partialModelIsCreatedInQml()
    {
        Engine engine;
        QString errors;
        const std::unique_ptr<QObject> root = load(engine,
            QStringLiteral("import QtQml.Models 2.15\n")
                + document(
                    QStringLiteral("PartialModel { property ListModel letters: ListModel { ListElement { letter: 'A' } "
                                   "ListElement { letter: 'B' } ListElement { letter: 'C' } } "
                                   "model: letters; startIndex: 1; testsCount: 2 }")),
            &errors);
        QVERIFY2(root != nullptr, qPrintable(errors));
        const auto* const slice = qobject_cast<QAbstractItemModel*>(root.get());
        QVERIFY(slice != nullptr);
        QCOMPARE(slice->rowCount(), 2);
        QCOMPARE(slice->index(0, 0).data(slice->roleNames().key("letter")), QVariant(QStringLiteral("B")));
    }

    void typesAreRegisteredInOrderUnderAnyUri()
    {
        QPluginLoader loader(QStringLiteral(JOBMANAGER_PLUGIN_FILE));
        auto* const plugin = qobject_cast<QQmlTypesExtensionInterface*>(loader.instance());
        QVERIFY2(plugin != nullptr, qPrintable(loader.errorString()));
        plugin->registerTypes("Any.Other_Name");
        int previous = -1;
        for (const char* name : { "Job", "Test", "TestList", "PropertyType", "TestRequirement", "TestGroupType",
                 "PartialModel", "JobManager" }) {
            const int id = qmlTypeId("Any.Other_Name", 1, 0, name);
            QVERIFY2(id > previous, name);
            previous = id;
        }
    }

    void otherVersionsAreNotThere_data()
    {
        QTest::addColumn<QString>("version");
        QTest::newRow("0.9") << QStringLiteral("0.9");
        QTest::newRow("1.1") << QStringLiteral("1.1");
        QTest::newRow("2.0") << QStringLiteral("2.0");
    }

    void otherVersionsAreNotThere()
    {
        QFETCH(QString, version);
        Engine engine;
        QString errors;
        const QString text = QStringLiteral("import QtQml 2.15\nimport JobManagerUi %1\nQtObject {}").arg(version);
        QCOMPARE(load(engine, text, &errors), nullptr);
        QVERIFY2(errors.contains(QStringLiteral("version ") + version), qPrintable(errors));
    }

    void operationsAreCallableFromQml()
    {
        Engine engine;
        QCOMPARE(evaluate(engine,
                     QStringLiteral("{ JobManager.updateDataFromAPI(); JobManager.updateDataFromAPI(false); "
                                    "JobManager.updateSettingsFromDb(); JobManager.writeSetting('a', 'b'); "
                                    "value = JobManager.fetchingJobList }")),
            QVariant(true));
    }

    void signalsReachQml()
    {
        Engine engine;
        const std::unique_ptr<QObject> root = load(engine,
            document(QStringLiteral("Connections { property int count: 0; property var job: 1; target: JobManager; "
                                    "function onPauseAutomaticUpdatesChanged() { ++count } "
                                    "function onNewJobCreated(job_) { job = job_ } }")));
        QVERIFY(root != nullptr);
        manager(engine)->setProperty("pauseAutomaticUpdates", true);
        QCOMPARE(root->property("count"), QVariant(1));
        const QMetaObject* const meta = manager(engine)->metaObject();
        void* const nothing = nullptr;
        void* arguments[] = { nullptr, const_cast<void**>(&nothing) };
        QMetaObject::activate(manager(engine), meta->indexOfSignal("newJobCreated(Job*)"), arguments);
        QCOMPARE(root->property("job").value<QObject*>(), nullptr);
        QVERIFY(root->property("job") != QVariant(1));
    }

    void managerIsInitializedAndAnnouncedOnFirstUse()
    {
        Engine engine;
        QVERIFY(load(engine, document(QStringLiteral("QtObject {}"))) != nullptr);
        QCOMPARE(m_messages->take(), QStringList());
        QObject* const singleton = manager(engine);
        QVERIFY(singleton != nullptr);
        QCOMPARE(singleton->findChildren<QTimer*>().size(), 1);
        QStringList messages = m_messages->take();
        QVERIFY(messages.first().startsWith(QLatin1String("debug: Using JobManagerRestAPI{ host =")));
        QVERIFY(messages.removeOne(QStringLiteral("debug: jobmanager-ui: The singleton JobManager is in use")));
        QCOMPARE(manager(engine), singleton);
        QCOMPARE(m_messages->take().filter(QStringLiteral("in use")), QStringList());
    }

    void firstUpdateEndsWithoutAService()
    {
        Engine engine;
        QObject* const singleton = manager(engine);
        QTRY_COMPARE(singleton->property("fetchingJobList"), QVariant(false));
        QCOMPARE(qobject_cast<QAbstractItemModel*>(singleton)->rowCount(), 0);
    }

    void engineTakesItsManagerWithIt()
    {
        auto engine = std::make_unique<Engine>();
        const QPointer<QObject> singleton = manager(*engine);
        QVERIFY(!singleton.isNull());
        QTRY_COMPARE(singleton->property("fetchingJobList"), QVariant(false));
        m_messages->take();
        engine.reset();
        QVERIFY(singleton.isNull());
        QCOMPARE(m_messages->take(), QStringList());
    }

    void enginesOneAfterTheOtherHaveTheirOwnManagers()
    {
        for (int round = 0; round < 3; ++round) {
            Engine engine;
            const QObject* const singleton = manager(engine);
            QVERIFY(singleton != nullptr);
            QCOMPARE(singleton->findChildren<QTimer*>().size(), 1);
        }
        QCOMPARE(m_messages->take().filter(QStringLiteral("in use")).size(), 3);
    }

    void enginesAtOnceHaveTheirOwnManagers()
    {
        Engine first;
        auto second = std::make_unique<Engine>();
        QObject* const firstManager = manager(first);
        QObject* const secondManager = manager(*second);
        QVERIFY(firstManager != nullptr);
        QVERIFY(secondManager != nullptr);
        QVERIFY(firstManager != secondManager);
        secondManager->setProperty("pauseAutomaticUpdates", true);
        QCOMPARE(evaluate(first, QStringLiteral("JobManager.pauseAutomaticUpdates")), QVariant(false));
        second.reset();
        QTRY_COMPARE(firstManager->property("fetchingJobList"), QVariant(false));
        QCOMPARE(evaluate(first, QStringLiteral("JobManager.restApiPort")), QVariant(8082));
    }

private:
    const std::string m_refusal;
    std::unique_ptr<MessageCollector> m_messages;
};

int main(int argc, char** argv)
{
    const std::string refusal = enterPrivateNetwork();
    QCoreApplication application(argc, argv);
    JobManagerPluginTest test(refusal);
    return QTest::qExec(&test, argc, argv);
}

#include "JobManagerPluginTest.moc"
