#include "module/database/last_error_functions.h"

#include "host/api/editor.h"
#include "module/database/server_connection.h"

namespace tessary {

HandlerStatus lastError() {
    acedRetStr(getLastError().c_str());
    return HandlerStatus::success;
}

HandlerStatus resetLastError() {
    setLastError(L"");
    return lastError();
}

}  // namespace tessary
