#include "core/JobManager.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/RecordingApi.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

/// Why this process has no mounts of its own; empty if it has.
std::string mountRefusal;

/// What setLanguage said and gave before there was an application object.
struct WithoutApplication
{
    bool result = true;
    QStringList messages;
    int translators = 0;
} withoutApplication;

QString catalogueFolder()
{
    return QStringLiteral("/usr/share/translations");
}

int translatorsOf(const QObject& manager)
{
    return manager.findChildren<QTranslator*>().size();
}

QString localeMessage(const QString& locale)
{
    return QStringLiteral("warning: jobmanager-ui: Using this locale for the language:  %1").arg(locale);
}

const QString lookingMessage =
    QStringLiteral("warning: jobmanager-ui: Looking for translations in  /usr/share/translations");

/// One text of the launch messages, in this catalogue, and one of the screens'.
void writeCatalogue(const QString& folder, const QString& language, const QString& translation)
{
    const QString source = QStringLiteral(R"(<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS><TS version="2.1" language="%1">
<context><name>QObject</name><message><source>Test failed to run</source><translation>%2</translation></message></context>
<context><name>Screen</name><message><source>Jobs</source><translation>%2</translation></message></context>
</TS>)")
                               .arg(language, translation);
    QFile file(folder + QStringLiteral("/source.ts"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(source.toUtf8());
    file.close();
    QCOMPARE(QProcess::execute(QStringLiteral(JOBMANAGER_LRELEASE),
                 { QStringLiteral("-silent"), file.fileName(), QStringLiteral("-qm"),
                     folder + QStringLiteral("/jobmanager-ui_%1.qm").arg(language) }),
        0);
}

QString launchMessage()
{
    return QObject::tr("Test failed to run");
}

} // namespace

/// The language of the texts. Catalogues are looked for in a fixed folder, so this process mounts an empty file
/// system of its own above it and lays its catalogues there.
class LanguageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!mountRefusal.empty()) {
            QSKIP(("This machine permits no file system of one's own: " + mountRefusal).c_str());
        }
        m_share = std::make_unique<EmptyMount>("/usr/share");
        QVERIFY2(m_share->failure().empty(), m_share->failure().c_str());
        QVERIFY(QDir().mkpath(catalogueFolder()));
        writeCatalogue(catalogueFolder(), QStringLiteral("de"), QStringLiteral("deutsch"));
        writeCatalogue(catalogueFolder(), QStringLiteral("fr"), QStringLiteral("français"));
        writeCatalogue(catalogueFolder(), QStringLiteral("pt_BR"), QStringLiteral("português"));
    }

    void init()
    {
        m_messages = std::make_unique<MessageCollector>();
        m_manager = std::make_unique<JobManager>(std::make_shared<RecordingApi>(m_journal));
    }

    void cleanup()
    {
        m_manager.reset();
        m_messages.reset();
        QLocale::setDefault(QLocale::c());
    }

    void languageIsThatOfTheCode_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("text");
        QTest::newRow("a language") << QStringLiteral("de") << QStringLiteral("QLocale(German, Latin, Germany)")
                                    << QStringLiteral("deutsch");
        QTest::newRow("of a country") << QStringLiteral("pt_BR") << QStringLiteral("QLocale(Portuguese, Latin, Brazil)")
                                      << QStringLiteral("português");
        QTest::newRow("of a country without a catalogue of its own")
            << QStringLiteral("de_AT") << QStringLiteral("QLocale(German, Latin, Austria)")
            << QStringLiteral("deutsch");
    }

    void languageIsThatOfTheCode()
    {
        QFETCH(QString, code);
        QFETCH(QString, locale);
        QFETCH(QString, text);
        QVERIFY(m_manager->setLanguage(code));
        QCOMPARE(launchMessage(), text);
        QCOMPARE(m_messages->take(),
            (QStringList{ localeMessage(locale), lookingMessage,
                QStringLiteral("warning: jobmanager-ui: Could not fetch qml context") }));
    }

    void emptyCodeIsTheSystemsLanguage()
    {
        QLocale::setDefault(QLocale(QStringLiteral("fr")));
        QVERIFY(m_manager->setLanguage(QString()));
        QCOMPARE(launchMessage(), QStringLiteral("français"));
    }

    void languageIsInvokable()
    {
        bool result = false;
        QVERIFY(QMetaObject::invokeMethod(
            m_manager.get(), "setLanguage", Q_RETURN_ARG(bool, result), Q_ARG(QString, QStringLiteral("de"))));
        QVERIFY(result);
    }

    void languageWithoutACatalogueLeavesTheOldOne()
    {
        QVERIFY(m_manager->setLanguage(QStringLiteral("de")));
        m_messages->take();
        QVERIFY(!m_manager->setLanguage(QStringLiteral("fi")));
        QCOMPARE(launchMessage(), QStringLiteral("deutsch"));
        QCOMPARE(m_messages->take(),
            (QStringList{ localeMessage(QStringLiteral("QLocale(Finnish, Latin, Finland)")), lookingMessage,
                QStringLiteral("warning: jobmanager-ui: Could not load translation for the specified language") }));
    }

    void translatorThatFailedToLoadStaysUntilTheManagerEnds()
    {
        QVERIFY(!m_manager->setLanguage(QStringLiteral("fi")));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(translatorsOf(*m_manager), 1);
    }

    void sameLanguageAgainReplacesTheTranslator()
    {
        QVERIFY(m_manager->setLanguage(QStringLiteral("de")));
        const QPointer<QTranslator> first = m_manager->findChild<QTranslator*>();
        QVERIFY(m_manager->setLanguage(QStringLiteral("de")));
        QCOMPARE(translatorsOf(*m_manager), 2);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(first.isNull());
        QCOMPARE(translatorsOf(*m_manager), 1);
        QCOMPARE(launchMessage(), QStringLiteral("deutsch"));
    }

    void oldTranslatorIsOutOfUseAtOnce()
    {
        QVERIFY(m_manager->setLanguage(QStringLiteral("de")));
        QVERIFY(m_manager->setLanguage(QStringLiteral("fr")));
        QCOMPARE(launchMessage(), QStringLiteral("français"));
    }

    void languageEndsWithTheManager()
    {
        QVERIFY(m_manager->setLanguage(QStringLiteral("de")));
        m_manager.reset();
        QCOMPARE(launchMessage(), QStringLiteral("Test failed to run"));
    }

    void textsOnTheScreenFollow()
    {
        QQmlEngine engine;
        QQmlEngine::setContextForObject(m_manager.get(), engine.rootContext());
        QQmlComponent component(&engine);
        component.setData("import QtQml 2.15\nQtObject { property string text: qsTr('Jobs') }",
            QUrl(QStringLiteral("file:///Screen.qml")));
        const std::unique_ptr<QObject> screen(component.create());
        QVERIFY2(screen != nullptr, qPrintable(component.errorString()));
        QCOMPARE(screen->property("text").toString(), QStringLiteral("Jobs"));
        m_messages->take();
        QVERIFY(m_manager->setLanguage(QStringLiteral("de")));
        QCOMPARE(screen->property("text").toString(), QStringLiteral("deutsch"));
        QCOMPARE(m_messages->take().last(), QStringLiteral("warning: jobmanager-ui: Retranslating"));
    }

    void contextWithoutAnEngineStillHasTheTranslatorInstalled()
    {
        auto engine = std::make_unique<QQmlEngine>();
        QQmlContext context(engine->rootContext());
        QQmlEngine::setContextForObject(m_manager.get(), &context);
        engine.reset();
        m_messages->take();
        QVERIFY(m_manager->setLanguage(QStringLiteral("de")));
        QCOMPARE(launchMessage(), QStringLiteral("deutsch"));
        QCOMPARE(
            m_messages->take().last(), QStringLiteral("warning: jobmanager-ui: Could not fetch context qml engine"));
    }

    void withoutAnApplicationNothingIsInstalled()
    {
        QVERIFY(!withoutApplication.result);
        QCOMPARE(withoutApplication.messages.last(),
            QStringLiteral("warning: jobmanager-ui: No QCoreApplication::instance found!"));
        QCOMPARE(withoutApplication.translators, 1);
    }

