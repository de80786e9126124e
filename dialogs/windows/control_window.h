// The window of one control, by its kind: how its state is shown there, what the window tells of what the user did
// there, and how a script does the same.
//
// What is shown notifies the dialog as the user's doing would; who calls these keeps the two apart.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <string>

#include "dialogs/view.h"

namespace dialogs {

int send(HWND window, UINT message, WPARAM word = 0, LPARAM data = 0);
int send(HWND window, UINT message, WPARAM word, const std::wstring& text);

/// Once, before anything is shown.
void prepareWindow(const Control& control, HWND window);
/// All but tooltips.
void showAspect(const Control& control, HWND window, Aspect aspect);
/// Where typing goes: the window itself, or the edit inside a drop-down.
HWND editOf(const Control& control, HWND window);

/// ---- from the window into the control
void noteText(Control& control, HWND window);
void noteSelection(Control& control, HWND window);
void noteColumns(Control& list, HWND window);
/// The text that a list view asks for.
void giveCell(const Control& list, NMLVDISPINFOW& wanted);
/// The row that letters typed lead to; -1: none.
int findRow(const Control& list, const NMLVFINDITEMW& wanted);
/// The choice or page that the window shows selected; -1: none.
int shownItem(const Control& control, HWND window);
bool isDroppedDown(const Control& control, HWND window);

/// ---- as a hand would
void chooseInWindow(const Control& list, HWND window, int item);
void doubleClickInWindow(const Control& list, HWND window, int row);

/// ---- drawing
/// A choice with its colour in front.
void drawChoice(const Control& control, const DRAWITEMSTRUCT& item);
/// What NM_CUSTOMDRAW of a list view is answered with.
LRESULT drawRow(const Control& list, NMLVCUSTOMDRAW& draw);

}  // namespace dialogs
