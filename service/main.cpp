#include "service/AttributeRules.h"
#include "service/CommandLine.h"
#include "service/DataFolder.h"
#include "service/FileLoader.h"
#include "service/HttpServer.h"
#include "service/Instrument.h"
#include "service/JobApi.h"
#include "service/JobGenerator.h"
#include "service/JobStore.h"
#include "service/Log.h"
#include "service/ProgramBench.h"
#include "service/Router.h"
#include "service/ServiceVersion.h"
#include "service/SimulatedBench.h"
#include "service/SqliteError.h"
#include "service/StoreFile.h"
#include "service/TemplateApi.h"
#include "service/TestApi.h"
#include "service/TestRunner.h"
#include "service/TransferApi.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <initializer_list>
#include <memory>
#include <sys/stat.h>
#include <thread>
#include <vector>

using namespace job_service;

namespace {

/// A signal has asked the service to end before it listens.
class EndRequested : public std::exception
{
};

/// The signals that end the service. Blocked before the first thread starts, they wait until they are looked for.
class EndSignals
{
public:
    EndSignals()
    {
        sigemptyset(&m_signals);
        sigaddset(&m_signals, SIGTERM);
        sigaddset(&m_signals, SIGINT);
        pthread_sigmask(SIG_BLOCK, &m_signals, nullptr);
    }

    void wait() const
    {
        int signal = 0;
        sigwait(&m_signals, &signal);
    }

    void throwIfPending() const
    {
        sigset_t pending;
        sigpending(&pending);
        if (sigismember(&pending, SIGTERM) || sigismember(&pending, SIGINT))
            throw EndRequested();
    }

private:
    sigset_t m_signals;
};

/// Peers that vanish, and files that may not grow, are results of calls and no reason to die.
void ignoreHarmlessSignals()
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

/// Returns the folder of the templates; empty if there is none.
std::filesystem::path fill(JobStore& store, const CommandLine& line, const EndSignals& endSignals)
{
    const auto beforeEach = [&endSignals] { endSignals.throwIfPending(); };
    FileLoader loader(store, beforeEach);
    for (const std::filesystem::path& path : line.load)
        loader.load(path);
    if (!line.templates.empty())
        loader.loadTemplates(line.templates);
    if (line.generate) {
        const std::size_t added = generateJobs(store, *line.generate, beforeEach);
        logLine(std::to_string(added) + " jobs generated");
    }
    return line.templates.empty() ? loader.templateFolder() : line.templates;
}

std::vector<Route> joined(std::initializer_list<std::vector<Route>> tables)
{
    std::vector<Route> routes;
    for (const std::vector<Route>& table : tables)
        routes.insert(routes.end(), table.begin(), table.end());
    return routes;
}

std::unique_ptr<TestBench> benchFor(const TestOptions& options)
{
    if (options.program.program.empty())
        return std::make_unique<SimulatedBench>(options.simulation);
    return std::make_unique<ProgramBench>(options.program);
}

void serve(const CommandLine& line)
{
    ignoreHarmlessSignals();
    const EndSignals endSignals;
    const DataFolder folder(line.data.empty() ? DataFolder::defaultPath() : line.data);
    AttributeRules rules;
    if (!line.attributeRules.empty())
        rules = AttributeRules::fromFile(line.attributeRules);
    const Instrument instrument =
        line.tests.instrument.empty() ? Instrument::standard() : Instrument::fromFile(line.tests.instrument);
    HttpServer server(line.port);
    JobStore store(folder.path());
    const std::filesystem::path templateFolder = fill(store, line, endSignals);

    const std::unique_ptr<TestBench> bench = benchFor(line.tests);
    TestRunner runner(store, instrument, *bench);
    JobApi jobApi(store, line.techId, std::move(rules), LocationLists(templateFolder));
    TestApi testApi(store, runner);
    TemplateApi templateApi(store);
    TransferApi transferApi(store, { MediaRoots(line.mediaRoots), line.exchangeDevice });
    const Router router(
        joined({ jobApi.routes(), testApi.routes(), templateApi.routes(), transferApi.routes() }), server.port());
    server.listen([&router](const HttpHead& head) { return router.decide(head); });
    std::thread serving([&server] { server.run(); });
    std::printf("job-service: listening on 127.0.0.1:%u\n", static_cast<unsigned>(server.port()));
    std::fflush(stdout);

    endSignals.wait();
    jobApi.stop();
    runner.stop();
    transferApi.cancel();
    server.stop();
    serving.join();
}

int run(const CommandLine& line)
{
    if (line.help) {
        std::fputs(usageText(), stdout);
        return 0;
    }
    if (line.version) {
        std::printf("job-service %s\n", serviceVersion);
        return 0;
    }
    // What the service stores is its user's alone.
    ::umask(077);
    try {
        serve(line);
        return 0;
    } catch (const EndRequested&) {
        return 0;
    } catch (const SqliteError& error) {
        logLine(std::string("the store failed: ") + error.what());
        return 1;
    } catch (const std::exception& error) {
        logLine(error.what());
        return 1;
    }
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return run(parseCommandLine({ argv + 1, argv + argc }));
    } catch (const UsageError& error) {
        logLine(std::string(error.what()) + "; see job-service --help");
        return 2;
    }
}
