#pragma once

#include "models/Test.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/RecordingApi.h"

#include <memory>
#include <QDateTime>
#include <QObject>

namespace jobmanager_test {

/// A scripted test, and what is asked about it. Calls go into the journal; signals too, where a test records them.
class TestObjectFixture : public QObject
{
protected:
    /// An interface that knows the test and gives a value of its own for each part of it.
    void setUp();
    /// Fails the test if there was a message: the class logs nothing, whatever happens.
    void tearDown();

    /// Has the operation answer so, whatever test it is asked about.
    void answer(const char* operation, const QVariant& value);

    /// When the test ran.
    static QDateTime firstTime();
    /// A call about the test as the journal has it.
    static QString testCall(const QString& operation, const QString& furtherArguments = {});
    /// Everything that taking the snapshot calls, in order.
    static QStringList snapshotReads();

    const QString m_jobID = QStringLiteral("WO-1");
    const long long m_testID = 0x0000000700000002;
    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
};

} // namespace jobmanager_test
