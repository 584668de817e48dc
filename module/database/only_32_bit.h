#pragma once

#include "module/binding/handler_status.h"

namespace tessary {

// What index and relation details come to in a 64-bit host, whatever the arguments: says so and ends the call
// in an error.
HandlerStatus functionOfThe32BitVersion();

}  // namespace tessary
