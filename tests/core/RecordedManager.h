#pragma once

#include "core/JobManager.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/RecordingApi.h"
#include "tests/support/SignalRecorder.h"

#include <memory>
#include <QStringList>
#include <vector>

namespace jobmanager_test {

/// The ids of the jobs in the rows of the manager or of a view of it, in order.
QStringList rowIDs(const QAbstractItemModel& jobs);

/// A manager over the recording data interface, whose calls, the manager's signals and all messages go into one
/// journal. Nothing runs before start: without it there is no worker, and a request goes nowhere.
class RecordedManager
{
public:
    explicit RecordedManager(std::shared_ptr<RecordingApi> recordingApi = std::make_shared<RecordingApi>());

    /// Brings the worker to life, waits for the first update and empties the journal. No timer polls. The test fails
    /// if the update does not come.
    void start();
    /// One tick of the poll timer.
    void poll();
    /// Lets the manager take over these jobs at once.
    void rebuild(const std::vector<QString>& jobIDs);
    /// Blocks, without delivering an event of this thread, until the worker has made the call and lowered its flag:
    /// its answer is then on its way. False if that does not happen in time.
    bool waitUntilAnswered(const QString& call);

    /// What the journal holds, one entry a line, which is then forgotten.
    QString take() { return lines(api->journal().take()); }
    /// The ids in row order.
    QStringList ids() const { return rowIDs(manager); }

    std::shared_ptr<RecordingApi> api;
    MessageCollector messages;
    jobmanager_ui::JobManager manager;
    SignalRecorder recorder;
};

} // namespace jobmanager_test
