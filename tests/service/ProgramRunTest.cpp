// Tests that are run by a program, over HTTP. The programs are scripts for the shell, which the service starts like any
// other program.

#include "tests/service/LaunchFixture.h"

#include <csignal>
#include <fstream>
#include <sys/stat.h>

using namespace jobmanager_test;

namespace {

class ProgramRunTest : public LaunchFixture
{
protected:
    /// Starts the service with this script for its test program. The script finds a folder of its own in $1.
    void startWith(const std::string& script, const Arguments& more = {})
    {
        Arguments arguments{ "--test-command", "/bin/sh", "--test-argument=-c", "--test-argument", script,
            "--test-argument", "sh", "--test-argument", m_files.path().string() };
        arguments.insert(arguments.end(), more.begin(), more.end());
        start(arguments);
    }
    /// Launches the first test and waits for what is recorded.
    json outcomeOfRun()
    {
        const int before = changeCount();
        EXPECT_EQ(launch("0"), started);
        waitForCount(before + 1);
        return results("/tests/0");
    }
    void expectNoVerdict(const std::string& message)
    {
        const json recorded = outcomeOfRun();
        EXPECT_EQ(recorded.at("status"), "error");
        EXPECT_EQ(recorded.at("error").at("message"), message);
        EXPECT_TRUE(logTells("test 0 of job a came to no verdict: " + message));
        EXPECT_NE(launch("0"), busy);
    }
    /// The process whose number the script has written into a file of its folder.
    int processIn(const std::string& name)
    {
        int number = 0;
        waitUntil([&] {
            std::ifstream file(m_files.path() / name);
            return static_cast<bool>(file >> number) && file.get() == '\n';
        });
        return number;
    }
    void expectGone(int process)
    {
        ASSERT_GT(process, 0);
        waitUntil([&] { return ::kill(process, 0) != 0; });
    }
};

const std::string pass = R"(printf '{"status":"pass","data":{"lossDb":1.10}}';)";
/// Three generations, one of them in a session of its own.
const std::string family = R"(echo $$ > "$1/program.new"; mv "$1/program.new" "$1/program";
    (sleep 1000 & echo $! > "$1/child"; setsid sh -c 'echo $$ > "$1/session"; sleep 1000 & wait' sh "$1" & wait) & )";

TEST_F(ProgramRunTest, theVerdictOfTheProgramIsRecorded)
{
    startWith(pass);
    const json recorded = outcomeOfRun();
    EXPECT_EQ(recorded.at("status"), "pass");
    EXPECT_EQ(recorded.at("data"), (json{ { "lossDb", 1.1 } }));
    EXPECT_NE(call("GET", "/jobs/a").body.find("1.10"), std::string::npos) << "numbers stay as they were written";
}

TEST_F(ProgramRunTest, theProgramGetsTheTestOnItsStandardInput)
{
    m_tests[1]["big"] = std::string(300000, 'x');
    startWith(R"(cat > "$1/input"; )" + pass);
    const int before = changeCount();
    EXPECT_EQ(launch("1_1"), started);
    waitForCount(before + 1);
    const json input = json::parse(contentOf(m_files.path() / "input"));
    EXPECT_EQ(input.at("jobId"), "a");
    EXPECT_EQ(input.at("uiIndex"), "1_1");
    EXPECT_EQ(input.at("test").at("testType"), "power");
    EXPECT_EQ(input.at("test").at("big").get<std::string>().size(), 300000u);
    EXPECT_EQ(input.at("location").at("location"), "B");
    EXPECT_EQ(results("/tests/1/testLocations/1").at("status"), "pass");
}

TEST_F(ProgramRunTest, aProgramNeedNotReadItsInput)
{
    m_tests[0]["big"] = std::string(1000000, 'x');
    startWith("exec 0<&-; " + pass);
    EXPECT_EQ(outcomeOfRun().at("status"), "pass");
}

TEST_F(ProgramRunTest, argumentsArriveToTheLetter)
{
    const std::string hostile = "; touch gone $(id) `id` * \"'\\";
    start({ "--test-command", "/bin/sh", "--test-argument=-c", "--test-argument",
        R"(printf '%s' "$2" > "$1/argument"; )" + pass, "--test-argument", "sh", "--test-argument",
        m_files.path().string(), "--test-argument", hostile });
    EXPECT_EQ(outcomeOfRun().at("status"), "pass");
    EXPECT_EQ(contentOf(m_files.path() / "argument"), hostile);
}

TEST_F(ProgramRunTest, theProgramInheritsNoDescriptor)
{
    // In the place of the shell, which keeps some of its own. The fourth is the folder that is being listed.
    startWith(R"(exec ls /proc/self/fd > "$1/descriptors")");
    EXPECT_EQ(outcomeOfRun().at("status"), "error");
    EXPECT_EQ(contentOf(m_files.path() / "descriptors"), "0\n1\n2\n3\n");
}

