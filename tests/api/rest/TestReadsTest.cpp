// The reads of tests of the REST implementation: which tests a job has, and what they are.

#include "tests/api/rest/OnStandIn.h"
#include "tests/api/rest/Records.h"
#include "tests/api/rest/StandInClient.h"
#include "tests/api/rest/WithTest.h"
#include "tests/support/MessageCollector.h"

#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

using TestTextGetter = QString (JobManagerRestAPI::*)(QString, long long);
Q_DECLARE_METATYPE(TestTextGetter)

class TestReadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void idIsTakenApartWithoutAnyLookup();

    void textOfATest_data();
    void textOfATest();
    void missingTextOfAKnownTestIsEmptyAndNotNull_data();
    void missingTextOfAKnownTestIsEmptyAndNotNull();
    void textOfAnUnknownTestIsNull_data();
    void textOfAnUnknownTestIsNull();
    void displayNameFallsBackOnTheType_data();
    void displayNameFallsBackOnTheType();
    void testWithoutIndexStringIsUnknown();
    void numberOfLocations();

    void configurationIsSplitIntoLines_data();
    void configurationIsSplitIntoLines();
    void configurationOfALocationIsItsOwnAlone_data();
    void configurationOfALocationIsItsOwnAlone();
    void configurationOfAnUnknownTestIsEmpty();

    void testIDsComeInRecordOrderFromOneFetch();
    void unknownJobHasNoTests();
    void requiredAndOptionalTestsPartTheTests();
    void requiredAndOptionalTestsUseTheVirtualReads();
    void readsAnswerFromTheCache();
};

void TestReadsTest::init()
{
    StandInClient::reset();
}

void TestReadsTest::idIsTakenApartWithoutAnyLookup()
{
    OnStandIn api;
    QCOMPARE(api->getTestIndex(0x00000002FFFFFFFFLL), 2);
    QCOMPARE(api->getTestLocationIndex(0x00000002FFFFFFFFLL), -1);
    QCOMPARE(api->getTestIndex(0x0000000200000001LL), 2);
    QCOMPARE(api->getTestLocationIndex(0x0000000200000001LL), 1);
    QCOMPARE(api->getTestIndex(-1), -1);
    QCOMPARE(api->getTestLocationIndex(-1), -1);
    QCOMPARE(api->getTestIndex(0x7FFFFFFF00000000LL), 0x7FFFFFFF);
    QCOMPARE(api->getTestLocationIndex(0x7FFFFFFF00000000LL), 0);
    QVERIFY(StandInClient::calls().empty());
}

namespace {

void addTestTextGetters()
{
    QTest::addColumn<TestTextGetter>("getter");
    QTest::addColumn<QString>("text");
    QTest::newRow("type") << &JobManagerRestAPI::getTestType << QStringLiteral("type");
    QTest::newRow("display name") << &JobManagerRestAPI::getTestTypeDisplayName << QStringLiteral("Größe");
    QTest::newRow("description") << &JobManagerRestAPI::getTestDescription << QStringLiteral("description 光");
    QTest::newRow("site") << &JobManagerRestAPI::getTestSite << QStringLiteral("site");
    QTest::newRow("guide file") << &JobManagerRestAPI::getTestGuideFile << QStringLiteral("/guides/größe.pdf");
}

} // namespace

void TestReadsTest::textOfATest_data()
{
    addTestTextGetters();
}

void TestReadsTest::textOfATest()
{
    QFETCH(TestTextGetter, getter);
    cdm::Test test = testOf("3");
    test.testType = "type";
    test.testTypeDisplayName = "Größe";
    test.description = "description 光";
    test.site = "site";
    test.guideFile = "/guides/größe.pdf";
    WithTest api(test);
    QTEST(((*api).*getter)(job, idOf(3)), "text");
    QTEST(((*api).*getter)(job, idOf(3, 7)), "text");
}

void TestReadsTest::missingTextOfAKnownTestIsEmptyAndNotNull_data()
{
    addTestTextGetters();
}

void TestReadsTest::missingTextOfAKnownTestIsEmptyAndNotNull()
{
    QFETCH(TestTextGetter, getter);
    WithTest api(testOf("3"));
    const QString text = ((*api).*getter)(job, idOf(3));
    QVERIFY(text.isEmpty());
    QVERIFY(!text.isNull());
}

void TestReadsTest::textOfAnUnknownTestIsNull_data()
{
    addTestTextGetters();
    QTest::newRow("status") << &JobManagerRestAPI::getTestStatus << QString();
    QTest::newRow("response") << &JobManagerRestAPI::getTestResponse << QString();
}

