#include "tests/end_to_end/RandomSession.h"

#include "api/rest/JobManagerRestAPI.h"
#include "core/JobManagerWorker.h"
#include "tests/end_to_end/Bounds.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QThread>
#include <QTimer>

using namespace jobmanager_ui;

namespace {

std::shared_ptr<JobManagerRestAPI> apiOver(unsigned short port)
{
    return std::make_shared<JobManagerRestAPI>("127.0.0.1", port);
}

const QStringList& pool()
{
    static const QStringList ids{ QStringLiteral("R-1"), QStringLiteral("R-2"), QStringLiteral("R-3"),
        QStringLiteral("R-4"), QStringLiteral("R-5"), QStringLiteral("R-6"), QStringLiteral("Zürich / 東京 #1?"),
        QStringLiteral(".."), QStringLiteral("\"quoted\" 100%25"), QString(300, QLatin1Char('x')) };
    return ids;
}

QStringList idsOf(const QAbstractItemModel& model)
{
    QStringList ids;
    for (int row = 0; row < model.rowCount(); ++row) {
        ids.append(model.index(row, 0).data(JobManager::JobIDRole).toString());
    }
    return ids;
}

/// What a job shows, in the order of summaryText.
QStringList shownBy(const Job& job)
{
    return { job.workOrderLabel(), job.typeName(), job.customerName(), job.getModifiedOn(), job.managedBy(),
        job.state(), job.teamTechIds().join(QLatin1Char(',')), QVariant(job.isArchived()).toString(),
        QString::number(job.totalNumberOfRequiredTests()), QString::number(job.numberOfCompletedRequiredTests()) };
}

QStringList toldBy(const QJsonObject& summary)
{
    QStringList texts;
    for (const char* const member :
        { "workOrderLabel", "workflowTypeName", "customerName", "modifiedOn", "managedByInfo", "managementState",
            "teamTechIds", "archived", "totalNumberOfRequiredTests", "numberOfCompletedRequiredTests" }) {
        const QVariant value = summary.value(QLatin1String(member)).toVariant();
        texts.append(value.canConvert<QStringList>() ? value.toStringList().join(QLatin1Char(',')) : value.toString());
    }
    return texts;
}

} // namespace

RandomSession::RandomSession(
    jobmanager_test::ServiceProcess& runningService, const QString& mediaFolder, unsigned int seed)
    : service(runningService)
    , media(mediaFolder)
    , other(runningService.port())
    , manager(apiOver(runningService.port()))
    , invariants(manager)
    , m_chance(seed)
{
    manager.initialize();
    manager.findChild<QTimer*>()->stop();
}

RandomSession::~RandomSession() = default;

int RandomSession::below(int bound)
{
    // Not a distribution of the library: those differ from one to the next.
    return static_cast<int>(m_chance() % static_cast<unsigned int>(bound));
}

QString RandomSession::poolID()
{
    return oneOf(pool());
}

Job* RandomSession::anyJob()
{
    const int rows = manager.rowCount();
    return rows == 0 ? nullptr : manager.index(below(rows), 0).data(JobManager::JobRole).value<Job*>();
}

Test* RandomSession::anyTest(Job* job)
{
    const QAbstractItemModel* const tests = job == nullptr ? nullptr : job->tests();
    if (tests == nullptr || tests->rowCount() == 0) {
        return nullptr;
    }
    return tests->index(below(tests->rowCount()), 0).data(TestList::Test).value<Test*>();
}

QString RandomSession::anyIDOfService()
{
    const QStringList ids = other.jobIds();
    return ids.isEmpty() ? QString() : oneOf(ids);
}

void RandomSession::poll()
{
    QMetaObject::invokeMethod(&manager, "queryChangeCountSlot");
}

