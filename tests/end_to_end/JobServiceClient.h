#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

/// The other side of the screen: somebody who looks at the job service, and changes jobs in it, over HTTP.
/// Each call is checked: one that the service does not accept fails the running test with what it answered.
class JobServiceClient
{
public:
    explicit JobServiceClient(unsigned short port) : m_port(port) { }

    /// The ids of all jobs, in the service's order.
    QStringList jobIds() const;
    /// The summary of one job; empty if the list does not have it.
    QJsonObject summary(const QString& id) const;
    /// The document of one job.
    QJsonObject document(const QString& id) const;
    int changeCount() const;
    /// The id of the active job; empty if there is none.
    QString activeJob() const;
    QJsonObject settings() const;

    void createJob(const QString& id) const;
    void deleteJob(const QString& id) const;
    void archiveJob(const QString& id) const;
    void setActiveJob(const QString& id) const;
    void writeSetting(const QString& id, const QString& value) const;
    /// Launches the test or location with this index string of the active job. Gives the status, empty for one that
    /// runs now.
    QString launch(const QString& uiIndex) const;
    /// Whether a test is running.
    bool isTestRunning() const;
    /// Gives the test or location with this index string a result, of now.
    void setResult(const QString& id, const QString& uiIndex, const QString& status) const;
    /// Replaces the attributes of the job.
    void setAttributes(const QString& id, const QJsonObject& attributes) const;
    /// Writes the value of one attribute of the job.
    void writeAttribute(const QString& id, const QString& name, const QString& value) const;
    /// Gives every test and location of the job a passing result, which completes its required tests.
    void completeJob(const QString& id) const;

private:
    QJsonObject get(const QString& path) const;
    /// Gives the body of the answer; empty if there is none.
    QJsonObject send(const QByteArray& method, const QString& path, const QJsonObject& body = {}) const;
    void sendResult(const QString& id, const QString& uiIndex, const QString& status, const QString& time) const;
    QString jobPath(const QString& id) const;

    unsigned short m_port;
};
