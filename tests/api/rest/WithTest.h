#pragma once

#include "tests/api/rest/OnStandIn.h"
#include "tests/api/rest/Records.h"
#include "tests/api/rest/StandInClient.h"

#include <QString>

namespace jobmanager_test {

/// The one job of these tests.
inline const QString job = QStringLiteral("J");

/// Makes a job with these tests the service's answer.
inline void answerWithTests(const std::vector<cdm::Test>& tests)
{
    ClientAnswers answers;
    answers.jobs[job.toStdString()] = jobOf(job.toStdString(), tests);
    StandInClient::setAnswers(answers);
}

/// An implementation whose job has this test alone, already read.
class WithTest : public OnStandIn
{
public:
    explicit WithTest(const cdm::Test& test)
    {
        answerWithTests({ test });
        (*this)->fetchJob(job);
        (*this)->commitFetchedData();
    }
};

} // namespace jobmanager_test
