#pragma once

#include "tests/api/rest/OnStandIn.h"
#include "tests/api/rest/Records.h"
#include "tests/api/rest/StandInClient.h"

#include <map>
#include <QString>
#include <QtTest>

namespace jobmanager_test {

/// The one job of these tests, and one of its properties.
inline const QString job = QStringLiteral("J");
inline const QString someProperty = QStringLiteral("attributes/name");

/// Over a service whose one job is this, already read; the calls for that are forgotten.
class WithJob : public OnStandIn
{
public:
    explicit WithJob(const cdm::CdmSouthboundJob& record)
    {
        ClientAnswers answers;
        answers.jobs[job.toStdString()] = record;
        StandInClient::setAnswers(answers);
        (*this)->fetchJob(job);
        (*this)->commitFetchedData();
        StandInClient::forgetCalls();
    }
};

/// The job with these free attributes.
inline cdm::CdmSouthboundJob jobWithAttributes(const std::map<std::string, nlohmann::json>& values)
{
    cdm::CdmSouthboundJob record = jobOf(job.toStdString());
    record.details.attributes.emplace().values = values;
    return record;
}

/// The least that makes an attribute.
inline nlohmann::json attributeJson(const std::string& value)
{
    return { { "label", "Label" }, { "value", value } };
}

/// A table of property names that no job can have.
inline void addNamesThatNoExtractorServes()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("bare name of an attribute") << QStringLiteral("name");
    QTest::newRow("unknown extractor") << QStringLiteral("other/name");
    QTest::newRow("empty extractor") << QStringLiteral("/name");
    QTest::newRow("other case") << QStringLiteral("techid");
    QTest::newRow("of tests") << QStringLiteral("location");
}

} // namespace jobmanager_test
