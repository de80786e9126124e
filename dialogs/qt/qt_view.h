// The widgets of one run of a dialog.
//
// An event filter of the application sees what the user does before a widget does: a mouse button over a control first
// moves the focus there as View does it, and is dropped when the field may not be left; the keys that View knows never
// reach a widget, nor does the toolkit see a shortcut in them. Where the focus went by another way it is asked for as
// soon as Qt is done with moving it.
//
// Exceptions must not pass through Qt. They are kept (`failure_`) and thrown again by the loop.
//
// Sizes are Qt's pixels, which it draws larger itself on a screen of high resolution.
#pragma once

#include <exception>
#include <memory>
#include <QObject>
#include <unordered_map>

#include "dialogs/run.h"

class QContextMenuEvent;
class QEvent;
class QKeyEvent;
class QMouseEvent;
class QWidget;

namespace dialogs {

class QtView final : public QObject, public View {
  public:
    explicit QtView(Run& run);
    ~QtView() override;

    void work() override;
    void* window() override { return root_.get(); }
    void setShown(bool on) override;
    void titleChanged() override;
    void changed(Control& control, Aspect aspect) override;
    void pageShown(Control& tab) override;
    void showFocus(Control* control) override;
    int listWidth(const Control& list) override;
    PixelRect place() override;
    void movePlace(int left, int top) override;
    double scale() override;
    void savePicture(const std::wstring& fileName) override;

    void press(Control& button) override;
    void typeText(Control& field, const std::wstring& text) override;
    void choose(Control& list, int item) override;
    void doubleClick(Control& list, int row) override;
    void pressKey(Key key, bool shift) override;
    void pressMnemonic(wchar_t letter) override;
    void dragColumn(Control& list, int column, int width) override;
    void close() override;

    /// The widget that owns what opens now: the innermost dialog, or the host's main window. Null: there is none.
    static QWidget* currentOwner();

  private:
    /// ---- making widgets
    void makeControls(Dialog& dialog, QWidget* parent);
    void connectWidget(Control& control, QWidget* widget);
    void connectBuddies(Dialog& dialog);
    /// For screen readers, where captions changed since.
    void nameControls();
    void centerOnOwner();

    /// ---- events, before a widget gets them. True: the event is done with
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool takeEvent(QWidget& widget, QEvent& event);
    bool takeMouseButton(QWidget& widget, const QMouseEvent& event);
    bool takeItemClick(Control& list, const QMouseEvent& event);
    bool takeKey(const QKeyEvent& event);
    bool takeText(const QKeyEvent& event);
    bool takeWheel(const QWidget& widget);
    bool takeContextMenu(const QWidget& widget, const QContextMenuEvent& event);
    void focusWentTo(const QWidget* widget);
    void rowsSelected(Control& list);

    void pump();
    void rethrow();
    template <class Action>
    void guard(Action action);
    /// For what a widget of the control tells of: nothing while it shows what the program changed.
    template <class Action>
    auto byUser(Action action);

    Control* controlOf(const QWidget* widget) const;
    QWidget* widgetOf(const Control& control) const;
    void sendKey(int key, Qt::KeyboardModifiers modifiers, const QString& text);

    /// While one lives, what widgets tell comes from the program's own doing.
    class Applying {
      public:
        explicit Applying(QtView& view) : view_(view) { ++view_.applying_; }
        ~Applying() { --view_.applying_; }
        Applying(const Applying&) = delete;
        Applying& operator=(const Applying&) = delete;

      private:
        QtView& view_;
    };

    QWidget* owner_;
    std::unique_ptr<QWidget> root_;
    std::unordered_map<const QWidget*, Control*> controls_;
    std::unordered_map<const Control*, QWidget*> widgets_;
    double unitWidth_ = 0, unitHeight_ = 0;  // of a dialog unit
    bool isPlaced_ = false;
    bool namesAreOld_ = false;
    int applying_ = 0;
    std::exception_ptr failure_;
};

}  // namespace dialogs
