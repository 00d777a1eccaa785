// Edits of a job's properties in the manager: which of them a poll takes as seen, and which bring an update.

#include "tests/core/RecordedManager.h"

#include <map>
#include <QPointer>
#include <QQmlPropertyMap>
#include <QSignalSpy>
#include <QtTest>

using namespace jobmanager_test;
using namespace jobmanager_ui;

namespace {

const QString id = QStringLiteral("J");
const QString name = QStringLiteral("attributes/name");
const QString other = QStringLiteral("attributes/other");
const QString typed = QStringLiteral("typed");

/// A data interface with two editable properties in each job, which keeps what is written. It works as over the
/// service: what was typed is cached if the service agrees, and its own value shows after the next full update.
class EditableApi : public RecordingApi
{
public:
    enum Rule {
        Accept, ///< The count moves by one.
        Alter, ///< The service keeps capitals; the count moves by two.
        Refuse, ///< Nothing moves, and the write answers true all the same.
        Fail, ///< Nothing moves, and the write answers false.
    };

    std::vector<QString> getAllOptionalJobProperties(QString /*jobID*/) override { return { name, other }; }

    QVariant getOptionalJobProperty(QString /*jobID*/, const QString& propName) override { return m_cached[propName]; }

    bool setOptionalJobProperty(QString jobID, const QString& propName, const QVariant& value) override
    {
        RecordingApi::setOptionalJobProperty(jobID, propName, value);
        if (rule == Refuse || rule == Fail) {
            return rule == Refuse;
        }
        m_cached[propName] = value;
        m_stored[propName] = rule == Alter ? value.toString().toUpper() : value.toString();
        changeElsewhere(rule == Alter ? 2 : 1);
        return true;
    }

    void clearCache() override
    {
        RecordingApi::clearCache();
        m_cached = m_stored;
    }

    /// Moves the count.
    void changeElsewhere(int steps)
    {
        m_count += steps;
        setChangeCount(m_count);
    }

    int changeCount() const { return m_count; }
    QVariant stored(const QString& propName) const { return m_stored.at(propName); }

    Rule rule = Accept;

private:
    int m_count = 10;
    std::map<QString, QVariant> m_stored{ { name, QStringLiteral("old") }, { other, QStringLiteral("old") } };
    std::map<QString, QVariant> m_cached = m_stored;
};

} // namespace

class PropertyEditsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_api = std::make_shared<EditableApi>();
        m_api->setJob(id);
        m_api->keepJobListCached();
        m_api->setAnswer(QStringLiteral("isJobInCache"), true);
        m_api->setChangeCount(m_api->changeCount());
        m_manager = std::make_unique<RecordedManager>(m_api);
        m_manager->start();
        m_resets = std::make_unique<QSignalSpy>(&m_manager->manager, &QAbstractItemModel::modelReset);
    }

    void cleanup()
    {
        m_resets.reset();
        m_manager.reset();
        m_api.reset();
    }

    void oneEditIsOneWriteAndMovesTheCountByOne()
    {
        const int before = m_api->changeCount();
        edit(name, typed);
        QCOMPARE(m_api->count(QStringLiteral("setOptionalJobProperty")), 1);
        QCOMPARE(m_api->changeCount(), before + 1);
    }

    void pollAfterAnAcceptedEditRebuildsNothing()
    {
        const QPointer<QQmlPropertyMap> form = properties();
        const QSignalSpy updated(&m_manager->manager, &JobManager::jobManagerUpdated);
        edit(name, typed);
        m_manager->poll();
        m_manager->poll();
        QCOMPARE(m_resets->count(), 0);
        QCOMPARE(updated.count(), 0);
        QVERIFY(!form.isNull());
        QCOMPARE(properties(), form.data());
        QCOMPARE(properties()->value(name), QVariant(typed));
    }

    void hundredEditsRebuildNothing()
    {
        for (int round = 0; round < 100; ++round) {
            edit(round % 2 == 0 ? name : other, QString::number(round));
            if (round % 10 == 0) {
                m_manager->poll();
            }
        }
        m_manager->poll();
        QCOMPARE(m_resets->count(), 0);
        QCOMPARE(m_api->stored(other), QVariant(QStringLiteral("99")));
    }

    void acceptedEditAsksForTheCountOnceAndForNothingElse()
    {
        properties();
        m_manager->take();
        edit(name, typed);
        const QStringList calls = m_api->calls();
        QCOMPARE(calls, (QStringList{ QStringLiteral("setOptionalJobProperty"), QStringLiteral("getChangeCount") }));
    }

    void changeElsewhereAfterAnEditIsFoundByThePoll()
    {
        edit(name, typed);
        m_api->changeElsewhere(1);
        m_manager->poll();
        QCOMPARE(m_resets->count(), 1);
        QCOMPARE(properties()->value(name), QVariant(typed));
    }

    void changeElsewhereBeforeAnEditIsFoundByThePoll()
    {
        m_api->changeElsewhere(1);
        edit(name, typed);
        QCOMPARE(m_resets->count(), 0);
        m_manager->poll();
        QCOMPARE(m_resets->count(), 1);
        QCOMPARE(properties()->value(name), QVariant(typed));
    }

    void editThatTheServiceAlteredIsNotTakenForItsOwnStepAndTheTrueValueShows()
    {
        m_api->rule = EditableApi::Alter;
        const QSignalSpy outcome(job(), &Job::optionalPropertyValueChanged);
        edit(name, typed);
        // The cache holds what was typed: nobody can tell yet.
        QCOMPARE(outcome.first().first(), QVariant(true));
        QCOMPARE(properties()->value(name), QVariant(typed));
        m_manager->poll();
        QCOMPARE(m_resets->count(), 1);
        QCOMPARE(properties()->value(name), QVariant(QStringLiteral("TYPED")));
    }

    void refusedEditRebuildsNothingAndShowsWhatWasTypedUntilTheJobIsUpdated()
    {
        m_api->rule = EditableApi::Refuse;
        const QSignalSpy outcome(job(), &Job::optionalPropertyValueChanged);
        edit(name, typed);
        QCOMPARE(outcome.first().first(), QVariant(false));
        m_manager->poll();
        QCOMPARE(m_resets->count(), 0);
        QCOMPARE(properties()->value(name), QVariant(typed));
        job()->updateDataFromAPI();
        QCOMPARE(properties()->value(name), QVariant(QStringLiteral("old")));
    }

    void failedEditRebuildsNothingAndShowsTheOldValueAtOnce()
    {
        m_api->rule = EditableApi::Fail;
        const QSignalSpy outcome(job(), &Job::optionalPropertyValueChanged);
        edit(name, typed);
        QCOMPARE(outcome.first().first(), QVariant(false));
        QCOMPARE(properties()->value(name), QVariant(QStringLiteral("old")));
        m_manager->poll();
        QCOMPARE(m_resets->count(), 0);
    }

    void refusedEditLeavesAChangeElsewhereToThePoll()
    {
        m_api->rule = EditableApi::Refuse;
        m_api->changeElsewhere(1);
        edit(name, typed);
        m_manager->poll();
        QCOMPARE(m_resets->count(), 1);
    }

    void handlerThatUpdatesEverythingStandsAnEdit()
    {
        const QPointer<QQmlPropertyMap> form = properties();
        connect(
            job(), &Job::optionalPropertyValueChanged, this, [this] { m_manager->manager.updateDataFromAPI(true); });
        edit(name, typed);
        QCOMPARE(m_resets->count(), 1);
        QCOMPARE(properties()->value(name), QVariant(typed));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(form.isNull());
    }

private:
    Job* job() { return m_manager->manager.getJob(id); }
    QQmlPropertyMap* properties() { return job()->optionalProperties(); }

    /// What a form does when a value was typed.
    void edit(const QString& property, const QVariant& value)
    {
        QQmlPropertyMap* const map = properties();
        m_manager->take();
        QVERIFY(map->setProperty(property.toUtf8().constData(), value));
    }

    std::shared_ptr<EditableApi> m_api;
    std::unique_ptr<RecordedManager> m_manager;
    std::unique_ptr<QSignalSpy> m_resets;
};

QTEST_GUILESS_MAIN(PropertyEditsTest)
#include "PropertyEditsTest.moc"
