// One run's widgets: how they are made from the templates, what is taken of the user's events before widgets get them,
// and what the widgets tell View.
#include "dialogs/qt/qt_view.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <QAbstractButton>
#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QBuffer>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QImage>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>
#include <QTabBar>
#include <QTabWidget>
#include <QTextEdit>
#include <QTreeView>
#include <span>
#include <utility>
#include <vector>

#include "base/files.h"
#include "base/paths.h"
#include "base/text.h"
#include "dialogs/form_names.h"
#include "dialogs/form_script.h"
#include "dialogs/qt/control_widget.h"
#include "dialogs/qt/qt_text.h"
#include "dialogs/styles.h"

namespace dialogs {
namespace {

constexpr struct {
    Key key;
    int code;
    bool control;
} kKeyCodes[] = {
    {Key::kEnter, Qt::Key_Return, false},
    {Key::kEnter, Qt::Key_Enter, false},
    {Key::kEscape, Qt::Key_Escape, false},
    {Key::kTab, Qt::Key_Tab, false},
    {Key::kTab, Qt::Key_Backtab, false},
    {Key::kSpace, Qt::Key_Space, false},
    {Key::kBackspace, Qt::Key_Backspace, false},
    {Key::kDelete, Qt::Key_Delete, false},
    {Key::kLeft, Qt::Key_Left, false},
    {Key::kRight, Qt::Key_Right, false},
    {Key::kUp, Qt::Key_Up, false},
    {Key::kDown, Qt::Key_Down, false},
    {Key::kHome, Qt::Key_Home, false},
    {Key::kEnd, Qt::Key_End, false},
    {Key::kPageUp, Qt::Key_PageUp, false},
    {Key::kPageDown, Qt::Key_PageDown, false},
    {Key::kHelp, Qt::Key_F1, false},
    {Key::kSelectAll, Qt::Key_A, true},
    {Key::kCopy, Qt::Key_C, true},
    {Key::kCut, Qt::Key_X, true},
    {Key::kPaste, Qt::Key_V, true},
    {Key::kCopy, Qt::Key_Insert, true},
    {Key::kBackspace, Qt::Key_Backspace, true},
    {Key::kDelete, Qt::Key_Delete, true},
};

std::optional<Key> keyOf(const QKeyEvent& event) {
    if (event.modifiers().testFlag(Qt::AltModifier)) return std::nullopt;
    if (event.key() == Qt::Key_Insert && event.modifiers().testFlag(Qt::ShiftModifier)) return Key::kPaste;
    const bool control = event.modifiers().testFlag(Qt::ControlModifier);
    for (const auto& known : kKeyCodes)
        if (known.code == event.key() && known.control == control) return known.key;
    return std::nullopt;
}

bool isShownText(const QString& text) { return !text.isEmpty() && text.front().isPrint(); }

// The widest that a line of letters makes a character, which is what templates count in.
double averageCharacterWidth(const QFontMetricsF& metrics) {
    const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    return metrics.horizontalAdvance(letters) / static_cast<double>(letters.size());
}

}  // namespace

QWidget* QtView::currentOwner() {
    Run* const run = Process::instance().current;
    return static_cast<QWidget*>(run && run->view() ? run->view()->window() : Process::instance().mainWindow);
}

// ---- making widgets

QtView::QtView(Run& run)
    : View(run),
      owner_(static_cast<QWidget*>(run.outer() && run.outer()->view() ? run.outer()->view()->window()
                                                                      : Process::instance().mainWindow)),
      root_(std::make_unique<QWidget>(owner_, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                                  Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint)) {
    root_->setWindowModality(Qt::ApplicationModal);
    const QFontMetricsF metrics(root_->font());
    unitWidth_ = averageCharacterWidth(metrics) / 4;
    unitHeight_ = metrics.height() / 8;
    const UnitRect& size = run_.root().design().place;
    root_->setFixedSize(static_cast<int>(std::lround(size.width * unitWidth_)),
                        static_cast<int>(std::lround(size.height * unitHeight_)));
    makeControls(run_.root(), root_.get());
    titleChanged();
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { focusWentTo(now); });
}

QtView::~QtView() {
    applying_ = 1;  // what comes while the widgets go is nobody's doing
    qApp->removeEventFilter(this);
    root_.reset();
    if (owner_) owner_->activateWindow();
}

