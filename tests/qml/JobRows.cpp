#include "tests/qml/JobRows.h"

namespace {

constexpr int idRole = Qt::UserRole + 1;

} // namespace

JobRows::JobRows(QObject* parent) : QAbstractListModel(parent)
{
}

void JobRows::setIds(const QStringList& ids)
{
    beginResetModel();
    m_ids = ids;
    endResetModel();
}

int JobRows::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_ids.size();
}

QVariant JobRows::data(const QModelIndex& index, int role) const
{
    return role == idRole && index.isValid() && index.row() < m_ids.size() ? m_ids.at(index.row()) : QVariant();
}

QHash<int, QByteArray> JobRows::roleNames() const
{
    return { { idRole, QByteArrayLiteral("jobID") } };
}
