// Walks the interface's description: every route of the file against a running service, and every route of
// the service against the file.

#include "service/Instrument.h"
#include "service/JobApi.h"
#include "service/JobExchange.h"
#include "service/SimulatedBench.h"
#include "service/TemplateApi.h"
#include "service/TestApi.h"
#include "service/TransferApi.h"
#include "tests/service/PseudoTerminal.h"
#include "tests/service/TemporaryFolder.h"
#include "tests/support/HttpRequest.h"
#include "tests/support/ServiceProcess.h"

#include <atomic>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <thread>
#include <unistd.h>
#include <yaml-cpp/yaml.h>

using jobmanager_test::HttpReply;
using jobmanager_test::httpRequest;
using jobmanager_test::ServiceProcess;
using nlohmann::json;

namespace {

/// A YAML value as JSON. Quoted scalars are strings, plain ones what they look like.
json toJson(const YAML::Node& node)
{
    if (node.IsMap()) {
        json object = json::object();
        for (const auto& member : node)
            object[member.first.as<std::string>()] = toJson(member.second);
        return object;
    }
    if (node.IsSequence()) {
        json array = json::array();
        for (const YAML::Node& item : node)
            array.push_back(toJson(item));
        return array;
    }
    const std::string text = node.IsNull() ? "null" : node.as<std::string>();
    const json value = json::parse(text, nullptr, false);
    const bool isString = node.Tag() == "!" || value.is_discarded() || value.is_structured();
    return isString ? json(text) : value;
}

/// The description, with its references resolved on the way.
class Description
{
public:
    Description() : m_root(toJson(YAML::LoadFile(JOBMANAGER_OPENAPI))) { }

    const json& paths() const { return m_root.at("paths"); }
    const json& schemas() const { return m_root.at("components").at("schemas"); }

    const json& resolved(const json& value) const
    {
        const auto reference = value.find("$ref");
        if (reference == value.end())
            return value;
        return resolved(m_root.at(json::json_pointer(reference->get<std::string>().substr(1))));
    }

    /// What is wrong with a value; empty if it fits the schema.
    std::string fault(const json& value, const json& unresolvedSchema, const std::string& where = {}) const
    {
        const json& schema = resolved(unresolvedSchema);
        if (value.is_null() && schema.value("nullable", false))
            return {};
        if (schema.contains("type") && !isOfType(value, schema.at("type")))
            return where + " is no " + schema.at("type").get<std::string>();
        if (schema.contains("enum")
            && std::find(schema.at("enum").begin(), schema.at("enum").end(), value) == schema.at("enum").end())
            return where + " is none of the enumeration";
        if (schema.contains("pattern")
            && !std::regex_match(value.get<std::string>(), std::regex(schema.at("pattern").get<std::string>())))
            return where + " is not of the pattern";
        if (value.is_array() && schema.contains("items"))
            return faultOfItems(value, schema.at("items"), where);
        return value.is_object() ? faultOfMembers(value, schema, where) : std::string();
    }

private:
    json m_root;

    static bool isOfType(const json& value, const std::string& type)
    {
        if (type == "object")
            return value.is_object();
        if (type == "array")
            return value.is_array();
        if (type == "string")
            return value.is_string();
        if (type == "boolean")
            return value.is_boolean();
        return type == "integer" && value.is_number_integer();
    }

    std::string faultOfItems(const json& array, const json& itemSchema, const std::string& where) const
    {
        for (std::size_t i = 0; i < array.size(); ++i) {
            const std::string found = fault(array[i], itemSchema, where + "/" + std::to_string(i));
            if (!found.empty())
                return found;
        }
        return {};
    }

