// How the properties of a job and of its tests are shown: the two pairs of a list and a map.

#include "core/JobManagerWorker.h"
#include "models/Job.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/RecordingApi.h"
#include "tests/support/SignalRecorder.h"

#include <map>
#include <optional>
#include <QThread>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString id = QStringLiteral("J");
const QString jobNumber = QStringLiteral("jobNumber");
const QString configuration = QStringLiteral("configuration");
const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");
const QString c = QStringLiteral("c");

PropertyDisplayInfo info(const QString& name, int orderIndex = 0)
{
    PropertyDisplayInfo result;
    result.propName = name;
    result.orderIndex = orderIndex;
    return result;
}

/// Says in each label how often the property's display info was asked for, and for which test.
class CountingApi : public RecordingApi
{
public:
    using RecordingApi::RecordingApi;

    PropertyDisplayInfo getOptionalJobPropertyDisplayInfo(QString jobID, const QString& propName) override
    {
        PropertyDisplayInfo result = RecordingApi::getOptionalJobPropertyDisplayInfo(jobID, propName);
        result.label = QStringLiteral("asked %1 times").arg(++m_asked);
        if (m_mirror && ++m_askedFor[propName] % 2 == 0) {
            result.orderIndex = *m_mirror - result.orderIndex;
        }
        if (m_propName) {
            result.propName = *m_propName;
        }
        return result;
    }

    PropertyDisplayInfo getOptionalTestPropertyDisplayInfo(
        QString jobID, long long testID, const QString& propName) override
    {
        PropertyDisplayInfo result = RecordingApi::getOptionalTestPropertyDisplayInfo(jobID, testID, propName);
        result.label = QStringLiteral("of test %1").arg(testID);
        if (m_propName) {
            result.propName = *m_propName;
        }
        return result;
    }

    /// From now on every second answer for a property of a job has the order index `sum` less its own.
    void mirrorSecondOrderIndexes(int sum) { m_mirror = sum; }

    /// From now on every display info names this property, whichever was asked for.
    void answerWithPropName(const QString& propName) { m_propName = propName; }

private:
    int m_asked = 0;
    std::map<QString, int> m_askedFor;
    std::optional<int> m_mirror;
    std::optional<QString> m_propName;
};

} // namespace

