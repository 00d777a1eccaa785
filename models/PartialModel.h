#pragma once

#include <QSortFilterProxyModel>

namespace jobmanager_ui {

/// A slice of consecutive rows of another model, for QML to create: `testsCount` rows from row `startIndex` on. With
/// the two numbers of an entry of TestList::sections it shows the tests of one section over the one list of the job.
/// It shows nothing until testsCount is set, and fewer rows where the slice reaches beyond the other model's end.
///
/// Each change of the slice is a full reset of this model. Rows that come to or leave the other model by row signals
/// do not move the slice over the rows that are in it already; a reset of either model does. The slice may be changed
/// from inside a reset of the other model, where a TestList tells of its sections, but not from inside its row
/// signals, which the base class does not withstand. Main thread only.
class PartialModel : public QSortFilterProxyModel
{
    Q_OBJECT
    Q_DISABLE_COPY(PartialModel)

    Q_PROPERTY(QAbstractItemModel* model READ model WRITE setModel NOTIFY modelChanged)
    Q_PROPERTY(int startIndex READ startIndex WRITE setStartIndex NOTIFY startIndexChanged)
    Q_PROPERTY(int testsCount READ testsCount WRITE setTestsCount NOTIFY testsCountChanged)

public:
    /// An empty slice of no model.
    explicit PartialModel(QObject* parent = nullptr);

    /// The model that is sliced, null without one. Not owned.
    QAbstractItemModel* model() const { return sourceModel(); }
    /// Slices another model. Emits modelChanged after the reset, also for the model that is set already.
    void setModel(QAbstractItemModel* model);
    /// The first row of the slice, counted in the other model; below 0 part of the slice lies before its rows.
    int startIndex() const { return m_startIndex; }
    /// Moves the slice. Emits startIndexChanged after the reset; the value that is set already does nothing.
    void setStartIndex(int value);
    /// How many rows the slice has at most.
    int testsCount() const { return m_testsCount; }
    /// Resizes the slice. Emits testsCountChanged after the reset; the value that is set already does nothing.
    void setTestsCount(int value);

    /// Whether the row number lies in the slice, whatever its parent is.
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

Q_SIGNALS:
    void modelChanged();
    void startIndexChanged();
    void testsCountChanged();

private:
    bool setNumber(int& number, int value);

    int m_startIndex = 0;
    int m_testsCount = 0;
};

} // namespace jobmanager_ui
