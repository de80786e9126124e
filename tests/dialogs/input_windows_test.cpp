// What real input does in windows of the system alone.
#include <windows.h>

#include "base/modules.h"
#include "dialogs_test.h"
#include "tests/dialogs/real_input.h"

using namespace dialogs;

// The host counts as work what is no waiting.
TEST(RealInputOnWindows, AWindowThatIsDraggedIsWaitedFor) {
    const OwnDesktop desktop;
    int waiting = 0;
    ASSERT_TRUE(useWindows(nullptr, [&](const std::function<void()>& wait) {
        ++waiting;
        wait();
        --waiting;
    }));
    const ResourceScope resources(base::processImage());
    Dialog dialog(IDD_FIELDS);
    RealInput input;
    bool wasDragged = false, wasWaitedFor = false;

    // The move is begun by a message, as that of a mouse is, and ends with Enter.
    input.then([&] { PostMessageW(static_cast<HWND>(dialog.window()), WM_SYSCOMMAND, SC_MOVE, 0); });
    input.press(Key::kRight);
    input.then([&] {
        GUITHREADINFO info = {};
        info.cbSize = sizeof info;
        wasDragged = GetGUIThreadInfo(GetCurrentThreadId(), &info) && (info.flags & GUI_INMOVESIZE) != 0;
        wasWaitedFor = waiting > 0;
    });
    input.press(Key::kEnter);
    input.then([&] { dialog.end(kCancelButton); });
    input.during([&] { dialog.runModal(); });

    EXPECT_TRUE(wasDragged);
    EXPECT_TRUE(wasWaitedFor);
}
