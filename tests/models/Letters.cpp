#include "tests/models/Letters.h"

#include <utility>

namespace jobmanager_test {

Letters::Letters(QString letters) : m_letters(std::move(letters))
{
}

int Letters::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_letters.size();
}

QVariant Letters::data(const QModelIndex& index, int role) const
{
    return role == Qt::DisplayRole ? QVariant(QString(m_letters.at(index.row()))) : QVariant();
}

QHash<int, QByteArray> Letters::roleNames() const
{
    return { { Qt::DisplayRole, "letter" } };
}

void Letters::insert(int row, const QString& letters)
{
    beginInsertRows(QModelIndex(), row, row + letters.size() - 1);
    m_letters.insert(row, letters);
    endInsertRows();
}

void Letters::remove(int first, int last)
{
    beginRemoveRows(QModelIndex(), first, last);
    m_letters.remove(first, last - first + 1);
    endRemoveRows();
}

void Letters::move(int first, int last, int before)
{
    if (!beginMoveRows(QModelIndex(), first, last, QModelIndex(), before)) {
        qFatal("Letters: rows %d to %d cannot move before row %d", first, last, before);
    }
    const QString moved = m_letters.mid(first, last - first + 1);
    m_letters.insert(before, moved);
    m_letters.remove(before <= first ? first + moved.size() : first, moved.size());
    endMoveRows();
}

void Letters::change(int first, int last)
{
    for (int row = first; row <= last; ++row) {
        m_letters[row] = m_letters.at(row).toLower();
    }
    Q_EMIT dataChanged(index(first, 0), index(last, 0), { Qt::DisplayRole });
}

void Letters::reset(const QString& letters)
{
    beginResetModel();
    m_letters = letters;
    endResetModel();
}

int LettersUnderEveryParent::rowCount(const QModelIndex& /*parent*/) const
{
    return letters().size();
}

} // namespace jobmanager_test
