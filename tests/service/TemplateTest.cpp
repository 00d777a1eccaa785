// Templates and lists of locations over HTTP.

#include "tests/service/ServiceFixture.h"
#include "tests/service/TemporaryFolder.h"

#include <sys/stat.h>

using namespace jobmanager_test;

namespace {

class TemplateTest : public ServiceFixture
{
protected:
    TemporaryFolder m_folder;

    void start(const Arguments& arguments)
    {
        m_service.setArguments(arguments);
        ASSERT_TRUE(m_service.start()) << m_service.log();
    }
    void startWithTemplates() { start({ "--templates", m_folder.path().string() }); }
    HttpReply create(const std::string& number, const std::string& templateName, const std::string& locationsFilename)
    {
        return call("POST", "/jobs",
            json{ { "workOrderNo", number }, { "templateName", templateName },
                { "locationsFilename", locationsFilename }, { "techId", "t-7" }, { "syncToNimbrel", true } }
                .dump());
    }
    json namesOfTemplates()
    {
        json names = json::array();
        const json answer = get("/templates");
        for (const json& entry : answer.at("templates"))
            names.push_back(entry.at("name"));
        return names;
    }
    /// The locations of each test of a job.
    json locationsOf(const std::string& id)
    {
        json locations = json::array();
        const json job = get("/jobs/" + id);
        for (const json& test : job.at("tests")) {
            json names = json::array();
            for (const json& location : test.value("testLocations", json::array()))
                names.push_back(location.at("location"));
            locations.push_back(names);
        }
        return locations;
    }
    void expectRefused(int status, const std::string& code, const HttpReply& reply)
    {
        EXPECT_EQ(reply.status, status) << reply.body;
        EXPECT_EQ(json::parse(reply.body).at("error").at("code"), code);
        EXPECT_EQ(reply.body.find('/'), std::string::npos) << reply.body;
    }
};

TEST_F(TemplateTest, templatesAreListedByNameAndToldOneByOne)
{
    m_folder.write(
        "b.tpl.json", R"({"name":"B","workOrderLabel":"Ticket","tests":[{"testType":"x"},{"testType":"y"}]})");
    m_folder.write("a.tpl.json", R"({"name":"A/1 \"\u00fc\"","workOrderLabel":null})");
    startWithTemplates();
    EXPECT_EQ(get("/templates").at("templates"),
        json::parse(R"([{"name":"A/1 \"\u00fc\"","workOrderLabel":"","numberOfTests":0},
            {"name":"B","workOrderLabel":"Ticket","numberOfTests":2}])"));
    EXPECT_EQ(get("/templates/B").at("numberOfTests"), 2);
    EXPECT_EQ(get("/templates/A%2F1%20%22%C3%BC%22").at("numberOfTests"), 0);
    expectRefused(404, "template_not_found", call("GET", "/templates/b"));
    expectRefused(404, "template_not_found", call("GET", "/templates/"));
    expectRefused(404, "template_not_found", call("GET", "/templates/..%2Fb"));
}

TEST_F(TemplateTest, withoutTemplatesTheListIsEmpty)
{
    start({});
    EXPECT_EQ(get("/templates"), json::parse(R"({"templates":[]})"));
}

TEST_F(TemplateTest, theTemplatesOfTheSamplesAreServed)
{
    start({ "--templates", std::string(JOBMANAGER_SAMPLES) + "/templates" });
    EXPECT_GE(namesOfTemplates().size(), 5u);
    const json answer = get("/templates");
    for (const json& entry : answer.at("templates")) {
        EXPECT_GT(entry.at("numberOfTests"), 0);
        EXPECT_NE(entry.at("workOrderLabel"), "");
        EXPECT_EQ(
            create("job " + entry.at("name").get<std::string>(), entry.at("name"), "fibres-1-12.txt").status, 201);
    }
    EXPECT_EQ(locationsOf("job%20Fibre%20acceptance").at(0).size(), 12u);
    EXPECT_EQ(m_service.log().find("not loaded"), std::string::npos) << m_service.log();
}