namespace {

// The focus is the view's to move: a click or a wheel would move it before the event is seen here.
void keepFocusFrom(QWidget* widget) {
    if (widget->focusPolicy() != Qt::NoFocus) widget->setFocusPolicy(Qt::TabFocus);
}

}  // namespace

void QtView::makeControls(Dialog& dialog, QWidget* parent) {
    for (const auto& control : dialog.controls()) {
        QWidget* const widget = makeWidget(*control, parent);
        controls_[widget] = control.get();
        widgets_[control.get()] = widget;
        keepFocusFrom(widget);
        for (QWidget* const part : widget->findChildren<QWidget*>()) keepFocusFrom(part);
        widget->setObjectName(QString::number(control->id()));
        const UnitRect& units = control->design->place;
        const auto x = [this](int value) { return static_cast<int>(std::lround(value * unitWidth_)); };
        const auto y = [this](int value) { return static_cast<int>(std::lround(value * unitHeight_)); };
        const int height = y(units.y + units.height) - y(units.y);
        widget->setGeometry(x(units.x), y(units.y), x(units.x + units.width) - x(units.x),
                            heightOf(*control, widget, height));
        if (!control->takesFocus()) {
            const bool isMet = control->kind() == ControlKind::kLabel && (control->design->style & kNotifyStyle) != 0;
            widget->setAttribute(Qt::WA_TransparentForMouseEvents, !isMet);
            widget->lower();  // a box around controls must not cover them
        }
        for (Aspect aspect : {Aspect::kColumns, Aspect::kPages, Aspect::kChoices, Aspect::kText, Aspect::kSelection,
                              Aspect::kChecked, Aspect::kReadOnly, Aspect::kEnabled, Aspect::kVisible, Aspect::kExtras})
            changed(*control, aspect);
        connectWidget(*control, widget);
    }
    connectBuddies(dialog);
}

// A label shows its mnemonic, and is read aloud, for the control behind it.
void QtView::connectBuddies(Dialog& dialog) {
    std::vector<Control*> controls;
    for (const auto& control : dialog.controls()) controls.push_back(control.get());
    const auto takesFocus = [](const Control& control) { return control.takesFocus(); };
    for (std::size_t i = 0; i < controls.size(); ++i) {
        if (controls[i]->kind() != ControlKind::kLabel) continue;
        Control* const meant = controlOfCaption(std::span(controls).subspan(i + 1), takesFocus);
        if (auto* const label = qobject_cast<QLabel*>(widgetOf(*controls[i])); label && meant)
            label->setBuddy(widgetOf(*meant));
    }
}

// Buttons say what they show. Qt's drop-downs go by the label that they are the buddy of; the line of one does not.
void QtView::nameControls() {
    if (!std::exchange(namesAreOld_, false)) return;
    for (const auto& [control, widget] : widgets_) {
        if (!control->takesFocus() || qobject_cast<QAbstractButton*>(widget)) continue;
        const std::wstring name = nameOf(*control);
        const QString spoken = name.empty() ? root_->windowTitle() : toQt(name);
        widget->setAccessibleName(spoken);
        if (QLineEdit* const line = lineOf(widget)) line->setAccessibleName(spoken);
        if (auto* const tabs = qobject_cast<QTabWidget*>(widget)) tabs->tabBar()->setAccessibleName(spoken);
    }
}

template <class Action>
auto QtView::byUser(Action action) {
    return [this, action](auto&&...) {
        if (applying_ == 0 && !run_.hasEnded()) guard(action);
    };
}

