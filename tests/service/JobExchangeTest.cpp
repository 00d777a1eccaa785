// The exchange of the active job with a device: the route of the service, over a pseudo terminal, with peers good and
// bad.

#include "service/JobExchange.h"

#include "service/JobMerge.h"
#include "service/TransferApi.h"
#include "tests/service/ApiFixture.h"
#include "tests/service/PseudoTerminal.h"
#include "tests/support/Deadline.h"

#include <atomic>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace job_service;
using namespace std::chrono_literals;
using nlohmann::json;

namespace {

namespace fs = std::filesystem;

const json passed{ { "status", "pass" }, { "time", "2026-03-05T08:00:00Z" } };
const json failed{ { "status", "fail" }, { "time", "2026-03-04T08:00:00Z" } };

std::string frame(FrameType type, const std::string& payload, unsigned number)
{
    return encoded({ type, payload }, number);
}

std::string helloText(const std::string& jobId, std::size_t size)
{
    return json{ { "protocol", 1 }, { "jobId", jobId }, { "size", size } }.dump();
}

std::string hello(const std::string& jobId, std::size_t size)
{
    return frame(FrameType::Hello, helloText(jobId, size), 0);
}

/// A version of the job WO-1 of the fixture, as another instrument has it.
std::string versionWith(const json& results, const std::string& id = "WO-1")
{
    return json{
        { "details", { { "id", id } } },
        { "tests", json::array({ json{ { "testType", "otdr" }, { "results", results } } }) }
    }.dump();
}

class JobExchangeTest : public jobmanager_test::ApiFixture
{
protected:
    jobmanager_test::TemporaryFolder m_devices;
    jobmanager_test::PseudoTerminal m_terminal{ link() };
    std::unique_ptr<TransferApi> m_api;
    std::thread m_peer;
    /// Nobody listens to the peer any more.
    std::atomic<bool> m_end{ false };
    /// What the service has sent, as documents and replies of a good peer.
    std::string m_received;
    std::string m_peersFailure;

    JobExchangeTest()
    {
        addJob("WO-1");
        store().setActiveJob("WO-1");
        serveWith(30s, 10s);
    }
    ~JobExchangeTest() override
    {
        m_end = true;
        if (m_peer.joinable())
            m_peer.join();
    }

    fs::path link() const { return m_devices.path() / "qzx"; }
    void serveWith(std::chrono::milliseconds time, std::chrono::milliseconds patience)
    {
        TransferLimits limits;
        limits.time = jobmanager_test::stretched(time);
        const auto silence = jobmanager_test::stretched(patience);
        m_api =
            std::make_unique<TransferApi>(store(), TransferPlaces{ MediaRoots({}), link().string(), silence }, limits);
        serve(m_api->routes());
    }
    std::string body() const { return json{ { "devicePath", link().string() }, { "second", "" } }.dump(); }

    /// A peer that keeps to the protocol and has this version; an empty one stands for none.
    void answerWith(const std::string& version)
    {
        m_peer = std::thread([this, version] {
            const std::atomic<bool> never{ false };
            const TransferBudget budget({}, never);
            try {
                DeviceLink link(FileHandle(::dup(m_terminal.near.get())), budget, 10s);
                answerExchange(
                    link, [&](const std::string&) { return version; },
                    [this](const std::string& document) { m_received = document; });
            } catch (const std::exception& failure) {
                m_peersFailure = failure.what();
            }
        });
    }
    /// A peer that waits until the service has sent something, and says this, whatever comes.
    void say(const std::string& bytes)
    {
        m_peer = std::thread([this, bytes] {
            waitForBytes();
            for (std::size_t sent = 0; sent < bytes.size() && !m_end;) {
                const ssize_t count = ::write(m_terminal.near.get(), bytes.data() + sent, bytes.size() - sent);
                if (count > 0)
                    sent += static_cast<std::size_t>(count);
                else if (errno != EAGAIN)
                    return;
                else
                    swallow();
            }
        });
    }
    void waitForBytes()
    {
        while (!swallow() && !m_end)
            std::this_thread::yield();
    }
    bool swallow()
    {
        char buffer[65536];
        return ::read(m_terminal.near.get(), buffer, sizeof buffer) > 0;
    }
    void expectFailed(int status, const std::string& code)
    {
        const std::string before = store().document("WO-1").value();
        testing::internal::CaptureStderr();
        expectRefused(status, code, "POST", "/exchanges", body());
        m_log = testing::internal::GetCapturedStderr();
        EXPECT_EQ(store().document("WO-1"), before);
    }
    json resultsOf(const char* test) { return json::parse(findTest(m_tree = tree(), test)->text()).at("results"); }
    JsonTree tree() { return JsonTree::fromText(store().document("WO-1").value()); }

