#pragma once

#include "core/JobManager.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QStringList>

/// Watches a manager from its construction on and tells what holds between its rows, its jobs, its views and its
/// current job whatever was done to it. Main thread.
class ManagerInvariants : public QObject
{
    Q_OBJECT

public:
    explicit ManagerInvariants(jobmanager_ui::JobManager& manager);

    /// What does not hold at this moment, one sentence each; empty if all is well. Jobs are known from one call to the
    /// next: the object of an id that was in the list all the time is the same, one of an id that was not is gone.
    QStringList faults();

    /// The job is about to change outside of a rebuild: its place in the views is right again only with the next one.
    void jobChanges(const QString& jobID) { m_outOfStep.insert(jobID); }

    /// How many resets the model has had.
    int resets() const { return m_resets; }

private:
    void onReset();
    QStringList idsOf(const QAbstractItemModel& model) const;
    void checkRows(const QStringList& ids);
    void checkRow(const QString& jobID, int row);
    void checkCurrentJob();
    void checkView(QSortFilterProxyModel& view, const QString& filter);
    void checkObjects(const QStringList& ids);
    void expect(bool holds, const QString& sentence);

    jobmanager_ui::JobManager& m_manager;
    QStringList m_faults;
    QHash<QString, QPointer<jobmanager_ui::Job>> m_known;
    /// The known ids that have been in the list at the end of each reset since.
    QSet<QString> m_stayed;
    QSet<QString> m_outOfStep;
    bool m_resetting = false;
    int m_resets = 0;
    int m_rowSignals = 0;
};
