#include "module/binding/invoker.h"

#include "framework/exception.h"
#include "host/api/documents.h"
#include "host/api/editor.h"

namespace tessary {

namespace {

// Asked anew for each use: an implementation may change the working database.
AcApDocument* workingDocument() {
    return acDocManager->document(acdbHostApplicationServices()->workingDatabase());
}

}  // namespace

int invokeHandler(Handler handler) {
    // Neither locking nor unlocking is checked: without a lock the host refuses the changes themselves.
    acDocManager->lockDocument(workingDocument(), AcAp::kWrite, nullptr, nullptr, true);
    int code = RSERR;
    try {
        code = reportHandlerStatus(handler());
    } catch (CException*) {
        acDocManager->unlockDocument(workingDocument());
        acutPrintf(L"\nGeneral Exception");
        throw;
    } catch (...) {
        acDocManager->unlockDocument(workingDocument());
        acutPrintf(L"\nError");
        throw;
    }
    acDocManager->unlockDocument(workingDocument());
    return code;
}

}  // namespace tessary
