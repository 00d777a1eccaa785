#pragma once

#include <QAbstractListModel>
#include <QStringList>

/// A list of jobs as the module's models have them, by ids alone. Rows change by resets.
class JobRows : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit JobRows(QObject* parent = nullptr);

    /// Replaces all rows in one reset.
    Q_INVOKABLE void setIds(const QStringList& ids);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    QStringList m_ids;
};