void QtView::connectWidget(Control& control, QWidget* widget) {
    const auto edited = byUser([this, &control, widget] {
        {
            const Applying applying(*this);
            noteText(control, widget);
        }
        userEdited(control);
    });
    const auto caretMoved = byUser([this, &control, widget] {
        noteSelection(control, widget);
        if (control.kind() == ControlKind::kRichEdit) changed(control, Aspect::kSelection);
    });
    if (auto* const button = qobject_cast<QAbstractButton*>(widget))
        connect(button, &QAbstractButton::clicked, this, byUser([this, &control] { userPressed(control); }));
    if (QLineEdit* const line = lineOf(widget)) {
        connect(line, &QLineEdit::textEdited, this, edited);
        connect(line, &QLineEdit::cursorPositionChanged, this, caretMoved);
        connect(line, &QLineEdit::selectionChanged, this, caretMoved);
    }
    if (auto* const plain = qobject_cast<QPlainTextEdit*>(widget)) {
        connect(plain, &QPlainTextEdit::textChanged, this, edited);
        connect(plain, &QPlainTextEdit::cursorPositionChanged, this, caretMoved);
        connect(plain, &QPlainTextEdit::selectionChanged, this, caretMoved);
    }
    if (auto* const rich = qobject_cast<QTextEdit*>(widget)) {
        connect(rich, &QTextEdit::cursorPositionChanged, this, caretMoved);
        connect(rich, &QTextEdit::selectionChanged, this, caretMoved);
    }
    if (auto* const combo = qobject_cast<QComboBox*>(widget))
        connect(combo, &QComboBox::activated, this,
                byUser([this, &control, combo] { userChose(control, combo->currentIndex()); }));
    if (auto* const tabs = qobject_cast<QTabWidget*>(widget))
        connect(tabs, &QTabWidget::currentChanged, this,
                byUser([this, &control, tabs] { userChose(control, tabs->currentIndex()); }));
    if (QAbstractItemView* const items = itemsOf(widget))
        connect(items->selectionModel(), &QItemSelectionModel::selectionChanged, this,
                byUser([this, &control] { rowsSelected(control); }));
    if (auto* const list = qobject_cast<QTreeView*>(widget))
        connect(list->header(), &QHeaderView::sectionResized, this,
                byUser([&control, list] { noteColumns(control, list); }));
}

Control* QtView::controlOf(const QWidget* widget) const {
    for (; widget; widget = widget->parentWidget()) {
        const auto found = controls_.find(widget);
        if (found != controls_.end()) return found->second;
    }
    return nullptr;
}

QWidget* QtView::widgetOf(const Control& control) const {
    const auto found = widgets_.find(&control);
    return found == widgets_.end() ? nullptr : found->second;
}

// ---- showing

void QtView::setShown(bool on) {
    root_->setVisible(on);
    if (on)
        root_->activateWindow();
    else if (owner_)
        owner_->activateWindow();  // the user is asked there
    // Nobody looks after the screen while the user is asked elsewhere.
    QAbstractEventDispatcher::instance()->processEvents(QEventLoop::ExcludeUserInputEvents);
}

void QtView::titleChanged() { root_->setWindowTitle(toQt(run_.root().title())); }

void QtView::changed(Control& control, Aspect aspect) {
    QWidget* const widget = widgetOf(control);
    if (!widget) return;
    const Applying applying(*this);
    showAspect(control, widget, aspect);
    namesAreOld_ |=
        aspect == Aspect::kVisible || aspect == Aspect::kExtras || (aspect == Aspect::kText && !control.isText());
}

void QtView::pageShown(Control& tab) {
    const auto page = static_cast<std::size_t>(tab.selected);
    changed(tab, Aspect::kPages);
    Dialog& shown = *tab.pages.at(page);
    const auto& controls = shown.controls();
    if (!controls.empty() && !widgetOf(*controls.front()))
        makeControls(shown, static_cast<QTabWidget*>(widgetOf(tab))->widget(tab.selected));
}

void QtView::showFocus(Control* control) {
    nameControls();
    const Applying applying(*this);
    QWidget* const widget = control ? widgetOf(*control) : nullptr;
    QWidget* const target = widget ? widget : root_.get();
    if (!target->hasFocus()) target->setFocus(Qt::OtherFocusReason);
    if (widget && control->isTyped()) showAspect(*control, widget, Aspect::kSelection);
    const Control* const ofEnter = run_.buttonOfEnter();
    for (const auto& [shown, button] : widgets_)
        if (auto* const push = qobject_cast<QPushButton*>(button)) push->setDefault(shown == ofEnter);
}

// Also before it is laid out, when there is no scroll bar yet.
int QtView::listWidth(const Control& list) {
    const auto* const view = static_cast<QTreeView*>(widgetOf(list));
    const QScrollBar* const bar = view->verticalScrollBar();
    bool hasBar = view->isVisible() && bar->isVisible();
    if (!view->isVisible()) {
        const int rowHeight =
            std::max(view->fontMetrics().height(), view->sizeHintForRow(0));  // columns may come later
        const int room = view->height() - 2 * view->frameWidth() - view->header()->sizeHint().height();
        hasBar = list.itemCount() > room / rowHeight;
    }
    const int barWidth = view->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, bar);
    return view->width() - 2 * view->frameWidth() - (hasBar ? barWidth : 0);
}

PixelRect QtView::place() {
    const QRect frame = root_->frameGeometry();
    return {frame.left(), frame.top(), frame.width(), frame.height()};
}

