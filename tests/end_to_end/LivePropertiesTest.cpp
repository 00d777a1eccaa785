#include "tests/end_to_end/Bounds.h"
#include "tests/end_to_end/EndToEndMain.h"
#include "tests/end_to_end/FrontEnd.h"
#include "tests/end_to_end/JobServiceClient.h"
#include "tests/end_to_end/ServiceRelay.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/ServiceProcess.h"

#include <malloc.h>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using jobmanager_test::MessageCollector;
using jobmanager_test::ServiceProcess;

namespace {

/// For waits whose length is of no matter.
int aWhile()
{
    return stretched(10000);
}

/// Attributes of every kind.
const QByteArray attributes = R"json({
    "accessCode": {"label": "Access code", "value": "4711#", "valueType": "string", "regExp": "[0-9]{4}#",
        "editable": true, "visible": true, "orderIndex": 1},
    "segmentLength": {"label": "Segment length (km)", "value": "23.4", "valueType": "double",
        "regExp": "[0-9]+(\\.[0-9]+)?", "editable": "true", "orderIndex": 2},
    "fibres": {"label": "Fibres in cable", "value": "144", "valueType": "number", "editable": false, "orderIndex": 3},
    "nightWork": {"label": "Night work", "value": "false", "valueType": "boolean", "validValues": ["unknown"],
        "editable": true, "orderIndex": 4},
    "priority": {"label": "Priority", "value": "high", "validValues": ["low", "normal", "high"], "editable": true,
        "orderIndex": 5},
    "billingKey": {"label": "Billing key", "value": "K-99-120", "visible": false, "orderIndex": 99}
})json";

/// The sample job that has them in each test.
const QString jobId = QStringLiteral("WO-2026-004711");
const QString accessCode = QStringLiteral("attributes/accessCode");
const QString segmentLength = QStringLiteral("attributes/segmentLength");
const QString priority = QStringLiteral("attributes/priority");
const QString contractorId = QStringLiteral("contractorId");

const std::string countRoute = "GET /api/v1/change-count";
const std::string updateRoute = "PATCH /api/v1/jobs/" + jobId.toStdString();

/// A page with the form of a job: what it shows follows the job, what is typed goes into the map.
const QByteArray formPage = R"(
    import QtQml 2.15
    import JobManagerUi 1.0
    QtObject {
        id: page
        property QtObject job
        readonly property QtObject values: job ? job.optionalProperties : null
        readonly property var rows: job ? job.allDisplayableJobProperties : []
        readonly property var infos: job ? job.jobPropertyDisplayInfos : ({})
        readonly property int required: job ? job.totalNumberOfRequiredAttributes : -1
        readonly property int open: job ? job.numberOfIncompleteRequiredAttributes : -1
        readonly property string priority: values ? values["attributes/priority"] || "" : ""
        property var outcomes: []
        property Connections edits: Connections {
            target: page.job
            function onOptionalPropertyValueChanged(valueAccepted) {
                page.outcomes = page.outcomes.concat([valueAccepted])
            }
        }
        function edit(name, value) { values[name] = value }
        function shown(name) { return values ? values[name] : undefined }
        function accepts(name, text) { return infos[name].regex.test(text) }
    })";

/// A page with the properties of one test of a job.
const QByteArray testPage = R"(
    import QtQml 2.15
    import JobManagerUi 1.0
    QtObject {
        property QtObject job
        readonly property QtObject list: job ? job.tests : null
        property QtObject test
        readonly property QtObject values: test ? test.optionalProperties : null
        function open(index) {
            for (let row = 0; row < list.rowCount() && !test; ++row) {
                const candidate = list.data(list.index(row, 0), TestList.Test)
                const location = candidate.locationIndex < 0 ? "" : "_" + candidate.locationIndex
                if (candidate.testIndex + location === index)
                    test = candidate
            }
        }
        function edit(name, value) { values[name] = value }
        function shown(name) { return values ? values[name] : undefined }
    })";

