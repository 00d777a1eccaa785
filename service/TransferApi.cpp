#include "service/TransferApi.h"

#include "service/ApiError.h"
#include "service/ApiSupport.h"
#include "service/DeviceLink.h"
#include "service/JobDocument.h"
#include "service/JobExchange.h"
#include "service/JobExport.h"
#include "service/JobImport.h"
#include "service/JobMerge.h"
#include "service/Log.h"
#include "service/UtcTime.h"

#include <filesystem>
#include <utility>

namespace job_service {

namespace {

/// The other side of an exchange has nothing that is new here.
class NothingNew : public std::exception
{
};

} // namespace

TransferApi::TransferApi(JobStore& store, TransferPlaces places, const TransferLimits& limits)
    : m_store(store)
    , m_places(std::move(places))
    , m_limits(limits)
{
}

std::vector<Route> TransferApi::routes()
{
    using Request = const RouteRequest&;
    RouteTable table;
    table.addWrite("POST", "/exports", smallBody, [this](Request request) { return exportJob(request); });
    table.addWrite("POST", "/imports", smallBody, [this](Request request) { return importJobs(request); });
    table.addWrite("POST", "/exchanges", smallBody, [this](Request request) { return exchangeJob(request); });
    return table.routes();
}

std::unique_lock<std::mutex> TransferApi::turn()
{
    std::unique_lock<std::mutex> lock(m_running, std::try_to_lock);
    if (!lock)
        throw ApiError(409, "transfer_running", "Another transfer is under way.");
    return lock;
}

HttpResponse TransferApi::exportJob(const RouteRequest& request)
{
    const auto lock = turn();
    const std::string id = requiredString(request.json, "jobId");
    const std::filesystem::path folder = requiredString(request.json, "folder");
    const std::optional<std::string> document = m_store.document(id);
    if (!document)
        refuseUnknownJob();
    TransferBudget budget(m_limits, m_cancelled);
    try {
        const std::string name = exportDocument(m_places.media.open(folder), id, *document, budget);
        logLine("export: job " + printable(id) + " written as " + printable(name));
        return jsonResponse(200, { { "path", (folder / name).string() } });
    } catch (const CutOff& cutOff) {
        throw ApiError(503, "transfer_cut_off", std::string("The export was ended: ") + cutOff.what() + ".");
    }
}

HttpResponse TransferApi::importJobs(const RouteRequest& request)
{
    const auto lock = turn();
    const std::string path = requiredString(request.json, "path");
    const FileHandle opened = m_places.media.open(path);
    TransferBudget budget(m_limits, m_cancelled);
    const ImportResult result = JobImport(m_store, budget).run(opened, path);
    return jsonResponse(200,
        { { "imported", result.imported }, { "kept", result.kept }, { "templates", result.templates },
            { "skipped", result.skipped }, { "cutOff", result.cutOff } });
}

HttpResponse TransferApi::exchangeJob(const RouteRequest& request)
{
    const auto lock = turn();
    if (requiredString(request.json, "devicePath") != m_places.device)
        throw ApiError(403, "path_not_allowed", "Jobs are exchanged with the instrument's exchange device alone.");
    const std::string id = m_store.activeJob();
    const std::optional<std::string> document = m_store.document(id);
    if (!document)
        throw ApiError(409, "no_active_job", "There is no active job to exchange.");
    try {
        exchangeWithDevice(id, *document);
    } catch (const CutOff& cutOff) {
        throw ApiError(503, "transfer_cut_off", std::string("The exchange was ended: ") + cutOff.what() + ".");
    } catch (const std::runtime_error& failure) {
        if (dynamic_cast<const ApiError*>(&failure))
            throw;
        logLine("exchange: " + printable(failure.what()));
        throw ApiError(503, "exchange_failed", "The exchange failed; it can be repeated.");
    }
    return noContent();
}

void TransferApi::exchangeWithDevice(const std::string& jobId, const std::string& document)
{
    const TransferBudget budget(m_limits, m_cancelled);
    DeviceLink link(openDevice(m_places.device), budget, m_places.patience);
    beginExchange(link, jobId, document, [&](const std::string& version) { takeVersion(jobId, version); });
    logLine("exchange: job " + printable(jobId) + " exchanged");
}

void TransferApi::takeVersion(const std::string& jobId, const std::string& document)
{
    const StoredJob version = jobFromFile(document, utcNow());
    if (version.id != jobId)
        throw ExchangeRefused("the other side sent another job");
    const JsonTree theirs = JsonTree::fromText(version.document);
    try {
        checkFound(m_store.changeJob(jobId, [&](JsonTree& ours) {
            if (!mergeJob(ours, theirs))
                throw NothingNew();
        }));
    } catch (const NothingNew&) {
        logLine("exchange: nothing new for job " + printable(jobId));
    }
}

} // namespace job_service
