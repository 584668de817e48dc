#pragma once

// Faults of the processor in a module's function: a wild pointer or a division by zero ends the call, not the
// host.
//
// A fault that no handler takes abandons the function's frames without running their destructors: what they
// held (open objects, value lists, memory) stays held, and the checks after the evaluation report it. Stack
// exhaustion and illegal instructions (failed checks of a checked build) still end the process.

#include <cstdint>

namespace drafthost::editor {

// Calls the function. 0: it returned, with its value in result; otherwise the code of the fault. C++
// exceptions pass.
std::uint32_t callCatchingFaults(int (*function)(), int& result);

// "access violation", "integer division by zero"...
const wchar_t* faultName(std::uint32_t code);

}  // namespace drafthost::editor
