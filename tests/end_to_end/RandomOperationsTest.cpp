#include "tests/end_to_end/RandomOperations.h"
#include "tests/end_to_end/RandomSession.h"
#include "tests/support/MessageCollector.h"

#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QtTest>

using jobmanager_test::MessageCollector;
using jobmanager_test::ServiceProcess;

namespace {

constexpr int sequences = 1000;

int numberFromEnvironment(const char* name, int otherwise)
{
    bool isSet = false;
    const int number = qEnvironmentVariableIntValue(name, &isSet);
    return isSet ? number : otherwise;
}

/// Whether the message is one that the operations may bring about.
bool isExpected(const QString& warning)
{
    for (const char* const expected : { "Could not find job: ", "Could not find test: ", "m_testToLaunch is empty. ",
             "Failed to get minimal job info for: ", "jobmanager-ui: " }) {
        if (warning.startsWith(QLatin1String("warning: ") + QLatin1String(expected))) {
            return true;
        }
    }
    return false;
}

} // namespace

/// Whatever is done to the front, in whatever order, with the service restarting in between: what holds between its
/// rows, jobs and views holds after each step, and when the count moves for the last time it shows what the service
/// says. One service for all sequences, so that each begins with what the ones before have left.
class RandomOperationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        QVERIFY2(m_service.start(), m_service.log().c_str());
    }

    void sequenceEndsWithWhatTheServiceSays_data()
    {
        QTest::addColumn<unsigned int>("seed");
        // A run that is one of several does every so-manieth.
        const int parts = numberFromEnvironment("JOBMANAGER_TEST_PARTS", 1);
        for (int seed = numberFromEnvironment("JOBMANAGER_TEST_PART", 0); seed < sequences; seed += parts) {
            QTest::addRow("%d", seed) << static_cast<unsigned int>(seed);
        }
    }

    void sequenceEndsWithWhatTheServiceSays()
    {
        QFETCH(unsigned int, seed);
        MessageCollector messages;
        {
            RandomSession session(m_service, m_media.path(), seed);
            QVERIFY2(session.settle(), "the first rows do not come");
            QStringList account;
            for (int steps = 10 + session.below(20); steps > 0; --steps) {
                const RandomOperation& operation = randomOperation(session);
                account.append(QString::fromLatin1(operation.name));
                operation.run(session);
                const QStringList faults = session.invariants.faults();
                QVERIFY2(faults.isEmpty(), report(account, faults));
            }
            finish(session, account);
        }
        for (const QString& message : messages.take()) {
            QVERIFY2(isExpected(message), qPrintable(message));
        }
    }

private:
    static const char* report(const QStringList& account, const QStringList& faults)
    {
        static QByteArray text;
        text = (account.join(QStringLiteral("; ")) + QStringLiteral(": ") + faults.join(QStringLiteral("; "))).toUtf8();
        return text.constData();
    }

    static void finish(RandomSession& session, const QStringList& account)
    {
        session.manager.setPauseAutomaticUpdates(false);
        QVERIFY2(session.settle(), report(account, { QStringLiteral("something does not end") }));
        session.other.setActiveJob(session.anyIDOfService());
        const QString difference = session.difference();
        QVERIFY2(difference.isEmpty(), report(account, { difference }));
        const QStringList faults = session.invariants.faults();
        QVERIFY2(faults.isEmpty(), report(account, faults));
    }

    const QTemporaryDir m_media;
    /// Tests run for a moment, so that their results come between other things.
    ServiceProcess m_service{ { "--start-seconds", "0.002", "--run-seconds", "0.02", "--media-root",
        m_media.path().toStdString(), "--load", JOBMANAGER_SAMPLES "/templates", "--load",
        JOBMANAGER_SAMPLES "/jobs/WO-2026-004512.job.json", "--load",
        JOBMANAGER_SAMPLES "/jobs/WO-2026-004711.job.json", "--load",
        JOBMANAGER_SAMPLES "/jobs/stoerung-77.job.json" } };
};

QTEST_GUILESS_MAIN(RandomOperationsTest)
#include "RandomOperationsTest.moc"
