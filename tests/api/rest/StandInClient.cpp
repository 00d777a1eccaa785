#include "tests/api/rest/StandInClient.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <mutex>

using namespace jobmanager_test;

namespace {

struct Script
{
    std::mutex mutex;
    ClientAnswers answers;
    std::vector<ClientCall> calls;
    std::function<void(const ClientCall&)> hook;
};

Script& script()
{
    static Script instance;
    return instance;
}

std::string flagText(bool flag)
{
    return flag ? "true" : "false";
}

} // namespace

void StandInClient::reset()
{
    const std::lock_guard lock(script().mutex);
    script().answers = ClientAnswers();
    script().calls.clear();
    script().hook = nullptr;
}

void StandInClient::setAnswers(ClientAnswers answers)
{
    const std::lock_guard lock(script().mutex);
    script().answers = std::move(answers);
}

void StandInClient::setHook(std::function<void(const ClientCall&)> hook)
{
    const std::lock_guard lock(script().mutex);
    script().hook = std::move(hook);
}

std::vector<ClientCall> StandInClient::calls()
{
    const std::lock_guard lock(script().mutex);
    return script().calls;
}

std::vector<ClientCall> StandInClient::calls(const std::string& operation)
{
    const std::vector<ClientCall> all = calls();
    std::vector<ClientCall> some;
    std::copy_if(all.begin(), all.end(), std::back_inserter(some),
        [&operation](const ClientCall& call) { return call.operation == operation; });
    return some;
}

std::vector<std::string> StandInClient::operations()
{
    std::vector<std::string> names;
    for (const ClientCall& call : calls())
        names.push_back(call.operation);
    return names;
}

void StandInClient::forgetCalls()
{
    const std::lock_guard lock(script().mutex);
    script().calls.clear();
}

class RestApiJobManager::Private
{
public:
    Private(RestApiJobManager& client, const std::string& host) : m_client(client)
    {
        client.serviceAddress = "stand-in " + std::to_string(m_number) + " of " + host;
    }

    /// Records the call and gives the answers as they are once the hook has returned.
    ClientAnswers record(std::string operation, std::vector<std::string> arguments = {}) const
    {
        const ClientCall call{ std::move(operation), std::move(arguments), std::this_thread::get_id(), m_number,
            m_client.serviceAddress, m_client.servicePort };
        std::function<void(const ClientCall&)> hook;
        {
            const std::lock_guard lock(script().mutex);
            script().calls.push_back(call);
            hook = script().hook;
        }
        if (hook)
            hook(call);
        const std::lock_guard lock(script().mutex);
        return script().answers;
    }

    /// Records the call of an operation that answers with its success.
    bool recordWrite(const std::string& operation, std::vector<std::string> arguments) const
    {
        const ClientAnswers answers = record(operation, std::move(arguments));
        const auto found = answers.success.find(operation);
        return found == answers.success.end() || found->second;
    }

private:
    static int nextNumber()
    {
        static std::atomic<int> last = 0;
        return ++last;
    }

    const RestApiJobManager& m_client;
    const int m_number = nextNumber();
};

RestApiJobManager::RestApiJobManager(std::string host, unsigned short port)
    : serviceAddress(std::string())
    , servicePort(port)
    , d(std::make_unique<Private>(*this, host))
{
    d->record("RestApiJobManager", { host, std::to_string(port) });
}

RestApiJobManager::~RestApiJobManager() = default;

std::vector<RestApiJobManager::MinimalJobInfo> RestApiJobManager::getJobList() const
{
    return d->record("getJobList").jobList;
}

cdm::CdmSouthboundJob RestApiJobManager::getJob(std::string id) const
{
    ClientAnswers answers = d->record("getJob", { id });
    return std::move(answers.jobs[id]);
}

int RestApiJobManager::getChangeCount() const
{
    return d->record("getChangeCount").changeCount;
}

std::string RestApiJobManager::getActiveWorkorderID() const
{
    return d->record("getActiveWorkorderID").activeWorkorderID;
}

bool RestApiJobManager::setActiveWorkorderID(const std::string& id)
{
    return d->recordWrite("setActiveWorkorderID", { id });
}

bool RestApiJobManager::newJob(const std::string& workOrderNo, std::string techID, std::string templateName,
    std::string locationsFilename, bool syncJobToNimbrel)
{
    return d->recordWrite(
        "newJob", { workOrderNo, techID, templateName, locationsFilename, flagText(syncJobToNimbrel) });
}

bool RestApiJobManager::deleteJob(const std::string& id)
{
    return d->recordWrite("deleteJob", { id });
}

bool RestApiJobManager::archiveJob(const std::string& id)
{
    return d->recordWrite("archiveJob", { id });
}

bool RestApiJobManager::restoreJob(const std::string& id)
{
    return d->recordWrite("restoreJob", { id });
}

RestApiJobManager::LaunchTestResult RestApiJobManager::launchTest(const std::string& uiIndex)
{
    return d->record("launchTest", { uiIndex }).launchResult;
}

bool RestApiJobManager::setManualTestResponse(
    const std::string& text1, const std::string& text2, const std::string& uiIndex)
{
    return d->recordWrite("setManualTestResponse", { text1, text2, uiIndex });
}

bool RestApiJobManager::updateWorkflowAttributes(const std::string& jobId, const nlohmann::json& update)
{
    return d->recordWrite("updateWorkflowAttributes", { jobId, update.dump() });
}

std::string RestApiJobManager::exportJobData(const std::string& jobId, const std::string& folder)
{
    return d->record("exportJobData", { jobId, folder }).exportPath;
}

int RestApiJobManager::importJobs(const std::string& path)
{
    return d->record("importJobs", { path }).importedJobs;
}

bool RestApiJobManager::exchangeCurrentJob(const std::string& devicePath, std::string second)
{
    return d->recordWrite("exchangeCurrentJob", { devicePath, second });
}

std::vector<std::string> RestApiJobManager::getTemplateList()
{
    return d->record("getTemplateList").templates;
}

int RestApiJobManager::getTemplateNumberOfTests(const std::string& templateName)
{
    return d->record("getTemplateNumberOfTests", { templateName }).templateNumberOfTests;
}

std::string RestApiJobManager::getTemplateWorkOrderLabel(const std::string& templateName)
{
    return d->record("getTemplateWorkOrderLabel", { templateName }).templateWorkOrderLabel;
}

std::map<std::string, std::string> RestApiJobManager::getSettingsListInfo() const
{
    return d->record("getSettingsListInfo").settings;
}

void RestApiJobManager::writeSetting(const std::string& id, const std::string& value)
{
    d->record("writeSetting", { id, value });
}

void RestApiJobManager::setUiGroupType(const std::string& groupType)
{
    d->record("setUiGroupType", { groupType });
}

RestApiJobManager::InstrumentLoginConfig RestApiJobManager::getInstrumentLoginConfig() const
{
    return d->record("getInstrumentLoginConfig").loginConfig;
}
