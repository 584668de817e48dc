#pragma once

// Ids of the color dialog and its controls.

#define IDD_SELECT_COLOR 101

#define IDC_COLOR_PALETTE 1101
#define IDC_COLOR_STANDARD 1102
#define IDC_COLOR_GRAYS 1103
#define IDC_COLOR_INDEX 1104
#define IDC_COLOR_RGB 1105
#define IDC_COLOR_BY_LAYER 1106
#define IDC_COLOR_BY_BLOCK 1107
#define IDC_COLOR_EDIT 1108
#define IDC_COLOR_PREVIEW 1109
