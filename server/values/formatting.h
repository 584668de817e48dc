#pragma once

// Numbers and dates as textOf writes them.

#include "server/values/value.h"

namespace tessary::server {

std::string formatNumber(double number);
std::string formatDate(Date date);

// The days that dates can be: from the years 100 to 9999.
bool isValidDate(Date date);

}  // namespace tessary::server
