#include "api/MockJobManagerAPI.h"

#include "api/Logging.h"
#include "api/MockJobData.h"

#include <algorithm>
#include <chrono>
#include <numeric>
#include <thread>

namespace jobmanager_ui {

namespace {

using Tests = std::vector<std::shared_ptr<MockJobManagerAPI::MockTest>>;

QString otherJobProperty()
{
    return QStringLiteral("otherJobProperty");
}

QString numberJobProperty()
{
    return QStringLiteral("numberJobProperty");
}

QString onlyLetters()
{
    return QStringLiteral("onlyLetters");
}

std::vector<long long> carriedIDs(const Tests& tests)
{
    std::vector<long long> ids;
    ids.reserve(tests.size());
    for (const auto& test : tests) {
        ids.push_back(test->id);
    }
    return ids;
}

bool isRequiredAndDone(const std::shared_ptr<MockJobManagerAPI::MockTest>& test)
{
    return test->required == TestRequirement::TEST_REQUIRED && test->status != QLatin1String("none");
}

} // namespace

MockJobManagerAPI::MockJobManagerAPI() : m_jobs(mockJobs())
{
}

const MockJobManagerAPI::MockJobInfo* MockJobManagerAPI::findJob(const QString& jobID) const
{
    const auto found = m_jobs.constFind(jobID);
    return found == m_jobs.constEnd() ? nullptr : &*found;
}

MockJobManagerAPI::MockJobInfo* MockJobManagerAPI::findJob(const QString& jobID)
{
    const auto found = m_jobs.find(jobID);
    return found == m_jobs.end() ? nullptr : &*found;
}

std::shared_ptr<MockJobManagerAPI::MockTest> MockJobManagerAPI::findTest(const QString& jobID, long long testID) const
{
    const MockJobInfo* const job = findJob(jobID);
    if (job == nullptr || testID < 0 || testID >= static_cast<long long>(job->tests.size())) {
        return nullptr;
    }
    return job->tests[static_cast<std::size_t>(testID)];
}

template <typename Value> Value MockJobManagerAPI::jobField(const QString& jobID, Value MockJobInfo::*field) const
{
    const MockJobInfo* const job = findJob(jobID);
    return job == nullptr ? Value() : job->*field;
}

template <typename Value>
Value MockJobManagerAPI::testField(const QString& jobID, long long testID, Value MockTest::*field) const
{
    const std::shared_ptr<MockTest> test = findTest(jobID, testID);
    return test == nullptr ? Value() : test.get()->*field;
}

bool MockJobManagerAPI::replace(QHash<QString, QVariant>& properties, const QString& propName, const QVariant& value)
{
    const auto stored = properties.find(propName);
    if (stored == properties.end()) {
        return false;
    }
    *stored = value;
    ++m_changeCount;
    return true;
}

int MockJobManagerAPI::getChangeCount()
{
    return m_changeCount;
}

void MockJobManagerAPI::clearCache()
{
}

QDateTime MockJobManagerAPI::getTime()
{
    return QDateTime::currentDateTime();
}

bool MockJobManagerAPI::hasCurrentJob()
{
    return !m_currentJobID.isEmpty();
}

QString MockJobManagerAPI::getCurrentJobID()
{
    return m_currentJobID;
}

QString MockJobManagerAPI::getTechID()
{
    return m_techID;
}

bool MockJobManagerAPI::setCurrentJobByID(QString jobID)
{
    m_currentJobID = jobID;
    ++m_changeCount;
    return true;
}

std::vector<QString> MockJobManagerAPI::getAllJobIDs()
{
    return { m_jobs.keyBegin(), m_jobs.keyEnd() };
}

QString MockJobManagerAPI::getJobNumber(QString jobID)
{
    return jobField(jobID, &MockJobInfo::jobNumber);
}

QString MockJobManagerAPI::getCustomerName(QString jobID)
{
    return jobField(jobID, &MockJobInfo::customerName);
}

QString MockJobManagerAPI::getWorkflowTypeName(QString jobID)
{
    return jobField(jobID, &MockJobInfo::workflowTypeName);
}

bool MockJobManagerAPI::isJobArchived(QString jobID)
{
    return jobField(jobID, &MockJobInfo::isArchived);
}

QString MockJobManagerAPI::getJobModifiedOn(QString /*jobID*/)
{
    return {};
}

bool MockJobManagerAPI::setIsJobArchived(QString jobID, bool archived)
{
    MockJobInfo* const job = findJob(jobID);
    if (job == nullptr) {
        return false;
    }
    job->isArchived = archived;
    ++m_changeCount;
    return true;
}

int MockJobManagerAPI::getTotalNumberOfRequiredTests(QString jobID)
{
    const MockJobInfo* const job = findJob(jobID);
    return job == nullptr ? 0 : static_cast<int>(job->requiredTests.size());
}

int MockJobManagerAPI::getNumberOfCompletedRequiredTests(QString jobID)
{
    const MockJobInfo* const job = findJob(jobID);
    if (job == nullptr) {
        return 0;
    }
    return static_cast<int>(std::count_if(job->requiredTests.begin(), job->requiredTests.end(), isRequiredAndDone));
}

bool MockJobManagerAPI::deleteJob(QString jobID)
{
    if (m_jobs.remove(jobID) == 0) {
        return false;
    }
    if (m_currentJobID == jobID) {
        m_currentJobID.clear();
    }
    ++m_changeCount;
    return true;
}

bool MockJobManagerAPI::createJob(QString WorkOrderNo, QString TechID, QString /*templateName*/,
    QString /*locationsFilename*/, bool /*syncJobToNimbrel*/)
{
    if (m_jobs.contains(WorkOrderNo)) {
        return false;
    }
    MockJobInfo job;
    job.jobNumber = WorkOrderNo;
    job.techID = TechID;
    job.optionalProperties = {
        { QStringLiteral("customer"), QLatin1String("") },
        { otherJobProperty(), QStringLiteral("OtherJobProperty1") },
        { numberJobProperty(), 0.0 },
        { onlyLetters(), QStringLiteral("abc") },
    };
    m_jobs.insert(WorkOrderNo, job);
    ++m_changeCount;
    return true;
}

std::vector<QString> MockJobManagerAPI::getAllOptionalJobProperties(QString jobID)
{
    // This job hides a property on purpose.
    if (jobID == QLatin1String("JOB2")) {
        return { numberJobProperty(), onlyLetters() };
    }
    return { otherJobProperty(), numberJobProperty(), onlyLetters() };
}

PropertyDisplayInfo MockJobManagerAPI::getOptionalJobPropertyDisplayInfo(QString /*jobID*/, const QString& propName)
{
    PropertyDisplayInfo info;
    info.propName = propName;
    if (propName == numberJobProperty()) {
        info.type = PropertyType::DOUBLE;
    } else if (propName == onlyLetters()) {
        info.regex = QStringLiteral("[a-zA-Z]+");
    } else if (propName == otherJobProperty()) {
        info.label = QStringLiteral("API Label");
    }
    return info;
}

QVariant MockJobManagerAPI::getOptionalJobProperty(QString jobID, const QString& propName)
{
    return jobField(jobID, &MockJobInfo::optionalProperties).value(propName);
}

bool MockJobManagerAPI::setOptionalJobProperty(QString jobID, const QString& propName, const QVariant& value)
{
    MockJobInfo* const job = findJob(jobID);
    if (job == nullptr || !job->optionalProperties.contains(propName)) {
        return false;
    }
    qCDebug(logCategory) << "Setting " << propName << " to " << value;
    return replace(job->optionalProperties, propName, value);
}

QStringList MockJobManagerAPI::getTeamTechIds(QString jobID)
{
    return jobField(jobID, &MockJobInfo::teamTechIds);
}

std::vector<long long> MockJobManagerAPI::getAllTestIDs(QString jobID)
{
    std::vector<long long> ids(jobField(jobID, &MockJobInfo::tests).size());
    std::iota(ids.begin(), ids.end(), 0);
    return ids;
}

std::vector<long long> MockJobManagerAPI::getRequiredTestIDs(QString jobID)
{
    return carriedIDs(jobField(jobID, &MockJobInfo::requiredTests));
}

std::vector<long long> MockJobManagerAPI::getOptionalTestIDs(QString jobID)
{
    return carriedIDs(jobField(jobID, &MockJobInfo::optionalTests));
}

int MockJobManagerAPI::getTestIndex(long long testID)
{
    constexpr long long low32Bits = 0xffffffff;
    return static_cast<int>(testID & low32Bits);
}

int MockJobManagerAPI::getTestLocationIndex(long long /*testID*/)
{
    return -1;
}

QString MockJobManagerAPI::getTestType(QString jobID, long long testID)
{
    return testField(jobID, testID, &MockTest::type);
}

QDateTime MockJobManagerAPI::getTestTime(QString jobID, long long testID)
{
    const QDateTime time = QDateTime::fromString(testField(jobID, testID, &MockTest::time), Qt::ISODate);
    return time.isValid() ? time : QDateTime();
}

int MockJobManagerAPI::getTestLocationsNumber(QString /*jobID*/, long long /*testID*/)
{
    return -1;
}

QString MockJobManagerAPI::getTestTypeDisplayName(QString jobID, long long testID)
{
    return getTestType(jobID, testID);
}

QString MockJobManagerAPI::getTestDescription(QString jobID, long long testID)
{
    return testField(jobID, testID, &MockTest::description);
}

QString MockJobManagerAPI::getTestSite(QString jobID, long long testID)
{
    return testField(jobID, testID, &MockTest::site);
}

QString MockJobManagerAPI::getTestStatus(QString jobID, long long testID)
{
    return testField(jobID, testID, &MockTest::status);
}

TestRequirement::Enum MockJobManagerAPI::getTestRequired(QString jobID, long long testID)
{
    return testField(jobID, testID, &MockTest::required);
}

QStringList MockJobManagerAPI::getTestConfiguration(QString jobID, long long testID)
{
    return testField(jobID, testID, &MockTest::configuration).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QString MockJobManagerAPI::getTestGuideFile(QString /*jobID*/, long long /*testID*/)
{
    return {};
}

std::vector<QString> MockJobManagerAPI::getAllOptionalTestProperties(QString /*jobID*/, long long /*testID*/)
{
    return { QStringLiteral("location"), QStringLiteral("otherTestInfo1"), QStringLiteral("otherTestInfo2"),
        QStringLiteral("numberProperty") };
}

PropertyDisplayInfo MockJobManagerAPI::getOptionalTestPropertyDisplayInfo(
    QString /*jobID*/, long long /*testID*/, const QString& propName)
{
    PropertyDisplayInfo info;
    info.propName = propName;
    return info;
}

QVariant MockJobManagerAPI::getOptionalTestProperty(QString jobID, long long testID, const QString& propName)
{
    return testField(jobID, testID, &MockTest::optionalProperties).value(propName);
}

bool MockJobManagerAPI::setOptionalTestProperty(
    QString jobID, long long testID, const QString& propName, const QVariant& value)
{
    const std::shared_ptr<MockTest> test = findTest(jobID, testID);
    return test != nullptr && replace(test->optionalProperties, propName, value);
}

bool MockJobManagerAPI::setManualTestResult(
    QString jobID, long long testID, const QString& text1, const QString& /*text2*/)
{
    const std::shared_ptr<MockTest> test = findTest(jobID, testID);
    if (test == nullptr) {
        return false;
    }
    test->response = text1;
    ++m_changeCount;
    return true;
}

QString MockJobManagerAPI::launchTest(QString /*jobID*/, long long /*testID*/)
{
    std::this_thread::sleep_for(std::chrono::seconds(2));
    return QStringLiteral("ERROR_OPTION^someMadeUpOption");
}

void MockJobManagerAPI::prepareForLaunchTest(QString /*jobID*/, long long /*testID*/)
{
}

QString MockJobManagerAPI::exportJobData(QString /*jobID*/, QString /*usbRootFolder*/)
{
    return {};
}

int MockJobManagerAPI::importJobs(QString /*path*/)
{
    return 0;
}

bool MockJobManagerAPI::exchangeCurrentJob(QString /*devicePath*/)
{
    return true;
}

QStringList MockJobManagerAPI::fetchJobTemplates()
{
    return { QStringLiteral("MockTemplate1"), QStringLiteral("MockTemplate2"), QStringLiteral("MockTemplate3") };
}

QString MockJobManagerAPI::getWorkOrderLabelFromTemplate(const QString& /*typeName*/)
{
    return QStringLiteral("MockWorkOrderLabel");
}

int MockJobManagerAPI::getTemplateNumberOfTests(const QString& /*typeName*/)
{
    return 1;
}

QVariantMap MockJobManagerAPI::getManualTestConfiguration(QString jobID, long long testID)
{
    const std::shared_ptr<MockTest> test = findTest(jobID, testID);
    if (test == nullptr) {
        return {};
    }
    QVariantMap configuration = test->manualConfiguration;
    configuration.insert(QStringLiteral("prompt"), QStringLiteral("Mock API test prompt"));
    configuration.insert(QStringLiteral("type"), QStringLiteral("yesNo"));
    return configuration;
}

QString MockJobManagerAPI::getTestResponse(QString jobID, long long testID)
{
    return testField(jobID, testID, &MockTest::response);
}

QString MockJobManagerAPI::getJobManagedByInfo(QString jobID)
{
    return jobField(jobID, &MockJobInfo::managedBy);
}

QString MockJobManagerAPI::getJobManagementState(QString jobID)
{
    return jobField(jobID, &MockJobInfo::managementState);
}

QString MockJobManagerAPI::getWorkOrderLabel(QString jobID)
{
    return jobField(jobID, &MockJobInfo::workOrderLabel);
}

void MockJobManagerAPI::setGroupType(TestGroupType::Enum groupType)
{
    m_groupType = groupType;
}

bool MockJobManagerAPI::isJobListInCache() const
{
    return true;
}

bool MockJobManagerAPI::isJobInCache(QString /*jobID*/) const
{
    return true;
}

bool MockJobManagerAPI::fetchJob(QString /*jobID*/)
{
    return false;
}

bool MockJobManagerAPI::fetchJobList()
{
    return false;
}

bool MockJobManagerAPI::commitFetchedData()
{
    return false;
}

} // namespace jobmanager_ui
