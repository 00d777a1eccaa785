#pragma once

#include <QtTest>

namespace jobmanager_test {

/// A table of what the properties of a manager give that nobody has asked for anything.
inline void addValuesOfAnUnusedManager()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("isTestLaunching") << QVariant(false);
    QTest::newRow("isSyncInProgress") << QVariant(false);
    QTest::newRow("isQueryChangeCountInProgress") << QVariant(false);
    QTest::newRow("groupType") << QVariant(1);
    QTest::newRow("useInternalKeyboard") << QVariant(true);
    QTest::newRow("settingCurrentJob") << QVariant(false);
    QTest::newRow("exportingJobData") << QVariant(false);
    QTest::newRow("exportJobDataOutputPath") << QVariant(QString());
    QTest::newRow("importingJobs") << QVariant(false);
    QTest::newRow("importJobsNumberJobs") << QVariant(0);
    QTest::newRow("exchangingJob") << QVariant(false);
    QTest::newRow("jobExchangeStatus") << QVariant(false);
    QTest::newRow("pauseAutomaticUpdates") << QVariant(false);
}

} // namespace jobmanager_test
