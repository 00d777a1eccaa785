#include "service/JobGenerator.h"

#include "api/cdm/JobCodec.h"
#include "tests/service/StoreFixture.h"

using namespace job_service;
using nlohmann::json;

namespace {

class JobGeneratorTest : public jobmanager_test::StoreFixture
{
};

TEST_F(JobGeneratorTest, theSameNumberGivesTheSameJob)
{
    for (const std::size_t number : { 0u, 1u, 977u })
        EXPECT_EQ(generatedJob(number, 20), generatedJob(number, 20));
    EXPECT_NE(generatedJob(0, 20), generatedJob(1, 20));
}

/// A changed generator shows here: sets of different versions would not be comparable.
TEST_F(JobGeneratorTest, theSetIsThatOfEveryOtherMachine)
{
    const json job = generatedJob(3, 2);
    EXPECT_EQ(job.at("details").at("id"), "GEN-0000003");
    EXPECT_EQ(job.at("details").at("timestamp"), "2026-01-01T09:51:00.000Z");
    EXPECT_EQ(job.at("details").at("customerName"), "Harbour Cable Co.");
    EXPECT_EQ(job.at("details").at("jobManagerAttributes").at("accessCode").at("value"), "5070");
}

TEST_F(JobGeneratorTest, generatedJobsKeepTheFormatAndAreNumbered)
{
    for (std::size_t number = 0; number < 50; ++number) {
        const json document = generatedJob(number, 20);
        cdm::DocumentError error;
        ASSERT_TRUE(cdm::jobFromJson(document, error)) << error.path << error.message;
        const std::string text = document.dump();
        EXPECT_EQ(json::parse(jobFromFile(text, "").document), document) << "numbering or time changed on loading";
    }
}

TEST_F(JobGeneratorTest, theSetIsMixed)
{
    EXPECT_EQ(generateJobs(store(), { 200, 10 }), 200u);
    std::size_t archived = 0;
    std::size_t untouched = 0;
    std::size_t done = 0;
    for (const json& entry : jobList()) {
        archived += entry.at("archived").get<bool>() ? 1 : 0;
        untouched += entry.at("numberOfCompletedRequiredTests") == 0 ? 1 : 0;
        done += entry.at("numberOfCompletedRequiredTests") == entry.at("totalNumberOfRequiredTests") ? 1 : 0;
    }
    EXPECT_GT(archived, 5u);
    EXPECT_LT(archived, 60u);
    EXPECT_GT(untouched, 20u);
    EXPECT_GT(done, 20u);
    EXPECT_LT(untouched + done, 200u);
}

TEST_F(JobGeneratorTest, generatingAgainAddsOnlyWhatIsMissing)
{
    generateJobs(store(), { 3, 1 });
    store().removeJob("GEN-0000001");
    const int before = store().changeCount();
    EXPECT_EQ(generateJobs(store(), { 5, 1 }), 3u);
    EXPECT_EQ(store().changeCount(), before + 1);
    EXPECT_EQ(jobList().size(), 5u);
}

TEST_F(JobGeneratorTest, theSummaryAgreesWithTheDocument)
{
    generateJobs(store(), { 20, 10 });
    for (const json& entry : jobList()) {
        const std::string text = store().document(entry.at("id")).value();
        EXPECT_EQ(json::parse(jobFromFile(text, "").summary), entry);
    }
}

} // namespace
