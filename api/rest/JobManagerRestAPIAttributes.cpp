// The optional properties of jobs and tests: who serves which name, and their reads.

#include "api/Logging.h"
#include "api/rest/JobManagerRestAPI.h"

#include <algorithm>
#include <QDebug>
#include <set>

namespace jobmanager_ui {

namespace {

using Names = std::vector<QString>;

const QString freeAttributes = QStringLiteral("attributes");

/// The attribute that a field of a record makes.
cdm::Attribute attributeOfField(const std::string& value, bool editable)
{
    cdm::Attribute attribute;
    attribute.value = value;
    attribute.editable = editable;
    return attribute;
}

Names namesOfJobAttributes(const cdm::CdmSouthboundJob& job)
{
    Names names;
    if (!job.details.attributes)
        return names;
    for (const auto& [name, content] : job.details.attributes->values)
        names.push_back(QString::fromStdString(name));
    return names;
}

cdm::Attribute jobAttribute(const cdm::CdmSouthboundJob& job, const QString& name)
{
    const std::optional<cdm::Attributes>& attributes = job.details.attributes;
    return attributes ? attributes->getAttribute(name.toStdString()) : cdm::Attribute();
}

void addNames(const std::optional<cdm::Attributes>& attributes, std::set<QString>& names)
{
    if (!attributes)
        return;
    for (const auto& [name, content] : attributes->values)
        names.insert(QString::fromStdString(name));
}

Names namesOfTestAttributes(const cdm::Test& test, const cdm::TestLocation* location)
{
    std::set<QString> names;
    if (location)
        addNames(location->attributes, names);
    addNames(test.attributes, names);
    // Structured content beside the properties, not properties.
    names.erase(QStringLiteral("subTypeInfo"));
    names.erase(QStringLiteral("referenceInfo"));
    return Names(names.begin(), names.end());
}

/// The location's attribute goes first; the test fills in for a location that does not have it.
cdm::Attribute testAttribute(const cdm::Test& test, const cdm::TestLocation* location, const QString& name)
{
    const std::string key = name.toStdString();
    cdm::Attribute attribute;
    if (location && location->attributes) {
        try {
            attribute = location->attributes->getAttribute(key);
        } catch (...) {
            qCWarning(logCategory) << "This fails because referenceInfo is an object...";
        }
        if (!attribute.label.empty())
            return attribute;
    }
    if (attribute.value.empty() && test.attributes) {
        try {
            attribute = test.attributes->getAttribute(key);
        } catch (...) {
            qCWarning(logCategory) << "Could not get test attribute" << name;
        }
    }
    return attribute;
}

/// The property names of all attributes that the record has, sorted.
template <typename T> Names propertyNames(const QHash<QString, AttributeExtractor<T>>& extractors, const T& record)
{
    Names properties;
    for (const AttributeExtractor<T>& extractor : extractors) {
        const Names names = extractor.m_getNames(record);
        if (extractor.m_singleAttribute && names.size() == 1) {
            properties.push_back(extractor.m_name);
            continue;
        }
        for (const QString& name : names)
            properties.push_back(extractor.m_name + QLatin1Char('/') + name);
    }
    std::sort(properties.begin(), properties.end());
    return properties;
}

/// The attribute of that property name; nothing if the name is empty or no extractor serves it.
template <typename T>
std::optional<cdm::Attribute> readProperty(
    const QHash<QString, AttributeExtractor<T>>& extractors, const T& record, const QString& property)
{
    if (property.isEmpty())
        return std::nullopt;
    // Without a slash both parts are the whole name.
    const int slash = property.indexOf(QLatin1Char('/'));
    const auto extractor = extractors.constFind(property.left(slash));
    if (extractor == extractors.constEnd())
        return std::nullopt;
    return extractor->m_getAttribute(record, property.mid(slash + 1));
}

QVariant valueOf(const std::optional<cdm::Attribute>& attribute)
{
    return attribute ? QVariant(QString::fromStdString(attribute->value)) : QVariant();
}

/// What the display infos of jobs and tests have in common.
PropertyDisplayInfo basicDisplayInfo(const QString& property, const cdm::Attribute& attribute)
{
    PropertyDisplayInfo info;
    info.propName = property;
    info.label = QString::fromStdString(attribute.label);
    info.editable = attribute.editable.value_or(true);
    return info;
}

PropertyDisplayInfo fullDisplayInfo(const QString& property, const cdm::Attribute& attribute)
{
    PropertyDisplayInfo info = basicDisplayInfo(property, attribute);
    if (attribute.valueType == "double" || attribute.valueType == "number")
        info.type = PropertyType::DOUBLE;
    else if (attribute.valueType == "boolean")
        info.validValues = QStringList{ QStringLiteral("true"), QStringLiteral("false") };
    info.visible = attribute.visible.value_or(true);
    info.orderIndex = attribute.orderIndex.value_or(0);
    info.regex = QString::fromStdString(attribute.regExp.value_or(std::string()));
    if (attribute.validValues) {
        for (const std::string& value : *attribute.validValues)
            info.validValues.append(QString::fromStdString(value));
    }
    return info;
}

template <typename T>
void add(QHash<QString, AttributeExtractor<T>>& extractors, const AttributeExtractor<T>& extractor)
{
    extractors.insert(extractor.m_name, extractor);
}

} // namespace

void JobManagerRestAPI::createJobAttributeExtractors()
{
    using Job = cdm::CdmSouthboundJob;
    using Extractor = AttributeExtractor<Job>;
    add(m_jobAttributeExtractors, Extractor(freeAttributes, namesOfJobAttributes, jobAttribute, nullptr));
    add(m_jobAttributeExtractors,
        Extractor(
            QStringLiteral("techId"),
            [](const Job& job) -> std::optional<cdm::Attribute> {
                const std::optional<cdm::TechInfo>& tech = job.details.techInfo;
                return attributeOfField(tech ? tech->techId : std::string(), false);
            },
            nullptr));
    add(m_jobAttributeExtractors,
        Extractor(
            QStringLiteral("contractorId"),
            [](const Job& job) -> std::optional<cdm::Attribute> {
                const std::optional<std::string>& contractor = job.details.contractorId;
                return contractor ? std::make_optional(attributeOfField(*contractor, true)) : std::nullopt;
            },
            nullptr));
}

void JobManagerRestAPI::createTestAttributeExtractors()
{
    using Extractor = AttributeExtractor<TestAndLocation>;
    add(m_testAttributeExtractors,
        Extractor(
            freeAttributes,
            [](const TestAndLocation& record) { return namesOfTestAttributes(*record.first, record.second); },
            [](const TestAndLocation& record, const QString& name) {
                return testAttribute(*record.first, record.second, name);
            },
            nullptr));
    add(m_testAttributeExtractors,
        Extractor(
            QStringLiteral("location"),
            [](const TestAndLocation& record) -> std::optional<cdm::Attribute> {
                const cdm::TestLocation* const location = record.second;
                return location ? std::make_optional(attributeOfField(location->location, false)) : std::nullopt;
            },
            nullptr));
}

std::vector<QString> JobManagerRestAPI::getAllOptionalJobProperties(QString jobID)
{
    const cdm::CdmSouthboundJob* const job = m_cache.getCdmJob(jobID);
    return job ? propertyNames(m_jobAttributeExtractors, *job) : Names();
}

PropertyDisplayInfo JobManagerRestAPI::getOptionalJobPropertyDisplayInfo(QString jobID, const QString& propName)
{
    const std::optional<cdm::Attribute> attribute = getJobAttribute(jobID, propName);
    return attribute ? fullDisplayInfo(propName, *attribute) : PropertyDisplayInfo();
}

QVariant JobManagerRestAPI::getOptionalJobProperty(QString jobID, const QString& propName)
{
    return valueOf(getJobAttribute(jobID, propName));
}

std::optional<cdm::Attribute> JobManagerRestAPI::getJobAttribute(const QString& jobID, const QString& name)
{
    const cdm::CdmSouthboundJob* const job = m_cache.getCdmJob(jobID);
    return job ? readProperty(m_jobAttributeExtractors, *job, name) : std::nullopt;
}

std::vector<QString> JobManagerRestAPI::getAllOptionalTestProperties(QString jobID, long long testID)
{
    const std::optional<TestAndLocation> record = findTestAndLocation(jobID, testID);
    return record ? propertyNames(m_testAttributeExtractors, *record) : Names();
}

PropertyDisplayInfo JobManagerRestAPI::getOptionalTestPropertyDisplayInfo(
    QString jobID, long long testID, const QString& propName)
{
    const std::optional<cdm::Attribute> attribute = getTestAttribute(jobID, testID, propName);
    return attribute ? basicDisplayInfo(propName, *attribute) : PropertyDisplayInfo();
}

QVariant JobManagerRestAPI::getOptionalTestProperty(QString jobID, long long testID, const QString& propName)
{
    return valueOf(getTestAttribute(jobID, testID, propName));
}

bool JobManagerRestAPI::setOptionalTestProperty(
    QString /*jobID*/, long long /*testID*/, const QString& /*propName*/, const QVariant& /*value*/)
{
    return false;
}

std::optional<cdm::Attribute> JobManagerRestAPI::getTestAttribute(
    const QString& jobID, long long testID, const QString& name)
{
    const std::optional<TestAndLocation> record = findTestAndLocation(jobID, testID);
    return record ? readProperty(m_testAttributeExtractors, *record, name) : std::nullopt;
}

std::optional<JobManagerRestAPI::TestAndLocation> JobManagerRestAPI::findTestAndLocation(
    const QString& jobID, long long testID)
{
    cdm::Test* const test = m_cache.getCdmTest(jobID, testID);
    return test ? std::make_optional(TestAndLocation(test, findLocation(*test, testID))) : std::nullopt;
}

} // namespace jobmanager_ui
