#pragma once

#include <QIdentityProxyModel>

namespace jobmanager_test {

/// A list model, or a slice of one, as Qt's model tester wants it. The lists' rowCount ignores its parent by design,
/// since QML asks for the rows of the list alone; the tester takes the count that a row gives for children that
/// cannot be reached.
class FlatView : public QIdentityProxyModel
{
public:
    explicit FlatView(QAbstractItemModel& source) { setSourceModel(&source); }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : QIdentityProxyModel::rowCount();
    }
};

} // namespace jobmanager_test
