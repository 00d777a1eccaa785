#include "api/cdm/JobCodec.h"

#include <type_traits>
#include <utility>

namespace cdm {

namespace {

/// The members of a record type, each named once: `visit` shows them to the reader and to the writer in turn and
/// stops at the first that is refused.
template <typename Record> struct Members;

template <> struct Members<TestResults>
{
    template <typename Results, typename Visitor> static bool visit(Results& results, Visitor& visitor)
    {
        return visitor.required("status", results.status) && visitor.required("time", results.time)
            && visitor.optional("response", results.response) && visitor.optional("data", results.data);
    }
};

template <> struct Members<DeployableTo>
{
    template <typename Target, typename Visitor> static bool visit(Target& target, Visitor& visitor)
    {
        return visitor.required("name", target.name) && visitor.optional("version", target.version);
    }
};

template <> struct Members<TestLocation>
{
    template <typename Location, typename Visitor> static bool visit(Location& location, Visitor& visitor)
    {
        return visitor.required("location", location.location) && visitor.optional("attributes", location.attributes)
            && visitor.optional("required", location.required) && visitor.optional("results", location.results)
            && visitor.optional("uiIndex", location.uiIndex)
            && visitor.optional("configuration", location.configuration);
    }
};

template <> struct Members<Test>
{
    template <typename T, typename Visitor> static bool visit(T& test, Visitor& visitor)
    {
        return visitor.required("testType", test.testType)
            && visitor.optional("testTypeDisplayName", test.testTypeDisplayName)
            && visitor.optional("description", test.description) && visitor.optional("site", test.site)
            && visitor.optional("configurationData", test.configurationData)
            && visitor.optional("results", test.results) && visitor.optional("attributes", test.attributes)
            && visitor.optional("testLocations", test.testLocations)
            && visitor.optional("deployableTo", test.deployableTo) && visitor.optional("guideFile", test.guideFile)
            && visitor.optional("required", test.required) && visitor.optional("uiIndex", test.uiIndex)
            && visitor.optional("configuration", test.configuration);
    }
};

template <> struct Members<TechInfo>
{
    template <typename Info, typename Visitor> static bool visit(Info& techInfo, Visitor& visitor)
    {
        return visitor.required("techId", techInfo.techId);
    }
};

template <> struct Members<JobDetails>
{
    template <typename Details, typename Visitor> static bool visit(Details& details, Visitor& visitor)
    {
        return visitor.required("id", details.id) && visitor.withDefault("timestamp", details.timestamp)
            && visitDescription(details, visitor);
    }

    /// All but what belongs to one single job.
    template <typename Details, typename Visitor> static bool visitDescription(Details& details, Visitor& visitor)
    {
        return visitor.optional("techInfo", details.techInfo) && visitor.optional("contractorId", details.contractorId)
            && visitor.optional("jobManagerAttributes", details.attributes)
            && visitor.template unheld<std::string>("workOrderLabel")
            && visitor.template unheld<std::string>("workflowTypeName")
            && visitor.template unheld<std::string>("customerName")
            && visitor.template unheld<std::string>("managedByInfo")
            && visitor.template unheld<std::string>("managementState")
            && visitor.template unheld<std::vector<std::string>>("teamTechIds")
            && visitor.template unheld<bool>("archived") && visitor.template unheld<std::string>("modifiedOn");
    }
};

template <> struct Members<CdmSouthboundJob>
{
    template <typename Job, typename Visitor> static bool visit(Job& job, Visitor& visitor)
    {
        return visitor.withDefault("cdmVersion", job.cdmVersion) && visitor.required("details", job.details)
            && visitor.optional("tests", job.tests);
    }
};

/// What a template adds to a job made from it. No id and no time of its own.
struct TemplateDetails
{
    JobDetails details;
};

template <> struct Members<TemplateDetails>
{
    template <typename Visitor> static bool visit(TemplateDetails& record, Visitor& visitor)
    {
        return Members<JobDetails>::visitDescription(record.details, visitor);
    }
};

struct JobTemplate
{
    std::string name;
};

template <> struct Members<JobTemplate>
{
    template <typename Visitor> static bool visit(JobTemplate& record, Visitor& visitor)
    {
        return visitor.required("name", record.name) && visitor.template unheld<std::string>("workOrderLabel")
            && visitor.template unheld<std::string>("workflowTypeName")
            && visitor.template unheld<TemplateDetails>("details")
            && visitor.template unheld<std::vector<Test>>("tests");
    }
};

bool refuse(DocumentError& error, const char* message)
{
    error = { {}, message };
    return false;
}

/// Completes the path of an error found below `token`, on the way out. Tokens are keys of this format and
/// indices, in which a JSON pointer has nothing to escape.
bool refuseBelow(DocumentError& error, const std::string& token)
{
    error.path.insert(0, "/" + token);
    return false;
}

/// Copies out of a document that is const, moves out of one that is not.
template <typename Json> class ValueReader
{
public:
    explicit ValueReader(DocumentError& error) : m_error(error) { }

    bool read(Json& value, std::string& text)
    {
        auto* held = value.template get_ptr<SameConst<nlohmann::json::string_t>*>();
        if (held == nullptr)
            return refuse(m_error, "A string is expected here.");
        text = std::move(*held);
        return true;
    }

    bool read(Json& value, bool& flag)
    {
        const auto* held = value.template get_ptr<const nlohmann::json::boolean_t*>();
        if (held == nullptr)
            return refuse(m_error, "A boolean is expected here.");
        flag = *held;
        return true;
    }

    bool read(Json& value, Iso8601& time) { return read(value, time.value); }

    bool read(Json& value, nlohmann::json& anything)
    {
        anything = std::move(value);
        return true;
    }

    bool read(Json& value, Attributes& attributes)
    {
        auto* held = value.template get_ptr<SameConst<nlohmann::json::object_t>*>();
        if (held == nullptr)
            return refuse(m_error, "An object is expected here.");
        nlohmann::json::object_t object = std::move(*held);
        attributes.values.merge(object);
        return true;
    }

    template <typename Element> bool read(Json& value, std::vector<Element>& list)
    {
        if (!value.is_array())
            return refuse(m_error, "An array is expected here.");
        list.reserve(value.size());
        for (std::size_t i = 0; i < value.size(); ++i) {
            Element element;
            if (!read(value[i], element))
                return refuseBelow(m_error, std::to_string(i));
            list.push_back(std::move(element));
        }
        return true;
    }

    template <typename Record> bool read(Json& value, Record& record)
    {
        if (!value.is_object())
            return refuse(m_error, "An object is expected here.");
        ObjectReader object{ value, *this };
        return Members<Record>::visit(record, object);
    }

private:
    template <typename Held> using SameConst = std::conditional_t<std::is_const_v<Json>, const Held, Held>;

    /// Visits the members of one object.
    struct ObjectReader
    {
        template <typename Field> bool required(const char* key, Field& field)
        {
            const auto member = object.find(key);
            if (member == object.end()) {
                refuse(values.m_error, "This member is missing.");
                return refuseBelow(values.m_error, key);
            }
            return take(key, *member, field);
        }

        template <typename Field> bool optional(const char* key, std::optional<Field>& field)
        {
            const auto member = object.find(key);
            if (member == object.end() || member->is_null())
                return true;
            return take(key, *member, field.emplace());
        }

        /// A member that is missing leaves the field at the default of its record.
        template <typename Field> bool withDefault(const char* key, Field& field)
        {
            const auto member = object.find(key);
            if (member == object.end() || member->is_null())
                return true;
            return take(key, *member, field);
        }

        /// A member that is checked, but that no record holds.
        template <typename Field> bool unheld(const char* key)
        {
            std::optional<Field> field;
            return optional(key, field);
        }

        template <typename Field> bool take(const char* key, Json& member, Field& field)
        {
            return values.read(member, field) || refuseBelow(values.m_error, key);
        }

        Json& object;
        ValueReader& values;
    };

    DocumentError& m_error;
};

nlohmann::json write(const std::string& text)
{
    return text;
}

nlohmann::json write(bool flag)
{
    return flag;
}

nlohmann::json write(const Iso8601& time)
{
    return time.value;
}

nlohmann::json write(const nlohmann::json& anything)
{
    return anything;
}

nlohmann::json write(const Attributes& attributes)
{
    return attributes.values;
}

template <typename Element> nlohmann::json write(const std::vector<Element>& list);

template <typename Record> nlohmann::json write(const Record& record);

/// Visits the members of one record.
struct ObjectWriter
{
    template <typename Field> bool required(const char* key, const Field& field)
    {
        object[key] = write(field);
        return true;
    }

