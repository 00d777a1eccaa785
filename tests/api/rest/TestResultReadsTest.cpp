// What the REST implementation reads from the results of tests and their locations.

#include "tests/api/rest/OnStandIn.h"
#include "tests/api/rest/Records.h"
#include "tests/api/rest/StandInClient.h"
#include "tests/api/rest/WithTest.h"
#include "tests/support/MessageCollector.h"

#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

Q_DECLARE_METATYPE(cdm::Test)

namespace {

const QString badMarkMessage =
    QStringLiteral("debug: Exceptions when extracting the ijm_additionalTest from a json object");

/// Columns and rows that are the same for all that is read from results: which results count for which id.
/// `own`, `first` and `second` are what the test and its two locations hold, `none` what an empty answer looks like.
template <typename Value, typename MakeResults>
void addResultRows(const MakeResults& resultsFor, Value own, Value first, Value second, Value none)
{
    QTest::addColumn<cdm::Test>("test");
    QTest::addColumn<qlonglong>("id");
    QTest::addColumn<Value>("expected");
    const Results ownResults = resultsFor(own);
    const Results firstResults = resultsFor(first);
    const Results secondResults = resultsFor(second);
    QTest::newRow("no locations: the test's") << testWithResults(ownResults) << idOf(0) << own;
    QTest::newRow("no locations, no results") << testWithResults({}) << idOf(0) << none;
    QTest::newRow("no locations, id of a location: the test's") << testWithResults(ownResults) << idOf(0, 3) << own;
    QTest::newRow("one location: its own first")
        << testWithResults(ownResults, { firstResults }) << idOf(0, 0) << first;
    QTest::newRow("one location without results: the test's")
        << testWithResults(ownResults, { {} }) << idOf(0, 0) << own;
    QTest::newRow("one location, id of the test: the test's")
        << testWithResults(ownResults, { firstResults }) << idOf(0) << own;
    QTest::newRow("one location, id of the test without results: none, not the location's")
        << testWithResults({}, { firstResults }) << idOf(0) << none;
    QTest::newRow("two locations: each its own")
        << testWithResults(ownResults, { firstResults, secondResults }) << idOf(0, 1) << second;
    QTest::newRow("two locations, one without results: none")
        << testWithResults(ownResults, { firstResults, {} }) << idOf(0, 1) << none;
    QTest::newRow("two locations, id of the test: none")
        << testWithResults(ownResults, { firstResults, secondResults }) << idOf(0) << none;
    QTest::newRow("two locations, id of a third: none")
        << testWithResults(ownResults, { firstResults, secondResults }) << idOf(0, 2) << none;
}

/// Reads the row's test by the row's id; the answer must be the expected one, null included.
template <typename Value> void checkRead(Value (JobManagerRestAPI::*read)(QString, long long))
{
    QFETCH(cdm::Test, test);
    QFETCH(qlonglong, id);
    QFETCH(Value, expected);
    WithTest api(test);
    const Value value = ((*api).*read)(job, id);
    QCOMPARE(value, expected);
    QCOMPARE(value.isNull(), expected.isNull());
}

} // namespace

class TestResultReadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void statusIsTheLocationsOrTheTests_data();
    void statusIsTheLocationsOrTheTests();
    void emptyStatusOfTheLocationIsItsStatus();
    void timeIsTheLocationsOrTheTests_data();
    void timeIsTheLocationsOrTheTests();
    void timeThatDoesNotParseFallsThrough_data();
    void timeThatDoesNotParseFallsThrough();
    void timeOfAnUnknownTestIsNull();
    void responseIsTheLocationsOrTheTests_data();
    void responseIsTheLocationsOrTheTests();
    void emptyResponseFallsBackOnTheTests_data();
    void emptyResponseFallsBackOnTheTests();
    void resultDataIsTheLocationsOrTheTests_data();
    void resultDataIsTheLocationsOrTheTests();
    void resultDataThatIsMissingFallsBackOnTheTests();

    void requirementFollowsTheFlagOfLocationAndTest_data();
    void requirementFollowsTheFlagOfLocationAndTest();
    void requirementOfAnUnknownTestIsRequired();
    void additionalMarkTellsAddedFromOptional_data();
    void additionalMarkTellsAddedFromOptional();
    void additionalMarkOfTheLocationGoesFirst();
};

