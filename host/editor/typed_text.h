#pragma once

// What a drafter types, understood: numbers, points, angles.

#include <optional>
#include <string_view>

#include "host/api/geometry.h"

namespace drafthost::editor {

// What LUNITS lets a drafter write: feet and inches (1'6-1/2") only where lengths are shown in them.
enum class LengthUnits { Decimal, FeetAndInches };

std::optional<double> typedReal(std::wstring_view text);
// A real or a fraction (1/2, 2-1/2), and feet and inches, as inches, where the units have them.
std::optional<double> typedLength(std::wstring_view text, LengthUnits units);
std::optional<int> typedInteger(std::wstring_view text);

// Degrees; with a suffix r radians, g grads, and degrees with minutes and seconds as 45d30'15". Answers
// radians.
std::optional<double> typedAngle(std::wstring_view text);

struct TypedPoint {
    AcGePoint3d point;
    int dimension = 3;
};
// "1,2", "1,2,3", "5<45", with a leading @ relative to the last point, with a leading * in world coordinates
// (worldToUcs converts). A lone "@" is the last point itself.
std::optional<TypedPoint> typedPoint(std::wstring_view text, const AcGePoint3d& lastPoint,
                                     const AcGeMatrix3d& worldToUcs,
                                     LengthUnits units = LengthUnits::Decimal);

}  // namespace drafthost::editor
