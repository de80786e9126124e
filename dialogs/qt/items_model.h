// The rows of a list view, or the choices of a list box or drop-down, read from the control where they are: nothing of
// them is kept here but how many there were when they were shown last.
#pragma once

#include <QAbstractTableModel>

#include "dialogs/control.h"

namespace dialogs {

class ItemsModel final : public QAbstractTableModel {
  public:
    ItemsModel(const Control& list, QObject* parent);

    /// After the items or the columns changed.
    void refresh();

    int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : rows_; }
    int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : columns_; }
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    QVariant rowData(int row, int column, int role) const;
    QVariant choiceData(int choice, int role) const;
    int columnsNow() const;

    const Control& list_;
    int rows_ = 0;
    int columns_ = 0;
};

}  // namespace dialogs
