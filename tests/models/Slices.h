#pragma once

#include "models/PartialModel.h"
#include "tests/support/MessageCollector.h"

#include <memory>
#include <QString>

namespace jobmanager_test {

/// The letters of the model's rows, in order.
QString shown(const QAbstractItemModel& model);

/// What makes the slice no view of its source: empty if each of its rows is one row of the source, in its order.
QString fault(const jobmanager_ui::PartialModel& slice);

/// Slices `source`: `count` rows from row `start` on.
void cut(jobmanager_ui::PartialModel& slice, QAbstractItemModel& source, int start, int count);

/// What a view would show that believes the model's signals.
class Follower : public QObject
{
public:
    explicit Follower(const QAbstractItemModel& model);

    /// The letters that the signals have told of, in order.
    const QString& letters() const { return m_letters; }

private:
    void readAll() { m_letters = shown(m_model); }
    QChar letter(int row) const;

    const QAbstractItemModel& m_model;
    QString m_letters;
};

/// A journal for what slices emit.
class SliceFixture : public QObject
{
protected:
    void setUp();
    /// Fails the test if there was a message.
    void tearDown();

    Journal m_journal;

private:
    std::unique_ptr<MessageCollector> m_messages;
};

} // namespace jobmanager_test
