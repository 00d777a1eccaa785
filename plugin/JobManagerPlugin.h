#pragma once

#include <QQmlExtensionPlugin>

/// The QML extension plugin: what a front end loads by `import JobManagerUi 1.0`.
class JobManagerPlugin : public QQmlExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QQmlExtensionInterface/1.0")

public:
    /// Registers, in this order and as version 1.0, under the module's name as the engine gives it: Job, Test,
    /// TestList, PropertyType, TestRequirement and TestGroupType, which QML names and cannot create, PartialModel,
    /// which it creates, and the singleton JobManager. Each engine that uses the singleton gets a manager of its own,
    /// which it destroys with itself.
    void registerTypes(const char* uri) override;
};
