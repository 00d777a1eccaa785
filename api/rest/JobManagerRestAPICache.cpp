#include "api/rest/JobManagerRestAPICache.h"

#include "api/Logging.h"
#include "api/rest/TestIdentifiers.h"

#include <algorithm>
#include <QDebug>

namespace jobmanager_ui {

JobManagerRestAPICache::JobManagerRestAPICache(RestApiJobManager& client) : m_client(client)
{
}

bool JobManagerRestAPICache::isJobListFetched() const
{
    return m_jobListFetched;
}

bool JobManagerRestAPICache::isJobCached(QString jobId) const
{
    return m_cdmJobs.contains(jobId);
}

QList<QString> JobManagerRestAPICache::getListOfCachedJobs() const
{
    return m_cdmJobs.keys();
}

QList<QString> JobManagerRestAPICache::getListOfCachedJobConfigs() const
{
    return m_testConfigs.keys();
}

void JobManagerRestAPICache::addToCache(const std::vector<RestApiJobManager::MinimalJobInfo>& jobs)
{
    m_jobIds.clear();
    m_minimalJobInfos.clear();
    m_jobIds.reserve(jobs.size());
    m_minimalJobInfos.reserve(std::max(1, static_cast<int>(jobs.size())));
    for (const RestApiJobManager::MinimalJobInfo& job : jobs) {
        const QString id = QString::fromStdString(job.id);
        m_jobIds.push_back(id);
        m_minimalJobInfos.insert(id, job);
    }
    m_jobListFetched = true;
}

void JobManagerRestAPICache::addToCache(cdm::CdmSouthboundJob job)
{
    const QString id = QString::fromStdString(job.details.id);
    store(id, std::move(job));
}

void JobManagerRestAPICache::store(const QString& jobId, cdm::CdmSouthboundJob job)
{
    m_testPositions.remove(jobId);
    m_cdmJobs[jobId] = std::move(job);
}

void JobManagerRestAPICache::fetchJobListIfRequired()
{
    if (m_jobListFetched)
        return;
    qCDebug(logCategory) << "JobManagerRestAPICache: fetching job list";
    addToCache(m_client.getJobList());
}

const std::vector<QString>& JobManagerRestAPICache::getJobList()
{
    fetchJobListIfRequired();
    return m_jobIds;
}

const RestApiJobManager::MinimalJobInfo* JobManagerRestAPICache::getMinimalJobInfo(const QString& jobId)
{
    fetchJobListIfRequired();
    const auto found = m_minimalJobInfos.constFind(jobId);
    if (found == m_minimalJobInfos.constEnd()) {
        qCWarning(logCategory) << "Failed to get minimal job info for: " << jobId;
        return nullptr;
    }
    return &found.value();
}

void JobManagerRestAPICache::fetchJobIfRequired(const QString& jobId)
{
    if (m_cdmJobs.contains(jobId))
        return;
    qCDebug(logCategory) << "JobManagerRestAPICache: fetching job: " << jobId;
    // The call comes before the entry: a reader never meets one that is not filled.
    store(jobId, m_client.getJob(jobId.toStdString()));
}

cdm::CdmSouthboundJob* JobManagerRestAPICache::getCdmJob(const QString& jobId)
{
    fetchJobIfRequired(jobId);
    const auto found = m_cdmJobs.find(jobId);
    return found == m_cdmJobs.end() ? nullptr : &found.value();
}

cdm::Test* JobManagerRestAPICache::getCdmTest(const QString& jobId, long long testId)
{
    cdm::CdmSouthboundJob* const job = getCdmJob(jobId);
    if (!job || !job->tests)
        return nullptr;
    auto positions = m_testPositions.find(jobId);
    if (positions == m_testPositions.end())
        positions = m_testPositions.insert(jobId, positionsOf(*job->tests));
    const auto found = positions->find(getTestUiIndexFromTestId(testId));
    return found == positions->end() ? nullptr : &(*job->tests)[found->second];
}

JobManagerRestAPICache::TestPositions JobManagerRestAPICache::positionsOf(const std::vector<cdm::Test>& tests)
{
    TestPositions positions;
    positions.reserve(tests.size());
    for (std::size_t position = 0; position < tests.size(); ++position) {
        // Does nothing for an index string that is there: the first test goes before later ones.
        if (tests[position].uiIndex)
            positions.emplace(*tests[position].uiIndex, position);
    }
    return positions;
}

cdm::TestLocation* JobManagerRestAPICache::getCdmTestLocation(cdm::Test& test, int locationIndex) const
{
    if (!test.testLocations || locationIndex < 0)
        return nullptr;
    const auto position = static_cast<std::size_t>(locationIndex);
    return position < test.testLocations->size() ? &(*test.testLocations)[position] : nullptr;
}

const JobManagerRestAPICache::TestConfig* JobManagerRestAPICache::getCdmTestConfigs(
    const QString& jobId, long long testId)
{
    const auto job = m_testConfigs.constFind(jobId);
    if (job == m_testConfigs.constEnd())
        return nullptr;
    const auto test = job->constFind(testId);
    return test == job->constEnd() ? nullptr : &test.value();
}

void JobManagerRestAPICache::clear()
{
    qCDebug(logCategory) << "Cache content: ";
    qCDebug(logCategory) << "  -> Is job list cached: " << m_jobListFetched;
    qCDebug(logCategory) << "  -> Cached CdmJobs: " << getListOfCachedJobs();
    qCDebug(logCategory) << "  -> Cached test configurations: " << getListOfCachedJobConfigs();
    qCDebug(logCategory) << "Clearing cache";
    // The job ids and summaries stay as they are: with the flag down nobody sees them before the next list.
    m_jobListFetched = false;
    m_cdmJobs.clear();
    m_testPositions.clear();
    m_testConfigs.clear();
}

} // namespace jobmanager_ui
