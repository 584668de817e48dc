#pragma once

#include "module/binding/handler_status.h"

namespace tessary {

// The text of the server's last error, empty when there was none since it was reset.
HandlerStatus lastError();       // ts_lastError
HandlerStatus resetLastError();  // ts_resetLastError

}  // namespace tessary
