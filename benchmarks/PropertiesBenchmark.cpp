// What the form of a job costs an attribute, and the union of its tests' properties an attribute of a test, each
// beside a bare walk of the same records that makes the same texts of them.
//
// The whole real path above the wire: Job, JobManagerRestAPI and its cache. Only the service's client is a stand-in
// that answers from memory. Debug messages are off, as on the instrument.

#include "api/rest/JobManagerRestAPI.h"
#include "models/Job.h"
#include "tests/api/rest/Records.h"
#include "tests/api/rest/StandInClient.h"

#include <benchmark/benchmark.h>
#include <QCoreApplication>
#include <QLoggingCategory>
#include <QQmlPropertyMap>

using jobmanager_test::ClientAnswers;
using jobmanager_test::StandInClient;
using namespace jobmanager_ui;

namespace {

const QString jobID = QStringLiteral("WO-1");

/// One in ten is not visible; all have what a form can use.
nlohmann::json attribute(int number)
{
    return { { "label", "Attribute " + std::to_string(number) }, { "value", std::to_string(number) },
        { "valueType", number % 3 == 0 ? "double" : "string" }, { "editable", number % 2 == 0 },
        { "regExp", "[0-9]{1,5}" }, { "validValues", { "1", "2", "3" } }, { "visible", number % 10 != 0 },
        { "orderIndex", 1000 - number } };
}

cdm::Attributes attributes(int count)
{
    cdm::Attributes result;
    for (int number = 0; number < count; ++number)
        result.values["attribute" + std::to_string(number)] = attribute(number);
    return result;
}

cdm::CdmSouthboundJob jobWithAttributes(int count)
{
    cdm::CdmSouthboundJob job = jobmanager_test::jobOf(jobID.toStdString());
    job.details.attributes = attributes(count);
    return job;
}

constexpr int attributesOfATest = 20;

cdm::CdmSouthboundJob jobWithTests(int count)
{
    std::vector<cdm::Test> tests;
    for (int i = 0; i < count; ++i) {
        cdm::Test test = jobmanager_test::testOf(std::to_string(i));
        test.attributes = attributes(attributesOfATest);
        tests.push_back(std::move(test));
    }
    return jobmanager_test::jobOf(jobID.toStdString(), std::move(tests));
}

/// An implementation that has read its one job.
std::shared_ptr<JobManagerRestAPI> apiWith(const cdm::CdmSouthboundJob& job)
{
    StandInClient::reset();
    ClientAnswers answers;
    answers.jobs[jobID.toStdString()] = job;
    StandInClient::setAnswers(std::move(answers));
    auto api = std::make_shared<JobManagerRestAPI>("127.0.0.1", static_cast<unsigned short>(8082));
    api->fetchJob(jobID);
    api->commitFetchedData();
    return api;
}

void countPerAttribute(benchmark::State& state, double attributesOfARound)
{
    state.counters["per_attribute"] = benchmark::Counter(
        attributesOfARound, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// What a form reads of a job after each update.
void readAfterUpdates(benchmark::State& state, void (*read)(Job&))
{
    Job job(apiWith(jobWithAttributes(static_cast<int>(state.range(0)))), jobID);
    for (auto round : state) {
        Q_UNUSED(round)
        state.PauseTiming();
        job.updateDataFromAPI();
        StandInClient::forgetCalls();
        state.ResumeTiming();
        read(job);
    }
    countPerAttribute(state, static_cast<double>(state.range(0)));
}

void readRows(Job& job)
{
    benchmark::DoNotOptimize(job.allDisplayableJobProperties());
    benchmark::DoNotOptimize(job.jobPropertyDisplayInfos());
}

/// The rows and how they are shown, without the values.
void buildRows(benchmark::State& state)
{
    readAfterUpdates(state, readRows);
}

/// All of it.
void buildForm(benchmark::State& state)
{
    readAfterUpdates(state, [](Job& job) {
        readRows(job);
        benchmark::DoNotOptimize(job.optionalProperties());
    });
}

/// The map that a screen binds to, bare: what Qt's own class costs.
void bareMap(benchmark::State& state)
{
    const cdm::Attributes values = attributes(static_cast<int>(state.range(0)));
    for (auto round : state) {
        Q_UNUSED(round)
        QQmlPropertyMap map;
        for (const auto& [name, content] : values.values)
            map.insert(QString::fromStdString(name), QString::fromStdString(content["value"]));
        benchmark::DoNotOptimize(&map);
    }
    countPerAttribute(state, static_cast<double>(state.range(0)));
}

/// One attribute as it is shown.
struct ShownAttribute
{
    QString name;
    QString label;
    QString value;
    QString regex;
    QStringList validValues;
    bool editable = false;
    bool visible = false;
    int orderIndex = 0;
};

ShownAttribute shownOf(const std::string& name, const cdm::Attributes& values)
{
    const cdm::Attribute read = values.getAttribute(name);
    QStringList validValues;
    for (const std::string& value : read.validValues.value_or(std::vector<std::string>()))
        validValues.append(QString::fromStdString(value));
    return { QString::fromStdString(name), QString::fromStdString(read.label), QString::fromStdString(read.value),
        QString::fromStdString(read.regExp.value_or(std::string())), validValues, read.editable.value_or(true),
        read.visible.value_or(true), read.orderIndex.value_or(0) };
}

void bareWalkOfForm(benchmark::State& state)
{
    const cdm::CdmSouthboundJob job = jobWithAttributes(static_cast<int>(state.range(0)));
    for (auto round : state) {
        Q_UNUSED(round)
        std::vector<ShownAttribute> rows;
        for (const auto& [name, content] : job.details.attributes->values)
            rows.push_back(shownOf(name, *job.details.attributes));
        benchmark::DoNotOptimize(rows.data());
    }
    countPerAttribute(state, static_cast<double>(state.range(0)));
}

/// The pair of list and map that a job builds once in its life.
void buildTestPair(benchmark::State& state)
{
    const std::shared_ptr<JobManagerRestAPI> api = apiWith(jobWithTests(static_cast<int>(state.range(0))));
    for (auto round : state) {
        Q_UNUSED(round)
        state.PauseTiming();
        auto job = std::make_unique<Job>(api, jobID);
        StandInClient::forgetCalls();
        state.ResumeTiming();
        benchmark::DoNotOptimize(job->allDisplayableTestProperties());
        benchmark::DoNotOptimize(job->testPropertyDisplayInfos());
        state.PauseTiming();
        job.reset();
        state.ResumeTiming();
    }
    countPerAttribute(state, static_cast<double>(state.range(0) * attributesOfATest));
}

void bareWalkOfTestPair(benchmark::State& state)
{
    const cdm::CdmSouthboundJob job = jobWithTests(static_cast<int>(state.range(0)));
    for (auto round : state) {
        Q_UNUSED(round)
        QHash<QString, ShownAttribute> rows;
        for (const cdm::Test& test : *job.tests) {
            for (const auto& [name, content] : test.attributes->values) {
                const QString text = QString::fromStdString(name);
                if (!rows.contains(text))
                    rows.insert(text, shownOf(name, *test.attributes));
            }
        }
        benchmark::DoNotOptimize(rows);
    }
    countPerAttribute(state, static_cast<double>(state.range(0) * attributesOfATest));
}

} // namespace

BENCHMARK(buildForm)->Arg(50)->Arg(500)->Unit(benchmark::kMicrosecond);
BENCHMARK(buildRows)->Arg(50)->Arg(500)->Unit(benchmark::kMicrosecond);
BENCHMARK(bareMap)->Arg(50)->Arg(500)->Unit(benchmark::kMicrosecond);
BENCHMARK(bareWalkOfForm)->Arg(50)->Arg(500)->Unit(benchmark::kMicrosecond);
BENCHMARK(buildTestPair)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(bareWalkOfTestPair)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
