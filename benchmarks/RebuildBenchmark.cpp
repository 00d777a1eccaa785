// What one rebuild of the job list costs a job, beside a bare loop that reads the same values from a plain table.
//
// The rebuild is the whole real path above the wire: JobManager with both views attached, Job objects that stay,
// JobManagerRestAPI and its cache. Only the service's client is a stand-in that answers from memory. Debug messages
// are off, as on the instrument.

#include "api/rest/JobManagerRestAPI.h"
#include "core/JobManager.h"
#include "tests/api/rest/StandInClient.h"

#include <benchmark/benchmark.h>
#include <QCoreApplication>
#include <QLoggingCategory>
#include <QSignalSpy>

using jobmanager_test::ClientAnswers;
using jobmanager_test::StandInClient;
using jobmanager_ui::JobManager;
using jobmanager_ui::JobManagerRestAPI;

namespace {

std::vector<RestApiJobManager::MinimalJobInfo> summaries(int count)
{
    std::vector<RestApiJobManager::MinimalJobInfo> jobs;
    jobs.reserve(static_cast<std::size_t>(count));
    for (int job = 0; job < count; ++job) {
        const std::string number = std::to_string(100000 + job);
        RestApiJobManager::MinimalJobInfo info;
        info.id = "WO-2026-" + number;
        info.workOrderLabel = "Work order";
        info.workflowTypeName = "Fibre acceptance";
        info.customerName = "Customer " + number;
        info.modifiedOn = "2026-03-01T08:15:00." + number;
        info.managedByInfo = "Dispatch north";
        info.managementState = "In progress";
        info.teamTechIds = { "T-100", "T-200" };
        info.archived = job % 4 == 0;
        info.totalNumberOfRequiredTests = 12;
        info.numberOfCompletedRequiredTests = job % 13;
        jobs.push_back(std::move(info));
    }
    return jobs;
}

/// A manager that has its rows, over a stand-in of the client.
class ManagerWithJobs
{
public:
    explicit ManagerWithJobs(int jobs)
    {
        StandInClient::reset();
        ClientAnswers answers;
        answers.jobList = summaries(jobs);
        StandInClient::setAnswers(std::move(answers));
        m_manager = std::make_unique<JobManager>(std::make_shared<JobManagerRestAPI>("127.0.0.1", 8082));
        QSignalSpy rows(m_manager.get(), &QAbstractItemModel::modelReset);
        m_manager->initialize();
        rows.wait();
    }

    JobManager& manager() { return *m_manager; }

private:
    std::unique_ptr<JobManager> m_manager;
};

void rebuild(benchmark::State& state)
{
    ManagerWithJobs jobs(static_cast<int>(state.range(0)));
    for (auto round : state) {
        Q_UNUSED(round)
        jobs.manager().doUpdateDataFromAPI();
        // The record of calls is the stand-in's own, and must not grow.
        state.PauseTiming();
        StandInClient::forgetCalls();
        state.ResumeTiming();
    }
    state.counters["per_job"] = benchmark::Counter(static_cast<double>(state.range(0)),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// One job in a plain table, ready to be shown.
struct PlainJob
{
    QString jobNumber;
    QString workOrderLabel;
    QString customerName;
    QString typeName;
    bool isArchived = false;
    QString modifiedOn;
    int totalNumberOfRequiredTests = 0;
    int numberOfCompletedRequiredTests = 0;
    QString managedBy;
    QString state;
    QStringList teamTechIds;
};

std::vector<PlainJob> plainTable(int count)
{
    std::vector<PlainJob> table;
    for (const auto& info : summaries(count)) {
        QStringList team;
        for (const std::string& id : info.teamTechIds)
            team.append(QString::fromStdString(id));
        table.push_back({ QString::fromStdString(info.id), QString::fromStdString(info.workOrderLabel),
            QString::fromStdString(info.customerName), QString::fromStdString(info.workflowTypeName), info.archived,
            QString::fromStdString(info.modifiedOn), info.totalNumberOfRequiredTests,
            info.numberOfCompletedRequiredTests, QString::fromStdString(info.managedByInfo),
            QString::fromStdString(info.managementState), team });
    }
    return table;
}

void bareLoop(benchmark::State& state)
{
    const std::vector<PlainJob> table = plainTable(static_cast<int>(state.range(0)));
    PlainJob shown;
    for (auto round : state) {
        Q_UNUSED(round)
        for (const PlainJob& job : table) {
            shown = job;
            benchmark::DoNotOptimize(shown);
        }
    }
    state.counters["per_job"] = benchmark::Counter(static_cast<double>(state.range(0)),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

} // namespace

BENCHMARK(rebuild)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
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
