#include <QCommandLineParser>
#include <QDir>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlComponent>

#include <atomic>
#include <memory>

namespace {

constexpr int wrongUsage = 2;

struct Options
{
    int port = 0;
    QString screenshotFolder;
    QStringList importPaths;
};

std::atomic<int> warnings{ 0 };
QtMessageHandler previousHandler = nullptr;

void countWarnings(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtWarningMsg || type == QtCriticalMsg || type == QtFatalMsg) {
        ++warnings;
    }
    previousHandler(type, context, text);
}

/// Reads the command line; ends the program with a message if it is wrong.
Options readOptions(const QGuiApplication& application)
{
    const QCommandLineOption port(
        QStringLiteral("port"), QStringLiteral("Port of the job service (default 8082)."), QStringLiteral("port"));
    const QCommandLineOption screenshots(QStringLiteral("screenshots"),
        QStringLiteral("Go through all screens without a hand, leave a picture of each in this folder, and end: with "
                       "exit code 0 if everything expected appeared and nothing was warned of."),
        QStringLiteral("folder"));
    const QCommandLineOption importPath(QStringLiteral("I"),
        QStringLiteral("Look for the QML module below this folder; may be repeated."), QStringLiteral("folder"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("A front end for the job service of an instrument."));
    parser.addHelpOption();
    parser.addOptions({ port, screenshots, importPath });
    parser.process(application);

    Options options;
    if (parser.isSet(port)) {
        bool isNumber = false;
        options.port = parser.value(port).toInt(&isNumber);
        if (!isNumber || options.port < 1 || options.port > 65535) {
            qCritical("--port takes a number from 1 to 65535");
            ::exit(wrongUsage);
        }
    }
    if (parser.isSet(screenshots)) {
        options.screenshotFolder = QDir(parser.value(screenshots)).absolutePath();
    }
    options.importPaths = parser.values(importPath);
    return options;
}

/// Makes the object that goes through the screens of the engine's window. Null, after a message, if that fails.
std::unique_ptr<QObject> startSelfDrive(QQmlApplicationEngine& engine, const QString& folder)
{
    if (!QDir().mkpath(folder)) {
        qCritical("The folder %s cannot be made", qUtf8Printable(folder));
        return nullptr;
    }
    QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/qml/SelfDrive.qml")));
    std::unique_ptr<QObject> driver(component.createWithInitialProperties(
        { { QStringLiteral("window"), QVariant::fromValue(engine.rootObjects().constFirst()) },
            { QStringLiteral("folder"), folder } }));
    if (!driver) {
        qCritical("%s", qUtf8Printable(component.errorString()));
    }
    return driver;
}

/// Opens the window and runs the event loop; returns the program's exit code.
int run(const Options& options)
{
    QQmlApplicationEngine engine;
    for (const QString& path : options.importPaths) {
        engine.addImportPath(path);
    }
    engine.setInitialProperties({ { QStringLiteral("servicePort"), options.port } });
    engine.load(QUrl(QStringLiteral("qrc:/qml/Main.qml")));
    if (engine.rootObjects().isEmpty()) {
        return EXIT_FAILURE;
    }
    std::unique_ptr<QObject> driver;
    if (!options.screenshotFolder.isEmpty()) {
        driver = startSelfDrive(engine, options.screenshotFolder);
        if (!driver) {
            return EXIT_FAILURE;
        }
    }
    return QGuiApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    QGuiApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    const QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("jobmanager-demo"));
    const Options options = readOptions(application);

    previousHandler = qInstallMessageHandler(&countWarnings);
    const int result = run(options);
    // What was warned of while the engine ended counts as well.
    if (!options.screenshotFolder.isEmpty() && result == EXIT_SUCCESS && warnings > 0) {
        qCritical("%d warnings, where none are allowed", warnings.load());
        return EXIT_FAILURE;
    }
    return result;
}
