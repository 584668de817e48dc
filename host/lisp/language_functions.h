#pragma once

// The tables of the language's own functions, one for each topic. Interpreter defines them all.

#include "host/lisp/interpreter.h"

#include <span>

namespace drafthost::lisp {

std::span<const BuiltinDefinition> controlFunctions();       // control_functions.cpp
std::span<const BuiltinDefinition> symbolFunctions();        // symbol_functions.cpp
std::span<const BuiltinDefinition> listFunctions();          // list_functions.cpp
std::span<const BuiltinDefinition> listAccessFunctions();    // list_access_functions.cpp
std::span<const BuiltinDefinition> listMappingFunctions();   // list_mapping_functions.cpp
std::span<const BuiltinDefinition> numberFunctions();        // number_functions.cpp
std::span<const BuiltinDefinition> comparisonFunctions();    // comparison_functions.cpp
std::span<const BuiltinDefinition> stringFunctions();        // string_functions.cpp
std::span<const BuiltinDefinition> stringSearchFunctions();  // string_search_functions.cpp
std::span<const BuiltinDefinition> conversionFunctions();    // conversion_functions.cpp
std::span<const BuiltinDefinition> printFunctions();         // print_functions.cpp
std::span<const BuiltinDefinition> fileFunctions();          // file_functions.cpp
std::span<const BuiltinDefinition> fileSystemFunctions();    // file_system_functions.cpp
std::span<const BuiltinDefinition> geometryFunctions();      // geometry_functions.cpp

}  // namespace drafthost::lisp
