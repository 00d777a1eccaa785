#pragma once

namespace job_service {

/// The version of the service, as its status route and --version tell it.
constexpr const char* serviceVersion = JOBMANAGER_VERSION;

} // namespace job_service