void TestReadsTest::textOfAnUnknownTestIsNull()
{
    QFETCH(TestTextGetter, getter);
    cdm::Test test = testWithResults(resultsOf("pass", {}, "yes"));
    test.testType = "type";
    WithTest api(test);
    const MessageCollector recorder;
    QVERIFY(((*api).*getter)(job, idOf(99)).isNull());
    QCOMPARE(recorder.messages(), QStringList());
    QVERIFY(((*api).*getter)(QStringLiteral("no job"), idOf(0)).isNull());
}

void TestReadsTest::displayNameFallsBackOnTheType_data()
{
    QTest::addColumn<bool>("has");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("shown");
    QTest::newRow("named") << true << QByteArray("Name") << QStringLiteral("Name");
    QTest::newRow("empty name") << true << QByteArray() << QStringLiteral("type");
    QTest::newRow("no name") << false << QByteArray() << QStringLiteral("type");
}

void TestReadsTest::displayNameFallsBackOnTheType()
{
    QFETCH(bool, has);
    QFETCH(QByteArray, name);
    cdm::Test test = testOf("0");
    test.testType = "type";
    if (has)
        test.testTypeDisplayName = name.toStdString();
    WithTest api(test);
    QTEST(api->getTestTypeDisplayName(job, idOf(0)), "shown");
}

void TestReadsTest::testWithoutIndexStringIsUnknown()
{
    cdm::Test test = testWithResults(resultsOf("pass"));
    test.uiIndex.reset();
    test.testType = "type";
    test.required = false;
    WithTest api(test);
    QCOMPARE(api->getAllTestIDs(job), std::vector<long long>{ idOf(0) });
    QVERIFY(api->getTestType(job, idOf(0)).isNull());
    QVERIFY(api->getTestStatus(job, idOf(0)).isNull());
    QCOMPARE(api->getTestRequired(job, idOf(0)), TestRequirement::TEST_REQUIRED);
}

void TestReadsTest::numberOfLocations()
{
    WithTest without(testOf("0"));
    QCOMPARE(without->getTestLocationsNumber(job, idOf(0)), 0);
    QCOMPARE(without->getTestLocationsNumber(job, idOf(1)), 0);
    WithTest with(testWithResults({}, { {}, {}, {} }));
    QCOMPARE(with->getTestLocationsNumber(job, idOf(0)), 3);
    QCOMPARE(with->getTestLocationsNumber(job, idOf(0, 1)), 3);
    QCOMPARE(with->getTestLocationsNumber(job, idOf(1)), 0);
    QCOMPARE(with->getNumberOfTestLocations(testOf("0")), 0);
    QCOMPARE(with->getNumberOfTestLocations(testWithResults({}, { {}, {} })), 2);
}

void TestReadsTest::configurationIsSplitIntoLines_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("lines");
    const auto list = [](std::initializer_list<const char*> lines) {
        QStringList texts;
        for (const char* line : lines)
            texts.append(QString::fromUtf8(line));
        return texts;
    };
    QTest::newRow("empty") << QByteArray("") << QStringList();
    QTest::newRow("one line") << QByteArray("a b") << list({ "a b" });
    QTest::newRow("two lines") << QByteArray("größe=1\n光=2") << list({ "größe=1", "光=2" });
    QTest::newRow("empty parts are dropped") << QByteArray("\na\n\n\nb\n") << list({ "a", "b" });
    QTest::newRow("newlines alone") << QByteArray("\n\n") << QStringList();
    QTest::newRow("other white space stays") << QByteArray(" a\r\n \n") << list({ " a\r", " " });
    QTest::newRow("up to the first NUL") << QByteArray("a\nb\0c\nd", 7) << list({ "a", "b" });
}

void TestReadsTest::configurationIsSplitIntoLines()
{
    QFETCH(QByteArray, text);
    QFETCH(QStringList, lines);
    cdm::Test test = testWithResults({}, { {} });
    test.configuration = text.toStdString();
    WithTest ofTest(test);
    QCOMPARE(ofTest->getTestConfiguration(job, idOf(0)), lines);
    test.configuration = "of the test";
    test.testLocations->front().configuration = text.toStdString();
    WithTest ofLocation(test);
    QCOMPARE(ofLocation->getTestConfiguration(job, idOf(0, 0)), lines);
}

void TestReadsTest::configurationOfALocationIsItsOwnAlone_data()
{
    QTest::addColumn<qlonglong>("id");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("location with its own") << idOf(0, 0) << QStringList{ QStringLiteral("of the location") };
    QTest::newRow("location without") << idOf(0, 1) << QStringList();
    QTest::newRow("the test") << idOf(0) << QStringList{ QStringLiteral("of the test") };
    QTest::newRow("a location that does not exist: the test")
        << idOf(0, 2) << QStringList{ QStringLiteral("of the test") };
}

