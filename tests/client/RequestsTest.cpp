// What each request may cost. What it looks like on the wire is tested with the operations.

#include "client/Requests.h"
#include "client/Deadlines.h"

#include <gtest/gtest.h>

namespace {

namespace requests = job_client::requests;
using job_client::HttpRequest;

struct Cost
{
    std::string name;
    HttpRequest request;
    int deadlineMilliseconds;
    std::size_t answerCap;
    bool hangsOnFirstMiss;
};

constexpr std::size_t small = 64 * 1024;
constexpr std::size_t large = 64 * 1024 * 1024;

std::vector<Cost> costs()
{
    return {
        { "changeCount", requests::changeCount(), 90, small, false },
        { "activeJob", requests::activeJob(), 90, small, false },
        { "settings", requests::settings(), 90, small, false },
        { "writeSetting", requests::writeSetting("id", "value"), 90, small, false },
        { "setUiGroupType", requests::setUiGroupType("location"), 90, small, false },
        { "loginConfig", requests::loginConfig(), 90, small, false },
        { "jobList", requests::jobList(), 5000, large, true },
        { "job", requests::job("id"), 5000, large, true },
        { "setActiveJob", requests::setActiveJob("id"), 5000, small, false },
        { "newJob", requests::newJob("", "", "", "", true), 5000, small, false },
        { "deleteJob", requests::deleteJob("id"), 5000, small, false },
        { "archiveJob", requests::archiveJob("id"), 5000, small, false },
        { "restoreJob", requests::restoreJob("id"), 5000, small, false },
        { "manualResponse", requests::manualResponse("", "", ""), 5000, small, false },
        { "updateJob", requests::updateJob("id", {}), 5000, small, false },
        { "templateList", requests::templateList(), 5000, small, false },
        { "jobTemplate", requests::jobTemplate("name"), 5000, small, false },
        { "launch", requests::launch("2"), 60000, small, false },
        { "exportJob", requests::exportJob("id", "/media"), 60000, small, false },
        { "importJobs", requests::importJobs("/media"), 60000, small, false },
        { "exchangeJob", requests::exchangeJob("/dev/qzx", ""), 60000, small, false },
    };
}

class RequestsTest : public testing::TestWithParam<Cost>
{
};

TEST_P(RequestsTest, costsAsMuchAsItMay)
{
    const Cost& cost = GetParam();
    EXPECT_EQ(cost.request.deadline.count(), static_cast<long>(cost.deadlineMilliseconds * JOBMANAGER_DEADLINE_FACTOR));
    EXPECT_EQ(cost.request.answerCap, cost.answerCap);
    EXPECT_EQ(cost.request.hangsOnFirstMiss, cost.hangsOnFirstMiss);
}

std::string caseName(const testing::TestParamInfo<Cost>& info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Requests, RequestsTest, testing::ValuesIn(costs()), caseName);

} // namespace