    std::string faultOfMembers(const json& object, const json& schema, const std::string& where) const
    {
        for (const json& name : schema.value("required", json::array())) {
            if (!object.contains(name.get<std::string>()))
                return where + " lacks " + name.get<std::string>();
        }
        const json properties = schema.value("properties", json::object());
        for (const auto& [name, member] : properties.items()) {
            if (!object.contains(name))
                continue;
            const std::string found = fault(object.at(name), member, where + "/" + name);
            if (!found.empty())
                return found;
        }
        return {};
    }
};

/// One method of one path of the description.
struct Operation
{
    std::string method;
    std::string path;
    json description;
    json parameters;
};

/// Answers one exchange of a job of which it has no version.
class ExchangePeer
{
public:
    explicit ExchangePeer(const std::filesystem::path& devicePath) : m_terminal(devicePath)
    {
        m_thread = std::thread([this] {
            try {
                job_service::DeviceLink link(
                    job_service::FileHandle(::dup(m_terminal.near.get())), m_budget, std::chrono::seconds(30));
                job_service::answerExchange(
                    link, [](const std::string&) { return std::nullopt; }, [](const std::string&) {});
            } catch (const std::exception&) {
                // The service tells of it too.
            }
        });
    }
    ~ExchangePeer()
    {
        m_end = true;
        m_thread.join();
    }

private:
    jobmanager_test::PseudoTerminal m_terminal;
    std::atomic<bool> m_end{ false };
    job_service::TransferBudget m_budget{ {}, m_end };
    std::thread m_thread;
};

class OpenApiTest : public testing::Test
{
protected:
    Description m_description;
    jobmanager_test::TemporaryFolder m_files;
    jobmanager_test::TemporaryFolder m_media;
    ServiceProcess m_service;

    void SetUp() override
    {
        m_files.write("a.job.json",
            R"({"details":{"id":"WO-1","jobManagerAttributes":{)"
            R"("accessCode":{"label":"Access code","value":"","valueType":"number","editable":true},)"
            R"("fixed":{"label":"Fixed","value":""}}},"tests":[{"testType":"x"},{"testType":"manual"}]})");
        m_files.write("t.tpl.json", R"({"name":"Fibre acceptance"})");
        std::filesystem::create_directory(m_media.path() / "usb");
        m_service.setArguments({ "--load", m_files.path().string(), "--media-root", m_media.path().string(),
            "--exchange-device", (m_media.path() / "qzx").string() });
        ASSERT_TRUE(m_service.start()) << m_service.log();
    }

    std::vector<Operation> operations() const
    {
        std::vector<Operation> operations;
        for (const auto& [path, item] : m_description.paths().items()) {
            for (const auto& [name, description] : item.items()) {
                if (name == "parameters")
                    continue;
                std::string method = name;
                std::transform(method.begin(), method.end(), method.begin(), ::toupper);
                operations.push_back({ method, path, description, item.value("parameters", json::array()) });
            }
        }
        return operations;
    }

    /// The path with the examples of its parameters; `changed` stands for the one of that name.
    std::string pathOf(const Operation& operation, const std::string& changed = {}, const std::string& value = {}) const
    {
        std::string path = operation.path;
        for (const json& reference : operation.parameters) {
            const json& parameter = m_description.resolved(reference);
            const std::string name = parameter.at("name");
            const std::string placeholder = "{" + name + "}";
            const std::size_t at = path.find(placeholder);
            if (at == std::string::npos)
                ADD_FAILURE() << operation.path << " has no " << name;
            else
                path.replace(
                    at, placeholder.size(), name == changed ? value : parameter.at("example").get<std::string>());
        }
        EXPECT_EQ(path.find('{'), std::string::npos) << path << ": a parameter is not described";
        return path;
    }

    static bool hasBody(const Operation& operation) { return operation.description.contains("requestBody"); }

    json bodyContent(const Operation& operation) const
    {
        return operation.description.at("requestBody").at("content").at("application/json");
    }
    std::string bodyOf(const Operation& operation) const
    {
        return hasBody(operation) ? onTestMedia(bodyContent(operation).at("example").dump()) : std::string();
    }
    /// The folder of the test stands for that of the media.
    std::string onTestMedia(const std::string& text) const
    {
        return std::regex_replace(text, std::regex("\"/(media|dev)"), "\"" + m_media.path().string());
    }

