#pragma once

#include "api/rest/JobManagerRestAPI.h"

#include "tests/api/rest/StandInClient.h"

namespace jobmanager_test {

/// An implementation over a stand-in of the client, whose construction is already forgotten.
class OnStandIn
{
public:
    OnStandIn() { StandInClient::forgetCalls(); }
    jobmanager_ui::JobManagerRestAPI* operator->() { return &m_api; }
    jobmanager_ui::JobManagerRestAPI& operator*() { return m_api; }

private:
    jobmanager_ui::JobManagerRestAPI m_api{ "127.0.0.1", 8082 };
};

} // namespace jobmanager_test
