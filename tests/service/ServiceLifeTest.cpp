// The service as a process: how it starts, ends, and what survives.

#include "tests/service/ServiceFixture.h"
#include "tests/service/TemporaryFolder.h"
#include "tests/support/Connection.h"

#include <atomic>
#include <random>
#include <sys/resource.h>
#include <thread>

using namespace std::chrono_literals;
using jobmanager_test::Connection;
using jobmanager_test::HttpReply;
using jobmanager_test::httpRequest;
using jobmanager_test::ServiceProcess;
using jobmanager_test::stretched;
using nlohmann::json;

namespace {

class ServiceLifeTest : public jobmanager_test::ServiceFixture
{
protected:
    void start(std::vector<std::string> arguments = {})
    {
        m_service.setArguments(std::move(arguments));
        ASSERT_TRUE(m_service.start()) << m_service.log();
    }
    std::size_t numberOfJobs() { return get("/jobs").at("jobs").size(); }
};

TEST_F(ServiceLifeTest, aFreePortIsPickedAndTold)
{
    start();
    EXPECT_GT(m_service.port(), 0);
    EXPECT_EQ(get("/status").at("service"), "job-service");
}

TEST_F(ServiceLifeTest, terminationIsClean)
{
    start();
    EXPECT_EQ(call("POST", "/jobs", R"({"workOrderNo":"a"})").status, 201);
    Connection idle(m_service.port());
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(m_service.terminate(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, stretched(2s));
    EXPECT_FALSE(std::filesystem::exists(m_service.dataFolder() / "jobs.sqlite-wal"));
    EXPECT_EQ(m_service.log(), "");
}

TEST_F(ServiceLifeTest, theDataFolderIsItsUsersAlone)
{
    start();
    using std::filesystem::perms;
    for (const char* name : { "", "jobs.sqlite", "lock" }) {
        const auto permissions = std::filesystem::status(m_service.dataFolder() / name).permissions();
        EXPECT_EQ(permissions & (perms::group_all | perms::others_all), perms::none) << name;
    }
}

TEST_F(ServiceLifeTest, aRestartKeepsEverythingAndMovesTheCountByTwoOrMore)
{
    start();
    EXPECT_EQ(call("POST", "/jobs", R"({"workOrderNo":"a"})").status, 201);
    EXPECT_EQ(call("PUT", "/active-job", R"({"id":"a"})").status, 204);
    EXPECT_EQ(call("PUT", "/settings/groupType", R"({"value":"2"})").status, 204);
    const int before = changeCount();
    const json document = get("/jobs/a");
    EXPECT_EQ(m_service.terminate(), 0);
    start();
    EXPECT_GE(changeCount() - before, 2);
    EXPECT_EQ(get("/jobs/a"), document);
    EXPECT_EQ(get("/active-job").at("id"), "a");
    EXPECT_EQ(get("/settings").at("settings").at("groupType"), "2");
}

TEST_F(ServiceLifeTest, afterACrashTheCountMovesByTwoOrMoreOnTheSamePort)
{
    start();
    const unsigned short port = m_service.port();
    const int before = changeCount();
    ASSERT_TRUE(m_service.restart()) << m_service.log();
    EXPECT_EQ(m_service.port(), port);
    EXPECT_GE(changeCount() - before, 2);
}

/// What was acknowledged is there after each kill; what was not may or may not be.
TEST_F(ServiceLifeTest, killsLoseNoAcknowledgedChange)
{
    start({ "--generate", "jobs=1,tests=1" });
    std::mt19937 random(7);
    int next = 0;
    for (int round = 0; round < 10; ++round) {
        std::atomic<int> acknowledged{ -1 };
        const int countBefore = changeCount();
        std::thread writer([&, first = next] {
            for (int number = first;; ++number) {
                const std::string body = R"({"workOrderNo":"job-)" + std::to_string(number) + "\"}";
                if (httpRequest(m_service.port(), "POST", "/api/v1/jobs", body).status != 201)
                    return;
                acknowledged = number;
            }
        });
        const int wanted = next + 1 + static_cast<int>(random() % 20);
        while (acknowledged < wanted)
            std::this_thread::yield();
        m_service.kill();
        writer.join();
        start();
        for (int number = next; number <= acknowledged; ++number)
            EXPECT_EQ(call("GET", "/jobs/job-" + std::to_string(number)).status, 200) << "round " << round;
        EXPECT_GE(changeCount() - countBefore, acknowledged - next + 1 + 2);
        next = acknowledged + 2;
        EXPECT_EQ(get("/status").at("store"), "ok");
    }
}

TEST_F(ServiceLifeTest, aStoppedServiceAnswersOnceItGoesOn)
{
    start();
    m_service.stop();
    Connection waiting(m_service.port());
    ASSERT_TRUE(waiting.send(
        "GET /api/v1/change-count HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(m_service.port()) + "\r\n\r\n"));
    m_service.resume();
    EXPECT_EQ(waiting.readReply().status, 200);
}

TEST_F(ServiceLifeTest, aSecondServiceOnTheSamePortSaysSoAndEnds)
{
    start();
    ServiceProcess second;
    second.setPort(m_service.port());
    EXPECT_FALSE(second.start());
    EXPECT_EQ(second.waitForEnd(), 1);
    EXPECT_NE(second.log().find("Port " + std::to_string(m_service.port())), std::string::npos) << second.log();
    EXPECT_EQ(get("/status").at("service"), "job-service");
}

TEST_F(ServiceLifeTest, aSecondServiceOnTheSameDataSaysSoAndEnds)
{
    start();
    const int before = changeCount();
    ServiceProcess second;
    second.setDataFolder(m_service.dataFolder());
    EXPECT_FALSE(second.start());
    EXPECT_EQ(second.waitForEnd(), 1);
    EXPECT_NE(second.log().find("Another job-service is using the data folder"), std::string::npos) << second.log();
    EXPECT_EQ(changeCount(), before);
}

TEST_F(ServiceLifeTest, theDataIsFreeAgainAfterACrash)
{
    start();
    m_service.kill();
    ServiceProcess second;
    second.setDataFolder(m_service.dataFolder());
    EXPECT_TRUE(second.start()) << second.log();
}

TEST_F(ServiceLifeTest, aDamagedStoreIsPutAsideAndTold)
{
    std::filesystem::create_directories(m_service.dataFolder());
    std::ofstream(m_service.dataFolder() / "jobs.sqlite") << std::string(10000, 'x');
    start();
    EXPECT_EQ(get("/status").at("store"), "replaced");
    EXPECT_EQ(numberOfJobs(), 0u);
    EXPECT_NE(m_service.log().find("jobs.sqlite.corrupt-1"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(m_service.dataFolder() / "jobs.sqlite.corrupt-1"));
}

TEST_F(ServiceLifeTest, filesAreLoadedBeforeThePortIsOpened)
{
    jobmanager_test::TemporaryFolder files;
    files.write("a.job.json", R"({"details":{"id":"a"},"tests":[{"testType":"x"}]})");
    files.write("bad.job.json", R"({"details":{}})");
    start({ "--load", files.path().string() });
    EXPECT_EQ(numberOfJobs(), 1u);
    EXPECT_NE(m_service.log().find("bad.job.json: /details/id: "), std::string::npos) << m_service.log();
}

TEST_F(ServiceLifeTest, loadingAgainKeepsWhatWasRecorded)
{
    jobmanager_test::TemporaryFolder files;
    files.write("a.job.json", R"({"details":{"id":"a"},"tests":[{"testType":"x"}]})");
    start({ "--load", files.path().string() });
    EXPECT_EQ(call("PUT", "/jobs/a/tests/0/results", R"({"status":"pass","time":"t"})").status, 204);
    ASSERT_TRUE(m_service.restart()) << m_service.log();
    EXPECT_EQ(get("/jobs/a").at("tests")[0].at("results").at("status"), "pass");
    EXPECT_NE(m_service.log().find("already there and kept as it is: job a"), std::string::npos) << m_service.log();
}

TEST_F(ServiceLifeTest, generatedSetsAreTheSameEverywhere)
{
    start({ "--generate", "jobs=50,tests=5" });
    ServiceProcess other({ "--generate=jobs=50,tests=5" });
    ASSERT_TRUE(other.start()) << other.log();
    EXPECT_EQ(numberOfJobs(), 50u);
    EXPECT_EQ(call("GET", "/jobs").body, httpRequest(other.port(), "GET", "/api/v1/jobs").body);
    EXPECT_EQ(call("GET", "/jobs/GEN-0000017").body, httpRequest(other.port(), "GET", "/api/v1/jobs/GEN-0000017").body);
}

TEST_F(ServiceLifeTest, theTechnicianIsAnOption)
{
    start({ "--tech-id", "t-0107" });
    EXPECT_EQ(get("/login-config"), (json{ { "techId", "t-0107" }, { "opaqueText1", "" }, { "opaqueText2", "" } }));
}

TEST_F(ServiceLifeTest, terminationDoesNotWaitForALongLoad)
{
    jobmanager_test::TemporaryFolder files;
    m_service.setArguments({ "--load", files.path().string(), "--generate", "jobs=1000000,tests=100" });
    ASSERT_TRUE(m_service.launch());
    while (m_service.log().find("0 jobs loaded") == std::string::npos)
        std::this_thread::yield();
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(m_service.terminate(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, stretched(2s));
    start();
    EXPECT_EQ(numberOfJobs(), 0u) << "a load is one change";
}

/// No file of the service may grow beyond the log of its store as it is.
TEST_F(ServiceLifeTest, withoutRoomItRefusesChangesAndGoesOnWhenThereIsRoomAgain)
{
    start({ "--generate", "jobs=20,tests=5" });
    const rlimit noRoom{ std::filesystem::file_size(m_service.dataFolder() / "jobs.sqlite-wal"), RLIM_INFINITY };
    const rlimit room{ RLIM_INFINITY, RLIM_INFINITY };
    const int before = changeCount();
    ASSERT_EQ(::prlimit(m_service.pid(), RLIMIT_FSIZE, &noRoom, nullptr), 0);
    for (const auto& [method, path, body] : { std::tuple{ "POST", "/jobs", R"({"workOrderNo":"a"})" },
             std::tuple{ "DELETE", "/jobs/GEN-0000001", "" }, std::tuple{ "POST", "/jobs/GEN-0000002/archive", "" },
             std::tuple{ "PUT", "/active-job", R"({"id":"GEN-0000001"})" },
             std::tuple{ "PUT", "/settings/groupType", R"({"value":"2"})" } }) {
        const HttpReply refused = call(method, path, body);
        EXPECT_EQ(refused.status, 507) << path;
        EXPECT_EQ(
            refused.body, R"({"error":{"code":"storage_full","message":"There is no room left to store this."}})");
    }
    EXPECT_NE(m_service.log().find("the store failed: database or disk is full"), std::string::npos);
    EXPECT_EQ(numberOfJobs(), 20u);
    EXPECT_EQ(call("GET", "/jobs/GEN-0000001").status, 200);
    EXPECT_EQ(changeCount(), before);
    EXPECT_EQ(get("/status").at("store"), "ok");

    ASSERT_EQ(::prlimit(m_service.pid(), RLIMIT_FSIZE, &room, nullptr), 0);
    EXPECT_EQ(call("POST", "/jobs", R"({"workOrderNo":"a"})").status, 201);
    EXPECT_EQ(changeCount(), before + 1);
    ASSERT_TRUE(m_service.restart()) << m_service.log();
    EXPECT_EQ(numberOfJobs(), 21u);
    EXPECT_EQ(get("/status").at("store"), "ok");
}

TEST_F(ServiceLifeTest, damageWhileRunningIsToldAndPutAsideAtTheNextStart)
{
    start({ "--generate", "jobs=50,tests=20" });
    // What a clean end has moved into the file is read from there.
    ASSERT_EQ(m_service.terminate(), 0);
    start();
    const std::filesystem::path file = m_service.dataFolder() / "jobs.sqlite";
    const std::size_t page = 4096;
    std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
    stream.seekp(page);
    stream << std::string(std::filesystem::file_size(file) - page, '\x5a');
    stream.close();

    const json before = get("/status");
    EXPECT_EQ(before.at("store"), "ok");
    const HttpReply refused = call("GET", "/jobs");
    EXPECT_EQ(refused.status, 503);
    EXPECT_EQ(refused.body, R"({"error":{"code":"store_damaged","message":"The store of the service is damaged."}})");
    const json status = get("/status");
    EXPECT_EQ(status.at("store"), "damaged");
    EXPECT_GE(status.at("since"), before.at("since"));
    EXPECT_GT(changeCount(), 0);

    ASSERT_TRUE(m_service.restart()) << m_service.log();
    EXPECT_EQ(get("/status").at("store"), "replaced");
    EXPECT_EQ(numberOfJobs(), 0u);
    EXPECT_TRUE(std::filesystem::exists(file.string() + ".corrupt-1"));
}

struct FailureCase
{
    const char* name;
    std::vector<std::string> arguments;
    int exitCode;
    const char* log;
};

class FailingStart : public ServiceLifeTest, public testing::WithParamInterface<FailureCase>
{
};

TEST_P(FailingStart, saysWhyAndEnds)
{
    m_service.setArguments(GetParam().arguments);
    EXPECT_FALSE(m_service.start());
    EXPECT_EQ(m_service.waitForEnd(), GetParam().exitCode);
    EXPECT_NE(m_service.log().find(GetParam().log), std::string::npos) << m_service.log();
}

INSTANTIATE_TEST_SUITE_P(Arguments, FailingStart,
    testing::Values(FailureCase{ "unknownOption", { "--prot", "1" }, 2, "there is no option \"--prot\"" },
        FailureCase{ "badPort", { "--port=99999" }, 2, "--port takes a number" },
        FailureCase{ "nothingToLoad", { "--load", "/nonexistent/x" }, 1, "nothing to load" },
        FailureCase{ "noDataFolder", { "--data", "/proc/nowhere" }, 1, "The data folder" }),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(ServiceLifeTest, aStoreThatCannotBeOpenedIsTold)
{
    std::filesystem::create_directories(m_service.dataFolder() / "jobs.sqlite");
    EXPECT_FALSE(m_service.start());
    EXPECT_EQ(m_service.waitForEnd(), 1);
    EXPECT_EQ(m_service.log(), "job-service: the store failed: unable to open database file\n");
}

TEST_F(ServiceLifeTest, aNewerStoreIsRefused)
{
    start();
    const std::filesystem::path file = m_service.dataFolder() / "jobs.sqlite";
    ASSERT_EQ(m_service.terminate(), 0);
    // The user version stands at offset 60 of the header.
    std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
    stream.seekp(60);
    stream.write("\0\0\0\7", 4);
    stream.close();
    EXPECT_FALSE(m_service.start());
    EXPECT_EQ(m_service.waitForEnd(), 1);
    EXPECT_NE(m_service.log().find("newer version"), std::string::npos) << m_service.log();
}

} // namespace
