#include "tests/qml/JobRows.h"
#include "tests/qml/WarningLog.h"

#include <QQmlEngine>
#include <QtQuickTest>

/// Gives the tests of the demo's PlaceKeeper their model.
class PlaceKeeperSetup : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine*)
    {
        WarningLog::start();
        qmlRegisterType<JobRows>("TestSupport", 1, 0, "JobRows");
    }
};

int main(int argc, char* argv[])
{
    PlaceKeeperSetup setup;
    return WarningLog::exitCode(
        quick_test_main_with_setup(argc, argv, "PlaceKeeperTest", QML_TEST_SOURCES "/place", &setup));
}

#include "PlaceKeeperTest.moc"
