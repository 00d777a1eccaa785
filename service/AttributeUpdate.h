#pragma once

#include "service/JsonTree.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace job_service {

/// One value that an update of a job writes.
struct AttributeWrite
{
    enum class Target {
        /// "jobManagerAttributes"
        Attribute,
        /// "techInfo"
        TechId,
        /// "contractorId"
        ContractorId
    };

    Target target = Target::Attribute;
    /// The attribute's name; of the other two targets "techId" and "contractorId".
    std::string name;
    std::string value;
};

/// The writes that an update asks for, at least one. Throws ApiError if it asks for anything else.
std::vector<AttributeWrite> attributeWrites(const nlohmann::json& update);

/// Writes the value into a job's document, in which nothing else changes. Throws ApiError, with the attribute's name
/// and the reason, if the attribute is not there, is not editable, or cannot hold the value by its own description.
void writeAttribute(JsonTree& document, const AttributeWrite& write);

/// The beginning of a sentence about an attribute: `The attribute "name"`. A long name is cut.
std::string attributeSubject(const std::string& name);

} // namespace job_service
