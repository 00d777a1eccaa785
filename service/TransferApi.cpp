#include "service/TransferApi.h"

#include "service/ApiError.h"
#include "service/ApiSupport.h"
#include "service/JobExport.h"
#include "service/JobImport.h"
#include "service/Log.h"

#include <filesystem>
#include <utility>

namespace job_service {

TransferApi::TransferApi(JobStore& store, MediaRoots media, const TransferLimits& limits)
    : m_store(store)
    , m_media(std::move(media))
    , m_limits(limits)
{
}

std::vector<Route> TransferApi::routes()
{
    using Request = const RouteRequest&;
    RouteTable table;
    table.addWrite("POST", "/exports", smallBody, [this](Request request) { return exportJob(request); });
    table.addWrite("POST", "/imports", smallBody, [this](Request request) { return importJobs(request); });
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
        const std::string name = exportDocument(m_media.open(folder), id, *document, budget);
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
    const FileHandle opened = m_media.open(path);
    TransferBudget budget(m_limits, m_cancelled);
    const ImportResult result = JobImport(m_store, budget).run(opened, path);
    return jsonResponse(200,
        { { "imported", result.imported }, { "kept", result.kept }, { "templates", result.templates },
            { "skipped", result.skipped }, { "cutOff", result.cutOff } });
}

} // namespace job_service
