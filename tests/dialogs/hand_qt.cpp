#include <cctype>
#include <memory>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <QWindow>

#include "tests/dialogs/hand.h"

namespace hand {
namespace {

Qt::Key codeOf(Key key) {
    switch (key) {
        case Key::kEnter:
            return Qt::Key_Return;
        case Key::kEscape:
            return Qt::Key_Escape;
        case Key::kTab:
            return Qt::Key_Tab;
        case Key::kDelete:
            return Qt::Key_Delete;
        case Key::kEnd:
            return Qt::Key_End;
        case Key::kRight:
            return Qt::Key_Right;
        case Key::kDown:
            return Qt::Key_Down;
        case Key::kHelp:
            return Qt::Key_F1;
        case Key::kDropDown:
            return Qt::Key_F4;
    }
    return Qt::Key_unknown;
}

Qt::KeyboardModifier codeOf(Held held) {
    switch (held) {
        case Held::kNothing:
            return Qt::NoModifier;
        case Held::kShift:
            return Qt::ShiftModifier;
        case Held::kControl:
            return Qt::ControlModifier;
        case Held::kAlt:
            return Qt::AltModifier;
    }
    return Qt::NoModifier;
}

QWidget* controlWidget(const dialogs::Dialog& dialog, int id) {
    return static_cast<QWidget*>(dialog.window())->findChild<QWidget*>(QString::number(id));
}

QAbstractItemView* listWidget(const dialogs::Dialog& dialog, int id) {
    return qobject_cast<QAbstractItemView*>(controlWidget(dialog, id));
}

// Through the window, as events of the system come.
void clickIn(QWidget* widget, const QPoint& place, int times, Qt::MouseButton button = Qt::LeftButton) {
    QWindow* const window = widget->window()->windowHandle();
    const QPoint point = widget->mapTo(widget->window(), place);
    QTest::mouseClick(window, button, {}, point);
    if (times == 2) QTest::mouseDClick(window, Qt::LeftButton, {}, point);
}

// A step that opens a box goes on only when the box is closed, so the next one is put off first.
void tickOn(const std::function<void()>& tick, const std::shared_ptr<bool>& isOver) {
    QTimer::singleShot(
        10, qApp,
        [&tick, isOver] {
            if (*isOver) return;
            tickOn(tick, isOver);
            const QWidget* const open = QApplication::activeModalWidget();
            if (open && open->isActiveWindow()) tick();  // else the dialog or the box comes just now
        });
}

}  // namespace

void press(Key key, Held held) { QTest::keyClick(QGuiApplication::focusWindow(), codeOf(key), codeOf(held)); }

void press(char character, Held held) {
    const auto typed = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    QTest::keyClick(QGuiApplication::focusWindow(), typed, codeOf(held));
}

void click(const dialogs::Dialog& dialog, int control) {
    QWidget* const widget = controlWidget(dialog, control);
    clickIn(widget, {8, widget->height() / 2}, 1);
}

void rightClick(const dialogs::Dialog& dialog, int control) {
    QWidget* const widget = controlWidget(dialog, control);
    clickIn(widget, {8, widget->height() / 2}, 1, Qt::RightButton);
}

void clickItem(const dialogs::Dialog& dialog, int list, int item, int times) {
    QAbstractItemView* const view = listWidget(dialog, list);
    clickIn(view->viewport(), view->visualRect(view->model()->index(item, 0)).center(), times);
}

void turnWheel(const dialogs::Dialog& dialog, int control) {
    QWidget* const widget = controlWidget(dialog, control);
    const QPoint place = widget->mapTo(widget->window(), widget->rect().center());
    QWheelEvent turn(place, widget->mapToGlobal(widget->rect().center()), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(widget->window()->windowHandle(), &turn);
}

bool meets(const dialogs::Dialog& dialog, int control) {
    QWidget* const widget = controlWidget(dialog, control);
    return QApplication::widgetAt(widget->mapToGlobal(widget->rect().center())) == widget;
}

int selectedRow(const dialogs::Dialog& dialog, int list) {
    const QModelIndexList rows = listWidget(dialog, list)->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.front().row();
}

std::string shownText(const dialogs::Dialog& dialog, int dropDown) {
    return qobject_cast<QComboBox*>(controlWidget(dialog, dropDown))->currentText().toStdString();
}

void workWithTicks(const std::function<void()>& work, const std::function<void()>& tick) {
    const auto isOver = std::make_shared<bool>(false);
    tickOn(tick, isOver);
    work();
    *isOver = true;
}

}  // namespace hand
