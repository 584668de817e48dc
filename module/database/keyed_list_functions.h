#pragma once

// LISP functions that keep small sets of named values on drawing objects, as extended data of the application
// "QUARNEL": keys are texts, and the value of a key is the item behind it. They need no database.

#include "module/binding/handler_status.h"

namespace tessary {

HandlerStatus putKeyedList();
HandlerStatus getKeyedValue();
HandlerStatus getKeyedList();
HandlerStatus getWholeKeyedList();

// LISP type of an extended data item with that group code. Binary data (1004) and codes that are LISP types
// already, or negative, stay as they are; a code that no item can have gives RTNONE.
short lispTypeOfExtendedData(short groupCode);

}  // namespace tessary
