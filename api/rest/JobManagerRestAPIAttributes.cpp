// The optional properties of jobs and tests: who serves which name, their reads, and the writes of a job's.

#include "api/rest/JobManagerRestAPI.h"
#include "api/rest/TestAttributes.h"

#include <algorithm>

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

/// Writes to the service, and to the job that is cached only if the service agrees.
void writeFreeAttribute(
    RestApiJobManager& client, cdm::CdmSouthboundJob& job, const QString& name, const QString& value)
{
    const std::string key = name.toStdString();
    const std::string text = value.toStdString();
    const nlohmann::json update = { { "jobManagerAttributes", { { key, { { "value", text } } } } } };
    if (!client.updateWorkflowAttributes(job.details.id, update) || !job.details.attributes)
        return;
    cdm::Attribute attribute = job.details.attributes->getAttribute(key);
    attribute.value = text;
    job.details.attributes->setAttribute(key, attribute);
}

/// The same of the technician. A job that has none gets none: only its next record tells.
void writeTechId(RestApiJobManager& client, cdm::CdmSouthboundJob& job, const QString& value)
{
    const nlohmann::json update = { { "techInfo", { { "techId", value.toStdString() } } } };
    if (client.updateWorkflowAttributes(job.details.id, update) && job.details.techInfo)
        job.details.techInfo->techId = value.toStdString();
}

/// The same of the contractor, also of a job that had none.
void writeContractorId(RestApiJobManager& client, cdm::CdmSouthboundJob& job, const QString& value)
{
    const nlohmann::json update = { { "contractorId", value.toStdString() } };
    if (client.updateWorkflowAttributes(job.details.id, update))
        job.details.contractorId = value.toStdString();
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

/// Who serves that property name; null if it is empty or nobody does.
template <typename T>
const AttributeExtractor<T>* extractorOf(
    const QHash<QString, AttributeExtractor<T>>& extractors, const QString& property)
{
    if (property.isEmpty())
        return nullptr;
    // Without a slash the whole name is the extractor's.
    const auto extractor = extractors.constFind(property.left(property.indexOf(QLatin1Char('/'))));
    return extractor == extractors.constEnd() ? nullptr : &extractor.value();
}

/// What its extractor knows the property by: what stands behind the first slash, or the whole name without one.
QString attributeNameOf(const QString& property)
{
    return property.mid(property.indexOf(QLatin1Char('/')) + 1);
}

/// The attribute of that property name; nothing if the name is empty or no extractor serves it.
template <typename T>
std::optional<cdm::Attribute> readProperty(
    const QHash<QString, AttributeExtractor<T>>& extractors, const T& record, const QString& property)
{
    const AttributeExtractor<T>* const extractor = extractorOf(extractors, property);
    return extractor ? std::make_optional(extractor->m_getAttribute(record, attributeNameOf(property))) : std::nullopt;
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
    add(m_jobAttributeExtractors,
        Extractor(freeAttributes, namesOfJobAttributes, jobAttribute,
            [this](Job& job, const QString& name, const QString& value) {
                writeFreeAttribute(m_client, job, name, value);
            }));
    add(m_jobAttributeExtractors,
        Extractor(
            QStringLiteral("techId"),
            [](const Job& job) -> std::optional<cdm::Attribute> {
                const std::optional<cdm::TechInfo>& tech = job.details.techInfo;
                return attributeOfField(tech ? tech->techId : std::string(), false);
            },
            [this](Job& job, const QString& value) { writeTechId(m_client, job, value); }));
    add(m_jobAttributeExtractors,
        Extractor(
            QStringLiteral("contractorId"),
            [](const Job& job) -> std::optional<cdm::Attribute> {
                const std::optional<std::string>& contractor = job.details.contractorId;
                return contractor ? std::make_optional(attributeOfField(*contractor, true)) : std::nullopt;
            },
            [this](Job& job, const QString& value) { writeContractorId(m_client, job, value); }));
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
            [](TestAndLocation& record, const QString& name, const QString& value) {
                setTestAttribute(*record.first, record.second, name, value);
            }));
    add(m_testAttributeExtractors,
        Extractor(
            QStringLiteral("location"),
            [](const TestAndLocation& record) -> std::optional<cdm::Attribute> {
                const cdm::TestLocation* const location = record.second;
                return location ? std::make_optional(attributeOfField(location->location, false)) : std::nullopt;
            },
            [](TestAndLocation& /*record*/, const QString& /*value*/) {}));
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

bool JobManagerRestAPI::setOptionalJobProperty(QString jobID, const QString& propName, const QVariant& value)
{
    return setJobAttribute(jobID, propName, value);
}

std::optional<cdm::Attribute> JobManagerRestAPI::getJobAttribute(const QString& jobID, const QString& name)
{
    const cdm::CdmSouthboundJob* const job = m_cache.getCdmJob(jobID);
    return job ? readProperty(m_jobAttributeExtractors, *job, name) : std::nullopt;
}

bool JobManagerRestAPI::setJobAttribute(QString jobID, const QString& name, const QVariant& value)
{
    cdm::CdmSouthboundJob* const job = m_cache.getCdmJob(jobID);
    if (!job)
        return false;
    const auto* const extractor = extractorOf(m_jobAttributeExtractors, name);
    if (extractor && extractor->m_setAttribute)
        extractor->m_setAttribute(*job, attributeNameOf(name), value.toString());
    return true;
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
