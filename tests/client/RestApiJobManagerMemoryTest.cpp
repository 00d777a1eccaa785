// Every operation with memory that ends at every single point of it, for once or for good: no exception leaves it, and
// the client is well afterwards. The answers are such that nothing of them is parsed: nlohmann's arrays and objects
// need memory to be destroyed, and end the process if there is none.

#include "client/RestApiJobManager.h"
#include "tests/client/Operations.h"
#include "tests/client/RawServer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <curl/curl.h>
#include <gtest/gtest.h>
#include <new>

namespace {

/// Lets allocations of this thread fail.
struct Shortage
{
    /// How many allocations still succeed; negative for no shortage.
    long left = -1;
    bool forGood = false;
    bool begun = false;
};

thread_local Shortage shortage;

bool memoryEnds()
{
    if (shortage.left < 0)
        return false;
    if (shortage.left > 0) {
        --shortage.left;
        return false;
    }
    shortage.begun = true;
    if (!shortage.forGood)
        shortage.left = -1;
    return true;
}

void* allocate(std::size_t size)
{
    return memoryEnds() ? nullptr : std::malloc(size);
}

void* allocateZeroed(std::size_t count, std::size_t size)
{
    return memoryEnds() ? nullptr : std::calloc(count, size);
}

void* reallocate(void* memory, std::size_t size)
{
    return memoryEnds() ? nullptr : std::realloc(memory, size);
}

char* duplicate(const char* text)
{
    return memoryEnds() ? nullptr : strdup(text);
}

} // namespace

void* operator new(std::size_t size)
{
    void* const memory = allocate(std::max<std::size_t>(size, 1));
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace {

using Client = RestApiJobManager;

/// A call with arguments that need no memory of their own.
struct Call
{
    const char* name;
    RawReply reply;
    void (*make)(Client&);
};

const nlohmann::json update = { { "contractorId", "C-1" } };

const std::string shortText = "W-1";

const RawReply success = emptyReply(204);
const RawReply failure = errorReply(500, "internal");

const Call calls[] = {
    { "getJobList", failure, [](Client& client) { client.getJobList(); } },
    { "getJob", failure, [](Client& client) { client.getJob("W-1"); } },
    { "getChangeCount", failure, [](Client& client) { client.getChangeCount(); } },
    { "getActiveWorkorderID", failure, [](Client& client) { client.getActiveWorkorderID(); } },
    { "setActiveWorkorderID", success, [](Client& client) { client.setActiveWorkorderID(shortText); } },
    { "newJob", failure, [](Client& client) { client.newJob(shortText, "a", "b", "c", true); } },
    { "deleteJob", success, [](Client& client) { client.deleteJob(shortText); } },
    { "archiveJob", success, [](Client& client) { client.archiveJob(shortText); } },
    { "restoreJob", success, [](Client& client) { client.restoreJob(shortText); } },
    { "launchTest", failure, [](Client& client) { client.launchTest(shortText); } },
    { "setManualTestResponse", success,
        [](Client& client) { client.setManualTestResponse(shortText, shortText, shortText); } },
    { "updateWorkflowAttributes", success, [](Client& client) { client.updateWorkflowAttributes(shortText, update); } },
    { "exportJobData", failure, [](Client& client) { client.exportJobData(shortText, shortText); } },
    { "importJobs", failure, [](Client& client) { client.importJobs(shortText); } },
    { "exchangeCurrentJob", success, [](Client& client) { client.exchangeCurrentJob(shortText, ""); } },
    { "getTemplateList", failure, [](Client& client) { client.getTemplateList(); } },
    { "getTemplateNumberOfTests", failure, [](Client& client) { client.getTemplateNumberOfTests(shortText); } },
    { "getTemplateWorkOrderLabel", failure, [](Client& client) { client.getTemplateWorkOrderLabel(shortText); } },
    { "getSettingsListInfo", failure, [](Client& client) { client.getSettingsListInfo(); } },
    { "writeSetting", success, [](Client& client) { client.writeSetting(shortText, shortText); } },
    { "setUiGroupType", success, [](Client& client) { client.setUiGroupType(shortText); } },
};

class EachCall : public testing::TestWithParam<std::tuple<Call, bool>>
{
protected:
    /// Makes the call with memory for so many allocations. False if it needed no more than that.
    static bool runShort(Client& client, long allocations)
    {
        shortage = { allocations, std::get<1>(GetParam()), false };
        bool threw = false;
        try {
            std::get<0>(GetParam()).make(client);
        } catch (...) {
            threw = true;
        }
        const bool wasShort = shortage.begun;
        shortage = {};
        EXPECT_FALSE(threw) << "after " << allocations << " allocations";
        return wasShort;
    }
};

TEST_P(EachCall, survivesTheEndOfMemoryAtEveryPoint)
{
    // libcurl's own memory ends as well.
    ASSERT_EQ(curl_global_init_mem(CURL_GLOBAL_DEFAULT, allocate, std::free, reallocate, duplicate, allocateZeroed),
        CURLE_OK);
    RawServer server;
    server.replyToAll(std::get<0>(GetParam()).reply);
    server.reply("GET /api/v1/login-config", operation("getInstrumentLoginConfig").goodReply());

    long allocations = 0;
    for (bool fresh : { true, false }) {
        Client kept("127.0.0.1", server.port());
        kept.getActiveWorkorderID();
        for (allocations = 0; allocations < 5000; ++allocations) {
            Client another("127.0.0.1", server.port());
            if (!runShort(fresh ? another : kept, allocations))
                break;
        }
        EXPECT_GT(allocations, 0);
        EXPECT_LT(allocations, 5000);
        EXPECT_EQ(kept.getInstrumentLoginConfig().techId, "T7");
    }
}

INSTANTIATE_TEST_SUITE_P(RestApiJobManager, EachCall, testing::Combine(testing::ValuesIn(calls), testing::Bool()),
    [](const testing::TestParamInfo<std::tuple<Call, bool>>& testCase) {
        return std::string(std::get<0>(testCase.param).name) + (std::get<1>(testCase.param) ? "_forGood" : "_once");
    });

} // namespace
