#include "api/rest/JobManagerRestAPI.h"

#include "tests/api/rest/OnStandIn.h"
#include "tests/api/rest/Records.h"
#include "tests/api/rest/StandInClient.h"
#include "tests/support/MessageCollector.h"

#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

using TextGetter = QString (JobManagerRestAPI::*)(QString);
using NumberGetter = int (JobManagerRestAPI::*)(QString);
Q_DECLARE_METATYPE(TextGetter)
Q_DECLARE_METATYPE(NumberGetter)

namespace {

const QString known = QStringLiteral("J");
const QString unknown = QStringLiteral("nope");
const QString warningForUnknown = QStringLiteral("warning: Failed to get minimal job info for:  \"nope\"");

/// A summary with a value in every field.
RestApiJobManager::MinimalJobInfo fullSummary()
{
    return { "J", "Größe", "workflow 光", "customer", "2026-03-01T08:15:00.000Z", "manager", "state",
        { "tech1", "téch2" }, false, 12, 7 };
}

void answerWithList(const std::vector<RestApiJobManager::MinimalJobInfo>& jobs)
{
    ClientAnswers answers;
    answers.jobList = jobs;
    StandInClient::setAnswers(answers);
}

std::vector<std::string> argumentsOfOnly(const std::string& operation)
{
    const std::vector<ClientCall> calls = StandInClient::calls(operation);
    return calls.size() == 1 ? calls.front().arguments : std::vector<std::string>{ "not called once" };
}

} // namespace

class JobManagerRestAPITest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void constructionTellsTheServiceTheDefaultGrouping();
    void jobIDsComeInTheServicesOrderFromOneFetch();
    void jobNumberIsTheIdWithoutAnyLookup_data();
    void jobNumberIsTheIdWithoutAnyLookup();
    void textOfAJob_data();
    void textOfAJob();
    void emptyTextOfAKnownJobIsNotNull_data();
    void emptyTextOfAKnownJobIsNotNull();
    void textOfAnUnknownJobIsEmptyAndWarnedOf_data();
    void textOfAnUnknownJobIsEmptyAndWarnedOf();
    void numberOfAJob_data();
    void numberOfAJob();
    void numberOfAnUnknownJobIsZeroAndWarnedOf_data();
    void numberOfAnUnknownJobIsZeroAndWarnedOf();
    void archivedJob_data();
    void archivedJob();
    void unknownJobIsArchivedAndWarnedOf();
    void teamOfAJob();
    void teamOfAnUnknownJobIsEmptyAndWarnedOf();

    void changeCountIsTheServices();
    void serviceHasNoTime();
    void currentJobIsTheServices();
    void hasCurrentJobAsksTheVirtualCurrentJob();
    void technicianIsTheOneWhoIsLoggedIn();
    void clearCacheMakesTheNextReadFetch();
    void cacheIsAskedForTheListAndTheJobs();
    void templatesAreListedAndLogged_data();
    void templatesAreListedAndLogged();
    void templateIsAskedForByName();
    void settingsAreReadAsTheyAre();
    void settingIsWrittenAsItIs();
    void groupTypeIsSentByName_data();
    void groupTypeIsSentByName();

    void portIsTheOneOfTheConstructor();
    void newPortMovesTheSameClient_data();
    void newPortMovesTheSameClient();
    void newPortClearsTheCacheByTheVirtualOperation();
};

void JobManagerRestAPITest::init()
{
    StandInClient::reset();
}

void JobManagerRestAPITest::constructionTellsTheServiceTheDefaultGrouping()
{
    JobManagerRestAPI api("the host", 8123);
    const std::vector<ClientCall> calls = StandInClient::calls();
    QCOMPARE(StandInClient::operations(), (std::vector<std::string>{ "RestApiJobManager", "setUiGroupType" }));
    QCOMPARE(calls.at(0).arguments, (std::vector<std::string>{ "the host", "8123" }));
    QCOMPARE(calls.at(1).arguments, std::vector<std::string>{ "job_order" });
    QCOMPARE(calls.at(1).client, calls.at(0).client);
    QVERIFY(!api.isJobListInCache());
    QCOMPARE(api.commitFetchedData(), false);
}