// A screen that is gone since must not hide the dialog.
void QtView::movePlace(int left, int top) {
    if (!QGuiApplication::screenAt({left, top})) return;
    root_->move(left, top);
    isPlaced_ = true;
}

void QtView::centerOnOwner() {
    const QRect around = owner_ ? owner_->frameGeometry() : QGuiApplication::primaryScreen()->availableGeometry();
    root_->move(around.center() - root_->rect().center());
}

double QtView::scale() { return root_->logicalDpiX() / 96.0; }

void QtView::savePicture(const std::wstring& fileName) {
    const QImage picture = root_->grab().toImage().convertToFormat(QImage::Format_RGB888);
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    picture.save(&bytes, base::equalsNoCase(base::extensionOf(fileName), L".png") ? "PNG" : "BMP");
    base::writeFile(fileName, {bytes.data().constData(), static_cast<std::size_t>(bytes.data().size())});
}

// ---- the loop

template <class Action>
void QtView::guard(Action action) {
    try {
        action();
    } catch (...) {
        if (!failure_) failure_ = std::current_exception();
        run_.end(kCancelButton);
    }
}

void QtView::rethrow() {
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

void QtView::work() {
    LineSource* const lines = Process::instance().lines;
    if (!isPlaced_) centerOnOwner();
    root_->show();
    root_->activateWindow();
    showFocus(run_.focus());
    rethrow();
    std::optional<FormScript> script;
    if (lines) script.emplace(run_, *lines);
    while (!run_.hasEnded()) {
        pump();
        if (run_.hasEnded()) break;
        nameControls();
        if (script) {
            script->step();
            rethrow();
        } else {
            // What the user did is only waited for here. Handling it is work, and pump's.
            Process::instance().waitFor([] {
                QAbstractEventDispatcher::instance()->processEvents(QEventLoop::WaitForMoreEvents |
                                                                    QEventLoop::ExcludeUserInputEvents);
            });
            // What was left there would else wait for the next event of the screen.
            QAbstractEventDispatcher::instance()->wakeUp();
            rethrow();
        }
    }
    rethrow();
}

// Until nothing is left to do.
void QtView::pump() {
    while (!run_.hasEnded() && QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents)) rethrow();
    rethrow();
}

// ---- events, before a widget gets them

bool QtView::eventFilter(QObject* watched, QEvent* event) {
    auto* const widget = qobject_cast<QWidget*>(watched);
    if (!widget || widget->window() != root_.get() || run_.hasEnded()) return false;
    bool done = false;
    guard([&] { done = takeEvent(*widget, *event); });
    return done;
}

bool QtView::takeEvent(QWidget& widget, QEvent& event) {
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            return takeMouseButton(widget, static_cast<QMouseEvent&>(event));
        case QEvent::MouseButtonRelease: {
            // The middle button pastes when it is let go.
            const Control* const field = controlOf(&widget);
            return field && field->isField() && field != run_.focus() &&
                   static_cast<QMouseEvent&>(event).button() == Qt::MiddleButton;
        }
        case QEvent::MouseMove: {
            // A list is not to be selected in by dragging.
            const Control* const list = controlOf(&widget);
            return list && itemsOf(widgetOf(*list)) && itemsOf(widgetOf(*list))->viewport() == &widget &&
                   static_cast<QMouseEvent&>(event).buttons() != Qt::NoButton;
        }
        case QEvent::Wheel:
            return takeWheel(widget);
        case QEvent::ShortcutOverride:
            event.accept();  // the key comes as one, and is taken below
            return true;
        case QEvent::KeyPress:
            return takeKey(static_cast<QKeyEvent&>(event));
        case QEvent::InputMethod: {
            Control* const field = controlOf(&widget);
            if (!field || field->kind() != ControlKind::kRichEdit) return false;
            const QString text = static_cast<QInputMethodEvent&>(event).commitString();
            if (!text.isEmpty()) userTyped(*field, fromQt(text));
            return true;
        }
        case QEvent::ContextMenu:
            return takeContextMenu(widget, static_cast<QContextMenuEvent&>(event));
        case QEvent::Close:
            if (&widget != root_.get()) return false;
            event.ignore();
            userClosed();
            return true;
        default:
            return false;
    }
}