/// Calls, the job's signals and messages go into one journal. The worker's thread does not run: a fetch ends when the
/// test says so.
class JobDisplayInfosTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_journal.take();
        m_messages = std::make_unique<MessageCollector>(m_journal);
        m_api = std::make_shared<CountingApi>(m_journal);
        m_worker = std::make_unique<JobManagerWorker>(m_api);
        m_worker->moveToThread(&m_thread);
    }

    void cleanup()
    {
        m_recorder.reset();
        m_job.reset();
        m_worker.reset();
        m_api.reset();
        m_messages.reset();
    }

    // The fixed rows of a job.

    void jobWithNothingHasItsNumberAlone()
    {
        makeJob();
        QCOMPARE(m_job->allDisplayableJobProperties(), QStringList{ jobNumber });
        QCOMPARE(m_job->jobPropertyDisplayInfos().keys(), QStringList{ jobNumber });
    }

    void fixedRowsStandInOrderAndCannotBeEdited()
    {
        m_api->setJob(id, { {}, QStringLiteral("Customer"), QStringLiteral("Type") });
        makeJob();
        const QStringList rows{ jobNumber, QStringLiteral("customerName"), QStringLiteral("typeName") };
        QCOMPARE(m_job->allDisplayableJobProperties(), rows);
        for (const QString& row : rows) {
            QCOMPARE(shown(row, "propName"), QVariant(row));
            QCOMPARE(shown(row, "editable"), QVariant(false));
            QCOMPARE(shown(row, "visible"), QVariant(true));
            QCOMPARE(shown(row, "type"), QVariant(int(PropertyType::STRING)));
            QCOMPARE(shown(row, "validValues"), QVariant(QStringList()));
            QCOMPARE(shown(row, "orderIndex"), QVariant(0));
            QCOMPARE(shown(row, "regex"), QVariant());
        }
        QCOMPARE(shown(QStringLiteral("customerName"), "label"), QVariant(QString()));
        QCOMPARE(shown(QStringLiteral("typeName"), "label"), QVariant(QString()));
    }

    void emptyCustomerOrTypeHasNoRow_data()
    {
        QTest::addColumn<QString>("customer");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QStringList>("rows");
        const QString text = QStringLiteral("text");
        QTest::newRow("no customer") << QString() << text << QStringList{ jobNumber, QStringLiteral("typeName") };
        QTest::newRow("no type") << text << QString() << QStringList{ jobNumber, QStringLiteral("customerName") };
    }

    void emptyCustomerOrTypeHasNoRow()
    {
        QFETCH(QString, customer);
        QFETCH(QString, type);
        m_api->setJob(id, { {}, customer, type });
        makeJob();
        QTEST(m_job->allDisplayableJobProperties(), "rows");
    }

    void numberIsLabelledAsTheWorkOrder_data()
    {
        QTest::addColumn<QString>("workOrderLabel");
        QTest::addColumn<QString>("label");
        QTest::newRow("none") << QString() << QStringLiteral("Work Order ID");
        QTest::newRow("own") << QStringLiteral("WO") << QStringLiteral("WO");
    }

    void numberIsLabelledAsTheWorkOrder()
    {
        QFETCH(QString, workOrderLabel);
        m_api->setJob(id, { workOrderLabel });
        makeJob();
        QTEST(shown(jobNumber, "label").toString(), "label");
    }

    void labelOfTheNumberIsTranslated()
    {
        class Translator : public QTranslator
        {
        public:
            bool isEmpty() const override { return false; }
            QString translate(const char* context, const char* text, const char* disambiguation, int n) const override
            {
                return qstrcmp(context, "jobmanager_ui::Job") == 0 && qstrcmp(text, "Work Order ID") == 0
                        && disambiguation == nullptr && n == -1
                    ? QStringLiteral("Auftragsnummer")
                    : QString();
            }
        } translator;
        QVERIFY(QCoreApplication::installTranslator(&translator));
        makeJob();
        QCOMPARE(shown(jobNumber, "label"), QVariant(QStringLiteral("Auftragsnummer")));
    }

    // The optional rows of a job.

    void optionalRowsStandInTheOrderOfTheirIndexBehindTheFixedOnes()
    {
        setJobProperties({ info(a, 2), info(b, 1), info(c, 1) });
        makeJob();
        QCOMPARE(m_job->allDisplayableJobProperties(), (QStringList{ jobNumber, b, c, a }));
    }

    void negativeIndexDoesNotPassTheFixedRows()
    {
        setJobProperties({ info(a), info(b, -5) });
        makeJob();
        QCOMPARE(m_job->allDisplayableJobProperties(), (QStringList{ jobNumber, b, a }));
    }

    void equalIndexesKeepTheOrderOfTheDataInterface()
    {
        std::vector<PropertyDisplayInfo> infos;
        QStringList names;
        for (int i = 0; i < 100; ++i) {
            names.append(QStringLiteral("p%1").arg((i * 37) % 100));
            infos.push_back(info(names.last()));
        }
        setJobProperties(infos);
        makeJob();
        QCOMPARE(m_job->allDisplayableJobProperties(), QStringList{ jobNumber } + names);
    }

    void invisiblePropertyIsInNeitherListNorMap()
    {
        PropertyDisplayInfo hidden = info(a);
        hidden.visible = false;
        setJobProperties({ hidden, info(b) });
        makeJob();
        QCOMPARE(m_job->allDisplayableJobProperties(), (QStringList{ jobNumber, b }));
        QCOMPARE(m_job->jobPropertyDisplayInfos().keys(), (QStringList{ b, jobNumber }));
    }

    void visiblePropertyIsAskedForTwiceAndAnInvisibleOneOnce()
    {
        PropertyDisplayInfo hidden = info(a);
        hidden.visible = false;
        setJobProperties({ hidden, info(b) });
        makeJob();
        m_journal.take();
        m_job->allDisplayableJobProperties();
        QCOMPARE(m_journal.take().filter(QStringLiteral("call ")),
            (QStringList{ QStringLiteral("call getAllOptionalJobProperties(\"J\")"),
                QStringLiteral("call getOptionalJobPropertyDisplayInfo(\"J\", \"a\")"),
                QStringLiteral("call getOptionalJobPropertyDisplayInfo(\"J\", \"b\")"),
                QStringLiteral("call getOptionalJobPropertyDisplayInfo(\"J\", \"b\")") }));
    }

    void secondAnswerIsTheOneThatIsShown()
    {
        setJobProperties({ info(a) });
        makeJob();
        QCOMPARE(shown(a, "label"), QVariant(QStringLiteral("asked 2 times")));
    }

    void orderIsThatOfTheSecondAnswers()
    {
        setJobProperties({ info(a, 1), info(b, 2), info(c, 3) });
        m_api->mirrorSecondOrderIndexes(10);
        makeJob();
        QCOMPARE(m_job->allDisplayableJobProperties(), (QStringList{ jobNumber, c, b, a }));
        QCOMPARE(shown(a, "orderIndex"), QVariant(9));
    }

    void rowOfAJobStandsUnderTheNameInItsDisplayInfo_data() { addOtherNames(); }

    void rowOfAJobStandsUnderTheNameInItsDisplayInfo()
    {
        QFETCH(QString, other);
        setJobProperties({ info(a) });
        m_api->answerWithPropName(other);
        makeJob();
        QCOMPARE(m_job->allDisplayableJobProperties(), (QStringList{ jobNumber, other }));
        QVERIFY(m_job->jobPropertyDisplayInfos().contains(other));
        QVERIFY(!m_job->jobPropertyDisplayInfos().contains(a));
        QCOMPARE(shown(other, "propName"), QVariant(other));
    }

    void nameThatComesTwiceStandsTwiceInTheListAndOnceInTheMapWithTheLaterRecord()
    {
        setJobProperties({ info(a), info(a) });
        makeJob();
        QCOMPARE(m_job->allDisplayableJobProperties(), (QStringList{ jobNumber, a, a }));
        QCOMPARE(m_job->jobPropertyDisplayInfos().size(), 2);
        QCOMPARE(shown(a, "label"), QVariant(QStringLiteral("asked 4 times")));
    }

    void propertyNamedLikeAFixedRowStandsTwiceAndTakesItsPlaceInTheMap()
    {
        setJobProperties({ info(jobNumber) });
        makeJob();
        QCOMPARE(m_job->allDisplayableJobProperties(), (QStringList{ jobNumber, jobNumber }));
        QCOMPARE(shown(jobNumber, "editable"), QVariant(true));
    }

    void recordIsShownAsItIs()
    {
        PropertyDisplayInfo number = info(a, 7);
        number.type = PropertyType::DOUBLE;
        number.editable = false;
        number.regex = QStringLiteral("[0-9]");
        number.validValues = QStringList{ QStringLiteral("1") };
        setJobProperties({ number });
        makeJob();
        QCOMPARE(shown(a, "propName"), QVariant(a));
        QCOMPARE(shown(a, "type"), QVariant(1));
        QCOMPARE(shown(a, "editable"), QVariant(false));
        QCOMPARE(shown(a, "orderIndex"), QVariant(7));
        QCOMPARE(shown(a, "validValues"), QVariant(QStringList{ QStringLiteral("1") }));
        QCOMPARE(shown(a, "regex"), QVariant(QRegExp(QStringLiteral("[0-9]"))));
    }

    void jobPairIsBuiltOnceAndLogged()
    {
        makeJob();
        m_journal.take();
        m_job->jobPropertyDisplayInfos();
        const QStringList built = m_journal.take();
        QCOMPARE(built.first(), QStringLiteral("debug: Fetching all property display infos for \"J\""));
        QVERIFY2(
            QRegularExpression(QStringLiteral("^debug: The createJobPropertyDisplayInfos operation took [0-9]+ ms$"))
                .match(built.last())
                .hasMatch(),
            qPrintable(built.last()));
        m_job->allDisplayableJobProperties();
        m_job->jobPropertyDisplayInfos();
        QCOMPARE(m_journal.take(), QStringList());
    }

    void updateHasTheJobPairBuiltAnew()
    {
        setJobProperties({ info(a) });
        makeJob();
        m_job->allDisplayableJobProperties();
        setJobProperties({ info(b) });
        QCOMPARE(m_job->allDisplayableJobProperties(), (QStringList{ jobNumber, a }));
        m_job->updateDataFromAPI();
        QCOMPARE(m_job->allDisplayableJobProperties(), (QStringList{ jobNumber, b }));
        QCOMPARE(m_job->jobPropertyDisplayInfos().keys(), (QStringList{ b, jobNumber }));
    }

    // The properties of the tests.

    void jobWithoutTestsHasTheConfigurationAlone()
    {
        makeJob();
        QCOMPARE(m_job->allDisplayableTestProperties(), QStringList{ configuration });
        const QVariantMap row = m_job->testPropertyDisplayInfos().value(configuration).toMap();
        QCOMPARE(row.value(QStringLiteral("propName")), QVariant(configuration));
        QCOMPARE(row.value(QStringLiteral("label")), QVariant(QString()));
        QCOMPARE(row.value(QStringLiteral("editable")), QVariant(false));
        QCOMPARE(row.value(QStringLiteral("visible")), QVariant(true));
    }

    void allTestsGiveTheirPropertiesAndTheFirstDescribesEach()
    {
        setTestProperties(5, { a, b });
        setTestProperties(3, { b, c });
        makeJob();
        m_journal.take();
        const QVariantMap infos = m_job->testPropertyDisplayInfos();
        QCOMPARE(infos.keys(), (QStringList{ a, b, c, configuration }));
        QCOMPARE(infos.value(b).toMap().value(QStringLiteral("label")), QVariant(QStringLiteral("of test 5")));
        QCOMPARE(m_journal.take().filter(QStringLiteral("call ")),
            (QStringList{ QStringLiteral("call getAllTestIDs(\"J\")"),
                QStringLiteral("call getAllOptionalTestProperties(\"J\", 5)"),
                QStringLiteral("call getOptionalTestPropertyDisplayInfo(\"J\", 5, \"a\")"),
                QStringLiteral("call getOptionalTestPropertyDisplayInfo(\"J\", 5, \"b\")"),
                QStringLiteral("call getAllOptionalTestProperties(\"J\", 3)"),
                QStringLiteral("call getOptionalTestPropertyDisplayInfo(\"J\", 3, \"c\")") }));
    }

    void listNamesWhatTheMapHolds()
    {
        setTestProperties(1, { a, b, c });
        makeJob();
        QStringList names = m_job->allDisplayableTestProperties();
        names.sort();
        QCOMPARE(names, m_job->testPropertyDisplayInfos().keys());
    }

    void rowOfATestStandsUnderTheNameThatWasAskedFor_data() { addOtherNames(); }

    void rowOfATestStandsUnderTheNameThatWasAskedFor()
    {
        QFETCH(QString, other);
        setTestProperties(1, { a });
        m_api->answerWithPropName(other);
        makeJob();
        QStringList names = m_job->allDisplayableTestProperties();
        names.sort();
        QCOMPARE(names, (QStringList{ a, configuration }));
        const QVariantMap infos = m_job->testPropertyDisplayInfos();
        QCOMPARE(infos.keys(), names);
        QCOMPARE(infos.value(a).toMap().value(QStringLiteral("propName")), QVariant(other));
    }

    void propertyNamedConfigurationDoesNotReplaceTheFixedRow()
    {
        setTestProperties(1, { configuration });
        makeJob();
        m_journal.take();
        const QVariantMap row = m_job->testPropertyDisplayInfos().value(configuration).toMap();
        QCOMPARE(row.value(QStringLiteral("label")), QVariant(QString()));
        QCOMPARE(row.value(QStringLiteral("editable")), QVariant(false));
        QVERIFY(m_journal.take().filter(QStringLiteral("getOptionalTestPropertyDisplayInfo")).isEmpty());
    }

    void invisiblePropertyOfATestStaysUnlikeThatOfAJob()
    {
        PropertyDisplayInfo hidden = info(a);
        hidden.visible = false;
        m_api->setDisplayInfo(hidden);
        setTestProperties(1, { a });
        makeJob();
        QVERIFY(m_job->allDisplayableTestProperties().contains(a));
        QCOMPARE(m_job->testPropertyDisplayInfos().value(a).toMap().value(QStringLiteral("visible")), QVariant(false));
    }

    void orderIndexOfATestsPropertyIsShownAndSortsNothing()
    {
        std::vector<QString> names;
        QHash<QString, PropertyDisplayInfo> hash{ { configuration, {} } };
        for (int i = 0; i < 50; ++i) {
            const QString name = QStringLiteral("p%1").arg(i);
            names.push_back(name);
            m_api->setDisplayInfo(info(name, -i));
            hash.insert(name, {});
        }
        setTestProperties(1, names);
        makeJob();
        QCOMPARE(m_job->testPropertyDisplayInfos().value(names[7]).toMap().value(QStringLiteral("orderIndex")),
            QVariant(-7));
        // A hash of the same names, filled in the same order, in the same process.
        QCOMPARE(m_job->allDisplayableTestProperties(), QStringList(hash.keys()));
    }

    void testPairIsBuiltOnceForTheLifeOfTheJobUnlikeThatOfTheJob()
    {
        setTestProperties(1, { a });
        makeJob();
        m_journal.take();
        m_job->allDisplayableTestProperties();
        const QStringList built = m_journal.take();
        QCOMPARE(built.first(), QStringLiteral("debug: Fetching all proprety display infos for tests for \"J\""));
        QVERIFY2(
            QRegularExpression(QStringLiteral("^debug: The createTestPropertyDisplayInfos operation took [0-9]+ ms$"))
                .match(built.last())
                .hasMatch(),
            qPrintable(built.last()));
        setTestProperties(1, { b });
        m_job->updateDataFromAPI();
        m_journal.take();
        QVERIFY(m_job->allDisplayableTestProperties().contains(a));
        QVERIFY(!m_job->testPropertyDisplayInfos().contains(b));
        QCOMPARE(m_journal.take(), QStringList());
    }

    // Both.

    void buildersEmitNothing()
    {
        setJobProperties({ info(a) });
        setTestProperties(1, { a });
        makeJob();
        m_journal.take();
        m_job->allDisplayableJobProperties();
        m_job->allDisplayableTestProperties();
        QCOMPARE(m_journal.take().filter(QStringLiteral("emit ")), QStringList());
    }

    void getterIsEmptyWhileTheJobIsFetched_data() { addGetters(); }

    void getterIsEmptyWhileTheJobIsFetched()
    {
        setJobProperties({ info(a) });
        makeJob();
        m_job->setWorker(m_worker.get());
        m_journal.take();
        QVERIFY(read().isValid());
        QVERIFY(read().toList().isEmpty() && read().toMap().isEmpty());
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("emit fetchInProgressChanged()"), QStringLiteral("emit fetchJob(\"J\")") }));
    }

    void firstReadAfterTheFetchBuilds_data() { addGetters(); }

    void firstReadAfterTheFetchBuilds()
    {
        makeJob();
        m_job->setWorker(m_worker.get());
        read();
        m_job->onFetchJobFinished(id);
        m_journal.take();
        QVERIFY(!read().toList().isEmpty() || !read().toMap().isEmpty());
        QCOMPARE(m_journal.take().filter(QStringLiteral("debug: Fetching")).size(), 1);
    }