void JobManagerRestAPITest::jobIDsComeInTheServicesOrderFromOneFetch()
{
    answerWithList({ summaryOf("b"), summaryOf("a"), summaryOf("光") });
    OnStandIn api;
    const std::vector<QString> expected{ QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("光") };
    QCOMPARE(api->getAllJobIDs(), expected);
    QCOMPARE(api->getAllJobIDs(), expected);
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "getJobList" });
}

void JobManagerRestAPITest::jobNumberIsTheIdWithoutAnyLookup_data()
{
    QTest::addColumn<QString>("id");
    QTest::newRow("known") << known;
    QTest::newRow("unknown") << unknown;
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("null") << QString();
}

void JobManagerRestAPITest::jobNumberIsTheIdWithoutAnyLookup()
{
    QFETCH(QString, id);
    answerWithList({ summaryOf("J") });
    OnStandIn api;
    const MessageCollector recorder;
    const QString number = api->getJobNumber(id);
    QCOMPARE(number, id);
    QCOMPARE(number.isNull(), id.isNull());
    QVERIFY(StandInClient::calls().empty());
    QCOMPARE(recorder.messages(), QStringList());
}

namespace {

/// The text getters of a job; `nullIfUnknown` tells the null answer from the empty one.
void addTextGetters()
{
    QTest::addColumn<TextGetter>("getter");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("nullIfUnknown");
    const auto row = [](const char* name, TextGetter getter, const QString& text, bool nullIfUnknown) {
        QTest::newRow(name) << getter << text << nullIfUnknown;
    };
    row("customer", &JobManagerRestAPI::getCustomerName, QStringLiteral("customer"), true);
    row("workflow type", &JobManagerRestAPI::getWorkflowTypeName, QStringLiteral("workflow 光"), true);
    row("modified on", &JobManagerRestAPI::getJobModifiedOn, QStringLiteral("2026-03-01T08:15:00.000Z"), false);
    row("managed by", &JobManagerRestAPI::getJobManagedByInfo, QStringLiteral("manager"), true);
    row("management state", &JobManagerRestAPI::getJobManagementState, QStringLiteral("state"), true);
    row("work order label", &JobManagerRestAPI::getWorkOrderLabel, QStringLiteral("Größe"), true);
}

void addNumberGetters()
{
    QTest::addColumn<NumberGetter>("getter");
    QTest::addColumn<int>("number");
    const auto row = [](const char* name, NumberGetter getter, int number) { QTest::newRow(name) << getter << number; };
    row("required tests", &JobManagerRestAPI::getTotalNumberOfRequiredTests, 12);
    row("completed tests", &JobManagerRestAPI::getNumberOfCompletedRequiredTests, 7);
}

} // namespace

void JobManagerRestAPITest::textOfAJob_data()
{
    addTextGetters();
}

void JobManagerRestAPITest::textOfAJob()
{
    QFETCH(TextGetter, getter);
    answerWithList({ summaryOf("other"), fullSummary() });
    OnStandIn api;
    QTEST(((*api).*getter)(known), "text");
}

void JobManagerRestAPITest::emptyTextOfAKnownJobIsNotNull_data()
{
    addTextGetters();
}

void JobManagerRestAPITest::emptyTextOfAKnownJobIsNotNull()
{
    QFETCH(TextGetter, getter);
    answerWithList({ summaryOf("J") });
    OnStandIn api;
    const QString text = ((*api).*getter)(known);
    QVERIFY(text.isEmpty());
    QVERIFY(!text.isNull());
}

void JobManagerRestAPITest::textOfAnUnknownJobIsEmptyAndWarnedOf_data()
{
    addTextGetters();
}

