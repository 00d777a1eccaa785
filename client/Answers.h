#pragma once

#include "api/cdm/CdmSouthboundJob.h"
#include "client/HttpOutcome.h"
#include "client/RestApiJobManager.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// Reads the answers of the job service (docs/job-service-api.md). Every reader gives nothing for a text that is not
/// such an answer, whole and with members of the right types, and throws nothing but std::bad_alloc. Members that an
/// answer has beyond these are ignored.
namespace job_client::answers {

/// What a client wants to know of a job template.
struct JobTemplate
{
    std::string workOrderLabel;
    int numberOfTests = 0;
};

/// Whether the service answered with this status and JSON.
bool isJsonAnswer(const HttpOutcome& outcome, long status);

/// Whether the service itself says that it has no such job, and not just any server that has no such page.
bool isUnknownJob(const HttpOutcome& outcome);

std::optional<std::int64_t> changeCount(const std::string& body);
/// The list is good only as a whole. Of a summary, the id alone must be there.
std::optional<std::vector<RestApiJobManager::MinimalJobInfo>> jobList(const std::string& body);
std::optional<cdm::CdmSouthboundJob> job(const std::string& body);
std::optional<std::string> activeJob(const std::string& body);
std::optional<std::string> newJob(const std::string& body);
std::optional<RestApiJobManager::LaunchTestResult> launch(const std::string& body);
std::optional<std::string> exportedPath(const std::string& body);
std::optional<int> importedJobs(const std::string& body);
std::optional<std::vector<std::string>> templateNames(const std::string& body);
std::optional<JobTemplate> jobTemplate(const std::string& body);
std::optional<std::map<std::string, std::string>> settings(const std::string& body);
std::optional<RestApiJobManager::InstrumentLoginConfig> loginConfig(const std::string& body);

} // namespace job_client::answers
