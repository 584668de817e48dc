#pragma once

// The functions that the host calls when LISP evaluates one of the module's names: one per implementation,
// made by the compiler from its address.

#include "module/binding/invoker.h"
#include "module/database/document_connections.h"

namespace tessary {

template <Handler implementation>
int drawingThunk() {
    return invokeHandler(implementation);
}

// Database functions work on the connection of the drawing that is active now, so that is looked after first.
template <Handler implementation>
int databaseThunk() {
    ensureDatabaseConnection();
    return invokeHandler(implementation);
}

// For names whose work is not in this version: says so on the command line and ends the LISP call in an
// error, so that no program takes the missing work for done.
int unavailableThunk();

}  // namespace tessary
