#pragma once

#include "tests/service/ServiceFixture.h"
#include "tests/service/TemporaryFolder.h"

namespace jobmanager_test {

/// The answer to a launch that has started.
inline const json started{ { "success", true }, { "message", "" } };
/// The answer to a launch that was refused.
inline json refused(const std::string& status)
{
    return { { "success", false }, { "message", status } };
}
/// The same where another test runs.
inline const json busy = refused("ERROR_CUSTOM_NONFATAL^Another test is still running. Wait until it has finished.");

/// The service as a process, with the active job "a". Unless a test says otherwise it has two tests, the second of
/// which has two locations.
class LaunchFixture : public ServiceFixture
{
protected:
    TemporaryFolder m_files;
    json m_tests = json::parse(R"([{"testType":"otdr"},
        {"testType":"power","testLocations":[{"location":"A"},{"location":"B"}]}])");

    void start(const Arguments& arguments)
    {
        m_files.write("a.job.json", json{ { "details", { { "id", "a" } } }, { "tests", m_tests } }.dump());
        Arguments all{ "--load", (m_files.path() / "a.job.json").string() };
        all.insert(all.end(), arguments.begin(), arguments.end());
        m_service.setArguments(all);
        ASSERT_TRUE(m_service.start()) << m_service.log();
        ASSERT_EQ(call("PUT", "/active-job", R"({"id":"a"})").status, 204);
    }
    json launch(const std::string& uiIndex)
    {
        const HttpReply reply = call("POST", "/launches", json{ { "uiIndex", uiIndex } }.dump());
        EXPECT_EQ(reply.status, 200) << reply.body;
        return reply.status == 200 ? json::parse(reply.body) : json();
    }
    /// The results of the test or location that the pointer names, null if it has none.
    json results(const std::string& pointer)
    {
        return get("/jobs/a").value(json::json_pointer(pointer + "/results"), json());
    }
};

} // namespace jobmanager_test
