#pragma once

#include "service/JobStore.h"
#include "service/MediaPath.h"
#include "service/Router.h"
#include "service/TransferBudget.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <vector>

namespace job_service {

/// Where jobs may leave and enter.
struct TransferPlaces
{
    MediaRoots media;
    /// The path of the exchange device, which may be a link to it.
    std::string device;
    /// How long the other side of an exchange may be silent.
    std::chrono::milliseconds patience = std::chrono::seconds(10);
};

/// The routes on which jobs leave for media and devices and come from them. One transfer runs at a time; another is
/// refused.
class TransferApi
{
public:
    /// `store` must outlive the object, and the object its routes.
    TransferApi(JobStore& store, TransferPlaces places, const TransferLimits& limits = {});

    std::vector<Route> routes();
    /// Has a running transfer end soon, with what it has done so far. For the end of the service, from any thread.
    void cancel() { m_cancelled = true; }

private:
    JobStore& m_store;
    const TransferPlaces m_places;
    const TransferLimits m_limits;
    std::mutex m_running;
    std::atomic<bool> m_cancelled{ false };

    std::unique_lock<std::mutex> turn();
    HttpResponse exportJob(const RouteRequest& request);
    HttpResponse importJobs(const RouteRequest& request);
    HttpResponse exchangeJob(const RouteRequest& request);
    void exchangeWithDevice(const std::string& jobId, const std::string& document);
    void takeVersion(const std::string& jobId, const std::string& document);
};

} // namespace job_service