    template <typename Field> bool optional(const char* key, const std::optional<Field>& field)
    {
        return !field || required(key, *field);
    }

    bool optional(const char* key, const std::optional<nlohmann::json>& anything)
    {
        return !anything || anything->is_null() || required(key, *anything);
    }

    template <typename Field> bool withDefault(const char* key, const Field& field) { return required(key, field); }

    template <typename Field> bool unheld(const char*) { return true; }

    nlohmann::json object = nlohmann::json::object();
};

template <typename Element> nlohmann::json write(const std::vector<Element>& list)
{
    nlohmann::json array = nlohmann::json::array();
    for (const Element& element : list)
        array.push_back(write(element));
    return array;
}

template <typename Record> nlohmann::json write(const Record& record)
{
    ObjectWriter writer;
    Members<Record>::visit(record, writer);
    return std::move(writer.object);
}

template <typename Json> std::optional<CdmSouthboundJob> readJob(Json& document, DocumentError& error)
{
    std::optional<CdmSouthboundJob> job(std::in_place);
    if (!ValueReader<Json>(error).read(document, *job))
        job.reset();
    return job;
}

} // namespace

std::optional<CdmSouthboundJob> jobFromJson(const nlohmann::json& document, DocumentError& error)
{
    return readJob(document, error);
}

std::optional<CdmSouthboundJob> jobFromJson(nlohmann::json&& document, DocumentError& error)
{
    return readJob(document, error);
}

nlohmann::json jobToJson(const CdmSouthboundJob& job)
{
    return write(job);
}

bool checkTemplate(const nlohmann::json& document, DocumentError& error)
{
    JobTemplate record;
    if (!ValueReader<const nlohmann::json>(error).read(document, record))
        return false;
    if (record.name.empty()) {
        refuse(error, "A template needs a name.");
        return refuseBelow(error, "name");
    }
    return true;
}

} // namespace cdm
