// Export to and import from a folder that stands for a medium, by the routes over a store.

#include "service/TransferApi.h"

#include "service/ExportFileName.h"
#include "tests/service/ApiFixture.h"

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

using namespace job_service;
using jobmanager_test::contentOf;
using nlohmann::json;

namespace {

namespace fs = std::filesystem;

constexpr const char* early = "2026-01-01T00:00:00.000Z";
constexpr const char* late = "2026-12-01T00:00:00.000Z";

std::string jobText(const std::string& id, const std::string& modifiedOn = {}, const json& results = nullptr)
{
    json test{ { "testType", "x" } };
    if (!results.is_null())
        test["results"] = results;
    json details{ { "id", id } };
    if (!modifiedOn.empty())
        details["modifiedOn"] = modifiedOn;
    return json{ { "details", details }, { "tests", { test } } }.dump();
}

const json passed{ { "status", "pass" }, { "time", "2026-03-01T08:00:00Z" } };

class TransferApiTest : public jobmanager_test::ApiFixture
{
protected:
    jobmanager_test::TemporaryFolder m_media;
    std::unique_ptr<TransferApi> m_api;

    TransferApiTest() { serveWith({}); }

    void serveWith(const TransferLimits& limits)
    {
        m_api = std::make_unique<TransferApi>(store(), TransferPlaces{ MediaRoots({ m_media.path() }), {} }, limits);
        serve(m_api->routes());
    }
    fs::path medium(const std::string& name = "usb") { return m_media.path() / name; }
    fs::path makeMedium(const std::string& name = "usb")
    {
        fs::create_directories(medium(name));
        return medium(name);
    }
    void writeFile(const std::string& name, const std::string& content)
    {
        fs::create_directories((m_media.path() / name).parent_path());
        m_media.write(name, content);
    }
    std::vector<std::string> filesOn(const fs::path& folder)
    {
        std::vector<std::string> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    std::string exportBody(const std::string& id, const fs::path& folder)
    {
        return json{ { "jobId", id }, { "folder", folder.string() } }.dump();
    }
    /// Exports and returns where to.
    fs::path exportJob(const std::string& id, const fs::path& folder)
    {
        testing::internal::CaptureStderr();
        const HttpResponse response = call("POST", "/exports", exportBody(id, folder));
        m_log = testing::internal::GetCapturedStderr();
        EXPECT_EQ(response.status, 200) << response.body;
        return response.status == 200 ? json::parse(response.body).at("path").get<std::string>() : std::string();
    }
    void expectExportRefused(int status, const std::string& code, const std::string& id, const fs::path& folder)
    {
        expectRefused(status, code, "POST", "/exports", exportBody(id, folder));
    }
    std::string importBody(const fs::path& path) { return json{ { "path", path.string() } }.dump(); }
    json importFrom(const fs::path& path)
    {
        testing::internal::CaptureStderr();
        const HttpResponse response = call("POST", "/imports", importBody(path));
        m_log = testing::internal::GetCapturedStderr();
        EXPECT_EQ(response.status, 200) << response.body;
        return response.status == 200 ? json::parse(response.body) : json();
    }
    json importMedia() { return importFrom(m_media.path()); }
    std::string storedTime(const std::string& id) { return document(id).at("details").at("modifiedOn"); }

    /// What the log got in the last call.
    std::string m_log;
};

// Export.

TEST_F(TransferApiTest, anExportIsTheJobsDocument)
{
    addJob("WO-1");
    const fs::path file = exportJob("WO-1", makeMedium());
    EXPECT_EQ(file, medium() / "WO-1.job.json");
    EXPECT_EQ(contentOf(file), store().document("WO-1"));
    EXPECT_EQ(filesOn(medium()), std::vector<std::string>{ "WO-1.job.json" });
}

TEST_F(TransferApiTest, anExportMovesNothing)
{
    addJob("WO-1");
    const int before = store().changeCount();
    exportJob("WO-1", makeMedium());
    EXPECT_EQ(store().changeCount(), before);
}

TEST_F(TransferApiTest, anExportCanBeReadByOthers)
{
    addJob("WO-1");
    const mode_t before = ::umask(077);
    const fs::path file = exportJob("WO-1", makeMedium());
    ::umask(before);
    EXPECT_EQ(fs::status(file).permissions(),
        fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read | fs::perms::others_read);
}

TEST_F(TransferApiTest, anImportedExportIsTheIdenticalJob)
{
    addJob("WO-1");
    const std::string exported = store().document("WO-1").value();
    exportJob("WO-1", makeMedium());
    store().removeJob("WO-1");
    EXPECT_EQ(importMedia().at("imported"), 1);
    EXPECT_EQ(store().document("WO-1"), exported);
}

TEST_F(TransferApiTest, aSecondExportReplacesTheFirst)
{
    addJob("WO-1");
    exportJob("WO-1", makeMedium());
    store().changeJob("WO-1", [](JsonTree& tree) { tree.set("note", JsonTree::fromString("new")); });
    const fs::path file = exportJob("WO-1", medium());
    EXPECT_EQ(contentOf(file), store().document("WO-1"));
    EXPECT_EQ(filesOn(medium()).size(), 1u);
}

TEST_F(TransferApiTest, anotherJobsFileOfTheSameNameStays)
{
    addJob("WO-1");
    makeMedium();
    writeFile("usb/WO-1.job.json", jobText("other"));
    const fs::path file = exportJob("WO-1", medium());
    EXPECT_EQ(file.filename(), numberedExportFileName("WO-1"));
    EXPECT_EQ(contentOf(medium() / "WO-1.job.json"), jobText("other"));
}

TEST_F(TransferApiTest, aLinkOfTheNameIsNotFollowed)
{
    addJob("WO-1");
    writeFile("outside.txt", "precious");
    fs::create_symlink(m_media.path() / "outside.txt", makeMedium() / "WO-1.job.json");
    const fs::path file = exportJob("WO-1", medium());
    EXPECT_EQ(file.filename(), numberedExportFileName("WO-1"));
    EXPECT_EQ(contentOf(m_media.path() / "outside.txt"), "precious");
}

TEST_F(TransferApiTest, aFileWithSeveralNamesKeepsItsContentUnderTheOthers)
{
    addJob("WO-1");
    const fs::path first = exportJob("WO-1", makeMedium());
    const std::string before = contentOf(first);
    fs::create_hard_link(first, m_media.path() / "second");
    store().changeJob("WO-1", [](JsonTree& tree) { tree.set("note", JsonTree::fromString("new")); });
    exportJob("WO-1", medium());
    EXPECT_EQ(contentOf(m_media.path() / "second"), before);
}

TEST_F(TransferApiTest, whatAnInterruptedExportLeftIsReplaced)
{
    addJob("WO-1");
    makeMedium();
    writeFile("usb/.WO-1.job.json.part", "half");
    exportJob("WO-1", medium());
    EXPECT_EQ(filesOn(medium()), std::vector<std::string>{ "WO-1.job.json" });
}

TEST_F(TransferApiTest, anExportOfAnUnknownJobIsRefused)
{
    expectExportRefused(404, "job_not_found", "WO-1", makeMedium());
    EXPECT_TRUE(filesOn(medium()).empty());
}

TEST_F(TransferApiTest, anExportToAFileIsRefused)
{
    addJob("WO-1");
    writeFile("usb", "file");
    expectExportRefused(400, "not_a_folder", "WO-1", medium());
}

TEST_F(TransferApiTest, anExportToAFolderThatIsNotThereIsRefused)
{
    addJob("WO-1");
    expectExportRefused(404, "path_not_found", "WO-1", medium());
}

TEST_F(TransferApiTest, anExportThatTakesTooLongLeavesNothing)
{
    addJob("WO-1");
    makeMedium();
    TransferLimits limits;
    limits.time = std::chrono::milliseconds(0);
    serveWith(limits);
    expectExportRefused(503, "transfer_cut_off", "WO-1", medium());
    EXPECT_TRUE(filesOn(medium()).empty());
}

// Where media are.

TEST_F(TransferApiTest, theRootItselfIsAMedium)
{
    addJob("WO-1");
    EXPECT_EQ(exportJob("WO-1", m_media.path()), m_media.path() / "WO-1.job.json");
}

TEST_F(TransferApiTest, slashesAndDotsInThePathDoNotMatter)
{
    addJob("WO-1");
    makeMedium();
    exportJob("WO-1", m_media.path().string() + "/./usb//");
    EXPECT_EQ(filesOn(medium()), std::vector<std::string>{ "WO-1.job.json" });
}

TEST_F(TransferApiTest, pathsOutsideTheMediaAreRefused)
{
    addJob("WO-1");
    makeMedium();
    const std::string root = m_media.path().string();
    for (const std::string& path : { std::string("/etc"), std::string("usb"), std::string(), root + "x",
             root + "/../" + m_media.path().filename().string() + "/usb", root + "/usb/..", root.substr(0, 4),
             std::string("/") }) {
        SCOPED_TRACE(path);
        expectExportRefused(403, "path_not_allowed", "WO-1", path);
        expectRefused(403, "path_not_allowed", "POST", "/imports", importBody(path));
    }
}

TEST_F(TransferApiTest, linksLeadNowhere)
{
    addJob("WO-1");
    fs::create_directory_symlink("/", m_media.path() / "root");
    fs::create_directory_symlink(makeMedium(), m_media.path() / "other");
    for (const char* path : { "root", "root/tmp", "other" }) {
        SCOPED_TRACE(path);
        expectExportRefused(403, "path_not_allowed", "WO-1", m_media.path() / path);
        expectRefused(403, "path_not_allowed", "POST", "/imports", importBody(m_media.path() / path));
    }
}

// Import.

TEST_F(TransferApiTest, jobsAndTemplatesOfAllFoldersAreImported)
{
    writeFile("usb/a.job.json", jobText("a"));
    writeFile("usb/sub/deeper/B.JOB.JSON", jobText("b"));
    writeFile("usb/sub/t.Tpl.json", R"({"name":"T"})");
    const json result = importMedia();
    EXPECT_EQ(
        result, (json{ { "imported", 2 }, { "kept", 0 }, { "templates", 1 }, { "skipped", 0 }, { "cutOff", "" } }));
    EXPECT_EQ(jobList().size(), 2u);
    EXPECT_TRUE(store().templateDocument("T"));
    EXPECT_EQ(
        m_log, "job-service: import: 2 jobs taken, 0 kept as they were, 1 templates taken, 0 files passed over\n");
}

TEST_F(TransferApiTest, oneFileIsImported)
{
    writeFile("usb/a.job.json", jobText("a"));
    writeFile("usb/b.job.json", jobText("b"));
    EXPECT_EQ(importFrom(medium() / "a.job.json").at("imported"), 1);
    EXPECT_EQ(jobList().size(), 1u);
}

TEST_F(TransferApiTest, oneFileOfAnotherNameIsRefused)
{
    writeFile("usb/a.json", jobText("a"));
    expectRefused(400, "not_a_job_file", "POST", "/imports", importBody(medium() / "a.json"));
}

TEST_F(TransferApiTest, anImportFromNowhereIsRefused)
{
    expectRefused(404, "path_not_found", "POST", "/imports", importBody(medium()));
}

TEST_F(TransferApiTest, hiddenEntriesAndOtherNamesArePassedOverInSilence)
{
    writeFile("usb/.a.job.json", jobText("a"));
    writeFile("usb/.hidden/b.job.json", jobText("b"));
    writeFile("usb/c.json", jobText("c"));
    writeFile("usb/d.job.json.bak", jobText("d"));
    const json result = importMedia();
    EXPECT_EQ(result.at("imported"), 0);
    EXPECT_EQ(result.at("skipped"), 0);
}

TEST_F(TransferApiTest, aBadFileIsPassedOverWithItsReason)
{
    writeFile("usb/a.job.json", jobText("a"));
    writeFile("usb/b.job.json", "{");
    writeFile("usb/c.job.json", R"({"details":{"id":"c"},"tests":[{}]})");
    writeFile("usb/d.tpl.json", "{}");
    const json result = importMedia();
    EXPECT_EQ(result.at("imported"), 1);
    EXPECT_EQ(result.at("skipped"), 3);
    EXPECT_NE(m_log.find("usb/b.job.json: "), std::string::npos) << m_log;
    EXPECT_NE(m_log.find("usb/c.job.json: /tests/0"), std::string::npos) << m_log;
    EXPECT_NE(m_log.find("usb/d.tpl.json: "), std::string::npos) << m_log;
}

TEST_F(TransferApiTest, whatIsNoPlainFileIsPassedOver)
{
    makeMedium();
    ASSERT_EQ(::mkfifo((medium() / "pipe.job.json").c_str(), 0600), 0);
    const int handle = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s/s.job.json", medium().c_str());
    ASSERT_EQ(::bind(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    writeFile("elsewhere/a.txt", jobText("a"));
    fs::create_symlink(m_media.path() / "elsewhere/a.txt", medium() / "link.job.json");
    fs::create_symlink("loop.job.json", medium() / "loop.job.json");
    fs::create_directory_symlink(m_media.path(), medium() / "folder.job.json");
    fs::create_directory(medium() / "real.job.json");
    const json result = importFrom(medium());
    ::close(handle);
    EXPECT_EQ(result.at("imported"), 0);
    EXPECT_EQ(result.at("skipped"), 5) << m_log;
}

TEST_F(TransferApiTest, aSparseFileOfTenGigabytesIsPassedOver)
{
    writeFile("usb/a.job.json", "");
    ASSERT_EQ(::truncate((medium() / "a.job.json").c_str(), off_t{ 10 } * 1024 * 1024 * 1024), 0);
    EXPECT_EQ(importMedia().at("skipped"), 1);
    EXPECT_NE(m_log.find("it is larger than 16 MiB"), std::string::npos) << m_log;
}

TEST_F(TransferApiTest, namesMayNotForgeALineOfTheLog)
{
    makeMedium();
    std::ofstream(medium() / "a\njob-service: all is well.job.json") << "{";
    importMedia();
    EXPECT_EQ(m_log.find("\njob-service: all is well"), std::string::npos) << m_log;
}

TEST_F(TransferApiTest, namesThatAreNoTextAreImported)
{
    makeMedium();
    std::ofstream(medium() / "\xff\xfe.job.json") << jobText("a");
    std::ofstream(medium() / (std::string(246, 'x') + ".job.json")) << jobText("b");
    EXPECT_EQ(importMedia().at("imported"), 2) << m_log;
}

// What is there already.

TEST_F(TransferApiTest, theSameImportTwiceKeepsAll)
{
    writeFile("usb/a.job.json", jobText("a", early));
    importMedia();
    const std::string before = store().document("a").value();
    const int count = store().changeCount();
    const json result = importMedia();
    EXPECT_EQ(result.at("imported"), 0);
    EXPECT_EQ(result.at("kept"), 1);
    EXPECT_EQ(store().document("a"), before);
    EXPECT_EQ(store().changeCount(), count);
}

TEST_F(TransferApiTest, aNewerFileReplacesAJobWithoutResults)
{
    addJob("a");
    writeFile("usb/a.job.json", jobText("a", late));
    EXPECT_EQ(importMedia().at("imported"), 1);
    EXPECT_EQ(storedTime("a"), late);
    EXPECT_EQ(summary("a").at("modifiedOn"), late);
}

TEST_F(TransferApiTest, anOlderFileReplacesNothing)
{
    addJob("a");
    writeFile("usb/a.job.json", jobText("a", early));
    EXPECT_EQ(importMedia().at("kept"), 1);
    EXPECT_NE(storedTime("a"), early);
}

TEST_F(TransferApiTest, aFileWithoutATimeReplacesNothing)
{
    addJob("a");
    const std::string before = storedTime("a");
    writeFile("usb/a.job.json", jobText("a"));
    EXPECT_EQ(importMedia().at("kept"), 1);
    EXPECT_EQ(storedTime("a"), before);
}

TEST_F(TransferApiTest, aFileWithoutATimeGetsTheTimeOfTheImport)
{
    writeFile("usb/a.job.json", jobText("a"));
    importMedia();
    EXPECT_GT(storedTime("a"), early);
}

TEST_F(TransferApiTest, recordedResultsAreNeverReplaced)
{
    store().createJob(jobFromFile(jobText("a", early, passed), early));
    const std::string before = store().document("a").value();
    writeFile("usb/a.job.json", jobText("a", late));
    EXPECT_EQ(importMedia().at("kept"), 1);
    EXPECT_EQ(store().document("a"), before);
}

TEST_F(TransferApiTest, resultsOfALocationAreNeverReplaced)
{
    addJob("a");
    store().changeJob(
        "a", [](JsonTree& tree) { findTest(tree, "1_1")->set("results", JsonTree::fromText(passed.dump())); });
    const std::string before = store().document("a").value();
    writeFile("usb/a.job.json", jobText("a", "2999-01-01T00:00:00.000Z"));
    EXPECT_EQ(importMedia().at("kept"), 1);
    EXPECT_EQ(store().document("a"), before);
}

TEST_F(TransferApiTest, aReplacedActiveJobStaysActive)
{
    addJob("a");
    store().setActiveJob("a");
    writeFile("usb/a.job.json", jobText("a", late));
    importMedia();
    EXPECT_EQ(store().activeJob(), "a");
}

TEST_F(TransferApiTest, twoFilesOfOneJobLeaveTheNewerOne)
{
    writeFile("usb/1.job.json", jobText("a", early));
    writeFile("usb/2.job.json", jobText("a", late));
    writeFile("usb/3.job.json", jobText("a", early));
    const json result = importMedia();
    EXPECT_EQ(result.at("imported"), 2);
    EXPECT_EQ(result.at("kept"), 1);
    EXPECT_EQ(storedTime("a"), late);
}

// Limits.

TEST_F(TransferApiTest, manyJobsComeInAFewAtATime)
{
    for (int i = 0; i < 100; ++i)
        writeFile("usb/" + std::to_string(i) + ".job.json", jobText(std::to_string(i)));
    const int before = store().changeCount();
    EXPECT_EQ(importMedia().at("imported"), 100);
    EXPECT_EQ(store().changeCount(), before + 4);
}

TEST_F(TransferApiTest, tooManyEntriesAreCutOff)
{
    for (int i = 0; i < 10; ++i)
        writeFile("usb/" + std::to_string(i) + ".job.json", jobText(std::to_string(i)));
    TransferLimits limits;
    limits.entries = 5;
    serveWith(limits);
    const json result = importFrom(medium());
    EXPECT_EQ(result.at("imported"), 5);
    EXPECT_EQ(result.at("cutOff"), "there are too many entries");
    EXPECT_NE(m_log.find("not everything was looked at: there are too many entries"), std::string::npos);
}

TEST_F(TransferApiTest, foldersTooDeepAreCutOff)
{
    fs::path folder = medium();
    for (int i = 0; i < 17; ++i)
        folder /= "d";
    fs::create_directories(folder);
    std::ofstream(folder.parent_path() / "reached.job.json") << jobText("reached");
    std::ofstream(folder / "deep.job.json") << jobText("deep");
    const json result = importFrom(medium());
    EXPECT_EQ(result.at("imported"), 1);
    EXPECT_EQ(result.at("cutOff"), "folders lie too deep");
}

TEST_F(TransferApiTest, tooManyBytesAreCutOff)
{
    for (int i = 0; i < 10; ++i)
        writeFile("usb/" + std::to_string(i) + ".job.json", jobText(std::to_string(i)));
    TransferLimits limits;
    limits.bytes = 3 * jobText("0").size();
    serveWith(limits);
    const json result = importMedia();
    EXPECT_EQ(result.at("imported"), 3);
    EXPECT_EQ(result.at("cutOff"), "there is too much to read");
}

TEST_F(TransferApiTest, anImportThatTakesTooLongIsCutOff)
{
    writeFile("usb/a.job.json", jobText("a"));
    TransferLimits limits;
    limits.time = std::chrono::milliseconds(0);
    serveWith(limits);
    EXPECT_EQ(importMedia().at("cutOff"), "the time is up");
}

TEST_F(TransferApiTest, theEndOfTheServiceCutsAnImportOff)
{
    writeFile("usb/a.job.json", jobText("a"));
    m_api->cancel();
    EXPECT_EQ(importMedia().at("cutOff"), "the service ends");
}

TEST_F(TransferApiTest, oneTransferRunsAtATime)
{
    for (int i = 0; i < 2000; ++i)
        writeFile("usb/" + std::to_string(i) + ".job.json", jobText(std::to_string(i)));
    std::atomic<bool> ended{ false };
    std::thread importing([&] {
        // Until it is its turn: the requests below are transfers too.
        while (call("POST", "/imports", importBody(medium())).status == 409) { }
        ended = true;
    });
    bool refused = false;
    while (!refused && !ended)
        refused = call("POST", "/exports", exportBody("none", medium())).status == 409;
    importing.join();
    EXPECT_TRUE(refused);
}

TEST_F(TransferApiTest, malformedRequestsAreRefused)
{
    expectRefused(400, "invalid_request", "POST", "/exports", R"({"jobId":1,"folder":"x"})");
    expectRefused(400, "invalid_request", "POST", "/exports", R"({"jobId":"a"})");
    expectRefused(400, "invalid_request", "POST", "/imports", "[]");
    expectRefused(400, "invalid_request", "POST", "/imports", "{}");
}

// Names of exports.

TEST(ExportFileName, anOrdinaryIdIsTheName)
{
    EXPECT_EQ(exportFileName("WO-2026.4711 b"), "WO-2026.4711 b.job.json");
    EXPECT_EQ(exportFileName("größe"), "größe.job.json");
}

TEST(ExportFileName, anIdThatIsNoNameIsMadeOne)
{
    for (const char* id : { "../../x", "/etc/x", "a:b", "a\\b", "a?b*", "\"q\"", "<a>|b", ".hidden", " a", "a ", "con",
             "COM1", "lpt9.x", "..", "." }) {
        const std::string name = exportFileName(id);
        EXPECT_EQ(name, numberedExportFileName(id)) << id;
        EXPECT_EQ(name.find_first_of("\"*/:<>?\\|"), std::string::npos) << name;
        EXPECT_NE(name[0], '.') << name;
        EXPECT_NE(name[0], ' ') << name;
    }
}

TEST(ExportFileName, aLongIdIsCutBetweenCharacters)
{
    std::string id = "x";
    for (int i = 0; i < 255; ++i)
        id += "ü";
    const std::string name = exportFileName(id);
    EXPECT_LE(name.size() + std::string(".part").size() + 1, 255u);
    const std::size_t dash = name.find('-');
    EXPECT_EQ(dash, 199u);
    EXPECT_EQ(name.substr(0, dash), id.substr(0, dash));
}

TEST(ExportFileName, idsThatBecomeAlikeKeepNamesOfTheirOwn)
{
    EXPECT_NE(exportFileName("a/b"), exportFileName("a:b"));
}

} // namespace
