#include "api/rest/RestApiPort.h"

#include <QtTest>

using namespace jobmanager_ui;

class RestApiPortTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void portFromText_data();
    void portFromText();
};

void RestApiPortTest::portFromText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("port");
    QTest::newRow("empty") << QString() << 8082;
    QTest::newRow("decimal") << QStringLiteral("8123") << 8123;
    QTest::newRow("smallest") << QStringLiteral("0") << 0;
    QTest::newRow("largest") << QStringLiteral("65535") << 65535;
    QTest::newRow("beyond 16 bits") << QStringLiteral("65536") << 8082;
    QTest::newRow("leading 0 is decimal too") << QStringLiteral("0100") << 100;
    QTest::newRow("hexadecimal") << QStringLiteral("0x10") << 8082;
    QTest::newRow("negative") << QStringLiteral("-1") << 8082;
    QTest::newRow("fraction") << QStringLiteral("80.5") << 8082;
    QTest::newRow("number, then text") << QStringLiteral("8083/tcp") << 8082;
    QTest::newRow("text") << QStringLiteral("http") << 8082;
}

void RestApiPortTest::portFromText()
{
    QFETCH(QString, text);
    QTEST(static_cast<int>(restApiPortFromText(text)), "port");
}

QTEST_GUILESS_MAIN(RestApiPortTest)
#include "RestApiPortTest.moc"