void edit(QObject& page, const QString& name, const QVariant& value)
{
    QMetaObject::invokeMethod(&page, "edit", Q_ARG(QVariant, name), Q_ARG(QVariant, value));
}

QString shown(QObject& page, const QString& name)
{
    QVariant value;
    QMetaObject::invokeMethod(&page, "shown", Q_RETURN_ARG(QVariant, value), Q_ARG(QVariant, name));
    return value.toString();
}

/// Whether the property's pattern, as QML has it, finds itself in the text.
bool accepts(QObject& page, const QString& name, const QString& text)
{
    QVariant result;
    QMetaObject::invokeMethod(
        &page, "accepts", Q_RETURN_ARG(QVariant, result), Q_ARG(QVariant, name), Q_ARG(QVariant, text));
    return result.toBool();
}

QObject* valuesOf(const QObject& page)
{
    return page.property("values").value<QObject*>();
}

QVariantList outcomes(const QObject& page)
{
    return page.property("outcomes").toList();
}

/// The bytes that this process has allocated and not given back.
std::size_t memoryInUse()
{
    return mallinfo2().uordblks;
}

} // namespace

/// The properties of a job in the real module and a real QML engine, over the real client and the real service.
class LivePropertiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void formShowsWhatTheServiceKnows();
    void acceptedEditIsOneRequestOneStepAndNoRebuild();
    void twoFieldsEditedAtOnceAreBothStoredAndRebuildNothing();
    void editsOfTwoFrontsMeetAtTheService();
    void refusedEditIsToldAndTheStoredValueShowsAfterAnUpdate_data();
    void refusedEditIsToldAndTheStoredValueShowsAfterAnUpdate();
    void editThatTheServiceAltersMovesTheCountByTwoAndItsTrueValueShows_data();
    void editThatTheServiceAltersMovesTheCountByTwoAndItsTrueValueShows();
    void delayedEditIsTakenAndRebuildsNothing();
    void editWhoseAnswerComesTooLateShowsWhatBecameOfIt();
    void editWhileTheServiceIsDownIsNotTakenAndTheStoredValueStays();
    void jobUpdatedWhileItsFormIsOpenShowsTheNewValue();
    void filledFieldIsCountedAtTheNextUpdate();
    void technicianThatTheFrontEndDoesNotHoldYetShowsAfterTheNextUpdate();
    void propertiesOfATestAreReadOnly_data();
    void propertiesOfATestAreReadOnly();
    void tenThousandEditsLeaveNoMemoryBehind();

private:
    enum Way { Relayed, Direct };

    void startService(Way way = Relayed, const QByteArray& rules = {});
    std::unique_ptr<QObject> openForm(FrontEnd& frontEnd, const QString& id = jobId);
    void waitForPolls();
    QString stored(const QString& name, const QString& id = jobId) const;

    QTemporaryDir m_folder;
    std::unique_ptr<ServiceProcess> m_service;
    std::unique_ptr<ServiceRelay> m_relay;
    JobServiceClient m_client{ 0 };
};

void LivePropertiesTest::initTestCase()
{
    if (!networkRefusal().empty())
        QSKIP(("no network of its own, in which port 8082 is free: " + networkRefusal()).c_str());
}

void LivePropertiesTest::cleanup()
{
    m_relay.reset();
    m_service.reset();
    QLoggingCategory::setFilterRules(QString());
}

void LivePropertiesTest::startService(Way way, const QByteArray& rules)
{
    std::vector<std::string> arguments{ "--load", JOBMANAGER_SAMPLES };
    if (!rules.isEmpty()) {
        QFile file(m_folder.filePath(QStringLiteral("rules.json")));
        QVERIFY2(file.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(file.errorString()));
        file.write(rules);
        arguments.insert(arguments.end(), { "--attribute-rules", file.fileName().toStdString() });
    }
    m_service = std::make_unique<ServiceProcess>(arguments);
    if (way == Direct)
        m_service->setPort(modulePort);
    QVERIFY2(m_service->start(), m_service->log().c_str());
    if (way == Relayed)
        m_relay = std::make_unique<ServiceRelay>(m_service->port());
    m_client = JobServiceClient(m_service->port());
    m_client.setAttributes(jobId, QJsonDocument::fromJson(attributes).object());
}

