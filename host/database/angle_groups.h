#pragma once

// Angles in groups such as 50 and 51: files hold degrees, memory and LISP data radians.

#include <cmath>

#include "host/api/filer.h"
#include "host/geometry/angles.h"

namespace drafthost {

inline bool holdsDegrees(const AcDbDxfFiler* filer) {
    return filer->filerType() == AcDb::kFileFiler;
}

// The shortest number of degrees that reads back as the same angle, so that 30 degrees stay 30 in files.
inline double degreesOf(double radians) {
    const double degrees = radians * (180 / kPi);
    for (double places = 1e9; places <= 1e14; places *= 10) {
        const double rounded = std::round(degrees * places) / places;
        if (rounded * (kPi / 180) == radians)
            return rounded;
    }
    return degrees;
}

inline double angleToFile(const AcDbDxfFiler* filer, double radians) {
    return holdsDegrees(filer) ? degreesOf(radians) : radians;
}
inline double angleFromFile(const AcDbDxfFiler* filer, double angle) {
    return holdsDegrees(filer) ? angle * (kPi / 180) : angle;
}

}  // namespace drafthost
