#include "tests/qml/JobServiceActions.h"

#include "tests/end_to_end/Bounds.h"
#include "tests/support/HttpRequest.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QtTest>
#include <QUrl>

void JobServiceActions::setResult(const QString& id, const QString& uiIndex, const QString& status) const
{
    const QString path = QStringLiteral("/api/v1/jobs/%1/tests/%2/results")
                             .arg(QString::fromLatin1(QUrl::toPercentEncoding(id)), uiIndex);
    const QJsonObject result{ { QStringLiteral("status"), status },
        { QStringLiteral("time"), QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs) } };
    const auto reply = jobmanager_test::httpRequest(
        m_port, "PUT", path.toStdString(), QJsonDocument(result).toJson(QJsonDocument::Compact).toStdString());
    if (reply.status != 204) {
        const QString message = QStringLiteral("%1: %2").arg(path).arg(reply.status);
        QTest::qFail(qPrintable(message), __FILE__, __LINE__);
    }
}

int JobServiceActions::stretched(int milliseconds) const
{
    return ::stretched(milliseconds);
}