TEST_F(TemplateTest, badTemplatesArePassedOver)
{
    m_folder.write("good.tpl.json", R"({"name":"good"})");
    m_folder.write("blank.tpl.json", R"({"name":""})");
    m_folder.write("line.tpl.json", R"({"name":"a\nb"})");
    m_folder.write("long.tpl.json", json{ { "name", std::string(10000, 'x') } }.dump());
    m_folder.write("cut.tpl.json", R"({"name":"cut")");
    m_folder.write("other.json", R"({"name":"other"})");
    TemporaryFolder elsewhere;
    std::filesystem::create_symlink(
        elsewhere.write("x.tpl.json", R"({"name":"linked"})"), m_folder.path() / "link.tpl.json");
    std::filesystem::create_directory(m_folder.path() / "folder.tpl.json");
    startWithTemplates();
    EXPECT_EQ(namesOfTemplates(), (json{ "good" }));
    for (const char* file : { "blank", "line", "long", "cut", "link", "folder" })
        EXPECT_TRUE(logTells(std::string(file) + ".tpl.json: ")) << file << m_service.log();
}

TEST_F(TemplateTest, ofTwoFilesWithOneNameTheFirstCounts)
{
    m_folder.write("1.tpl.json", R"({"name":"T","workOrderLabel":"first"})");
    m_folder.write("2.tpl.json", R"({"name":"T","workOrderLabel":"second"})");
    start({ "--load", m_folder.path().string(), "--templates", m_folder.path().string() });
    EXPECT_EQ(get("/templates/T").at("workOrderLabel"), "first");
    EXPECT_TRUE(logTells("2.tpl.json: another file has a template of the name T"));
    EXPECT_FALSE(logTells("1.tpl.json: ")) << "the same file again is no other one";
}

TEST_F(TemplateTest, aTemplateThatIsReadAgainReplacesTheOneOfItsName)
{
    m_folder.write("t.tpl.json", R"({"name":"T","workOrderLabel":"old"})");
    startWithTemplates();
    m_folder.write("t.tpl.json", R"({"name":"T","workOrderLabel":"new"})");
    ASSERT_TRUE(m_service.restart()) << m_service.log();
    EXPECT_EQ(get("/templates/T").at("workOrderLabel"), "new");
}

TEST_F(TemplateTest, aFolderThatIsNotThereStopsTheStart)
{
    m_service.setArguments({ "--templates", (m_folder.path() / "none").string() });
    EXPECT_FALSE(m_service.start());
    EXPECT_EQ(m_service.waitForEnd(), 1);
}

TEST_F(TemplateTest, theListGivesEachTestItsLocations)
{
    m_folder.write("t.tpl.json",
        R"({"name":"T","tests":[{"testType":"x"},{"testType":"y","testLocations":[{"location":"old"}]}]})");
    m_folder.write("list", "\xEF\xBB\xBF  Flat 1\r\n\r\n\tFlat \xC3\xBC \"2\"/a\n \nlast");
    startWithTemplates();
    EXPECT_EQ(create("a", "T", "list").status, 201);
    const json names{ "Flat 1", "Flat \u00fc \"2\"/a", "last" };
    EXPECT_EQ(locationsOf("a"), (json{ names, names }));
    EXPECT_EQ(get("/jobs/a").at("tests")[1].at("testLocations")[2].at("uiIndex"), "1_2");
    EXPECT_EQ(get("/jobs/a").at("details").at("techInfo").at("techId"), "t-7");
    EXPECT_EQ(get("/jobs/a").at("details").at("syncToNimbrel"), true);
    EXPECT_EQ(create("b", "T", "").status, 201);
    EXPECT_EQ(locationsOf("b"), json::parse(R"([[],["old"]])"));
    EXPECT_EQ(create("c", "", "list").status, 201) << "a bare job has no tests to give them to";
    EXPECT_EQ(locationsOf("c"), json::array());
}

TEST_F(TemplateTest, theFolderOfLoadedTemplatesHoldsTheListsToo)
{
    std::filesystem::create_directory(m_folder.path() / "inner");
    m_folder.write("inner/t.tpl.json", R"({"name":"T","tests":[{"testType":"x"}]})");
    m_folder.write("inner/list", "A");
    start({ "--load", m_folder.path().string() });
    EXPECT_EQ(create("a", "T", "list").status, 201);
    EXPECT_EQ(locationsOf("a"), json::parse(R"([["A"]])"));
}

