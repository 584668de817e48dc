#pragma once

#include <windows.h>

extern "C" const IMAGE_DOS_HEADER __ImageBase;

namespace framework {

// The program or library that this code is linked into, which is the one that holds its resources.
inline HINSTANCE ownInstance() {
    return reinterpret_cast<HINSTANCE>(const_cast<IMAGE_DOS_HEADER*>(&__ImageBase));
}

}  // namespace framework
