// A window of Qt: menu, toolbar, canvas, tabs, history, prompt, command line and status, from the top down.
//
// The command line has the focus whenever no other control was given it, so what is typed lands there, wherever the
// mouse is. Qt delivers all events that have come at once, and a view takes one at a time: what comes after the first
// stands in a row until the view waits again. Exceptions must not pass through Qt; they are kept, and thrown again
// where the view waits.
#include <chrono>
#include <cmath>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDropEvent>
#include <QEventLoop>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QScreen>
#include <QScrollBar>
#include <QSplitter>
#include <QStatusBar>
#include <QTabBar>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <QWindow>
#include <utility>

#include "dialogs/qt/qt_text.h"
#include "dialogs/qt/screen.h"
#include "torvelhost/window/prompt_words.h"
#include "torvelhost/window/qt_canvas.h"
#include "torvelhost/window/window_hand.h"

namespace host {
namespace {

using dialogs::fromQt;
using dialogs::toQt;

constexpr int kHistoryLines = 5;
constexpr int kLongestHistory = 5000;  // lines

constexpr struct {
    int code;
    Key key;
} kKeys[] = {
    {Qt::Key_Return, Key::kEnter}, {Qt::Key_Enter, Key::kEnter}, {Qt::Key_Escape, Key::kEscape},
    {Qt::Key_Space, Key::kSpace},  {Qt::Key_Tab, Key::kTab},     {Qt::Key_Up, Key::kUp},
    {Qt::Key_Down, Key::kDown},    {Qt::Key_F1, Key::kHelp},     {Qt::Key_Delete, Key::kDelete},
};

std::optional<Key> keyOf(const QKeyEvent& event) {
    if ((event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) != 0) return std::nullopt;
    for (const auto& known : kKeys)
        if (known.code == event.key()) return known.key;
    return std::nullopt;
}

bool isHeld(int key) { return key >= Qt::Key_Shift && key <= Qt::Key_Alt; }

bool isTyped(const QKeyEvent& event) {
    const bool isCommand = (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
    return !isCommand && !event.text().isEmpty() && event.text().front().isPrint();
}

bool isInput(QEvent::Type type) {
    switch (type) {
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::Shortcut:
        case QEvent::ShortcutOverride:
        case QEvent::InputMethod:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::Wheel:
        case QEvent::ContextMenu:
        case QEvent::Drop:
        case QEvent::Close:
            return true;
        default:
            return false;
    }
}

// The prompt with its words as links.
QString linkText(const std::wstring& prompt, const std::vector<std::wstring>& words) {
    QString text;
    std::size_t done = 0;
    const std::vector<std::size_t> places = wordPlaces(prompt, words);
    for (std::size_t i = 0; i < places.size(); ++i) {
        text += toQt(prompt.substr(done, places[i] - done)).toHtmlEscaped();
        text += QStringLiteral("<a href=\"%1\">%2</a>").arg(i).arg(toQt(words[i]).toHtmlEscaped());
        done = places[i] + words[i].size();
    }
    return text + toQt(prompt.substr(done)).toHtmlEscaped();
}

class QtFrame final : public QMainWindow, public ViewFrame, public WindowHand {
  public:
    QtFrame();
    ~QtFrame() override { qApp->removeEventFilter(this); }

    void open(ViewEvents& events) override;
    void waitForEvents(std::optional<std::int64_t> until) override;
    std::int64_t now() override;
    bool breathe() override;

    void showPicture(const PixelBuffer& picture) override { canvas_.show(picture); }
    void setCursor(Cursor cursor) override;
    void setTip(const std::wstring& text, CanvasPoint at) override { canvas_.setTip(toQt(text), at); }

    void setTitle(const std::wstring& title) override;
    void setStatus(const std::wstring& text) override { status_.setText(toQt(text)); }
    void setProgress(double part) override;
    void setMenus(const std::vector<Menu>& menus) override;
    void setTabs(const std::vector<std::wstring>& names, std::size_t current) override;

    void setPrompt(const std::wstring& prompt, const std::vector<std::wstring>& words) override;
    void setCommandText(const std::wstring& text) override { line_.setText(toQt(text)); }
    void addHistory(const std::wstring& text) override;

    void* nativeWindow() override { return static_cast<QWidget*>(this); }
    void activate() override;

    /// ---- as a hand works it
    void resizeCanvas(int width, int height) override;
    void mouse(Mouse what, MouseButton button, CanvasPoint at, bool shift) override;
    void leaveCanvas() override;
    void turnWheel(double notches, CanvasPoint at) override;
    void pressKey(Key key) override;
    void pressBackspace() override { send(QKeyEvent(QEvent::KeyPress, Qt::Key_Backspace, Qt::NoModifier)); }
    void type(wchar_t character) override;
    void enterText(const std::wstring& text) override;
    std::wstring commandText() const override { return fromQt(line_.text()); }
    void chooseEntry(const std::wstring& path) override;
    void clickTab(std::size_t index) override;
    void clickWord(std::size_t index) override;
    void dropFile(const std::wstring& path) override;
    void clickClose() override {
        work([this] { close(); });
    }

  private:
    using Action = QtCanvas::Action;

    void layOut();
    void connectParts();
    void tellSize();

    /// ---- handing over
    void handOver(const Action& action);
    void doNow(const Action& action);
    /// Does what a hand would, and hands it over.
    void work(const std::function<void()>& deed);
    void send(QEvent&& event);
    template <class MakeEvent>
    void sendAt(CanvasPoint at, MakeEvent makeEvent);
    void sendToCanvas(QEvent&& event);
    bool mustWait() const { return !waiting_ || doing_ || handedOver_ || !row_.empty(); }

    /// ---- events, before the widgets get them. True: the event is done with
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool takeKey(QWidget& widget, QKeyEvent& event);
    void doKey(QKeyEvent& event);
    void giveToLine(QEvent& event);
    bool isShortcut(const QKeyEvent& event) const;
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

    ViewEvents* events_ = nullptr;
    QtCanvas canvas_;
    QToolBar* toolbar_ = nullptr;
    QTabBar tabs_;
    QPlainTextEdit history_;
    QLabel prompt_, status_;
    QLineEdit line_;
    QProgressBar progress_;
    std::vector<Menu> menus_;
    std::vector<QAction*> actions_;  // one for each entry of the menus that is no line

    std::deque<Action> row_;  // what came while something else was handed over
    bool endsLine_ = false;   // the history, with a line end that it does not show yet
    bool waiting_ = false;
    bool handedOver_ = false;  // something, since the view began to wait
    bool doing_ = false;       // it is being done just now
    bool typing_ = false;      // a key is given to the command line
    bool breathing_ = false;
    bool escaped_ = false;
    QSize toldSize_;
    double toldScale_ = 0;
    std::exception_ptr failure_;
    Qt::MouseButtons held_;  // by a hand that a script moves
    bool isSecondClick_ = false;
};

// ---- making it

QtFrame::QtFrame() : canvas_([this](const Action& action) { handOver(action); }) {
    layOut();
    connectParts();
    setAcceptDrops(true);
    qApp->installEventFilter(this);
}

// The names are what screen readers say, and the tests go by.
void QtFrame::layOut() {
    const auto name = [](QWidget& part, const QString& text) {
        part.setObjectName(text);
        part.setAccessibleName(text);
    };
    name(canvas_, QStringLiteral("Drawing"));
    name(tabs_, QStringLiteral("Layouts"));
    name(history_, QStringLiteral("History"));
    name(prompt_, QStringLiteral("Prompt"));
    name(line_, QStringLiteral("Command line"));
    name(status_, QStringLiteral("Status"));
    name(progress_, QStringLiteral("Progress"));
    toolbar_ = addToolBar(QStringLiteral("Tools"));
    name(*toolbar_, QStringLiteral("Tools"));
    toolbar_->setMovable(false);
    toolbar_->setContextMenuPolicy(Qt::PreventContextMenu);
    setContextMenuPolicy(Qt::NoContextMenu);

    tabs_.setShape(QTabBar::RoundedSouth);
    tabs_.setExpanding(false);
    tabs_.setDocumentMode(true);
    tabs_.setUsesScrollButtons(true);
    tabs_.setElideMode(Qt::ElideRight);
    history_.setReadOnly(true);
    history_.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    history_.setTabChangesFocus(true);
    history_.setMaximumBlockCount(kLongestHistory);
    history_.setMinimumHeight(2 * history_.fontMetrics().lineSpacing());
    prompt_.setTextFormat(Qt::RichText);
    prompt_.setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    prompt_.setWordWrap(true);
    prompt_.setBuddy(&line_);
    line_.setContextMenuPolicy(Qt::DefaultContextMenu);

    auto* const drawing = new QWidget;
    auto* const drawingBox = new QVBoxLayout(drawing);
    drawingBox->setContentsMargins(0, 0, 0, 0);
    drawingBox->setSpacing(0);
    drawingBox->addWidget(&canvas_, 1);
    drawingBox->addWidget(&tabs_);
    auto* const parts = new QSplitter(Qt::Vertical);
    parts->addWidget(drawing);
    parts->addWidget(&history_);
    parts->setStretchFactor(0, 1);
    parts->setStretchFactor(1, 0);
    parts->setChildrenCollapsible(false);
    const int historyHeight = kHistoryLines * history_.fontMetrics().lineSpacing() + 12;
    parts->setSizes({10000, historyHeight});

    auto* const middle = new QWidget;
    auto* const box = new QVBoxLayout(middle);
    box->setContentsMargins(2, 0, 2, 2);
    box->setSpacing(2);
    box->addWidget(parts, 1);
    box->addWidget(&prompt_);
    box->addWidget(&line_);
    setCentralWidget(middle);

    progress_.setRange(0, 1000);
    progress_.setTextVisible(false);
    progress_.setMaximumSize(200, status_.sizeHint().height());
    progress_.hide();
    status_.setIndent(4);
    statusBar()->addWidget(&status_, 1);
    statusBar()->addPermanentWidget(&progress_);
    // Tab goes round in this order.
    QWidget* const order[] = {&line_, &prompt_, toolbar_, &tabs_, &history_};
    for (std::size_t i = 0; i + 1 < std::size(order); ++i) setTabOrder(order[i], order[i + 1]);
    resize(QSize(1280, 900).boundedTo(screen()->availableSize() * 9 / 10));
}

void QtFrame::connectParts() {
    canvas_.onResized = [this] { tellSize(); };
    canvas_.onPressed = [this] { line_.setFocus(Qt::MouseFocusReason); };
    connect(
        &line_, &QLineEdit::textEdited, this,
        [this](const QString& text) {
            if (typing_) return events_->commandTextChanged(fromQt(text));
            handOver([this](ViewEvents& events) { events.commandTextChanged(fromQt(line_.text())); });
        });
    connect(
        &tabs_, &QTabBar::currentChanged, this,
        [this](int tab) {
            if (tab < 0) return;
            handOver([tab](ViewEvents& events) { events.tabChosen(static_cast<std::size_t>(tab)); });
        });
    connect(&prompt_, &QLabel::linkActivated, this, [this](const QString& word) {
        line_.setFocus(Qt::OtherFocusReason);
        handOver([index = word.toULong()](ViewEvents& events) { events.wordChosen(index); });
    });
}

void QtFrame::open(ViewEvents& events) {
    events_ = &events;
    QMainWindow::show();
    activate();
    // The view shows a drawing in the size that there is.
    QEventLoop().processEvents(QEventLoop::ExcludeUserInputEvents);
    waiting_ = true;
    tellSize();
    waiting_ = false;
}

void QtFrame::activate() {
    raise();
    activateWindow();
    line_.setFocus(Qt::OtherFocusReason);
}

// ---- handing over

void QtFrame::handOver(const Action& action) { mustWait() ? row_.push_back(action) : doNow(action); }

void QtFrame::doNow(const Action& action) {
    handedOver_ = true;
    const bool before = std::exchange(doing_, true);
    try {
        action(*events_);
    } catch (...) {
        if (!failure_) failure_ = std::current_exception();
    }
    doing_ = before;
}

// The canvas may change its size while the view cannot be told.
void QtFrame::tellSize() {
    if (!waiting_ || doing_ || isMinimized()) return;
    const QSize size = canvas_.pixelSize();
    const double scale = canvas_.devicePixelRatioF() * canvas_.logicalDpiX() / 96.0;
    if (size == toldSize_ && scale == toldScale_) return;
    toldSize_ = size;
    toldScale_ = scale;
    doNow([size, scale](ViewEvents& events) { events.resized(size.width(), size.height(), scale); });
}

void QtFrame::waitForEvents(std::optional<std::int64_t> until) {
    const bool wasWaiting = std::exchange(waiting_, true);
    const bool wasDoing = std::exchange(doing_, false);
    handedOver_ = false;
    tellSize();
    if (!handedOver_ && !row_.empty()) {
        const Action action = std::move(row_.front());
        row_.pop_front();
        doNow(action);
    }
    QEventLoop loop;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    timer.setSingleShot(true);
    if (until) timer.start(static_cast<int>(std::clamp<std::int64_t>(*until - now(), 0, 60000)));
    if (!handedOver_) loop.processEvents();
    while (!handedOver_ && !(until && now() >= *until)) loop.processEvents(QEventLoop::WaitForMoreEvents);
    waiting_ = wasWaiting;
    doing_ = wasDoing;
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

std::int64_t QtFrame::now() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

bool QtFrame::breathe() {
    const bool before = std::exchange(breathing_, true);
    QEventLoop().processEvents();
    breathing_ = before;
    return std::exchange(escaped_, false);
}

// ---- events

bool QtFrame::eventFilter(QObject* watched, QEvent* event) {
    if (breathing_ && isInput(event->type())) {
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
            escaped_ = true;
        return true;
    }
    auto* const widget = qobject_cast<QWidget*>(watched);
    if (!widget || !events_ || widget->window() != this) return false;
    switch (event->type()) {
        case QEvent::ShortcutOverride: {
            // A field keeps keys such as Ctrl+Z to itself.
            const auto& key = static_cast<const QKeyEvent&>(*event);
            if (isShortcut(key)) event->ignore();
            return isShortcut(key);
        }
        case QEvent::KeyPress:
            return takeKey(*widget, static_cast<QKeyEvent&>(*event));
        case QEvent::InputMethod:
            if (widget != &line_ || typing_) return false;
            handOver([this, later = std::shared_ptr<QEvent>(event->clone())](ViewEvents&) { giveToLine(*later); });
            return true;
        default:
            return false;
    }
}

bool QtFrame::isShortcut(const QKeyEvent& event) const {
    const QKeySequence pressed(event.keyCombination());
    return std::ranges::any_of(actions_, [&](const QAction* action) {
        return !action->shortcut().isEmpty() && action->shortcut() == pressed;
    });
}

// Keys reach the view before a control: all of them where one types, elsewhere those that mean the same everywhere.
bool QtFrame::takeKey(QWidget& widget, QKeyEvent& event) {
    if (typing_ || QApplication::activePopupWidget() || qobject_cast<QMenuBar*>(&widget)) return false;
    if (isHeld(event.key())) return false;
    if (event.modifiers().testFlag(Qt::ControlModifier) &&
        (event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab)) {
        // All round, whatever has the focus.
        handOver([this, step = event.key() == Qt::Key_Tab ? 1 : -1](ViewEvents&) {
            if (const int count = tabs_.count()) tabs_.setCurrentIndex((tabs_.currentIndex() + step + count) % count);
        });
        return true;
    }
    const bool isLine = &widget == &line_ || &widget == this || &widget == &canvas_;
    const auto key = keyOf(event);
    const bool isEverywhere = key == Key::kEscape || key == Key::kHelp;
    const bool goesToLine = isTyped(event) && event.key() != Qt::Key_Space;
    if (!isLine && !isEverywhere && !goesToLine) return false;
    if (isLine && !key && !isTyped(event) && !mustWait()) return false;  // moves of the caret, say
    const Action action = [this, later = std::shared_ptr<QKeyEvent>(event.clone())](ViewEvents&) { doKey(*later); };
    handOver(action);
    return true;
}

void QtFrame::doKey(QKeyEvent& event) {
    const auto key = keyOf(event);
    const bool isTaken = key && events_->keyPressed(*key);
    if (isTaken || key != Key::kTab) line_.setFocus(Qt::OtherFocusReason);
    if (isTaken || key == Key::kEnter) return;
    giveToLine(event);
}

void QtFrame::giveToLine(QEvent& event) {
    typing_ = true;
    QCoreApplication::sendEvent(&line_, &event);
    typing_ = false;
}

void QtFrame::closeEvent(QCloseEvent* event) {
    event->ignore();
    handOver([](ViewEvents& events) { events.closeAsked(); });
}

void QtFrame::dragEnterEvent(QDragEnterEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty() && urls.front().isLocalFile()) event->acceptProposedAction();
}

void QtFrame::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty()) return;
    event->acceptProposedAction();
    handOver([path = fromQt(urls.front().toLocalFile())](ViewEvents& events) { events.fileDropped(path); });
}

// ---- what it shows

void QtFrame::setCursor(Cursor cursor) {
    switch (cursor) {
        case Cursor::kNone:
            return canvas_.setCursor(Qt::BlankCursor);
        case Cursor::kArrow:
            return canvas_.setCursor(Qt::ArrowCursor);
        case Cursor::kWait:
            return canvas_.setCursor(Qt::WaitCursor);
    }
}

// Qt has a use of its own for "[*]".
void QtFrame::setTitle(const std::wstring& title) {
    setWindowTitle(toQt(title).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")));
}

void QtFrame::setProgress(double part) {
    progress_.setVisible(part >= 0);
    progress_.setValue(static_cast<int>(std::clamp(part, 0.0, 1.0) * progress_.maximum()));
}

void QtFrame::setMenus(const std::vector<Menu>& menus) {
    if (menus == menus_) return;
    menus_ = menus;
    menuBar()->clear();
    toolbar_->clear();
    qDeleteAll(std::exchange(actions_, {}));
    for (const Menu& menu : menus) {
        QMenu* const shown = menuBar()->addMenu(toQt(menu.title));
        shown->setToolTipsVisible(true);
        bool isFirst = true;
        for (const MenuEntry& entry : menu.entries) {
            if (entry.text.empty()) {
                shown->addSeparator();
                continue;
            }
            auto* const action = new QAction(toQt(entry.text), this);
            action->setShortcut(QKeySequence(toQt(entry.shortcut)));
            action->setStatusTip(toQt(entry.hint));
            action->setToolTip(toQt(entry.shortcut.empty() ? entry.hint : entry.hint + L" (" + entry.shortcut + L")"));
            connect(action, &QAction::triggered, this, [this, path = entry.path] {
                line_.setFocus(Qt::OtherFocusReason);
                handOver([path](ViewEvents& events) { events.menuChosen(path); });
            });
            actions_.push_back(action);
            shown->addAction(action);
            if (!entry.inToolbar) continue;
            if (isFirst && !toolbar_->actions().isEmpty()) toolbar_->addSeparator();
            isFirst = false;
            toolbar_->addAction(action);
        }
    }
    for (QWidget* const button : toolbar_->findChildren<QWidget*>()) button->setFocusPolicy(Qt::TabFocus);
    toolbar_->setVisible(!toolbar_->actions().isEmpty());
}

void QtFrame::setTabs(const std::vector<std::wstring>& names, std::size_t current) {
    const QSignalBlocker quiet(tabs_);
    const int count = static_cast<int>(names.size());
    while (tabs_.count() > count) tabs_.removeTab(tabs_.count() - 1);
    while (tabs_.count() < count) tabs_.addTab({});
    for (int i = 0; i < count; ++i)
        tabs_.setTabText(i, toQt(names[static_cast<std::size_t>(i)]).replace(u'&', QStringLiteral("&&")));
    tabs_.setCurrentIndex(static_cast<int>(current));
}

void QtFrame::setPrompt(const std::wstring& prompt, const std::vector<std::wstring>& words) {
    prompt_.setText(linkText(prompt, words));
    line_.setAccessibleDescription(toQt(prompt));
}

void QtFrame::addHistory(const std::wstring& text) {
    QTextCursor end(history_.document());
    end.movePosition(QTextCursor::End);
    // The last line end waits for what comes behind it: the lowest line is not to be an empty one.
    QString added = toQt(text);
    if (std::exchange(endsLine_, added.endsWith(u'\n'))) added.prepend(u'\n');
    if (endsLine_) added.chop(1);
    end.insertText(added);
    QScrollBar* const bar = history_.verticalScrollBar();
    bar->setValue(bar->maximum());
}

// ---- as a hand works it

void QtFrame::work(const std::function<void()>& deed) {
    const bool wasWaiting = std::exchange(waiting_, true);
    const bool wasDoing = std::exchange(doing_, false);
    handedOver_ = false;
    deed();
    waiting_ = wasWaiting;
    doing_ = wasDoing;
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

// Through the window, as events of the system come.
void QtFrame::send(QEvent&& event) {
    work([&] { QCoreApplication::sendEvent(windowHandle(), &event); });
}

void QtFrame::resizeCanvas(int width, int height) {
    const QSize wanted = (QSizeF(width, height) / devicePixelRatioF()).toSize();
    if (canvas_.size() == wanted) return;
    work([&] {
        resize(size() + wanted - canvas_.size());
        QEventLoop().processEvents(QEventLoop::ExcludeUserInputEvents);
        tellSize();
    });
}

void QtFrame::mouse(Mouse what, MouseButton button, CanvasPoint at, bool shift) {
    constexpr Qt::MouseButton kButtons[] = {Qt::LeftButton, Qt::MiddleButton, Qt::RightButton};
    constexpr QEvent::Type kTypes[] = {QEvent::MouseMove, QEvent::MouseButtonPress, QEvent::MouseButtonRelease,
                                       QEvent::MouseButtonDblClick};
    const Qt::MouseButton pressed = kButtons[static_cast<int>(button)];
    if (what == Mouse::kPress || what == Mouse::kDoubleClick) held_ |= pressed;
    if (what == Mouse::kRelease) held_ &= ~pressed;
    const auto makeEvent = [&](const QPointF& place) {
        return QMouseEvent(kTypes[static_cast<int>(what)], place, mapToGlobal(place),
                           what == Mouse::kMove ? Qt::NoButton : pressed, held_,
                           shift ? Qt::ShiftModifier : Qt::NoModifier);
    };
    // A window drops a release that no press came before, and the second press of a double click is none.
    if (what == Mouse::kRelease && isSecondClick_)
        sendToCanvas(makeEvent(QPointF(at.x, at.y) / devicePixelRatioF()));
    else
        sendAt(at, makeEvent);
    if (what != Mouse::kMove) isSecondClick_ = what == Mouse::kDoubleClick;
}

// Windows round what lies between two pixels, where no hand comes but a script does.
template <class MakeEvent>
void QtFrame::sendAt(CanvasPoint at, MakeEvent makeEvent) {
    const QPointF place = QPointF(at.x, at.y) / devicePixelRatioF();
    const QPointF inWindow = canvas_.mapTo(this, place);
    if (inWindow == inWindow.toPoint()) return send(makeEvent(inWindow));
    sendToCanvas(makeEvent(place));
}

void QtFrame::sendToCanvas(QEvent&& event) {
    work([&] { QCoreApplication::sendEvent(&canvas_, &event); });
}

void QtFrame::leaveCanvas() { sendToCanvas(QEvent(QEvent::Leave)); }

void QtFrame::turnWheel(double notches, CanvasPoint at) {
    constexpr int kNotch = 120;
    sendAt(at, [&](const QPointF& place) {
        return QWheelEvent(place, mapToGlobal(place), {}, {0, static_cast<int>(std::lround(notches * kNotch))},
                           Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    });
}

void QtFrame::pressKey(Key key) {
    const auto* const known =
        std::ranges::find_if(kKeys, [key](const auto& candidate) { return candidate.key == key; });
    send(
        QKeyEvent(QEvent::KeyPress, known->code, Qt::NoModifier, key == Key::kSpace ? QStringLiteral(" ") : QString()));
}

void QtFrame::type(wchar_t character) {
    send(QKeyEvent(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, toQt({&character, 1})));
}

void QtFrame::enterText(const std::wstring& text) {
    work([&] {
        line_.setFocus(Qt::OtherFocusReason);
        line_.selectAll();
        QInputMethodEvent composed;
        composed.setCommitString(toQt(text));
        QCoreApplication::sendEvent(&line_, &composed);
    });
}

void QtFrame::chooseEntry(const std::wstring& path) {
    std::size_t next = 0;
    for (const Menu& menu : menus_)
        for (const MenuEntry& entry : menu.entries) {
            if (entry.text.empty()) continue;
            QAction* const action = actions_[next++];
            if (entry.path == path) return work([action] { action->trigger(); });
        }
}

void QtFrame::clickTab(std::size_t index) {
    const QPointF place = tabs_.mapTo(this, QPointF(tabs_.tabRect(static_cast<int>(index)).center()));
    send(QMouseEvent(QEvent::MouseButtonPress, place, mapToGlobal(place), Qt::LeftButton, Qt::LeftButton, {}));
    send(QMouseEvent(QEvent::MouseButtonRelease, place, mapToGlobal(place), Qt::LeftButton, {}, {}));
}

void QtFrame::clickWord(std::size_t index) {
    work([&] { emit prompt_.linkActivated(QString::number(index)); });
}

void QtFrame::dropFile(const std::wstring& path) {
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(toQt(path))});
    const QPoint place = canvas_.mapTo(this, canvas_.rect().center());
    work([&] {
        QDragEnterEvent enter(place, Qt::CopyAction, &files, Qt::LeftButton, {});
        QCoreApplication::sendEvent(this, &enter);
        QDropEvent drop(QPointF(place), Qt::CopyAction, &files, Qt::LeftButton, {});
        QCoreApplication::sendEvent(this, &drop);
    });
}

}  // namespace
}  // namespace host

/// Null, and why, where there is no screen.
extern "C" host::ViewFrame* torvelMakeViewFrame(const wchar_t** reason) {
    static std::wstring why;
    if (dialogs::openScreen(why)) return new host::QtFrame;
    *reason = why.c_str();
    return nullptr;
}
