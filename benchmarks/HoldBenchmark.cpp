// How long the event loop of a front end is held while a job with many tests is open: by updates of each kind, and by
// what a person does to its list. The real module in a real QML engine, the real client, the real service.
//
// First without the items of a screen, so that making delegates and painting stand apart; then the demo's own window
// with both, drawn in software. Debug messages are off, as on the instrument.

#include "benchmarks/OpenJob.h"
#include "tests/end_to_end/Bounds.h"
#include "tests/support/HttpRequest.h"
#include "tests/support/PrivateNetwork.h"
#include "tests/support/ServiceProcess.h"

#include <algorithm>
#include <cstdio>
#include <QCommandLineParser>
#include <QLoggingCategory>

using jobmanager_test::ServiceProcess;

namespace {

/// The exit code that tells a test runner that the test could not be run here.
constexpr int skipped = 77;

struct Options
{
    int tests = 1000;
    int jobs = 100;
    int rounds = 20;
    /// What no update may exceed without the items of a screen, in milliseconds; 0 for no bound.
    double bound = 0;
};

Options readOptions(const WatchedApplication& application)
{
    const auto option = [](const char* name, const char* text, const char* value) {
        return QCommandLineOption(QLatin1String(name), QLatin1String(text), QLatin1String(name), QLatin1String(value));
    };
    const QCommandLineOption tests = option("tests", "Tests of the job that is open.", "1000");
    const QCommandLineOption jobs = option("jobs", "Jobs in the list.", "100");
    const QCommandLineOption rounds = option("rounds", "Rounds of each measurement.", "20");
    const QCommandLineOption bound =
        option("bound", "Fail if an update without items holds longer, in milliseconds; 0 for no bound.", "0");
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("How long updates of an open job hold the event loop."));
    parser.addHelpOption();
    parser.addOptions({ tests, jobs, rounds, bound });
    parser.process(application);
    return { std::max(1, parser.value(tests).toInt()), std::max(1, parser.value(jobs).toInt()),
        std::max(1, parser.value(rounds).toInt()), parser.value(bound).toDouble() };
}

void fillJobList(unsigned short port, int jobs)
{
    // One is there already.
    for (int job = 1; job < jobs; ++job) {
        const std::string body = R"({"workOrderNo": "JOB-)" + std::to_string(job)
            + R"(", "techId": "T-100", "templateName": "", "locationsFilename": "", "syncToNimbrel": false})";
        if (jobmanager_test::httpRequest(port, "POST", "/api/v1/jobs", body).status != 201)
            qFatal("no job could be made");
    }
}

double milliseconds(std::chrono::nanoseconds time)
{
    return std::chrono::duration<double, std::milli>(time).count();
}

void printHead(const char* title)
{
    std::printf("\n%-26s%21s%24s\n%-26s %9s %10s %12s %10s\n", "", "held", "of it computing", title, "median",
        "longest", "median", "longest");
}

double medianOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double longestOf(const std::vector<double>& values)
{
    return *std::max_element(values.begin(), values.end());
}

/// What updates took of the main thread, in milliseconds.
struct Cost
{
    double medianHeld = 0;
    double longestComputing = 0;
};

Cost greater(const Cost& one, const Cost& other)
{
    return { std::max(one.medianHeld, other.medianHeld), std::max(one.longestComputing, other.longestComputing) };
}

Cost print(const char* name, const std::vector<WatchedApplication::Longest>& rounds)
{
    std::vector<double> held;
    std::vector<double> computing;
    for (const WatchedApplication::Longest& round : rounds) {
        held.push_back(milliseconds(round.held));
        computing.push_back(milliseconds(round.computing));
    }
    std::printf("%-26s %6.2f ms %7.2f ms %9.2f ms %7.2f ms\n", name, medianOf(held), longestOf(held),
        medianOf(computing), longestOf(computing));
    std::fflush(stdout);
    return { medianOf(held), longestOf(computing) };
}

/// Measures all that can happen to the open job. Returns the greatest cost of an update.
Cost measureAll(OpenJob& job, int rounds)
{
    Cost greatest;
    print("opening", { job.opening() });
    for (const OpenJob::Update& update : job.updates())
        greatest = greater(greatest, print(update.name, job.measure(update, rounds)));
    for (const OpenJob::Update& act : job.acts())
        print(act.name, job.measure(act, rounds));
    return greatest;
}

/// Whether updates keep to the bound: each of them in what it computes, the middle one in what it waits for the job
/// service too, which on a crowded machine waits for its own turn.
bool keepTo(double bound, const Cost& updates)
{
    const double crowded = stretched(1000) / 1000.0;
    return updates.longestComputing <= bound && updates.medianHeld <= bound * crowded;
}

int run(WatchedApplication& application, const Options& options)
{
    ServiceProcess service({ "--generate", "jobs=1,tests=" + std::to_string(options.tests) });
    service.setPort(modulePort);
    if (!service.start()) {
        std::fprintf(stderr, "%s\n", service.log().c_str());
        return EXIT_FAILURE;
    }
    fillJobList(service.port(), options.jobs);
    std::printf("A job of %d tests is open, among %d jobs. %d rounds of each; the longest hold of each round counts.\n",
        options.tests, options.jobs, options.rounds);

    printHead("without items");
    Cost updates;
    {
        OpenJob job(application, OpenJob::WithoutItems);
        updates = measureAll(job, options.rounds);
    }
    printHead("the demo, painted");
    {
        OpenJob job(application, OpenJob::InTheDemo);
        measureAll(job, options.rounds);
        print("a frame of a fast flick", job.flick(20 * options.rounds));
    }
    if (options.bound > 0 && !keepTo(options.bound, updates)) {
        std::printf("\nan update without items held the event loop for more than %.1f ms\n", options.bound);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char* argv[])
{
    const std::string refusal = jobmanager_test::enterPrivateNetwork();
    if (!refusal.empty()) {
        std::fprintf(stderr, "no network of its own, in which port %d is free: %s\n", modulePort, refusal.c_str());
        return skipped;
    }
    // Without a display, and with the module of this build.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("QML2_IMPORT_PATH", JOBMANAGER_IMPORT_PATH);
    WatchedApplication application(argc, argv);
    const Options options = readOptions(application);
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    return run(application, options);
}
