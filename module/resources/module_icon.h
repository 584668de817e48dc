#pragma once

#include "framework/instance.h"
#include "module/resource_ids.h"

#include <windows.h>

namespace tessary {

// For the title bars of the module's dialogs. Shared: never destroyed.
inline HICON moduleIcon() {
    return LoadIconW(framework::ownInstance(), MAKEINTRESOURCEW(IDI_QUARNEL));
}

}  // namespace tessary
