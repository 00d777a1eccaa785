#include "core/ErrorMessageHelper.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/OtherWords.h"

#include <initializer_list>
#include <iterator>
#include <memory>
#include <QtTest>
#include <utility>

using namespace jobmanager_test;

namespace {

QString displayString(const QString& status)
{
    int severity = 0;
    return ErrorMessageHelper::errorCodeToDisplayString(status, severity);
}

/// Rows that are named by a status and hold its message.
void addMessages(std::initializer_list<std::pair<const char*, const char*>> messages)
{
    QTest::addColumn<QString>("message");
    for (const auto& [status, message] : messages) {
        QTest::newRow(status) << QString::fromLatin1(message);
    }
}

const char* const codes[] = { "ERROR_OPTION", "ERROR_POWER", "ERROR_MODULE", "ERROR_SOLUTION_VERSION",
    "ERROR_PLATFORM_VERSION", "ERROR_REQUIRES_FIELDMATE", "ERROR_CAN_LAUNCH_FAILED_TO_RUN", "ERROR_TEST_NOT_FOUND",
    "ERROR_INVALID_LAUNCH_PARAMETERS", "ERROR_UNKNOWN", "ERROR_CUSTOM_NONFATAL", "ERROR_CUSTOM_FATAL",
    "ERROR_CONFIGURATION_FILE", "ERROR_INVALID_TEST_CONFIGURATION" };

} // namespace

class ErrorMessageHelperTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_severitiesAtTheStart = ErrorMessageHelper::severities(); }

    void init() { m_messages = std::make_unique<MessageCollector>(); }

    void cleanup()
    {
        // An argument without a place, or a place without an argument, is warned of.
        QCOMPARE(m_messages->take(), QStringList());
        m_messages.reset();
    }

    // The first of all: the others show the empty status as well.
    void emptyStatusJoinsTheSeverities()
    {
        QVERIFY(!ErrorMessageHelper::severities().contains(QString()));
        displayString(QString());
        QCOMPARE(ErrorMessageHelper::severities().value(QString(), 77), 0);
    }

    void statusReadsAsItsMessage_data()
    {
        addMessages({
            { "ERROR_OPTION^someMadeUpOption", "Missing option someMadeUpOption" },
            { "ERROR_POWER", "Insufficient Power. Turn off a running application" },
            { "ERROR_MODULE^OTDR", "Test requires OTDR module. Ensure the module is properly attached" },
            { "ERROR_SOLUTION_VERSION^2.1^OTDR", "Test requires version 2.1 on OTDR module" },
            { "ERROR_PLATFORM_VERSION^7.0", "Test requires system software version 7.0" },
            { "ERROR_REQUIRES_FIELDMATE", "Use Velmora Fieldmate to complete test" },
            { "ERROR_CAN_LAUNCH_FAILED_TO_RUN", "Test failed to run" },
            { "ERROR_TEST_NOT_FOUND", "Test not available on this device" },
            { "ERROR_INVALID_LAUNCH_PARAMETERS", "Test not available on this device" },
            { "ERROR_UNKNOWN^OTDR", "The OTDR module cannot fulfill the test at this time" },
            { "ERROR_CUSTOM_NONFATAL^Close the lid", "Close the lid" },
            { "ERROR_CUSTOM_FATAL^The laser is gone", "The laser is gone" },
            { "ERROR_CONFIGURATION_FILE^a.cfg", "Missing configuration file a.cfg" },
            { "ERROR_INVALID_TEST_CONFIGURATION^no range", "Invalid test configuration no range" },
        });
    }

    void statusReadsAsItsMessage() { QTEST(displayString(QString::fromLatin1(QTest::currentDataTag())), "message"); }

    void missingParameterCountsAsEmpty_data()
    {
        addMessages({
            { "ERROR_OPTION", "Missing option " },
            { "ERROR_OPTION^", "Missing option " },
            { "ERROR_MODULE", "Test requires  module. Ensure the module is properly attached" },
            { "ERROR_SOLUTION_VERSION^2.1", "Test requires version 2.1 on  module" },
            { "ERROR_SOLUTION_VERSION^^OTDR", "Test requires version  on OTDR module" },
            { "ERROR_SOLUTION_VERSION", "Test requires version  on  module" },
            { "ERROR_PLATFORM_VERSION", "Test requires system software version " },
            { "ERROR_UNKNOWN", "The  module cannot fulfill the test at this time" },
            { "ERROR_CUSTOM_FATAL", "" },
            { "ERROR_CUSTOM_NONFATAL", "" },
            { "ERROR_CUSTOM_FATAL^", "" },
            { "ERROR_CONFIGURATION_FILE", "Missing configuration file " },
            { "ERROR_INVALID_TEST_CONFIGURATION", "Invalid test configuration " },
        });
    }

    void missingParameterCountsAsEmpty()
    {
        QTEST(displayString(QString::fromLatin1(QTest::currentDataTag())), "message");
    }

    void moreParametersThanTheMessageTakesAreIgnored_data()
    {
        addMessages({
            { "ERROR_POWER^a^b", "Insufficient Power. Turn off a running application" },
            { "ERROR_OPTION^a^b", "Missing option a" },
            { "ERROR_SOLUTION_VERSION^a^b^c", "Test requires version a on b module" },
            { "ERROR_CUSTOM_FATAL^first^second", "first" },
            { "ERROR_CUSTOM_NONFATAL^first^second^third", "first" },
        });
    }

    void moreParametersThanTheMessageTakesAreIgnored()
    {
        QTEST(displayString(QString::fromLatin1(QTest::currentDataTag())), "message");
    }

    void parametersAreFilledInOneAfterTheOther()
    {
        // A first parameter that looks like a place is one for the second.
        QCOMPARE(displayString(QStringLiteral("ERROR_SOLUTION_VERSION^%1^OTDR")),
            QStringLiteral("Test requires version OTDR on %2 module"));
    }

    void parameterOfAnyLanguageIsKept()
    {
        QCOMPARE(displayString(QStringLiteral("ERROR_OPTION^größe 日本")), QStringLiteral("Missing option größe 日本"));
    }

    void statusWithAnUnknownCodeReadsAsItStands_data()
    {
        QTest::addColumn<QString>("status");
        QTest::newRow("empty") << QString();
        QTest::newRow("unknown") << QStringLiteral("ERROR_OF_TOMORROW");
        QTest::newRow("unknown with parameters") << QStringLiteral("ERROR_OF_TOMORROW^a^^b");
        QTest::newRow("small letters") << QStringLiteral("error_power");
        QTest::newRow("small letters with a parameter") << QStringLiteral("Error_Option^x");
        QTest::newRow("blank behind the code") << QStringLiteral("ERROR_POWER ^x");
        QTest::newRow("longer than a code") << QStringLiteral("ERROR_POWER2");
        QTest::newRow("separators alone") << QStringLiteral("^^");
        QTest::newRow("a code as a parameter") << QStringLiteral("^ERROR_POWER");
        QTest::newRow("a sentence") << QStringLiteral("100% of %1 went wrong");
    }

    void statusWithAnUnknownCodeReadsAsItStands()
    {
        QFETCH(QString, status);
        QCOMPARE(displayString(status), status);
    }

    // The constants.

    void constantHoldsItsName()
    {
        const QString constants[] = { ErrorMessageHelper::ERROR_OPTION, ErrorMessageHelper::ERROR_POWER,
            ErrorMessageHelper::ERROR_MODULE, ErrorMessageHelper::ERROR_SOLUTION_VERSION,
            ErrorMessageHelper::ERROR_PLATFORM_VERSION, ErrorMessageHelper::ERROR_REQUIRES_FIELDMATE,
            ErrorMessageHelper::ERROR_CAN_LAUNCH_FAILED_TO_RUN, ErrorMessageHelper::ERROR_TEST_NOT_FOUND,
            ErrorMessageHelper::ERROR_INVALID_LAUNCH_PARAMETERS, ErrorMessageHelper::ERROR_UNKNOWN,
            ErrorMessageHelper::ERROR_CUSTOM_NONFATAL, ErrorMessageHelper::ERROR_CUSTOM_FATAL,
            ErrorMessageHelper::ERROR_CONFIGURATION_FILE, ErrorMessageHelper::ERROR_INVALID_TEST_CONFIGURATION };
        for (std::size_t i = 0; i < std::size(codes); ++i) {
            QCOMPARE(constants[i], QString::fromLatin1(codes[i]));
        }
    }

    // The severity.

    void everyCodeHasASeverityFromTheStart()
    {
        QStringList expected;
        for (const char* const code : codes) {
            expected.append(QString::fromLatin1(code));
        }
        expected.sort();
        QCOMPARE(QStringList(m_severitiesAtTheStart.keys()), expected);
    }

    void severityIsAlwaysWritten_data()
    {
        QTest::addColumn<QString>("status");
        for (const char* const code : codes) {
            QTest::newRow(code) << QString::fromLatin1(code) + QStringLiteral("^x");
        }
        QTest::newRow("unknown") << QStringLiteral("ERROR_OF_TODAY^x");
        QTest::newRow("empty") << QString();
    }

    void severityIsAlwaysWritten()
    {
        QFETCH(QString, status);
        int severity = 77;
        ErrorMessageHelper::errorCodeToDisplayString(status, severity);
        QCOMPARE(severity, 0);
    }

    void unknownCodeJoinsTheSeveritiesOnce_data()
    {
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("code");
        QTest::newRow("with parameters") << QStringLiteral("NEW_CODE^a^b") << QStringLiteral("NEW_CODE");
        QTest::newRow("alone") << QStringLiteral("OTHER_CODE") << QStringLiteral("OTHER_CODE");
        QTest::newRow("nothing before the separator") << QStringLiteral("^a") << QString();
    }

    void unknownCodeJoinsTheSeveritiesOnce()
    {
        QFETCH(QString, status);
        QFETCH(QString, code);
        displayString(status);
        QVERIFY(ErrorMessageHelper::severities().contains(code));
        QCOMPARE(ErrorMessageHelper::severities().value(code, 77), 0);
        const int size = ErrorMessageHelper::severities().size();
        displayString(status);
        QCOMPARE(ErrorMessageHelper::severities().size(), size);
    }

    void knownCodeAddsNoSeverity()
    {
        const int size = ErrorMessageHelper::severities().size();
        displayString(QStringLiteral("ERROR_POWER^x"));
        QCOMPARE(ErrorMessageHelper::severities().size(), size);
    }

    // The language.

    void messageIsTranslatedOnceInTheContextOfQObject_data()
    {
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("message");
        const auto row = [](const char* status, const char* text, const char* message) {
            QTest::newRow(status) << QString::fromLatin1(status) << QString::fromLatin1(text)
                                  << QString::fromLatin1(message);
        };
        row("ERROR_OPTION^x", "Missing option %1", "anders: Missing option x");
        row("ERROR_POWER", "Insufficient Power. Turn off a running application",
            "anders: Insufficient Power. Turn off a running application");
        row("ERROR_MODULE^x", "Test requires %1 module. Ensure the module is properly attached",
            "anders: Test requires x module. Ensure the module is properly attached");
        row("ERROR_SOLUTION_VERSION^x^y", "Test requires version %1 on %2 module",
            "anders: Test requires version x on y module");
        row("ERROR_PLATFORM_VERSION^x", "Test requires system software version %1",
            "anders: Test requires system software version x");
        row("ERROR_REQUIRES_FIELDMATE", "Use Velmora Fieldmate to complete test",
            "anders: Use Velmora Fieldmate to complete test");
        row("ERROR_CAN_LAUNCH_FAILED_TO_RUN", "Test failed to run", "anders: Test failed to run");
        row("ERROR_TEST_NOT_FOUND", "Test not available on this device", "anders: Test not available on this device");
        row("ERROR_INVALID_LAUNCH_PARAMETERS", "Test not available on this device",
            "anders: Test not available on this device");
        row("ERROR_UNKNOWN^x", "The %1 module cannot fulfill the test at this time",
            "anders: The x module cannot fulfill the test at this time");
        row("ERROR_CONFIGURATION_FILE^x", "Missing configuration file %1", "anders: Missing configuration file x");
        row("ERROR_INVALID_TEST_CONFIGURATION^x", "Invalid test configuration %1",
            "anders: Invalid test configuration x");
    }

    void messageIsTranslatedOnceInTheContextOfQObject()
    {
        QFETCH(QString, status);
        QFETCH(QString, text);
        OtherWords translator;
        QTEST(displayString(status), "message");
        QCOMPARE(translator.takeAsked(), QStringList{ QStringLiteral("QObject, %1, none, -1").arg(text) });
    }

    void whatTheServiceWordsItselfIsNotTranslated_data()
    {
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("message");
        QTest::newRow("fatal") << QStringLiteral("ERROR_CUSTOM_FATAL^Test failed to run")
                               << QStringLiteral("Test failed to run");
        QTest::newRow("not fatal") << QStringLiteral("ERROR_CUSTOM_NONFATAL^Test failed to run")
                                   << QStringLiteral("Test failed to run");
        QTest::newRow("unknown") << QStringLiteral("Test failed to run") << QStringLiteral("Test failed to run");
        QTest::newRow("empty") << QString() << QString();
    }

    void whatTheServiceWordsItselfIsNotTranslated()
    {
        QFETCH(QString, status);
        OtherWords translator;
        QTEST(displayString(status), "message");
        QCOMPARE(translator.takeAsked(), QStringList());
    }

    void messageIsInTheLanguageOfItsMoment()
    {
        QString before;
        {
            const OtherWords translator;
            before = displayString(QStringLiteral("ERROR_POWER"));
        }
        QCOMPARE(before, QStringLiteral("anders: Insufficient Power. Turn off a running application"));
        QCOMPARE(displayString(QStringLiteral("ERROR_POWER")),
            QStringLiteral("Insufficient Power. Turn off a running application"));
    }

private:
    QMap<QString, int> m_severitiesAtTheStart;
    std::unique_ptr<MessageCollector> m_messages;
};

QTEST_GUILESS_MAIN(ErrorMessageHelperTest)
#include "ErrorMessageHelperTest.moc"
