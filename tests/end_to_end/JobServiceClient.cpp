#include "tests/end_to_end/JobServiceClient.h"

#include "tests/support/HttpRequest.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>
#include <QUrl>

namespace {

constexpr auto root = "/api/v1";

std::string text(const QJsonObject& body)
{
    return body.isEmpty() ? std::string() : QJsonDocument(body).toJson(QJsonDocument::Compact).toStdString();
}

void checkAnswer(const jobmanager_test::HttpReply& reply, const QString& what)
{
    if (reply.status >= 200 && reply.status < 300)
        return;
    const QString message =
        QStringLiteral("%1: %2 %3").arg(what).arg(reply.status).arg(QString::fromStdString(reply.body));
    QTest::qFail(qPrintable(message), __FILE__, __LINE__);
}

QStringList indexStrings(const QJsonObject& document)
{
    QStringList indexes;
    const QJsonArray tests = document.value(QLatin1String("tests")).toArray();
    for (const QJsonValue& value : tests) {
        const QJsonObject test = value.toObject();
        const QJsonArray locations = test.value(QLatin1String("testLocations")).toArray();
        if (locations.isEmpty())
            indexes.append(test.value(QLatin1String("uiIndex")).toString());
        for (const QJsonValue& location : locations)
            indexes.append(location.toObject().value(QLatin1String("uiIndex")).toString());
    }
    return indexes;
}

} // namespace

QStringList JobServiceClient::jobIds() const
{
    QStringList ids;
    const QJsonArray jobs = get(QStringLiteral("/jobs")).value(QLatin1String("jobs")).toArray();
    for (const QJsonValue& job : jobs)
        ids.append(job.toObject().value(QLatin1String("id")).toString());
    return ids;
}

QJsonObject JobServiceClient::summary(const QString& id) const
{
    const QJsonArray jobs = get(QStringLiteral("/jobs")).value(QLatin1String("jobs")).toArray();
    for (const QJsonValue& job : jobs) {
        if (job.toObject().value(QLatin1String("id")).toString() == id)
            return job.toObject();
    }
    return {};
}

QJsonObject JobServiceClient::document(const QString& id) const
{
    return get(jobPath(id));
}

int JobServiceClient::changeCount() const
{
    return get(QStringLiteral("/change-count")).value(QLatin1String("changeCount")).toInt();
}

QString JobServiceClient::activeJob() const
{
    return get(QStringLiteral("/active-job")).value(QLatin1String("id")).toString();
}

QJsonObject JobServiceClient::settings() const
{
    return get(QStringLiteral("/settings")).value(QLatin1String("settings")).toObject();
}

void JobServiceClient::createJob(const QString& id) const
{
    send("POST", QStringLiteral("/jobs"),
        { { QStringLiteral("workOrderNo"), id }, { QStringLiteral("techId"), QStringLiteral("T-100") },
            { QStringLiteral("templateName"), QString() }, { QStringLiteral("locationsFilename"), QString() },
            { QStringLiteral("syncToNimbrel"), false } });
}

void JobServiceClient::deleteJob(const QString& id) const
{
    send("DELETE", jobPath(id));
}

void JobServiceClient::archiveJob(const QString& id) const
{
    send("POST", jobPath(id) + QStringLiteral("/archive"));
}

void JobServiceClient::setActiveJob(const QString& id) const
{
    send("PUT", QStringLiteral("/active-job"), { { QStringLiteral("id"), id } });
}

void JobServiceClient::writeSetting(const QString& id, const QString& value) const
{
    send("PUT", QStringLiteral("/settings/") + id, { { QStringLiteral("value"), value } });
}

QString JobServiceClient::launch(const QString& uiIndex) const
{
    return send("POST", QStringLiteral("/launches"), { { QStringLiteral("uiIndex"), uiIndex } })
        .value(QLatin1String("message"))
        .toString();
}

bool JobServiceClient::isTestRunning() const
{
    // Of what is wrong with a launch the service tells the running test first.
    return launch(QStringLiteral("no index")).startsWith(QLatin1String("ERROR_CUSTOM_NONFATAL"));
}

void JobServiceClient::setResult(const QString& id, const QString& uiIndex, const QString& status) const
{
    sendResult(id, uiIndex, status, QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs));
}

void JobServiceClient::setAttributes(const QString& id, const QJsonObject& attributes) const
{
    send("PUT", jobPath(id) + QStringLiteral("/attributes"), attributes);
}

void JobServiceClient::writeAttribute(const QString& id, const QString& name, const QString& value) const
{
    const QJsonObject attribute{ { QStringLiteral("value"), value } };
    send("PATCH", jobPath(id), { { QStringLiteral("jobManagerAttributes"), QJsonObject{ { name, attribute } } } });
}

void JobServiceClient::completeJob(const QString& id) const
{
    const QStringList indexes = indexStrings(document(id));
    for (const QString& index : indexes)
        sendResult(id, index, QStringLiteral("Pass"), QStringLiteral("2026-05-04T10:20:30+00:00"));
}

void JobServiceClient::sendResult(
    const QString& id, const QString& uiIndex, const QString& status, const QString& time) const
{
    send("PUT", jobPath(id) + QStringLiteral("/tests/%1/results").arg(uiIndex),
        { { QStringLiteral("status"), status }, { QStringLiteral("time"), time } });
}

QJsonObject JobServiceClient::get(const QString& path) const
{
    const auto reply = jobmanager_test::httpRequest(m_port, "GET", (QLatin1String(root) + path).toStdString());
    checkAnswer(reply, path);
    return QJsonDocument::fromJson(QByteArray::fromStdString(reply.body)).object();
}

QJsonObject JobServiceClient::send(const QByteArray& method, const QString& path, const QJsonObject& body) const
{
    const auto reply = jobmanager_test::httpRequest(
        m_port, method.toStdString(), (QLatin1String(root) + path).toStdString(), text(body));
    checkAnswer(reply, QString::fromLatin1(method) + QLatin1Char(' ') + path);
    return QJsonDocument::fromJson(QByteArray::fromStdString(reply.body)).object();
}

QString JobServiceClient::jobPath(const QString& id) const
{
    return QStringLiteral("/jobs/") + QString::fromLatin1(QUrl::toPercentEncoding(id));
}
