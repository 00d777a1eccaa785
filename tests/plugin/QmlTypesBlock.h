#pragma once

#include <QHash>
#include <QMetaObject>
#include <QString>
#include <QStringList>
#include <vector>

namespace jobmanager_test {

/// One block of a .qmltypes file, `Kind { name: value; ... Kind { ... } }`.
struct QmlTypesBlock
{
    QString kind = {};
    /// The values as their words without quotes: one, or those of a list; of a map, keys and values in turn.
    QHash<QString, QStringList> values = {};
    std::vector<QmlTypesBlock> blocks = {};

    /// The value's only word; empty if there is no such value.
    QString value(const QString& name) const { return values.value(name).join(QLatin1Char(' ')); }
    /// The blocks of this kind inside, in order.
    std::vector<QmlTypesBlock> all(const QString& ofKind) const;
};

/// The module that the text of a .qmltypes file describes. A block without a kind if the text is none.
QmlTypesBlock readQmlTypes(const QString& text);

/// What a component of such a file publishes, a line each in its order: `enum`, `property`, `signal` and `method`.
QStringList published(const QmlTypesBlock& component);
/// The same from the class itself: what it declares, private slots left out, for QML cannot call them. A signal without
/// arguments that is named as the change of a property is left out too: in such a file the property stands for it.
QStringList published(const QMetaObject& meta);

} // namespace jobmanager_test
