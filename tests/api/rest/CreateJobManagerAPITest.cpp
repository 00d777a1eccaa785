// The factory of the data interface, compiled here with a port text of the test's own.

#include "api/JobManagerAPIAbstraction.h"
#include "api/rest/JobManagerRestAPI.h"

#include "tests/api/rest/StandInClient.h"
#include "tests/support/MessageCollector.h"

#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

class CreateJobManagerAPITest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void factoryGivesTheProductionImplementation();
    void serviceIsOnThisMachineAtTheBuiltInPort();
    void factoryLogsHostAndPort();
    void eachCallGivesAnInstanceOfItsOwn();
};

void CreateJobManagerAPITest::init()
{
    StandInClient::reset();
}

void CreateJobManagerAPITest::factoryGivesTheProductionImplementation()
{
    const MessageCollector recorder;
    const std::shared_ptr<JobManagerAPIAbstraction> api = JobManagerAPIAbstraction::createJobManagerAPI();
    QVERIFY(dynamic_cast<JobManagerRestAPI*>(api.get()));
    QCOMPARE(api.use_count(), 1L);
}

void CreateJobManagerAPITest::serviceIsOnThisMachineAtTheBuiltInPort()
{
    const MessageCollector recorder;
    const auto api = JobManagerAPIAbstraction::createJobManagerAPI();
    QCOMPARE(api->getRestApiPort(), EXPECTED_PORT);
    const std::vector<ClientCall> calls = StandInClient::calls("RestApiJobManager");
    QCOMPARE(static_cast<int>(calls.size()), 1);
    QCOMPARE(calls.front().arguments, (std::vector<std::string>{ "127.0.0.1", std::to_string(EXPECTED_PORT) }));
}

void CreateJobManagerAPITest::factoryLogsHostAndPort()
{
    const MessageCollector recorder;
    JobManagerAPIAbstraction::createJobManagerAPI();
    QCOMPARE(recorder.messages(),
        QStringList(
            QStringLiteral("debug: Using JobManagerRestAPI{ host = 127.0.0.1 , port = %1 }").arg(EXPECTED_PORT)));
}

void CreateJobManagerAPITest::eachCallGivesAnInstanceOfItsOwn()
{
    const MessageCollector recorder;
    const auto first = JobManagerAPIAbstraction::createJobManagerAPI();
    const auto second = JobManagerAPIAbstraction::createJobManagerAPI();
    QVERIFY(first != second);
}

QTEST_GUILESS_MAIN(CreateJobManagerAPITest)
#include "CreateJobManagerAPITest.moc"
