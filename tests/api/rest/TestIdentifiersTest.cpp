#include "api/rest/TestIdentifiers.h"

#include "tests/api/rest/Records.h"

#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

Q_DECLARE_METATYPE(std::vector<long long>)
Q_DECLARE_METATYPE(cdm::CdmSouthboundJob)

class TestIdentifiersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void idNamesTheTestOrLocation_data();
    void idNamesTheTestOrLocation();
    void idNamesTheTestWithoutItsLocation_data();
    void idNamesTheTestWithoutItsLocation();
    void indexStringGivesTwoIndices_data();
    void indexStringGivesTwoIndices();
    void indicesAreLaidOutLikeAnId();
    void idsOfAJobComeInRecordOrder_data();
    void idsOfAJobComeInRecordOrder();
};

void TestIdentifiersTest::idNamesTheTestOrLocation_data()
{
    QTest::addColumn<qlonglong>("id");
    QTest::addColumn<QByteArray>("uiIndex");
    QTest::newRow("location of a test") << 0x0000000200000001LL << QByteArray("2_1");
    QTest::newRow("test") << 0x00000002FFFFFFFFLL << QByteArray("2");
    QTest::newRow("first location of the first test") << 0LL << QByteArray("0_0");
    QTest::newRow("first test") << 0x00000000FFFFFFFFLL << QByteArray("0");
    QTest::newRow("largest indices") << 0x7FFFFFFF7FFFFFFFLL << QByteArray("2147483647_2147483647");
    QTest::newRow("any negative low half is no location") << 0x0000000280000000LL << QByteArray("2");
    QTest::newRow("no test, no location") << -1LL << QByteArray();
    QTest::newRow("top bit set, location 5") << static_cast<qlonglong>(0x8000000000000005ULL) << QByteArray("_5");
    QTest::newRow("test -1, location 0") << static_cast<qlonglong>(0xFFFFFFFF00000000ULL) << QByteArray("_0");
}

void TestIdentifiersTest::idNamesTheTestOrLocation()
{
    QFETCH(qlonglong, id);
    QFETCH(QByteArray, uiIndex);
    QCOMPARE(QByteArray::fromStdString(getUiIndexFromTestId(id)), uiIndex);
}

void TestIdentifiersTest::idNamesTheTestWithoutItsLocation_data()
{
    QTest::addColumn<qlonglong>("id");
    QTest::addColumn<QByteArray>("uiIndex");
    QTest::newRow("location of a test") << 0x0000000200000001LL << QByteArray("2");
    QTest::newRow("test") << 0x00000002FFFFFFFFLL << QByteArray("2");
    QTest::newRow("first test") << 0LL << QByteArray("0");
    QTest::newRow("negative id") << -1LL << QByteArray();
    QTest::newRow("negative id with a location") << static_cast<qlonglong>(0x8000000000000005ULL) << QByteArray();
}

void TestIdentifiersTest::idNamesTheTestWithoutItsLocation()
{
    QFETCH(qlonglong, id);
    QFETCH(QByteArray, uiIndex);
    QCOMPARE(QByteArray::fromStdString(getTestUiIndexFromTestId(id)), uiIndex);
}

void TestIdentifiersTest::indexStringGivesTwoIndices_data()
{
    QTest::addColumn<QByteArray>("uiIndex");
    QTest::addColumn<int>("test");
    QTest::addColumn<int>("location");
    QTest::newRow("test") << QByteArray("12") << 12 << -1;
    QTest::newRow("location") << QByteArray("12_3") << 12 << 3;
    QTest::newRow("two underscores") << QByteArray("1_2_3") << 1 << 2;
    QTest::newRow("no test part") << QByteArray("_3") << 0 << 3;
    QTest::newRow("no location part") << QByteArray("12_") << 12 << 0;
    QTest::newRow("underscore alone") << QByteArray("_") << 0 << 0;
    QTest::newRow("empty") << QByteArray() << 0 << -1;
    QTest::newRow("no number") << QByteArray("fiber") << 0 << -1;
    QTest::newRow("number, then text") << QByteArray("7a_8b") << 7 << 8;
    QTest::newRow("leading 0 is octal") << QByteArray("010_011") << 8 << 9;
    QTest::newRow("leading 0x is hexadecimal") << QByteArray("0x1F_0xa") << 31 << 10;
    QTest::newRow("negative") << QByteArray("-3_-4") << -3 << -4;
    QTest::newRow("cut to 32 bits") << QByteArray("4294967298_8589934595") << 2 << 3;
    QTest::newRow("beyond 64 bits") << QByteArray("99999999999999999999_-99999999999999999999") << -1 << 0;
}