/// The page of a job whose form is there. Null if it did not come, of which the running test is told.
std::unique_ptr<QObject> LivePropertiesTest::openForm(FrontEnd& frontEnd, const QString& id)
{
    if (!QTest::qWaitFor([&] { return frontEnd.job(id) != nullptr; }, aWhile())) {
        QTest::qFail("no job", __FILE__, __LINE__);
        return nullptr;
    }
    auto page = frontEnd.page(formPage, { { QStringLiteral("job"), QVariant::fromValue(frontEnd.job(id)) } });
    if (!QTest::qWaitFor([&] { return valuesOf(*page) != nullptr; }, aWhile())) {
        QTest::qFail("no form", __FILE__, __LINE__);
        return nullptr;
    }
    return page;
}

/// Returns when the front end has polled several times from now on.
void LivePropertiesTest::waitForPolls()
{
    const int before = m_relay->count(countRoute);
    QTRY_VERIFY_WITH_TIMEOUT(m_relay->count(countRoute) >= before + 3, aWhile());
}

/// What the service holds under the property's name.
QString LivePropertiesTest::stored(const QString& name, const QString& id) const
{
    const QJsonObject details = m_client.document(id).value(QLatin1String("details")).toObject();
    if (name == contractorId)
        return details.value(name).toString();
    if (name == QLatin1String("techId"))
        return details.value(QLatin1String("techInfo")).toObject().value(name).toString();
    const QJsonObject held = details.value(QLatin1String("jobManagerAttributes")).toObject();
    return held.value(name.section(QLatin1Char('/'), 1)).toObject().value(QLatin1String("value")).toString();
}

void LivePropertiesTest::formShowsWhatTheServiceKnows()
{
    startService();
    const MessageCollector messages;
    FrontEnd frontEnd;
    const auto page = openForm(frontEnd);
    QVERIFY(page);

    QCOMPARE(page->property("rows").toStringList(),
        (QStringList{ QStringLiteral("jobNumber"), QStringLiteral("customerName"), QStringLiteral("typeName"),
            contractorId, QStringLiteral("techId"), accessCode, segmentLength, QStringLiteral("attributes/fibres"),
            QStringLiteral("attributes/nightWork"), priority }));
    const QVariantMap infos = page->property("infos").toMap();
    const QVariantMap code = infos.value(accessCode).toMap();
    QCOMPARE(code.value(QStringLiteral("label")), QVariant(QStringLiteral("Access code")));
    QCOMPARE(code.value(QStringLiteral("editable")), QVariant(true));
    QVERIFY(accepts(*page, accessCode, QStringLiteral("1234#")));
    QVERIFY(!accepts(*page, accessCode, QStringLiteral("123#")));
    QCOMPARE(infos.value(segmentLength).toMap().value(QStringLiteral("type")), QVariant(1));
    QCOMPARE(
        infos.value(QStringLiteral("attributes/fibres")).toMap().value(QStringLiteral("editable")), QVariant(false));
    QCOMPARE(infos.value(QStringLiteral("attributes/nightWork")).toMap().value(QStringLiteral("validValues")),
        QVariant(QStringList{ QStringLiteral("true"), QStringLiteral("false"), QStringLiteral("unknown") }));
    QCOMPARE(shown(*page, accessCode), QStringLiteral("4711#"));
    QCOMPARE(shown(*page, QStringLiteral("techId")), QStringLiteral("T-1031"));
    QCOMPARE(shown(*page, QStringLiteral("attributes/billingKey")), QStringLiteral("K-99-120"));
    QCOMPARE(page->property("required").toInt(), 5);
    QCOMPARE(page->property("open").toInt(), 0);
    QCOMPARE(messages.messages().filter(QStringLiteral("warning: ")), QStringList());
}

