#pragma once

#include "service/JobStore.h"
#include "service/MediaPath.h"
#include "service/Router.h"
#include "service/TransferBudget.h"

#include <atomic>
#include <mutex>
#include <vector>

namespace job_service {

/// The routes on which jobs leave for media and come from them. One transfer runs at a time; another is refused.
class TransferApi
{
public:
    /// `store` must outlive the object, and the object its routes.
    TransferApi(JobStore& store, MediaRoots media, const TransferLimits& limits = {});

    std::vector<Route> routes();
    /// Has a running transfer end soon, with what it has done so far. For the end of the service, from any thread.
    void cancel() { m_cancelled = true; }

private:
    JobStore& m_store;
    const MediaRoots m_media;
    const TransferLimits m_limits;
    std::mutex m_running;
    std::atomic<bool> m_cancelled{ false };

    std::unique_lock<std::mutex> turn();
    HttpResponse exportJob(const RouteRequest& request);
    HttpResponse importJobs(const RouteRequest& request);
};

} // namespace job_service
