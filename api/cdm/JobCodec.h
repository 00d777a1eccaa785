#pragma once

#include "api/cdm/CdmSouthboundJob.h"
#include "api/cdm/JsonText.h"

namespace cdm {

/// Reads a job document (docs/job-file-format.md) into records. Attributes, configuration data and result data are
/// taken as they come; members of the job list have to be of their type but are held by no record; all other
/// members are ignored. Null for a member that may be missing means that it is missing.
/// Returns nothing, and fills `error` with the path of the offending member, if the document breaks the format.
/// `document` must not be nested deeper than `maximumJsonDepth`, since it is copied.
std::optional<CdmSouthboundJob> jobFromJson(const nlohmann::json& document, DocumentError& error);

/// The same without copying: texts and values are moved out of `document`, which is left unspecified.
std::optional<CdmSouthboundJob> jobFromJson(nlohmann::json&& document, DocumentError& error);

/// Writes the named fields of a job as a job document. Fields without a key (the opaque ones, the
/// instrument) are not written, nor are free values that hold null.
nlohmann::json jobToJson(const CdmSouthboundJob& job);

/// Whether `document` is a job template (docs/job-file-format.md). Fills `error` if it is not.
bool checkTemplate(const nlohmann::json& document, DocumentError& error);

} // namespace cdm
