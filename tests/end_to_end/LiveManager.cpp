#include "tests/end_to_end/LiveManager.h"

#include "api/rest/JobManagerRestAPI.h"
#include "tests/end_to_end/Bounds.h"

#include <QtTest>
#include <utility>

using jobmanager_test::ServiceProcess;
using namespace jobmanager_ui;

const QString testedID = QStringLiteral("WO-2026-004711");
const QString otherID = QStringLiteral("WO-2026-004512");

namespace {

std::vector<std::string> withSamples(std::vector<std::string> options)
{
    for (const std::string& sample : { std::string("templates"), "jobs/" + testedID.toStdString() + ".job.json",
             "jobs/" + otherID.toStdString() + ".job.json" }) {
        options.insert(options.end(), { "--load", JOBMANAGER_SAMPLES "/" + sample });
    }
    return options;
}

} // namespace

int aWhile()
{
    return stretched(10000);
}

LiveManager::LiveManager(std::vector<std::string> options)
    : service(std::make_unique<ServiceProcess>(withSamples(std::move(options))))
{
    QVERIFY2(service->start(), service->log().c_str());
    client = JobServiceClient(service->port());
}

void LiveManager::startManager()
{
    startManager(service->port());
}

void LiveManager::startManagerOverRelay()
{
    relay = std::make_unique<ServiceRelay>(service->port(), static_cast<unsigned short>(0));
    startManager(relay->port());
}

void LiveManager::startManager(unsigned short port)
{
    manager = std::make_unique<JobManager>(std::make_shared<JobManagerRestAPI>("127.0.0.1", port));
    manager->initialize();
    QTRY_COMPARE_WITH_TIMEOUT(manager->rowCount(), client.jobIds().size(), aWhile());
}

void LiveManager::makeCurrent(const QString& jobID)
{
    client.setActiveJob(jobID);
    QTRY_COMPARE_WITH_TIMEOUT(currentID(), jobID, aWhile());
    openTests(jobID);
}

void LiveManager::openTests(const QString& jobID)
{
    QTRY_VERIFY_WITH_TIMEOUT(job(jobID)->tests() != nullptr, aWhile());
}

void LiveManager::awaitResult(const Test& test)
{
    // Until the list of tests has been read anew: the status alone may be ahead of it.
    QTRY_VERIFY_WITH_TIMEOUT(job(test.concreteTypeJobID())->tests() != nullptr && test.testTime().isValid(), aWhile());
    QVERIFY(!test.testStatus().isEmpty());
}

std::shared_ptr<Test> LiveManager::testAt(int index, const QString& jobID) const
{
    std::shared_ptr<Test> found;
    const QAbstractItemModel* const tests = job(jobID)->tests();
    for (int row = 0; row < tests->rowCount(); ++row) {
        const auto* const test = tests->index(row, 0).data(TestList::Test).value<Test*>();
        if (test->testIndex() == index) {
            found = job(jobID)->getTest(test->concreteTypeTestID());
        }
    }
    return found;
}

QString LiveManager::currentID() const
{
    return manager->currentJob() == nullptr ? QString() : manager->currentJob()->concreteTypeJobID();
}

QStringList LiveManager::endWithWarnings()
{
    manager.reset();
    return messages.take().filter(QStringLiteral("warning: "));
}

std::unique_ptr<LiveManager> liveManager(const std::vector<std::string>& options)
{
    auto front = std::make_unique<LiveManager>(options);
    front->startManager();
    return front;
}

std::unique_ptr<LiveManager> liveManagerOverRelay(const std::vector<std::string>& options)
{
    auto front = std::make_unique<LiveManager>(options);
    front->startManagerOverRelay();
    return front;
}
