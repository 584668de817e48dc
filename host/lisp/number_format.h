#pragma once

// Lengths and angles as text, in the notations of drawing units.

#include <optional>
#include <string>
#include <string_view>

namespace drafthost::lisp {

enum class LengthNotation { scientific = 1, decimal, engineering, architectural, fractional };
enum class AngleNotation { degrees = 0, degreesMinutesSeconds, grads, radians, surveyor };

// What the system variable DIMZIN says about zeros that could be left out.
struct ZeroSuppression {
    int bits = 0;
    // bits 0 and 1 as a number; they concern feet and inches: 0 both, 1 none, 2 inches only, 3 feet only
    bool omitsZeroFeet() const { return (bits & 3) == 0 || (bits & 3) == 3; }
    bool omitsZeroInches() const { return (bits & 3) == 0 || (bits & 3) == 2; }
    bool omitsLeadingZero() const { return (bits & 4) != 0; }
    bool omitsTrailingZeros() const { return (bits & 8) != 0; }
};

// `precision`: decimals, 0 to 16; for architectural and fractional notation the power of two of the
// smallest denominator. Lengths are in drawing units, which are inches in the notations with feet.
std::wstring formatLength(double length, LengthNotation notation, int precision, ZeroSuppression zeros);

// `radians` is brought into one turn first. In degrees, minutes and seconds precision 0 shows degrees, 1 and
// 2 minutes too, 3 and 4 seconds too, more the decimals of the seconds.
std::wstring formatAngle(double radians, AngleNotation notation, int precision, ZeroSuppression zeros);

// A formatted length or angle as a drafter types it, without blanks (UNITMODE 1): 1'5-1/2", 17-1/2, N45dE.
std::wstring lengthAsTyped(std::wstring length);
std::wstring angleAsTyped(std::wstring angle);

// Text in any of the notations as a length or an angle in radians; nothing when it is malformed. An
// angle without unit letters is in the notation given.
std::optional<double> parseLength(std::wstring_view text);
std::optional<double> parseAngle(std::wstring_view text, AngleNotation notation);

}  // namespace drafthost::lisp
