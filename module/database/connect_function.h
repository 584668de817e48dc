#pragma once

#include "module/binding/handler_status.h"

namespace tessary {

// (ts_connect path [mode [textScreenOnError]]): opens a database for the active drawing.
HandlerStatus connectDatabase();

}  // namespace tessary
