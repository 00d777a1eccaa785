#include "client/RestApiJobManager.h"

#include "client/Answers.h"
#include "client/Requests.h"
#include "client/ServiceAddress.h"
#include "client/ServiceConnection.h"

#include <atomic>
#include <mutex>
#include <utility>

namespace answers = job_client::answers;
namespace requests = job_client::requests;

using job_client::Endpoint;
using job_client::HttpOutcome;
using job_client::HttpRequest;
using job_client::ServiceConnection;

namespace {

constexpr long httpOk = 200;
constexpr long httpCreated = 201;
constexpr long httpNoContent = 204;

/// The launch status for a launch of which the service itself says nothing. A launch that fails with an empty
/// message would be taken for one that succeeded.
constexpr const char* launchFailed = "ERROR_CAN_LAUNCH_FAILED_TO_RUN";

/// For an answer of which the service's "accepted" is all that counts.
bool isAccepted(const HttpOutcome& outcome)
{
    return outcome.kind == HttpOutcome::Kind::Answered && outcome.status == httpNoContent;
}

/// Runs an operation. Whatever it throws, out of memory above all, makes it fail with `otherwise`.
template <typename Result, typename Operation> Result guarded(Result otherwise, Operation operation) noexcept
{
    try {
        return operation();
    } catch (...) {
        return otherwise;
    }
}

} // namespace

class RestApiJobManager::Private
{
public:
    ~Private();

    /// The service that the client is pointed at now.
    std::shared_ptr<ServiceConnection> connection(const RestApiJobManager& client);

    /// A read whose last good answer is given if there is no new one.
    template <typename Value>
    Value readOrRecall(const RestApiJobManager& client, const HttpRequest& request,
        std::optional<Value> (*decode)(const std::string&));

    /// A read or a write whose answer has a body.
    template <typename Value>
    Value ask(const RestApiJobManager& client, const HttpRequest& request, long status,
        std::optional<Value> (*decode)(const std::string&), Value otherwise);

    bool write(const RestApiJobManager& client, const HttpRequest& request);

    std::optional<cdm::CdmSouthboundJob> readJob(ServiceConnection& service, const std::string& id);

    /// Copying it takes no memory, so that a job can be given even if there is none.
    const cdm::CdmSouthboundJob blankJob = [] {
        cdm::CdmSouthboundJob job;
        job.details.timestamp.value = std::string();
        return job;
    }();

private:
    std::atomic<int> m_givenCount{ 0 };
    std::mutex m_mutex;
    std::shared_ptr<ServiceConnection> m_connection;
};

RestApiJobManager::Private::~Private() = default;

std::shared_ptr<ServiceConnection> RestApiJobManager::Private::connection(const RestApiJobManager& client)
{
    std::shared_ptr<ServiceConnection> left;
    std::shared_ptr<ServiceConnection> current;
    {
        const std::lock_guard lock(m_mutex);
        // Read below the lock: a thread that was slow must not turn the client back to where it was pointed before.
        const Endpoint endpoint{ client.serviceAddress, client.servicePort };
        if (!m_connection || !(m_connection->endpoint() == endpoint)) {
            left = std::exchange(m_connection, std::make_shared<ServiceConnection>(endpoint, m_givenCount));
        }
        current = m_connection;
    }
    if (left)
        left->retire();
    return current;
}

template <typename Value>
Value RestApiJobManager::Private::readOrRecall(
    const RestApiJobManager& client, const HttpRequest& request, std::optional<Value> (*decode)(const std::string&))
{
    const auto service = connection(client);
    auto fresh = guarded(std::optional<Value>(), [&] {
        HttpOutcome outcome = service->exchange(request);
        auto value = answers::isJsonAnswer(outcome, httpOk) ? decode(outcome.body) : std::nullopt;
        if (value)
            service->lastAnswers().keep(request.path, std::move(outcome.body));
        return value;
    });
    if (fresh)
        return std::move(*fresh);
    const auto kept = service->lastAnswers().find(request.path);
    return kept ? decode(*kept).value_or(Value()) : Value();
}

template <typename Value>
Value RestApiJobManager::Private::ask(const RestApiJobManager& client, const HttpRequest& request, long status,
    std::optional<Value> (*decode)(const std::string&), Value otherwise)
{
    const HttpOutcome outcome = connection(client)->exchange(request);
    if (!answers::isJsonAnswer(outcome, status))
        return otherwise;
    return decode(outcome.body).value_or(std::move(otherwise));
}

bool RestApiJobManager::Private::write(const RestApiJobManager& client, const HttpRequest& request)
{
    return isAccepted(connection(client)->exchange(request));
}

/// The job, a default record if the service does not know it, or nothing if the service did not tell.
std::optional<cdm::CdmSouthboundJob> RestApiJobManager::Private::readJob(
    ServiceConnection& service, const std::string& id)
{
    const HttpRequest request = requests::job(id);
    auto fresh = guarded(std::optional<cdm::CdmSouthboundJob>(), [&] {
        HttpOutcome outcome = service.exchange(request);
        if (answers::isUnknownJob(outcome)) {
            service.lastAnswers().forgetJob(request.path);
            return std::optional(cdm::CdmSouthboundJob());
        }
        auto job = answers::isJsonAnswer(outcome, httpOk) ? answers::job(outcome.body) : std::nullopt;
        if (job)
            service.lastAnswers().keepJob(request.path, std::move(outcome.body));
        return job;
    });
    if (fresh)
        return fresh;
    const auto kept = service.lastAnswers().find(request.path);
    return kept ? answers::job(*kept) : std::nullopt;
}

