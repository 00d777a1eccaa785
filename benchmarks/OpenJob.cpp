#include "benchmarks/OpenJob.h"

#include "tests/end_to_end/Bounds.h"
#include "tests/support/HttpRequest.h"

#include <QDateTime>
#include <QEventLoop>
#include <QQmlComponent>
#include <QQuickWindow>
#include <QTimer>

namespace {

/// For waits whose length is of no matter, in milliseconds.
constexpr int patience = 60000;
/// What an update needs to come to rest everywhere, in milliseconds.
constexpr int rest = 100;
/// How far a fast flick goes within one frame, in pixels.
constexpr double flickStep = 60;

std::unique_ptr<QObject> load(QQmlEngine& engine, const char* file, const QVariantMap& properties)
{
    QQmlComponent component(&engine, QUrl::fromLocalFile(QStringLiteral(JOBMANAGER_SOURCES) + QLatin1String(file)));
    std::unique_ptr<QObject> object(component.createWithInitialProperties(properties));
    if (!object)
        qFatal("%s", qPrintable(component.errorString()));
    return object;
}

} // namespace

OpenJob::OpenJob(WatchedApplication& application, Kind kind) : m_application(application)
{
    doUntil(
        "the jobs", [] {}, [this] { return m_frontEnd.jobs()->rowCount() > 0; });
    const QStringList ids = FrontEnd::ids(m_frontEnd.jobs());
    m_jobID = ids.filter(QStringLiteral("GEN-")).constFirst();
    m_job = m_frontEnd.job(m_jobID);
    open(kind);
    m_rebuilds = std::make_unique<QSignalSpy>(m_frontEnd.manager(), SIGNAL(modelReset()));
    m_reloads = std::make_unique<QSignalSpy>(list(), SIGNAL(modelReset()));
    m_announcements = std::make_unique<QSignalSpy>(m_job, SIGNAL(newTestResultsReceived()));
}

OpenJob::~OpenJob() = default;

void OpenJob::open(Kind kind)
{
    if (kind == InTheDemo) {
        m_root = load(m_frontEnd.engine(), "/demo/qml/Main.qml", {});
        turnFor(10 * rest);
    }
    m_application.forgetHolds();
    doUntil(
        "the tests of the job", [=] { openPage(kind); }, [this] { return atRest(); });
    turnFor(rest);
    m_opening = m_application.longestHold();
}

void OpenJob::openPage(Kind kind)
{
    if (kind == InTheDemo) {
        const int immediately = 0;
        QMetaObject::invokeMethod(m_root.get(), "showJob", Q_ARG(QVariant, m_jobID),
            Q_ARG(QVariant, QVariant::fromValue(m_job)), Q_ARG(QVariant, immediately));
        m_page = m_root->property("pages").value<QObject*>()->property("currentItem").value<QObject*>();
    } else {
        m_root = load(
            m_frontEnd.engine(), "/benchmarks/OpenJob.qml", { { QStringLiteral("job"), QVariant::fromValue(m_job) } });
        m_page = m_root.get();
    }
    m_feed = m_page->property("feed").value<QObject*>();
}

QAbstractItemModel* OpenJob::list() const
{
    return m_feed->property("list").value<QAbstractItemModel*>();
}

bool OpenJob::atRest() const
{
    return m_feed->property("readable").toBool();
}

void OpenJob::doUntil(const char* what, const std::function<void()>& act, const std::function<bool()>& condition)
{
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (condition())
            loop.quit();
    });
    QTimer::singleShot(0, &loop, [&] {
        act();
        look.start(2);
    });
    QTimer::singleShot(patience, &loop, [what] { qFatal("did not come about: %s", what); });
    loop.exec();
}

