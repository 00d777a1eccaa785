#pragma once

#include "api/cdm/CdmSouthboundJob.h"
#include "api/cdm/JsonText.h"

namespace cdm {

/// Reads a job document (docs/job-file-format.md) into records. Members without a record field are ignored;
/// attributes, configuration data and result data are taken as they come.
/// Returns nothing, and fills `error` with the path of the offending member, if the document breaks the format.
std::optional<CdmSouthboundJob> jobFromJson(const nlohmann::json& document, DocumentError& error);

/// Writes the named fields of a job as a job document. Fields without a key (the opaque ones, the
/// instrument) are not written.
nlohmann::json jobToJson(const CdmSouthboundJob& job);

} // namespace cdm
