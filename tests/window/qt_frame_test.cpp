// The window of Qt, worked by mouse and keys that come through its window as those of the system do.
#include <gmock/gmock.h>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QTest>
#include <QToolButton>
#include <QWheelEvent>

#include "dialogs/boxes.h"
#include "tests/dialogs/real_input.h"
#include "tests/window/recorded_events.h"
#include "torvelhost/window/make_frame.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

class QtFrame : public testing::Test {
  protected:
    void SetUp() override {
        std::wstring reason;
        frame = host::makeViewFrame(reason);
        ASSERT_TRUE(frame) << base::toUtf8(reason);
        fill(*frame);
        frame->open(events);
        settle();
        events.log.clear();
    }

    // Until nothing comes any more. Not all that is handed over is told.
    void settle() {
        std::size_t before = 0;
        for (int quiet = 0; quiet < 4; quiet = events.log.size() == before ? quiet + 1 : 0) {
            before = events.log.size();
            frame->waitForEvents(frame->now() + 10);
        }
    }
    QMainWindow& window() { return *static_cast<QMainWindow*>(static_cast<QWidget*>(frame->nativeWindow())); }
    template <class Widget>
    Widget& part(const char* name) {
        return *window().findChild<Widget*>(name);
    }
    QWidget& canvas() { return part<QWidget>("Drawing"); }
    QLineEdit& line() { return part<QLineEdit>("Command line"); }

    QPoint inWindow(int x, int y) { return canvas().mapTo(&window(), QPoint(x, y)); }
    void click(Qt::MouseButton button, int x, int y, Qt::KeyboardModifiers held = {}) {
        QTest::mouseClick(window().windowHandle(), button, held, inWindow(x, y));
    }
    void press(Qt::Key key, Qt::KeyboardModifiers held = {}) { QTest::keyClick(window().windowHandle(), key, held); }
    void type(const char* text) {
        for (; *text != '\0'; ++text) QTest::keyClick(window().windowHandle(), *text);
    }

    const OwnDesktop desktop;
    RecordedEvents events;
    std::unique_ptr<host::ViewFrame> frame;
};

TEST_F(QtFrame, MouseOverTheCanvas) {
    click(Qt::LeftButton, 40, 30);
    settle();
    EXPECT_THAT(events.log, IsSupersetOf({"pressed left 40,30", "released left 40,30"}));
    QTest::mouseDClick(window().windowHandle(), Qt::MiddleButton, {}, inWindow(50, 30));
    click(Qt::RightButton, 60, 30, Qt::ShiftModifier);
    QTest::mouseMove(window().windowHandle(), inWindow(70, 35));
    settle();
    EXPECT_THAT(events.log, IsSupersetOf({"double middle 50,30", "released middle 50,30", "pressed right 60,30 shift",
                                          "moved 70,35"}));
    QWheelEvent turn(inWindow(80, 40), canvas().mapToGlobal(QPoint(80, 40)), {}, {0, 240}, Qt::NoButton, Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QCoreApplication::postEvent(window().windowHandle(), turn.clone());
    settle();
    EXPECT_THAT(events.log, Contains("wheel 2 80,40"));
}

TEST_F(QtFrame, WhatIsTypedGoesToTheCommandLine) {
    click(Qt::LeftButton, 40, 30);
    settle();
    events.log.clear();
    events.takes = {host::Key::kEnter, host::Key::kEscape, host::Key::kUp};
    type("a 1");
    press(Qt::Key_Return);
    settle();
    EXPECT_THAT(events.log, ElementsAre("text a", "key Space", "text a ", "text a 1", "key Enter"));
    frame->setCommandText(L"xline");
    press(Qt::Key_Up);
    type("1");
    press(Qt::Key_Backspace);
    settle();
    EXPECT_EQ(events.log.back(), "text xline") << "the caret stands behind what was set";
    // From the history too, where Enter and blanks are its own.
    part<QPlainTextEdit>("History").setFocus();
    events.log.clear();
    press(Qt::Key_Space);
    type("q");
    settle();
    EXPECT_THAT(events.log, ElementsAre("text xlineq"));
    EXPECT_TRUE(line().hasFocus());
    // What an input method puts together.
    QInputMethodEvent composed;
    composed.setCommitString(QStringLiteral("ü"));
    QCoreApplication::sendEvent(&line(), &composed);
    settle();
    EXPECT_EQ(line().text().toStdString(), "xlineqü");
}

TEST_F(QtFrame, HandsOverOneThingAtATime) {
    click(Qt::LeftButton, 40, 30);
    type("ab");
    press(Qt::Key_Return);
    click(Qt::LeftButton, 41, 30);
    std::vector<std::string> each;
    for (int i = 0; i < 12; ++i) {
        events.log.clear();
        frame->waitForEvents(frame->now() + 30);
        std::erase_if(events.log, [](const std::string& what) { return what.starts_with("moved"); });
        if (!events.log.empty()) each.push_back(testing::PrintToString(events.log));
    }
    EXPECT_THAT(each, ElementsAre("{ \"pressed left 40,30\" }", "{ \"released left 40,30\" }", "{ \"text a\" }",
                                  "{ \"text ab\" }", "{ \"key Enter\" }", "{ \"pressed left 41,30\" }",
                                  "{ \"released left 41,30\" }"));
}

TEST_F(QtFrame, MenusTabsAndWords) {
    type("x");
    press(Qt::Key_Z, Qt::ControlModifier);  // not the field's own
    press(Qt::Key_S, Qt::ControlModifier);
    settle();
    EXPECT_THAT(events.log, ElementsAre("text x", "menu Edit/Undo", "menu File/Save"));
    events.log.clear();

    press(Qt::Key_F, Qt::AltModifier);
    settle();
    QWidget* const menu = QApplication::activePopupWidget();
    ASSERT_TRUE(menu);
    QTest::keyClick(menu, Qt::Key_S);
    settle();
    EXPECT_THAT(events.log, ElementsAre("menu File/Save"));
    events.log.clear();

    QTabBar& tabs = part<QTabBar>("Layouts");
    QTest::mouseClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(1).center());
    frame->setTabs({L"Model", L"A & B"}, 1);  // tells nothing
    part<QLabel>("Prompt").setFocus();
    press(Qt::Key_Tab);
    press(Qt::Key_Return);
    settle();
    EXPECT_THAT(events.log, ElementsAre("tab 1", "word 0"));
    EXPECT_TRUE(line().hasFocus());
    events.log.clear();
    press(Qt::Key_Tab, Qt::ControlModifier);
    settle();
    press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    settle();
    EXPECT_THAT(events.log, ElementsAre("tab 0", "tab 1"));
    EXPECT_EQ(window().findChildren<QToolButton*>(QString(), Qt::FindDirectChildrenOnly).size(), 0);
}

