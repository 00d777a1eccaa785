#include "api/PropertyType.h"
#include "api/TestGroupType.h"
#include "api/TestRequirement.h"
#include "core/JobManager.h"
#include "models/Job.h"
#include "models/PartialModel.h"
#include "models/Test.h"
#include "models/TestList.h"
#include "tests/plugin/QmlTypesBlock.h"

#include <QFile>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

/// The words of an entry that name it: the line without types, arguments and what is written behind.
QString nameIn(const QString& line)
{
    const QStringList words = line.split(QLatin1Char(' '));
    const int place = line.startsWith(QLatin1String("enum ")) ? 1 : 2;
    return words.value(place).section(QLatin1Char('('), 0, 0);
}

QString namesOf(const QString& kind, const QStringList& lines)
{
    QStringList names;
    for (const QString& line : lines) {
        if (line.startsWith(kind + QLatin1Char(' '))) {
            names.append(nameIn(line));
        }
    }
    return names.join(QLatin1Char(' '));
}

} // namespace

Q_DECLARE_METATYPE(const QMetaObject*)

/// The type information that the build makes of the module, against the classes themselves and against the names that
/// front ends rely on.
class TypeInformationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QFile file(QStringLiteral(JOBMANAGER_QML_DIR "/JobManagerUi/plugins.qmltypes"));
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
        m_module = readQmlTypes(QString::fromUtf8(file.readAll()));
        QCOMPARE(m_module.kind, QStringLiteral("Module"));
    }

    void moduleNamesTheFile()
    {
        QFile file(QStringLiteral(JOBMANAGER_QML_DIR "/JobManagerUi/qmldir"));
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
        const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        QVERIFY(lines.contains(QStringLiteral("typeinfo plugins.qmltypes")));
    }

    void exportedTypesAreTheModulesOwn()
    {
        QStringList exported;
        const auto components = m_module.all(QStringLiteral("Component"));
        for (const QmlTypesBlock& component : components) {
            exported += component.values.value(QStringLiteral("exports"));
        }
        exported.sort();
        const QStringList names{ QStringLiteral("Job"), QStringLiteral("JobManager"), QStringLiteral("PartialModel"),
            QStringLiteral("PropertyType"), QStringLiteral("Test"), QStringLiteral("TestGroupType"),
            QStringLiteral("TestList"), QStringLiteral("TestRequirement") };
        QStringList expected;
        for (const QString& name : names) {
            expected.append(QStringLiteral("JobManagerUi/%1 1.0").arg(name));
        }
        QCOMPARE(exported, expected);
    }

    void typeIsOfItsKind_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("isCreatable");
        QTest::addColumn<QString>("isSingleton");
        const QString no = QStringLiteral("false");
        const QString yes = QStringLiteral("true");
        QTest::newRow("Job") << QStringLiteral("QObject") << no << QString();
        QTest::newRow("Test") << QStringLiteral("QObject") << no << QString();
        QTest::newRow("TestList") << QStringLiteral("QAbstractListModel") << no << QString();
        QTest::newRow("PropertyType") << QStringLiteral("QObject") << no << QString();
        QTest::newRow("TestRequirement") << QStringLiteral("QObject") << no << QString();
        QTest::newRow("TestGroupType") << QStringLiteral("QObject") << no << QString();
        // What is not said is so: creatable, no singleton.
        QTest::newRow("PartialModel") << QStringLiteral("QSortFilterProxyModel") << QString() << QString();
        QTest::newRow("JobManager") << QStringLiteral("QAbstractListModel") << no << yes;
    }

    void typeIsOfItsKind()
    {
        QFETCH(QString, base);
        QFETCH(QString, isCreatable);
        QFETCH(QString, isSingleton);
        const QmlTypesBlock component = componentOf(QTest::currentDataTag());
        QCOMPARE(component.value(QStringLiteral("prototype")), base);
        QCOMPARE(component.value(QStringLiteral("isCreatable")), isCreatable);
        QCOMPARE(component.value(QStringLiteral("isSingleton")), isSingleton);
        QVERIFY(!componentNamed(base).kind.isEmpty() || base == QLatin1String("QObject"));
    }

    void allThatTheClassPublishesIsThere_data() { addClasses(); }

    void allThatTheClassPublishesIsThere()
    {
        QFETCH(const QMetaObject*, meta);
        const QStringList described = published(componentOf(QTest::currentDataTag()));
        const QStringList declared = published(*meta);
        QVERIFY(!declared.isEmpty());
        QCOMPARE(described.join(QLatin1Char('\n')), declared.join(QLatin1Char('\n')));
    }

    /// Tools take it that a property has a signal named after it; one with another name must be written out.
    void notifySignalIsNamedAfterItsPropertyOrIsThere_data() { addClasses(); }

    void notifySignalIsNamedAfterItsPropertyOrIsThere()
    {
        QFETCH(const QMetaObject*, meta);
        const QString described = namesOf(QStringLiteral("signal"), published(componentOf(QTest::currentDataTag())));
        for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
            const QMetaProperty property = meta->property(i);
            const QString notify = QString::fromLatin1(property.notifySignal().name());
            QVERIFY2(property.isConstant() || notify == QString::fromLatin1(property.name()) + QStringLiteral("Changed")
                    || described.split(QLatin1Char(' ')).contains(notify),
                property.name());
        }
    }

    void namesStandInOrder_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("names");
        const auto row = [](const char* type, const char* kind, const char* names) {
            QTest::addRow("%s: %s", type, kind)
                << QString::fromLatin1(type) << QString::fromLatin1(kind) << QString::fromLatin1(names);
        };
        row("Job", "property",
            "jobNumber workOrderLabel customerName typeName isArchived totalNumberOfRequiredTests "
            "numberOfCompletedRequiredTests tests optionalProperties managedBy state totalNumberOfRequiredAttributes "
            "numberOfIncompleteRequiredAttributes fetchInProgress teamTechIds allDisplayableJobProperties "
            "jobPropertyDisplayInfos allDisplayableTestProperties testPropertyDisplayInfos");
        row("Job", "signal", "isArchivedChanged newTestResultsReceived optionalPropertyValueChanged fetchJob");
        row("Job", "method",
            "updateDataFromAPI getTestNamebyTestIndex getTestDescriptionByTestIndex getTestSiteByTestIndex "
            "getTestTypeByTestIndex testLocationsNumberByIndex countTestsByDisplayName "
            "testLocationsNumberByDisplayName resetTestFilter resetTestLocationSearch");
        row("Job", "enum", "");
        row("Test", "property",
            "testIndex locationIndex testType testTypeDisplayName description site testStatus testTime testRequired "
            "configuration optionalProperties errorMessage errorSeverity guideFilepath hasGuide location "
            "numberOfTestLocations "
            "manualStepUserResponse testConfigurationMap");
        row("Test", "signal", "");
        row("Test", "method", "setErrorMessage setErrorSeverity");
        row("Test", "enum", "");
        row("TestList", "property", "testsCount sectionsCount sections searchRegExpStr testFilter");
        row("TestList", "signal", "newTestResultsReceived");
        row("TestList", "method", "findLatestRanTestIndex");
        row("TestList", "enum", "TestFilter TestRoles");
        row("PartialModel", "property", "model startIndex testsCount");
        row("PartialModel", "signal", "");
        row("PartialModel", "method", "");
        row("PartialModel", "enum", "");
        row("JobManager", "property",
            "currentJob requiredJobs archivedJobs isTestLaunching isSyncInProgress isQueryChangeCountInProgress "
            "groupType useInternalKeyboard fetchingJobList settingCurrentJob exportingJobData "
            "exportJobDataOutputPath importingJobs importJobsNumberJobs exchangingJob jobExchangeStatus "
            "pauseAutomaticUpdates restApiPort");
        row("JobManager", "signal",
            "isQueryCountChangeInProgressChanged launchTestSignal syncWithNimbrelSignal fetchJobList "
            "setCurrentJobOnBackgroundThread exportJobDataOnBackgroundThread importJobsOnBackgroundThread "
            "exchangeJobOnBackgroundThread jobManagerUpdated testAboutToLaunch newJobCreated");
        row("JobManager", "method",
            "onTestLaunchFinished onSyncFinished onFetchJobListFinished onSetCurrentJobFinished "
            "onExportJobDataFinished onImportJobsFinished onExchangeJobFinished initialize updateDataFromAPI "
            "updateDataFromAPI getTechID setCurrentJob unsetCurrentJob launchTest exportJobData showExportJobSelection "
            "importJobs showImportJobButton showExchangeJobSelection exchangeCurrentJob syncWithNimbrel deleteJob "
            "createNewJob createNewJob createNewJob createNewJob fetchJobTemplates getWorkOrderLabelFromTemplate "
            "getTemplateNumberOfTests doesJobExist writeSetting updateSettingsFromDb setLanguage");
        row("JobManager", "enum", "");
    }

    void namesStandInOrder()
    {
        QFETCH(QString, type);
        QFETCH(QString, kind);
        QFETCH(QString, names);
        QCOMPARE(namesOf(kind, published(componentOf(type))), names);
    }

    void enumsHaveTheirValues_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("PropertyType") << QStringLiteral("enum Enum STRING 0 DOUBLE 1");
        QTest::newRow("TestRequirement") << QStringLiteral(
            "enum Enum TEST_UNDEFINED 0 TEST_REQUIRED 1 TEST_OPTIONAL 2 TEST_ADDED 3");
        QTest::newRow("TestGroupType") << QStringLiteral(
            "enum Enum NONE 0 DEFAULT_VIEW 1 GROUPBY_LOCATION 2 GROUPBY_TEST_NAME 3");
        QTest::newRow("TestList") << QStringLiteral(
            "enum TestFilter TESTFILTER_ALL 0 TESTFILTER_COMPLETED 1 TESTFILTER_INCOMPLETE 2");
    }

    void enumsHaveTheirValues()
    {
        QFETCH(QString, line);
        QVERIFY2(published(componentOf(QTest::currentDataTag())).contains(line), qPrintable(line));
    }

