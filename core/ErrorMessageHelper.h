#pragma once

#include <QMap>
#include <QString>

/// The vocabulary of launch statuses, and the words that the technician reads for them.
///
/// A status is empty on success, else a code with its parameters behind it, separated by "^":
/// `ERROR_OPTION^someOption`. Main thread only.
class ErrorMessageHelper
{
public:
    // The codes. In this order they are compared.

    /// An option is missing; its name.
    inline static const QString ERROR_OPTION = QStringLiteral("ERROR_OPTION");
    /// There is not enough power.
    inline static const QString ERROR_POWER = QStringLiteral("ERROR_POWER");
    /// A module is missing; its name.
    inline static const QString ERROR_MODULE = QStringLiteral("ERROR_MODULE");
    /// A module has another version; the version wanted, the module's name.
    inline static const QString ERROR_SOLUTION_VERSION = QStringLiteral("ERROR_SOLUTION_VERSION");
    /// The system software has another version; the version wanted.
    inline static const QString ERROR_PLATFORM_VERSION = QStringLiteral("ERROR_PLATFORM_VERSION");
    /// The test runs on the companion device only.
    inline static const QString ERROR_REQUIRES_FIELDMATE = QStringLiteral("ERROR_REQUIRES_FIELDMATE");
    /// The test could be launched and did not run.
    inline static const QString ERROR_CAN_LAUNCH_FAILED_TO_RUN = QStringLiteral("ERROR_CAN_LAUNCH_FAILED_TO_RUN");
    /// There is no such test.
    inline static const QString ERROR_TEST_NOT_FOUND = QStringLiteral("ERROR_TEST_NOT_FOUND");
    /// The launch asked for something that is none.
    inline static const QString ERROR_INVALID_LAUNCH_PARAMETERS = QStringLiteral("ERROR_INVALID_LAUNCH_PARAMETERS");
    /// A module refuses, nobody knows why; its name.
    inline static const QString ERROR_UNKNOWN = QStringLiteral("ERROR_UNKNOWN");
    /// The message itself.
    inline static const QString ERROR_CUSTOM_NONFATAL = QStringLiteral("ERROR_CUSTOM_NONFATAL");
    /// The message itself.
    inline static const QString ERROR_CUSTOM_FATAL = QStringLiteral("ERROR_CUSTOM_FATAL");
    /// A configuration file is missing; its name.
    inline static const QString ERROR_CONFIGURATION_FILE = QStringLiteral("ERROR_CONFIGURATION_FILE");
    /// The test's configuration is wrong; what is wrong with it.
    inline static const QString ERROR_INVALID_TEST_CONFIGURATION = QStringLiteral("ERROR_INVALID_TEST_CONFIGURATION");

    /// What to show for the status, in the language of this moment; a status with an unknown code as it stands, the
    /// empty one included. A missing parameter counts as empty. `severity` is always written.
    static QString errorCodeToDisplayString(const QString& status, int& severity);

    /// The severity of each code, 0 for all in this version. An unknown code joins with 0 when it is first met.
    static const QMap<QString, int>& severities() { return s_severities; }

private:
    static QMap<QString, int> s_severities;
};
