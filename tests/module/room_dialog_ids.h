#pragma once

#define IDD_ROOMS 9301
