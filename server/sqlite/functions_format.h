#pragma once

// The patterns of FORMAT.

#include "server/values/value.h"

namespace tessary::server::functions {

// Up to three sections for positive numbers, negative ones and zero, of 0 # . , % E+ and characters that
// stand for themselves. Halves are rounded away from zero, by the digits that the number is written with.
Text formatNumber(double number, TextView pattern);

// d dd ddd dddd m mm mmm mmmm yy yyyy h hh n nn s ss q w ww y c AM/PM and so on; m after h means minutes.
Text formatDate(Date date, TextView pattern);

// In English; months from 1, days of the week from 1 for Sunday.
TextView monthName(int month);
TextView dayName(int weekday);

Text changedCase(TextView text, bool upper);

}  // namespace tessary::server::functions
