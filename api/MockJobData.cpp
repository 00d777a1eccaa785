#include "api/MockJobData.h"

#include <utility>

namespace jobmanager_ui {

namespace {

using MockJobInfo = MockJobManagerAPI::MockJobInfo;
using MockTest = MockJobManagerAPI::MockTest;
using Jobs = QHash<QString, MockJobInfo>;

constexpr int numberOfJobs = 20;
constexpr int numberOfGeneratedTests = 10;

QHash<QString, QVariant> jobProperties(const QString& other, double number, const QString& letters)
{
    return {
        { QStringLiteral("otherJobProperty"), other },
        { QStringLiteral("numberJobProperty"), number },
        { QStringLiteral("onlyLetters"), letters },
    };
}

QHash<QString, QVariant> testProperties(const QString& location, double number)
{
    return {
        { QStringLiteral("location"), location },
        { QStringLiteral("otherTestInfo1"), QStringLiteral("Other Test Info1") },
        { QStringLiteral("otherTestInfo2"), QStringLiteral("Other Test Info2") },
        { QStringLiteral("numberProperty"), number },
    };
}

MockTest newTest(long long id, const QString& type, const QString& status,
    TestRequirement::Enum required = TestRequirement::TEST_REQUIRED)
{
    MockTest test;
    test.id = id;
    test.type = type;
    test.status = status;
    test.required = required;
    return test;
}

void addTest(MockJobInfo& job, MockTest test)
{
    const bool required = test.required == TestRequirement::TEST_REQUIRED;
    const auto shared = std::make_shared<MockTest>(std::move(test));
    job.tests.push_back(shared);
    (required ? job.requiredTests : job.optionalTests).push_back(shared);
}

void addListedTestsOfJob1(MockJobInfo& job)
{
    MockTest test = newTest(0, QStringLiteral("OTDR"), QStringLiteral("pass"));
    test.optionalProperties = testProperties(QStringLiteral("Loc1"), 1.0);
    test.configuration = QStringLiteral("myconfig : myconfig1.json\nRef0 : r0\nRef12 : r12 \nr1 : r11");
    addTest(job, test);

    test = newTest(1, QStringLiteral("Kwikprobe Ethernet"), QStringLiteral("none"));
    test.optionalProperties = testProperties(QStringLiteral("MyLocation2"), 1.1111);
    test.configuration = QStringLiteral("myconfig : myconfig1.json\nRef0 : r0\nRef12 : r12\nr1 : r11");
    addTest(job, test);

    test = newTest(2, QStringLiteral("Kwikprobe"), QStringLiteral("pass"));
    test.time = QStringLiteral("2022-08-30 11:28:07+03:00");
    test.optionalProperties = testProperties(QStringLiteral("MyLocation3"), 1.2);
    test.configuration = QStringLiteral("myconfig : myconfig1.json\nRef0 : r0\nRef12 : r12\nr1 : r11");
    addTest(job, test);

    test = newTest(3, QStringLiteral("Kwikprobe"), QStringLiteral("none"), TestRequirement::TEST_OPTIONAL);
    test.optionalProperties = testProperties(QStringLiteral("MyLocation5"), 1.2);
    addTest(job, test);

    test = newTest(4, QStringLiteral("Kwikprobe"), QStringLiteral("none"), TestRequirement::TEST_ADDED);
    test.optionalProperties = testProperties(QStringLiteral("MyLocation4"), 1.2);
    test.configuration = QStringLiteral("myconfig : myconfig4.json\nRef0 : r0\nRef12 : r12\nr1 : r11");
    addTest(job, test);
}

void addGeneratedTestsOfJob1(MockJobInfo& job)
{
    MockTest test = newTest(0, QStringLiteral("OTDR"), QStringLiteral("pass"));
    test.optionalProperties = testProperties(QStringLiteral("Loc1"), 1.0);
    test.configuration = QStringLiteral("myconfig : myconfig21.json\nRef20 : r10\nRef12 : r12\nr11 : r11");
    const auto first = static_cast<long long>(job.tests.size());
    for (test.id = first; test.id < first + numberOfGeneratedTests; ++test.id) {
        addTest(job, test);
    }
}

MockJobInfo job1()
{
    MockJobInfo job;
    job.workOrderLabel = QStringLiteral("Ticket");
    job.customerName = QStringLiteral("Customer 1");
    job.workflowTypeName = QStringLiteral("test typeName");
    job.managedBy = QStringLiteral("inst");
    job.managementState = QStringLiteral("conflict");
    job.optionalProperties = jobProperties(QStringLiteral("OtherJobProperty1"), 1.1, QStringLiteral("a"));
    addListedTestsOfJob1(job);
    addGeneratedTestsOfJob1(job);
    return job;
}

void addTestsOfJob2(MockJobInfo& job)
{
    MockTest test = newTest(0, QStringLiteral("OTDR"), QStringLiteral("fail"));
    test.description = QStringLiteral("Dummy description");
    test.site = QStringLiteral("Dummy site");
    test.optionalProperties = testProperties(QStringLiteral("MyLocation3"), 2.0);
    addTest(job, test);

    test = newTest(1, QStringLiteral("ZQ300"), QStringLiteral("skipped"));
    test.optionalProperties = testProperties(QStringLiteral("MyLocation4"), 2.11);
    test.configuration = QStringLiteral("myconfig : myconfig1.json\nRef10 : r0\nRef12 : r12\nr1 : r11");
    addTest(job, test);

    test = newTest(2, QStringLiteral("manual"), QString());
    test.response = QStringLiteral("no");
    test.description = QStringLiteral("Inspect before you connect. Connected?");
    test.site = QStringLiteral("Site2");
    test.configuration = QStringLiteral("\"prompt\" : \"Reminder\",\n\"type\" : \"yesNo\"");
    addTest(job, test);

    test = newTest(3, QStringLiteral("manual"), QStringLiteral("skipped"));
    test.response = QStringLiteral("fdsfsdsd");
    test.description = QStringLiteral("Inspect before you connect");
    test.configuration = QStringLiteral("prompt : Reminder\ntype : info");
    addTest(job, test);
}

MockJobInfo job2()
{
    MockJobInfo job;
    job.customerName = QStringLiteral("Customer 2 With Large Name");
    job.managedBy = QStringLiteral("ss");
    job.optionalProperties = jobProperties(QStringLiteral("OtherJobProperty2"), 2.2, QStringLiteral("a"));
    addTestsOfJob2(job);
    return job;
}

/// The ids of these two are crossed: a caller that takes an id of the list of required tests for a position, as it
/// may, gets the other test.
void addTestsOfJob3(MockJobInfo& job)
{
    MockTest test = newTest(1, QStringLiteral("OTDR"), QStringLiteral("pass"));
    test.optionalProperties = testProperties(QStringLiteral("MyLocation3"), 3.0);
    test.configuration = QStringLiteral("myconfig : myconfig11.json\nRef0 : r0\nRef112 : r12\nr11 : r11");
    addTest(job, test);

    test = newTest(0, QStringLiteral("ZQ300"), QStringLiteral("pass"));
    test.optionalProperties = testProperties(QStringLiteral("MyLocation4"), 3.111);
    test.configuration = QStringLiteral("myconfig : myconfig12.json\nRef1 : r0\nRef12 : r12\nr1 : r11");
    addTest(job, test);
}

MockJobInfo job3()
{
    MockJobInfo job;
    job.customerName = QStringLiteral("Customer 3 With Large Name");
    job.isArchived = true;
    job.optionalProperties = jobProperties(QStringLiteral("OtherJobProperty3"), 3.3, QStringLiteral("a"));
    addTestsOfJob3(job);
    return job;
}

MockJobInfo emptyJob(int number)
{
    MockJobInfo job;
    job.optionalProperties = jobProperties(QStringLiteral("OtherJobProperty3"), number, QStringLiteral("a"));
    job.optionalProperties.insert(QStringLiteral("customer"), QLatin1String(""));
    return job;
}

void addJob(Jobs& jobs, const QString& jobID, MockJobInfo job)
{
    job.jobNumber = jobID;
    jobs.insert(jobID, std::move(job));
}

} // namespace

QHash<QString, MockJobManagerAPI::MockJobInfo> mockJobs()
{
    Jobs jobs;
    addJob(jobs, QStringLiteral("JOB1"), job1());
    addJob(jobs, QStringLiteral("JOB2"), job2());
    addJob(jobs, QStringLiteral("JOB3"), job3());
    for (int number = jobs.size(); number < numberOfJobs; ++number) {
        addJob(jobs, QStringLiteral("JOB_EMPTY_%1").arg(number), emptyJob(number));
    }
    return jobs;
}

} // namespace jobmanager_ui