TEST_F(ProgramRunTest, theProgramInheritsNoTreatmentOfSignals)
{
    startWith(R"(exec grep -hE 'SigBlk|SigIgn' /proc/self/status > "$1/signals")");
    EXPECT_EQ(outcomeOfRun().at("status"), "error");
    std::ifstream file(m_files.path() / "signals");
    int lines = 0;
    for (std::string name, mask; file >> name >> mask; ++lines) {
        for (const int signal : { SIGPIPE, SIGXFSZ, SIGTERM, SIGINT, SIGCHLD, SIGSEGV })
            EXPECT_EQ(std::stoull(mask, nullptr, 16) >> (signal - 1) & 1, 0u) << name << signal;
    }
    EXPECT_EQ(lines, 2);
}

TEST_F(ProgramRunTest, aProgramThatCannotBeStartedIsToldAtOnce)
{
    const auto plain = m_files.write("plain", "exit 0\n");
    const auto noProgram = m_files.write("noProgram", "exit 0\n");
    ASSERT_EQ(::chmod(noProgram.c_str(), 0700), 0);
    for (const std::string& program :
        { std::string("/nonexistent/x"), plain.string(), noProgram.string(), m_files.path().string() }) {
        start({ "--test-command", program });
        const int before = changeCount();
        EXPECT_EQ(launch("0"), refused("ERROR_CAN_LAUNCH_FAILED_TO_RUN")) << program;
        EXPECT_EQ(launch("0"), refused("ERROR_CAN_LAUNCH_FAILED_TO_RUN")) << "nothing is left in the way";
        EXPECT_EQ(changeCount(), before);
        EXPECT_TRUE(logTells("the test program could not be started: "));
        EXPECT_EQ(m_service.terminate(), 0);
    }
}

TEST_F(ProgramRunTest, aCrashIsNoVerdict)
{
    startWith(pass + "kill -SEGV $$");
    expectNoVerdict("The test program died of signal 11.");
}

TEST_F(ProgramRunTest, aFailureOfTheProgramIsNoVerdict)
{
    startWith(pass + "echo 'no laser' >&2; exit 3");
    expectNoVerdict("The test program ended with code 3.");
    EXPECT_TRUE(logTells("the test program said: no laser"));
}

TEST_F(ProgramRunTest, nonsenseIsNoVerdict)
{
    startWith("echo '[]'");
    expectNoVerdict("The answer of the test program makes no sense: The document has to be an object.");
}

TEST_F(ProgramRunTest, silenceIsNoVerdict)
{
    // Long enough for the program to come up.
    const std::string seconds = std::to_string(stretched(3s) / 1s);
    startWith("exec 1>&-; " + family + "wait", { "--test-seconds", seconds });
    expectNoVerdict("The test program gave no result within " + seconds + " seconds.");
    expectGone(processIn("program"));
    expectGone(processIn("child"));
}

TEST_F(ProgramRunTest, talkWithoutAnEndIsBounded)
{
    startWith("echo $$ > \"$1/program\"; exec yes");
    expectNoVerdict("The test program wrote more than 1 MiB.");
    expectGone(processIn("program"));
}

TEST_F(ProgramRunTest, talkOnStandardErrorIsPassedOver)
{
    startWith("head -c 3000000 /dev/zero >&2; " + pass);
    EXPECT_EQ(outcomeOfRun().at("status"), "pass");
    EXPECT_LT(m_service.log().size(), 10000u);
}

TEST_F(ProgramRunTest, whatTheProgramLeavesBehindEndsWithIt)
{
    startWith(family + R"(while ! [ -s "$1/session" ]; do :; done; )" + pass);
    EXPECT_EQ(outcomeOfRun().at("status"), "pass") << "without waiting for the others";
    for (const char* process : { "program", "child", "session" })
        expectGone(processIn(process));
}

TEST_F(ProgramRunTest, theProgramEndsWithTheService)
{
    startWith(family + "wait");
    EXPECT_EQ(launch("0"), started);
    const std::vector<int> processes{ processIn("program"), processIn("child"), processIn("session") };
    EXPECT_EQ(m_service.terminate(), 0);
    for (const int process : processes)
        expectGone(process);
    ASSERT_TRUE(m_service.start());
    EXPECT_EQ(results("/tests/0"), json());
}

TEST_F(ProgramRunTest, theProgramEndsWithAServiceThatIsKilled)
{
    startWith(family + "wait");
    const json before = get("/jobs/a");
    EXPECT_EQ(launch("0"), started);
    const std::vector<int> processes{ processIn("program"), processIn("child"), processIn("session") };
    m_service.kill();
    for (const int process : processes)
        expectGone(process);
    ASSERT_TRUE(m_service.start()) << m_service.log();
    EXPECT_EQ(get("/jobs/a"), before);
    EXPECT_EQ(launch("0"), started);
}

TEST_F(ProgramRunTest, aRunThatBreaksOffKeepsTheVerdictThatThereWas)
{
    startWith(R"(if [ -e "$1/once" ]; then exit 9; fi; : > "$1/once"; )" + pass);
    EXPECT_EQ(outcomeOfRun().at("status"), "pass");
    const json recorded = outcomeOfRun();
    EXPECT_EQ(recorded.at("status"), "pass");
    EXPECT_EQ(recorded.at("error").at("message"), "The test program ended with code 9.");
}

} // namespace