private:
    static void addClasses()
    {
        QTest::addColumn<const QMetaObject*>("meta");
        QTest::newRow("Job") << &Job::staticMetaObject;
        QTest::newRow("Test") << &Test::staticMetaObject;
        QTest::newRow("TestList") << &TestList::staticMetaObject;
        QTest::newRow("PropertyType") << &PropertyType::staticMetaObject;
        QTest::newRow("TestRequirement") << &TestRequirement::staticMetaObject;
        QTest::newRow("TestGroupType") << &TestGroupType::staticMetaObject;
        QTest::newRow("PartialModel") << &PartialModel::staticMetaObject;
        QTest::newRow("JobManager") << &JobManager::staticMetaObject;
    }

    QmlTypesBlock componentNamed(const QString& name) const
    {
        const auto components = m_module.all(QStringLiteral("Component"));
        for (const QmlTypesBlock& component : components) {
            if (component.value(QStringLiteral("name")) == name) {
                return component;
            }
        }
        return {};
    }

    /// The component of our class.
    QmlTypesBlock componentOf(const QString& type) const
    {
        return componentNamed(QStringLiteral("jobmanager_ui::") + type);
    }
    QmlTypesBlock componentOf(const char* type) const { return componentOf(QString::fromLatin1(type)); }

    QmlTypesBlock m_module;
};

QTEST_GUILESS_MAIN(TypeInformationTest)
#include "TypeInformationTest.moc"
