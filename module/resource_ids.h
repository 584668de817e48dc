#pragma once

// Ids of the add-in's resources. Controls have the numbers that stand in their dialog's own files.

#define IDI_QUARNEL 100

#define IDD_LAYERS 201
#define IDD_NEW_LAYER_SYSTEM 202
#define IDD_SELECT_LINETYPE 203