void TestResultReadsTest::init()
{
    StandInClient::reset();
}

void TestResultReadsTest::statusIsTheLocationsOrTheTests_data()
{
    addResultRows([](const QString& status) { return resultsOf(status.toStdString()); }, QStringLiteral("own"),
        QStringLiteral("first"), QStringLiteral("größe"), QString());
}

void TestResultReadsTest::statusIsTheLocationsOrTheTests()
{
    checkRead(&JobManagerRestAPI::getTestStatus);
}

void TestResultReadsTest::emptyStatusOfTheLocationIsItsStatus()
{
    WithTest api(testWithResults(resultsOf("own"), { resultsOf("") }));
    const QString status = api->getTestStatus(job, idOf(0, 0));
    QVERIFY(status.isEmpty());
    QVERIFY(!status.isNull());
}

void TestResultReadsTest::timeIsTheLocationsOrTheTests_data()
{
    const auto at = [](const char* text) { return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate); };
    addResultRows([](const QDateTime& time) { return resultsOf("pass", time.toString(Qt::ISODate).toStdString()); },
        at("2026-03-01T08:15:00Z"), at("2026-03-02T09:00:01+01:00"), at("2026-03-03T10:30:00"), QDateTime());
}

void TestResultReadsTest::timeIsTheLocationsOrTheTests()
{
    checkRead(&JobManagerRestAPI::getTestTime);
}

void TestResultReadsTest::timeThatDoesNotParseFallsThrough_data()
{
    QTest::addColumn<cdm::Test>("test");
    QTest::addColumn<qlonglong>("id");
    QTest::addColumn<QDateTime>("expected");
    const QDateTime good = QDateTime::fromString(QStringLiteral("2026-03-01T08:15:00Z"), Qt::ISODate);
    const cdm::TestResults goodResults = resultsOf("pass", "2026-03-01T08:15:00Z");
    const cdm::TestResults badResults = resultsOf("pass", "yesterday");
    const cdm::TestResults noTime = resultsOf("pass");
    QTest::newRow("bad at the location, good at the test")
        << testWithResults(goodResults, { badResults }) << idOf(0, 0) << good;
    QTest::newRow("none at the location, good at the test")
        << testWithResults(goodResults, { noTime }) << idOf(0, 0) << good;
    QTest::newRow("bad at both") << testWithResults(badResults, { badResults }) << idOf(0, 0) << QDateTime();
    QTest::newRow("bad at the location, none at the test")
        << testWithResults({}, { badResults }) << idOf(0, 0) << QDateTime();
    QTest::newRow("bad at one of two locations")
        << testWithResults(goodResults, { badResults, goodResults }) << idOf(0, 0) << QDateTime();
    QTest::newRow("good at the location, bad at the test")
        << testWithResults(badResults, { goodResults }) << idOf(0, 0) << good;
}

void TestResultReadsTest::timeThatDoesNotParseFallsThrough()
{
    checkRead(&JobManagerRestAPI::getTestTime);
}

void TestResultReadsTest::timeOfAnUnknownTestIsNull()
{
    WithTest api(testWithResults(resultsOf("pass", "2026-03-01T08:15:00Z")));
    QVERIFY(api->getTestTime(job, idOf(1)).isNull());
    QVERIFY(api->getTestTime(QStringLiteral("no job"), idOf(0)).isNull());
}

void TestResultReadsTest::responseIsTheLocationsOrTheTests_data()
{
    addResultRows([](const QString& response) { return resultsOf("pass", {}, response.toStdString()); },
        QStringLiteral("own"), QStringLiteral("first"), QStringLiteral("größe"), QString());
}

