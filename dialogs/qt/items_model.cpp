#include "dialogs/qt/items_model.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

#include "dialogs/qt/qt_text.h"

namespace dialogs {
namespace {

// A framed area of the colour, as high as a line of text.
QPixmap swatch(std::uint32_t rgb) {
    const int height = QFontMetrics(QApplication::font()).ascent();
    const double scale = qApp->devicePixelRatio();
    const QSize size(height * 3 / 2, height);
    QPixmap picture(size * scale);
    picture.setDevicePixelRatio(scale);
    picture.fill(QColor::fromRgb(rgb));
    QPainter painter(&picture);
    painter.setPen(QApplication::palette().color(QPalette::Text));
    painter.drawRect(QRectF(0.5, 0.5, size.width() - 1, size.height() - 1));
    return picture;
}

}  // namespace

ItemsModel::ItemsModel(const Control& list, QObject* parent)
    : QAbstractTableModel(parent), list_(list), rows_(list.itemCount()), columns_(columnsNow()) {}

int ItemsModel::columnsNow() const {
    return list_.kind() == ControlKind::kListView ? static_cast<int>(list_.columns.size()) : 1;
}

// Where only what the items say changed, the list stays scrolled as it is.
void ItemsModel::refresh() {
    if (rows_ == list_.itemCount() && columns_ == columnsNow()) {
        if (columns_ > 0) emit headerDataChanged(Qt::Horizontal, 0, columns_ - 1);
        if (rows_ > 0 && columns_ > 0) emit dataChanged(index(0, 0), index(rows_ - 1, columns_ - 1));
        return;
    }
    beginResetModel();
    rows_ = list_.itemCount();
    columns_ = columnsNow();
    endResetModel();
}

QVariant ItemsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= list_.itemCount()) return {};
    return list_.kind() == ControlKind::kListView ? rowData(index.row(), index.column(), role)
                                                  : choiceData(index.row(), role);
}

QVariant ItemsModel::rowData(int row, int column, int role) const {
    const Row& shown = list_.rows[static_cast<std::size_t>(row)];
    if (role == Qt::ForegroundRole && shown.emphasized) return QColor(200, 0, 0);
    const auto cell = static_cast<std::size_t>(column);
    return role == Qt::DisplayRole && cell < shown.cells.size() ? toQt(shown.cells[cell]) : QVariant();
}

QVariant ItemsModel::choiceData(int choice, int role) const {
    const Choice& shown = list_.choices[static_cast<std::size_t>(choice)];
    if (role == Qt::DisplayRole || role == Qt::EditRole) return toQt(shown.text);
    return role == Qt::DecorationRole && shown.swatch ? swatch(*shown.swatch) : QVariant();
}

QVariant ItemsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    const auto column = static_cast<std::size_t>(section);
    if (orientation != Qt::Horizontal || column >= list_.columns.size()) return {};
    if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    return role == Qt::DisplayRole ? toQt(list_.columns[column].title) : QVariant();
}

}  // namespace dialogs
