// Numbers of the text editor's resources; read by the compiler and by the resource compiler.
#pragma once

#define IDD_TEXT_EDITOR 100
#define IDD_LINE_EDITOR 101
#define IDC_EDITOR_TEXT 110
#define IDC_EDITOR_WIDTH 111
#define IDC_EDITOR_FIELD 112
