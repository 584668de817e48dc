#include "module/database/only_32_bit.h"

#include "host/api/editor.h"

namespace tessary {

// The status makes the invoker add "Wrong type of arguments passed.", which programs written for both
// versions look for.
HandlerStatus functionOfThe32BitVersion() {
    acutPrintf(L"\nFunction only works in 32-bit");
    return HandlerStatus::wrongType;
}

}  // namespace tessary
