#pragma once

#include <string>

namespace tessary {

// The number with that many decimals (more than 10 count as 10, fewer than 0 as 0), rounded half away from
// zero on its exact binary value. trimZeros drops zeros at the end, and the decimal point with the last of
// them. A number other than 0 of which only zeros would be shown is 0 without a sign and with all its
// decimals, whatever trimZeros says. What is no number, or infinite, is written as LISP writes it.
std::wstring formatFixed(double value, int decimals, bool trimZeros);

// formatFixed without zeros at the end, and with a comma between each three digits before the decimal point.
std::wstring formatFixedWithThousands(double value, int decimals);

}  // namespace tessary
