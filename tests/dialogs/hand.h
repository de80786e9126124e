// What a person does with mouse and keys: input that takes the system's or the toolkit's own way to real windows.
// RealInput (real_input.h) puts pieces of it in a row.
#pragma once

#include <functional>
#include <string>

#include "dialogs/dialog.h"

namespace hand {

enum class Key { kEnter, kEscape, kTab, kDelete, kEnd, kRight, kDown, kHelp, kDropDown };
enum class Held { kNothing, kShift, kControl, kAlt };

void press(Key key, Held held);
/// The key that has the capital, the digit or the blank. Alone it types a small letter.
void press(char character, Held held);
/// In the control's left part.
void click(const dialogs::Dialog& dialog, int control);
/// With the other button, as for a menu.
void rightClick(const dialogs::Dialog& dialog, int control);
/// A choice of a list box or a row of a list view.
void clickItem(const dialogs::Dialog& dialog, int list, int item, int times);
/// Towards the person, with the mouse over the control.
void turnWheel(const dialogs::Dialog& dialog, int control);

/// ---- what the windows show
/// Whether the mouse meets the control itself, which then has its tooltip, and not what lies below it.
bool meets(const dialogs::Dialog& dialog, int control);
/// -1: none.
int selectedRow(const dialogs::Dialog& dialog, int list);
std::string shownText(const dialogs::Dialog& dialog, int dropDown);

/// Does the work and calls `tick` now and then meanwhile, whatever window is open.
void workWithTicks(const std::function<void()>& work, const std::function<void()>& tick);

}  // namespace hand
