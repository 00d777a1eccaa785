#include "models/PartialModel.h"

namespace jobmanager_ui {

namespace {

/// The sum of two ints as the machine adds them: one too large for an int comes out negative. QML may set any
/// number, and the overflow of signed numbers is undefined.
int wrappingSum(int one, int other)
{
    return static_cast<int>(static_cast<unsigned>(one) + static_cast<unsigned>(other));
}

} // namespace

PartialModel::PartialModel(QObject* parent) : QSortFilterProxyModel(parent)
{
}

void PartialModel::setModel(QAbstractItemModel* model)
{
    setSourceModel(model);
    Q_EMIT modelChanged();
}

void PartialModel::setStartIndex(int value)
{
    if (setNumber(m_startIndex, value)) {
        Q_EMIT startIndexChanged();
    }
}

void PartialModel::setTestsCount(int value)
{
    if (setNumber(m_testsCount, value)) {
        Q_EMIT testsCountChanged();
    }
}

bool PartialModel::setNumber(int& number, int value)
{
    if (value == number) {
        return false;
    }
    beginResetModel();
    number = value;
    endResetModel();
    return true;
}

bool PartialModel::filterAcceptsRow(int sourceRow, const QModelIndex& /*sourceParent*/) const
{
    return sourceRow >= m_startIndex && sourceRow < wrappingSum(m_startIndex, m_testsCount);
}

} // namespace jobmanager_ui