private:
    std::unique_ptr<EmptyMount> m_share;
    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::unique_ptr<JobManager> m_manager;
};

namespace {

/// Where a program that has no application object yet finds a catalogue. The catalogue has no text: an empty one loads.
void tryWithoutApplication()
{
    const EmptyMount share("/usr/share");
    if (!share.failure().empty() || !QDir().mkpath(catalogueFolder())) {
        return;
    }
    // The smallest catalogue: the mark that every one begins with.
    const char mark[] = "\x3c\xb8\x64\x18\xca\xef\x9c\x95\xcd\x21\x1c\xbf\x60\xa1\xbd\xdd";
    QFile file(catalogueFolder() + QStringLiteral("/jobmanager-ui_de.qm"));
    if (!file.open(QIODevice::WriteOnly)) {
        return;
    }
    file.write(mark, 16);
    file.close();
    MessageCollector messages;
    Journal journal;
    JobManager manager(std::make_shared<RecordingApi>(journal));
    withoutApplication.result = manager.setLanguage(QStringLiteral("de"));
    withoutApplication.messages = messages.take();
    withoutApplication.translators = translatorsOf(manager);
}

} // namespace

int main(int argc, char* argv[])
{
    mountRefusal = enterPrivateMounts();
    if (mountRefusal.empty()) {
        tryWithoutApplication();
    }
    QCoreApplication application(argc, argv);
    LanguageTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "LanguageTest.moc"
