#pragma once

#include "tests/end_to_end/JobServiceClient.h"

#include <QJsonObject>
#include <QObject>
#include <QVariantMap>

/// What tests written in QML do to the job service, as somebody else over HTTP. A call that the service does not
/// accept fails the running test.
class JobServiceActions : public QObject
{
    Q_OBJECT

public:
    explicit JobServiceActions(unsigned short port) : m_client(port) { }

    Q_INVOKABLE QStringList jobIds() const { return m_client.jobIds(); }
    Q_INVOKABLE QVariantMap summary(const QString& id) const { return m_client.summary(id).toVariantMap(); }
    Q_INVOKABLE void createJob(const QString& id) const { m_client.createJob(id); }
    Q_INVOKABLE void deleteJob(const QString& id) const { m_client.deleteJob(id); }
    Q_INVOKABLE void archiveJob(const QString& id) const { m_client.archiveJob(id); }
    Q_INVOKABLE void setActiveJob(const QString& id) const { m_client.setActiveJob(id); }
    Q_INVOKABLE void completeJob(const QString& id) const { m_client.completeJob(id); }
    Q_INVOKABLE QVariantMap document(const QString& id) const { return m_client.document(id).toVariantMap(); }
    /// Replaces the attributes of the job.
    Q_INVOKABLE void setAttributes(const QString& id, const QVariantMap& attributes) const
    {
        m_client.setAttributes(id, QJsonObject::fromVariantMap(attributes));
    }
    /// Writes the value of one attribute of the job.
    Q_INVOKABLE void writeAttribute(const QString& id, const QString& name, const QString& value) const
    {
        m_client.writeAttribute(id, name, value);
    }
    Q_INVOKABLE int changeCount() const { return m_client.changeCount(); }
    /// Gives the test or location with this index string a result, of now.
    Q_INVOKABLE void setResult(const QString& id, const QString& uiIndex, const QString& status) const
    {
        m_client.setResult(id, uiIndex, status);
    }
    /// How many milliseconds a time bound has in this build.
    Q_INVOKABLE int stretched(int milliseconds) const;

private:
    JobServiceClient m_client;
};
