#include "module/leader/drawing_scale.h"

#include "host/api/database.h"
#include "host/api/documents.h"

namespace tessary {

double drawingScale() {
    const AcApDocument* const document = acDocManager->curDocument();
    const double scale = document ? document->database()->dimscale() : 0.0;
    return scale > 0.0 ? scale : 1.0;
}

}  // namespace tessary
