#pragma once

#include <memory>
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

} // namespace jobmanager_test
