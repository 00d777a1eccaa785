#include "tests/end_to_end/RandomOperations.h"

#include "tests/end_to_end/RandomSession.h"

#include <QCoreApplication>

using namespace jobmanager_ui;

namespace {

using S = RandomSession&;

QString templateName(S s)
{
    return s.oneOf({ QString(), QStringLiteral("Ethernet activation"), QStringLiteral("no such template") });
}

void createJob(S s)
{
    const QString locations =
        s.oneOf({ QString(), QStringLiteral("fibres-1-12.txt"), QStringLiteral("../jobs.sqlite") });
    if (!s.hasManyJobs()) {
        s.manager.createNewJob(s.poolID(), QStringLiteral("T-1"), templateName(s), locations, s.once(2));
    }
}

void deleteJob(S s)
{
    if (!s.hasFewJobs()) {
        s.manager.deleteJob(s.anyJob());
    }
}

void archiveJob(S s)
{
    if (Job* const job = s.anyJob()) {
        s.invariants.jobChanges(job->concreteTypeJobID());
        job->setIsArchived(s.once(2));
    }
}

void updateJob(S s)
{
    if (Job* const job = s.anyJob()) {
        s.invariants.jobChanges(job->concreteTypeJobID());
        job->updateDataFromAPI();
    }
}

void launchTest(S s)
{
    // The service takes every launch for one of its active job.
    s.manager.launchTest(s.anyTest(s.once(4) ? s.anyJob() : s.manager.currentJob()));
}

void answerManualStep(S s)
{
    if (Test* const test = s.anyTest(s.manager.currentJob())) {
        test->setManualStepUserResponse(s.oneOf({ QStringLiteral("yes"), QStringLiteral("größer"), QString() }));
    }
}

void askAboutTemplates(S s)
{
    const QStringList templates = s.manager.fetchJobTemplates();
    for (const QString& name : templates) {
        s.manager.getWorkOrderLabelFromTemplate(name);
        s.manager.getTemplateNumberOfTests(name);
    }
    s.manager.getTechID();
}

void askAboutTransfers(S s)
{
    s.manager.showExportJobSelection(s.media);
    s.manager.showImportJobButton(s.media);
    s.manager.showExchangeJobSelection();
}

void switchLanguage(S s)
{
    s.manager.setLanguage(s.oneOf({ QStringLiteral("de"), QStringLiteral("en"), QStringLiteral("none"), QString() }));
}

void otherCreatesJob(S s)
{
    s.emptyQueue(); // an import may bring any job
    const QStringList ids = s.other.jobIds();
    const QString jobID = s.poolID();
    if (!ids.contains(jobID) && !s.hasManyJobs()) {
        s.other.createJob(jobID);
    }
}

void otherDeletesJob(S s)
{
    const QString jobID = s.anyIDOfService();
    if (!s.hasFewJobs() && !jobID.isEmpty()) {
        s.other.deleteJob(jobID);
    }
}

/// For what happens to one job of the service.
template <typename Change> void withJobOfService(S s, Change change)
{
    const QString jobID = s.anyIDOfService();
    if (!jobID.isEmpty()) {
        change(jobID);
    }
}

void otherMakesJobAnew(S s)
{
    s.emptyQueue(); // an import may bring any job
    withJobOfService(s, [&](const QString& jobID) {
        s.other.deleteJob(jobID);
        s.other.createJob(jobID);
    });
}

/// Seldom: it takes the worker two seconds.
void sync(S s)
{
    if (s.once(8)) {
        s.manager.syncWithNimbrel();
    }
}

/// Dead for a moment or two, in which the screens go on.
void serviceRestarts(S s)
{
    s.service.kill();
    for (int i = s.below(4); i > 0; --i) {
        s.poll();
        s.manager.setCurrentJob(s.anyJob());
        s.manager.deleteJob(s.anyJob());
        s.manager.createNewJob(s.poolID(), QString());
        launchTest(s);
        QCoreApplication::processEvents();
    }
    s.service.start();
}

} // namespace

