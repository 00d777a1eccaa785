#include "models/Test.h"

#include "api/Logging.h"

#include <QFileInfo>
#include <QPointer>
#include <QQmlEngine>
#include <utility>

namespace jobmanager_ui {

Test::Test(std::shared_ptr<JobManagerAPIAbstraction> api, QString jobID, long long testID)
    : m_api(std::move(api))
    , m_jobID(std::move(jobID))
    , m_testID(testID)
{
    // Without a parent, a test that JavaScript gets from a model's data() would belong to the JavaScript collector.
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
    updateDataFromAPI();
}

QString Test::description() const
{
    return m_api->getTestDescription(m_jobID, m_testID);
}

QString Test::site() const
{
    return m_api->getTestSite(m_jobID, m_testID);
}

QString Test::testStatus() const
{
    return m_api->getTestStatus(m_jobID, m_testID);
}

QStringList Test::configuration() const
{
    return m_api->getTestConfiguration(m_jobID, m_testID);
}

QString Test::guideFilepath() const
{
    return m_api->getTestGuideFile(m_jobID, m_testID);
}

bool Test::hasGuide() const
{
    return checkIfGuideFileExists();
}

bool Test::checkIfGuideFileExists() const
{
    const QString path = guideFilepath();
    if (path.isEmpty()) {
        return false;
    }
    const QFileInfo guide(path);
    return guide.exists() && guide.isFile();
}

QString Test::manualStepUserResponse() const
{
    return m_api->getTestResponse(m_jobID, m_testID);
}

void Test::setManualStepUserResponse(const QString& response)
{
    if (manualStepUserResponse() == response || !m_api->setManualTestResult(m_jobID, m_testID, response, QString())) {
        return;
    }
    Q_EMIT manualStepUserResponseChanged();
}

QVariantMap Test::testConfigurationMap() const
{
    if (m_testType != QLatin1String("manual")) {
        return {};
    }
    return m_api->getManualTestConfiguration(m_jobID, m_testID);
}

QQmlPropertyMap* Test::optionalProperties()
{
    if (m_optionalProperties != nullptr) {
        return m_optionalProperties.get();
    }
    m_optionalProperties.reset(new OptionalPropertyMap(this));
    const std::vector<QString> names = m_api->getAllOptionalTestProperties(m_jobID, m_testID);
    for (const QString& name : names) {
        m_optionalProperties->show(name, m_api->getOptionalTestProperty(m_jobID, m_testID, name));
    }
    connect(m_optionalProperties.get(), &QQmlPropertyMap::valueChanged, this, &Test::onPropertyValueChanged);
    return m_optionalProperties.get();
}

void Test::onPropertyValueChanged(const QString& propertyName, const QVariant& value)
{
    qCDebug(logCategory) << "Updating test property via API: " << propertyName;
    if (m_api->setOptionalTestProperty(m_jobID, m_testID, propertyName, value)) {
        return;
    }
    qCDebug(logCategory) << "Failed to set test property " << propertyName << " to value: " << value;
    const QVariant stored = m_api->getOptionalTestProperty(m_jobID, m_testID, propertyName);
    // A receiver of the map's signal may bring about an update that ends the test.
    const QPointer<Test> self(this);
    if (m_optionalProperties != nullptr) {
        m_optionalProperties->show(propertyName, stored);
    }
    if (!self.isNull()) {
        Q_EMIT optionalPropertiesChanged();
    }
}

void Test::setErrorMessage(QString errorMessage)
{
    if (errorMessage == m_errorMessage) {
        return;
    }
    m_errorMessage = std::move(errorMessage);
    Q_EMIT errorMessageChanged();
}

void Test::setErrorSeverity(int errorSeverity)
{
    if (errorSeverity == m_errorSeverity) {
        return;
    }
    m_errorSeverity = errorSeverity;
    Q_EMIT errorSeverityChanged();
}

void Test::updateDataFromAPI()
{
    const QDateTime oldTime = m_testTime;
    readSnapshot();
    m_optionalProperties.reset();
    if (m_testTime != oldTime) {
        m_errorMessage.clear();
        m_errorSeverity = 0;
    }
    emitAllSignals();
}

void Test::readSnapshot()
{
    m_testIndex = m_api->getTestIndex(m_testID);
    m_locationIndex = m_api->getTestLocationIndex(m_testID);
    m_testType = m_api->getTestType(m_jobID, m_testID);
    m_testTime = m_api->getTestTime(m_jobID, m_testID);
    m_testTypeDisplayName = m_api->getTestTypeDisplayName(m_jobID, m_testID);
    m_testRequired = m_api->getTestRequired(m_jobID, m_testID);
    m_numberOfTestLocations = m_api->getTestLocationsNumber(m_jobID, m_testID);
    readLocation();
}

void Test::readLocation()
{
    m_location = m_api->getOptionalTestProperty(m_jobID, m_testID, QStringLiteral("location")).toString();
    if (m_location.isEmpty()) {
        m_location = QStringLiteral("~");
    }
}

void Test::emitAllSignals()
{
    Q_EMIT testIndexChanged();
    Q_EMIT locationIndexChanged();
    Q_EMIT testTypeChanged();
    Q_EMIT testTypeDisplayNameChanged();
    Q_EMIT descriptionChanged();
    Q_EMIT siteChanged();
    Q_EMIT testStatusChanged();
    Q_EMIT testTimeChanged();
    Q_EMIT testRequiredChanged();
    Q_EMIT optionalPropertiesChanged();
    Q_EMIT errorMessageChanged();
    Q_EMIT errorSeverityChanged();
    Q_EMIT configurationChanged();
    Q_EMIT guideFilepathChanged();
    Q_EMIT hasGuideChanged();
    Q_EMIT locationChanged();
    Q_EMIT numberOfTestLocationsChanged();
    Q_EMIT manualStepUserResponseChanged();
    Q_EMIT testConfigurationMapChanged();
}

} // namespace jobmanager_ui
