#include "module/database/service_object.h"

namespace tessary {

void createServiceObject() {}

void releaseServiceObject() {}

}  // namespace tessary
