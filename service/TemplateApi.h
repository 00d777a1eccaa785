#pragma once

#include "service/JobStore.h"
#include "service/Router.h"

#include <vector>

namespace job_service {

/// The part of the HTTP interface that tells of the templates of jobs.
class TemplateApi
{
public:
    /// `store` must outlive the object, and the object its routes.
    explicit TemplateApi(const JobStore& store) : m_store(store) { }

    std::vector<Route> routes();

private:
    const JobStore& m_store;

    HttpResponse templates() const;
    HttpResponse jobTemplate(const RouteRequest& request) const;
};

} // namespace job_service
