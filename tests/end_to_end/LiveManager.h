#pragma once

#include "core/JobManager.h"
#include "tests/end_to_end/JobServiceClient.h"
#include "tests/end_to_end/ServiceRelay.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/ServiceProcess.h"

#include <memory>
#include <QStringList>
#include <string>
#include <vector>

/// A job with tests of each kind, from the samples.
extern const QString testedID;
/// The indexes of tests of that job: one with a result, one without, a manual step.
constexpr int withResult = 1;
constexpr int withoutResult = 2;
constexpr int manualStep = 4;
/// A job with two tests, from the samples.
extern const QString otherID;

/// For waits whose length is of no matter, in milliseconds.
int aWhile();

/// The front over the real client, without a QML engine, and a service of its own; the other client of
/// that service, and everything that is said meanwhile. What does not come about in time fails the running test.
class LiveManager
{
public:
    /// Starts the service, with these options, the two sample jobs and the sample templates.
    explicit LiveManager(std::vector<std::string> options = {});

    /// Makes the manager, and waits for the rows of all jobs.
    void startManager();
    /// As startManager(), with a relay between the manager and the service.
    void startManagerOverRelay();
    /// Has the service make the job current, and waits until the manager shows that and has its tests.
    void makeCurrent(const QString& jobID);
    /// Waits for the tests of the job.
    void openTests(const QString& jobID);
    /// Waits for the result of a test that had none.
    void awaitResult(const jobmanager_ui::Test& test);

    jobmanager_ui::Job* job(const QString& jobID) const { return manager->getJob(jobID); }
    /// The test of the job with this index, or the last of its locations.
    std::shared_ptr<jobmanager_ui::Test> testAt(int index, const QString& jobID = testedID) const;
    /// The id of the current job, empty for none.
    QString currentID() const;
    /// Ends the manager, and gives what Qt and the front have warned of.
    QStringList endWithWarnings();

    jobmanager_test::MessageCollector messages;
    std::unique_ptr<jobmanager_test::ServiceProcess> service;
    std::unique_ptr<ServiceRelay> relay;
    JobServiceClient client{ 0 };
    std::unique_ptr<jobmanager_ui::JobManager> manager;

private:
    void startManager(unsigned short port);
};

/// A service with these options and a manager that shows its jobs.
std::unique_ptr<LiveManager> liveManager(const std::vector<std::string>& options = {});
/// The same with a relay between the two.
std::unique_ptr<LiveManager> liveManagerOverRelay(const std::vector<std::string>& options = {});
