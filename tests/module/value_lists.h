#pragma once

// Building value lists for tests, and showing them as text.

#include "module/binding/value_list.h"

#include <string>

namespace tessary::testing {

// The list built by acutBuildList; the end mark is added here.
template <class... Parts>
ValueList makeList(Parts... parts) {
    return ownValueList(acutBuildList(parts..., static_cast<int>(RTNONE)));
}

// One node of a type that acutBuildList does not know, with a zero value.
ValueList makeNode(short type);

// For example ( "name" . 1.5 ) for a pair; 16-bit integers as 5s, 32-bit ones as 5, points as [1 2 3], other
// nodes by their type code in angle brackets.
std::string shown(const resbuf* list);

}  // namespace tessary::testing
