#pragma once

// A solid class that builds nothing and writes down what it is asked to build, in the place of the companion
// module's: what the add-in asks for can be compared value by value.

#include "host/api/geometry.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tessary::testing {

// Registers the class for as long as it lives; one at a time.
class SolidRecorder {
public:
    SolidRecorder();
    ~SolidRecorder();
    SolidRecorder(const SolidRecorder&) = delete;
    SolidRecorder& operator=(const SolidRecorder&) = delete;

    // One line for each operation: its name, then points as (x y z), sections as box or round with width x
    // height, frames as [x(...) y(...)] (with z(...) where that is not x cross y, [same] for the one before).
    // Numbers have six digits.
    std::vector<std::string> calls;
    // Operations that are refused, by name, and how many times; -1 for always.
    std::map<std::string, int> refusals;
    // The operation that is refused when it is called for the n-th time from now, n counting from 1.
    std::pair<std::string, int> refuseAt;
    // What operations with in/out points hand back, in their order; a point that is not here stays.
    std::vector<AcGePoint3d> movedPoints;
    int living = 0;  // solids that have not been deleted
};

}  // namespace tessary::testing
