#pragma once

#include "service/AttributeWriter.h"
#include "service/JobStore.h"
#include "service/LocationLists.h"
#include "service/Router.h"

#include <string>
#include <vector>

namespace job_service {

/// The HTTP interface of the store (docs/job-service-api.md): the table of routes and their handlers.
class JobApi
{
public:
    /// `store` must outlive the object, and the object its routes. `techId` is the technician of the login
    /// configuration.
    JobApi(JobStore& store, std::string techId, AttributeRules attributeRules = {}, LocationLists locationLists = {});

    std::vector<Route> routes();

    /// Ends what handlers wait for, before the server is told to stop.
    void stop();

private:
    JobStore& m_store;
    const std::string m_techId;
    const LocationLists m_locationLists;
    AttributeWriter m_attributes;

    HttpResponse changeCount() const;
    HttpResponse status() const;
    HttpResponse loginConfig() const;

    HttpResponse jobs() const;
    HttpResponse job(const RouteRequest& request) const;
    HttpResponse createJob(const RouteRequest& request);
    HttpResponse updateJob(const RouteRequest& request);
    HttpResponse deleteJob(const RouteRequest& request);
    HttpResponse setArchived(const RouteRequest& request, bool archived);
    HttpResponse putJobAttributes(const RouteRequest& request);
    HttpResponse putTestAttributes(const RouteRequest& request);
    HttpResponse putTestResults(const RouteRequest& request);

    HttpResponse activeJob() const;
    HttpResponse putActiveJob(const RouteRequest& request);
    HttpResponse settings() const;
    HttpResponse putSetting(const RouteRequest& request);
    HttpResponse groupType() const;
    HttpResponse putGroupType(const RouteRequest& request);
};

} // namespace job_service
