#include "service/FileLoader.h"

#include "tests/service/StoreFixture.h"

#include <sys/stat.h>

using namespace job_service;
using nlohmann::json;

namespace {

std::string jobText(const std::string& id)
{
    return json{ { "details", { { "id", id } } }, { "tests", { { { "testType", "x" } } } } }.dump();
}

class FileLoaderTest : public jobmanager_test::StoreFixture
{
protected:
    jobmanager_test::TemporaryFolder m_files;

    /// Loads and returns what the log got.
    std::string load(const std::filesystem::path& path)
    {
        testing::internal::CaptureStderr();
        FileLoader(store()).load(path);
        return testing::internal::GetCapturedStderr();
    }
    std::string loadFiles() { return load(m_files.path()); }
};

TEST_F(FileLoaderTest, aFolderIsLoadedWithItsSubfolders)
{
    m_files.write("a.job.json", jobText("a"));
    std::filesystem::create_directory(m_files.path() / "sub");
    m_files.write("sub/b.job.json", jobText("b"));
    m_files.write("sub/t.tpl.json", R"({"name":"T"})");
    m_files.write("notes.txt", "no job");
    EXPECT_EQ(loadFiles(), "job-service: 2 jobs loaded\n");
    EXPECT_EQ(jobList().size(), 2u);
    EXPECT_TRUE(store().templateDocument("T"));
}

TEST_F(FileLoaderTest, aFileIsLoaded)
{
    EXPECT_EQ(load(m_files.write("a.job.json", jobText("a"))), "job-service: 1 job loaded\n");
    EXPECT_EQ(document("a").at("tests")[0].at("uiIndex"), "0");
}

TEST_F(FileLoaderTest, allJobsOfAFolderAreOneChange)
{
    m_files.write("a.job.json", jobText("a"));
    m_files.write("b.job.json", jobText("b"));
    const int before = store().changeCount();
    loadFiles();
    EXPECT_EQ(store().changeCount(), before + 1);
}

TEST_F(FileLoaderTest, aKnownJobStaysAsItIs)
{
    addJob("a");
    const std::string before = store().document("a").value();
    m_files.write("a.job.json", jobText("a"));
    EXPECT_EQ(loadFiles(), "job-service: already there and kept as it is: job a\njob-service: 0 jobs loaded\n");
    EXPECT_EQ(store().document("a"), before);
}

TEST_F(FileLoaderTest, aTemplateReplacesTheOneOfItsName)
{
    load(m_files.write("t.tpl.json", R"({"name":"T","workOrderLabel":"1"})"));
    load(m_files.write("t.tpl.json", R"({"name":"T","workOrderLabel":"2"})"));
    EXPECT_EQ(store().templateDocument("T"), R"({"name":"T","workOrderLabel":"2"})");
}

TEST_F(FileLoaderTest, aBadFileIsToldWithItsMemberAndPassedOver)
{
    m_files.write("bad.job.json", R"({"details":{"id":"bad"},"tests":[{"testType":1}]})");
    m_files.write("bad.tpl.json", R"({"name":"T","tests":[{}]})");
    m_files.write("good.job.json", jobText("good"));
    const std::string log = loadFiles();
    EXPECT_NE(log.find("bad.job.json: /tests/0/testType: "), std::string::npos) << log;
    EXPECT_NE(log.find("bad.tpl.json: /tests/0/testType: "), std::string::npos) << log;
    EXPECT_EQ(jobList().size(), 1u);
    EXPECT_FALSE(store().templateDocument("T"));
}

TEST_F(FileLoaderTest, whatIsNoPlainFileIsPassedOver)
{
    ASSERT_EQ(::mkfifo((m_files.path() / "fifo.job.json").c_str(), 0600), 0);
    std::filesystem::create_directory(m_files.path() / "folder.job.json");
    std::filesystem::create_symlink("nowhere", m_files.path() / "link.job.json");
    m_files.write("empty.job.json", "");
    m_files.write("good.job.json", jobText("good"));
    const std::string log = loadFiles();
    for (const char* name : { "fifo.job.json", "folder.job.json", "link.job.json", "empty.job.json" })
        EXPECT_NE(log.find(std::string(name) + ": "), std::string::npos) << name << "\n" << log;
    EXPECT_EQ(jobList().size(), 1u);
}

TEST_F(FileLoaderTest, aHugeFileIsPassedOverWithoutReadingItAll)
{
    const auto huge = m_files.write("huge.job.json", "{");
    std::filesystem::resize_file(huge, 10ull << 30);
    EXPECT_NE(loadFiles().find("larger than 16 MiB"), std::string::npos);
}

TEST_F(FileLoaderTest, aFileOfAnotherNameIsToldAndPassedOver)
{
    EXPECT_NE(load(m_files.write("a.json", jobText("a"))).find("a.json: its name"), std::string::npos);
    EXPECT_EQ(store().jobList(), "[]");
}

TEST_F(FileLoaderTest, whatIsThrownBeforeAFileEndsTheLoadingAndLeavesNoJob)
{
    m_files.write("a.job.json", jobText("a"));
    m_files.write("b.job.json", jobText("b"));
    // Each file is met twice: when the folder is listed, and when it is read. The last one is the second to be read.
    int calls = 0;
    FileLoader loader(store(), [&calls] {
        if (++calls == 4)
            throw std::runtime_error("enough");
    });
    const int before = store().changeCount();
    EXPECT_THROW(loader.load(m_files.path()), std::runtime_error);
    EXPECT_EQ(store().jobList(), "[]");
    EXPECT_EQ(store().changeCount(), before);
}

TEST_F(FileLoaderTest, whatDoesNotExistIsAnError)
{
    EXPECT_THROW(FileLoader(store()).load(m_files.path() / "none"), std::filesystem::filesystem_error);
}

TEST_F(FileLoaderTest, namesAndIdsCannotForgeALineOfTheLog)
{
    m_files.write("x\njob-service: forged.job.json", "{");
    const std::string log = loadFiles();
    EXPECT_EQ(log.find("\njob-service: forged"), std::string::npos) << log;
}

TEST_F(FileLoaderTest, allSamplesLoad)
{
    const std::filesystem::path samples = JOBMANAGER_SAMPLES;
    std::size_t jobs = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(samples))
        jobs += entry.path().string().find(".job.json") != std::string::npos ? 1 : 0;
    EXPECT_EQ(load(samples), "job-service: " + std::to_string(jobs) + " jobs loaded\n");
    EXPECT_GE(jobs, 15u);
}

} // namespace