void LivePropertiesTest::acceptedEditIsOneRequestOneStepAndNoRebuild()
{
    startService();
    FrontEnd frontEnd;
    const auto page = openForm(frontEnd);
    QVERIFY(page);
    const QPointer<QObject> values = valuesOf(*page);
    QSignalSpy resets(frontEnd.jobs(), &QAbstractItemModel::modelReset);
    QSignalSpy updated(frontEnd.manager(), SIGNAL(jobManagerUpdated()));
    const int count = m_client.changeCount();

    edit(*page, priority, QStringLiteral("low"));

    QCOMPARE(outcomes(*page), QVariantList{ true });
    QCOMPARE(m_relay->count(updateRoute), 1);
    QCOMPARE(m_client.changeCount(), count + 1);
    QCOMPARE(stored(priority), QStringLiteral("low"));
    waitForPolls();
    QCOMPARE(resets.count(), 0);
    QCOMPARE(updated.count(), 0);
    QCOMPARE(valuesOf(*page), values.data());
    QCOMPARE(page->property("priority").toString(), QStringLiteral("low"));
    QCOMPARE(m_relay->count(updateRoute), 1);
}

void LivePropertiesTest::twoFieldsEditedAtOnceAreBothStoredAndRebuildNothing()
{
    startService();
    FrontEnd frontEnd;
    const auto page = openForm(frontEnd);
    QVERIFY(page);
    QSignalSpy resets(frontEnd.jobs(), &QAbstractItemModel::modelReset);

    edit(*page, priority, QStringLiteral("normal"));
    edit(*page, contractorId, QStringLiteral("C-78"));

    QCOMPARE(outcomes(*page), (QVariantList{ true, true }));
    waitForPolls();
    QCOMPARE(resets.count(), 0);
    QCOMPARE(stored(priority), QStringLiteral("normal"));
    QCOMPARE(stored(contractorId), QStringLiteral("C-78"));
    QCOMPARE(shown(*page, priority), QStringLiteral("normal"));
    QCOMPARE(shown(*page, contractorId), QStringLiteral("C-78"));
}

void LivePropertiesTest::editsOfTwoFrontsMeetAtTheService()
{
    startService();
    FrontEnd frontEnd;
    const auto page = openForm(frontEnd);
    QVERIFY(page);

    // The other one is first, and this front has not seen it yet.
    m_client.writeAttribute(jobId, QStringLiteral("segmentLength"), QStringLiteral("24.5"));
    edit(*page, priority, QStringLiteral("normal"));

    QCOMPARE(outcomes(*page), QVariantList{ true });
    QTRY_COMPARE_WITH_TIMEOUT(shown(*page, segmentLength), QStringLiteral("24.5"), aWhile());
    QCOMPARE(shown(*page, priority), QStringLiteral("normal"));
    QCOMPARE(stored(priority), QStringLiteral("normal"));
    QCOMPARE(stored(segmentLength), QStringLiteral("24.5"));
}

void LivePropertiesTest::refusedEditIsToldAndTheStoredValueShowsAfterAnUpdate_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::newRow("by a rule") << contractorId << QStringLiteral("C-78");
    QTest::newRow("no such pattern") << accessCode << QStringLiteral("4711");
    QTest::newRow("no number") << segmentLength << QStringLiteral("far");
    QTest::newRow("no valid value") << priority << QStringLiteral("highest");
    QTest::newRow("not editable") << QStringLiteral("attributes/fibres") << QStringLiteral("12");
}

