#pragma once

#include <string_view>

namespace job_service {

/// Whether a file of this name is taken for a job: it ends in ".job.json", in any letter case.
bool isJobFileName(std::string_view name);

/// Whether a file of this name is taken for a template: it ends in ".tpl.json", in any letter case.
bool isTemplateFileName(std::string_view name);

} // namespace job_service
