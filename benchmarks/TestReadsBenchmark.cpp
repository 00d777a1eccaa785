// What the tests of a job cost a test through the REST implementation and its cache, beside a bare loop over the same
// values in plain records: ten reads of each, as the rows of a screen make them, and a reload of their list.
//
// Only the service's client is a stand-in that answers from memory. Debug messages are off, as on the instrument.

#include "api/rest/JobManagerRestAPI.h"
#include "models/TestList.h"
#include "tests/api/rest/Records.h"
#include "tests/api/rest/StandInClient.h"

#include <benchmark/benchmark.h>
#include <QCoreApplication>
#include <QLoggingCategory>

using jobmanager_test::ClientAnswers;
using jobmanager_test::StandInClient;
using jobmanager_ui::JobManagerRestAPI;
using jobmanager_ui::TestList;

namespace {

const QString job = QStringLiteral("WO-1");

std::vector<cdm::Test> records(int count)
{
    std::vector<cdm::Test> tests;
    tests.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        cdm::Test test = jobmanager_test::testOf(std::to_string(i));
        test.testType = "type " + std::to_string(i % 12);
        test.testTypeDisplayName = "Type " + std::to_string(i % 12);
        test.description = "What is to be done in test " + std::to_string(i);
        test.site = "Site north";
        test.guideFile = "guides/" + std::to_string(i % 12) + ".html";
        test.configuration = "wavelength 1310\nwavelength 1550";
        test.required = false;
        test.results = jobmanager_test::resultsOf("pass", "2026-03-01T08:15:00", "yes");
        test.results->data = nlohmann::json{ { "ijm_additionalTest", true }, { "trace", std::string(1000, 'x') } };
        tests.push_back(std::move(test));
    }
    return tests;
}

/// An implementation that has read its one job.
class ApiWithTests
{
public:
    explicit ApiWithTests(int count)
    {
        StandInClient::reset();
        ClientAnswers answers;
        answers.jobs[job.toStdString()] = jobmanager_test::jobOf(job.toStdString(), records(count));
        StandInClient::setAnswers(std::move(answers));
        m_api = std::make_shared<JobManagerRestAPI>("127.0.0.1", static_cast<unsigned short>(8082));
        fetch();
    }

    JobManagerRestAPI& api() { return *m_api; }
    const std::shared_ptr<JobManagerRestAPI>& shared() const { return m_api; }
    /// Reads the job's record anew.
    void fetch()
    {
        m_api->fetchJob(job);
        m_api->commitFetchedData();
        StandInClient::forgetCalls();
    }

private:
    std::shared_ptr<JobManagerRestAPI> m_api;
};

/// One test as it is shown.
struct ShownTest
{
    QString type;
    QString name;
    QString description;
    QString site;
    QString guideFile;
    QString status;
    QDateTime time;
    QStringList configuration;
    int locations = 0;
    int requirement = 0;
};

ShownTest tenReads(JobManagerRestAPI& api, long long id)
{
    return { api.getTestType(job, id), api.getTestTypeDisplayName(job, id), api.getTestDescription(job, id),
        api.getTestSite(job, id), api.getTestGuideFile(job, id), api.getTestStatus(job, id), api.getTestTime(job, id),
        api.getTestConfiguration(job, id), api.getTestLocationsNumber(job, id), api.getTestRequired(job, id) };
}

void countPerTest(benchmark::State& state)
{
    state.counters["per_test"] = benchmark::Counter(static_cast<double>(state.range(0)),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void readTests(benchmark::State& state)
{
    ApiWithTests tests(static_cast<int>(state.range(0)));
    const std::vector<long long> ids = tests.api().getAllTestIDs(job);
    for (auto round : state) {
        Q_UNUSED(round)
        for (const long long id : ids)
            benchmark::DoNotOptimize(tenReads(tests.api(), id));
    }
    countPerTest(state);
}

/// The first reads of a record that has just come: what finds its tests is built on the way.
void readTestsOfNewRecord(benchmark::State& state)
{
    ApiWithTests tests(static_cast<int>(state.range(0)));
    const std::vector<long long> ids = tests.api().getAllTestIDs(job);
    for (auto round : state) {
        Q_UNUSED(round)
        state.PauseTiming();
        tests.fetch();
        state.ResumeTiming();
        for (const long long id : ids)
            benchmark::DoNotOptimize(tenReads(tests.api(), id));
    }
    countPerTest(state);
}

/// What an update of the open job does when its new record is there.
void reload(benchmark::State& state)
{
    ApiWithTests tests(static_cast<int>(state.range(0)));
    TestList list(tests.shared(), job, TestList::TESTSUBSET_ALL);
    list.updateDataFromAPIIfRequired();
    for (auto round : state) {
        Q_UNUSED(round)
        state.PauseTiming();
        tests.fetch();
        state.ResumeTiming();
        list.markAsUpdateRequired();
        list.updateDataFromAPIIfRequired();
    }
    countPerTest(state);
}

void bareLoop(benchmark::State& state)
{
    ApiWithTests tests(static_cast<int>(state.range(0)));
    std::vector<ShownTest> table;
    for (const long long id : tests.api().getAllTestIDs(job))
        table.push_back(tenReads(tests.api(), id));
    ShownTest shown;
    for (auto round : state) {
        Q_UNUSED(round)
        for (const ShownTest& test : table) {
            shown = test;
            benchmark::DoNotOptimize(shown);
        }
    }
    countPerTest(state);
}

} // namespace

BENCHMARK(readTests)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(readTestsOfNewRecord)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(reload)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(bareLoop)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