void LivePropertiesTest::refusedEditIsToldAndTheStoredValueShowsAfterAnUpdate()
{
    QFETCH(QString, name);
    QFETCH(QString, value);
    startService(Relayed, R"({"contractorId": {"refuse": "It is billed already."}})");
    FrontEnd frontEnd;
    const auto page = openForm(frontEnd);
    QVERIFY(page);
    const QString before = stored(name);
    const int count = m_client.changeCount();
    QSignalSpy resets(frontEnd.jobs(), &QAbstractItemModel::modelReset);

    edit(*page, name, value);

    QCOMPARE(outcomes(*page), QVariantList{ false });
    QCOMPARE(m_relay->count(updateRoute), 1);
    waitForPolls();
    QCOMPARE(m_client.changeCount(), count);
    QCOMPARE(resets.count(), 0);
    QCOMPARE(shown(*page, name), value);
    QMetaObject::invokeMethod(frontEnd.job(jobId), "updateDataFromAPI");
    QCOMPARE(shown(*page, name), before);
    QCOMPARE(stored(name), before);
}

void LivePropertiesTest::editThatTheServiceAltersMovesTheCountByTwoAndItsTrueValueShows_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("kept");
    QTest::newRow("trimmed") << accessCode << QStringLiteral(" 1234# ") << QStringLiteral("1234#");
    QTest::newRow("capitals") << contractorId << QStringLiteral("c-80") << QStringLiteral("C-80");
}

void LivePropertiesTest::editThatTheServiceAltersMovesTheCountByTwoAndItsTrueValueShows()
{
    QFETCH(QString, name);
    QFETCH(QString, value);
    QFETCH(QString, kept);
    startService(
        Relayed, R"({"jobManagerAttributes": {"accessCode": {"trim": true}}, "contractorId": {"upperCase": true}})");
    FrontEnd frontEnd;
    const auto page = openForm(frontEnd);
    QVERIFY(page);
    const int count = m_client.changeCount();
    QSignalSpy resets(frontEnd.jobs(), &QAbstractItemModel::modelReset);

    edit(*page, name, value);

    // What was typed is what the front end holds of it, until it has read the job again.
    QCOMPARE(outcomes(*page), QVariantList{ true });
    QCOMPARE(m_client.changeCount(), count + 2);
    QTRY_COMPARE_WITH_TIMEOUT(shown(*page, name), kept, aWhile());
    QCOMPARE(stored(name), kept);
    QVERIFY(resets.count() >= 1);
}

void LivePropertiesTest::delayedEditIsTakenAndRebuildsNothing()
{
    startService(Relayed, R"({"contractorId": {"delayMs": 700}})");
    FrontEnd frontEnd;
    const auto page = openForm(frontEnd);
    QVERIFY(page);
    QSignalSpy resets(frontEnd.jobs(), &QAbstractItemModel::modelReset);
    QElapsedTimer timer;
    timer.start();

    edit(*page, contractorId, QStringLiteral("C-81"));

    QVERIFY(timer.elapsed() >= 700);
    QCOMPARE(outcomes(*page), QVariantList{ true });
    QCOMPARE(stored(contractorId), QStringLiteral("C-81"));
    waitForPolls();
    QCOMPARE(resets.count(), 0);
    QCOMPARE(shown(*page, contractorId), QStringLiteral("C-81"));
}

void LivePropertiesTest::editWhoseAnswerComesTooLateShowsWhatBecameOfIt()
{
    startService();
    FrontEnd frontEnd;
    const auto page = openForm(frontEnd);
    QVERIFY(page);
    m_relay->hold(updateRoute);

    // The client gives up at its deadline, and does not know then what becomes of the edit.
    edit(*page, contractorId, QStringLiteral("C-82"));

    QCOMPARE(outcomes(*page), QVariantList{ false });
    QMetaObject::invokeMethod(frontEnd.job(jobId), "updateDataFromAPI");
    QCOMPARE(shown(*page, contractorId), QStringLiteral("C-77"));
    m_relay->release(updateRoute);
    QTRY_COMPARE_WITH_TIMEOUT(shown(*page, contractorId), QStringLiteral("C-82"), aWhile());
    QCOMPARE(stored(contractorId), QStringLiteral("C-82"));
}