void JobManagerRestAPITest::textOfAnUnknownJobIsEmptyAndWarnedOf()
{
    QFETCH(TextGetter, getter);
    answerWithList({ fullSummary() });
    OnStandIn api;
    api->getAllJobIDs();
    const MessageCollector recorder;
    const QString text = ((*api).*getter)(unknown);
    QVERIFY(text.isEmpty());
    QTEST(text.isNull(), "nullIfUnknown");
    QCOMPARE(recorder.messages(), QStringList(warningForUnknown));
}

void JobManagerRestAPITest::numberOfAJob_data()
{
    addNumberGetters();
}

void JobManagerRestAPITest::numberOfAJob()
{
    QFETCH(NumberGetter, getter);
    answerWithList({ fullSummary() });
    OnStandIn api;
    QTEST(((*api).*getter)(known), "number");
}

void JobManagerRestAPITest::numberOfAnUnknownJobIsZeroAndWarnedOf_data()
{
    addNumberGetters();
}

void JobManagerRestAPITest::numberOfAnUnknownJobIsZeroAndWarnedOf()
{
    QFETCH(NumberGetter, getter);
    answerWithList({ fullSummary() });
    OnStandIn api;
    api->getAllJobIDs();
    const MessageCollector recorder;
    QCOMPARE(((*api).*getter)(unknown), 0);
    QCOMPARE(recorder.messages(), QStringList(warningForUnknown));
}

void JobManagerRestAPITest::archivedJob_data()
{
    QTest::addColumn<bool>("archived");
    QTest::newRow("archived") << true;
    QTest::newRow("required") << false;
}

void JobManagerRestAPITest::archivedJob()
{
    QFETCH(bool, archived);
    RestApiJobManager::MinimalJobInfo info = summaryOf("J");
    info.archived = archived;
    answerWithList({ info });
    OnStandIn api;
    QCOMPARE(api->isJobArchived(known), archived);
}

void JobManagerRestAPITest::unknownJobIsArchivedAndWarnedOf()
{
    answerWithList({ fullSummary() });
    OnStandIn api;
    api->getAllJobIDs();
    const MessageCollector recorder;
    QCOMPARE(api->isJobArchived(unknown), true);
    QCOMPARE(recorder.messages(), QStringList(warningForUnknown));
}

void JobManagerRestAPITest::teamOfAJob()
{
    answerWithList({ fullSummary() });
    OnStandIn api;
    QCOMPARE(api->getTeamTechIds(known), (QStringList{ QStringLiteral("tech1"), QStringLiteral("téch2") }));
}

void JobManagerRestAPITest::teamOfAnUnknownJobIsEmptyAndWarnedOf()
{
    answerWithList({ fullSummary() });
    OnStandIn api;
    api->getAllJobIDs();
    const MessageCollector recorder;
    QCOMPARE(api->getTeamTechIds(unknown), QStringList());
    QCOMPARE(recorder.messages(), QStringList(warningForUnknown));
}

void JobManagerRestAPITest::changeCountIsTheServices()
{
    ClientAnswers answers;
    answers.changeCount = -17;
    StandInClient::setAnswers(answers);
    OnStandIn api;
    QCOMPARE(api->getChangeCount(), -17);
    QCOMPARE(api->getChangeCount(), -17);
    QCOMPARE(StandInClient::operations(), (std::vector<std::string>{ "getChangeCount", "getChangeCount" }));
}

void JobManagerRestAPITest::serviceHasNoTime()
{
    OnStandIn api;
    QVERIFY(api->getTime().isNull());
    QVERIFY(StandInClient::calls().empty());
}

void JobManagerRestAPITest::currentJobIsTheServices()
{
    OnStandIn api;
    QCOMPARE(api->getCurrentJobID(), QString());
    QVERIFY(!api->hasCurrentJob());
    ClientAnswers answers;
    answers.activeWorkorderID = "光";
    StandInClient::setAnswers(answers);
    QCOMPARE(api->getCurrentJobID(), QStringLiteral("光"));
    QVERIFY(api->hasCurrentJob());
}