const std::vector<RandomOperation>& randomOperations()
{
    static const std::vector<RandomOperation> operations{
        // The current job.
        { "make a job current", 60, [](S s) { s.manager.setCurrentJob(s.anyJob()); } },
        { "make no job current", 5, [](S s) { s.manager.setCurrentJob(nullptr); } },
        { "give the current job up", 30, [](S s) { s.manager.unsetCurrentJob(); } },
        { "make a job current at once", 20, [](S s) { s.manager.setCurrentJobByID(s.poolID()); } },
        // Jobs.
        { "create a job", 60, &createJob },
        { "create a job without a number", 5, [](S s) { s.manager.createNewJob(QString(), QString()); } },
        { "delete a job", 40, &deleteJob },
        { "delete no job", 5, [](S s) { s.manager.deleteJob(nullptr); } },
        { "archive or restore a job", 40, &archiveJob },
        { "ask about a job", 5, [](S s) { s.manager.doesJobExist(s.poolID()); } },
        { "ask about templates", 5, &askAboutTemplates },
        { "update a job", 10, &updateJob },
        // Tests.
        { "read the tests of a job", 50, [](S s) { s.anyTest(s.anyJob()); } },
        { "read the tests of the current job", 50, [](S s) { s.anyTest(s.manager.currentJob()); } },
        { "launch a test", 50, &launchTest },
        { "launch no test", 5, [](S s) { s.manager.launchTest(nullptr); } },
        { "answer a manual step", 20, &answerManualStep },
        // The manager.
        { "poll", 120, [](S s) { s.poll(); } },
        { "let events in", 120, [](S) { QCoreApplication::processEvents(); } },
        { "let everything end", 30, [](S s) { s.settle(); } },
        { "update in full", 20, [](S s) { s.manager.updateDataFromAPI(true); } },
        { "update in part", 20, [](S s) { s.manager.updateDataFromAPI(false); } },
        { "pause", 10, [](S s) { s.manager.setPauseAutomaticUpdates(true); } },
        { "resume", 15, [](S s) { s.manager.setPauseAutomaticUpdates(false); } },
        { "group the tests", 15, [](S s) { s.manager.setGroupType(static_cast<TestGroupType::Enum>(s.below(4))); } },
        { "write a setting", 5, [](S s) { s.manager.writeSetting(QStringLiteral("random"), s.poolID()); } },
        { "read the settings", 5, [](S s) { s.manager.updateSettingsFromDb(); } },
        { "turn to the port in use", 5, [](S s) { s.manager.setRestApiPort(s.service.port()); } },
        { "switch the language", 3, &switchLanguage },
        // Transfers.
        { "export a job", 15, [](S s) { s.manager.exportJobData(s.anyJob(), s.media); } },
        { "export to where nothing may be written", 3,
            [](S s) { s.manager.exportJobData(s.anyJob(), QStringLiteral("/proc")); } },
        { "import jobs", 10, [](S s) { s.manager.importJobs(s.media); } },
        { "import what is not there", 3, [](S s) { s.manager.importJobs(QStringLiteral("/proc/none")); } },
        { "ask about transfers", 3, &askAboutTransfers },
        { "exchange the current job", 5, [](S s) { s.manager.exchangeCurrentJob(); } },
        { "sync", 1, &sync },
        // The rest of the world.
        { "another client creates a job", 20, &otherCreatesJob },
        { "another client deletes a job", 10, &otherDeletesJob },
        { "another client makes a job anew", 10, &otherMakesJobAnew },
        { "another client archives a job", 10,
            [](S s) { withJobOfService(s, [&](const QString& jobID) { s.other.archiveJob(jobID); }); } },
        { "another client makes a job current", 20,
            [](S s) { withJobOfService(s, [&](const QString& jobID) { s.other.setActiveJob(jobID); }); } },
        { "another client completes a job", 10,
            [](S s) { withJobOfService(s, [&](const QString& jobID) { s.other.completeJob(jobID); }); } },
        { "another client groups the tests", 10,
            [](S s) { s.other.writeSetting(QStringLiteral("groupType"), QString::number(s.below(4))); } },
        { "the service restarts", 1, &serviceRestarts },
    };
    return operations;
}

const RandomOperation& randomOperation(RandomSession& session)
{
    const std::vector<RandomOperation>& operations = randomOperations();
    int weights = 0;
    for (const RandomOperation& operation : operations) {
        weights += operation.weight;
    }
    int chosen = session.below(weights);
    std::size_t i = 0;
    while (chosen >= operations[i].weight) {
        chosen -= operations[i++].weight;
    }
    return operations[i];
}