TEST_F(TemplateTest, aListThatIsNotThereIsNotFound)
{
    startWithTemplates();
    expectRefused(404, "locations_not_found", create("a", "", "none"));
    expectRefused(404, "locations_not_found", create("a", "", std::string(300, 'x')));
    EXPECT_EQ(get("/jobs").at("jobs"), json::array());
}

TEST_F(TemplateTest, aNameThatLeavesTheFolderIsRefused)
{
    std::filesystem::create_directory(m_folder.path() / "inner");
    m_folder.write("secret", "outside");
    start({ "--templates", (m_folder.path() / "inner").string() });
    for (const std::string& name :
        { std::string("../secret"), (m_folder.path() / "secret").string(), std::string("."), std::string(".."),
            std::string("a/../../secret"), std::string("a\nb"), std::string("nul\0x", 5), std::string(10000, 'x') })
        expectRefused(400, "invalid_locations", create("a", "", name));
    EXPECT_EQ(get("/jobs").at("jobs"), json::array());
}

TEST_F(TemplateTest, whatIsNoListIsRefused)
{
    m_folder.write("empty", "");
    m_folder.write("blank", " \r\n\t\n");
    m_folder.write("binary", "\xFF\xFE");
    m_folder.write("control", "a\x1B[1m");
    m_folder.write("long", std::string(513, 'x'));
    m_folder.write("huge", std::string(1024 * 1024 + 1, 'x'));
    std::filesystem::create_directory(m_folder.path() / "folder");
    std::filesystem::create_symlink(m_folder.write("real", "A"), m_folder.path() / "link");
    std::filesystem::create_symlink("/etc/passwd", m_folder.path() / "passwd");
    ASSERT_EQ(::mkfifo((m_folder.path() / "pipe").c_str(), 0600), 0);
    startWithTemplates();
    for (const char* name :
        { "empty", "blank", "binary", "control", "long", "huge", "folder", "link", "passwd", "pipe" })
        expectRefused(400, "invalid_locations", create("a", "", name));
    EXPECT_EQ(create("a", "", "real").status, 201);
}

/// A list and a template of ordinary size can multiply to more than there is memory.
TEST_F(TemplateTest, whatWouldBeTooLargeIsRefusedBeforeItIsBuilt)
{
    json tests = json::array();
    for (int i = 0; i < 20000; ++i)
        tests.push_back({ { "testType", "x" } });
    m_folder.write("t.tpl.json", json{ { "name", "T" }, { "tests", tests } }.dump());
    std::string list;
    for (int i = 0; i < 400000; ++i)
        list += "x\n";
    m_folder.write("list", list);
    startWithTemplates();
    expectRefused(400, "invalid_document", create("a", "T", "list"));
    EXPECT_EQ(call("GET", "/jobs/a").status, 404);
}

TEST_F(TemplateTest, numbersOfWorkOrdersAreCarriedOrRefused)
{
    m_folder.write("t.tpl.json", R"({"name":"T","tests":[{"testType":"x"}]})");
    startWithTemplates();
    for (const auto& [number, path] :
        { std::pair{ "a/b", "a%2Fb" }, std::pair{ "\"quoted\" 'x'", "%22quoted%22%20'x'" },
            std::pair{ "../..", "..%2F.." }, std::pair{ "<b>", "%3Cb%3E" } }) {
        EXPECT_EQ(create(number, "T", "").status, 201) << number;
        EXPECT_EQ(get(std::string("/jobs/") + path).at("details").at("id"), number);
        expectRefused(409, "job_exists", create(number, "", ""));
        EXPECT_EQ(get(std::string("/jobs/") + path).at("tests").size(), 1u) << "the one that was there stays";
    }
    for (const std::string& number :
        { std::string("a\nb"), std::string("a\r"), std::string(10000, 'x'), std::string() })
        expectRefused(400, "invalid_id", create(number, "T", ""));
    EXPECT_EQ(get("/jobs").at("jobs").size(), 4u);
}

} // namespace
