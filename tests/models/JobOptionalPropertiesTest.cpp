// The map of a job's optional properties: how it is built, what an edit does, and how long it lives.

#include "core/JobManagerWorker.h"
#include "models/Job.h"
#include "tests/support/MessageCollector.h"
#include "tests/support/QmlObject.h"
#include "tests/support/RecordingApi.h"
#include "tests/support/SignalRecorder.h"

#include <QPointer>
#include <QQmlEngine>
#include <QThread>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString id = QStringLiteral("J");
const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");
const QString typed = QStringLiteral("typed");

/// The signal of a counter.
using Counter = void (Job::*)();

} // namespace

Q_DECLARE_METATYPE(Counter)

/// Calls, the job's signals and messages go into one journal. The worker's thread does not run: a fetch ends when the
/// test says so.
class JobOptionalPropertiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_messages = std::make_unique<MessageCollector>(m_journal);
        m_api = std::make_shared<RecordingApi>(m_journal);
        m_api->setAnswer(QStringLiteral("getAllOptionalJobProperties"), QStringList{ a, b });
        store(a, QStringLiteral("old"));
        accept(true);
        m_worker = std::make_unique<JobManagerWorker>(m_api);
        m_worker->moveToThread(&m_thread);
        m_job = std::make_unique<Job>(m_api, id);
        m_recorder = std::make_unique<SignalRecorder>(*m_job, m_journal);
        m_journal.take();
    }

    void cleanup()
    {
        QCOMPARE(m_journal.take().filter(QStringLiteral("warning: ")), QStringList());
        m_recorder.reset();
        m_job.reset();
        m_worker.reset();
        m_api.reset();
        m_messages.reset();
        m_journal.take();
    }

    // Building.

    void firstReadBuildsTheMapInOrder()
    {
        m_job->optionalProperties();
        QCOMPARE(lines(m_journal.take()), QStringLiteral(R"(debug: Initializing optional properties for job:  "J"
call getAllOptionalJobProperties("J")
call getOptionalJobPropertyDisplayInfo("J", "a")
call getOptionalJobProperty("J", "a")
emit totalNumberOfRequiredAttributesChanged()
emit numberOfIncompleteRequiredAttributesChanged()
call getOptionalJobPropertyDisplayInfo("J", "b")
call getOptionalJobProperty("J", "b")
emit totalNumberOfRequiredAttributesChanged()
emit numberOfIncompleteRequiredAttributesChanged())"));
    }

    void furtherReadsGiveTheSameMap()
    {
        QQmlPropertyMap* const map = m_job->optionalProperties();
        m_journal.take();
        QCOMPARE(m_job->optionalProperties(), map);
        QCOMPARE(m_job->property("optionalProperties").value<QQmlPropertyMap*>(), map);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void mapBelongsToTheJobAlone() { QCOMPARE(m_job->optionalProperties()->parent(), nullptr); }

    void valuesAreHeldAsTheyCame_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("text") << QVariant(QStringLiteral("text"));
        QTest::newRow("empty text") << QVariant(QString());
        QTest::newRow("number") << QVariant(1.5);
        QTest::newRow("whole number") << QVariant(7);
        QTest::newRow("boolean") << QVariant(true);
        QTest::newRow("list") << QVariant(QStringList{ a, b });
        QTest::newRow("nothing") << QVariant();
    }

    void valuesAreHeldAsTheyCame()
    {
        QFETCH(QVariant, value);
        PropertyDisplayInfo number;
        number.propName = a;
        number.type = PropertyType::DOUBLE;
        m_api->setDisplayInfo(number);
        store(a, value);
        QVERIFY(map()->contains(a));
        QCOMPARE(map()->value(a), value);
        QCOMPARE(map()->value(a).userType(), value.userType());
    }

    void invisiblePropertyIsInTheMapThoughItIsNotDisplayed()
    {
        describe(a, true, false);
        QVERIFY(map()->contains(a));
        QCOMPARE(map()->value(a), QVariant(QStringLiteral("old")));
        QVERIFY(!m_job->allDisplayableJobProperties().contains(a));
    }

    void jobWithoutPropertiesHasAnEmptyMapAndTellsNoCount()
    {
        m_api->setAnswer(QStringLiteral("getAllOptionalJobProperties"), QStringList());
        QVERIFY(m_job->optionalProperties()->isEmpty());
        QCOMPARE(m_journal.take().filter(QStringLiteral("emit ")), QStringList());
    }

    // Counting.

    void editableAndVisibleIsRequired_data()
    {
        QTest::addColumn<bool>("editable");
        QTest::addColumn<bool>("visible");
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("required");
        QTest::addColumn<int>("incomplete");
        const QString none;
        const QString value = QStringLiteral("value");
        QTest::newRow("both, empty") << true << true << none << 1 << 1;
        QTest::newRow("both, with a value") << true << true << value << 1 << 0;
        QTest::newRow("editable alone, empty") << true << false << none << 0 << 0;
        QTest::newRow("editable alone, with a value") << true << false << value << 0 << 0;
        QTest::newRow("visible alone, empty") << false << true << none << 0 << 0;
        QTest::newRow("visible alone, with a value") << false << true << value << 0 << 0;
        QTest::newRow("neither, empty") << false << false << none << 0 << 0;
        QTest::newRow("neither, with a value") << false << false << value << 0 << 0;
    }

    void editableAndVisibleIsRequired()
    {
        QFETCH(bool, editable);
        QFETCH(bool, visible);
        QFETCH(QString, value);
        describe(a, editable, visible);
        describe(b, false, true);
        store(a, value);
        QTEST(m_job->getTotalNumberOfRequiredAttributes(), "required");
        QTEST(m_job->getNumberOfIncompleteRequiredAttributes(), "incomplete");
    }

    void emptyAsTextIsIncomplete_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<int>("incomplete");
        QTest::newRow("nothing") << QVariant() << 1;
        QTest::newRow("null text") << QVariant(QString()) << 1;
        QTest::newRow("empty text") << QVariant(QLatin1String("")) << 1;
        QTest::newRow("what has no text") << QVariant(QVariantMap()) << 1;
        QTest::newRow("blank") << QVariant(QStringLiteral(" ")) << 0;
        QTest::newRow("text") << QVariant(QStringLiteral("x")) << 0;
        QTest::newRow("zero") << QVariant(0) << 0;
        QTest::newRow("false") << QVariant(false) << 0;
    }

    void emptyAsTextIsIncomplete()
    {
        QFETCH(QVariant, value);
        store(a, value);
        store(b, QStringLiteral("filled"));
        QCOMPARE(m_job->property("totalNumberOfRequiredAttributes"), QVariant(2));
        QTEST(m_job->property("numberOfIncompleteRequiredAttributes").toInt(), "incomplete");
    }

    void readingACountFirstBuildsTheMapAndIsRight()
    {
        QCOMPARE(m_job->getNumberOfIncompleteRequiredAttributes(), 1);
        QCOMPARE(m_journal.take().filter(QStringLiteral("debug: ")).size(), 1);
        QCOMPARE(m_job->getTotalNumberOfRequiredAttributes(), 2);
        QCOMPARE(m_journal.take(), QStringList());
    }

    void countersFireOnceANameAlsoForOneThatDoesNotCount()
    {
        describe(a, false, true);
        describe(b, true, false);
        m_job->optionalProperties();
        const QStringList entries = m_journal.take();
        QCOMPARE(entries.count(QStringLiteral("emit totalNumberOfRequiredAttributesChanged()")), 2);
        QCOMPARE(entries.count(QStringLiteral("emit numberOfIncompleteRequiredAttributesChanged()")), 2);
    }

    void countersStandForTheNamesSoFarWhenTheyFire()
    {
        QList<int> seen;
        const QObject receiver;
        connect(m_job.get(), &Job::totalNumberOfRequiredAttributesChanged, &receiver,
            [&] { seen.append(m_job->getTotalNumberOfRequiredAttributes()); });
        m_job->optionalProperties();
        QCOMPARE(seen, (QList<int>{ 1, 2 }));
    }

    void updateCountsAnewAndDoesNotAdd()
    {
        QCOMPARE(m_job->getTotalNumberOfRequiredAttributes(), 2);
        m_journal.take();
        m_job->updateDataFromAPI();
        QCOMPARE(m_journal.take().filter(QStringLiteral("RequiredAttributes")), QStringList());
        QCOMPARE(m_job->getTotalNumberOfRequiredAttributes(), 2);
        QCOMPARE(m_job->getNumberOfIncompleteRequiredAttributes(), 1);
    }

    void editDoesNotRecount()
    {
        QCOMPARE(m_job->getNumberOfIncompleteRequiredAttributes(), 1);
        edit(b, typed);
        store(b, typed);
        QCOMPARE(m_job->getNumberOfIncompleteRequiredAttributes(), 1);
        m_job->updateDataFromAPI();
        QCOMPARE(m_job->getNumberOfIncompleteRequiredAttributes(), 0);
    }

    void bindingOnACountFollowsTheUpdatesWhereTheMapIsReadFirst()
    {
        m_job->setWorker(m_worker.get());
        QQmlEngine engine;
        const auto page = qmlObject(engine, R"(QtObject {
            property QtObject job
            property QtObject values: job ? job.optionalProperties : null
            property int open: job ? job.numberOfIncompleteRequiredAttributes : -1
        })");
        page->setProperty("job", QVariant::fromValue(m_job.get()));
        m_job->onFetchJobFinished(id);
        QCOMPARE(page->property("open").toInt(), 1);
        store(b, typed);
        m_job->updateDataFromAPI();
        m_job->isBackgroundFetchCompleted();
        m_job->onFetchJobFinished(id);
        QCOMPARE(page->property("open").toInt(), 0);
        QCOMPARE(m_journal.take().filter(QStringLiteral("warning: ")), QStringList());
    }

    // The gate.

    void mapIsNullAndNoCounterMovesWhileTheJobIsFetched()
    {
        m_job->setWorker(m_worker.get());
        QCOMPARE(m_job->optionalProperties(), nullptr);
        QCOMPARE(m_job->getTotalNumberOfRequiredAttributes(), 0);
        QCOMPARE(m_job->getNumberOfIncompleteRequiredAttributes(), 0);
        QCOMPARE(m_journal.take(),
            (QStringList{ QStringLiteral("emit fetchInProgressChanged()"), QStringLiteral("emit fetchJob(\"J\")") }));
    }

    void mapIsThereWithTheSignalOfTheFinishedFetch()
    {
        m_job->setWorker(m_worker.get());
        m_job->optionalProperties();
        bool there = false;
        const QObject receiver;
        connect(m_job.get(), &Job::optionalPropertiesChanged, &receiver, [&] { there = map() != nullptr; });
        m_job->onFetchJobFinished(id);
        QVERIFY(there);
    }

    void mapThatIsThereStaysWhenAFetchEnds()
    {
        QQmlPropertyMap* const before = map();
        m_job->onFetchJobFinished(id);
        QCOMPARE(map(), before);
    }

    // Edits.

    void acceptedEditIsWrittenOnceAndTold()
    {
        map();
        store(a, typed);
        m_journal.take();
        QVERIFY(map()->setProperty("a", typed));
        QCOMPARE(lines(m_journal.take()),
            QStringLiteral(R"(debug: Updating job property via API:  "a" with value:  QVariant(QString, "typed")
call setOptionalJobProperty("J", "a", "typed")
call getOptionalJobProperty("J", "a")
emit optionalPropertyValueChanged(true))"));
        QCOMPARE(map()->value(a), QVariant(typed));
    }

    void refusedEditRestoresTheOldValue()
    {
        accept(false);
        map();
        m_journal.take();
        edit(a, typed);
        QCOMPARE(lines(m_journal.take()),
            QStringLiteral(R"(debug: Updating job property via API:  "a" with value:  QVariant(QString, "typed")
call setOptionalJobProperty("J", "a", "typed")
debug: Failed to set job property  "a"  to value:  QVariant(QString, "typed")
call getOptionalJobProperty("J", "a")
emit optionalPropertiesChanged()
call getOptionalJobProperty("J", "a")
emit optionalPropertyValueChanged(false))"));
        QCOMPARE(map()->value(a), QVariant(QStringLiteral("old")));
    }

    void oldValueIsBackWhenTheRefusalIsTold()
    {
        accept(false);
        QVariant seen;
        const QObject receiver;
        connect(m_job.get(), &Job::optionalPropertiesChanged, &receiver, [&] { seen = map()->value(a); });
        edit(a, typed);
        QCOMPARE(seen, QVariant(QStringLiteral("old")));
    }

    void refusedEditOfTheValueThatIsStoredCountsAsAccepted()
    {
        accept(false);
        map();
        store(a, typed);
        edit(a, typed);
        QCOMPARE(told(), QStringList{ QStringLiteral("emit optionalPropertyValueChanged(true)") });
        QCOMPARE(map()->value(a), QVariant(typed));
    }

    void editThatTheServiceAlteredIsNotAcceptedAndTheMapKeepsWhatWasTyped()
    {
        map();
        store(a, QStringLiteral("TYPED"));
        m_journal.take();
        edit(a, typed);
        QCOMPARE(m_journal.take().filter(QRegularExpression(QStringLiteral("^emit "))),
            QStringList{ QStringLiteral("emit optionalPropertyValueChanged(false)") });
        QCOMPARE(map()->value(a), QVariant(typed));
        m_job->updateDataFromAPI();
        QCOMPARE(map()->value(a), QVariant(QStringLiteral("TYPED")));
    }

    void acceptanceComparesAsVariantsDo_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("number held as text") << QVariant(1.5) << QVariant(QStringLiteral("1.5")) << true;
        QTest::newRow("boolean held as text") << QVariant(true) << QVariant(QStringLiteral("true")) << true;
        QTest::newRow("other number") << QVariant(1.5) << QVariant(QStringLiteral("1.6")) << false;
        QTest::newRow("other case") << QVariant(typed) << QVariant(QStringLiteral("Typed")) << false;
        QTest::newRow("nothing for a text") << QVariant(typed) << QVariant() << false;
    }

    void acceptanceComparesAsVariantsDo()
    {
        QFETCH(QVariant, value);
        QFETCH(QVariant, stored);
        map();
        store(a, stored);
        QSignalSpy spy(m_job.get(), &Job::optionalPropertyValueChanged);
        edit(a, value);
        QCOMPARE(spy.count(), 1);
        QTEST(spy.first().first().toBool(), "accepted");
    }

    void valueThatIsHeldAlreadyIsNoEditOfTheMap()
    {
        map();
        m_journal.take();
        edit(a, QStringLiteral("old"));
        QCOMPARE(m_journal.take(), QStringList());
    }

    void valueThatIsHeldAlreadyIsWrittenByTheSlotAllTheSame()
    {
        map();
        m_journal.take();
        m_job->onPropertyValueChanged(a, QStringLiteral("old"));
        QCOMPARE(m_api->count(QStringLiteral("setOptionalJobProperty")), 1);
        QCOMPARE(told(), QStringList{ QStringLiteral("emit optionalPropertyValueChanged(true)") });
    }

    void slotWritesBeforeThereIsAMap()
    {
        accept(false);
        m_job->onPropertyValueChanged(a, typed);
        QCOMPARE(m_api->count(QStringLiteral("setOptionalJobProperty")), 1);
        QCOMPARE(told().constLast(), QStringLiteral("emit optionalPropertyValueChanged(false)"));
        QCOMPARE(map()->value(a), QVariant(QStringLiteral("old")));
    }

    void fillingAndRestoringWriteNothing()
    {
        accept(false);
        map();
        QCOMPARE(m_api->count(QStringLiteral("setOptionalJobProperty")), 0);
        edit(a, typed);
        QCOMPARE(m_api->count(QStringLiteral("setOptionalJobProperty")), 1);
    }

    void twoEditsAreTwoWrites()
    {
        map();
        m_journal.take();
        edit(a, typed);
        edit(b, typed);
        edit(a, QStringLiteral("typed again"));
        QCOMPARE(m_journal.take().filter(QStringLiteral("call setOptional")),
            (QStringList{ QStringLiteral("call setOptionalJobProperty(\"J\", \"a\", \"typed\")"),
                QStringLiteral("call setOptionalJobProperty(\"J\", \"b\", \"typed\")"),
                QStringLiteral("call setOptionalJobProperty(\"J\", \"a\", \"typed again\")") }));
    }

    // The life of a map.

    void updateFreesTheMapAtOnceAndTellsAfterwards()
    {
        const QPointer<QQmlPropertyMap> old = map();
        bool gone = false;
        const QObject receiver;
        connect(m_job.get(), &Job::jobNumberChanged, &receiver, [&] { gone = old.isNull(); });
        m_job->updateDataFromAPI();
        QVERIFY(gone);
        QVERIFY(map() != nullptr);
    }

    void updateAfterAnEditFreesTheMapAtOnce()
    {
        const QPointer<QQmlPropertyMap> old = map();
        edit(a, typed);
        m_job->updateDataFromAPI();
        QVERIFY(old.isNull());
    }

    void updateAfterARefusedEditFreesTheMapAtOnce()
    {
        accept(false);
        const QPointer<QQmlPropertyMap> old = map();
        edit(a, typed);
        m_job->updateDataFromAPI();
        QVERIFY(old.isNull());
    }

    void jobTakesItsMapAlong()
    {
        const QPointer<QQmlPropertyMap> old = map();
        m_recorder.reset();
        m_job.reset();
        QVERIFY(old.isNull());
    }

    void updateBuildsNothing()
    {
        map();
        m_journal.take();
        m_job->updateDataFromAPI();
        QCOMPARE(m_api->count(QStringLiteral("getAllOptionalJobProperties")), 0);
    }

    // Receivers that update the job, or end it.

    void handlerOfTheOutcomeThatUpdatesDropsTheMapAtOnceAndItEndsWithTheDelivery_data()
    {
        QTest::addColumn<bool>("accepted");
        QTest::newRow("accepted") << true;
        QTest::newRow("refused") << false;
    }

    void handlerOfTheOutcomeThatUpdatesDropsTheMapAtOnceAndItEndsWithTheDelivery()
    {
        QFETCH(bool, accepted);
        accept(accepted);
        const QPointer<QQmlPropertyMap> old = map();
        QPointer<QQmlPropertyMap> inside;
        const QObject receiver;
        connect(m_job.get(), &Job::optionalPropertyValueChanged, &receiver, [&] {
            m_job->updateDataFromAPI();
            inside = map();
        });
        edit(a, typed);
        QVERIFY(!inside.isNull());
        QCOMPARE(map(), inside.data());
        QVERIFY(inside != old);
        freeWhatIsDue();
        QVERIFY(old.isNull());
        QVERIFY(!inside.isNull());
    }

    void handlerOfTheRefusalThatUpdatesShowsTheOldValueAndTellsTheOutcome()
    {
        accept(false);
        map();
        const QObject receiver;
        connect(m_job.get(), &Job::optionalPropertiesChanged, &receiver, [&, once = true]() mutable {
            if (std::exchange(once, false)) {
                m_job->updateDataFromAPI();
            }
        });
        m_journal.take();
        edit(a, typed);
        QCOMPARE(m_journal.take().constLast(), QStringLiteral("emit optionalPropertyValueChanged(false)"));
        QCOMPARE(map()->value(a), QVariant(QStringLiteral("old")));
        freeWhatIsDue();
    }

    void editThatWasDroppedBeforeItWasWrittenShowsInTheNewMap()
    {
        // What hears of the edit before the job does, as QML does.
        QQmlPropertyMap* const old = map();
        disconnect(old, &QQmlPropertyMap::valueChanged, m_job.get(), &Job::onPropertyValueChanged);
        const QObject receiver;
        connect(old, &QQmlPropertyMap::valueChanged, &receiver, [&] {
            m_job->updateDataFromAPI();
            map();
            store(a, typed);
        });
        connect(old, &QQmlPropertyMap::valueChanged, m_job.get(), &Job::onPropertyValueChanged);
        old->setProperty("a", typed);
        QVERIFY(map() != old);
        QCOMPARE(map()->value(a), QVariant(typed));
        QCOMPARE(m_journal.take().constLast(), QStringLiteral("emit optionalPropertyValueChanged(true)"));
        freeWhatIsDue();
    }

    void receiverOfTheRefusalMayEndTheJob()
    {
        accept(false);
        const QPointer<QQmlPropertyMap> old = map();
        m_recorder.reset();
        const QObject receiver;
        connect(m_job.get(), &Job::optionalPropertiesChanged, &receiver, [&] { m_job.reset(); });
        old->setProperty("a", typed);
        QVERIFY(m_job == nullptr);
        freeWhatIsDue();
        QVERIFY(old.isNull());
    }

    void receiverOfACounterMayUpdateTheJobWhileTheMapIsBuilt()
    {
        const QObject receiver;
        connect(m_job.get(), &Job::totalNumberOfRequiredAttributesChanged, &receiver, [&, once = true]() mutable {
            if (std::exchange(once, false)) {
                m_job->updateDataFromAPI();
                m_job->optionalProperties();
            }
        });
        QVERIFY(m_job->optionalProperties() != nullptr);
        QCOMPARE(map()->count(), 2);
        QCOMPARE(m_job->getTotalNumberOfRequiredAttributes(), 2);
        edit(a, typed);
        QCOMPARE(m_api->count(QStringLiteral("setOptionalJobProperty")), 1);
    }

    void firstReadGivesAMapThoughAReceiverOfACounterUpdatesTheJob_data() { addCounters(); }

    void firstReadGivesAMapThoughAReceiverOfACounterUpdatesTheJob()
    {
        QFETCH(Counter, counter);
        const QObject receiver;
        connect(m_job.get(), counter, &receiver, [&, once = true]() mutable {
            if (std::exchange(once, false)) {
                m_job->updateDataFromAPI();
            }
        });
        QQmlPropertyMap* const first = m_job->optionalProperties();
        QVERIFY(first != nullptr);
        QCOMPARE(first->keys(), (QStringList{ a, b }));
        QCOMPARE(m_job->getTotalNumberOfRequiredAttributes(), 2);
        QCOMPARE(m_job->getNumberOfIncompleteRequiredAttributes(), 1);
        QCOMPARE(map(), first);
        edit(a, typed);
        QCOMPARE(m_api->count(QStringLiteral("setOptionalJobProperty")), 1);
    }

    void receiverOfACounterThatUpdatesTheJobEachTimeEndsInNoMap_data() { addCounters(); }

    void receiverOfACounterThatUpdatesTheJobEachTimeEndsInNoMap()
    {
        QFETCH(Counter, counter);
        const QObject receiver;
        connect(m_job.get(), counter, &receiver, [&] { m_job->updateDataFromAPI(); });
        QCOMPARE(m_job->optionalProperties(), nullptr);
        QCOMPARE(m_api->count(QStringLiteral("getAllOptionalJobProperties")), 2);
        disconnect(m_job.get(), counter, &receiver, nullptr);
        QVERIFY(map() != nullptr);
    }

    void updateByAReceiverOfACounterThatNeedsAFetchHasTheMapWaitForIt()
    {
        m_job->setWorker(m_worker.get());
        m_job->optionalProperties();
        m_job->onFetchJobFinished(id);
        const QObject receiver;
        connect(m_job.get(), &Job::totalNumberOfRequiredAttributesChanged, &receiver, [&, once = true]() mutable {
            if (std::exchange(once, false)) {
                m_job->updateDataFromAPI();
            }
        });
        QCOMPARE(m_job->optionalProperties(), nullptr);
        QVERIFY(m_job->fetchInProgress());
        m_job->onFetchJobFinished(id);
        QVERIFY(map() != nullptr);
    }

    void receiverOfACounterMayEndTheJob_data() { addCounters(); }

    void receiverOfACounterMayEndTheJob()
    {
        QFETCH(Counter, counter);
        m_recorder.reset();
        const QObject receiver;
        connect(m_job.get(), counter, &receiver, [&] { m_job.reset(); });
        QCOMPARE(m_job->optionalProperties(), nullptr);
        QVERIFY(m_job == nullptr);
        QCOMPARE(m_api->count(QStringLiteral("getAllOptionalJobProperties")), 1);
    }

    void receiverThatEndsTheJobLeavesNothingToCount_data() { addCounters(); }

    void receiverThatEndsTheJobLeavesNothingToCount()
    {
        QFETCH(Counter, counter);
        m_recorder.reset();
        const QObject receiver;
        connect(m_job.get(), counter, &receiver, [&] { m_job.reset(); });
        QCOMPARE(m_job->getNumberOfIncompleteRequiredAttributes(), 0);
        QVERIFY(m_job == nullptr);
    }

private:
    static void addCounters()
    {
        QTest::addColumn<Counter>("counter");
        QTest::newRow("of all") << &Job::totalNumberOfRequiredAttributesChanged;
        QTest::newRow("of the incomplete ones") << &Job::numberOfIncompleteRequiredAttributesChanged;
    }

    QQmlPropertyMap* map() { return m_job->optionalProperties(); }

    /// What the interface holds under the name.
    void store(const QString& name, const QVariant& value)
    {
        m_api->setAnswer(QStringLiteral("getOptionalJobProperty(\"J\", \"%1\")").arg(name), value);
    }

    /// Whether the interface's writes succeed.
    void accept(bool accepted) { m_api->setAnswer(QStringLiteral("setOptionalJobProperty"), accepted); }

    void describe(const QString& name, bool editable, bool visible)
    {
        PropertyDisplayInfo info;
        info.propName = name;
        info.editable = editable;
        info.visible = visible;
        m_api->setDisplayInfo(info);
    }

    /// What a form does when a value was typed.
    void edit(const QString& name, const QVariant& value) { map()->setProperty(name.toUtf8().constData(), value); }

    /// What the job has told about edits.
    QStringList told() { return m_journal.take().filter(QStringLiteral("emit optionalPropertyValueChanged")); }

    /// The event loop's turn for objects whose end was put off.
    static void freeWhatIsDue() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    Journal m_journal;
    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<RecordingApi> m_api;
    QThread m_thread;
    std::unique_ptr<JobManagerWorker> m_worker;
    std::unique_ptr<Job> m_job;
    std::unique_ptr<SignalRecorder> m_recorder;
};

QTEST_GUILESS_MAIN(JobOptionalPropertiesTest)
#include "JobOptionalPropertiesTest.moc"