    static std::string successOf(const Operation& operation)
    {
        for (const auto& [status, response] : operation.description.at("responses").items()) {
            if (status[0] == '2')
                return status;
        }
        return "none";
    }

    /// Expects an answer of this documented status that keeps the documented form.
    void expectAnswer(const Operation& operation, const HttpReply& reply, const std::string& status)
    {
        const std::string name = operation.method + " " + operation.path;
        ASSERT_EQ(std::to_string(reply.status), status) << name << ' ' << reply.body;
        const json& responses = operation.description.at("responses");
        ASSERT_TRUE(responses.contains(status)) << name << " does not document " << status;
        const json& response = m_description.resolved(responses.at(status));
        if (!response.contains("content")) {
            EXPECT_EQ(reply.body, "") << name;
            return;
        }
        EXPECT_EQ(reply.headers.at("content-type"), "application/json") << name;
        const json& schema = response.at("content").at("application/json").at("schema");
        EXPECT_EQ(m_description.fault(json::parse(reply.body), schema), "") << name << ' ' << reply.body;
    }

    HttpReply call(const Operation& operation, const std::string& path, const std::string& body)
    {
        return httpRequest(m_service.port(), operation.method, path, body);
    }
    bool documents(const Operation& operation, const char* status) const
    {
        return operation.description.at("responses").contains(status);
    }
};

TEST_F(OpenApiTest, everyRouteOfTheServiceIsDescribedAndNoOther)
{
    std::set<std::string> described;
    for (const Operation& operation : operations())
        described.insert(operation.method + " " + operation.path);
    jobmanager_test::TemporaryFolder folder;
    job_service::JobStore store(folder.path());
    job_service::SimulatedBench bench({});
    const auto instrument = job_service::Instrument::standard();
    job_service::TestRunner runner(store, instrument, bench);
    std::set<std::string> served;
    for (const auto& routes : { job_service::JobApi(store, "").routes(), job_service::TestApi(store, runner).routes(),
             job_service::TemplateApi(store).routes(),
             job_service::TransferApi(store, { job_service::MediaRoots({}), {} }).routes() }) {
        for (const job_service::Route& route : routes)
            served.insert(route.method + " " + route.pattern);
    }
    EXPECT_EQ(served, described);
}

TEST_F(OpenApiTest, everyOperationAnswersAsDescribed)
{
    httpRequest(m_service.port(), "PUT", "/api/v1/active-job", R"({"id":"WO-1"})");
    const ExchangePeer peer(m_media.path() / "qzx");
    for (const Operation& operation : operations()) {
        // Deleting goes last: the other operations need the job.
        if (operation.method != "DELETE")
            expectAnswer(operation, call(operation, pathOf(operation), bodyOf(operation)), successOf(operation));
    }
    for (const Operation& operation : operations()) {
        if (operation.method == "DELETE")
            expectAnswer(operation, call(operation, pathOf(operation), {}), successOf(operation));
    }
}

TEST_F(OpenApiTest, unknownJobsAndTestsAnswerAsDescribed)
{
    int checked = 0;
    for (const Operation& operation : operations()) {
        for (const char* parameter : { "id", "uiIndex" }) {
            if (operation.path.find("{" + std::string(parameter) + "}") == std::string::npos)
                continue;
            expectAnswer(operation, call(operation, pathOf(operation, parameter, "99"), bodyOf(operation)), "404");
            ++checked;
        }
    }
    EXPECT_GE(checked, 9);
}

TEST_F(OpenApiTest, bodiesThatDoNotFitAnswerAsDescribed)
{
    int checked = 0;
    for (const Operation& operation : operations()) {
        if (!hasBody(operation))
            continue;
        const std::string path = pathOf(operation);
        expectAnswer(operation, call(operation, path, "[1]"), "400");
        expectAnswer(operation, call(operation, path, "{"), "400");
        expectAnswer(operation, call(operation, path, std::string((1 << 20) + 1, ' ')), "413");
        ++checked;
    }
    EXPECT_GE(checked, 6);
}

TEST_F(OpenApiTest, aMissingMemberOfABodyAnswersAsDescribed)
{
    for (const Operation& operation : operations()) {
        if (!hasBody(operation))
            continue;
        const json content = bodyContent(operation);
        for (const json& name : m_description.resolved(content.at("schema")).value("required", json::array())) {
            json body = content.at("example");
            body.erase(name.get<std::string>());
            expectAnswer(operation, call(operation, pathOf(operation), body.dump()), "400");
        }
    }
}

TEST_F(OpenApiTest, theConflictAndTheUnknownTemplateAnswerAsDescribed)
{
    int checked = 0;
    for (const Operation& operation : operations()) {
        if (operation.path != "/api/v1/jobs" || operation.method != "POST")
            continue;
        ++checked;
        expectAnswer(operation, call(operation, operation.path, R"({"workOrderNo":"WO-1"})"), "409");
        expectAnswer(operation, call(operation, operation.path, R"({"workOrderNo":"x","templateName":"none"})"), "404");
    }
    EXPECT_EQ(checked, 1);
}

TEST_F(OpenApiTest, refusedWritesOfAttributesAnswerAsDescribed)
{
    int checked = 0;
    for (const Operation& operation : operations()) {
        if (operation.method != "PATCH")
            continue;
        ++checked;
        const auto expectRefused = [&](const char* name, const char* status) {
            const json update = { { "jobManagerAttributes", { { name, { { "value", "x" } } } } } };
            expectAnswer(operation, call(operation, pathOf(operation), update.dump()), status);
        };
        expectRefused("fixed", "409");
        expectRefused("accessCode", "422");
        expectRefused("none", "404");
    }
    EXPECT_EQ(checked, 1);
}

TEST_F(OpenApiTest, refusedTransfersAnswerAsDescribed)
{
    int checked = 0;
    for (const Operation& operation : operations()) {
        if (operation.path != "/api/v1/exports" && operation.path != "/api/v1/imports")
            continue;
        ++checked;
        expectAnswer(operation, call(operation, operation.path, bodyContent(operation).at("example").dump()), "403");
        std::filesystem::remove(m_media.path() / "usb");
        expectAnswer(operation, call(operation, operation.path, bodyOf(operation)), "404");
    }
    EXPECT_EQ(checked, 2);
}

TEST_F(OpenApiTest, otherMethodsAreToldTheDescribedOnes)
{
    for (const auto& [path, item] : m_description.paths().items()) {
        std::set<std::string> described;
        for (const Operation& operation : operations()) {
            if (operation.path == path)
                described.insert(operation.method);
        }
        const std::string concrete = std::regex_replace(path, std::regex("\\{[^}]*\\}"), "0");
        const HttpReply reply = httpRequest(m_service.port(), "OPTIONS", concrete);
        EXPECT_EQ(reply.status, 405) << path;
        std::set<std::string> allowed;
        std::istringstream list(reply.headers.at("allow"));
        for (std::string method; std::getline(list >> std::ws, method, ',');)
            allowed.insert(method);
        EXPECT_EQ(allowed, described) << path;
    }
}

TEST_F(OpenApiTest, everyExampleFitsItsSchema)
{
    const auto check = [this](const std::string& name, const json& content) {
        ASSERT_TRUE(content.contains("example")) << name;
        EXPECT_EQ(m_description.fault(content.at("example"), content.at("schema")), "") << name;
    };
    for (const Operation& operation : operations()) {
        const std::string name = operation.method + " " + operation.path;
        if (hasBody(operation))
            check(name, bodyContent(operation));
        for (const auto& [status, reference] : operation.description.at("responses").items()) {
            const json& response = m_description.resolved(reference);
            if (response.contains("content"))
                check(name + " " + status, response.at("content").at("application/json"));
        }
    }
}

} // namespace
