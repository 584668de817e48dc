#pragma once

#include <span>

#include "host/api/rx.h"

namespace drafthost {

using ClassDescriptor = AcRxClass* (*)();

// desc() of every class that the host itself brings.
std::span<const ClassDescriptor> builtInClasses();

}  // namespace drafthost
