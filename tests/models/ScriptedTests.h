#pragma once

#include "tests/support/RecordingApi.h"

#include <QDateTime>
#include <QString>
#include <vector>

namespace jobmanager_test {

/// One test, or one location of a test, as RecordingApi gives it.
struct ScriptedTest
{
    long long id = 0;
    int index = 0;
    QString location = {};
    QString displayName = {};
    QString status = {};
    QDateTime time = {};
    jobmanager_ui::TestRequirement::Enum required = jobmanager_ui::TestRequirement::TEST_REQUIRED;
    int locationsNumber = 0;
    QString type = {};
    QString description = {};
    QString site = {};
};

/// Gives the job these tests, in this order, for all of its subsets.
void setTests(RecordingApi& api, const QString& jobID, const std::vector<ScriptedTest>& tests);

/// Tests with the ids 0, 1, 2 and so on, the same as index, at these locations.
std::vector<ScriptedTest> testsAt(const QStringList& locations);

/// A time that many minutes after a fixed one.
QDateTime minute(int minutes);

} // namespace jobmanager_test
