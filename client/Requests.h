#pragma once

#include "client/HttpRequest.h"

#include <nlohmann/json.hpp>
#include <string>

/// The requests of the job service's interface (docs/job-service-api.md), one function each. They throw nothing but
/// std::bad_alloc; bytes that are not UTF-8 reach the service as U+FFFD where they stand in a body.
namespace job_client::requests {

HttpRequest changeCount();
HttpRequest jobList();
HttpRequest job(const std::string& id);
HttpRequest activeJob();
HttpRequest setActiveJob(const std::string& id);
HttpRequest newJob(const std::string& workOrderNo, const std::string& techId, const std::string& templateName,
    const std::string& locationsFilename, bool syncToNimbrel);
HttpRequest deleteJob(const std::string& id);
HttpRequest archiveJob(const std::string& id);
HttpRequest restoreJob(const std::string& id);
HttpRequest launch(const std::string& uiIndex);
HttpRequest manualResponse(const std::string& text1, const std::string& text2, const std::string& uiIndex);
HttpRequest updateJob(const std::string& id, const nlohmann::json& update);
HttpRequest exportJob(const std::string& jobId, const std::string& folder);
HttpRequest importJobs(const std::string& path);
HttpRequest exchangeJob(const std::string& devicePath, const std::string& second);
HttpRequest templateList();
HttpRequest jobTemplate(const std::string& name);
HttpRequest settings();
HttpRequest writeSetting(const std::string& id, const std::string& value);
HttpRequest setUiGroupType(const std::string& groupType);
HttpRequest loginConfig();

} // namespace job_client::requests
