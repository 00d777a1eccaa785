#include "tests/support/RecordingApi.h"

#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

/// An implementation that leaves the port to the base class.
class PortlessApi : public RecordingApi
{
public:
    int getRestApiPort() override { return JobManagerAPIAbstraction::getRestApiPort(); }
    void setRestApiPort(int port) override { JobManagerAPIAbstraction::setRestApiPort(port); }
};

} // namespace

class JobManagerAPIAbstractionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void portIsZeroUnlessOverridden()
    {
        PortlessApi api;
        QCOMPARE(api.getRestApiPort(), 0);
    }

    void settingThePortChangesNothingUnlessOverridden()
    {
        PortlessApi api;
        api.setRestApiPort(9000);
        QCOMPARE(api.getRestApiPort(), 0);
        QCOMPARE(api.journal().entries(), QStringList());
    }
};

QTEST_APPLESS_MAIN(JobManagerAPIAbstractionTest)
#include "JobManagerAPIAbstractionTest.moc"
