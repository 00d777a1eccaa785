#pragma once

#include "core/JobManager.h"
#include "tests/end_to_end/JobServiceClient.h"
#include "tests/end_to_end/ManagerInvariants.h"
#include "tests/support/ServiceProcess.h"

#include <memory>
#include <QStringList>
#include <random>

/// One front end over a running service, to which things are done at random: the manager over the real client, another
/// client of the same service, and the chance that picks jobs, tests and values. The same seed makes the same choices
/// wherever the same jobs are found. No timer polls: a poll is one of the things that are done. Main thread.
class RandomSession
{
public:
    /// `media` is a folder that the service exports to and imports from.
    RandomSession(jobmanager_test::ServiceProcess& service, const QString& media, unsigned int seed);
    ~RandomSession();

    /// A number from 0 to `bound` - 1.
    int below(int bound);
    /// True once in so many times.
    bool once(int inTimes) { return below(inTimes) == 0; }
    /// One of them.
    const QString& oneOf(const QStringList& texts) { return texts.at(below(texts.size())); }

    /// An id from the few that jobs here come and go by; awkward ones among them.
    QString poolID();
    /// A job that has a row; null if there is none.
    jobmanager_ui::Job* anyJob();
    /// A test of the job; null while its tests are not there, or if it has none.
    jobmanager_ui::Test* anyTest(jobmanager_ui::Job* job);
    /// The id of a job that the service has; null if it has none.
    QString anyIDOfService();
    /// Whether jobs should be made rather than removed, and the other way round.
    bool hasFewJobs() const { return manager.rowCount() < 4; }
    bool hasManyJobs() const { return manager.rowCount() > 12; }

    /// One tick of the poll timer.
    void poll();
    /// Lets the requests to the worker that wait at this moment come to their end. False if they do not in time.
    bool emptyQueue();
    /// Lets everything happen that is under way, in the front and in the service. False if it does not come to an end
    /// in time.
    bool settle();
    /// Polls until the model says what the service says. Empty if it comes to that, else what differs in the end.
    QString difference();

    jobmanager_test::ServiceProcess& service;
    const QString media;
    const JobServiceClient other;
    jobmanager_ui::JobManager manager;
    ManagerInvariants invariants;

private:
    QString differenceNow();
    QString differenceOfJob(const QString& jobID);
    QString differenceOfTests(const QString& jobID);
    bool isAtRest() const;

    std::mt19937 m_chance;
};