    JsonTree m_tree;
    std::string m_log;
};

TEST_F(JobExchangeTest, theOtherSideGetsTheJob)
{
    const std::string document = store().document("WO-1").value();
    answerWith({});
    expectDone(0, "POST", "/exchanges", body());
    m_peer.join();
    EXPECT_EQ(m_peersFailure, "");
    EXPECT_EQ(m_received, document);
}

TEST_F(JobExchangeTest, resultsOfTheOtherSideComeIn)
{
    answerWith(versionWith(passed));
    expectDone(1, "POST", "/exchanges", body());
    EXPECT_EQ(resultsOf("0"), passed);
}

TEST_F(JobExchangeTest, resultsOfBothSidesAreKept)
{
    store().changeJob(
        "WO-1", [](JsonTree& job) { findTest(job, "0")->set("results", JsonTree::fromText(failed.dump())); });
    answerWith(versionWith(passed));
    expectDone(1, "POST", "/exchanges", body());
    json expected = passed;
    expected["earlierResults"] = json::array({ failed });
    EXPECT_EQ(resultsOf("0"), expected);
}

TEST_F(JobExchangeTest, nothingNewChangesNothing)
{
    answerWith(store().document("WO-1").value());
    expectDone(0, "POST", "/exchanges", body());
}

TEST_F(JobExchangeTest, aJobOfSeveralMegabytesIsExchanged)
{
    const std::string large(3 * 1024 * 1024, 'x');
    store().changeJob("WO-1", [&](JsonTree& job) { job.set("note", JsonTree::fromString(large)); });
    const std::string document = store().document("WO-1").value();
    answerWith(document);
    expectDone(0, "POST", "/exchanges", body());
    m_peer.join();
    EXPECT_EQ(m_received == document, true);
}

TEST_F(JobExchangeTest, bytesOfAnEarlierExchangeAreThrownAway)
{
    const std::string stale = hello("WO-9", 0) + "rest";
    ASSERT_GT(::write(m_terminal.near.get(), stale.data(), stale.size()), 0);
    answerWith(versionWith(passed));
    expectDone(1, "POST", "/exchanges", body());
}

TEST_F(JobExchangeTest, anExchangeAfterAFailedOneSucceeds)
{
    say(hello("WO-1", 10) + "garbage");
    expectFailed(503, "exchange_failed");
    m_end = true;
    m_peer.join();
    while (swallow()) { }
    answerWith(versionWith(passed));
    expectDone(1, "POST", "/exchanges", body());
}

TEST_F(JobExchangeTest, withoutAnActiveJobThereIsNothingToExchange)
{
    store().setActiveJob("");
    expectFailed(409, "no_active_job");
}

TEST_F(JobExchangeTest, anotherDeviceIsRefused)
{
    expectRefused(
        403, "path_not_allowed", "POST", "/exchanges", json{ { "devicePath", "/dev/tty" }, { "second", "" } }.dump());
}

TEST_F(JobExchangeTest, aMissingDeviceIsTold)
{
    fs::remove(link());
    expectFailed(404, "device_not_found");
}

TEST_F(JobExchangeTest, whatIsNoDeviceIsRefused)
{
    fs::remove(link());
    fs::create_directory(link());
    expectFailed(404, "device_not_found");
    fs::remove(link());
    m_devices.write("qzx", "file");
    expectFailed(400, "not_a_device");
    fs::remove(link());
    ASSERT_EQ(::mkfifo(link().c_str(), 0600), 0);
    expectFailed(400, "not_a_device");
}

TEST_F(JobExchangeTest, aDeviceInUseIsTold)
{
    const FileHandle other = openDevice(link().string());
    expectFailed(409, "device_busy");
}

TEST_F(JobExchangeTest, aSilentPeerIsGivenUp)
{
    serveWith(30s, 100ms);
    expectFailed(503, "exchange_failed");
    EXPECT_NE(m_log.find("the device does not answer"), std::string::npos) << m_log;
}

TEST_F(JobExchangeTest, aPeerThatReadsNothingIsGivenUp)
{
    store().changeJob("WO-1", [](JsonTree& job) { job.set("note", JsonTree::fromString(std::string(200000, 'x'))); });
    serveWith(30s, 300ms);
    // Greets at the first bytes, then reads no more.
    say(hello("WO-1", 0));
    expectFailed(503, "exchange_failed");
    EXPECT_NE(m_log.find("the device takes nothing"), std::string::npos) << m_log;
}

TEST_F(JobExchangeTest, aPeerThatDripsIsCutOff)
{
    serveWith(500ms, 400ms);
    m_peer = std::thread([&] {
        const std::string bytes = hello("WO-1", 0);
        for (std::size_t i = 0; i < bytes.size() && !m_end; ++i) {
            EXPECT_EQ(::write(m_terminal.near.get(), &bytes[i], 1), 1);
            for (int pause = 0; pause < 20 && !m_end; ++pause)
                std::this_thread::sleep_for(jobmanager_test::stretched(5ms));
        }
    });
    expectFailed(503, "transfer_cut_off");
    m_end = true;
}

TEST_F(JobExchangeTest, aPeerThatVanishesIsTold)
{
    m_terminal.far = FileHandle();
    m_peer = std::thread([this] {
        waitForBytes();
        m_terminal.near = FileHandle();
    });
    expectFailed(503, "exchange_failed");
    EXPECT_NE(m_log.find("the device is gone"), std::string::npos) << m_log;
}

TEST_F(JobExchangeTest, theEndOfTheServiceEndsAnExchange)
{
    m_peer = std::thread([this] {
        waitForBytes();
        m_api->cancel();
    });
    expectFailed(503, "transfer_cut_off");
}

TEST_F(JobExchangeTest, aSecondExchangeMeanwhileIsRefused)
{
    m_peer = std::thread([this] {
        waitForBytes();
        EXPECT_EQ(call("POST", "/exchanges", body()).status, 409);
        m_api->cancel();
    });
    call("POST", "/exchanges", body());
}

TEST_F(JobExchangeTest, aRefusalIsTold)
{
    say(frame(FrameType::Refusal, "battery low\nforged", 0));
    expectFailed(503, "exchange_failed");
    EXPECT_NE(m_log.find("the other side refuses: battery low?forged"), std::string::npos) << m_log;
}

class BadPeer : public JobExchangeTest, public testing::WithParamInterface<std::pair<const char*, std::string>>
{
};

TEST_P(BadPeer, changesNothing)
{
    say(GetParam().second);
    expectFailed(503, "exchange_failed");
    EXPECT_NE(m_log.find(GetParam().first), std::string::npos) << m_log;
}

std::string withVersion(const std::string& version, std::size_t announced)
{
    return hello("WO-1", announced) + frame(FrameType::Data, version, 1) + frame(FrameType::End, {}, 2);
}
std::string withVersion(const std::string& version)
{
    return withVersion(version, version.size());
}
std::string changed(std::string bytes, std::size_t at)
{
    bytes[at] = static_cast<char>(~bytes[at]);
    return bytes;
}

INSTANTIATE_TEST_SUITE_P(Kinds, BadPeer,
    testing::Values(std::pair{ "a wrong checksum", changed(hello("WO-1", 0), 14) },
        std::pair{ "a message out of its turn", frame(FrameType::Done, {}, 0) },
        std::pair{ "a greeting that makes no sense", frame(FrameType::Hello, "hello", 0) },
        std::pair{ "a greeting that makes no sense", frame(FrameType::Hello, R"({"protocol":1})", 0) },
        std::pair{ "a greeting that makes no sense",
            frame(FrameType::Hello, R"({"protocol":1,"jobId":"WO-1","size":-1})", 0) },
        std::pair{ "another version of the protocol",
            frame(FrameType::Hello, R"({"protocol":2,"jobId":"WO-1","size":0})", 0) },
        std::pair{ "the job is too large", hello("WO-1", 1024 * 1024 * 1024) },
        std::pair{ "another job", hello("WO-2", 0) },
        std::pair{ "the device sends no frames", std::string(100000, 'x') },
        std::pair{ "bytes between two frames", hello("WO-1", 10) + "stray bytes" },
        std::pair{ "a frame is missing", hello("WO-1", 10) + frame(FrameType::Data, "0123456789", 2) },
        std::pair{ "not as many bytes as announced", withVersion(versionWith(passed), 10) },
        std::pair{ "not as many bytes as announced", hello("WO-1", 10) + frame(FrameType::Data, {}, 1) },
        std::pair{ "a message out of its turn", withVersion("short", 6) },
        std::pair{ "the other side sent another job", withVersion(versionWith(passed, "WO-2")) },
        std::pair{ "The text is no JSON", withVersion("{") },
        std::pair{ "/tests/0", withVersion(R"({"details":{"id":"WO-1"},"tests":[{}]})") }));

} // namespace