RestApiJobManager::RestApiJobManager(std::string host, unsigned short port)
    : serviceAddress(job_client::serviceAddressOf(std::move(host)))
    , servicePort(port)
    , d(std::make_unique<Private>())
{
}

RestApiJobManager::~RestApiJobManager() = default;

std::vector<RestApiJobManager::MinimalJobInfo> RestApiJobManager::getJobList() const
{
    return guarded(std::vector<MinimalJobInfo>(),
        [this] { return d->readOrRecall(*this, requests::jobList(), answers::jobList); });
}

cdm::CdmSouthboundJob RestApiJobManager::getJob(std::string id) const
{
    return guarded(d->blankJob, [&] {
        auto job = d->readJob(*d->connection(*this), id);
        if (job)
            return std::move(*job);
        cdm::CdmSouthboundJob unread;
        unread.details.id = std::move(id);
        return unread;
    });
}

int RestApiJobManager::getChangeCount() const
{
    return guarded(0, [this] { return d->connection(*this)->changeCount(); });
}

std::string RestApiJobManager::getActiveWorkorderID() const
{
    return guarded(std::string(), [this] { return d->readOrRecall(*this, requests::activeJob(), answers::activeJob); });
}

bool RestApiJobManager::setActiveWorkorderID(const std::string& id)
{
    return guarded(false, [&] { return d->write(*this, requests::setActiveJob(id)); });
}

bool RestApiJobManager::newJob(const std::string& workOrderNo, std::string techID, std::string templateName,
    std::string locationsFilename, bool syncJobToNimbrel)
{
    return guarded(false, [&] {
        const auto request = requests::newJob(workOrderNo, techID, templateName, locationsFilename, syncJobToNimbrel);
        return !d->ask(*this, request, httpCreated, answers::newJob, std::string()).empty();
    });
}

bool RestApiJobManager::deleteJob(const std::string& id)
{
    return guarded(false, [&] { return d->write(*this, requests::deleteJob(id)); });
}

bool RestApiJobManager::archiveJob(const std::string& id)
{
    return guarded(false, [&] { return d->write(*this, requests::archiveJob(id)); });
}

bool RestApiJobManager::restoreJob(const std::string& id)
{
    return guarded(false, [&] { return d->write(*this, requests::restoreJob(id)); });
}

RestApiJobManager::LaunchTestResult RestApiJobManager::launchTest(const std::string& uiIndex)
{
    // Short enough to take no memory.
    return guarded(LaunchTestResult{ false, "ERROR_UNKNOWN" }, [&] {
        auto result = d->ask(*this, requests::launch(uiIndex), httpOk, answers::launch, LaunchTestResult());
        if (!result.success && result.message.empty())
            result.message = launchFailed;
        return result;
    });
}

bool RestApiJobManager::setManualTestResponse(
    const std::string& text1, const std::string& text2, const std::string& uiIndex)
{
    return guarded(false, [&] { return d->write(*this, requests::manualResponse(text1, text2, uiIndex)); });
}

bool RestApiJobManager::updateWorkflowAttributes(const std::string& jobId, const nlohmann::json& update)
{
    return guarded(false, [&] { return d->write(*this, requests::updateJob(jobId, update)); });
}

std::string RestApiJobManager::exportJobData(const std::string& jobId, const std::string& folder)
{
    return guarded(std::string(), [&] {
        return d->ask(*this, requests::exportJob(jobId, folder), httpOk, answers::exportedPath, std::string());
    });
}

int RestApiJobManager::importJobs(const std::string& path)
{
    return guarded(0, [&] { return d->ask(*this, requests::importJobs(path), httpOk, answers::importedJobs, 0); });
}

bool RestApiJobManager::exchangeCurrentJob(const std::string& devicePath, std::string second)
{
    return guarded(false, [&] { return d->write(*this, requests::exchangeJob(devicePath, second)); });
}

std::vector<std::string> RestApiJobManager::getTemplateList()
{
    return guarded(std::vector<std::string>(), [this] {
        return d->ask(*this, requests::templateList(), httpOk, answers::templateNames, std::vector<std::string>());
    });
}

int RestApiJobManager::getTemplateNumberOfTests(const std::string& templateName)
{
    return guarded(0, [&] {
        const auto request = requests::jobTemplate(templateName);
        return d->ask(*this, request, httpOk, answers::jobTemplate, {}).numberOfTests;
    });
}

std::string RestApiJobManager::getTemplateWorkOrderLabel(const std::string& templateName)
{
    return guarded(std::string(), [&] {
        const auto request = requests::jobTemplate(templateName);
        return d->ask(*this, request, httpOk, answers::jobTemplate, {}).workOrderLabel;
    });
}

std::map<std::string, std::string> RestApiJobManager::getSettingsListInfo() const
{
    return guarded(std::map<std::string, std::string>(),
        [this] { return d->readOrRecall(*this, requests::settings(), answers::settings); });
}

void RestApiJobManager::writeSetting(const std::string& id, const std::string& value)
{
    guarded(false, [&] { return d->write(*this, requests::writeSetting(id, value)); });
}

void RestApiJobManager::setUiGroupType(const std::string& groupType)
{
    guarded(false, [&] { return d->write(*this, requests::setUiGroupType(groupType)); });
}

RestApiJobManager::InstrumentLoginConfig RestApiJobManager::getInstrumentLoginConfig() const
{
    return guarded(InstrumentLoginConfig(),
        [this] { return d->readOrRecall(*this, requests::loginConfig(), answers::loginConfig); });
}