void LivePropertiesTest::editWhileTheServiceIsDownIsNotTakenAndTheStoredValueStays()
{
    startService(Direct);
    FrontEnd frontEnd;
    const auto page = openForm(frontEnd);
    QVERIFY(page);
    m_service->kill();

    edit(*page, priority, QStringLiteral("low"));

    QCOMPARE(outcomes(*page), QVariantList{ false });
    QMetaObject::invokeMethod(frontEnd.job(jobId), "updateDataFromAPI");
    QCOMPARE(shown(*page, priority), QStringLiteral("high"));
    QVERIFY2(m_service->start(), m_service->log().c_str());
    QCOMPARE(stored(priority), QStringLiteral("high"));
    // The front end reads everything again once the service is back, and edits are taken again.
    QTRY_VERIFY_WITH_TIMEOUT(valuesOf(*page), aWhile());
    const auto editIsTaken = [&] {
        if (valuesOf(*page)) {
            edit(*page, priority, QStringLiteral("low"));
            edit(*page, priority, QStringLiteral("normal"));
        }
        return stored(priority) == QLatin1String("normal");
    };
    QVERIFY(QTest::qWaitFor(editIsTaken, aWhile()));
    QTRY_COMPARE_WITH_TIMEOUT(page->property("priority").toString(), QStringLiteral("normal"), aWhile());
}

void LivePropertiesTest::jobUpdatedWhileItsFormIsOpenShowsTheNewValue()
{
    startService();
    const MessageCollector messages;
    FrontEnd frontEnd;
    const auto page = openForm(frontEnd);
    QVERIFY(page);
    const QPointer<QObject> job = frontEnd.job(jobId);
    const QPointer<QObject> values = valuesOf(*page);

    m_client.writeAttribute(jobId, QStringLiteral("priority"), QStringLiteral("low"));

    QTRY_COMPARE_WITH_TIMEOUT(page->property("priority").toString(), QStringLiteral("low"), aWhile());
    QCOMPARE(frontEnd.job(jobId), job.data());
    QVERIFY(values.isNull());
    QCOMPARE(page->property("required").toInt(), 5);
    QCOMPARE(outcomes(*page), QVariantList());
    QCOMPARE(messages.messages().filter(QStringLiteral("warning: ")), QStringList());
}

void LivePropertiesTest::filledFieldIsCountedAtTheNextUpdate()
{
    startService();
    FrontEnd frontEnd;
    const auto page = openForm(frontEnd);
    QVERIFY(page);
    edit(*page, accessCode, QString());
    QCOMPARE(outcomes(*page), QVariantList{ true });
    QCOMPARE(page->property("open").toInt(), 0);

    m_client.createJob(QStringLiteral("ANOTHER"));
    QTRY_COMPARE_WITH_TIMEOUT(page->property("open").toInt(), 1, aWhile());

    edit(*page, accessCode, QStringLiteral("1234#"));
    QCOMPARE(page->property("open").toInt(), 1);
    m_client.deleteJob(QStringLiteral("ANOTHER"));
    QTRY_COMPARE_WITH_TIMEOUT(page->property("open").toInt(), 0, aWhile());
}

void LivePropertiesTest::technicianThatTheFrontEndDoesNotHoldYetShowsAfterTheNextUpdate()
{
    const QString bare = QStringLiteral("WO-2026-004801");
    const QString techId = QStringLiteral("techId");
    startService();
    QVERIFY(!m_client.document(bare).value(QLatin1String("details")).toObject().contains(QLatin1String("techInfo")));
    FrontEnd frontEnd;
    const auto page = openForm(frontEnd, bare);
    QVERIFY(page);
    const int count = m_client.changeCount();

    edit(*page, techId, QStringLiteral("T-7"));

    QCOMPARE(outcomes(*page), QVariantList{ false });
    QCOMPARE(stored(techId, bare), QStringLiteral("T-7"));
    QCOMPARE(m_client.changeCount(), count + 1);
    // The front end holds no record of a technician to put it into before it has read the job again.
    const QPointer<QObject> values = valuesOf(*page);
    QTRY_VERIFY_WITH_TIMEOUT(values.isNull() && valuesOf(*page), aWhile());
    QCOMPARE(shown(*page, techId), QStringLiteral("T-7"));
}

