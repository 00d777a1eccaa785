#pragma once

#include "api/cdm/Attributes.h"

#include <functional>
#include <optional>
#include <QString>
#include <utility>
#include <vector>

namespace jobmanager_ui {

/// A named way to the optional properties of a record of type T: lists the attributes that a record has, reads one
/// and writes one. Makes fields of a record look like its free attributes. A plain value; calls its functions never.
template <typename T> class AttributeExtractor
{
public:
    using GetNames = std::function<std::vector<QString>(const T&)>;
    using GetAttribute = std::function<cdm::Attribute(const T&, const QString&)>;
    using SetAttribute = std::function<void(T&, const QString&, const QString&)>;

    /// Stands for any number of attributes. `setAttribute` may be empty: then they can't be written.
    AttributeExtractor(QString name, GetNames getNames, GetAttribute getAttribute, SetAttribute setAttribute)
        : m_name(std::move(name))
        , m_getNames(std::move(getNames))
        , m_getAttribute(std::move(getAttribute))
        , m_setAttribute(std::move(setAttribute))
    {
    }

    /// Stands for one attribute, named like the extractor; a record for which `get` gives nothing does not have it.
    /// `set` may be empty: then it can't be written.
    AttributeExtractor(QString name, std::function<std::optional<cdm::Attribute>(const T&)> get,
        std::function<void(T&, const QString&)> set)
        : m_name(name)
        , m_getNames([name, get](const T& record) {
            return get(record) ? std::vector<QString>{ name } : std::vector<QString>();
        })
        , m_getAttribute([get](const T& record, const QString&) { return get(record).value_or(cdm::Attribute()); })
        , m_singleAttribute(true)
    {
        if (set)
            m_setAttribute = [set](T& record, const QString&, const QString& value) { set(record, value); };
    }

    /// Its key among other extractors, and the first part of the property names that it serves.
    QString m_name;
    /// The names of the attributes that the record has.
    GetNames m_getNames;
    /// The attribute of that name; a default one if the record does not have it.
    GetAttribute m_getAttribute;
    /// Writes a value (the last argument) to the attribute of that name; empty if there is no way to write.
    SetAttribute m_setAttribute;
    /// It stands for exactly one attribute, whose property name is the extractor's.
    bool m_singleAttribute = false;
};

} // namespace jobmanager_ui
