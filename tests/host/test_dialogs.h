#pragma once

// Dialogs that only the tests show.

#define IDD_TEST_RESIZABLE 9001
#define IDD_TEST_PLAIN 9002
#define IDD_TEST_UNKNOWN_CLASS 9003
#define IDD_TEST_HUGE 9004
#define IDD_TEST_MISSING 9099

#define IDC_TEST_BOX 9101
#define IDC_TEST_LIST 9102
#define IDC_TEST_EDIT 9103
#define IDC_TEST_THROW 9104
#define IDC_TEST_COMBO 9105
