#define IDD_VALUE 100
#define IDC_VALUE 101