void LivePropertiesTest::propertiesOfATestAreReadOnly_data()
{
    QTest::addColumn<QString>("ofJob");
    QTest::addColumn<QString>("index");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("editable");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("other");
    QTest::newRow("as it says") << jobId << QStringLiteral("0_0") << QStringLiteral("attributes/cable") << false
                                << QStringLiteral("BB-144-07") << QStringLiteral("BB-144-08");
    QTest::newRow("though it says otherwise")
        << QStringLiteral("WO-2026-004730") << QStringLiteral("2_0") << QStringLiteral("attributes/profile") << true
        << QStringLiteral("SM UPC") << QStringLiteral("MM");
}

void LivePropertiesTest::propertiesOfATestAreReadOnly()
{
    QFETCH(QString, ofJob);
    QFETCH(QString, index);
    QFETCH(QString, name);
    QFETCH(bool, editable);
    QFETCH(QString, value);
    QFETCH(QString, other);
    startService();
    FrontEnd frontEnd;
    QTRY_VERIFY_WITH_TIMEOUT(frontEnd.job(ofJob), aWhile());
    QObject* const job = frontEnd.job(ofJob);
    const auto page = frontEnd.page(testPage, { { QStringLiteral("job"), QVariant::fromValue(job) } });
    QTRY_VERIFY_WITH_TIMEOUT(page->property("list").value<QObject*>(), aWhile());
    QMetaObject::invokeMethod(page.get(), "open", Q_ARG(QVariant, index));
    QVERIFY(valuesOf(*page));
    const QVariantMap infos = job->property("testPropertyDisplayInfos").toMap();
    QCOMPARE(infos.value(name).toMap().value(QStringLiteral("editable")), QVariant(editable));
    QCOMPARE(shown(*page, name), value);
    const int count = m_client.changeCount();

    edit(*page, name, other);

    QCOMPARE(shown(*page, name), value);
    QCOMPARE(m_client.changeCount(), count);
    QCOMPARE(m_relay->count("PATCH /api/v1/jobs/" + ofJob.toStdString()), 0);
}

void LivePropertiesTest::tenThousandEditsLeaveNoMemoryBehind()
{
#ifdef __SANITIZE_ADDRESS__
    constexpr bool sanitized = true;
#elif defined(__has_feature)
    constexpr bool sanitized = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
    constexpr bool sanitized = false;
#endif
    // A sanitizer keeps what is freed, and counts leaks itself: a tenth of the edits, and no look at the memory.
    constexpr int edits = sanitized ? 1000 : 10000;
    // As on the instrument: without the debug lines of each edit.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    startService(Direct);
    FrontEnd frontEnd;
    const auto page = openForm(frontEnd);
    QVERIFY(page);
    QSignalSpy resets(frontEnd.jobs(), &QAbstractItemModel::modelReset);
    const auto editMany = [&](int count) {
        for (int i = 0; i < count; ++i) {
            edit(*page, i % 2 == 0 ? accessCode : contractorId,
                QStringLiteral("%1#").arg(i % 10000, 4, 10, QLatin1Char('0')));
            page->setProperty("outcomes", QVariantList());
            if (i % 100 == 0)
                QCoreApplication::processEvents();
        }
        frontEnd.engine().collectGarbage();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };

    editMany(edits / 10);
    const std::size_t before = memoryInUse();
    const int count = m_client.changeCount();
    editMany(edits - edits / 10);

    QCOMPARE(m_client.changeCount(), count + edits - edits / 10);
    QCOMPARE(stored(contractorId), shown(*page, contractorId));
    QCOMPARE(resets.count(), 0);
    // Less than a pointer an edit.
    const std::size_t bound = 8 * static_cast<std::size_t>(edits);
    if (!sanitized)
        QVERIFY2(memoryInUse() <= before + bound, qPrintable(QString::number(memoryInUse() - before)));
}

END_TO_END_MAIN(LivePropertiesTest)

#include "LivePropertiesTest.moc"
