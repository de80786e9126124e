// Real mouse and keys for the windows of a test, with every maker that has some: one piece of input a tick, when all
// that came before is done.
//
//     const OwnDesktop desktop;
//     RealInput input;
//     input.type("DOOR");
//     input.click(dialog, IDC_NEXT);
//     int code = 0;
//     input.during([&] { code = dialog.runModal(); });
#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <string_view>

#include "dialogs/desktop.h"
#include "dialogs/process.h"
#include "tests/dialogs/hand.h"

/// Dialogs are windows that a person works, on a desktop that no other process shares.
class OwnDesktop {
  public:
    OwnDesktop() {
        dialogs::useOwnDesktop();
        EXPECT_TRUE(dialogs::useWindows(nullptr));
    }
    ~OwnDesktop() { dialogs::useStandard(); }
    OwnDesktop(const OwnDesktop&) = delete;
    OwnDesktop& operator=(const OwnDesktop&) = delete;
};

using hand::Held;
using hand::Key;

class RealInput {
  public:
    /// Any other piece.
    void then(std::function<void()> step) { steps_.push_back(std::move(step)); }

    void press(Key key, Held held = Held::kNothing) {
        then([=] { hand::press(key, held); });
    }
    void pressWith(Held held, char character) {
        then([=] { hand::press(character, held); });
    }
    /// Capital letters, digits and blanks, for the keys that have them; letters come out small.
    void type(std::string_view text) {
        for (char c : text) pressWith(Held::kNothing, c);
    }
    void click(const dialogs::Dialog& dialog, int control) {
        then([&dialog, control] { hand::click(dialog, control); });
    }
    void rightClick(const dialogs::Dialog& dialog, int control) {
        then([&dialog, control] { hand::rightClick(dialog, control); });
    }
    void clickItem(const dialogs::Dialog& dialog, int list, int item, int times = 1) {
        then([&dialog, list, item, times] { hand::clickItem(dialog, list, item, times); });
    }
    void turnWheel(const dialogs::Dialog& dialog, int control) {
        then([&dialog, control] { hand::turnWheel(dialog, control); });
    }

    /// Does the work, which shows windows, and the input meanwhile. All of it must have been used when the work ends.
    void during(const std::function<void()>& work) {
        constexpr std::size_t kPatience = 50;
        std::size_t next = 0;
        hand::workWithTicks(work, [&] {
            const std::size_t step = next++;
            if (step < steps_.size()) steps_[step]();
            // A window that is still open long after the last piece would wait for ever.
            if (step >= steps_.size() + kPatience) hand::press(Key::kEscape, Held::kNothing);
        });
        EXPECT_GE(next, steps_.size()) << "input was left over";
        EXPECT_LT(next, steps_.size() + kPatience) << "a window stayed open";
    }

  private:
    std::vector<std::function<void()>> steps_;
};
