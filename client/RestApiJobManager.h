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
/// Every operation blocks until the service has answered or its deadline has passed: 90 ms for the change count and
/// the other small requests of a main thread (active job, settings, group type, login configuration), 60 s for
/// launches and transfers, 5 s for all else. Every operation may be called from several threads at once, and none
/// waits for another one. None throws: a failure shows in the result alone.
///
/// A read that the service does not answer gives the last good answer of the same service, so that an outage never
/// looks like a change; what it gives without one stands with each operation. The same holds for an answer that
/// cannot be used. A write is sent at most once; false means that the service refused it or that its fate is unknown.
///
/// A service that hangs costs little: after two deadlines missed in a row, or one missed by the job list or a job,
/// every operation fails at once, until the service has answered a probe. The client probes on a thread of its own,
/// which exists only for that time. Standard error tells in one line each when a service is lost and when it is back.
///
/// Construction starts nothing and connects nowhere. Destruction must not overlap with a call.
///
/// All strings are UTF-8.
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

    /// `host` is an IPv4 or IPv6 address, or "localhost" for 127.0.0.1. Names are not looked up: under any other
    /// host no service is ever reached.
    RestApiJobManager(std::string host, unsigned short port);
    ~RestApiJobManager();
    RestApiJobManager(const RestApiJobManager&) = delete;
    RestApiJobManager& operator=(const RestApiJobManager&) = delete;

    /// All jobs of the service, archived ones included, in its order. Without an answer the list read last; empty if
    /// none was.
    std::vector<MinimalJobInfo> getJobList() const;

    /// The full record of one job. A default record for a job that the service does not know. Without an answer the
    /// record read last, as long as the job is among the last few read, else a default record that holds `id` as
    /// its details.id.
    cdm::CdmSouthboundJob getJob(std::string id) const;

    /// A counter that moves whenever job data of the service change: by one for each change made through the service.
    /// Without an answer the count given last; 0 if none was. Once after an outage, it differs from the one given
    /// last by at least two, whatever the service itself counts: a caller that takes a step of one for its own
    /// change reads everything again then.
    int getChangeCount() const;

    /// Id of the current job; empty if there is none. Without an answer the one read last; empty if none was.
    std::string getActiveWorkorderID() const;

    /// Makes a job the current one; the empty id clears it. True if the service did.
    bool setActiveWorkorderID(const std::string& id);

    /// Creates a job from the template of this name (may be empty), with its locations from a file (may be empty).
    /// True if the service did.
    bool newJob(const std::string& workOrderNo, std::string techID, std::string templateName,
        std::string locationsFilename, bool syncJobToNimbrel);

    /// Removes a job. True if the service did.
    bool deleteJob(const std::string& id);

    /// Archives a job. True if the service did.
    bool archiveJob(const std::string& id);

    /// Undoes archiveJob(). True if the service did.
    bool restoreJob(const std::string& id);

    /// Launches the test or location with this index string and returns when the launch has an outcome. The message
    /// of a launch that failed is never empty; it is "ERROR_CAN_LAUNCH_FAILED_TO_RUN" where the service names no
    /// reason.
    LaunchTestResult launchTest(const std::string& uiIndex);

    /// Records the answer of a manual step for the test or location with this index string: `text1` is the answer.
    /// True if the service did.
    bool setManualTestResponse(const std::string& text1, const std::string& text2, const std::string& uiIndex);

    /// Merges `update` into the details of a job: only the members present change. True if the service did.
    bool updateWorkflowAttributes(const std::string& jobId, const nlohmann::json& update);

    /// Writes a job's data below `folder`. The path written; empty on failure.
    std::string exportJobData(const std::string& jobId, const std::string& folder);

    /// Imports the jobs at `path`. How many were imported; 0 on failure.
    int importJobs(const std::string& path);

    /// Exchanges the current job with the device at this node. `second` is passed on; it is ordinarily empty. True if
    /// the service did.
    bool exchangeCurrentJob(const std::string& devicePath, std::string second);

    /// Names of the job templates; empty on failure.
    std::vector<std::string> getTemplateList();

    /// How many tests a template prescribes; 0 on failure.
    int getTemplateNumberOfTests(const std::string& templateName);

    /// The work order label that a template prescribes; empty on failure.
    std::string getTemplateWorkOrderLabel(const std::string& templateName);

    /// All settings, id to value. Without an answer those read last; empty if none were.
    std::map<std::string, std::string> getSettingsListInfo() const;

    /// Stores one setting.
    void writeSetting(const std::string& id, const std::string& value);

    /// Tells the service how the interface groups tests: "job_order", "location" or "testtype".
    void setUiGroupType(const std::string& groupType);

    /// The login configuration of the instrument. Without an answer the one read last; empty texts if none was.
    InstrumentLoginConfig getInstrumentLoginConfig() const;

    /// Where the instance connects, derived from the host: the host itself, an IPv6 address in brackets. Assigning is
    /// safe while another thread is inside a call, which still ends with the service it was begun with. Nothing that
    /// was remembered of another address or port is used afterwards.
    GuardedAddress serviceAddress;
    /// The port of the service. Assigning is as safe as with the address.
    GuardedPort servicePort;

private:
    class Private;
    std::unique_ptr<Private> d;
};
