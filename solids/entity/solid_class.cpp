#include "solids/entity/solid_class.h"

namespace solids {

bool registerSolidClass() {
    return true;
}

void removeSolidClass() {}

}  // namespace solids
