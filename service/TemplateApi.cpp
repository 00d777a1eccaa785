#include "service/TemplateApi.h"

#include "service/ApiSupport.h"

namespace job_service {

namespace {

/// What the interface tells of a template; the document has been checked when it came into the store.
nlohmann::json descriptionOf(const std::string& document)
{
    const nlohmann::json content = nlohmann::json::parse(document);
    const auto label = content.find("workOrderLabel");
    const auto tests = content.find("tests");
    return { { "name", content.at("name") },
        { "workOrderLabel", label != content.end() && label->is_string() ? *label : nlohmann::json("") },
        { "numberOfTests", tests != content.end() && tests->is_array() ? tests->size() : 0 } };
}

} // namespace

std::vector<Route> TemplateApi::routes()
{
    RouteTable table;
    table.add("GET", "/templates", [this](const RouteRequest&) { return templates(); });
    table.add("GET", "/templates/{name}", [this](const RouteRequest& request) { return jobTemplate(request); });
    return table.routes();
}

HttpResponse TemplateApi::templates() const
{
    nlohmann::json list = nlohmann::json::array();
    for (const std::string& document : m_store.templateDocuments())
        list.push_back(descriptionOf(document));
    return jsonResponse(200, { { "templates", std::move(list) } });
}

HttpResponse TemplateApi::jobTemplate(const RouteRequest& request) const
{
    const std::optional<std::string> document = m_store.templateDocument(request.parameters[0]);
    if (!document)
        refuseUnknownTemplate();
    return jsonResponse(200, descriptionOf(*document));
}

} // namespace job_service
