#include "module/drawing/editor_reactor.h"

namespace tessary {

void attachEditorReactor() {}

void detachEditorReactor() {}

}  // namespace tessary