bool RandomSession::isAtRest() const
{
    bool fetchingJob = false;
    for (int row = 0; row < manager.rowCount(); ++row) {
        const Job* const job = manager.index(row, 0).data(JobManager::JobRole).value<Job*>();
        fetchingJob = fetchingJob || job->fetchInProgress();
    }
    return !fetchingJob && !manager.fetchingJobList() && !manager.settingCurrentJob() && !manager.isTestLaunching()
        && !manager.isSyncInProgress() && !manager.exportingJobData() && !manager.importingJobs()
        && !manager.exchangingJob() && !manager.isBackgroundRequestInProgress();
}

bool RandomSession::emptyQueue()
{
    // Two requests of a kind have one flag, and the end of the first lowers it. What is posted behind all of them comes
    // back when all their ends have arrived.
    const Job* const job = anyJob();
    if (job == nullptr) {
        return true;
    }
    QEventLoop loop;
    QMetaObject::invokeMethod(
        job->worker(), [&loop] { QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection); },
        Qt::QueuedConnection);
    QTimer::singleShot(stretched(20000), &loop, [&loop] { loop.exit(1); });
    return loop.exec() == 0;
}

bool RandomSession::settle()
{
    const QDeadlineTimer deadline(stretched(20000));
    do {
        QCoreApplication::processEvents();
        if (!emptyQueue()) {
            return false;
        }
    } while (!isAtRest() && !deadline.hasExpired());
    while (other.isTestRunning() && !deadline.hasExpired()) {
        QThread::msleep(1);
    }
    return isAtRest();
}

QString RandomSession::difference()
{
    const QDeadlineTimer deadline(stretched(30000));
    QString found;
    do {
        poll();
        found = settle() ? differenceNow() : QStringLiteral("something does not end");
    } while (!found.isEmpty() && !deadline.hasExpired());
    return found;
}

QString RandomSession::differenceNow()
{
    const QStringList told = other.jobIds();
    const QStringList shown = idsOf(manager);
    if (shown != told) {
        return QStringLiteral("rows %1 instead of %2").arg(shown.join(QLatin1Char(' ')), told.join(QLatin1Char(' ')));
    }
    const QString current = manager.currentJob() == nullptr ? QString() : manager.currentJob()->concreteTypeJobID();
    if (current != other.activeJob()) {
        return QStringLiteral("current job %1 instead of %2").arg(current, other.activeJob());
    }
    QString found;
    for (const QString& jobID : shown) {
        found += differenceOfJob(jobID);
    }
    if (found.isEmpty() && !shown.isEmpty()) {
        found = differenceOfTests(current.isEmpty() ? shown.constFirst() : current);
    }
    return found;
}

QString RandomSession::differenceOfJob(const QString& jobID)
{
    const QStringList shown = shownBy(*manager.getJob(jobID));
    const QStringList told = toldBy(other.summary(jobID));
    return shown == told ? QString()
                         : QStringLiteral("%1 shows %2 instead of %3")
                               .arg(jobID, shown.join(QLatin1Char('|')), told.join(QLatin1Char('|')));
}

QString RandomSession::differenceOfTests(const QString& jobID)
{
    Job* const job = manager.getJob(jobID);
    const QAbstractItemModel* const tests = job->tests();
    if (tests == nullptr) {
        return QStringLiteral("the tests of %1 are not there").arg(jobID);
    }
    const std::shared_ptr<JobManagerRestAPI> told = apiOver(service.port());
    const std::vector<long long> ids = told->getAllTestIDs(jobID);
    if (tests->rowCount() != static_cast<int>(ids.size())) {
        return QStringLiteral("%1 has %2 tests instead of %3").arg(jobID).arg(tests->rowCount()).arg(ids.size());
    }
    for (const long long id : ids) {
        const std::shared_ptr<Test> test = job->getTest(id);
        if (test == nullptr || test->testStatus() != told->getTestStatus(jobID, id)
            || test->testTime() != told->getTestTime(jobID, id)
            || test->manualStepUserResponse() != told->getTestResponse(jobID, id)) {
            return QStringLiteral("test %1 of %2 is not as the service has it").arg(id).arg(jobID);
        }
    }
    return {};
}
