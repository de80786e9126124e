// The widget of one control, by its kind: how it is made, how the control's state is shown there, and what the widget
// tells of what the user did there.
//
// What is shown makes widgets emit as the user's doing would; who calls these keeps the two apart.
#pragma once

#include <QModelIndex>
#include <QWidget>

#include "dialogs/view.h"

class QAbstractItemView;
class QLineEdit;

namespace dialogs {

/// Not shown yet, empty, at no place.
QWidget* makeWidget(Control& control, QWidget* parent);
void showAspect(const Control& control, QWidget* widget, Aspect aspect);
/// The height of a drop-down's template counts its list; of the widget it is this.
int heightOf(const Control& control, const QWidget* widget, int templateHeight);

/// The line that a drop-down or a field of one line is typed in; else null.
QLineEdit* lineOf(QWidget* widget);
/// Of a list box or a list view; else null.
QAbstractItemView* itemsOf(QWidget* widget);
/// In the first column.
QModelIndex itemIndex(const QAbstractItemView& items, int item);

/// ---- from the widget into the control
/// The text that was typed in the place of what was selected; the widget shows what became of it.
void noteText(Control& field, QWidget* widget);
void noteSelection(Control& field, QWidget* widget);
void noteColumns(Control& list, QWidget* widget);

/// ---- as a hand would
void typeInto(QWidget* widget, const QString& text);

}  // namespace dialogs
