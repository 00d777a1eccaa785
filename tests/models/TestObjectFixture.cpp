#include "tests/models/TestObjectFixture.h"

#include <QtTest>

using namespace jobmanager_ui;

namespace jobmanager_test {

void TestObjectFixture::setUp()
{
    m_journal.take();
    m_messages = std::make_unique<MessageCollector>();
    m_api = std::make_shared<RecordingApi>(m_journal);
    answer("getTestIndex", 7);
    answer("getTestLocationIndex", 2);
    answer("getTestType", QStringLiteral("fiber"));
    answer("getTestTypeDisplayName", QStringLiteral("Faser-Prüfung"));
    answer("getTestTime", firstTime());
    answer("getTestRequired", static_cast<int>(TestRequirement::TEST_ADDED));
    answer("getTestLocationsNumber", 4);
    answer("getOptionalTestProperty", QStringLiteral("Rack 5"));
    answer("getTestDescription", QStringLiteral("Check the line"));
    answer("getTestSite", QStringLiteral("Basement"));
    answer("getTestStatus", QStringLiteral("pass"));
    answer("getTestConfiguration", QStringList{ QStringLiteral("1310 nm"), QStringLiteral("1550 nm") });
    answer("getTestGuideFile", QStringLiteral("/guides/fiber.pdf"));
    answer("getTestResponse", QStringLiteral("yes"));
    answer("getManualTestConfiguration", QVariantMap{ { QStringLiteral("prompt"), QStringLiteral("Clean?") } });
    answer("setManualTestResult", true);
}

void TestObjectFixture::tearDown()
{
    const QStringList messages = m_messages->take();
    m_api.reset();
    m_messages.reset();
    QCOMPARE(messages, QStringList());
}

void TestObjectFixture::answer(const char* operation, const QVariant& value)
{
    m_api->setAnswer(QString::fromLatin1(operation), value);
}

QDateTime TestObjectFixture::firstTime()
{
    return QDateTime(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC);
}

QString TestObjectFixture::testCall(const QString& operation, const QString& furtherArguments)
{
    return QStringLiteral("call %1(\"WO-1\", 30064771074%2)").arg(operation, furtherArguments);
}

QStringList TestObjectFixture::snapshotReads()
{
    return { QStringLiteral("call getTestIndex(30064771074)"), QStringLiteral("call getTestLocationIndex(30064771074)"),
        testCall(QStringLiteral("getTestType")), testCall(QStringLiteral("getTestTime")),
        testCall(QStringLiteral("getTestTypeDisplayName")), testCall(QStringLiteral("getTestRequired")),
        testCall(QStringLiteral("getTestLocationsNumber")),
        testCall(QStringLiteral("getOptionalTestProperty"), QStringLiteral(", \"location\"")) };
}

} // namespace jobmanager_test