// The focus moves before the click is seen by the control, which would act on it at once.
bool QtView::takeMouseButton(QWidget& widget, const QMouseEvent& event) {
    Control* const control = controlOf(&widget);
    if (!control || !control->canHaveFocus()) return false;
    if (event.button() == Qt::RightButton && !control->isField()) return false;
    if (control->kind() == ControlKind::kTab) {
        const auto* const bar = qobject_cast<QTabBar*>(&widget);
        const int page = bar && event.button() == Qt::LeftButton ? bar->tabAt(event.position().toPoint()) : -1;
        if (page >= 0) userChose(*control, page);
        return page >= 0;
    }
    if (!moveFocus(*control) || run_.hasEnded()) return true;
    const QAbstractItemView* const items = itemsOf(widgetOf(*control));
    return items && items->viewport() == &widget && takeItemClick(*control, event);
}

bool QtView::takeItemClick(Control& list, const QMouseEvent& event) {
    const int item = itemsOf(widgetOf(list))->indexAt(event.position().toPoint()).row();
    const bool left = event.button() == Qt::LeftButton;
    if (item < 0 || item >= list.itemCount()) return true;
    if (left && event.type() == QEvent::MouseButtonDblClick)
        userDoubleClicked(list, list.selected);
    else if (left || list.kind() == ControlKind::kListView)
        userChose(list, item);
    return true;
}

bool QtView::takeKey(const QKeyEvent& event) {
    const Control* const focus = run_.focus();
    const auto key = keyOf(event);
    const bool isVertical = key == Key::kUp || key == Key::kDown;
    const bool isOneLine = focus && focus->kind() == ControlKind::kEdit && !focus->isMultiLine();
    if (key && (isOwnKey(*key) || (isVertical && isOneLine))) {
        const bool shift = event.modifiers().testFlag(Qt::ShiftModifier) || event.key() == Qt::Key_Backtab;
        userPressedKey(*key, shift);
        return true;
    }
    return takeText(event);
}

// A mnemonic needs no Alt where letters are not typed.
bool QtView::takeText(const QKeyEvent& event) {
    Control* const focus = run_.focus();
    const bool alt = event.modifiers().testFlag(Qt::AltModifier);
    QString text = event.text();
    if (alt && !isShownText(text) && event.key() > Qt::Key_Space && event.key() < 0x7F) text = QChar(event.key());
    const bool isText = isShownText(text) && !event.modifiers().testFlag(Qt::ControlModifier);
    if (focus && focus->kind() == ControlKind::kRichEdit && !alt) {
        if (isText) userTyped(*focus, fromQt(text));
        return isText;
    }
    if (!isText || text.front() == u' ' || (!alt && focus && focus->isField())) return false;
    return userPressedMnemonic(fromQt(text).front()) || alt;  // a field would take it for a letter
}

// A wheel that scrolls past must not change what it comes upon.
bool QtView::takeWheel(const QWidget& widget) {
    const Control* const control = controlOf(&widget);
    if (!control) return false;
    switch (control->kind()) {
        case ControlKind::kCombo:
        case ControlKind::kEditCombo:
            return control != run_.focus();
        case ControlKind::kTab:
        case ControlKind::kRichEdit:
            return true;
        default:
            return false;
    }
}

bool QtView::takeContextMenu(const QWidget& widget, const QContextMenuEvent& event) {
    Control* const control = controlOf(&widget);
    // The button has moved the focus already, where it may.
    if (control && control->isField() && event.reason() == QContextMenuEvent::Mouse && control != run_.focus())
        return true;
    const bool hasOwn =
        control && (control->kind() == ControlKind::kEdit || control->kind() == ControlKind::kEditCombo);
    if (!control || !control->canHaveFocus() || hasOwn) return false;
    const std::vector<MenuEntry> entries = userWantsMenu(*control);
    if (entries.empty()) return true;
    QMenu menu(root_.get());
    for (const MenuEntry& entry : entries) {
        QAction* const action = entry.text.empty() ? menu.addSeparator() : menu.addAction(toQt(entry.text));
        action->setEnabled(entry.enabled);
        action->setData(entry.command);
    }
    QAction* chosen = nullptr;
    Process::instance().waitFor([&] { chosen = menu.exec(event.globalPos()); });
    if (chosen && !run_.hasEnded()) run_.menuChosen(*control, chosen->data().toInt());
    return true;
}

