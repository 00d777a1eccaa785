#pragma once

#include <memory>
#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QQmlComponent>
#include <QQmlEngine>

namespace jobmanager_test {

/// The object that the QML text makes in the engine. The text imports QtQml by itself; one that is wrong ends the
/// program.
inline std::unique_ptr<QObject> qmlObject(QQmlEngine& engine, const QByteArray& text)
{
    QQmlComponent component(&engine);
    component.setData("import QtQml 2.15\n" + text, QUrl());
    std::unique_ptr<QObject> object(component.create());
    if (object == nullptr) {
        qFatal("%s", qPrintable(component.errorString()));
    }
    return object;
}

/// Whether the object lives on when JavaScript has got it, the way of an invokable's result or of a model's data, has
/// let go of it and collects its garbage. The object is on the heap and has no parent: it dies if nothing protects it.
inline bool outlivesTheCollector(QObject* object)
{
    const QPointer<QObject> watched = object;
    QQmlEngine engine;
    engine.newQObject(object);
    engine.collectGarbage();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return !watched.isNull();
}

} // namespace jobmanager_test