void JobManagerRestAPITest::hasCurrentJobAsksTheVirtualCurrentJob()
{
    class WithJob : public JobManagerRestAPI
    {
    public:
        using JobManagerRestAPI::JobManagerRestAPI;
        QString getCurrentJobID() override { return QStringLiteral("J"); }
    };
    WithJob api("host", 1);
    QVERIFY(api.hasCurrentJob());
}

void JobManagerRestAPITest::technicianIsTheOneWhoIsLoggedIn()
{
    ClientAnswers answers;
    answers.loginConfig = { "téch", "first", "second" };
    StandInClient::setAnswers(answers);
    OnStandIn api;
    QCOMPARE(api->getTechID(), QStringLiteral("téch"));
}

void JobManagerRestAPITest::clearCacheMakesTheNextReadFetch()
{
    answerWithList({ fullSummary() });
    OnStandIn api;
    api->getAllJobIDs();
    api->getAllTestIDs(known);
    api->clearCache();
    QVERIFY(!api->isJobListInCache());
    QVERIFY(!api->isJobInCache(known));
    StandInClient::forgetCalls();
    QCOMPARE(api->getCustomerName(known), QStringLiteral("customer"));
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "getJobList" });
}

void JobManagerRestAPITest::cacheIsAskedForTheListAndTheJobs()
{
    answerWithList({ fullSummary() });
    OnStandIn api;
    QVERIFY(!api->isJobListInCache());
    QVERIFY(!api->isJobInCache(known));
    QVERIFY(StandInClient::calls().empty());
    api->getAllJobIDs();
    QVERIFY(api->isJobListInCache());
    QVERIFY(!api->isJobInCache(known));
    api->getAllTestIDs(known);
    QVERIFY(api->isJobInCache(known));
    QVERIFY(!api->isJobInCache(unknown));
}

void JobManagerRestAPITest::templatesAreListedAndLogged_data()
{
    QTest::addColumn<QStringList>("templates");
    QTest::addColumn<QString>("message");
    QTest::newRow("none") << QStringList() << QStringLiteral("debug: Templates:  ()");
    QTest::newRow("one") << QStringList{ QStringLiteral("fiber") } << QStringLiteral("debug: Templates:  (\"fiber\")");
    QTest::newRow("two") << QStringList{ QStringLiteral("fiber"), QStringLiteral("Kupfer groß") }
                         << QStringLiteral("debug: Templates:  (\"fiber\", \"Kupfer groß\")");
}

void JobManagerRestAPITest::templatesAreListedAndLogged()
{
    QFETCH(QStringList, templates);
    QFETCH(QString, message);
    ClientAnswers answers;
    for (const QString& name : qAsConst(templates))
        answers.templates.push_back(name.toStdString());
    StandInClient::setAnswers(answers);
    OnStandIn api;
    const MessageCollector recorder;
    QCOMPARE(api->fetchJobTemplates(), templates);
    QCOMPARE(recorder.messages(), QStringList(message));
}

void JobManagerRestAPITest::templateIsAskedForByName()
{
    ClientAnswers answers;
    answers.templateWorkOrderLabel = "Auftrag №";
    answers.templateNumberOfTests = 23;
    StandInClient::setAnswers(answers);
    OnStandIn api;
    QCOMPARE(api->getWorkOrderLabelFromTemplate(QStringLiteral("groß")), QStringLiteral("Auftrag №"));
    QCOMPARE(api->getTemplateNumberOfTests(QStringLiteral("groß")), 23);
    QCOMPARE(argumentsOfOnly("getTemplateWorkOrderLabel"), std::vector<std::string>{ "groß" });
    QCOMPARE(argumentsOfOnly("getTemplateNumberOfTests"), std::vector<std::string>{ "groß" });
}