void TestIdentifiersTest::indexStringGivesTwoIndices()
{
    QFETCH(QByteArray, uiIndex);
    const TestIndices indices = getIndicesFromUiIndex(uiIndex.toStdString());
    QTEST(indices.testIndex, "test");
    QTEST(indices.locationIndex, "location");
}

void TestIdentifiersTest::indicesAreLaidOutLikeAnId()
{
    QCOMPARE(testIdFromIndices(getIndicesFromUiIndex("2_1")), 0x0000000200000001LL);
    QCOMPARE(testIdFromIndices(getIndicesFromUiIndex("2")), 0x00000002FFFFFFFFLL);
    QCOMPARE(indicesFromTestId(0x0000000200000001LL).testIndex, 2);
    QCOMPARE(indicesFromTestId(0x0000000200000001LL).locationIndex, 1);
}

void TestIdentifiersTest::idsOfAJobComeInRecordOrder_data()
{
    using Ids = std::vector<long long>;
    const auto withLocations = [](std::optional<std::string> uiIndex, std::vector<cdm::TestLocation> locations) {
        cdm::Test test = testOf(std::move(uiIndex));
        test.testLocations = std::move(locations);
        return test;
    };
    QTest::addColumn<cdm::CdmSouthboundJob>("job");
    QTest::addColumn<Ids>("ids");
    QTest::newRow("no tests") << jobOf("J") << Ids();
    QTest::newRow("empty list of tests") << jobOf("J", std::vector<cdm::Test>()) << Ids();
    QTest::newRow("test: by its index string, not its position")
        << jobOf("J", { { testOf("5"), testOf("3") } }) << Ids{ idOf(5), idOf(3) };
    QTest::newRow("test: by its position without index string")
        << jobOf("J", { { testOf("7"), testOf(std::nullopt) } }) << Ids{ idOf(7), idOf(1) };
    QTest::newRow("test: none with an empty index string")
        << jobOf("J", { { testOf(""), testOf(std::nullopt) } }) << Ids{ idOf(1) };
    QTest::newRow("test: a location in the index string is dropped")
        << jobOf("J", { { testOf("4_2") } }) << Ids{ idOf(4) };
    QTest::newRow("test with an empty list of locations is one without")
        << jobOf("J", { { withLocations("6", {}) } }) << Ids{ idOf(6) };
    QTest::newRow("locations: by their index strings, and none for the test") << jobOf("J",
        { { withLocations("2", { locationOf("2_1"), locationOf("9_0") }) } }) << Ids{ idOf(2, 1), idOf(9, 0) };
    QTest::newRow("location: an index string of a test alone counts as it comes")
        << jobOf("J", { { withLocations("2", { locationOf("3") }) } }) << Ids{ idOf(3) };
    QTest::newRow("locations: by their positions without index strings")
        << jobOf("J", { { testOf("0"), withLocations("8", { locationOf(std::nullopt), locationOf(std::nullopt) }) } })
        << Ids{ idOf(0), idOf(1, 0), idOf(1, 1) };
    QTest::newRow("locations: none with an empty index string")
        << jobOf("J", { { withLocations("2", { locationOf(""), locationOf(std::nullopt) }) } }) << Ids{ idOf(0, 1) };
    QTest::newRow("test whose locations all have no id has none either")
        << jobOf("J", { { withLocations("2", { locationOf("") }) } }) << Ids();
    QTest::newRow("nothing is sorted, and a repeated index repeats") << jobOf("J",
        { { testOf("9"), withLocations("1", { locationOf("1_1"), locationOf("1_0") }), testOf("0"), testOf("9") } })
                                                                     << Ids{ idOf(9), idOf(1, 1), idOf(1, 0), idOf(0),
                                                                            idOf(9) };
}

void TestIdentifiersTest::idsOfAJobComeInRecordOrder()
{
    QFETCH(cdm::CdmSouthboundJob, job);
    QTEST(get_all_test_ids(job), "ids");
}

QTEST_GUILESS_MAIN(TestIdentifiersTest)
#include "TestIdentifiersTest.moc"
