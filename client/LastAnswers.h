#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

namespace job_client {

/// The last good answers of one service, as text, for the time when it does not answer. Thread-safe.
///
/// Kept as text, an answer costs its reader nothing while the service is well.
class LastAnswers
{
public:
    /// Keeps the answer to one of the reads of which there is only one each (list, settings, ...).
    void keep(const std::string& path, std::string answer);

    /// Keeps the answer to the read of a job. Of these, the eight used last stay, and together no more than 64 MiB.
    void keepJob(const std::string& path, std::string answer);

    /// Drops the answer of a job that the service does not know any more.
    void forgetJob(const std::string& path);

    /// The answer kept last for a path, or null.
    std::shared_ptr<const std::string> find(const std::string& path);

private:
    using Text = std::shared_ptr<const std::string>;
    struct KeptJob
    {
        std::string path;
        Text answer;
    };
    using Jobs = std::list<KeptJob>;

    Jobs::iterator findJob(const std::string& path);
    void dropJob(Jobs::iterator job);

    std::mutex m_mutex;
    std::unordered_map<std::string, Text> m_answers;
    // The one used last stands first.
    Jobs m_jobs;
    std::size_t m_bytesOfJobs = 0;
};

} // namespace job_client
