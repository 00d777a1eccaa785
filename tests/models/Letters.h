#pragma once

#include <QAbstractListModel>
#include <QString>

namespace jobmanager_test {

/// A list of letters, a row each, that changes as a script says: by row signals, or by a reset. Rows that are asked
/// for must be there.
class Letters : public QAbstractListModel
{
public:
    explicit Letters(QString letters);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// All letters, in order.
    const QString& letters() const { return m_letters; }

    /// Puts the letters before the row.
    void insert(int row, const QString& letters);
    /// Takes the rows from `first` to `last` out.
    void remove(int first, int last);
    /// Moves the rows before the row `before`, as counted before the move.
    void move(int first, int last, int before);
    /// Makes the letters small ones.
    void change(int first, int last);
    /// Replaces all letters.
    void reset(const QString& letters);

private:
    QString m_letters;
};

/// The same, but with its rows under every row too, as a model has them that ignores the parent.
class LettersUnderEveryParent : public Letters
{
public:
    using Letters::Letters;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
};

} // namespace jobmanager_test
