#pragma once

#include "api/cdm/Attributes.h"

#include <optional>
#include <string>

namespace job_service {

/// Why the attribute's own description does not let it hold this value, as the rest of a sentence ("has to be a
/// number."); nothing if it does. The empty value takes a value away, and every attribute may hold it.
/// Whether the attribute is editable is not looked at.
std::optional<std::string> valueFault(const cdm::Attribute& attribute, const std::string& value);

} // namespace job_service
