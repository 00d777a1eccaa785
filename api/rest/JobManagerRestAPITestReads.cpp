// The reads of the tests of a job.

#include "api/Logging.h"
#include "api/rest/JobManagerRestAPI.h"
#include "api/rest/TestIdentifiers.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>

namespace jobmanager_ui {

namespace {

/// True for result data that marks its test as added in the field.
bool isAdditionalTest(const nlohmann::json* data)
{
    // Anything but an object contains nothing.
    if (!data || !data->contains("ijm_additionalTest"))
        return false;
    try {
        return data->at("ijm_additionalTest").get<bool>();
    } catch (...) {
        qCDebug(logCategory) << "Exceptions when extracting the ijm_additionalTest from a json object";
        return false;
    }
}

} // namespace

std::vector<long long> JobManagerRestAPI::getAllTestIDs(QString jobID)
{
    const cdm::CdmSouthboundJob* const job = m_cache.getCdmJob(jobID);
    return job ? get_all_test_ids(*job) : std::vector<long long>();
}

std::vector<long long> JobManagerRestAPI::getRequiredTestIDs(QString jobID)
{
    return testIDsByRequirement(jobID, true);
}

std::vector<long long> JobManagerRestAPI::getOptionalTestIDs(QString jobID)
{
    return testIDsByRequirement(jobID, false);
}

std::vector<long long> JobManagerRestAPI::testIDsByRequirement(const QString& jobID, bool required)
{
    std::vector<long long> ids;
    for (const long long id : getAllTestIDs(jobID)) {
        if ((getTestRequired(jobID, id) == TestRequirement::TEST_REQUIRED) == required)
            ids.push_back(id);
    }
    return ids;
}

int JobManagerRestAPI::getTestIndex(long long testID)
{
    return indicesFromTestId(testID).testIndex;
}

int JobManagerRestAPI::getTestLocationIndex(long long testID)
{
    return indicesFromTestId(testID).locationIndex;
}

QString JobManagerRestAPI::getTestType(QString jobID, long long testID)
{
    const cdm::Test* const test = m_cache.getCdmTest(jobID, testID);
    return test ? QString::fromStdString(test->testType) : QString();
}

QDateTime JobManagerRestAPI::getTestTime(QString jobID, long long testID)
{
    cdm::Test* const test = m_cache.getCdmTest(jobID, testID);
    if (!test)
        return QDateTime();
    for (const cdm::TestResults* results : resultsInOrder(*test, testID)) {
        if (!results)
            continue;
        const QDateTime time = QDateTime::fromString(QString::fromStdString(results->time), Qt::ISODate);
        if (time.isValid())
            return time;
    }
    return QDateTime();
}

int JobManagerRestAPI::getTestLocationsNumber(QString jobID, long long testID)
{
    const cdm::Test* const test = m_cache.getCdmTest(jobID, testID);
    return test ? getNumberOfTestLocations(*test) : 0;
}

QString JobManagerRestAPI::getTestTypeDisplayName(QString jobID, long long testID)
{
    const cdm::Test* const test = m_cache.getCdmTest(jobID, testID);
    if (!test)
        return QString();
    const bool hasOwnName = test->testTypeDisplayName && !test->testTypeDisplayName->empty();
    return QString::fromStdString(hasOwnName ? *test->testTypeDisplayName : test->testType);
}

QString JobManagerRestAPI::getTestDescription(QString jobID, long long testID)
{
    return testText(jobID, testID, &cdm::Test::description);
}

QString JobManagerRestAPI::getTestSite(QString jobID, long long testID)
{
    return testText(jobID, testID, &cdm::Test::site);
}

QString JobManagerRestAPI::getTestStatus(QString jobID, long long testID)
{
    cdm::Test* const test = m_cache.getCdmTest(jobID, testID);
    if (!test)
        return QString();
    for (const cdm::TestResults* results : resultsInOrder(*test, testID)) {
        if (results)
            return QString::fromStdString(results->status);
    }
    return QString();
}

TestRequirement::Enum JobManagerRestAPI::getTestRequired(QString jobID, long long testID)
{
    cdm::Test* const test = m_cache.getCdmTest(jobID, testID);
    if (!test)
        return TestRequirement::TEST_REQUIRED;
    // Read before the flag is known: data that cannot be read is logged for a required test too.
    const bool additional = isAdditionalTest(findResultsData(*test, testID));
    const cdm::TestLocation* const location = findLocation(*test, testID);
    if ((location && location->required ? location->required : test->required).value_or(true))
        return TestRequirement::TEST_REQUIRED;
    return additional ? TestRequirement::TEST_ADDED : TestRequirement::TEST_OPTIONAL;
}

QStringList JobManagerRestAPI::getTestConfiguration(QString jobID, long long testID)
{
    cdm::Test* const test = m_cache.getCdmTest(jobID, testID);
    if (!test)
        return QStringList();
    const cdm::TestLocation* const location = findLocation(*test, testID);
    const std::optional<std::string>& configuration = location ? location->configuration : test->configuration;
    if (!configuration)
        return QStringList();
    // As a C string on purpose: the text ends at its first NUL.
    return QString::fromUtf8(configuration->c_str()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QString JobManagerRestAPI::getTestGuideFile(QString jobID, long long testID)
{
    return testText(jobID, testID, &cdm::Test::guideFile);
}

QString JobManagerRestAPI::getTestResponse(QString jobID, long long testID)
{
    QString response;
    cdm::Test* const test = m_cache.getCdmTest(jobID, testID);
    if (!test)
        return response;
    for (const cdm::TestResults* results : resultsInOrder(*test, testID)) {
        if (response.isEmpty() && results && results->response)
            response = QString::fromStdString(*results->response);
    }
    return response;
}

QVariantMap JobManagerRestAPI::getManualTestConfiguration(QString jobID, long long testID)
{
    const cdm::Test* const test = m_cache.getCdmTest(jobID, testID);
    if (!test || !test->configurationData)
        return QVariantMap();
    try {
        // Through text: the bridge between the two kinds of JSON. Anything but an object has no members.
        const QString text = QString::fromStdString(test->configurationData->dump());
        return QJsonDocument::fromJson(text.toUtf8()).object().toVariantMap();
    } catch (...) {
        qCDebug(logCategory) << "Exceptions when extracting configurationData from a json object";
        return QVariantMap();
    }
}

int JobManagerRestAPI::getNumberOfTestLocations(const cdm::Test& test) const
{
    return test.testLocations ? static_cast<int>(test.testLocations->size()) : 0;
}

std::optional<nlohmann::json> JobManagerRestAPI::getResultsData(cdm::Test& test, long long testId)
{
    const nlohmann::json* const data = findResultsData(test, testId);
    return data ? std::make_optional(*data) : std::nullopt;
}

const nlohmann::json* JobManagerRestAPI::findResultsData(cdm::Test& test, long long testID) const
{
    for (const cdm::TestResults* results : resultsInOrder(test, testID)) {
        if (results && results->data)
            return &*results->data;
    }
    return nullptr;
}

std::array<const cdm::TestResults*, 2> JobManagerRestAPI::resultsInOrder(cdm::Test& test, long long testID) const
{
    const cdm::TestLocation* const location = findLocation(test, testID);
    const bool hasLocationResults = location && location->results;
    // With two or more locations the results of the test as a whole belong to none of them.
    const bool hasTestResults = getNumberOfTestLocations(test) < 2 && test.results;
    return { hasLocationResults ? &*location->results : nullptr, hasTestResults ? &*test.results : nullptr };
}

cdm::TestLocation* JobManagerRestAPI::findLocation(cdm::Test& test, long long testID) const
{
    return m_cache.getCdmTestLocation(test, indicesFromTestId(testID).locationIndex);
}

QString JobManagerRestAPI::testText(const QString& jobID, long long testID, std::optional<std::string> cdm::Test::*text)
{
    const cdm::Test* const test = m_cache.getCdmTest(jobID, testID);
    if (!test)
        return QString();
    // Null is for an unknown test alone.
    return QString::fromStdString((test->*text).value_or(std::string()));
}

} // namespace jobmanager_ui
