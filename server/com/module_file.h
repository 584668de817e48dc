#pragma once

// The program or library that this code is linked into.

#include <windows.h>

#include <string>

namespace tessary::server {

HMODULE thisModule();
// Full path of a module's file.
std::wstring fileOf(HMODULE module);

}  // namespace tessary::server
