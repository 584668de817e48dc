#pragma once

#include <cstdint>

namespace tessary {

// What every modal dialog passes its result through. A dialog that could not be created (-1 or 3) makes it
// offer the download of the missing components. Returns the argument unchanged.
std::intptr_t checkDialogResult(std::intptr_t result);

}  // namespace tessary