void TestResultReadsTest::responseIsTheLocationsOrTheTests()
{
    checkRead(&JobManagerRestAPI::getTestResponse);
}

void TestResultReadsTest::emptyResponseFallsBackOnTheTests_data()
{
    QTest::addColumn<cdm::Test>("test");
    QTest::addColumn<qlonglong>("id");
    QTest::addColumn<QString>("expected");
    const cdm::TestResults none = resultsOf("pass");
    const cdm::TestResults empty = resultsOf("pass", {}, "");
    const cdm::TestResults answered = resultsOf("pass", {}, "yes");
    QTest::newRow("no response at the location")
        << testWithResults(answered, { none }) << idOf(0, 0) << QStringLiteral("yes");
    QTest::newRow("empty at the location")
        << testWithResults(answered, { empty }) << idOf(0, 0) << QStringLiteral("yes");
    QTest::newRow("empty at the location, none at the test")
        << testWithResults(none, { empty }) << idOf(0, 0) << QStringLiteral("");
    QTest::newRow("none at both") << testWithResults(none, { none }) << idOf(0, 0) << QString();
    QTest::newRow("empty at one of two locations")
        << testWithResults(answered, { empty, none }) << idOf(0, 0) << QStringLiteral("");
}

void TestResultReadsTest::emptyResponseFallsBackOnTheTests()
{
    checkRead(&JobManagerRestAPI::getTestResponse);
}

void TestResultReadsTest::resultDataIsTheLocationsOrTheTests_data()
{
    addResultRows([](const QString& data) { return resultsWithData(nlohmann::json(data.toStdString())); },
        QStringLiteral("own"), QStringLiteral("first"), QStringLiteral("second"), QString());
}

void TestResultReadsTest::resultDataIsTheLocationsOrTheTests()
{
    QFETCH(cdm::Test, test);
    QFETCH(qlonglong, id);
    QFETCH(QString, expected);
    OnStandIn api;
    const std::optional<nlohmann::json> data = api->getResultsData(test, id);
    QCOMPARE(data.has_value(), !expected.isNull());
    if (data)
        QCOMPARE(QString::fromStdString(data->get<std::string>()), expected);
}

void TestResultReadsTest::resultDataThatIsMissingFallsBackOnTheTests()
{
    OnStandIn api;
    cdm::Test one = testWithResults(resultsWithData(7), { resultsWithData(std::nullopt) });
    QVERIFY(api->getResultsData(one, idOf(0, 0)) == nlohmann::json(7));
    cdm::Test two = testWithResults(resultsWithData(7), { resultsWithData(std::nullopt), {} });
    QVERIFY(!api->getResultsData(two, idOf(0, 0)));
    cdm::Test null = testWithResults(resultsWithData(7), { resultsWithData(nlohmann::json()) });
    QVERIFY(api->getResultsData(null, idOf(0, 0)) == nlohmann::json());
}

void TestResultReadsTest::requirementFollowsTheFlagOfLocationAndTest_data()
{
    // A flag: 1 required, 0 not, -1 nothing. Location -2: the id names no location.
    QTest::addColumn<int>("ofTest");
    QTest::addColumn<int>("ofLocation");
    QTest::addColumn<int>("requirement");
    const int required = TestRequirement::TEST_REQUIRED;
    const int optional = TestRequirement::TEST_OPTIONAL;
    QTest::newRow("test required") << 1 << -2 << required;
    QTest::newRow("test not required") << 0 << -2 << optional;
    QTest::newRow("test does not say") << -1 << -2 << required;
    QTest::newRow("location not required, test required") << 1 << 0 << optional;
    QTest::newRow("location required, test not") << 0 << 1 << required;
    QTest::newRow("location does not say, test required") << 1 << -1 << required;
    QTest::newRow("location does not say, test not required") << 0 << -1 << optional;
    QTest::newRow("neither says") << -1 << -1 << required;
}

