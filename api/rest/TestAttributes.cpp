#include "api/rest/TestAttributes.h"

#include "api/Logging.h"

#include <QDebug>
#include <set>

namespace jobmanager_ui {

namespace {

void addNames(const std::optional<cdm::Attributes>& attributes, std::set<QString>& names)
{
    if (!attributes)
        return;
    for (const auto& [name, content] : attributes->values)
        names.insert(QString::fromStdString(name));
}

/// What is warned of when the location's attribute can't be read: the usual reason of old.
void warnOfLocation()
{
    qCWarning(logCategory) << "This fails because referenceInfo is an object...";
}

} // namespace

std::vector<QString> namesOfTestAttributes(const cdm::Test& test, const cdm::TestLocation* location)
{
    std::set<QString> names;
    if (location)
        addNames(location->attributes, names);
    addNames(test.attributes, names);
    names.erase(QStringLiteral("subTypeInfo"));
    names.erase(QStringLiteral("referenceInfo"));
    return { names.begin(), names.end() };
}

cdm::Attribute testAttribute(const cdm::Test& test, const cdm::TestLocation* location, const QString& name)
{
    const std::string key = name.toStdString();
    cdm::Attribute attribute;
    if (location && location->attributes) {
        try {
            attribute = location->attributes->getAttribute(key);
        } catch (...) {
            warnOfLocation();
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

void setTestAttribute(cdm::Test& test, cdm::TestLocation* location, const QString& name, const QString& value)
{
    const std::string key = name.toStdString();
    cdm::Attribute attribute;
    if (location && location->attributes) {
        try {
            attribute = location->attributes->getAttribute(key);
            attribute.value = value.toStdString();
            if (!test.attributes)
                test.attributes.emplace();
            test.attributes->setAttribute(key, attribute);
        } catch (...) {
            warnOfLocation();
        }
        if (!attribute.label.empty() || !attribute.value.empty())
            return;
    }
    if (!test.attributes)
        return;
    try {
        attribute = test.attributes->getAttribute(key);
        attribute.value = value.toStdString();
        test.attributes->setAttribute(key, attribute);
    } catch (...) {
        qCWarning(logCategory) << "Could not set test attribute" << name;
    }
}

} // namespace jobmanager_ui