void TestReadsTest::configurationOfALocationIsItsOwnAlone()
{
    QFETCH(qlonglong, id);
    cdm::Test test = testWithResults({}, { {}, {} });
    test.configuration = "of the test";
    test.testLocations->front().configuration = "of the location";
    WithTest api(test);
    QTEST(api->getTestConfiguration(job, id), "lines");
}

void TestReadsTest::configurationOfAnUnknownTestIsEmpty()
{
    cdm::Test test = testOf("0");
    test.configuration = "a";
    WithTest api(test);
    QCOMPARE(api->getTestConfiguration(job, idOf(1)), QStringList());
    QCOMPARE(api->getTestConfiguration(QStringLiteral("no job"), idOf(0)), QStringList());
    test.configuration.reset();
    WithTest without(test);
    QCOMPARE(without->getTestConfiguration(job, idOf(0)), QStringList());
}

void TestReadsTest::testIDsComeInRecordOrderFromOneFetch()
{
    cdm::Test located = testOf("1");
    located.testLocations = { locationOf("1_1"), locationOf("1_0") };
    answerWithTests({ testOf("2"), located });
    OnStandIn api;
    const std::vector<long long> expected{ idOf(2), idOf(1, 1), idOf(1, 0) };
    QCOMPARE(api->getAllTestIDs(job), expected);
    QCOMPARE(api->getAllTestIDs(job), expected);
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "getJob" });
}

void TestReadsTest::unknownJobHasNoTests()
{
    OnStandIn api;
    QVERIFY(api->getAllTestIDs(QStringLiteral("no job")).empty());
    QVERIFY(api->getRequiredTestIDs(QStringLiteral("no job")).empty());
    QVERIFY(api->getOptionalTestIDs(QStringLiteral("no job")).empty());
}

void TestReadsTest::requiredAndOptionalTestsPartTheTests()
{
    cdm::Test optional = testOf("1");
    optional.required = false;
    cdm::Test added = testOf("2");
    added.required = false;
    added.results = resultsWithData(nlohmann::json{ { "ijm_additionalTest", true } });
    cdm::Test located = testOf("4");
    located.testLocations = { locationOf("4_0"), locationOf("4_1") };
    located.testLocations->at(1).required = false;
    answerWithTests({ testOf("3"), optional, added, located, testOf(std::nullopt) });
    OnStandIn api;
    QCOMPARE(api->getAllTestIDs(job),
        (std::vector<long long>{ idOf(3), idOf(1), idOf(2), idOf(4, 0), idOf(4, 1), idOf(4) }));
    QCOMPARE(api->getRequiredTestIDs(job), (std::vector<long long>{ idOf(3), idOf(4, 0), idOf(4) }));
    QCOMPARE(api->getOptionalTestIDs(job), (std::vector<long long>{ idOf(1), idOf(2), idOf(4, 1) }));
}

void TestReadsTest::requiredAndOptionalTestsUseTheVirtualReads()
{
    class OwnTests : public JobManagerRestAPI
    {
    public:
        using JobManagerRestAPI::JobManagerRestAPI;
        std::vector<long long> getAllTestIDs(QString) override { return { 3, 1, 2 }; }
        TestRequirement::Enum getTestRequired(QString, long long testID) override
        {
            return testID == 1 ? TestRequirement::TEST_UNDEFINED : TestRequirement::TEST_REQUIRED;
        }
    };
    OwnTests api("host", 1);
    QCOMPARE(api.getRequiredTestIDs(job), (std::vector<long long>{ 3, 2 }));
    QCOMPARE(api.getOptionalTestIDs(job), (std::vector<long long>{ 1 }));
}

void TestReadsTest::readsAnswerFromTheCache()
{
    WithTest api(testWithResults(resultsOf("pass", "2026-03-01T08:15:00Z", "yes")));
    StandInClient::forgetCalls();
    const MessageCollector recorder;
    api->getTestType(job, idOf(0));
    api->getTestTypeDisplayName(job, idOf(0));
    api->getTestDescription(job, idOf(0));
    api->getTestSite(job, idOf(0));
    api->getTestGuideFile(job, idOf(0));
    api->getTestLocationsNumber(job, idOf(0));
    api->getTestStatus(job, idOf(0));
    api->getTestTime(job, idOf(0));
    api->getTestResponse(job, idOf(0));
    api->getTestRequired(job, idOf(0));
    api->getTestConfiguration(job, idOf(0));
    api->getAllTestIDs(job);
    QVERIFY(StandInClient::calls().empty());
    QCOMPARE(recorder.messages(), QStringList());
}

QTEST_GUILESS_MAIN(TestReadsTest)
#include "TestReadsTest.moc"
