#pragma once

#include <QQmlExtensionPlugin>

/// The QML extension plugin: what a front end loads by `import JobManagerUi 1.0`.
class JobManagerPlugin : public QQmlExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QQmlExtensionInterface/1.0")

public:
    /// Registers the enums and the singleton JobManager, version 1.0, under the module's name as the engine gives it.
    /// Each engine that uses the singleton gets a manager of its own, which it destroys with itself.
    void registerTypes(const char* uri) override;
};