private:
    static void addOtherNames()
    {
        QTest::addColumn<QString>("other");
        QTest::newRow("another name") << QStringLiteral("other");
        QTest::newRow("no name") << QString();
    }

    static void addGetters()
    {
        QTest::addColumn<bool>("unused");
        for (const char* getter : { "allDisplayableJobProperties", "jobPropertyDisplayInfos",
                 "allDisplayableTestProperties", "testPropertyDisplayInfos" }) {
            QTest::newRow(getter) << true;
        }
    }

    QVariant read() const { return m_job->property(QTest::currentDataTag()); }

    /// The interface gives the job these properties, in this order.
    void setJobProperties(const std::vector<PropertyDisplayInfo>& infos)
    {
        QStringList names;
        for (const PropertyDisplayInfo& property : infos) {
            m_api->setDisplayInfo(property);
            names.append(property.propName);
        }
        m_api->setAnswer(QStringLiteral("getAllOptionalJobProperties"), names);
    }

    /// The interface gives one more test, with these properties; for a test that is there, other ones.
    void setTestProperties(long long testID, const std::vector<QString>& names)
    {
        if (!testIDs().contains(testID)) {
            m_api->setAnswer(QStringLiteral("getAllTestIDs"), testIDs() << testID);
        }
        QStringList list;
        for (const QString& name : names) {
            list.append(name);
        }
        m_api->setAnswer(QStringLiteral("getAllOptionalTestProperties(\"J\", %1)").arg(testID), list);
    }

    /// The tests that the interface gives.
    QVariantList testIDs() const
    {
        QVariantList ids;
        for (const long long testID : m_api->getAllTestIDs(id)) {
            ids.append(testID);
        }
        return ids;
    }

    void makeJob()
    {
        m_job = std::make_unique<Job>(m_api, id);
        m_recorder = std::make_unique<SignalRecorder>(*m_job, m_journal);
    }

    QVariant shown(const QString& name, const char* key) const
    {
        return m_job->jobPropertyDisplayInfos().value(name).toMap().value(QLatin1String(key));
    }

    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<CountingApi> m_api;
    QThread m_thread;
    std::unique_ptr<JobManagerWorker> m_worker;
    std::unique_ptr<Job> m_job;
    std::unique_ptr<SignalRecorder> m_recorder;
};

QTEST_GUILESS_MAIN(JobDisplayInfosTest)
#include "JobDisplayInfosTest.moc"
