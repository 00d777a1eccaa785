#include "tests/models/Slices.h"

#include <QtTest>

using jobmanager_ui::PartialModel;

namespace jobmanager_test {

QString shown(const QAbstractItemModel& model)
{
    QString letters;
    for (int row = 0; row < model.rowCount(); ++row) {
        letters += model.index(row, 0).data().toString();
    }
    return letters;
}

QString fault(const PartialModel& slice)
{
    int previous = -1;
    for (int row = 0; row < slice.rowCount(); ++row) {
        const QModelIndex index = slice.index(row, 0);
        const QModelIndex source = slice.mapToSource(index);
        if (!source.isValid() || source.row() <= previous || source.row() >= slice.model()->rowCount()) {
            return QStringLiteral("row %1 stands for row %2 after row %3").arg(row).arg(source.row()).arg(previous);
        }
        if (slice.mapFromSource(source) != index) {
            return QStringLiteral("row %1 does not lead back").arg(row);
        }
        if (index.data() != source.data()) {
            return QStringLiteral("row %1 shows another row's letter").arg(row);
        }
        previous = source.row();
    }
    return {};
}

void cut(PartialModel& slice, QAbstractItemModel& source, int start, int count)
{
    slice.setModel(&source);
    slice.setStartIndex(start);
    slice.setTestsCount(count);
}

Follower::Follower(const QAbstractItemModel& model) : m_model(model), m_letters(shown(model))
{
    connect(&model, &QAbstractItemModel::modelReset, this, &Follower::readAll);
    connect(&model, &QAbstractItemModel::layoutChanged, this, &Follower::readAll);
    connect(&model, &QAbstractItemModel::rowsMoved, this, &Follower::readAll);
    connect(&model, &QAbstractItemModel::rowsInserted, this, [this](const QModelIndex&, int first, int last) {
        for (int row = first; row <= last; ++row) {
            m_letters.insert(row, letter(row));
        }
    });
    connect(&model, &QAbstractItemModel::rowsRemoved, this,
        [this](const QModelIndex&, int first, int last) { m_letters.remove(first, last - first + 1); });
    connect(&model, &QAbstractItemModel::dataChanged, this, [this](const QModelIndex& from, const QModelIndex& to) {
        for (int row = from.row(); row <= to.row(); ++row) {
            m_letters[row] = letter(row);
        }
    });
}

QChar Follower::letter(int row) const
{
    return m_model.index(row, 0).data().toString().at(0);
}

void SliceFixture::setUp()
{
    m_messages = std::make_unique<MessageCollector>();
    m_journal.take();
}

void SliceFixture::tearDown()
{
    const QStringList messages = m_messages->take();
    m_messages.reset();
    QCOMPARE(messages, QStringList());
}

} // namespace jobmanager_test
