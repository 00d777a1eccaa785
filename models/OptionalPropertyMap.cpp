#include "models/OptionalPropertyMap.h"

#include <QMetaMethod>
#include <QMetaProperty>
#include <QQmlEngine>

namespace jobmanager_ui {

OptionalPropertyMap::OptionalPropertyMap(QObject* parent) : QQmlPropertyMap(this, parent)
{
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
}

void OptionalPropertyMap::show(const QString& name, const QVariant& value)
{
    if (contains(name)) {
        if (this->value(name) == value) {
            return;
        }
        ++m_deliveries;
        insert(name, value);
        return;
    }
    insert(name, value);
    // The newest property is the last one.
    hearEndOfDelivery(metaObject()->propertyCount() - 1);
}

void OptionalPropertyMap::hearEndOfDelivery(int property)
{
    // The property's own signal is the last of a write or a shown value, and QML hears it before this slot does.
    QMetaObject::connect(this, metaObject()->property(property).notifySignalIndex(), this,
        staticMetaObject.indexOfSlot("endDelivery()"), Qt::UniqueConnection);
}

QVariant OptionalPropertyMap::updateValue(const QString& key, const QVariant& input)
{
    // Called before the first signal of a write. One to a name that was never shown has just made its property.
    hearEndOfDelivery(metaObject()->indexOfProperty(key.toUtf8().constData()));
    ++m_deliveries;
    return QQmlPropertyMap::updateValue(key, input);
}

void OptionalPropertyMap::endDelivery()
{
    --m_deliveries;
    if (m_deliveries == 0 && m_ended) {
        deleteLater();
    }
}

void OptionalPropertyMap::end()
{
    if (m_deliveries == 0) {
        delete this;
        return;
    }
    setParent(nullptr);
    m_ended = true;
}

} // namespace jobmanager_ui
