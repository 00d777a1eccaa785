// The optional properties of a job: the map that QML edits, and how each property of the job and its tests is shown.

#include "api/Logging.h"
#include "models/Job.h"
#include "models/PropertyDisplayInfos.h"

#include <algorithm>
#include <QElapsedTimer>
#include <QPointer>
#include <vector>

namespace jobmanager_ui {

void Job::dropProperties()
{
    m_optionalProperties.reset();
    m_allDisplayableJobProperties.clear();
    m_jobPropertyDisplayInfos.clear();
    // The pair of the tests stays: it is built once in the life of the job.
}

QQmlPropertyMap* Job::optionalProperties()
{
    if (!isBackgroundFetchCompleted()) {
        return nullptr;
    }
    return m_optionalProperties == nullptr ? builtOptionalProperties() : m_optionalProperties.get();
}

QQmlPropertyMap* Job::builtOptionalProperties()
{
    const QPointer<Job> self(this);
    buildOptionalProperties();
    if (self.isNull()) {
        return nullptr;
    }
    // A receiver of the counters has updated the job. One that does so each time is not followed for ever.
    if (m_optionalProperties == nullptr && isBackgroundFetchCompleted()) {
        buildOptionalProperties();
    }
    return self.isNull() ? nullptr : m_optionalProperties.get();
}

void Job::buildOptionalProperties()
{
    qCDebug(logCategory) << "Initializing optional properties for job: " << m_jobID;
    m_optionalProperties.reset(new OptionalPropertyMap);
    const QPointer<Job> self(this);
    const QPointer<OptionalPropertyMap> map = m_optionalProperties.get();
    // A receiver may update the job, which drops the map and the counts, or end it.
    const auto isDropped = [&] { return self.isNull() || map.isNull() || m_optionalProperties.get() != map; };
    const std::vector<QString> names = m_api->getAllOptionalJobProperties(m_jobID);
    for (const QString& name : names) {
        const PropertyDisplayInfo info = m_api->getOptionalJobPropertyDisplayInfo(m_jobID, name);
        map->show(name, m_api->getOptionalJobProperty(m_jobID, name));
        if (info.editable && info.visible) {
            countRequiredAttribute(map->value(name).toString());
        }
        Q_EMIT totalNumberOfRequiredAttributesChanged();
        if (isDropped()) {
            return;
        }
        Q_EMIT numberOfIncompleteRequiredAttributesChanged();
        if (isDropped()) {
            return;
        }
    }
    connect(map, &QQmlPropertyMap::valueChanged, this, &Job::onPropertyValueChanged);
}

void Job::countRequiredAttribute(const QString& value)
{
    ++m_totalNumberOfRequiredAttributes;
    if (value.isEmpty()) {
        ++m_numberOfIncompleteRequiredAttributes;
    }
}

int Job::getTotalNumberOfRequiredAttributes()
{
    return optionalProperties() == nullptr ? 0 : m_totalNumberOfRequiredAttributes;
}

int Job::getNumberOfIncompleteRequiredAttributes()
{
    return optionalProperties() == nullptr ? 0 : m_numberOfIncompleteRequiredAttributes;
}

void Job::onPropertyValueChanged(const QString& propertyName, const QVariant& value)
{
    qCDebug(logCategory) << "Updating job property via API: " << propertyName << "with value: " << value;
    const bool written = m_api->setOptionalJobProperty(m_jobID, propertyName, value);
    // A receiver of what follows may bring about an update that ends the job.
    const QPointer<Job> self(this);
    if (!written) {
        qCDebug(logCategory) << "Failed to set job property " << propertyName << " to value: " << value;
        showStoredValue(propertyName);
        if (!self.isNull()) {
            Q_EMIT optionalPropertiesChanged();
        }
    } else if (sender() != nullptr && sender() != m_optionalProperties.get()) {
        // The edited map was dropped before the edit came here, and its successor was built before it was written.
        showStoredValue(propertyName);
    }
    if (!self.isNull()) {
        Q_EMIT optionalPropertyValueChanged(m_api->getOptionalJobProperty(m_jobID, propertyName) == value);
    }
}

void Job::showStoredValue(const QString& propertyName)
{
    const QVariant value = m_api->getOptionalJobProperty(m_jobID, propertyName);
    if (m_optionalProperties != nullptr) {
        m_optionalProperties->show(propertyName, value);
    }
}

QStringList Job::allDisplayableJobProperties()
{
    if (!isBackgroundFetchCompleted()) {
        return {};
    }
    createJobPropertyDisplayInfos();
    return m_allDisplayableJobProperties;
}

QVariantMap Job::jobPropertyDisplayInfos()
{
    if (!isBackgroundFetchCompleted()) {
        return {};
    }
    createJobPropertyDisplayInfos();
    return m_jobPropertyDisplayInfos;
}

QStringList Job::allDisplayableTestProperties()
{
    if (!isBackgroundFetchCompleted()) {
        return {};
    }
    createTestPropertyDisplayInfos();
    return m_allDisplayableTestProperties;
}

QVariantMap Job::testPropertyDisplayInfos()
{
    if (!isBackgroundFetchCompleted()) {
        return {};
    }
    createTestPropertyDisplayInfos();
    return m_testPropertyDisplayInfos;
}

void Job::createJobPropertyDisplayInfos()
{
    if (!m_allDisplayableJobProperties.isEmpty()) {
        return;
    }
    qCDebug(logCategory) << "Fetching all property display infos for" << m_jobID;
    QElapsedTimer timer;
    timer.start();
    std::vector<PropertyDisplayInfo> rows = fixedRows();
    const std::vector<PropertyDisplayInfo> optional = optionalRows();
    rows.insert(rows.end(), optional.begin(), optional.end());
    m_allDisplayableJobProperties.reserve(static_cast<int>(rows.size()));
    for (const PropertyDisplayInfo& row : rows) {
        m_allDisplayableJobProperties.append(row.propName);
        m_jobPropertyDisplayInfos.insert(row.propName, propertyDisplayInfoToVariantMap(row));
    }
    qCDebug(logCategory) << "The createJobPropertyDisplayInfos operation took" << timer.elapsed() << "ms";
}

std::vector<PropertyDisplayInfo> Job::fixedRows() const
{
    std::vector<PropertyDisplayInfo> rows{ fixedDisplayInfo(
        QStringLiteral("jobNumber"), m_workOrderLabel.isEmpty() ? tr("Work Order ID") : m_workOrderLabel) };
    if (!m_customerName.isEmpty()) {
        rows.push_back(fixedDisplayInfo(QStringLiteral("customerName")));
    }
    if (!m_typeName.isEmpty()) {
        rows.push_back(fixedDisplayInfo(QStringLiteral("typeName")));
    }
    return rows;
}

std::vector<PropertyDisplayInfo> Job::optionalRows() const
{
    std::vector<PropertyDisplayInfo> rows;
    const std::vector<QString> names = m_api->getAllOptionalJobProperties(m_jobID);
    for (const QString& name : names) {
        if (m_api->getOptionalJobPropertyDisplayInfo(m_jobID, name).visible) {
            // Asked a second time on purpose: what the data interface says last is what is shown.
            rows.push_back(m_api->getOptionalJobPropertyDisplayInfo(m_jobID, name));
        }
    }
    std::stable_sort(rows.begin(), rows.end(),
        [](const PropertyDisplayInfo& a, const PropertyDisplayInfo& b) { return a.orderIndex < b.orderIndex; });
    return rows;
}

void Job::createTestPropertyDisplayInfos()
{
    if (!m_allDisplayableTestProperties.isEmpty()) {
        return;
    }
    // The misspelling is part of the line.
    qCDebug(logCategory) << "Fetching all proprety display infos for tests for" << m_jobID;
    QElapsedTimer timer;
    timer.start();
    const QHash<QString, PropertyDisplayInfo> infos = displayInfosOfTests();
    m_allDisplayableTestProperties.reserve(infos.size());
    for (auto info = infos.begin(); info != infos.end(); ++info) {
        m_allDisplayableTestProperties.append(info.key());
        m_testPropertyDisplayInfos.insert(info.key(), propertyDisplayInfoToVariantMap(info.value()));
    }
    qCDebug(logCategory) << "The createTestPropertyDisplayInfos operation took" << timer.elapsed() << "ms";
}

QHash<QString, PropertyDisplayInfo> Job::displayInfosOfTests() const
{
    const QString configuration = QStringLiteral("configuration");
    QHash<QString, PropertyDisplayInfo> infos{ { configuration, fixedDisplayInfo(configuration) } };
    const std::vector<long long> testIDs = m_api->getAllTestIDs(m_jobID);
    for (const long long testID : testIDs) {
        const std::vector<QString> names = m_api->getAllOptionalTestProperties(m_jobID, testID);
        for (const QString& name : names) {
            if (!infos.contains(name)) {
                infos.insert(name, m_api->getOptionalTestPropertyDisplayInfo(m_jobID, testID, name));
            }
        }
    }
    return infos;
}

} // namespace jobmanager_ui
