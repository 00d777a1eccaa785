#include "tests/end_to_end/ManagerInvariants.h"

#include <utility>

using namespace jobmanager_ui;

ManagerInvariants::ManagerInvariants(JobManager& manager) : m_manager(manager)
{
    connect(&manager, &JobManager::modelAboutToBeReset, this,
        [this] { expect(!std::exchange(m_resetting, true), QStringLiteral("a reset began inside another one")); });
    connect(&manager, &JobManager::modelReset, this, &ManagerInvariants::onReset);
    const auto countRowSignal = [this] { ++m_rowSignals; };
    connect(&manager, &JobManager::rowsInserted, this, countRowSignal);
    connect(&manager, &JobManager::rowsRemoved, this, countRowSignal);
    connect(&manager, &JobManager::rowsMoved, this, countRowSignal);
    connect(&manager, &JobManager::layoutChanged, this, countRowSignal);
}

void ManagerInvariants::onReset()
{
    expect(std::exchange(m_resetting, false), QStringLiteral("a reset ended that had not begun"));
    ++m_resets;
    m_outOfStep.clear();
    const QStringList ids = idsOf(m_manager);
    m_stayed.intersect(QSet<QString>(ids.begin(), ids.end()));
}

QStringList ManagerInvariants::faults()
{
    const QStringList ids = idsOf(m_manager);
    expect(!m_resetting, QStringLiteral("a reset has not ended"));
    expect(std::exchange(m_rowSignals, 0) == 0, QStringLiteral("rows changed outside of a reset"));
    checkRows(ids);
    checkCurrentJob();
    checkView(*m_manager.requiredJobs(), QStringLiteral("archived=false,current=false"));
    checkView(*m_manager.archivedJobs(), QStringLiteral("archived=true,current=false"));
    checkObjects(ids);
    return std::exchange(m_faults, {});
}

QStringList ManagerInvariants::idsOf(const QAbstractItemModel& model) const
{
    QStringList ids;
    for (int row = 0; row < model.rowCount(); ++row) {
        ids.append(model.index(row, 0).data(JobManager::JobIDRole).toString());
    }
    return ids;
}

void ManagerInvariants::checkRows(const QStringList& ids)
{
    expect(QSet<QString>(ids.begin(), ids.end()).size() == ids.size(), QStringLiteral("an id has two rows"));
    for (int row = 0; row < ids.size(); ++row) {
        checkRow(ids.at(row), row);
    }
}

void ManagerInvariants::checkRow(const QString& jobID, int row)
{
    Job* const job = m_manager.getJob(jobID);
    if (job == nullptr) {
        expect(false, QStringLiteral("row %1 has no job").arg(row));
        return;
    }
    const QModelIndex index = m_manager.index(row, 0);
    const QString archived = job->isArchived() ? QStringLiteral("true") : QStringLiteral("false");
    const QString current = m_manager.isCurrentJob(job) ? QStringLiteral("true") : QStringLiteral("false");
    expect(!jobID.isEmpty(), QStringLiteral("row %1 has no id").arg(row));
    expect(job->concreteTypeJobID() == jobID, QStringLiteral("the job of %1 has another id").arg(jobID));
    expect(m_manager.getJobIndex(*job) == row, QStringLiteral("the row of %1 is not known").arg(jobID));
    expect(m_manager.doesJobExist(jobID), QStringLiteral("%1 does not exist").arg(jobID));
    expect(job->worker() != nullptr, QStringLiteral("%1 has no worker").arg(jobID));
    expect(index.data(JobManager::JobRole).value<Job*>() == job, QStringLiteral("row %1 has another job").arg(row));
    expect(index.data(JobManager::JobSortRole).toString() == job->getModifiedOn(),
        QStringLiteral("row %1 sorts by something else").arg(row));
    expect(index.data(JobManager::FilterRole).toString()
            == QStringLiteral("archived=%1,current=%2").arg(archived, current),
        QStringLiteral("row %1 filters by something else").arg(row));
}

void ManagerInvariants::checkCurrentJob()
{
    Job* const current = m_manager.currentJob();
    if (current == nullptr) {
        return;
    }
    // While the service names a job that its list no longer has, the object is kept without a row.
    Job* const listed = m_manager.getJob(current->concreteTypeJobID());
    expect(listed == nullptr || listed == current, QStringLiteral("the current job is not the one of its row"));
    expect(m_manager.isCurrentJob(current), QStringLiteral("the current job is not current"));
}

void ManagerInvariants::checkView(QSortFilterProxyModel& view, const QString& filter)
{
    const auto inStep = [this](const QStringList& ids) {
        QStringList kept;
        for (const QString& jobID : ids) {
            if (!m_outOfStep.contains(jobID)) {
                kept.append(jobID);
            }
        }
        return kept;
    };
    const QStringList shown = inStep(idsOf(view));
    QStringList accepted;
    for (const QString& jobID : inStep(idsOf(m_manager))) {
        const QModelIndex index = m_manager.index(m_manager.getJobIndex(*m_manager.getJob(jobID)), 0);
        if (index.data(JobManager::FilterRole).toString() == filter) {
            accepted.append(jobID);
        }
    }
    for (int i = 1; i < shown.size(); ++i) {
        expect(m_manager.getJob(shown.at(i - 1))->getModifiedOn() >= m_manager.getJob(shown.at(i))->getModifiedOn(),
            QStringLiteral("the view of %1 is not sorted").arg(filter));
    }
    QStringList sortedShown = shown;
    sortedShown.sort();
    accepted.sort();
    expect(sortedShown == accepted,
        QStringLiteral("the view of %1 shows %2 instead of %3")
            .arg(filter, sortedShown.join(QLatin1Char(' ')), accepted.join(QLatin1Char(' '))));
}

void ManagerInvariants::checkObjects(const QStringList& ids)
{
    for (auto known = m_known.cbegin(); known != m_known.cend(); ++known) {
        if (m_stayed.contains(known.key())) {
            expect(!known->isNull() && *known == m_manager.getJob(known.key()),
                QStringLiteral("the object of %1 has not stayed").arg(known.key()));
        } else {
            expect(known->isNull() || *known == m_manager.currentJob(),
                QStringLiteral("the object of %1 has outlived its row").arg(known.key()));
        }
    }
    m_known.clear();
    for (const QString& jobID : ids) {
        m_known.insert(jobID, m_manager.getJob(jobID));
    }
    m_stayed = QSet<QString>(ids.begin(), ids.end());
}

void ManagerInvariants::expect(bool holds, const QString& sentence)
{
    if (!holds) {
        m_faults.append(sentence);
    }
}
