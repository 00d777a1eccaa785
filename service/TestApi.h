#pragma once

#include "service/JobStore.h"
#include "service/Router.h"
#include "service/TestRunner.h"

#include <vector>

namespace job_service {

/// The part of the HTTP interface that works on tests of the active job.
class TestApi
{
public:
    /// `store` and `runner` must outlive the object, and the object its routes.
    TestApi(JobStore& store, TestRunner& runner) : m_store(store), m_runner(runner) { }

    std::vector<Route> routes();

private:
    JobStore& m_store;
    TestRunner& m_runner;

    HttpResponse launch(const RouteRequest& request);
    HttpResponse answerManualStep(const RouteRequest& request);
};

} // namespace job_service
