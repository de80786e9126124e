// Numbers of the field manager's resources; read by the compiler and by the resource compiler.
#pragma once

#define IDD_FIELD 100
#define IDC_FIELD_KIND 110
#define IDC_FIELD_OBJECT 111
#define IDC_FIELD_NAME_LABEL 112
#define IDC_FIELD_NAME 113
#define IDC_FIELD_FORMAT 114
#define IDC_FIELD_CODE 115
#define IDC_FIELD_PREVIEW 116
