#include "module/leader/leader_class.h"

namespace tessary {

void registerLeaderClass() {}

void removeLeaderClass() {}

}  // namespace tessary
