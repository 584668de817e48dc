#pragma once

// Angles in groups such as 50 and 51: files hold degrees, memory and LISP data radians.

#include "host/api/filer.h"
#include "host/geometry/angles.h"

namespace drafthost {

inline bool holdsDegrees(const AcDbDxfFiler* filer) {
    return filer->filerType() == AcDb::kFileFiler;
}

inline double angleToFile(const AcDbDxfFiler* filer, double radians) {
    return holdsDegrees(filer) ? radians * (180 / kPi) : radians;
}
inline double angleFromFile(const AcDbDxfFiler* filer, double angle) {
    return holdsDegrees(filer) ? angle * (kPi / 180) : angle;
}

}  // namespace drafthost
