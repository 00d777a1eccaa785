#include "tests/support/MetaObjectText.h"

#include "tests/support/Journal.h"

#include <QMetaMethod>
#include <QMetaProperty>

namespace jobmanager_test {

namespace {

QString kind(const QMetaMethod& method)
{
    switch (method.methodType()) {
    case QMetaMethod::Signal:
        return QStringLiteral("signal");
    case QMetaMethod::Slot:
        return QStringLiteral("slot");
    case QMetaMethod::Method:
    case QMetaMethod::Constructor:
        return QStringLiteral("method");
    }
    return {};
}

} // namespace

QString propertyLines(const QMetaObject& meta)
{
    QStringList properties;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        QStringList words{ QString::fromLatin1(property.typeName()), QString::fromLatin1(property.name()) };
        words.append(
            property.isConstant() ? QStringLiteral("constant") : QString::fromLatin1(property.notifySignal().name()));
        if (property.isWritable()) {
            words.append(QStringLiteral("writable"));
        }
        properties.append(words.join(QLatin1Char(' ')));
    }
    return lines(properties);
}

QString methodLines(const QMetaObject& meta)
{
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QStringList words{ kind(method) };
        if (method.access() == QMetaMethod::Private) {
            words.append(QStringLiteral("private"));
        }
        words.append(QString::fromLatin1(method.methodSignature()));
        methods.append(words.join(QLatin1Char(' ')));
    }
    return lines(methods);
}

} // namespace jobmanager_test
