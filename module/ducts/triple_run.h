#pragma once

// Straight duct runs as LISP programs describe them: a list of eighteen values.

#include "host/api/geometry.h"
#include "module/binding/argument_readers.h"

#include <string>

namespace tessary {

struct SectionSize {
    double width = 0;
    double height = 0;

    bool operator==(const SectionSize&) const = default;
};

struct TripleRun {
    AcGePoint3d start;  // as drawn: where it lies in the section is said by the justifications
    AcGePoint3d end;
    int conversionCode = 0;   // for the program that converts drawn points, see run_points.h
    double startSetback = 0;  // lengths by which fittings shorten the straight body
    double endSetback = 0;
    double width = 0;  // outer ones
    double height = 0;
    std::wstring shape;
    double thickness1 = 0;  // of the layers of the wall
    double thickness2 = 0;
    std::wstring horizontal;  // justification: "r", "l", otherwise centred
    std::wstring vertical;    // "t", "h", "b", otherwise centred
    int raised = 0;           // for "h": not 0 when the duct lies over the drawn points
    double raise = 1.0;       // by this much
    // Never in the list of values.
    int verticalMarker = 0;  // -1: counts as vertical whichever way it runs
    std::wstring flexCode;   // "FX": flexible duct, which is round
};

// Reads the eighteen values, which may also stand without their parentheses. Sizes become outer ones: twice
// each thickness is added to what is read. False at the first value that cannot be read; the values before it
// are then set.
bool readTripleRun(ArgCursor& cursor, TripleRun& run);

// Outer sizes as bodies have them: programs may give negative ones.
SectionSize outerSize(const TripleRun& run);

// The two tests differ on purpose. By the first "Rd" is round: it ignores case. By the second it is
// rectangular: it knows only codes in one case, and flexible ducts besides. Each fitting keeps to the one
// that drawings with it were made with.
bool isRectangular(const TripleRun& run);
bool isPlainRectangular(const TripleRun& run);

}  // namespace tessary
