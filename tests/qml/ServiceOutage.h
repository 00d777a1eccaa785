#pragma once

#include "tests/support/ServiceProcess.h"

#include <QObject>

/// Takes the job service away from the screens, and brings it back with its jobs, for tests written in QML.
class ServiceOutage : public QObject
{
    Q_OBJECT

public:
    /// `service` must outlive the object.
    explicit ServiceOutage(jobmanager_test::ServiceProcess& service) : m_service(service) { }

    Q_INVOKABLE void begin() { m_service.kill(); }
    /// Does nothing if there is none. False if the service did not start.
    Q_INVOKABLE bool end() { return m_service.isRunning() || m_service.start(); }

private:
    jobmanager_test::ServiceProcess& m_service;
};
