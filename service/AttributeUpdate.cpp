#include "service/AttributeUpdate.h"

#include "api/cdm/Attributes.h"
#include "service/ApiError.h"
#include "service/ApiSupport.h"
#include "service/AttributeCheck.h"
#include "service/JobDocument.h"

namespace job_service {

namespace {

using nlohmann::json;
using Target = AttributeWrite::Target;

constexpr std::size_t longestNameTold = 100;

const json& object(const json& value, const std::string& what)
{
    if (!value.is_object())
        refuseRequest(what + " has to be an object.");
    return value;
}

std::string string(const json& value, const std::string& subject)
{
    if (!value.is_string())
        refuseRequest(subject + " takes a string.");
    return value.get<std::string>();
}

/// The one member that an object is to have, and no other: an update that was taken in part would look like one
/// that was taken.
const json& onlyMember(const json& value, const char* name, const std::string& what)
{
    if (object(value, what).size() != 1 || !value.contains(name))
        refuseRequest(what + " has to hold " + name + " and nothing else.");
    return value.front();
}

void addAttributes(const json& attributes, std::vector<AttributeWrite>& writes)
{
    for (const auto& [name, content] : object(attributes, "The member jobManagerAttributes").items()) {
        const std::string subject = attributeSubject(name);
        writes.push_back({ Target::Attribute, name, string(onlyMember(content, "value", subject), subject) });
    }
}

/// The attribute under that name, if it is one that has a value to write.
std::optional<cdm::Attribute> attributeOf(const JsonTree& content)
{
    try {
        return json::parse(content.text()).get<cdm::Attribute>();
    } catch (const json::exception&) {
        return std::nullopt;
    }
}

void writeJobAttribute(JsonTree& document, const AttributeWrite& write)
{
    const std::string subject = attributeSubject(write.name);
    JsonTree* attributes = detailsOf(document).find("jobManagerAttributes");
    JsonTree* content = attributes ? attributes->find(write.name) : nullptr;
    if (!content)
        throw ApiError(404, "attribute_not_found", subject + " is not there.");
    const std::optional<cdm::Attribute> attribute = attributeOf(*content);
    if (!attribute || attribute->editable != true)
        throw ApiError(409, "attribute_not_editable", subject + " is not editable.");
    if (const std::optional<std::string> fault = valueFault(*attribute, write.value))
        throw ApiError(422, "attribute_value_invalid", subject + " " + *fault);
    content->set("value", JsonTree::fromString(write.value));
}

void writeTechId(JsonTree& document, const AttributeWrite& write)
{
    JsonTree& details = detailsOf(document);
    JsonTree* techInfo = details.find("techInfo");
    if (!techInfo || !techInfo->isObject())
        techInfo = &details.set("techInfo", JsonTree::emptyObject());
    techInfo->set("techId", JsonTree::fromString(write.value));
}

} // namespace

std::string attributeSubject(const std::string& name)
{
    std::string told = name.substr(0, longestNameTold);
    if (told.size() < name.size()) {
        // Not in the middle of a character.
        while (!told.empty() && (static_cast<unsigned char>(name[told.size()]) & 0xC0) == 0x80)
            told.pop_back();
        told += "...";
    }
    return "The attribute \"" + told + '"';
}

std::vector<AttributeWrite> attributeWrites(const json& update)
{
    std::vector<AttributeWrite> writes;
    for (const auto& [name, value] : object(update, "The update").items()) {
        if (name == "jobManagerAttributes")
            addAttributes(value, writes);
        else if (name == "techInfo")
            writes.push_back({ Target::TechId, "techId",
                string(onlyMember(value, "techId", "The member techInfo"), "The member techId") });
        else if (name == "contractorId")
            writes.push_back({ Target::ContractorId, "contractorId", string(value, "The member contractorId") });
        else
            refuseRequest("An update takes jobManagerAttributes, techInfo and contractorId, and nothing else.");
    }
    if (writes.empty())
        refuseRequest("The update names nothing to change.");
    return writes;
}

void writeAttribute(JsonTree& document, const AttributeWrite& write)
{
    switch (write.target) {
    case Target::Attribute:
        writeJobAttribute(document, write);
        break;
    case Target::TechId:
        writeTechId(document, write);
        break;
    case Target::ContractorId:
        detailsOf(document).set("contractorId", JsonTree::fromString(write.value));
        break;
    }
}

} // namespace job_service
