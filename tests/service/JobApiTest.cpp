#include "service/JobApi.h"

#include "service/UtcTime.h"
#include "tests/service/ApiFixture.h"

using namespace job_service;
using nlohmann::json;

namespace {

class JobApiTest : public jobmanager_test::ApiFixture
{
protected:
    JobApiTest() { serve(m_api.routes()); }

    JobApi m_api{ store(), "t-0107" };
};

TEST_F(JobApiTest, changeCountIsThatOfTheStore)
{
    addJob("a");
    EXPECT_EQ(get("/change-count"), (json{ { "changeCount", store().changeCount() } }));
}

TEST_F(JobApiTest, changeCountAnswersOnTheIoThread)
{
    for (const Route& route : m_api.routes()) {
        if (route.pattern == "/api/v1/change-count") {
            EXPECT_TRUE(route.answersAtOnce);
        }
    }
}

TEST_F(JobApiTest, statusTellsServiceVersionAndStore)
{
    const json status = get("/status");
    EXPECT_EQ(status.at("service"), "job-service");
    EXPECT_EQ(status.at("version"), JOBMANAGER_VERSION);
    EXPECT_EQ(status.at("store"), "ok");
    EXPECT_TRUE(isUtcText(status.at("since").get<std::string>()));
}

TEST_F(JobApiTest, loginConfigNamesTheTechnician)
{
    EXPECT_EQ(get("/login-config"), (json{ { "techId", "t-0107" }, { "opaqueText1", "" }, { "opaqueText2", "" } }));
}

TEST_F(JobApiTest, jobsAndJobAreServed)
{
    addJob("a");
    EXPECT_EQ(get("/jobs"), (json{ { "jobs", jobList() } }));
    EXPECT_EQ(get("/jobs/a"), document("a"));
    expectRefused(404, "job_not_found", "GET", "/jobs/b");
    expectRefused(404, "job_not_found", "GET", "/jobs/");
}

TEST_F(JobApiTest, anIdWithASlashIsOneSegment)
{
    addJob("a/b ../\xC3\xBC");
    EXPECT_EQ(get("/jobs/a%2Fb%20..%2F%C3%BC").at("details").at("id"), "a/b ../\xC3\xBC");
}

TEST_F(JobApiTest, aJobIsCreated)
{
    const int before = store().changeCount();
    const HttpResponse response = call("POST", "/jobs",
        R"({"workOrderNo":"WO-1","techId":"t-7","templateName":"","locationsFilename":"","syncToNimbrel":true,"x":1})");
    EXPECT_EQ(response.status, 201);
    EXPECT_EQ(json::parse(response.body), (json{ { "id", "WO-1" } }));
    EXPECT_EQ(store().changeCount(), before + 1);
    const json details = document("WO-1").at("details");
    EXPECT_EQ(details.at("techInfo").at("techId"), "t-7");
    EXPECT_EQ(details.at("syncToNimbrel"), true);
    EXPECT_EQ(get("/jobs").at("jobs").at(0).at("id"), "WO-1");
}

TEST_F(JobApiTest, theNumberOfTheWorkOrderIsEnoughToCreateAJob)
{
    EXPECT_EQ(call("POST", "/jobs", R"({"workOrderNo":"WO-1"})").status, 201);
}

TEST_F(JobApiTest, aJobIsCreatedFromATemplate)
{
    store().putTemplate("T", R"({"name":"T","workOrderLabel":"Ticket","tests":[{"testType":"x"}]})");
    EXPECT_EQ(call("POST", "/jobs", R"({"workOrderNo":"WO-1","templateName":"T"})").status, 201);
    EXPECT_EQ(document("WO-1").at("tests").size(), 1u);
    EXPECT_EQ(summary("WO-1").at("workOrderLabel"), "Ticket");
}

TEST_F(JobApiTest, creationIsRefused)
{
    addJob("a");
    expectRefused(409, "job_exists", "POST", "/jobs", R"({"workOrderNo":"a"})");
    expectRefused(404, "template_not_found", "POST", "/jobs", R"({"workOrderNo":"b","templateName":"T"})");
    expectRefused(404, "locations_not_found", "POST", "/jobs", R"({"workOrderNo":"b","locationsFilename":"f"})");
    expectRefused(400, "invalid_id", "POST", "/jobs", R"({"workOrderNo":""})");
    expectRefused(400, "invalid_id", "POST", "/jobs", R"({"workOrderNo":"a\u0000"})");
    expectRefused(400, "invalid_request", "POST", "/jobs", R"({})");
    expectRefused(400, "invalid_request", "POST", "/jobs", R"({"workOrderNo":"b","techId":1})");
    expectRefused(400, "invalid_request", "POST", "/jobs", R"({"workOrderNo":"b","syncToNimbrel":"true"})");
    EXPECT_EQ(jobList().size(), 1u);
}

/// Row by row what might be taken for an id.
TEST_F(JobApiTest, anIdIsAStringAndNothingElse)
{
    for (const char* id : { "0", "-1", "1.0", "true", "2147483648", "4294967297", "9007199254740993",
             "9223372036854775808", "1e300", "null", "[]", "{}" }) {
        expectRefused(400, "invalid_request", "POST", "/jobs", std::string(R"({"workOrderNo":)") + id + "}");
        expectRefused(400, "invalid_request", "PUT", "/active-job", std::string(R"({"id":)") + id + "}");
    }
    EXPECT_EQ(call("POST", "/jobs", R"({"workOrderNo":"1"})").status, 201);
}

TEST_F(JobApiTest, aJobIsDeleted)
{
    addJob("a");
    expectDone(1, "DELETE", "/jobs/a");
    expectRefused(404, "job_not_found", "DELETE", "/jobs/a");
}

TEST_F(JobApiTest, archivingAndRestoringSetTheMember)
{
    addJob("a");
    expectDone(1, "POST", "/jobs/a/archive");
    EXPECT_EQ(document("a").at("details").at("archived"), true);
    EXPECT_EQ(summary("a").at("archived"), true);
    expectDone(1, "POST", "/jobs/a/archive");
    expectDone(1, "POST", "/jobs/a/restore");
    EXPECT_EQ(summary("a").at("archived"), false);
    expectRefused(404, "job_not_found", "POST", "/jobs/b/archive");
    expectRefused(404, "job_not_found", "POST", "/jobs/b/restore");
}

TEST_F(JobApiTest, theActiveJobStaysActiveWhenItIsArchived)
{
    addJob("a");
    expectDone(1, "PUT", "/active-job", R"({"id":"a"})");
    expectDone(1, "POST", "/jobs/a/archive");
    EXPECT_EQ(get("/active-job"), (json{ { "id", "a" } }));
}

TEST_F(JobApiTest, theActiveJobIsSetAndCleared)
{
    addJob("a");
    EXPECT_EQ(get("/active-job"), (json{ { "id", "" } }));
    expectDone(1, "PUT", "/active-job", R"({"id":"a"})");
    EXPECT_EQ(get("/active-job"), (json{ { "id", "a" } }));
    expectRefused(404, "job_not_found", "PUT", "/active-job", R"({"id":"b"})");
    expectDone(1, "PUT", "/active-job", R"({"id":""})");
    EXPECT_EQ(get("/active-job"), (json{ { "id", "" } }));
}

TEST_F(JobApiTest, attributesOfAJobAreReplaced)
{
    addJob("a");
    expectDone(1, "PUT", "/jobs/a/attributes", R"({"k":{"label":"L","value":"V"},"any":[1.10]})");
    expectDone(1, "PUT", "/jobs/a/attributes", R"({"any":[1.10,{"x":null}]})");
    EXPECT_EQ(document("a").at("details").at("jobManagerAttributes"), json::parse(R"({"any":[1.1,{"x":null}]})"));
    EXPECT_NE(store().document("a")->find("1.10"), std::string::npos);
    expectRefused(400, "invalid_request", "PUT", "/jobs/a/attributes", "[]");
    expectRefused(400, "invalid_request", "PUT", "/jobs/a/attributes", "null");
    expectRefused(404, "job_not_found", "PUT", "/jobs/b/attributes", "{}");
}

TEST_F(JobApiTest, attributesOfTestsAndLocationsAreReplaced)
{
    addJob("a");
    expectDone(1, "PUT", "/jobs/a/tests/0/attributes", R"({"k":1})");
    expectDone(1, "PUT", "/jobs/a/tests/1_1/attributes", R"({"k":2})");
    EXPECT_EQ(document("a").at("tests")[0].at("attributes"), (json{ { "k", 1 } }));
    EXPECT_EQ(document("a").at("tests")[1].at("testLocations")[1].at("attributes"), (json{ { "k", 2 } }));
    expectRefused(400, "invalid_request", "PUT", "/jobs/a/tests/0/attributes", "3");
    expectRefused(404, "test_not_found", "PUT", "/jobs/a/tests/2/attributes", "{}");
    expectRefused(404, "job_not_found", "PUT", "/jobs/b/tests/0/attributes", "{}");
}

TEST_F(JobApiTest, resultsAreReplacedAndTakenAway)
{
    addJob("a");
    expectDone(1, "PUT", "/jobs/a/tests/0/results", R"({"status":"fail","time":"t","data":{"big":1e300}})");
    EXPECT_EQ(document("a").at("tests")[0].at("results").at("status"), "fail");
    EXPECT_EQ(summary("a").at("numberOfCompletedRequiredTests"), 1);
    expectDone(1, "PUT", "/jobs/a/tests/0/results", "null");
    EXPECT_FALSE(document("a").at("tests")[0].contains("results"));
    EXPECT_EQ(summary("a").at("numberOfCompletedRequiredTests"), 0);
    expectDone(1, "PUT", "/jobs/a/tests/0/results", "null");
    expectDone(1, "PUT", "/jobs/a/tests/1_0/results", R"({"status":"pass","time":"t"})");
    EXPECT_EQ(document("a").at("tests")[1].at("testLocations")[0].at("results").at("status"), "pass");
}

TEST_F(JobApiTest, resultsHaveToKeepTheFormat)
{
    addJob("a");
    expectRefused(400, "invalid_document", "PUT", "/jobs/a/tests/0/results", R"({"status":"pass"})");
    expectRefused(400, "invalid_document", "PUT", "/jobs/a/tests/0/results", R"({"time":"t"})");
    expectRefused(400, "invalid_document", "PUT", "/jobs/a/tests/0/results", R"({"status":1,"time":"t"})");
    expectRefused(400, "invalid_document", "PUT", "/jobs/a/tests/1_1/results", "[]");
    expectRefused(400, "invalid_document", "PUT", "/jobs/a/tests/0/results", "\"pass\"");
    expectRefused(404, "test_not_found", "PUT", "/jobs/a/tests/0_0/results", R"({"status":"pass","time":"t"})");
    expectRefused(404, "test_not_found", "PUT", "/jobs/a/tests/x/results", "null");
    expectRefused(404, "job_not_found", "PUT", "/jobs/b/tests/0/results", "null");
    EXPECT_FALSE(document("a").at("tests")[0].contains("results"));
}

TEST_F(JobApiTest, aBodyMayNotPushTheDocumentBelowTheDepthLimit)
{
    addJob("a");
    const auto nested = [](std::size_t depth) {
        return R"({"x":)" + std::string(depth - 1, '[') + std::string(depth - 1, ']') + "}";
    };
    expectDone(1, "PUT", "/jobs/a/tests/0/attributes", nested(61));
    expectRefused(400, "invalid_document", "PUT", "/jobs/a/tests/0/attributes", nested(62));
}

TEST_F(JobApiTest, settingsAreStoredWithoutMovingTheCount)
{
    EXPECT_EQ(get("/settings"), json::parse(R"({"settings":{}})"));
    expectDone(0, "PUT", "/settings/groupType", R"({"value":"2"})");
    expectDone(0, "PUT", "/settings/a%2Fb", R"({"value":""})");
    EXPECT_EQ(get("/settings"), json::parse(R"({"settings":{"a/b":"","groupType":"2"}})"));
    expectRefused(400, "invalid_request", "PUT", "/settings/x", R"({"value":2})");
    expectRefused(400, "invalid_request", "PUT", "/settings/x", R"({})");
    expectRefused(400, "invalid_request", "PUT", "/settings/", R"({"value":"2"})");
    expectRefused(400, "invalid_request", "PUT", "/settings/" + std::string(257, 'x'), R"({"value":"2"})");
}

TEST_F(JobApiTest, theGroupTypeIsNoSettingAndRenumbersNothing)
{
    addJob("a");
    const std::string before = store().document("a").value();
    EXPECT_EQ(get("/ui-group-type"), (json{ { "groupType", "job_order" } }));
    for (const char* groupType : { "location", "testtype", "job_order" }) {
        expectDone(0, "PUT", "/ui-group-type", json{ { "groupType", groupType } }.dump());
        EXPECT_EQ(get("/ui-group-type"), (json{ { "groupType", groupType } }));
        EXPECT_EQ(store().document("a"), before);
    }
    EXPECT_EQ(get("/settings"), json::parse(R"({"settings":{}})"));
    expectRefused(400, "invalid_request", "PUT", "/ui-group-type", R"({"groupType":"none"})");
    expectRefused(400, "invalid_request", "PUT", "/ui-group-type", R"({"groupType":1})");
}

TEST_F(JobApiTest, whatIsNotServedIsNotFound)
{
    for (const char* path : { "/nothing", "/templates", "/jobs/a/b", "" }) {
        expectRefused(404, "not_found", "GET", path);
        expectRefused(404, "not_found", "POST", path, "{}");
    }
}

TEST_F(JobApiTest, aWrongMethodIsToldTheRightOnes)
{
    addJob("a");
    const HttpResponse response = call("POST", "/jobs/a", "{}");
    EXPECT_EQ(response.status, 405);
    using Fields = std::vector<std::pair<std::string, std::string>>;
    EXPECT_EQ(response.fields, (Fields{ { "Allow", "GET, PATCH, DELETE" } }));
    for (const char* method : { "OPTIONS", "TRACE", "HEAD", "BREW" })
        expectRefused(405, "method_not_allowed", method, "/jobs");
    expectRefused(405, "method_not_allowed", "POST", "/jobs/a/attributes", "{}");
}

TEST_F(JobApiTest, everyRouteRefusesAForeignHostAndOrigin)
{
    addJob("a");
    const int before = store().changeCount();
    for (const Route& route : m_api.routes()) {
        HttpHead head{ route.method, route.pattern, { { "host", "evil.example:8082" } }, {}, false };
        const auto foreignHost = router().decide(head);
        ASSERT_TRUE(std::holds_alternative<HttpResponse>(foreignHost)) << route.pattern;
        EXPECT_EQ(std::get<HttpResponse>(foreignHost).status, 403) << route.pattern;
        head.fields = { { "host", "127.0.0.1:8082" }, { "origin", "http://evil.example" } };
        EXPECT_EQ(std::get<HttpResponse>(router().decide(head)).status, 403) << route.pattern;
        head.fields = { { "host", "127.0.0.1:8082" }, { "sec-fetch-site", "cross-site" } };
        EXPECT_EQ(std::get<HttpResponse>(router().decide(head)).status, 403) << route.pattern;
    }
    EXPECT_EQ(store().changeCount(), before);
}

TEST_F(JobApiTest, everyWritingRouteRefusesWhatAFormCanSend)
{
    for (const Route& route : m_api.routes()) {
        if (route.method == "GET")
            continue;
        for (const char* type :
            { "text/plain", "multipart/form-data; boundary=x", "application/x-www-form-urlencoded" }) {
            const HttpHead head{ route.method, route.pattern,
                { { "host", "127.0.0.1:8082" }, { "content-type", type } }, 2, false };
            const auto decision = router().decide(head);
            ASSERT_TRUE(std::holds_alternative<HttpResponse>(decision)) << route.pattern;
            EXPECT_EQ(std::get<HttpResponse>(decision).status, 415) << route.pattern;
        }
    }
}

/// Every answer that allows other sites anything would be a hole.
TEST_F(JobApiTest, noAnswerAllowsOtherSites)
{
    for (const Route& route : m_api.routes()) {
        for (const auto& [name, value] : call("OPTIONS", route.pattern.substr(7)).fields)
            EXPECT_EQ(name, "Allow") << value;
    }
}

struct BodyCase
{
    const char* name;
    std::string body;
};

void PrintTo(const BodyCase& bodyCase, std::ostream* stream)
{
    *stream << bodyCase.name;
}

class HostileBody : public JobApiTest, public testing::WithParamInterface<BodyCase>
{
};

TEST_P(HostileBody, isRefusedByEveryRouteThatTakesJson)
{
    addJob("a");
    const int before = store().changeCount();
    const std::string text = store().document("a").value();
    for (const char* route :
        { "POST /jobs", "PATCH /jobs/a", "PUT /jobs/a/attributes", "PUT /jobs/a/tests/0/attributes",
            "PUT /jobs/a/tests/0/results", "PUT /active-job", "PUT /settings/x", "PUT /ui-group-type" }) {
        const std::string line = route;
        const std::size_t blank = line.find(' ');
        const HttpResponse response = call(line.substr(0, blank), line.substr(blank + 1), GetParam().body);
        EXPECT_EQ(response.status, 400) << route << ' ' << response.body;
        EXPECT_TRUE(json::parse(response.body).at("error").contains("code"));
    }
    EXPECT_EQ(store().changeCount(), before);
    EXPECT_EQ(store().document("a"), text);
    EXPECT_TRUE(store().settings().empty());
}

INSTANTIATE_TEST_SUITE_P(Bodies, HostileBody,
    testing::Values(BodyCase{ "blank", " " }, BodyCase{ "array", "[]" }, BodyCase{ "string", "\"x\"" },
        BodyCase{ "number", "1" }, BodyCase{ "depth65", std::string(65, '[') + std::string(65, ']') },
        BodyCase{ "depth1025", std::string(1025, '[') + std::string(1025, ']') },
        BodyCase{ "depth100000", std::string(100000, '[') }, BodyCase{ "invalidUtf8", "{\"id\":\"\xFF\"}" },
        BodyCase{ "loneSurrogate", R"({"id":"\ud800"})" }, BodyCase{ "nulInName", std::string("{\"i\0d\":1}", 9) },
        BodyCase{ "byteOrderMark", "\xEF\xBB\xBF{}" }, BodyCase{ "nan", R"({"id":NaN})" },
        BodyCase{ "numberOutOfRange", R"({"id":1e999})" }, BodyCase{ "trailingComma", R"({"id":"a",})" },
        BodyCase{ "trailingGarbage", R"({"id":"a"} x)" }, BodyCase{ "comment", "{} // x" },
        BodyCase{ "singleQuotes", "{'id':'a'}" }),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(JobApiTest, theLastOfEqualMembersCounts)
{
    EXPECT_EQ(call("POST", "/jobs", R"({"workOrderNo":"first","workOrderNo":"last"})").status, 201);
    EXPECT_TRUE(store().document("last"));
    EXPECT_FALSE(store().document("first"));
}

TEST_F(JobApiTest, largeBodiesWithinTheLimitAreTaken)
{
    addJob("a");
    std::string keys = "{";
    for (int i = 0; i < 10000; ++i)
        keys += (i ? ",\"k" : "\"k") + std::to_string(i) + "\":1";
    expectDone(1, "PUT", "/jobs/a/attributes", keys + "}");
    EXPECT_EQ(document("a").at("details").at("jobManagerAttributes").size(), 10000u);
    expectDone(1, "PUT", "/jobs/a/attributes", R"({"x":")" + std::string(1000000, 'x') + "\"}");
    std::string array = "{\"x\":[0";
    for (int i = 1; i < 500000; ++i)
        array += ",0";
    expectDone(1, "PUT", "/jobs/a/attributes", array + "]}");
}

TEST_F(JobApiTest, aBodyCutAtAnyByteIsRefused)
{
    const std::string body = R"({"workOrderNo":"a\u00e4","techId":"t","syncToNimbrel":false})";
    for (std::size_t length = 1; length < body.size(); ++length)
        expectRefused(400, "invalid_json", "POST", "/jobs", body.substr(0, length));
    EXPECT_EQ(store().jobList(), "[]");
}

} // namespace
