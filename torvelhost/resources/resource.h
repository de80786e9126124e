// Numbers of the host's resources; read by the compiler and by the resource compiler.
#pragma once

#define IDD_COLOR 100
#define IDC_COLOR_LIST 101
#define IDC_COLOR_NAME 102

#define IDR_HELP_COMMANDS 200
#define IDR_HELP_SCRIPTS 201
