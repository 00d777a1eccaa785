#pragma once

#include "api/MockJobManagerAPI.h"

namespace jobmanager_ui {

/// The twenty jobs that a new MockJobManagerAPI holds, by id. Each call makes them anew.
QHash<QString, MockJobManagerAPI::MockJobInfo> mockJobs();

} // namespace jobmanager_ui