void QtView::focusWentTo(const QWidget* widget) {
    if (!widget || widget->window() != root_.get()) return;
    // A box must not be shown while the toolkit moves the focus.
    QMetaObject::invokeMethod(
        this,
        [this] {
            const QWidget* const now = QApplication::focusWidget();
            if (!now || now->window() != root_.get() || run_.hasEnded()) return;
            Control* const control = controlOf(now);
            if (control && control != run_.focus()) guard([&] { moveFocus(*control); });
        },
        Qt::QueuedConnection);
}

// By a letter that an item begins with, say. Clicks and arrow keys do not come here.
void QtView::rowsSelected(Control& list) {
    const QModelIndexList selected = itemsOf(widgetOf(list))->selectionModel()->selectedRows();
    if (selected.isEmpty())
        changed(list, Aspect::kSelection);
    else
        userChose(list, selected.front().row());
}

// ---- doing as a user would

void QtView::press(Control& button) {
    if (auto* const widget = qobject_cast<QAbstractButton*>(widgetOf(button))) widget->click();
}

void QtView::typeText(Control& field, const std::wstring& text) {
    if (field.kind() == ControlKind::kRichEdit) return View::typeText(field, text);
    typeInto(widgetOf(field), toQt(text));
}

namespace {

void sendClick(QWidget* widget, const QPoint& place, QEvent::Type press) {
    for (const QEvent::Type type : {press, QEvent::MouseButtonRelease}) {
        const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, place, widget->mapToGlobal(place), Qt::LeftButton, held, Qt::NoModifier);
        QCoreApplication::sendEvent(widget, &event);
    }
}

// Where a hand clicks for that row; none for a row without cells.
std::optional<QPoint> placeOfItem(QAbstractItemView& items, int item) {
    const QModelIndex index = itemIndex(items, item);
    if (!index.isValid()) return std::nullopt;
    items.scrollTo(index);
    const QRect place = items.visualRect(index);
    const QPoint point(place.left() + std::min(2, place.width() / 2), place.center().y());
    return items.indexAt(point).row() == item ? std::optional(point) : std::nullopt;
}

}  // namespace

void QtView::choose(Control& list, int item) {
    QWidget* const widget = widgetOf(list);
    if (auto* const combo = qobject_cast<QComboBox*>(widget)) {
        {
            const Applying applying(*this);
            combo->setCurrentIndex(item);
        }
        emit combo->activated(item);
    } else if (auto* const tabs = qobject_cast<QTabWidget*>(widget)) {
        sendClick(tabs->tabBar(), tabs->tabBar()->tabRect(item).center(), QEvent::MouseButtonPress);
    } else if (QAbstractItemView* const items = itemsOf(widget)) {
        if (const auto place = placeOfItem(*items, item))
            sendClick(items->viewport(), *place, QEvent::MouseButtonPress);
        else
            userChose(list, item);
    }
}

void QtView::doubleClick(Control& list, int row) {
    QAbstractItemView* const items = itemsOf(widgetOf(list));
    if (const auto place = placeOfItem(*items, row))
        sendClick(items->viewport(), *place, QEvent::MouseButtonDblClick);
    else
        userDoubleClicked(list, row);
}

void QtView::sendKey(int key, Qt::KeyboardModifiers modifiers, const QString& text) {
    QWidget* const focus = run_.focus() ? widgetOf(*run_.focus()) : nullptr;
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        if (run_.hasEnded()) return;
        QKeyEvent event(type, key, modifiers, text);
        QCoreApplication::sendEvent(focus ? focus : root_.get(), &event);
    }
}

void QtView::pressKey(Key key, bool shift) {
    const auto* const known = std::find_if(std::begin(kKeyCodes), std::end(kKeyCodes),
                                           [key](const auto& candidate) { return candidate.key == key; });
    sendKey(known->code,
            (shift ? Qt::ShiftModifier : Qt::NoModifier) | (known->control ? Qt::ControlModifier : Qt::NoModifier),
            key == Key::kSpace   ? QStringLiteral(" ")
            : key == Key::kEnter ? QStringLiteral("\r")
                                 : QString());
}

void QtView::pressMnemonic(wchar_t letter) {
    sendKey(QChar::toUpper(static_cast<char32_t>(letter)), Qt::AltModifier, toQt({&letter, 1}));
}

void QtView::dragColumn(Control& list, int column, int width) {
    static_cast<QTreeView*>(widgetOf(list))
        ->header()
        ->resizeSection(column, static_cast<int>(std::lround(width * scale())));
}

void QtView::close() { root_->close(); }

}  // namespace dialogs