void OpenJob::turnFor(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

std::vector<OpenJob::Update> OpenJob::updates()
{
    const auto reloaded = [this] { return !m_reloads->isEmpty(); };
    return {
        { "full update", [this](int) { updateAll(true); }, reloaded },
        { "partial update", [this](int) { updateAll(false); }, reloaded },
        { "new result", [this](int round) { sendResult(round); },
            [this] { return wasAccepted() && !m_announcements->isEmpty(); } },
        { "job that comes or goes", [this](int) { sendJob(); },
            [=] { return wasAccepted() && !m_rebuilds->isEmpty() && reloaded(); } },
    };
}

std::vector<OpenJob::Update> OpenJob::acts()
{
    const auto reset = [this] { return !m_reloads->isEmpty(); };
    return {
        { "search",
            [this](int round) {
                setOnPage("searchText", round % 2 == 0 ? QStringLiteral("port") : QStringLiteral("port 1"));
            },
            reset },
        { "end of a search",
            [this](int round) { setOnPage("searchText", round % 2 == 0 ? QString() : QStringLiteral("~")); }, reset },
        { "filter", [this](int round) { setOnPage("filter", round % 2 == 0 ? 1 : 2); }, reset },
        { "end of a filter", [this](int round) { setOnPage("filter", round % 2 == 0 ? 0 : 1); }, reset },
        { "regrouping",
            [this](int) {
                forget();
                const int current = m_frontEnd.manager()->property("groupType").toInt();
                QMetaObject::invokeMethod(m_feed, "group", Q_ARG(QVariant, current % 3 + 1));
            },
            reset },
    };
}

std::vector<WatchedApplication::Longest> OpenJob::measure(const Update& update, int rounds)
{
    std::vector<WatchedApplication::Longest> longest;
    for (int round = 0; round < rounds; ++round) {
        m_application.forgetHolds();
        doUntil(
            update.name, [&] { update.begin(round); }, [&] { return update.isOver() && atRest(); });
        turnFor(rest);
        longest.push_back(m_application.longestHold());
    }
    return longest;
}

std::vector<WatchedApplication::Longest> OpenJob::flick(int frames)
{
    const auto* const window = qobject_cast<QQuickWindow*>(m_root.get());
    auto* const flickable = m_page->property("tests").value<QObject*>()->property("flickable").value<QObject*>();
    std::vector<WatchedApplication::Longest> holds;
    for (int frame = 1; frame <= frames; ++frame) {
        bool painted = false;
        const auto connection = QObject::connect(window, &QQuickWindow::frameSwapped, [&painted] { painted = true; });
        m_application.forgetHolds();
        doUntil(
            "a frame", [=] { flickable->setProperty("contentY", frame * flickStep); }, [&] { return painted; });
        QObject::disconnect(connection);
        holds.push_back(m_application.longestHold());
    }
    return holds;
}

void OpenJob::forget()
{
    m_rebuilds->clear();
    m_reloads->clear();
    m_announcements->clear();
}

void OpenJob::updateAll(bool full)
{
    forget();
    QMetaObject::invokeMethod(m_frontEnd.manager(), "updateDataFromAPI", Q_ARG(bool, full));
}

void OpenJob::setOnPage(const char* property, const QVariant& value)
{
    forget();
    m_feed->setProperty(property, value);
}

void OpenJob::sendResult(int round)
{
    forget();
    const QAbstractItemModel* const tests = list();
    const int row = tests->rowCount() / 2;
    const auto* const test =
        tests->index(row, 0).data(tests->roleNames().key(QByteArrayLiteral("test"))).value<QObject*>();
    const int location = test->property("locationIndex").toInt();
    const QString uiIndex =
        test->property("testIndex").toString() + (location < 0 ? QString() : QStringLiteral("_%1").arg(location));
    send("PUT", "/jobs/" + m_jobID.toStdString() + "/tests/" + uiIndex.toStdString() + "/results",
        R"({"status": "run )" + std::to_string(round) + R"(", "time": ")"
            + QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs).toStdString() + R"("})");
}

void OpenJob::sendJob()
{
    forget();
    if (m_frontEnd.job(QStringLiteral("COMES")) == nullptr) {
        send("POST", "/jobs",
            R"({"workOrderNo": "COMES", "techId": "T-100", "templateName": "", "locationsFilename": "", )"
            R"("syncToNimbrel": false})");
    } else {
        send("DELETE", "/jobs/COMES", {});
    }
}

void OpenJob::send(const std::string& method, const std::string& path, const std::string& body)
{
    m_answer = std::async(std::launch::async,
        [=] { return jobmanager_test::httpRequest(modulePort, method, "/api/v1" + path, body).status; });
}

bool OpenJob::wasAccepted()
{
    if (!m_answer.valid())
        return true;
    if (m_answer.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        return false;
    const int status = m_answer.get();
    if (status < 200 || status > 299)
        qFatal("the job service answered %d", status);
    return true;
}
