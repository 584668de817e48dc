#pragma once

// The 174 LISP functions of the module. Their numbers follow each other: first the database table, then the
// drawing table, each in its own order. Programs bind by name; the numbers only tie a name to its thunk.

#include <span>

namespace tessary {

struct FunctionEntry {
    const wchar_t* name;  // as LISP programs write it; a program text constant
    int (*thunk)();       // returns the host's result code
};

std::span<const FunctionEntry> databaseFunctions();
std::span<const FunctionEntry> drawingFunctions();

// Numbers of the first function of each table.
short databaseFunctionBase();
short drawingFunctionBase();

// Registers both tables' functions in the current document. Each document needs its own registration.
void registerDatabaseFunctions();
void registerDrawingFunctions();

}  // namespace tessary
