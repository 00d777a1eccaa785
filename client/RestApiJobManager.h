#pragma once

#include "api/cdm/CdmSouthboundJob.h"
#include "client/GuardedEndpoint.h"
#include "client/JobManagerExport.h"

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// Client of the local job service.
///
/// Every operation blocks until the service has answered or its deadline has passed, may be called from
/// several threads at once, and never throws: a failure shows in the result alone. Construction starts
/// nothing and connects nowhere.
class JOB_MANAGER_EXPORT RestApiJobManager
{
public:
    /// Summary of one job in the job list. All strings are UTF-8.
    struct MinimalJobInfo
    {
        std::string id;
        std::string workOrderLabel;
        std::string workflowTypeName;
        std::string customerName;
        std::string modifiedOn;
        std::string managedByInfo;
        std::string managementState;
        std::vector<std::string> teamTechIds;
        bool archived = false;
        int totalNumberOfRequiredTests = 0;
        int numberOfCompletedRequiredTests = 0;
    };

    /// Outcome of a launch: accepted, or an error token of the service's status vocabulary.
    struct LaunchTestResult
    {
        bool success = false;
        std::string message;
    };

    /// Login configuration of the instrument: the technician, and two texts that nobody here reads.
    struct InstrumentLoginConfig
    {
        std::string techId;
        std::string opaqueText1;
        std::string opaqueText2;
    };

    RestApiJobManager(std::string host, unsigned short port);
    ~RestApiJobManager();
    RestApiJobManager(const RestApiJobManager&) = delete;
    RestApiJobManager& operator=(const RestApiJobManager&) = delete;

    std::vector<MinimalJobInfo> getJobList() const;
    cdm::CdmSouthboundJob getJob(std::string id) const;
    int getChangeCount() const;
    std::string getActiveWorkorderID() const;
    bool setActiveWorkorderID(const std::string& id);
    bool newJob(const std::string& workOrderNo, std::string techID, std::string templateName,
        std::string locationsFilename, bool syncJobToNimbrel);
    bool deleteJob(const std::string& id);
    bool archiveJob(const std::string& id);
    bool restoreJob(const std::string& id);
    LaunchTestResult launchTest(const std::string& uiIndex);
    bool setManualTestResponse(const std::string& text1, const std::string& text2, const std::string& uiIndex);
    bool updateWorkflowAttributes(const std::string& jobId, const nlohmann::json& update);
    std::string exportJobData(const std::string& jobId, const std::string& folder);
    int importJobs(const std::string& path);
    bool exchangeCurrentJob(const std::string& devicePath, std::string second);
    std::vector<std::string> getTemplateList();
    int getTemplateNumberOfTests(const std::string& templateName);
    std::string getTemplateWorkOrderLabel(const std::string& templateName);
    std::map<std::string, std::string> getSettingsListInfo() const;
    void writeSetting(const std::string& id, const std::string& value);
    void setUiGroupType(const std::string& groupType);
    InstrumentLoginConfig getInstrumentLoginConfig() const;

    /// Where the instance connects. Assigning is safe while another thread is inside a call.
    GuardedAddress serviceAddress;
    /// The port of the service. Assigning is safe while another thread is inside a call.
    GuardedPort servicePort;

private:
    class Private;
    std::unique_ptr<Private> d;
};
