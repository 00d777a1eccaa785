#include "core/ErrorMessageHelper.h"

#include <algorithm>
#include <iterator>
#include <QObject>
#include <QStringList>

namespace {

/// A code and how it reads. The text is null where the first parameter is the message itself.
struct CodedMessage
{
    const QString& code;
    const char* text;
    int parameters;
};

const CodedMessage codedMessages[] = {
    { ErrorMessageHelper::ERROR_OPTION, QT_TRANSLATE_NOOP("QObject", "Missing option %1"), 1 },
    { ErrorMessageHelper::ERROR_POWER,
        QT_TRANSLATE_NOOP("QObject", "Insufficient Power. Turn off a running application"), 0 },
    { ErrorMessageHelper::ERROR_MODULE,
        QT_TRANSLATE_NOOP("QObject", "Test requires %1 module. Ensure the module is properly attached"), 1 },
    { ErrorMessageHelper::ERROR_SOLUTION_VERSION, QT_TRANSLATE_NOOP("QObject", "Test requires version %1 on %2 module"),
        2 },
    { ErrorMessageHelper::ERROR_PLATFORM_VERSION,
        QT_TRANSLATE_NOOP("QObject", "Test requires system software version %1"), 1 },
    { ErrorMessageHelper::ERROR_REQUIRES_FIELDMATE,
        QT_TRANSLATE_NOOP("QObject", "Use Velmora Fieldmate to complete test"), 0 },
    { ErrorMessageHelper::ERROR_CAN_LAUNCH_FAILED_TO_RUN, QT_TRANSLATE_NOOP("QObject", "Test failed to run"), 0 },
    { ErrorMessageHelper::ERROR_TEST_NOT_FOUND, QT_TRANSLATE_NOOP("QObject", "Test not available on this device"), 0 },
    { ErrorMessageHelper::ERROR_INVALID_LAUNCH_PARAMETERS,
        QT_TRANSLATE_NOOP("QObject", "Test not available on this device"), 0 },
    { ErrorMessageHelper::ERROR_UNKNOWN,
        QT_TRANSLATE_NOOP("QObject", "The %1 module cannot fulfill the test at this time"), 1 },
    { ErrorMessageHelper::ERROR_CUSTOM_NONFATAL, nullptr, 1 },
    { ErrorMessageHelper::ERROR_CUSTOM_FATAL, nullptr, 1 },
    { ErrorMessageHelper::ERROR_CONFIGURATION_FILE, QT_TRANSLATE_NOOP("QObject", "Missing configuration file %1"), 1 },
    { ErrorMessageHelper::ERROR_INVALID_TEST_CONFIGURATION,
        QT_TRANSLATE_NOOP("QObject", "Invalid test configuration %1"), 1 },
};

QMap<QString, int> severitiesOfAllCodes()
{
    QMap<QString, int> severities;
    for (const CodedMessage& message : codedMessages) {
        severities.insert(message.code, 0);
    }
    return severities;
}

/// `fields` are those of the status: the code, then the parameters.
QString displayString(const CodedMessage& message, const QStringList& fields)
{
    if (message.text == nullptr) {
        return fields.value(1);
    }
    QString text = QObject::tr(message.text);
    for (int parameter = 1; parameter <= message.parameters; ++parameter) {
        text = text.arg(fields.value(parameter));
    }
    return text;
}

} // namespace

QMap<QString, int> ErrorMessageHelper::s_severities = severitiesOfAllCodes();

QString ErrorMessageHelper::errorCodeToDisplayString(const QString& status, int& severity)
{
    const QStringList fields = status.split(QLatin1Char('^'));
    const QString& code = fields.first();
    severity = s_severities[code];
    const auto* const known = std::find_if(std::begin(codedMessages), std::end(codedMessages),
        [&](const CodedMessage& message) { return message.code == code; });
    return known == std::end(codedMessages) ? status : displayString(*known, fields);
}
