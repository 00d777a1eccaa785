#pragma once

#include "api/cdm/CdmSouthboundJob.h"
#include "client/RestApiJobManager.h"

#include <cstddef>
#include <QHash>
#include <QList>
#include <QString>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace jobmanager_ui {

/// What the REST implementation has learnt from the job service: the job list as summaries, and the full records
/// of single jobs. Filled by commits, and by a blocking fetch of its own when a read finds nothing.
///
/// Main thread only; takes no lock. Pointers that reads return point into the cache: they last until the next
/// clear, commit or fetch, so use them at once and keep none. Nothing here throws for bad data, and no failure of
/// the service shows but in what it delivered.
class JobManagerRestAPICache
{
public:
    /// Key and value pairs of one test's configuration.
    using TestConfig = std::vector<std::pair<std::string, std::string>>;

    /// Starts empty. The client stays the caller's and must outlive the cache.
    explicit JobManagerRestAPICache(RestApiJobManager& client);

    /// True if the job list can be read without a fetch.
    bool isJobListFetched() const;
    /// True if the job's record can be read without a fetch. Never fetches.
    bool isJobCached(QString jobId) const;
    /// Ids of the jobs whose records are held, in no order.
    QList<QString> getListOfCachedJobs() const;
    /// Ids of the jobs that test configurations are held for, in no order.
    QList<QString> getListOfCachedJobConfigs() const;

    /// Replaces the job list; an empty one is valid too. The records stay, also of jobs that have left the list.
    void addToCache(const std::vector<RestApiJobManager::MinimalJobInfo>& jobs);
    /// Stores a record under its own `details.id`, replacing the one there.
    void addToCache(cdm::CdmSouthboundJob job);

    /// Fetches the job list, blocking, if it is not valid.
    void fetchJobListIfRequired();
    /// The job ids in the order of the list; fetches a list that is not valid.
    const std::vector<QString>& getJobList();
    /// The job's summary, or null with a warning for an unknown job; fetches a list that is not valid.
    const RestApiJobManager::MinimalJobInfo* getMinimalJobInfo(const QString& jobId);

    /// Fetches the job's record, blocking, if none is held under that id. What comes is filed under the requested
    /// id, whatever its own is, so that the service is asked for an id only once.
    void fetchJobIfRequired(const QString& jobId);
    /// The job's record; fetches it if there is none. It may be patched in place, but for its list of tests and their
    /// index strings: what finds them is built once a record.
    cdm::CdmSouthboundJob* getCdmJob(const QString& jobId);
    /// The first test with the test id's index string, its location left out of account; null if there is none.
    /// Fetches the job's record if there is none. Takes constant time, but for the first call on a record.
    cdm::Test* getCdmTest(const QString& jobId, long long testId);
    /// The location at that position of the test's list; null outside it.
    cdm::TestLocation* getCdmTestLocation(cdm::Test& test, int locationIndex) const;
    /// The configuration held for that test, or null. Never fetches.
    const TestConfig* getCdmTestConfigs(const QString& jobId, long long testId);

    /// Logs what is held, then forgets it: the next read fetches.
    void clear();

private:
    /// Position in a job's list of tests, by index string.
    using TestPositions = std::unordered_map<std::string, std::size_t>;

    static TestPositions positionsOf(const std::vector<cdm::Test>& tests);
    void store(const QString& jobId, cdm::CdmSouthboundJob job);

    RestApiJobManager& m_client;
    bool m_jobListFetched = false;
    std::vector<QString> m_jobIds;
    QHash<QString, RestApiJobManager::MinimalJobInfo> m_minimalJobInfos;
    QHash<QString, cdm::CdmSouthboundJob> m_cdmJobs;
    QHash<QString, QHash<long long, TestConfig>> m_testConfigs;
    /// Of the records whose tests were asked for, by job id; gone when the record is.
    QHash<QString, TestPositions> m_testPositions;
};

} // namespace jobmanager_ui
