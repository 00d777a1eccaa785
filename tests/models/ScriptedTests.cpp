#include "tests/models/ScriptedTests.h"

#include "tests/support/ValueText.h"

namespace jobmanager_test {

void setTests(RecordingApi& api, const QString& jobID, const std::vector<ScriptedTest>& tests)
{
    QVariantList ids;
    for (const ScriptedTest& test : tests) {
        ids.append(test.id);
        const auto set = [&](const char* operation, const QVariant& value) {
            api.setAnswer(callText(QString::fromLatin1(operation), { jobID, test.id }), value);
        };
        api.setAnswer(callText(QStringLiteral("getTestIndex"), { test.id }), test.index);
        set("getTestTypeDisplayName", test.displayName);
        set("getTestStatus", test.status);
        set("getTestTime", test.time);
        set("getTestRequired", static_cast<int>(test.required));
        set("getTestLocationsNumber", test.locationsNumber);
        set("getTestType", test.type);
        set("getTestDescription", test.description);
        set("getTestSite", test.site);
        api.setAnswer(
            callText(QStringLiteral("getOptionalTestProperty"), { jobID, test.id, QStringLiteral("location") }),
            test.location);
    }
    for (const char* operation : { "getAllTestIDs", "getRequiredTestIDs", "getOptionalTestIDs" }) {
        api.setAnswer(callText(QString::fromLatin1(operation), { jobID }), ids);
    }
}

std::vector<ScriptedTest> testsAt(const QStringList& locations)
{
    std::vector<ScriptedTest> tests;
    for (int i = 0; i < locations.size(); ++i) {
        ScriptedTest test;
        test.id = i;
        test.index = i;
        test.location = locations.at(i);
        tests.push_back(test);
    }
    return tests;
}

QDateTime minute(int minutes)
{
    return QDateTime(QDate(2026, 3, 1), QTime(8, 0), Qt::UTC).addSecs(60LL * minutes);
}

} // namespace jobmanager_test
