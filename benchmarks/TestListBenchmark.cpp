// What the list of a job's tests costs a test, beside a bare loop over the same values in plain records: a reload, a
// search, a regrouping and the building of sections.
//
// The data interface answers from memory, so that what is measured is the list and its Test objects. Debug messages
// are off, as on the instrument.

#include "models/TestGrouping.h"
#include "models/TestList.h"
#include "tests/support/ConcreteMockApi.h"

#include <benchmark/benchmark.h>
#include <QCoreApplication>
#include <QHash>
#include <QLoggingCategory>
#include <QRegExp>

using namespace jobmanager_ui;

namespace {

struct PlainTest
{
    int index = 0;
    QString type;
    QDateTime time;
    QString location;
    QString status;
};

std::vector<PlainTest> plainTests(int count)
{
    const QDateTime start(QDate(2026, 3, 1), QTime(8, 0), Qt::UTC);
    std::vector<PlainTest> tests;
    tests.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        PlainTest test;
        test.index = i;
        test.type = QStringLiteral("type %1").arg(i % 12);
        test.time = start.addSecs(i);
        test.location = QStringLiteral("Cabinet %1").arg(i % 40);
        test.status = i % 3 == 0 ? QString() : QStringLiteral("pass");
        tests.push_back(test);
    }
    return tests;
}

/// One job whose tests are plain records; a test's id is its position.
class PlainApi : public jobmanager_test::ConcreteMockApi
{
public:
    explicit PlainApi(int count) : m_tests(plainTests(count)) { }

    std::vector<long long> getAllTestIDs(QString /*jobID*/) override
    {
        std::vector<long long> ids;
        ids.reserve(m_tests.size());
        for (std::size_t i = 0; i < m_tests.size(); ++i) {
            ids.push_back(static_cast<long long>(i));
        }
        return ids;
    }
    QString getTestType(QString /*jobID*/, long long testID) override { return at(testID).type; }
    QString getTestTypeDisplayName(QString /*jobID*/, long long testID) override { return at(testID).type; }
    QDateTime getTestTime(QString /*jobID*/, long long testID) override { return at(testID).time; }
    QString getTestStatus(QString /*jobID*/, long long testID) override { return at(testID).status; }
    QVariant getOptionalTestProperty(QString /*jobID*/, long long testID, const QString& /*propName*/) override
    {
        return at(testID).location;
    }

private:
    const PlainTest& at(long long testID) const { return m_tests[static_cast<std::size_t>(testID)]; }

    std::vector<PlainTest> m_tests;
};

class LoadedList : public TestList
{
public:
    explicit LoadedList(int count) : TestList(std::make_shared<PlainApi>(count), QStringLiteral("WO-1"), TESTSUBSET_ALL)
    {
        updateDataFromAPIIfRequired();
    }
};

int testsOf(const benchmark::State& state)
{
    return static_cast<int>(state.range(0));
}

void countPerTest(benchmark::State& state)
{
    state.counters["per_test"] = benchmark::Counter(static_cast<double>(state.range(0)),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void reload(benchmark::State& state)
{
    LoadedList list(testsOf(state));
    for (auto round : state) {
        Q_UNUSED(round)
        list.markAsUpdateRequired();
        list.updateDataFromAPIIfRequired();
    }
    countPerTest(state);
}

void search(benchmark::State& state)
{
    LoadedList list(testsOf(state));
    bool first = false;
    for (auto round : state) {
        Q_UNUSED(round)
        first = !first;
        list.setSearchRegExpStr(first ? QStringLiteral("cabinet 1") : QStringLiteral("cabinet 2"));
    }
    countPerTest(state);
}

void regroup(benchmark::State& state)
{
    LoadedList list(testsOf(state));
    bool byLocation = false;
    for (auto round : state) {
        Q_UNUSED(round)
        byLocation = !byLocation;
        list.setGroupType(byLocation ? TestGroupType::GROUPBY_LOCATION : TestGroupType::GROUPBY_TEST_NAME);
    }
    countPerTest(state);
}

/// The most sections that there can be: one a test.
void buildSections(benchmark::State& state)
{
    const std::vector<long long> ids = PlainApi(testsOf(state)).getAllTestIDs(QString());
    for (auto round : state) {
        Q_UNUSED(round)
        benchmark::DoNotOptimize(sectionsOf(ids, [](long long id) { return QString::number(id); }));
    }
    countPerTest(state);
}

void bareReload(benchmark::State& state)
{
    const std::vector<PlainTest> table = plainTests(testsOf(state));
    std::vector<PlainTest> shown;
    for (auto round : state) {
        Q_UNUSED(round)
        shown = table;
        benchmark::DoNotOptimize(shown.data());
    }
    countPerTest(state);
}

void bareSearch(benchmark::State& state)
{
    const std::vector<PlainTest> table = plainTests(testsOf(state));
    const QRegExp pattern(QStringLiteral("cabinet 1"), Qt::CaseInsensitive);
    for (auto round : state) {
        Q_UNUSED(round)
        int found = 0;
        for (const PlainTest& test : table) {
            found += pattern.indexIn(test.location) < 0 ? 0 : 1;
        }
        benchmark::DoNotOptimize(found);
    }
    countPerTest(state);
}

void bareRegroup(benchmark::State& state)
{
    const std::vector<PlainTest> table = plainTests(testsOf(state));
    for (auto round : state) {
        Q_UNUSED(round)
        QHash<QString, std::vector<int>> groups;
        for (const PlainTest& test : table) {
            groups[test.location].push_back(test.index);
        }
        benchmark::DoNotOptimize(groups);
    }
    countPerTest(state);
}

void bareSections(benchmark::State& state)
{
    for (auto round : state) {
        Q_UNUSED(round)
        std::vector<std::pair<QString, int>> sections;
        for (int i = 0; i < testsOf(state); ++i) {
            sections.emplace_back(QString::number(i), i);
        }
        benchmark::DoNotOptimize(sections.data());
    }
    countPerTest(state);
}

} // namespace

BENCHMARK(reload)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(bareReload)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(search)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(bareSearch)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(regroup)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(bareRegroup)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(buildSections)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(bareSections)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
