#include "client/LastAnswers.h"

#include <algorithm>
#include <utility>

namespace job_client {

namespace {

constexpr std::size_t mostJobs = 8;
constexpr std::size_t mostBytesOfJobs = std::size_t{ 64 } * 1024 * 1024;

/// What came in pieces has room to spare, which is given back.
std::shared_ptr<const std::string> kept(std::string answer)
{
    answer.shrink_to_fit();
    return std::make_shared<const std::string>(std::move(answer));
}

} // namespace

void LastAnswers::keep(const std::string& path, std::string answer)
{
    Text text = kept(std::move(answer));
    const std::lock_guard lock(m_mutex);
    // The old text goes after the lock.
    m_answers[path].swap(text);
}

void LastAnswers::keepJob(const std::string& path, std::string answer)
{
    Text text = kept(std::move(answer));
    const std::lock_guard lock(m_mutex);
    const auto old = findJob(path);
    if (old != m_jobs.end())
        dropJob(old);
    m_bytesOfJobs += text->size();
    m_jobs.push_front({ path, std::move(text) });
    while (m_jobs.size() > mostJobs || m_bytesOfJobs > mostBytesOfJobs)
        dropJob(std::prev(m_jobs.end()));
}

void LastAnswers::forgetJob(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    const auto job = findJob(path);
    if (job != m_jobs.end())
        dropJob(job);
}

std::shared_ptr<const std::string> LastAnswers::find(const std::string& path)
{
    const std::lock_guard lock(m_mutex);
    const auto job = findJob(path);
    if (job != m_jobs.end()) {
        m_jobs.splice(m_jobs.begin(), m_jobs, job);
        return job->answer;
    }
    const auto answer = m_answers.find(path);
    return answer == m_answers.end() ? nullptr : answer->second;
}

LastAnswers::Jobs::iterator LastAnswers::findJob(const std::string& path)
{
    return std::find_if(m_jobs.begin(), m_jobs.end(), [&path](const KeptJob& job) { return job.path == path; });
}

void LastAnswers::dropJob(Jobs::iterator job)
{
    m_bytesOfJobs -= job->answer->size();
    m_jobs.erase(job);
}

} // namespace job_client