void JobManagerRestAPITest::settingsAreReadAsTheyAre()
{
    OnStandIn api;
    QCOMPARE(api->getSettingsListInfo(), (QHash<QString, QString>()));
    ClientAnswers answers;
    answers.settings = { { "groupType", "1" }, { "größe", "光" }, { "empty", "" } };
    StandInClient::setAnswers(answers);
    const QHash<QString, QString> expected{ { QStringLiteral("groupType"), QStringLiteral("1") },
        { QStringLiteral("größe"), QStringLiteral("光") }, { QStringLiteral("empty"), QString() } };
    QCOMPARE(api->getSettingsListInfo(), expected);
}

void JobManagerRestAPITest::settingIsWrittenAsItIs()
{
    OnStandIn api;
    api->writeSetting("größe", "a\nb");
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "writeSetting" });
    QCOMPARE(argumentsOfOnly("writeSetting"), (std::vector<std::string>{ "größe", "a\nb" }));
}

void JobManagerRestAPITest::groupTypeIsSentByName_data()
{
    QTest::addColumn<int>("groupType");
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("none") << int(TestGroupType::NONE) << QByteArray("job_order");
    QTest::newRow("default") << int(TestGroupType::DEFAULT_VIEW) << QByteArray("job_order");
    QTest::newRow("location") << int(TestGroupType::GROUPBY_LOCATION) << QByteArray("location");
    QTest::newRow("test name") << int(TestGroupType::GROUPBY_TEST_NAME) << QByteArray("testtype");
    QTest::newRow("beyond the list") << 7 << QByteArray("job_order");
}

void JobManagerRestAPITest::groupTypeIsSentByName()
{
    QFETCH(int, groupType);
    QFETCH(QByteArray, name);
    OnStandIn api;
    api->setGroupType(static_cast<TestGroupType::Enum>(groupType));
    QCOMPARE(StandInClient::operations(), std::vector<std::string>{ "setUiGroupType" });
    QCOMPARE(argumentsOfOnly("setUiGroupType"), std::vector<std::string>{ name.toStdString() });
}

void JobManagerRestAPITest::portIsTheOneOfTheConstructor()
{
    JobManagerRestAPI api("host", 8123);
    QCOMPARE(api.getRestApiPort(), 8123);
}

void JobManagerRestAPITest::newPortMovesTheSameClient_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("clientPort");
    QTest::newRow("another port") << 9000 << 9000;
    QTest::newRow("the same port") << 8082 << 8082;
    QTest::newRow("cut to 16 bits") << 70000 << 4464;
    QTest::newRow("negative") << -1 << 65535;
}

void JobManagerRestAPITest::newPortMovesTheSameClient()
{
    QFETCH(int, port);
    QFETCH(int, clientPort);
    OnStandIn api;
    api->getChangeCount();
    const ClientCall before = StandInClient::calls().back();

    api->setRestApiPort(port);
    QCOMPARE(api->getRestApiPort(), port);
    const ClientCall temporary = StandInClient::calls().back();
    QCOMPARE(temporary.operation, std::string("RestApiJobManager"));
    QCOMPARE(temporary.arguments, (std::vector<std::string>{ "127.0.0.1", std::to_string(clientPort) }));

    api->getChangeCount();
    const ClientCall after = StandInClient::calls().back();
    QCOMPARE(after.client, before.client);
    QVERIFY(after.address != before.address);
    QCOMPARE(after.address, temporary.address);
    QCOMPARE(static_cast<int>(after.port), clientPort);
}

void JobManagerRestAPITest::newPortClearsTheCacheByTheVirtualOperation()
{
    class Counting : public JobManagerRestAPI
    {
    public:
        using JobManagerRestAPI::JobManagerRestAPI;
        void clearCache() override
        {
            ++cleared;
            JobManagerRestAPI::clearCache();
        }
        int cleared = 0;
    };
    answerWithList({ fullSummary() });
    Counting api("host", 1);
    api.getAllJobIDs();
    api.getAllTestIDs(known);
    api.setRestApiPort(1);
    QCOMPARE(api.cleared, 1);
    QVERIFY(!api.isJobListInCache());
    QVERIFY(!api.isJobInCache(known));
}

QTEST_GUILESS_MAIN(JobManagerRestAPITest)
#include "JobManagerRestAPITest.moc"
