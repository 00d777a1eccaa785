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
    /// `runner` must outlive the object, and the object its routes.
    explicit TestApi(TestRunner& runner) : m_runner(runner) { }

    std::vector<Route> routes();

private:
    TestRunner& m_runner;

    HttpResponse launch(const RouteRequest& request);
};

} // namespace job_service
