// The prompt of a manual test: its configuration data as a map.

#include "tests/api/rest/WithTest.h"
#include "tests/support/MessageCollector.h"

#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

QVariantMap configurationOf(const std::optional<nlohmann::json>& data)
{
    cdm::Test test = testOf("0");
    test.configurationData = data;
    return WithTest(test)->getManualTestConfiguration(job, idOf(0));
}

} // namespace

class ManualTestConfigurationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { StandInClient::reset(); }

    void objectBecomesAMap();
    void membersKeepTheirKinds();
    void textIsUtf8();
    void anythingButAnObjectWithMembersIsEmpty_data();
    void anythingButAnObjectWithMembersIsEmpty();
    void unknownTestHasNone();
    void idOfALocationReadsItsTest();
    void textThatIsNotUtf8IsLoggedAndEmpty();
};

void ManualTestConfigurationTest::objectBecomesAMap()
{
    const QVariantMap map = configurationOf(nlohmann::json{ { "title", "Look" }, { "prompt", "Is it clean?" } });
    QCOMPARE(map,
        (QVariantMap{ { QStringLiteral("title"), QStringLiteral("Look") },
            { QStringLiteral("prompt"), QStringLiteral("Is it clean?") } }));
    for (const QVariant& value : map)
        QCOMPARE(value.userType(), static_cast<int>(QMetaType::QString));
}

void ManualTestConfigurationTest::membersKeepTheirKinds()
{
    const QVariantMap map = configurationOf(nlohmann::json::parse(R"({"list": ["a", 1], "inner": {"flag": true}})"));
    QCOMPARE(map.value(QStringLiteral("list")).toList(), (QVariantList{ QStringLiteral("a"), 1.0 }));
    QCOMPARE(map.value(QStringLiteral("inner")).toMap(), (QVariantMap{ { QStringLiteral("flag"), true } }));
}

void ManualTestConfigurationTest::textIsUtf8()
{
    QCOMPARE(configurationOf(nlohmann::json{ { "Gr\u00f6\u00dfe", "\u4e2d\u6587" } }),
        (QVariantMap{ { QString::fromUtf8("Gr\u00f6\u00dfe"), QString::fromUtf8("\u4e2d\u6587") } }));
}

void ManualTestConfigurationTest::anythingButAnObjectWithMembersIsEmpty_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("empty object") << QByteArray("{}");
    QTest::newRow("array") << QByteArray(R"([{"title": "Look"}])");
    QTest::newRow("number") << QByteArray("7");
    QTest::newRow("text") << QByteArray(R"("title")");
    QTest::newRow("null") << QByteArray("null");
}

void ManualTestConfigurationTest::anythingButAnObjectWithMembersIsEmpty()
{
    QFETCH(QByteArray, data);
    const MessageCollector recorder;
    const std::optional<nlohmann::json> parsed =
        data.isEmpty() ? std::nullopt : std::make_optional(nlohmann::json::parse(data.toStdString()));
    QCOMPARE(configurationOf(parsed), QVariantMap());
    QCOMPARE(recorder.messages(), QStringList());
}

void ManualTestConfigurationTest::unknownTestHasNone()
{
    cdm::Test test = testOf("0");
    test.configurationData = nlohmann::json{ { "title", "Look" } };
    WithTest api(test);
    QCOMPARE(api->getManualTestConfiguration(job, idOf(1)), QVariantMap());
    QCOMPARE(api->getManualTestConfiguration(QStringLiteral("no job"), idOf(0)), QVariantMap());
}

void ManualTestConfigurationTest::idOfALocationReadsItsTest()
{
    cdm::Test test = testOf("0");
    test.configurationData = nlohmann::json{ { "title", "Look" } };
    QCOMPARE(WithTest(test)->getManualTestConfiguration(job, idOf(0, 3)).size(), 1);
}

void ManualTestConfigurationTest::textThatIsNotUtf8IsLoggedAndEmpty()
{
    const MessageCollector recorder;
    QCOMPARE(configurationOf(nlohmann::json{ { "title", "\xff" } }), QVariantMap());
    QCOMPARE(recorder.messages(),
        QStringList(QStringLiteral("debug: Exceptions when extracting configurationData from a json object")));
}

QTEST_GUILESS_MAIN(ManualTestConfigurationTest)
#include "ManualTestConfigurationTest.moc"
