#pragma once

#include "service/CommandLine.h"
#include "service/JobStore.h"

#include <cstddef>
#include <functional>
#include <nlohmann/json.hpp>

namespace job_service {

/// The document of the generated job with this number (from 0): the same at every call, on every machine.
/// About one in eight is archived; some are untouched, some half done, some done.
nlohmann::json generatedJob(std::size_t number, std::size_t tests);

/// Adds the first `size.jobs` generated jobs as one change; a job whose id is known stays as it is.
/// `beforeEach` runs before each job; what it throws leaves this function, and none is added. Returns how many were
/// added. Throws SqliteError.
std::size_t generateJobs(
    JobStore& store, const GenerateSize& size, const std::function<void()>& beforeEach = [] {});

} // namespace job_service