void TestResultReadsTest::requirementFollowsTheFlagOfLocationAndTest()
{
    QFETCH(int, ofTest);
    QFETCH(int, ofLocation);
    const auto flag = [](int value) { return value < 0 ? std::nullopt : std::optional<bool>(value == 1); };
    cdm::Test test = testWithResults({}, { {} });
    test.required = flag(ofTest);
    test.testLocations->front().required = flag(ofLocation);
    WithTest api(test);
    const long long id = ofLocation == -2 ? idOf(0) : idOf(0, 0);
    QTEST(static_cast<int>(api->getTestRequired(job, id)), "requirement");
}

void TestResultReadsTest::requirementOfAnUnknownTestIsRequired()
{
    cdm::Test test = testOf("0");
    test.required = false;
    WithTest api(test);
    QCOMPARE(api->getTestRequired(job, idOf(1)), TestRequirement::TEST_REQUIRED);
    QCOMPARE(api->getTestRequired(QStringLiteral("no job"), idOf(0)), TestRequirement::TEST_REQUIRED);
}

void TestResultReadsTest::additionalMarkTellsAddedFromOptional_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<bool>("required");
    QTest::addColumn<int>("requirement");
    QTest::addColumn<bool>("logged");
    const int isRequired = TestRequirement::TEST_REQUIRED;
    const int optional = TestRequirement::TEST_OPTIONAL;
    const int added = TestRequirement::TEST_ADDED;
    QTest::newRow("marked") << QByteArray(R"({"ijm_additionalTest": true})") << false << added << false;
    QTest::newRow("marked as not additional")
        << QByteArray(R"({"ijm_additionalTest": false})") << false << optional << false;
    QTest::newRow("marked, but required")
        << QByteArray(R"({"ijm_additionalTest": true})") << true << isRequired << false;
    QTest::newRow("no mark") << QByteArray(R"({"other": true})") << false << optional << false;
    QTest::newRow("mark is a text") << QByteArray(R"({"ijm_additionalTest": "true"})") << false << optional << true;
    QTest::newRow("mark is a number") << QByteArray(R"({"ijm_additionalTest": 1})") << false << optional << true;
    QTest::newRow("mark is null") << QByteArray(R"({"ijm_additionalTest": null})") << false << optional << true;
    QTest::newRow("mark is a text, required")
        << QByteArray(R"({"ijm_additionalTest": "true"})") << true << isRequired << true;
    QTest::newRow("data is an array") << QByteArray(R"(["ijm_additionalTest"])") << false << optional << false;
    QTest::newRow("data is a text") << QByteArray(R"("ijm_additionalTest")") << false << optional << false;
    QTest::newRow("data is null") << QByteArray("null") << false << optional << false;
}

void TestResultReadsTest::additionalMarkTellsAddedFromOptional()
{
    QFETCH(QByteArray, data);
    QFETCH(bool, required);
    QFETCH(bool, logged);
    cdm::Test test = testWithResults(resultsWithData(nlohmann::json::parse(data.toStdString())));
    test.required = required;
    WithTest api(test);
    const MessageCollector recorder;
    QTEST(static_cast<int>(api->getTestRequired(job, idOf(0))), "requirement");
    QCOMPARE(recorder.messages(), logged ? QStringList(badMarkMessage) : QStringList());
}

void TestResultReadsTest::additionalMarkOfTheLocationGoesFirst()
{
    const nlohmann::json marked{ { "ijm_additionalTest", true } };
    const nlohmann::json unmarked{ { "ijm_additionalTest", false } };
    cdm::Test test = testWithResults(resultsWithData(unmarked), { resultsWithData(marked) });
    test.required = false;
    WithTest api(test);
    QCOMPARE(api->getTestRequired(job, idOf(0, 0)), TestRequirement::TEST_ADDED);
    QCOMPARE(api->getTestRequired(job, idOf(0)), TestRequirement::TEST_OPTIONAL);
}

QTEST_GUILESS_MAIN(TestResultReadsTest)
#include "TestResultReadsTest.moc"
