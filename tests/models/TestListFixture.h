#pragma once

#include "models/TestList.h"
#include "tests/models/ScriptedTests.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/SignalRecorder.h"

#include <memory>
#include <QObject>

namespace jobmanager_test {

/// A list over scripted tests. Calls, the list's signals and messages go into one journal.
class TestListFixture : public QObject
{
protected:
    /// A fresh list that has read nothing.
    void setUp();
    /// Fails the test if there was a warning.
    void tearDown();

    /// Has the list reload these tests.
    void load(const std::vector<ScriptedTest>& tests);
    /// Sets the group type and then has the list reload these tests.
    void load(const std::vector<ScriptedTest>& tests, jobmanager_ui::TestGroupType::Enum groupType);
    /// The list's signals since the journal was emptied last.
    QStringList emitted();
    /// The test ids of the rows, with blanks between.
    QString ids() const;

    /// What a rebuild of rows and sections emits that leaves the number of rows as it was.
    static QStringList rebuildSignals();
    /// What a rebuild of rows and sections emits that changes the number of rows.
    static QStringList resizingSignals();

    const QString m_jobID = QStringLiteral("J");
    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
    std::unique_ptr<jobmanager_ui::TestList> m_list;
    std::unique_ptr<SignalRecorder> m_recorder;
};

} // namespace jobmanager_test
