#pragma once

#include "tests/host/own_desktop.h"

namespace tessary::testing {

using drafthost::testing::useOwnDesktop;

}  // namespace tessary::testing
