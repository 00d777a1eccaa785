#include "tests/end_to_end/Bounds.h"
#include "tests/qml/JobServiceActions.h"
#include "tests/qml/ServiceOutage.h"
#include "tests/qml/WarningLog.h"
#include "tests/support/PrivateNetwork.h"
#include "tests/support/ServiceProcess.h"

#include <cstdio>
#include <QDir>
#include <QFile>
#include <QQmlContext>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QtQuickTest>

namespace {

/// What the service does with writes of some attributes of the tests' own.
constexpr const char* attributeRules = R"({"jobManagerAttributes": {
    "refusedText": {"refuse": "Dispatch owns it."},
    "refusedChoice": {"refuse": "Dispatch owns it."},
    "cabinet": {"trim": true, "upperCase": true},
    "slow": {"delayMs": 300}
}})";

/// The exit code that tells the test runner that the test could not be run here.
constexpr int skipped = 77;

} // namespace

/// Gives the tests of the demo's screens a job service of their own, with the sample jobs, on the module's own port.
class ScreensSetup : public QObject
{
    Q_OBJECT

public:
    /// Starts the service, in a folder where there are its attribute rules and the guide of one test of the samples.
    bool startService()
    {
        QDir folder(m_folder.path());
        if (!folder.mkpath(QStringLiteral("guides")) || !write("guides/otdr-bidirectional.pdf", "")
            || !write("rules.json", attributeRules) || !QDir::setCurrent(m_folder.path())) {
            return false;
        }
        m_service.setPort(modulePort);
        return m_service.start();
    }

    std::string serviceLog() const { return m_service.log(); }

public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine* engine)
    {
        WarningLog::start();
        engine->rootContext()->setContextProperty(QStringLiteral("service"), &m_actions);
        engine->rootContext()->setContextProperty(QStringLiteral("outage"), &m_outage);
    }

private:
    bool write(const char* name, const char* content) const
    {
        QFile file(m_folder.filePath(QString::fromLatin1(name)));
        return file.open(QIODevice::WriteOnly) && file.write(content) >= 0 && file.flush();
    }

    QTemporaryDir m_folder;
    jobmanager_test::ServiceProcess m_service{ { "--load", JOBMANAGER_SAMPLES, "--generate", "jobs=1,tests=5000",
        "--attribute-rules", "rules.json", "--tech-id", "T-1031", "--start-seconds", "0.3", "--run-seconds", "1" } };
    JobServiceActions m_actions{ modulePort };
    ServiceOutage m_outage{ m_service };
};

int main(int argc, char* argv[])
{
    const std::string refusal = jobmanager_test::enterPrivateNetwork();
    if (!refusal.empty()) {
        std::fprintf(stderr, "no network of its own, in which port %d is free: %s\n", modulePort, refusal.c_str());
        return skipped;
    }
    ScreensSetup setup;
    if (!setup.startService()) {
        std::fprintf(stderr, "%s\n", setup.serviceLog().c_str());
        return 1;
    }
    return WarningLog::exitCode(
        quick_test_main_with_setup(argc, argv, SCREENS_TEST, QML_TEST_SOURCES "/" SCREENS_TEST_FOLDER, &setup));
}

#include "ScreensTest.moc"