TEST_F(QtFrame, TabReachesEveryPart) {
    std::set<std::string> reached;
    for (int i = 0; i < 12; ++i) {
        press(Qt::Key_Tab);
        settle();
        const QWidget* const focus = QApplication::focusWidget();
        ASSERT_TRUE(focus);
        reached.insert(focus->objectName().isEmpty() ? focus->parentWidget()->objectName().toStdString()
                                                     : focus->objectName().toStdString());
    }
    EXPECT_THAT(reached, ElementsAre("Command line", "History", "Layouts", "Prompt", "Tools"));
    for (QWidget* const widget : window().findChildren<QWidget*>()) {
        if (!widget->isVisible() || (widget->focusPolicy() == Qt::NoFocus && widget != &canvas())) continue;
        QAccessibleInterface* const asked = QAccessible::queryAccessibleInterface(widget);
        EXPECT_TRUE(asked && !asked->text(QAccessible::Name).isEmpty())
            << "for screen readers: " << widget->metaObject()->className();
    }
}

TEST_F(QtFrame, WhileACommandWorksOnlyEscapeIsHeard) {
    const auto post = [this](QEvent* event) { QCoreApplication::postEvent(window().windowHandle(), event); };
    post(new QKeyEvent(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a")));
    EXPECT_FALSE(frame->breathe());
    post(new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
    const QPointF place = inWindow(40, 30);
    post(new QMouseEvent(QEvent::MouseButtonPress, place, place, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier));
    EXPECT_TRUE(frame->breathe());
    EXPECT_FALSE(frame->breathe());
    settle();
    EXPECT_THAT(events.log, IsEmpty());
}

TEST_F(QtFrame, ShowsPixelsOneForOne) {
    host::PixelBuffer picture;
    picture.width = events.width;
    picture.height = events.height;
    picture.pixels.assign(static_cast<std::size_t>(events.width) * events.height, 0xFF203040);
    frame->showPicture(picture);
    picture.pixels[static_cast<std::size_t>(5) * events.width + 7] = 0xFFFF0000;
    frame->showPicture(picture);
    settle();
    const QImage shown = canvas().grab().toImage();
    EXPECT_EQ(shown.size(), QSize(events.width, events.height));
    EXPECT_EQ(shown.pixel(7, 5), 0xFFFF0000);
    EXPECT_EQ(shown.pixel(8, 5), 0xFF203040);
    EXPECT_EQ(shown.pixel(0, 0), 0xFF203040);
    window().resize(700, 600);
    settle();
    EXPECT_THAT(events.log, Contains("resized"));
    EXPECT_EQ(events.width, static_cast<int>(canvas().width() * canvas().devicePixelRatioF()));
}

TEST_F(QtFrame, BelongsToTheViewWhatClosesAndComesFromElsewhere) {
    window().close();
    settle();
    EXPECT_TRUE(window().isVisible());
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile("/tmp/a b.dxf")});
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &files, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&window(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &files, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&window(), &drop);
    settle();
    EXPECT_THAT(events.log, ElementsAre("close", "dropped /tmp/a b.dxf"));
}

// A box that the view shows is modal: the window behind it does nothing, and shows pictures.
TEST_F(QtFrame, StandsBehindDialogs) {
    dialogs::useMainWindow(frame->nativeWindow());
    dialogs::Answer answer = dialogs::Answer::kCancel;
    std::string title;
    RealInput input;
    input.then([&] {
        title = base::toUtf8(dialogs::openTitle());
        click(Qt::LeftButton, 40, 30);
        window().resize(640, 560);
    });
    input.press(Key::kEnter);
    input.during([&] { answer = dialogs::messageBox(dialogs::BoxKind::kYesNo, L"Save?", L"torvelhost"); });
    dialogs::useMainWindow(nullptr);
    EXPECT_EQ(answer, dialogs::Answer::kYes);
    EXPECT_EQ(title, "torvelhost");
    EXPECT_THAT(events.log, IsEmpty());
    settle();
    EXPECT_THAT(events.log, Contains("resized"));
}

}  // namespace
